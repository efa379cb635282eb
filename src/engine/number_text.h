// Number texts and number reading shared by the engine and every window.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace merida {

// Plain form (answer label, boxes): 15 significant digits, "E+30"/"E-07" exponents, "-0" as "0".
std::string PlainText(double v);

// List form: plain digits, a leading blank unless negative, no zero before the point (" .5", "-.25").
std::string ListText(double v);
// List form of a single-precision value: 7 significant digits (" .3333333").
std::string ListText(float v);

// The "###.#####" and "#.#####" patterns: 5 decimals, no leading zero, point always (".25", "3.", ".").
std::string Fixed5Text(double v);

// True when the text is a number: blanks, sign, digits with an optional point, optional exponent.
bool IsNumeric(std::string_view text);

// The value of a numeric text; nullopt when the text is not numeric.
std::optional<double> ReadNumber(std::string_view text);

// Lenient reading: leading blanks skipped, the longest numeric prefix, else 0 (also on overflow).
double ReadLenient(std::string_view text);

namespace detail {
extern const double kRoundPow10[23];      // 1e0 .. 1e22
extern const double kRoundPow10From[23];  // 1e-7 .. 1e15
double Round15Tie(double a, double t, double whole, double frac, int q);
double Round15Rare(double v);
}  // namespace detail

// The value a number takes after being written in plain form and read back (15 digits).
// Inline because tool windows read x back this way at every point.
inline double Round15(double v) {
  double a = std::fabs(v);
  if (!(a >= 1e-7 && a < 1e15)) [[unlikely]] return detail::Round15Rare(v);
  // The decimal exponent e: floor(exp2 * log10 2), corrected by one comparison.
  int exp2 = static_cast<int>(std::bit_cast<uint64_t>(a) >> 52) - 1023;
  int e = (exp2 * 78913) >> 18;
  e += a >= detail::kRoundPow10From[e + 8];
  // t = a * 10^q lies below 2^50, so it is within 1/16 of the exact product and its fraction
  // is a multiple of 1/64 or coarser: rounding t gives the exact 15 digits unless t sits on
  // a half, where the sign of the product's rounding error decides.
  const double p = detail::kRoundPow10[14 - e];
  constexpr double kTwo52 = 4503599627370496.0;
  double t = a * p;
  double whole = (t + kTwo52) - kTwo52;  // halves to even
  double frac = t - whole;
  if (std::fabs(frac) == 0.5) [[unlikely]] whole = detail::Round15Tie(a, t, whole, frac, 14 - e);
  return std::copysign(whole / p, v);
}

// A value rounded to the nearest integer, halves to even, if it fits 16 bits.
std::optional<int16_t> ToInt16(double v);
// The same for 32 bits.
std::optional<int32_t> ToInt32(double v);

// Removes leading blanks (the formula box convention).
std::string_view TrimLeft(std::string_view text);
// Removes blanks at both ends.
std::string_view Trim(std::string_view text);

}  // namespace merida

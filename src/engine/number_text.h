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
// Plain form of a single-precision value: 7 significant digits ("0.1", "5000").
std::string PlainText(float v);

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
// Per binary exponent of [1e-7, 1e15): the power of ten that starts the next decade in the
// binade, and the scales that make a value below or above it a 15-digit integer.
struct Round15Scale {
  double next, below, above;
  int placesBelow, placesAbove;  // the decimal exponents of below and above
};
constexpr int kRound15FirstBiased = 999;  // 1e-7 lies in [2^-24, 2^-23)
constexpr int kRound15Scales = 74;        // 1e15 lies in the last, [2^49, 2^50)
struct Round15ScaleTable {
  Round15Scale v[kRound15Scales];
};
extern const Round15ScaleTable kRound15Table;
double Round15Tie(double a, double t, double whole, double frac, int places);
double Round15Rare(double v);
// The read-back through the text itself: the reference, and the way for the rarest values.
double Round15Slow(double v);
// The read-back of a normal value at any magnitude in integer arithmetic; false (out unset)
// when it cannot decide without the text: subnormals, the top binade, near-halves.
bool Round15Wide(double v, double& out);
}  // namespace detail

namespace detail {
// The read-back of v (|v| = a) in the binade whose scales are s.
[[gnu::always_inline]] inline double Round15Scaled(double v, double a, const Round15Scale& s) {
  // Both scalings start at once; the decade comparison only picks one.
  const double tBelow = a * s.below, tAbove = a * s.above;
  const bool above = a >= s.next;
  const double t = above ? tAbove : tBelow, p = above ? s.above : s.below;
  // t lies below 2^50, so it is within 1/16 of the exact product and its fraction is a
  // multiple of 1/64 or coarser: rounding t gives the exact 15 digits unless t sits on a
  // half, where the sign of the product's rounding error decides.
  constexpr double kTwo52 = 4503599627370496.0;
  double whole = (t + kTwo52) - kTwo52;  // halves to even
  const double frac = t - whole;
  if (std::fabs(frac) == 0.5) [[unlikely]] {
    whole = Round15Tie(a, t, whole, frac, above ? s.placesAbove : s.placesBelow);
  }
  return std::copysign(whole / p, v);
}

// A decade's scale 10^s as h + l (to about 2^-106) and its reciprocal g, rounded.
struct FusedDecade {
  double h, l, g;
};
// A binade outside the table: the power of ten that starts its next decade (infinity when
// none does), and the scale of its lowest decade (the next decade's is the entry before).
struct FusedBinade {
  double next;
  const FusedDecade* below;
};
// The binade's entry, or null outside about 1e-280..1e289.
const FusedBinade* FusedBinadeOf(uint64_t binade);
// True when the processor has a fused multiply-add, which Round15Fused needs.
bool FusedReadBackAvailable();
// The read-back of a value in binade b.
double Round15Fused(double v, const FusedBinade& b);

// The scales of the binade a read-back site last met (binade 0: none yet), from the table or,
// outside it, for the fused read-back.
struct Round15Guess {
  uint64_t binade = 0;
  Round15Scale scale{};
  const FusedBinade* fused = nullptr;
};
// Reads v back and, when its binade is inside the table, remembers that binade's scales.
double Round15Learn(double v, Round15Guess& guess);
}  // namespace detail

// The value a number takes after being written in plain form and read back (15 digits).
// Inline and short in latency because tool windows read x back this way at every point.
inline double Round15(double v) {
  // Positive doubles order as their bits: one comparison tests 1e-7 <= |v| < 1e15.
  constexpr uint64_t kLow = std::bit_cast<uint64_t>(1e-7), kHigh = std::bit_cast<uint64_t>(1e15);
  const uint64_t bits = std::bit_cast<uint64_t>(v) & ~(uint64_t{1} << 63);
  if (bits - kLow >= kHigh - kLow) [[unlikely]] return detail::Round15Rare(v);
  return detail::Round15Scaled(v, std::bit_cast<double>(bits),
                               detail::kRound15Table.v[(bits >> 52) - detail::kRound15FirstBiased]);
}

// The same read-back at a site whose values mostly keep to one binade (a sweep of x, one call
// in a chain): the scaling starts from the remembered scales at once instead of waiting for
// the table, and a predicted branch checks that the binade is still the same.
inline double Round15(double v, detail::Round15Guess& guess) {
  const uint64_t binade = (std::bit_cast<uint64_t>(v) >> 52) & 0x7FF;
  if (binade != guess.binade) [[unlikely]] return detail::Round15Learn(v, guess);
  if (guess.fused) return detail::Round15Fused(v, *guess.fused);
  return detail::Round15Scaled(v, std::fabs(v), guess.scale);
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

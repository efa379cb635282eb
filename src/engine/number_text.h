// Number texts and number reading shared by the engine and every window.
#pragma once

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

// The value a number takes after being written in plain form and read back (15 digits).
double Round15(double v);

// A value rounded to the nearest integer, halves to even, if it fits 16 bits.
std::optional<int16_t> ToInt16(double v);
// The same for 32 bits.
std::optional<int32_t> ToInt32(double v);

// Removes leading blanks (the formula box convention).
std::string_view TrimLeft(std::string_view text);
// Removes blanks at both ends.
std::string_view Trim(std::string_view text);

}  // namespace merida

// The help window's fixed reference lines: operators and built-in functions, in both languages.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace merida {

// The six operator lines for a display language (2 = Japanese, anything else English).
std::span<const std::string_view> OperatorLines(int16_t language);

// The 26 built-in function lines for a display language.
std::span<const std::string_view> FunctionLines(int16_t language);

}  // namespace merida

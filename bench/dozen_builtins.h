// The formula with a dozen built-ins that tool benchmarks run, and the same written by hand.
#pragma once

#include <cmath>

namespace bench {

constexpr const char* kDozenBuiltins =
    "sin(x)+cos(2*x)+tan(x/40)+exp(0-x/10)+ln(x+1)+log(x+2)+sqr(x)+abs(x-5)+sinh(x/9)-cosh(x/9)+atan(x)*tanh(x)";

inline double DozenBuiltins(double x) {
  return std::sin(x) + std::cos(2 * x) + std::tan(x / 40) + std::exp(0 - x / 10) + std::log(x + 1) +
         std::log10(x + 2) + std::sqrt(x) + std::fabs(x - 5) + std::sinh(x / 9) - std::cosh(x / 9) +
         std::atan(x) * std::tanh(x);
}

}  // namespace bench

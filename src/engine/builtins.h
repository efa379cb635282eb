// The built-in function library: names, domain checks and the exact approximations.
#pragma once

#include <cstdint>
#include <string_view>

namespace merida {

enum class Builtin : uint8_t {
  kNone,  // not a built-in (a user function, or a name no evaluation may reach)
  kAdd, kSub, kMul, kDiv, kPow,
  kAbs, kSqr, kSin, kCos, kTan, kExp, kLn, kLog, kSinh, kCosh, kTanh,
  kAsin, kAcos, kAtan, kFact, kRandom, kErf, kGamma,
  kPerm, kComb, kJn, kYn, kPn,
};

// The built-in an evaluated cell's text names; kNone for anything else.
Builtin LookupBuiltin(std::string_view name);

// Outcome of one application: 0 = value, > 0 = error number, kFault = arithmetic fault.
constexpr int kFault = -1;
struct Applied {
  double value = 0;
  int status = 0;
  const char* fault = nullptr;  // description when status is kFault
};

// Applies a built-in to a (first argument of two-argument functions) and b. kRandom is not
// handled here: it needs the engine's generator.
Applied ApplyBuiltin(Builtin fn, double a, double b);

// a^b with the integer-exponent loop and its 16-bit exponent limit.
Applied Power(double a, double b);

}  // namespace merida

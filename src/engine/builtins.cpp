// Built-in functions. The approximations (arcsine, erf, Bessel, Gamma) are the fixed
// polynomials users of this calculator know the digits of; do not swap in libm versions.
#include "engine/builtins.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "engine/number_text.h"

namespace merida {
namespace {

constexpr double kPi15 = 3.14159265358979;   // the "PI" constant
constexpr double kPiBessel = 3.141592654;
constexpr const char* kOverflow = "Overflow";
constexpr const char* kDivisionByZero = "Division by zero";

Applied Value(double v) {
  if (!std::isfinite(v)) return {0, kFault, kOverflow};
  return {v, 0, nullptr};
}
Applied Error(int code) { return {0, code, nullptr}; }
Applied Fault(const char* what) { return {0, kFault, what}; }

double Poly(const double* c, int count, double t) {
  double s = 0, p = 1;
  for (int k = 0; k < count; ++k) {
    s += c[k] * p;
    p *= t;
  }
  return s;
}

// arccos of t in [0, 1] (Abramowitz and Stegun 4.4.46).
double ArcCosPoly(double t) {
  static constexpr double a[] = {1.5707963050, -0.2145988016, 0.0889789874, -0.0501743046,
                                 0.0308918810, -0.0170881256, 0.0066700901, -0.0012624911};
  return std::sqrt(1 - t) * Poly(a, 8, t);
}

// Products in 32-bit signed arithmetic, one factor at a time.
bool MulChecked(int32_t& r, int32_t f) { return !__builtin_mul_overflow(r, f, &r); }

Applied Factorial(double b) {
  auto n = ToInt16(b);
  if (!n) return Fault(kOverflow);
  int32_t r = 1;
  for (int32_t i = 1; i <= *n; ++i) {
    if (!MulChecked(r, i)) return Fault(kOverflow);
  }
  return Value(r);
}

Applied Permutation(double a, double b, int32_t& product) {
  auto na = ToInt16(a), nb = ToInt16(b);
  if (!na || !nb) return Fault(kOverflow);
  int32_t r = 1;
  for (int32_t k = 0; k < *nb; ++k) {
    if (!MulChecked(r, static_cast<int32_t>(*na) - k)) return Fault(kOverflow);
  }
  product = r;
  return Value(r);
}

Applied Erf(double b) {
  if (b < 0) return Error(16);
  static constexpr double d[] = {1, 0.0498673470, 0.0211410061, 0.0032776263,
                                 0.0000380036, 0.0000488906, 0.0000053830};
  double z = std::sqrt(2.0) * b;
  double p = Poly(d, 7, z);
  double p2 = p * p, p4 = p2 * p2, p8 = p4 * p4, p16 = p8 * p8;
  double P = 1 - 0.5 / p16;
  return Value(2 * P - 1);
}

Applied Gamma(double b) {
  if (!(b > 0) || b >= 34) return Error(16);
  double y = b, m = 1;
  while (y > 1.5) {
    y = y - 1;
    m = m * y;
  }
  if (b < 0.5) {
    while (y < 0.5) {
      m = m / y;
      y = y + 1;
    }
  }
  static constexpr double c[] = {1,          -0.4227843,  -0.2330937,   0.191091,
                                 -0.0245525, -0.0176452,  0.00802327,   -0.00080433,
                                 -0.000360839, 0.000145596, -0.0000175459};
  double P = Poly(c, 11, y - 1);
  return Value(m / (P * y));
}

// The order or degree of Jn, Yn and Pn: the first argument rounded; huge values are out of range.
bool Order(double a, int& n) {
  auto r = ToInt16(a);
  if (!r) return false;
  n = *r;
  return true;
}

double BesselJ(int n, double x) {
  if (x < 0.0001) {
    if (n == 0) return 1;
    if (x <= 1e-20) return 0;
    double r = 1;
    for (int k = 1; k <= n; ++k) r *= (x / 2) / k;
    return r;
  }
  return std::numeric_limits<double>::quiet_NaN();  // handled by the caller's recurrence
}

Applied Jn(double a, double x) {
  int n = 0;
  if (!Order(a, n)) return Error(16);
  double sign = 1;
  if (n < 0) {  // J(-n) = (-1)^n J(n)
    n = -n;
    if (n % 2) sign = -1;
  }
  if (x < 0 || x > 100 || n > 100) return Error(16);
  if (x < 0.0001) return Value(sign * BesselJ(n, x));
  double start = x < 0.1 ? 5 : x < 1 ? 7 * x + 6 : x < 10 ? 2 * x + 10 : 1.3 * x + 16;
  int m = static_cast<int>(std::nearbyint(start));
  if (m < n) return Error(16);
  std::array<double, 200> J{};
  J[m] = 0;
  J[m - 1] = 1e-20;
  for (int k = m - 1; k >= 1; --k) J[k - 1] = (2.0 * k / x) * J[k] - J[k + 1];
  double even = 0;
  for (int k = 2; k <= m; k += 2) even += J[k];
  double S = J[0] + 2 * even;
  return Value(sign * J[n] / S);
}

void BesselY01(double x, double& y0, double& y1) {
  if (x <= 3) {
    double y = (x / 3) * (x / 3);
    static constexpr double j0[] = {1, -2.2499997, 1.2656208, -0.3163866, 0.0444479, -0.0039444, 0.0002100};
    static constexpr double j1[] = {0.5, -0.56249985, 0.21093573, -0.03954289, 0.00443319, -0.00031761, 0.00001109};
    static constexpr double c0[] = {0.36746691, 0.60559366, -0.74350384, 0.25300117, -0.04261214, 0.00427916, -0.00024846};
    static constexpr double c1[] = {-0.6366198, 0.2212091, 2.1682709, -1.3164827, 0.3123951, -0.0400976, 0.0027873};
    double J0 = Poly(j0, 7, y);
    double J1 = x * Poly(j1, 7, y);
    double L = (2 / kPiBessel) * std::log(x / 2);
    y0 = L * J0 + Poly(c0, 7, y);
    y1 = (L * x * J1 + Poly(c1, 7, y)) / x;
    return;
  }
  double u = 3 / x;
  static constexpr double f0c[] = {0.79788456, -0.00000077, -0.00552740, -0.00009512, 0.00137237, -0.00072805, 0.00014476};
  static constexpr double t0c[] = {-0.78539816, -0.04166397, -0.00003954, 0.00262573, -0.00054125, -0.00029333, 0.00013558};
  static constexpr double f1c[] = {0.79788456, 0.00000156, 0.01659667, 0.00017105, -0.00249511, 0.00113653, -0.00020033};
  static constexpr double t1c[] = {-2.35619449, 0.12499612, 0.00005650, -0.00637879, 0.00074348, 0.00079824, -0.00029166};
  double f0 = Poly(f0c, 7, u), th0 = x + Poly(t0c, 7, u);
  double f1 = Poly(f1c, 7, u), th1 = x + Poly(t1c, 7, u);
  y0 = f0 * std::sin(th0) / std::sqrt(x);
  y1 = f1 * std::sin(th1) / std::sqrt(x);
}

Applied Yn(double a, double x) {
  int n = 0;
  if (!Order(a, n)) return Error(16);
  double sign = 1;
  if (n < 0) {  // Y(-n) = (-1)^n Y(n)
    n = -n;
    if (n % 2) sign = -1;
  }
  if (x < 0 || x > 100) return Error(16);
  if (x == 0) return Error(16);  // Y diverges at 0
  double y0 = 0, y1 = 0;
  if (x < 0.0001) {
    // Leading terms of the small-argument expansions.
    y0 = (2 / kPiBessel) * (std::log(x / 2) + 0.5772156649);
    y1 = -2 / (kPiBessel * x);
  } else {
    BesselY01(x, y0, y1);
  }
  if (n == 0) return Value(sign * y0);
  double prev = y0, cur = y1;
  for (int k = 1; k < n; ++k) {
    double next = (2.0 * k / x) * cur - prev;
    prev = cur;
    cur = next;
    if (!std::isfinite(cur)) return Fault(kOverflow);
  }
  return Value(sign * cur);
}

Applied Pn(double a, double x) {
  int n = 0;
  if (!Order(a, n)) return Error(16);
  if (n < 0) n = -n - 1;  // P(-n-1) = P(n)
  if (x < 0 || n > 100) return Error(16);
  if (n == 0) return Value(1);
  double p0 = 1, p1 = x;
  for (int k = 1; k <= n - 1; ++k) {
    double p2 = ((2.0 * k + 1) * x * p1 - k * p0) / (k + 1);
    p0 = p1;
    p1 = p2;
  }
  return Value(p1);
}

}  // namespace

Builtin LookupBuiltin(std::string_view s) {
  if (s.size() == 1) {
    switch (s[0]) {
      case '+': return Builtin::kAdd;
      case '-': return Builtin::kSub;
      case '*': return Builtin::kMul;
      case '/': return Builtin::kDiv;
      case '^': return Builtin::kPow;
      case '!': return Builtin::kFact;
      default: return Builtin::kNone;
    }
  }
  struct Entry {
    std::string_view name;
    Builtin fn;
  };
  static constexpr Entry table[] = {
      {"abs", Builtin::kAbs},     {"sqr", Builtin::kSqr},     {"sin", Builtin::kSin},   {"cos", Builtin::kCos},
      {"tan", Builtin::kTan},     {"exp", Builtin::kExp},     {"ln", Builtin::kLn},     {"log", Builtin::kLog},
      {"sinh", Builtin::kSinh},   {"cosh", Builtin::kCosh},   {"tanh", Builtin::kTanh}, {"asin", Builtin::kAsin},
      {"acos", Builtin::kAcos},   {"atan", Builtin::kAtan},   {"random", Builtin::kRandom},
      {"erf", Builtin::kErf},     {"Gamma", Builtin::kGamma}, {"perm", Builtin::kPerm}, {"comb", Builtin::kComb},
      {"Jn", Builtin::kJn},       {"Yn", Builtin::kYn},       {"Pn", Builtin::kPn},
  };
  for (const Entry& e : table) {
    if (e.name == s) return e.fn;
  }
  return Builtin::kNone;
}

Applied Power(double a, double b) {
  if (b == 0) return Value(1);
  if (a == 0) return Value(0);
  if (b == std::floor(b)) {
    double m = std::fabs(b);
    if (m > 32767) return Fault(kOverflow);  // the exponent is a 16-bit count
    int n = static_cast<int>(m);
    double r = 1;
    for (int i = 0; i < n; ++i) r *= a;
    if (b < 0) {
      if (r == 0) return Fault(kDivisionByZero);
      r = 1 / r;
    }
    return Value(r);
  }
  if (a < 0) return Error(14);
  return Value(std::exp(b * std::log(a)));
}

Applied ApplyBuiltin(Builtin fn, double a, double b) {
  switch (fn) {
    case Builtin::kAdd: return Value(a + b);
    case Builtin::kSub: return Value(a - b);
    case Builtin::kMul: return Value(a * b);
    case Builtin::kDiv:
      if (b == 0) return Error(11);
      return Value(a / b);
    case Builtin::kPow: return Power(a, b);
    case Builtin::kAbs: return Value(std::fabs(b));
    case Builtin::kSqr:
      if (b < 0) return Error(12);
      return Value(std::sqrt(b));
    case Builtin::kSin: return Value(std::sin(b));
    case Builtin::kCos: return Value(std::cos(b));
    case Builtin::kTan: return Value(std::tan(b));
    case Builtin::kExp: return Value(std::exp(b));
    case Builtin::kLn:
      if (b <= 0) return Error(13);
      return Value(std::log(b));
    case Builtin::kLog:
      if (b <= 0) return Error(13);
      return Value(std::log(b) / std::log(10.0));
    case Builtin::kSinh: return Value((std::exp(b) - std::exp(-b)) / 2);
    case Builtin::kCosh: return Value((std::exp(b) + std::exp(-b)) / 2);
    case Builtin::kTanh: {
      double p = std::exp(b), q = std::exp(-b);
      return Value((p - q) / (p + q));
    }
    case Builtin::kAsin: {
      if (b > 1 || b < -1) return Error(15);
      double r = kPi15 / 2 - ArcCosPoly(std::fabs(b));
      return Value(b < 0 ? -r : r);
    }
    case Builtin::kAcos: {
      if (b > 1 || b < -1) return Error(15);
      double q = ArcCosPoly(std::fabs(b));
      return Value(b >= 0 ? q : kPi15 - q);
    }
    case Builtin::kAtan: return Value(std::atan(b));
    case Builtin::kFact: return Factorial(b);
    case Builtin::kErf: return Erf(b);
    case Builtin::kGamma: return Gamma(b);
    case Builtin::kPerm: {
      int32_t p = 0;
      return Permutation(a, b, p);
    }
    case Builtin::kComb: {
      int32_t p = 0;
      Applied perm = Permutation(a, b, p);
      if (perm.status != 0) return perm;
      Applied f = Factorial(b);
      if (f.status != 0) return f;
      return Value(static_cast<double>(p) / f.value);
    }
    case Builtin::kJn: return Jn(a, b);
    case Builtin::kYn: return Yn(a, b);
    case Builtin::kPn: return Pn(a, b);
    case Builtin::kRandom:
    case Builtin::kNone: break;
  }
  return Error(4);
}

}  // namespace merida

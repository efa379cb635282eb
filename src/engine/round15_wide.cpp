// The 15-digit read-back at magnitudes outside the table of the inline path: in integers, and
// where the processor fuses a multiply and an add, in doubles with exactly known errors.
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "engine/number_text.h"

namespace merida::detail {
namespace {

using U128 = unsigned __int128;

// 10^q as m * 2^exp with m a 128-bit integer whose top bit is set, truncated. Built by steps
// of ten from 10^0, each truncating, so m lies at most a few hundred units below the true
// value (exact for 0 <= q <= 55, where 5^q fits).
struct Pow10Wide {
  U128 m;
  int exp;
};
constexpr int kWideMin = -330, kWideMax = 330;
struct Pow10WideTable {
  Pow10Wide v[kWideMax - kWideMin + 1];
};

constexpr int BitLength(U128 x) {
  int n = 0;
  while (x) x >>= 1, ++n;
  return n;
}

constexpr Pow10WideTable MakeWideTable() {
  Pow10WideTable t{};
  const U128 one = U128{1} << 127;
  t.v[-kWideMin] = {one, -127};
  for (int q = 1; q <= kWideMax; ++q) {
    const Pow10Wide& p = t.v[q - 1 - kWideMin];
    const U128 low = static_cast<uint64_t>(p.m) * U128{10};
    const U128 high = (p.m >> 64) * 10 + (low >> 64);  // the product is high * 2^64 + low's low half
    const int r = BitLength(high) - 64;
    const U128 m = (high << (64 - r)) | (static_cast<uint64_t>(low) >> r);
    t.v[q - kWideMin] = {m, p.exp + r};
  }
  for (int q = -1; q >= kWideMin; --q) {
    const Pow10Wide& p = t.v[q + 1 - kWideMin];
    const U128 whole = p.m / 10, rem = p.m % 10;
    const int r = 128 - BitLength(whole);
    t.v[q - kWideMin] = {(whole << r) | ((rem << r) / 10), p.exp - r};
  }
  return t;
}
constexpr Pow10WideTable kWide = MakeWideTable();

constexpr double kExactPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The top 128 bits of x * m (x below 2^64), as the floor of the product over 2^64. The true
// product of x and 10^q is at most x * 2^9 above x * m, so the floor is at most 2 below.
U128 TopProduct(uint64_t x, U128 m) {
  return U128{x} * static_cast<uint64_t>(m >> 64) + ((U128{x} * static_cast<uint64_t>(m)) >> 64);
}

// True when a fraction, as its high part (of `bits` bits, 1..63) and 64 low bits, is too near
// a half to round without the exact product. Halves of 64 bits keep the shifts short.
bool NearHalf(uint64_t high, uint64_t low, int bits) {
  const uint64_t half = uint64_t{1} << (bits - 1);
  return (high == half && low <= 4) || (high == half - 1 && low >= ~uint64_t{0} - 4);
}

}  // namespace

[[gnu::always_inline]] inline bool Round15WideInline(double v, double& out) {
  const uint64_t bits = std::bit_cast<uint64_t>(v) & ~(uint64_t{1} << 63);
  const int biased = static_cast<int>(bits >> 52);
  if (biased == 0 || biased >= 0x7FE) return false;  // subnormals; the top binade may overflow
  const uint64_t m = (bits & ((uint64_t{1} << 52) - 1)) | (uint64_t{1} << 52);
  const int k = biased - 1075;  // |v| = m * 2^k
  int e = ((biased - 1023) * 78913) >> 18;  // the binade's lowest decade
  {
    // One comparison with the next power of ten (truncated: a value on it may take the text).
    const Pow10Wide& next = kWide.v[e + 1 - kWideMin];
    const int a = k - 11, b = next.exp + 64;
    e += a > b || (a == b && (m << 11) >= static_cast<uint64_t>(next.m >> 64));
  }
  // n = |v| / 10^(e-14) rounded: its 15 digits.
  const Pow10Wide& p = kWide.v[14 - e - kWideMin];
  const U128 y = TopProduct(m, p.m);
  const uint64_t yh = static_cast<uint64_t>(y >> 64), yl = static_cast<uint64_t>(y);
  const int shift = -(k + p.exp + 128);  // fraction bits in the high half of y
  if (shift < 1 || shift > 63) return false;
  const uint64_t frac = yh & ((uint64_t{1} << shift) - 1), half = uint64_t{1} << (shift - 1);
  if (NearHalf(frac, yl, shift)) return false;
  const uint64_t n = (yh >> shift) + (frac > half || (frac == half && yl != 0));
  if (n < 100000000000000ull || n > 1000000000000000ull) return false;
  const int d = e - 14;
  double r;
  if (d >= 0 && d <= 22) {
    r = static_cast<double>(n) * kExactPow10[d];
  } else if (d < 0 && d >= -22) {
    r = static_cast<double>(n) / kExactPow10[-d];
  } else {
    if (d < kWideMin || d > kWideMax) return false;
    const Pow10Wide& scale = kWide.v[d - kWideMin];
    const U128 w = TopProduct(n, scale.m);
    const uint64_t wh = static_cast<uint64_t>(w >> 64), wl = static_cast<uint64_t>(w);
    if (wh == 0) return false;
    const int drop = 64 - std::countl_zero(wh) + 64 - 53;  // bits below the 53 kept
    if (drop < 1 || drop > 63) return false;
    const uint64_t rest = wl & ((uint64_t{1} << drop) - 1), restHalf = uint64_t{1} << (drop - 1);
    if (rest + 4 >= restHalf && rest <= restHalf + 4) return false;
    uint64_t mant = ((wh << (64 - drop)) | (wl >> drop)) + (rest > restHalf ? 1 : 0);
    int exp2 = drop + scale.exp + 64;
    if (mant >> 53) mant >>= 1, ++exp2;
    const int rb = exp2 + 52 + 1023;
    if (rb <= 0 || rb >= 0x7FF) return false;
    r = std::bit_cast<double>((static_cast<uint64_t>(rb) << 52) | (mant & ((uint64_t{1} << 52) - 1)));
  }
  out = std::copysign(r, v);
  return true;
}

bool Round15Wide(double v, double& out) { return Round15WideInline(v, out); }

namespace {
double Round15Integer(double v) {
  double r;
  if (Round15WideInline(v, r)) return r;
  return Round15Slow(v);  // subnormals, the top binade, a 16th digit too near a half
}
}  // namespace

namespace {

// m * 2^exp rounded to a double (halves to even); the result must be normal.
constexpr double ToDouble(U128 m, int exp, bool negative) {
  if (m == 0) return negative ? -0.0 : 0.0;
  const int n = BitLength(m);
  uint64_t top;
  if (n > 53) {
    const int shift = n - 53;
    top = static_cast<uint64_t>(m >> shift);
    const U128 rest = m & ((U128{1} << shift) - 1), half = U128{1} << (shift - 1);
    exp += shift;
    if (rest > half || (rest == half && (top & 1))) ++top;
    if (top >> 53) top >>= 1, ++exp;
  } else {
    top = static_cast<uint64_t>(m) << (53 - n);
    exp -= 53 - n;
  }
  if (exp + 52 + 1023 <= 0 || exp + 52 + 1023 >= 0x7FF) throw "not a normal double";  // fails the build
  const uint64_t biased = static_cast<uint64_t>(exp + 52 + 1023);
  return std::bit_cast<double>((negative ? uint64_t{1} << 63 : 0) | (biased << 52) | (top & ((uint64_t{1} << 52) - 1)));
}

// The binades read back in doubles: their decades' scales and reciprocals stay normal.
constexpr int kFusedFirst = 1023 - 930, kFusedLast = 1023 + 960;  // about 1e-280 .. 1e289
constexpr int kDecadeMin = -290, kDecadeMax = 300;  // 10^s, its remainder and 10^-s all normal

struct FusedDecadeTable {
  FusedDecade v[kDecadeMax - kDecadeMin + 1];
};
struct FusedBinadeTable {
  FusedBinade v[kFusedLast - kFusedFirst + 1];
};

constexpr FusedDecadeTable MakeFusedDecades() {
  FusedDecadeTable t{};
  for (int s = kDecadeMin; s <= kDecadeMax; ++s) {
    const Pow10Wide& p = kWide.v[s - kWideMin];
    const double h = ToDouble(p.m, p.exp, false);
    // The part of 10^s that h leaves out, from the same 128 bits.
    const uint64_t hm = (std::bit_cast<uint64_t>(h) & ((uint64_t{1} << 52) - 1)) | (uint64_t{1} << 52);
    const int hexp = static_cast<int>(std::bit_cast<uint64_t>(h) >> 52) - 1075;
    const U128 aligned = U128{hm} << (hexp - p.exp);
    const bool below = p.m < aligned;
    const double l = ToDouble(below ? aligned - p.m : p.m - aligned, p.exp, below);
    const Pow10Wide& r = kWide.v[-s - kWideMin];
    t.v[s - kDecadeMin] = {h, l, ToDouble(r.m, r.exp, false)};
  }
  return t;
}
constexpr FusedDecadeTable kFusedDecades = MakeFusedDecades();

constexpr FusedBinadeTable MakeFusedBinades() {
  FusedBinadeTable t{};
  // 10^e <= 2^power (10^e, e != 0, is never a power of two).
  auto atMost = [](int e, int power) { return e == 0 ? power >= 0 : kWide.v[e - kWideMin].exp + 128 <= power; };
  for (int b = kFusedFirst; b <= kFusedLast; ++b) {
    const int k = b - 1023;  // the binade is [2^k, 2^(k+1))
    int e = (k * 78913) >> 18;  // its lowest decade: the largest e with 10^e <= 2^k
    while (!atMost(e, k)) --e;
    while (atMost(e + 1, k)) ++e;
    const bool split = atMost(e + 1, k + 1) && !(e + 1 == 0 && k + 1 == 0);  // 10^(e+1) < 2^(k+1)
    const Pow10Wide& next = kWide.v[e + 1 - kWideMin];
    t.v[b - kFusedFirst] = {split ? ToDouble(next.m, next.exp, false) : std::numeric_limits<double>::infinity(),
                            &kFusedDecades.v[14 - e - kDecadeMin]};
  }
  return t;
}
constexpr FusedBinadeTable kFusedBinades = MakeFusedBinades();

}  // namespace

const FusedBinade* FusedBinadeOf(uint64_t binade) {
  if (binade < kFusedFirst || binade > kFusedLast) return nullptr;
  return &kFusedBinades.v[binade - kFusedFirst];
}

bool FusedReadBackAvailable() {
#if defined(__x86_64__) || defined(__i386__)
  return __builtin_cpu_supports("fma");
#else
  return true;
#endif
}

#if defined(__x86_64__) || defined(__i386__)
#define MERIDA_FUSED [[gnu::target("fma")]]
#else
#define MERIDA_FUSED
#endif

// v * 10^s = t + e with e known to about 2^-57, so the 15-digit integer w and d = w - v * 10^s
// follow; the read-back is v + d / 10^s, one rounding from the exact value unless that lies
// within 2^-40 of a rounding boundary, which the text decides.
MERIDA_FUSED double Round15Fused(double v, const FusedBinade& b) {
  const double a = std::fabs(v);
  const FusedDecade& q = a >= b.next ? b.below[-1] : b.below[0];
  const double t = a * q.h;
  const double e = std::fma(a, q.l, std::fma(a, q.h, -t));
  constexpr double kTwo52 = 4503599627370496.0;
  const double w = (t + kTwo52) - kTwo52;
  double d = (w - t) - e;  // w - t is exact: both lie within 1/2 on a grid of 2^-6 or finer
  // w is the other neighbour when t and the exact product lie on either side of a half.
  d = d > 0.5 ? d - 1 : d < -0.5 ? d + 1 : d;
  const double r = std::fma(d, q.g, a);
  const double rho = std::fma(d, q.g, -(r - a));  // a + d * g - r; r - a is exact
  const uint64_t rbits = std::bit_cast<uint64_t>(r);
  const double ulp = std::bit_cast<double>((rbits & (uint64_t{0x7FF} << 52)) - (uint64_t{52} << 52));
  if (std::fabs(std::fabs(d) - 0.5) < 0x1p-30 || std::fabs(std::fabs(rho) - 0.5 * ulp) < 0x1p-40 * ulp ||
      (rbits & ((uint64_t{1} << 52) - 1)) == 0) [[unlikely]] {
    return Round15Integer(v);
  }
  return std::copysign(r, v);
}

// Zero, subnormals, infinities, NaN and magnitudes outside [1e-7, 1e15).
double Round15Rare(double v) {
  if (v == 0) return 0.0;  // "0", also for -0
  if (!std::isfinite(v)) return v;
  const FusedBinade* b = FusedBinadeOf((std::bit_cast<uint64_t>(v) >> 52) & 0x7FF);
  return b && FusedReadBackAvailable() ? Round15Fused(v, *b) : Round15Integer(v);
}

}  // namespace merida::detail

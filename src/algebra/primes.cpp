// Factorisation by trial division, a segmented sieve for the listing, and Euclid's algorithm.
#include "algebra/primes.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/number_text.h"

namespace merida {
namespace {

// Odd numbers per segment: 64 KiB of flags stays in the second-level cache.
constexpr int64_t kSegmentOdds = 1 << 16;

bool Stopped(const std::function<bool()>& stop) { return stop && stop(); }

}  // namespace

std::optional<int32_t> ReadInteger(std::string_view text) {
  auto value = ReadNumber(text);
  if (!value) return std::nullopt;
  return ToInt32(*value);
}

char* WriteIntegerText(int64_t v, char* out) {
  char digits[24];
  int n = 0;
  uint64_t u = v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
  do {
    digits[n++] = static_cast<char>('0' + u % 10);
    u /= 10;
  } while (u != 0);
  *out++ = v < 0 ? '-' : ' ';
  while (n > 0) *out++ = digits[--n];
  return out;
}

std::string IntegerText(int64_t v) {
  char buf[24];
  return std::string(buf, WriteIntegerText(v, buf));
}

std::vector<PrimeFactor> Factorise(int32_t n) {
  std::vector<PrimeFactor> factors;
  if (n < 2) return factors;
  const auto limit = static_cast<int32_t>(std::nearbyint(std::sqrt(static_cast<double>(n))));
  int32_t d = 2;
  bool justDivided = false;
  while (d <= limit) {
    if (n % d == 0) {
      n /= d;
      if (!justDivided) factors.push_back({d, 0});
      ++factors.back().exponent;
      justDivided = true;
    } else {
      justDivided = false;
      ++d;
    }
  }
  if (n != 1) factors.push_back({n, 0});
  return factors;
}

std::vector<std::string> FactorLines(std::string_view boxText) {
  std::vector<std::string> lines;
  auto n = ReadInteger(boxText);
  if (!n) return lines;
  for (const PrimeFactor& f : Factorise(*n)) {
    std::string line = IntegerText(f.prime);
    if (f.exponent >= 2) line += "＾" + IntegerText(f.exponent);
    lines.push_back(std::move(line));
  }
  return lines;
}

std::string CountLine(int64_t count) { return IntegerText(count) + " 個ある"; }

PrimeSieve::PrimeSieve(int32_t limit, int32_t from) : limit_(limit), next_(std::max<int64_t>(from, 2)) {
  if (next_ > 2 && next_ % 2 == 0) ++next_;
  if (next_ > limit_) return;
  const auto root = static_cast<int32_t>(std::sqrt(static_cast<double>(limit_)));
  std::vector<uint8_t> composite(static_cast<size_t>(root) + 1, 0);
  for (int32_t p = 3; p <= root; p += 2) {
    if (composite[static_cast<size_t>(p)]) continue;
    if (static_cast<int64_t>(p) * p > limit_) break;
    basePrimes_.push_back(p);
    // The first odd multiple of p that is at least p * p and not below the start.
    int64_t first = std::max<int64_t>(static_cast<int64_t>(p) * p, (next_ + p - 1) / p * p);
    if (first % 2 == 0) first += p;
    nextMultiple_.push_back(first);
    for (int64_t m = static_cast<int64_t>(p) * p; m <= root; m += 2 * p) composite[static_cast<size_t>(m)] = 1;
  }
  segment_.resize(static_cast<size_t>(kSegmentOdds));
}

bool PrimeSieve::next(std::vector<int32_t>& out) {
  out.clear();
  if (next_ > limit_) return false;
  if (next_ == 2) {
    out.push_back(2);
    next_ = 3;
    if (next_ > limit_) return true;
  }
  const int64_t low = next_;  // always odd from here
  const int64_t high = std::min(limit_, low + 2 * (kSegmentOdds - 1));
  const int64_t odds = (high - low) / 2 + 1;
  std::memset(segment_.data(), 0, static_cast<size_t>(odds));
  uint8_t* flags = segment_.data();
  for (size_t i = 0; i < basePrimes_.size(); ++i) {
    int64_t m = nextMultiple_[i];
    if (m > high) continue;
    const int64_t step = basePrimes_[i];  // one odd multiple to the next, in flag positions
    int64_t k = (m - low) / 2;
    for (; k < odds; k += step) flags[k] = 1;
    nextMultiple_[i] = low + 2 * k;
  }
  for (int64_t k = 0; k < odds; ++k) {
    if (!flags[k]) out.push_back(static_cast<int32_t>(low + 2 * k));
  }
  next_ = high + 2;
  return true;
}

void PrimeStore::clear() {
  hasTwo_ = false;
  oddCount_ = 0;
  last_ = 0;
  anchors_.clear();
  halfGaps_.clear();
}

void PrimeStore::append(const std::vector<int32_t>& primes) {
  for (int32_t p : primes) {
    if (p == 2) {
      hasTwo_ = true;
      continue;
    }
    if (oddCount_ % kAnchorEvery == 0) {
      anchors_.push_back(p);
      halfGaps_.push_back(0);
    } else {
      halfGaps_.push_back(static_cast<uint8_t>((p - last_) / 2));
    }
    last_ = p;
    ++oddCount_;
  }
}

int32_t PrimeStore::at(size_t i) const {
  if (hasTwo_) {
    if (i == 0) return 2;
    --i;
  }
  size_t first = i - i % kAnchorEvery;
  int32_t p = anchors_[first / kAnchorEvery];
  for (size_t j = first + 1; j <= i; ++j) p += 2 * halfGaps_[j];
  return p;
}

int64_t ListPrimeLines(std::string_view boxText, const std::function<void(std::string_view)>& line,
                       const std::function<bool()>& stop) {
  auto n = ReadInteger(boxText);
  if (!n || *n <= 1) return 0;
  PrimeSieve sieve(*n);
  std::vector<int32_t> primes;
  int64_t count = 0;
  char buf[24];
  while (sieve.next(primes)) {
    for (int32_t p : primes) {
      line(std::string_view(buf, static_cast<size_t>(WriteIntegerText(p, buf) - buf)));
    }
    count += static_cast<int64_t>(primes.size());
    if (Stopped(stop)) return count;
  }
  line(CountLine(count));
  return count + 1;
}

std::optional<GcmResult> GreatestCommonMeasure(int32_t a, int32_t b, const std::function<bool()>& stop) {
  if (a <= 1 || b <= 1) return std::nullopt;
  int32_t larger = std::max(a, b), smaller = std::min(a, b);
  while (smaller != 0) {
    if (Stopped(stop)) return std::nullopt;
    int32_t r = larger % smaller;
    larger = smaller;
    smaller = r;
  }
  const int32_t g = larger;
  const int64_t lcm = static_cast<int64_t>(a / g) * b;
  if (lcm > INT32_MAX) return std::nullopt;
  return GcmResult{g, static_cast<int32_t>(lcm)};
}

std::optional<std::vector<std::string>> GcmLines(std::string_view text1, std::string_view text2, bool japanese,
                                                 const std::function<bool()>& stop) {
  auto a = ReadInteger(text1);
  auto b = ReadInteger(text2);
  if (!a || !b || *a <= 1 || *b <= 1) return std::nullopt;
  auto r = GreatestCommonMeasure(*a, *b, stop);
  if (!r) {
    if (Stopped(stop)) return std::nullopt;
    return std::vector<std::string>{};
  }
  return std::vector<std::string>{japanese ? "最大公約数." : "G.C.M.", IntegerText(r->gcd), japanese ? "最小公倍数." : "L.C.M.",
          IntegerText(r->lcm)};
}

}  // namespace merida

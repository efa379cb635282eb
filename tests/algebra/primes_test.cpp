// P Factor, the prime listing against trial division, the compact store, G.C.M. and L.C.M.
#include "algebra/primes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

namespace merida {
namespace {

using Lines = std::vector<std::string>;

struct FactorCase {
  const char* text;
  Lines lines;
};

class FactorTest : public ::testing::TestWithParam<FactorCase> {};

TEST_P(FactorTest, Lines) { EXPECT_EQ(FactorLines(GetParam().text), GetParam().lines) << GetParam().text; }

INSTANTIATE_TEST_SUITE_P(
    Numbers, FactorTest,
    ::testing::Values(FactorCase{"2", {" 2"}}, FactorCase{"3", {" 3"}}, FactorCase{"4", {" 2＾ 2"}},
                      FactorCase{"360", {" 2＾ 3", " 3＾ 2", " 5"}}, FactorCase{"97", {" 97"}},
                      FactorCase{"12", {" 2＾ 2", " 3"}}, FactorCase{"1024", {" 2＾ 10"}},
                      FactorCase{"2147483647", {" 2147483647"}},
                      FactorCase{"2147483646", {" 2", " 3＾ 2", " 7", " 11", " 31", " 151", " 331"}},
                      FactorCase{"2147483644", {" 2＾ 2", " 233", " 1103", " 2089"}},
                      FactorCase{"2147483641", {" 2699", " 795659"}},
                      FactorCase{"2147483640", {" 2＾ 3", " 3", " 5", " 29", " 43", " 113", " 127"}},
                      FactorCase{"2147395600", {" 2＾ 4", " 5＾ 2", " 7＾ 2", " 331＾ 2"}},
                      FactorCase{"2147302921", {" 149＾ 2", " 311＾ 2"}},
                      FactorCase{"1073741824", {" 2＾ 30"}},
                      FactorCase{" 360 ", {" 2＾ 3", " 3＾ 2", " 5"}}, FactorCase{"3.6E2", {" 2＾ 3", " 3＾ 2", " 5"}},
                      FactorCase{"12.5", {" 2＾ 2", " 3"}}, FactorCase{"1", {}}, FactorCase{"0", {}},
                      FactorCase{"-12", {}}, FactorCase{"", {}}, FactorCase{"abc", {}}, FactorCase{"12a", {}},
                      FactorCase{"2147483648", {}}, FactorCase{"1E10", {}}));

bool IsPrimeReference(int64_t m) {
  if (m < 2) return false;
  for (int64_t d = 2; d * d <= m; ++d)
    if (m % d == 0) return false;
  return true;
}

TEST(FactorTest, ProductsOfPrimesGiveBackEveryNumber) {
  for (int32_t n = 2; n <= 20000; ++n) {
    int64_t product = 1;
    int32_t previous = 1;
    for (const PrimeFactor& f : Factorise(n)) {
      ASSERT_TRUE(IsPrimeReference(f.prime)) << n;
      ASSERT_GT(f.prime, previous) << n;
      previous = f.prime;
      for (int e = 0; e < std::max<int>(f.exponent, 1); ++e) product *= f.prime;
    }
    ASSERT_EQ(product, n);
  }
}

TEST(FactorTest, LastFactorAboveTheLimitHasNoExponent) {
  auto f = Factorise(2 * 1073741789);  // 1073741789 is prime
  ASSERT_EQ(f.size(), 2u);
  EXPECT_EQ(f[1].prime, 1073741789);
  EXPECT_EQ(f[1].exponent, 0);
  EXPECT_EQ(f[0].exponent, 1);
}

// The listing as the window first did it: trial divisors 2, then 3, 5, 7, ... up to the
// square root rounded to the nearest integer.
Lines TrialDivisionListing(int32_t n) {
  Lines lines;
  if (n <= 1) return lines;
  lines.push_back(" 2");
  int64_t count = 1;
  for (int32_t m = 2; m <= n; ++m) {
    auto limit = static_cast<int32_t>(std::nearbyint(std::sqrt(static_cast<double>(m))));
    bool composite = false;
    int32_t d = 2;
    do {
      if (m % d == 0) {
        composite = true;
        break;
      }
      d = d == 2 ? 3 : d + 2;
    } while (d <= limit);
    if (!composite) {
      lines.push_back(" " + std::to_string(m));
      ++count;
    }
  }
  lines.push_back(" " + std::to_string(count) + " 個ある");
  return lines;
}

Lines Listing(const std::string& text, const std::function<bool()>& stop = {}) {
  Lines lines;
  ListPrimeLines(text, [&](std::string_view l) { lines.emplace_back(l); }, stop);
  return lines;
}

TEST(PrimeListingTest, SmallCases) {
  EXPECT_EQ(Listing("10"), (Lines{" 2", " 3", " 5", " 7", " 4 個ある"}));
  EXPECT_EQ(Listing("2"), (Lines{" 2", " 1 個ある"}));
  EXPECT_EQ(Listing("3"), (Lines{" 2", " 3", " 2 個ある"}));
  EXPECT_EQ(Listing("4"), (Lines{" 2", " 3", " 2 個ある"}));
  for (const char* nothing : {"1", "0", "-7", "", "ten", "3000000000"}) EXPECT_TRUE(Listing(nothing).empty()) << nothing;
}

TEST(PrimeListingTest, SameLinesAsTrialDivisionForEveryNumberUpToFiveThousand) {
  const Lines reference = TrialDivisionListing(5000);
  for (int32_t n = 2; n <= 5000; ++n) {
    Lines got = Listing(std::to_string(n));
    ASSERT_GE(got.size(), 2u);
    size_t primes = got.size() - 1;
    ASSERT_EQ(Lines(got.begin(), got.begin() + static_cast<long>(primes)),
              Lines(reference.begin(), reference.begin() + static_cast<long>(primes)))
        << n;
    if (primes < reference.size() - 1) {
      ASSERT_GT(std::stoi(reference[primes]), n) << n;  // no prime up to n left out
    }
    ASSERT_EQ(got.back(), " " + std::to_string(primes) + " 個ある");
  }
}

TEST(PrimeListingTest, SameLinesAsTrialDivisionAcrossSegmentBoundaries) {
  // One segment holds 65536 odd numbers: 3 .. 131073, then 131075 .. 262145.
  for (int32_t n : {131071, 131072, 131073, 131074, 131075, 131077, 262145, 262147, 300007}) {
    EXPECT_EQ(Listing(std::to_string(n)), TrialDivisionListing(n)) << n;
  }
}

TEST(PrimeListingTest, CountsOfKnownRanges) {
  EXPECT_EQ(Listing("1000000").back(), " 78498 個ある");
  EXPECT_EQ(Listing("10000000").back(), " 664579 個ある");
}

TEST(PrimeListingTest, TopOfTheThirtyTwoBitRange) {
  // Two segments below the top, against trial division.
  const int32_t from = 2147483647 - 200000;
  PrimeSieve sieve(2147483647, from);
  std::vector<int32_t> primes, all;
  while (sieve.next(primes)) all.insert(all.end(), primes.begin(), primes.end());
  std::vector<int32_t> expected;
  for (int64_t m = from; m <= 2147483647; ++m)
    if (IsPrimeReference(m)) expected.push_back(static_cast<int32_t>(m));
  EXPECT_EQ(all, expected);
  EXPECT_EQ(all.back(), 2147483647);
}

TEST(PrimeListingTest, StopEndsWithoutTheCount) {
  int asked = 0;
  Lines got = Listing("1000000", [&] { return ++asked == 2; });
  EXPECT_EQ(asked, 2);
  ASSERT_FALSE(got.empty());
  EXPECT_EQ(got.back().find("個ある"), std::string::npos);
  Lines all = Listing("1000000");
  EXPECT_LT(got.size(), all.size() - 1);
  EXPECT_EQ(got, Lines(all.begin(), all.begin() + static_cast<long>(got.size())));
}

TEST(PrimeSieveTest, StartsAnywhere) {
  for (int32_t from : {0, 2, 3, 4, 9, 10, 25, 97, 98, 130000, 131074}) {
    PrimeSieve sieve(140000, from);
    std::vector<int32_t> primes, all;
    while (sieve.next(primes)) all.insert(all.end(), primes.begin(), primes.end());
    std::vector<int32_t> expected;
    for (int32_t m = std::max(from, 2); m <= 140000; ++m)
      if (IsPrimeReference(m)) expected.push_back(m);
    EXPECT_EQ(all, expected) << from;
  }
}

TEST(PrimeSieveTest, SegmentsAreIncreasingAndEndOnce) {
  PrimeSieve sieve(400000);
  std::vector<int32_t> primes;
  int32_t previous = 0;
  int segments = 0;
  while (sieve.next(primes)) {
    ++segments;
    for (int32_t p : primes) {
      ASSERT_GT(p, previous);
      previous = p;
    }
  }
  EXPECT_GE(segments, 3);
  EXPECT_TRUE(sieve.done());
  EXPECT_FALSE(sieve.next(primes));
  EXPECT_TRUE(primes.empty());
  PrimeSieve none(1);
  EXPECT_TRUE(none.done());
  EXPECT_FALSE(none.next(primes));
}

TEST(PrimeStoreTest, GivesBackEveryPrimeInOrder) {
  PrimeSieve sieve(2000000);
  std::vector<int32_t> primes, all;
  PrimeStore store;
  while (sieve.next(primes)) {
    store.append(primes);
    all.insert(all.end(), primes.begin(), primes.end());
  }
  ASSERT_EQ(store.size(), all.size());
  for (size_t i = 0; i < all.size(); ++i) ASSERT_EQ(store.at(i), all[i]) << i;
  store.clear();
  EXPECT_EQ(store.size(), 0u);
  store.append({3, 5, 7});
  ASSERT_EQ(store.size(), 3u);
  EXPECT_EQ(store.at(0), 3);
  EXPECT_EQ(store.at(2), 7);
}

TEST(PrimeStoreTest, LargestGapsBelowTwoToTheThirtyOne) {
  // 1453168141 is followed by a gap of 292, the widest below 2^31.
  PrimeStore store;
  store.append({1453168141, 1453168433, 1453168439});
  EXPECT_EQ(store.at(1), 1453168433);
  EXPECT_EQ(store.at(2), 1453168439);
  PrimeStore top;
  top.append({2147483629, 2147483647});
  EXPECT_EQ(top.at(1), 2147483647);
}

TEST(IntegerTextTest, ListForm) {
  EXPECT_EQ(IntegerText(0), " 0");
  EXPECT_EQ(IntegerText(7), " 7");
  EXPECT_EQ(IntegerText(-5), "-5");
  EXPECT_EQ(IntegerText(2147483647), " 2147483647");
  EXPECT_EQ(IntegerText(-2147483648LL), "-2147483648");
  EXPECT_EQ(CountLine(4), " 4 個ある");
}

struct GcmCase {
  const char* a;
  const char* b;
  std::optional<Lines> english;  // nullopt: nothing happens; empty: the list is cleared
};

class GcmTest : public ::testing::TestWithParam<GcmCase> {};

TEST_P(GcmTest, LinesInBothLanguages) {
  const GcmCase& c = GetParam();
  EXPECT_EQ(GcmLines(c.a, c.b, false), c.english);
  std::optional<Lines> japanese = c.english;
  if (japanese && !japanese->empty()) {
    (*japanese)[0] = "最大公約数.";
    (*japanese)[2] = "最小公倍数.";
  }
  EXPECT_EQ(GcmLines(c.a, c.b, true), japanese);
}

const Lines kCleared;

INSTANTIATE_TEST_SUITE_P(
    Pairs, GcmTest,
    ::testing::Values(GcmCase{"12", "18", Lines{"G.C.M.", " 6", "L.C.M.", " 36"}},
                      GcmCase{"18", "12", Lines{"G.C.M.", " 6", "L.C.M.", " 36"}},
                      GcmCase{"7", "7", Lines{"G.C.M.", " 7", "L.C.M.", " 7"}},
                      GcmCase{"2", "3", Lines{"G.C.M.", " 1", "L.C.M.", " 6"}},
                      GcmCase{"46340", "46341", Lines{"G.C.M.", " 1", "L.C.M.", " 2147441940"}},
                      GcmCase{"2147483646", "2", Lines{"G.C.M.", " 2", "L.C.M.", " 2147483646"}},
                      GcmCase{"2147483647", "2147483647", Lines{"G.C.M.", " 2147483647", "L.C.M.", " 2147483647"}},
                      GcmCase{"100000", "99999", kCleared}, GcmCase{"2147483647", "2147483646", kCleared},
                      GcmCase{"65536", "32769", kCleared}, GcmCase{"1", "5", std::nullopt},
                      GcmCase{"5", "1", std::nullopt}, GcmCase{"0", "5", std::nullopt},
                      GcmCase{"-4", "6", std::nullopt}, GcmCase{"x", "6", std::nullopt},
                      GcmCase{"6", "", std::nullopt}));

TEST(GcmTest, StoppedRunLeavesTheListAlone) {
  int asked = 0;
  EXPECT_EQ(GcmLines("1071", "462", false, [&] { return ++asked > 1; }), std::nullopt);
}

TEST(GcmTest, AgreesWithTheStandardLibrary) {
  uint32_t state = 12345;
  auto next = [&] {
    state = state * 1103515245u + 12345u;
    return static_cast<int32_t>(2 + (state >> 8) % 200000);
  };
  for (int i = 0; i < 20000; ++i) {
    int32_t a = next(), b = next();
    auto r = GreatestCommonMeasure(a, b);
    int64_t lcm = std::lcm(static_cast<int64_t>(a), static_cast<int64_t>(b));
    if (lcm > INT32_MAX) {
      ASSERT_FALSE(r) << a << " " << b;
      continue;
    }
    ASSERT_TRUE(r) << a << " " << b;
    ASSERT_EQ(r->gcd, std::gcd(a, b));
    ASSERT_EQ(r->lcm, lcm);
  }
}

TEST(GcmTest, StopEndsWithoutOutput) {
  int asked = 0;
  EXPECT_FALSE(GreatestCommonMeasure(1071, 462, [&] { return ++asked > 1; }));
  EXPECT_EQ(asked, 2);
  EXPECT_TRUE(GreatestCommonMeasure(1071, 462, [] { return false; }));
}

}  // namespace
}  // namespace merida

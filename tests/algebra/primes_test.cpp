// P Factor, the prime listing against trial division, the compact store, G.C.M. and L.C.M.
#include "algebra/primes.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace merida {
namespace {

using Lines = std::vector<std::string>;

bool IsPrimeReference(int64_t m) {
  if (m < 2) return false;
  for (int64_t d = 2; d * d <= m; ++d)
    if (m % d == 0) return false;
  return true;
}

TEST(FactorTest, Lines) {
  const std::pair<const char*, Lines> cases[] = {
      {"2", {" 2"}}, {"4", {" 2＾ 2"}}, {"360", {" 2＾ 3", " 3＾ 2", " 5"}}, {"97", {" 97"}}, {"1073741824", {" 2＾ 30"}},
      {"2147483647", {" 2147483647"}}, {"2147483641", {" 2699", " 795659"}},
      {"2147395600", {" 2＾ 4", " 5＾ 2", " 7＾ 2", " 331＾ 2"}}, {"3.6E2", {" 2＾ 3", " 3＾ 2", " 5"}},
      {"12.5", {" 2＾ 2", " 3"}}, {"1", {}}, {"-12", {}}, {"abc", {}}, {"2147483648", {}}};
  for (const auto& [text, lines] : cases) EXPECT_EQ(FactorLines(text), lines) << text;
  // The last factor, above the square root, carries no exponent.
  auto f = Factorise(2 * 1073741789);  // 1073741789 is prime
  ASSERT_EQ(f.size(), 2u);
  EXPECT_EQ(std::tuple(f[0].exponent, f[1].prime, f[1].exponent), std::tuple(1, 1073741789, 0));
  const std::pair<int64_t, const char*> texts[] = {
      {0, " 0"}, {-5, "-5"}, {2147483647, " 2147483647"}, {-2147483648LL, "-2147483648"}};
  for (auto [v, text] : texts) EXPECT_EQ(IntegerText(v), text);
  EXPECT_EQ(CountLine(4), " 4 個ある");
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

Lines Listing(const std::string& text, const std::function<bool()>& stop = {}) {
  Lines lines;
  ListPrimeLines(text, [&](std::string_view l) { lines.emplace_back(l); }, stop);
  return lines;
}

std::vector<int32_t> Sieved(int32_t limit, int32_t from) {
  PrimeSieve sieve(limit, from);
  std::vector<int32_t> primes, all;
  while (sieve.next(primes)) all.insert(all.end(), primes.begin(), primes.end());
  return all;
}

std::vector<int32_t> Reference(int64_t from, int64_t to) {
  std::vector<int32_t> out;
  for (int64_t m = from; m <= to; ++m)
    if (IsPrimeReference(m)) out.push_back(static_cast<int32_t>(m));
  return out;
}

TEST(PrimeListingTest, EveryPrimeUpToTheNumberThenTheCountUnlessStopped) {
  const std::vector<int32_t> primes = Reference(2, 300007);
  auto expected = [&](int32_t n) {
    Lines lines;
    for (size_t k = 0; k < primes.size() && primes[k] <= n; ++k) {
      lines.push_back(std::string(" ").append(std::to_string(primes[k])));
    }
    lines.push_back(std::string(" ").append(std::to_string(lines.size())).append(" 個ある"));
    return lines;
  };
  for (int32_t n = 2; n <= 5000; ++n) ASSERT_EQ(Listing(std::to_string(n)), expected(n)) << n;
  // One segment holds 65536 odd numbers: 3 .. 131073, then 131075 .. 262145.
  for (int32_t n : {131071, 131072, 131073, 131074, 131075, 131077, 262145, 262147, 300007}) {
    EXPECT_EQ(Listing(std::to_string(n)), expected(n)) << n;
  }
  const Lines all = Listing("1000000");
  EXPECT_EQ(all.back(), " 78498 個ある");
  EXPECT_EQ(Listing("10000000").back(), " 664579 個ある");
  for (const char* nothing : {"1", "-7", "ten", "3000000000"}) EXPECT_TRUE(Listing(nothing).empty()) << nothing;
  // A stop ends the listing without the count.
  int asked = 0;
  const Lines got = Listing("1000000", [&] { return ++asked == 2; });
  EXPECT_TRUE(asked == 2 && !got.empty() && got.size() < all.size() - 1) << asked << " " << got.size();
  EXPECT_EQ(got, Lines(all.begin(), all.begin() + static_cast<long>(got.size())));
}

TEST(PrimeSieveTest, StartsAnywhereUpToTheTopOfTheRange) {
  for (int32_t from : {0, 2, 3, 4, 9, 10, 25, 97, 98, 130000, 131074}) {
    EXPECT_EQ(Sieved(140000, from), Reference(from, 140000)) << from;
  }
  // Two segments below the top of the 32-bit range.
  EXPECT_EQ(Sieved(2147483647, 2147483647 - 200000), Reference(2147483647 - 200000, 2147483647));
  PrimeSieve sieve(400000);
  std::vector<int32_t> primes;
  int segments = 0;
  while (sieve.next(primes)) ++segments;
  EXPECT_TRUE(segments >= 3 && sieve.done()) << segments;
  EXPECT_TRUE(!sieve.next(primes) && primes.empty());  // ends once, leaving nothing
  PrimeSieve none(1);
  EXPECT_TRUE(none.done() && !none.next(primes));
}

TEST(PrimeStoreTest, GivesBackEveryPrimeInOrder) {
  std::vector<int32_t> all = Sieved(2000000, 0);
  PrimeStore store;
  store.append(std::vector<int32_t>(all.begin(), all.begin() + 1000));
  store.append(std::vector<int32_t>(all.begin() + 1000, all.end()));
  ASSERT_EQ(store.size(), all.size());
  for (size_t i = 0; i < all.size(); ++i) ASSERT_EQ(store.at(i), all[i]) << i;
  // After clearing, the store starts afresh without 2; 1453168141 is followed by the widest gap
  // below 2^31, 292.
  for (const std::vector<int32_t>& primes : std::vector<std::vector<int32_t>>{
           {3, 5, 7}, {1453168141, 1453168433, 1453168439}, {2147483629, 2147483647}}) {
    store.clear();
    EXPECT_EQ(store.size(), 0u);
    store.append(primes);
    for (size_t i = 0; i < primes.size(); ++i) EXPECT_EQ(store.at(i), primes[i]);
  }
}

TEST(GcmTest, LinesInBothLanguages) {
  // An empty G.C.M. clears the list (the L.C.M. is beyond 32 bits); none leaves it alone.
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"12", "18", " 6", " 36"},      {"7", "7", " 7", " 7"},         {"2", "3", " 1", " 6"},
      {"46340", "46341", " 1", " 2147441940"}, {"2147483647", "2147483647", " 2147483647", " 2147483647"},
      {"100000", "99999", "", ""},    {"65536", "32769", "", ""},     {"1", "5", nullptr, nullptr},
      {"5", "1", nullptr, nullptr},   {"x", "6", nullptr, nullptr},   {"6", "", nullptr, nullptr}};
  for (auto [a, b, gcd, lcm] : cases) {
    std::optional<Lines> want;
    if (gcd) want = *gcd ? Lines{"G.C.M.", gcd, "L.C.M.", lcm} : Lines{};
    EXPECT_EQ(GcmLines(a, b, false), want) << a << " " << b;
    if (want && !want->empty()) (*want)[0] = "最大公約数.", (*want)[2] = "最小公倍数.";
    EXPECT_EQ(GcmLines(a, b, true), want) << a << " " << b;
  }
  int asked = 0;  // a stopped run leaves the list alone
  EXPECT_EQ(GcmLines("1071", "462", false, [&] { return ++asked > 1; }), std::nullopt);
}

TEST(GcmTest, AgreesWithTheStandardLibrary) {
  std::mt19937 g(12345);
  std::uniform_int_distribution<int32_t> u(2, 200001);
  for (int i = 0; i < 20000; ++i) {
    const int32_t a = u(g), b = u(g);
    auto r = GreatestCommonMeasure(a, b);
    int64_t lcm = std::lcm(static_cast<int64_t>(a), static_cast<int64_t>(b));
    ASSERT_EQ(r.has_value(), lcm <= INT32_MAX) << a << " " << b;
    if (r) {
      ASSERT_EQ(std::tuple(r->gcd, r->lcm), std::tuple(std::gcd(a, b), lcm)) << a << " " << b;
    }
  }
  int asked = 0;  // a stop ends without output
  EXPECT_TRUE(!GreatestCommonMeasure(1071, 462, [&] { return ++asked > 1; }) && asked == 2) << asked;
  EXPECT_TRUE(GreatestCommonMeasure(1071, 462, [] { return false; }));
}

}  // namespace
}  // namespace merida

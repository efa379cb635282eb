// Number texts: plain and list forms, patterns, numeric test, lenient reading, 15-digit folding.
#include <bit>
#include <cstdio>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <random>

#include "engine/number_text.h"
#include "test_support.h"

namespace merida {
namespace {

TEST(NumberText, PlainAndListForms) {
  struct Row {
    double v;
    const char* plain;
    const char* list;
  };
  const Row rows[] = {
      {1.0 / 3, "0.333333333333333", " .333333333333333"},
      {-0.25, "-0.25", "-.25"},
      {0.5, "0.5", " .5"},
      {2, "2", " 2"},
      {1e-7, "1E-07", " 1E-07"},
      {std::pow(2.0, 100), "1.26765060022823E+30", " 1.26765060022823E+30"},
      {1e14, "100000000000000", " 100000000000000"},
      {1e15, "1E+15", " 1E+15"},
      {0.0001, "0.0001", " .0001"},
      {-0.0, "0", " 0"},
      {0, "0", " 0"},
      {-1e300, "-1E+300", "-1E+300"},
      {123456789012345678.0, "1.23456789012346E+17", " 1.23456789012346E+17"},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(PlainText(r.v), r.plain) << r.v;
    EXPECT_EQ(ListText(r.v), r.list) << r.v;
  }
  EXPECT_EQ(ListText(1.0f / 3), " .3333333");
  EXPECT_EQ(ListText(-0.5f), "-.5");
  EXPECT_EQ(ListText(2.0f), " 2");
  EXPECT_EQ(ListText(1e-9f), " 1E-09");
}

TEST(NumberText, FiveDecimalPattern) {
  struct Row {
    double v;
    const char* text;
  };
  const Row rows[] = {{0.25, ".25"}, {3, "3."}, {-1.5, "-1.5"}, {0, "."},         {123.456789, "123.45679"},
                      {-0.000001, "."}, {0.000005, ".00001"}, {-2.5, "-2.5"}, {1e6, "1000000."}};
  for (const Row& r : rows) EXPECT_EQ(Fixed5Text(r.v), r.text) << r.v;
}

TEST(NumberText, NumericTestAndReading) {
  struct Row {
    const char* text;
    bool numeric;
    double lenient;
  };
  const Row rows[] = {
      {"12", true, 12},     {" -3.5 ", true, -3.5}, {"+.5", true, 0.5},  {"5.", true, 5},
      {"1E5", true, 1e5},   {"1e-3", true, 1e-3},   {"2 ", true, 2},     {"", false, 0},
      {" ", false, 0},      {"abc", false, 0},      {"12abc", false, 12}, {"1E", false, 1},
      {"1E+", false, 1},    {".", false, 0},        {"-", false, 0},     {"1.2.3", false, 1.2},
      {"inf", false, 0},    {"nan", false, 0},      {"0x10", false, 0},  {"1e999", true, 0},
      {"1 2", false, 1},    {"--1", false, 0},      {"PI", false, 0},    {"１", false, 0},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(IsNumeric(r.text), r.numeric) << '"' << r.text << '"';
    EXPECT_EQ(ReadLenient(r.text), r.lenient) << '"' << r.text << '"';
    EXPECT_EQ(ReadNumber(r.text).has_value(), r.numeric) << '"' << r.text << '"';
  }
  EXPECT_EQ(*ReadNumber(" 0.1 "), 0.1);
  EXPECT_TRUE(std::isinf(*ReadNumber("1e999")));
  EXPECT_EQ(*ReadNumber("1e-999"), 0);
}

// Round15 must equal writing the value with 15 digits and reading it back.
TEST(NumberText, Round15MatchesTextRoundTrip) {
  auto slow = [](double v) {
    char buf[64];
    auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, 15);
    double out = 0;
    std::from_chars(buf, r.ptr, out);
    return out;
  };
  std::mt19937_64 rng(12345);
  std::uniform_real_distribution<double> mantissa(1, 10);
  std::uniform_int_distribution<int> exponent(-12, 40);
  // A site's remembered binade: every value either takes it or teaches a new one.
  detail::Round15Guess guess;
  for (int i = 0; i < 300000; ++i) {
    double v = mantissa(rng) * std::pow(10.0, exponent(rng));
    if (i % 2) v = -v;
    ASSERT_EQ(Round15(v), slow(v)) << std::hexfloat << v;
    ASSERT_EQ(Round15(v, guess), slow(v)) << std::hexfloat << v;
  }
  // Sweeps that keep to a binade for many points, as tools' x and a chain's values do, across
  // every magnitude and both signs, through zero and the ends of the table.
  for (double start : {1e-320, 1e-200, 3e-8, 0.999, -0.5, 7.0, 9e14, 4e15, 1e200, -1e300}) {
    double v = start;
    for (int i = 0; i < 20000; ++i, v *= 1.0007) {
      ASSERT_EQ(Round15(v, guess), slow(v)) << std::hexfloat << v;
    }
  }
  for (double v : {0.0, -0.0, 1.0, std::numeric_limits<double>::infinity(), 1.0}) {
    ASSERT_EQ(std::bit_cast<uint64_t>(Round15(v, guess)), std::bit_cast<uint64_t>(Round15(v))) << v;
  }
  EXPECT_TRUE(std::isnan(Round15(std::nan(""), guess)));
  // Values whose 16th digit sits exactly on a half, and neighbours of powers of ten.
  const double special[] = {100000000000000.5, 100000000000001.5, 0.1, 0.3, 1e15, 1e-7,
                            std::nextafter(1e15, 0.0), std::nextafter(1e-5, 1.0), std::nextafter(1e-5, 0.0),
                            9.999999999999999e22, 1e35, 123.456};
  for (double v : special) EXPECT_EQ(Round15(v), slow(v)) << std::hexfloat << v;
  EXPECT_EQ(Round15(0.0), 0.0);
  // Values next to a half in the 16th digit, where the product's rounding error decides.
  std::uniform_int_distribution<int64_t> digits(100000000000000, 999999999999999);
  std::uniform_int_distribution<int> places(0, 21);
  for (int i = 0; i < 200000; ++i) {
    double v = (static_cast<double>(digits(rng)) + 0.5) / std::pow(10.0, places(rng));
    for (double w : {v, std::nextafter(v, 0.0), std::nextafter(v, 1e300)}) {
      ASSERT_EQ(Round15(w), slow(w)) << std::hexfloat << w;
      ASSERT_EQ(Round15(-w), slow(-w)) << std::hexfloat << w;
      ASSERT_EQ(Round15(w, guess), slow(w)) << std::hexfloat << w;
    }
  }
}

// A number cell holds PlainText(v) and reads it back: Round15 must give exactly that value, bit
// for bit, over every kind of double (subnormals, the top of the range, zeros of both signs).
TEST(NumberText, Round15IsThePlainTextReadBack) {
  auto readBack = [](double v) {
    std::optional<double> r = ReadNumber(PlainText(v));
    return r ? *r : std::nan("");
  };
  auto same = [](double a, double b) { return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b); };
  std::mt19937_64 rng(20240611);
  for (int i = 0; i < 400000; ++i) {
    const double v = std::bit_cast<double>(rng());  // every exponent, subnormals included
    if (!std::isfinite(v)) continue;
    ASSERT_TRUE(same(Round15(v), readBack(v))) << std::hexfloat << v;
  }
  // Ties in the 16th digit, tiny and huge magnitudes, and the edges of the range.
  const double max = std::numeric_limits<double>::max();
  const double rows[] = {0.5, 2.5, 100000000000000.5, 100000000000001.5, 999999999999999.5, 0.1 + 0.2,
                         1e-7, std::nextafter(1e-7, 0.0), 1e15, std::nextafter(1e15, 0.0), 1e-300, 1e300,
                         5e-324, 1e-310, 2.2250738585072014e-308, std::nextafter(2.2250738585072014e-308, 0.0),
                         1.79769313486231e308, std::nextafter(1.797693134862315e308, 0.0), 1.797693134862315e308,
                         max, 123456789012345678.0, 0.000123456789012345678};
  for (double v : rows) {
    EXPECT_TRUE(same(Round15(v), readBack(v))) << std::hexfloat << v;
    EXPECT_TRUE(same(Round15(-v), readBack(-v))) << std::hexfloat << -v;
  }
  // Far from 1: exact 15-digit decimals, 16th digits on or next to a half (the product's
  // truncated power of ten cannot decide those), over the whole exponent range.
  char text[64];
  for (int exp10 = -300; exp10 <= 290; exp10 += 7) {
    for (const char* digits : {"123456789012345", "1234567890123455", "9999999999999995", "1000000000000005",
                               "9999999999999994999", "1000000000000000"}) {
      std::snprintf(text, sizeof text, "%se%d", digits, exp10);
      const double v = *ReadNumber(text);
      EXPECT_TRUE(same(Round15(v), readBack(v))) << text;
      EXPECT_TRUE(same(Round15(std::nextafter(v, 0.0)), readBack(std::nextafter(v, 0.0)))) << text;
    }
  }
  // The text of the largest doubles reads back beyond the range, and "0" reads back as +0.
  EXPECT_TRUE(std::isinf(Round15(max)));
  EXPECT_TRUE(std::isinf(Round15(-max)) && Round15(-max) < 0);
  EXPECT_TRUE(same(Round15(-0.0), 0.0));
  EXPECT_NE(Round15(std::bit_cast<double>(uint64_t{0x000ec7a8e4e0e03e})), std::bit_cast<double>(uint64_t{0x000ec7a8e4e0e03e}));
}

// The integer read-back decides almost every normal value itself: the text is the rare way.
TEST(NumberText, WideReadBackDecidesAlmostEveryValue) {
  std::mt19937_64 rng(99);
  int decided = 0;
  for (int i = 0; i < 100000; ++i) {
    const double v = std::bit_cast<double>(rng());
    if (!std::isnormal(v) || std::fabs(v) > 1e308) {
      --i;
      continue;
    }
    double r = 0;
    if (!detail::Round15Wide(v, r)) continue;
    ++decided;
    ASSERT_EQ(std::bit_cast<uint64_t>(r), std::bit_cast<uint64_t>(*ReadNumber(PlainText(v)))) << std::hexfloat << v;
  }
  EXPECT_GT(decided, 99900);
}

TEST(NumberText, SixteenBitRounding) {
  EXPECT_EQ(*ToInt16(2.5), 2);
  EXPECT_EQ(*ToInt16(3.5), 4);
  EXPECT_EQ(*ToInt16(-2.5), -2);
  EXPECT_EQ(*ToInt16(32767.4), 32767);
  EXPECT_FALSE(ToInt16(32767.5));
  EXPECT_FALSE(ToInt16(-32768.6));
  EXPECT_FALSE(ToInt16(std::nan("")));
  EXPECT_EQ(*ToInt32(2147483647.0), 2147483647);
  EXPECT_FALSE(ToInt32(2147483648.0));
}

}  // namespace
}  // namespace merida

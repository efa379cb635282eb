// Calc and the operand rules: the formula table, built-ins, asking, stop and policy,
// EvaluateConstantText, hostile texts; number texts: plain and list forms, patterns, numeric
// test, lenient reading, 15-digit folding.
#include <bit>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>

#include "engine/builtins.h"
#include "engine/number_text.h"
#include "engine/record_table.h"
#include "main/calculator.h"
#include "test_support.h"

namespace merida {
namespace {

using test::RecordingHost;

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::stringstream s(text);
  for (std::string part; std::getline(s, part, separator);) parts.push_back(part);
  return parts;
}

// tests/data/formulas.tsv: formula, expected ("error N", "fault", "silent" or the answer),
// replies to input boxes and functions registered first, both "|"-separated.
TEST(Evaluation, FormulaTable) {
  std::ifstream in(std::string(MERIDA_TEST_DATA) + "/formulas.tsv");
  int cases = 0;
  std::string row;
  for (int line = 1; std::getline(in, row); ++line) {
    std::vector<std::string> cols = Split(row, '\t');
    if (row.empty() || row[0] == '#' || cols.size() < 2) continue;
    ++cases;
    SCOPED_TRACE("formulas.tsv line " + std::to_string(line) + ": " + cols[0]);
    RecordingHost host;
    for (const auto& r : Split(cols.size() > 2 ? cols[2] : "", '|')) host.answers.push_back(r);
    Engine engine(host);
    for (const auto& f : Split(cols.size() > 3 ? cols[3] : "", '|')) EXPECT_TRUE(engine.RegisterFormula(f)) << f;
    auto answer = Calc(engine, cols[0]);
    EXPECT_EQ(answer                 ? *answer
              : !host.errors.empty() ? "error " + std::to_string(host.errors.front())
              : !host.faults.empty() ? "fault"
                                     : "silent",
              cols[1]);
    EXPECT_LE(host.errors.size(), 1u) << "an action reports at most one error";
    EXPECT_EQ(host.faults.size(), cols[1] == "fault" ? 1u : 0u);
  }
  EXPECT_GT(cases, 100);
}

// The approximations' accuracy, domain errors, 16- and 32-bit overflows.
TEST(Evaluation, Builtins) {
  using enum Builtin;
  struct Row {
    Builtin fn;
    double a, b, expected, tolerance;
    int status = 0;  // an error number, or kFault
  };
  const Row rows[] = {
      {kAsin, 0, 0.5, 0.5235987755982988, 3e-8}, {kAcos, 0, -0.5, 2.0943951023931957, 3e-8}, {kLog, 0, 1000, 3, 1e-15},
      {kAsin, 0, -1, -1.5707963267948966, 3e-8}, {kErf, 0, 0.5, 0.5204998778130465, 1e-6}, {kMul, 6, 0.5, 3, 0},
      {kErf, 0, 2, 0.9953222650189527, 1e-6}, {kGamma, 0, 2.5, 1.329340388179137, 1e-7}, {kGamma, 0, 10, 362880, 1e-2},
      {kGamma, 0, 0.25, 3.625609908221908, 1e-6}, {kJn, 0, 1, 0.7651976865579666, 1e-9}, {kLn, 0, 0, 0, 0, 13},
      {kJn, 1, 2.5, 0.4970941024642741, 1e-9}, {kJn, 2, 30, 0.0784512460792, 1e-9}, {kPn, 3, 0.5, -0.4375, 1e-12},
      {kJn, -1, 2.5, -0.4970941024642741, 1e-9}, {kYn, 0, 1, 0.08825696421567696, 1e-7}, {kPn, -3, 0.5, -0.125, 1e-12},
      {kYn, 1, 5, 0.1478631433912268, 1e-7}, {kYn, 2, 10, -0.005868082442208615, 1e-7},
      {kSinh, 0, 1, std::sinh(1.0), 1e-15}, {kTanh, 0, -0.5, std::tanh(-0.5), 1e-15},
      // Products of !, perm and comb are 32-bit.
      {kFact, 0, 40000, 0, 0, kFault}, {kFact, 0, -3, 1, 0}, {kPerm, 50, 5, 254251200, 0}, {kPerm, 50, 6, 0, 0, kFault},
      {kComb, 12, 12, 1, 0}, {kComb, 13, 13, 0, 0, kFault}, {kComb, 14, 2, 91, 0}, {kPerm, 5, -1, 1, 0},
      {kPerm, 70000, 1, 0, 0, kFault},
      // Whole exponents are repeated products, counted in 16 bits; the rest go through exp and ln.
      {kPow, -2, 3, -8, 1e-15}, {kPow, 2, -2, 0.25, 1e-15}, {kPow, 0, -1, 0, 0}, {kPow, 0, 0, 1, 0},
      {kPow, 2, 0.5, std::sqrt(2.0), 1e-15}, {kPow, 1, 32767, 1, 0}, {kPow, -1, -32767, -1, 0},
      {kPow, 1, 32768, 0, 0, kFault}, {kPow, 2, 1024, 0, 0, kFault}, {kPow, 0.1, -400, 0, 0, kFault},
  };
  for (const Row& r : rows) {
    Applied out = ApplyBuiltin(r.fn, r.a, r.b);
    SCOPED_TRACE(testing::Message() << static_cast<int>(r.fn) << "(" << r.a << "," << r.b << ")");
    EXPECT_EQ(out.status, r.status);
    EXPECT_TRUE(r.status != 0 || std::fabs(out.value - r.expected) <= r.tolerance) << out.value;
  }
  RecordingHost host;
  Engine e(host);
  double sum = 0;
  for (int i = 0; i < 10000; ++i) {
    double x = std::stod(Calc(e, "random(-1)").value_or("nan"));
    ASSERT_TRUE(x >= 0 && x < 1) << x;
    sum += x;
  }
  EXPECT_NEAR(sum / 10000, 0.5, 0.02);  // uniform
  RecordFunctionTable t;  // RecordPoint keeps the count and ignores rows past the capacity
  for (int i : {1, 10, 100, 5001, -1, 3}) t.RecordPoint(i, static_cast<float>(i), 0, 0);
  EXPECT_TRUE(t.count == 3 && t.values[10][0] == 10.0f) << t.count;
  for (int i : {5000, 5001, -1}) t.RecordPoint(i, 0, 0, 0);
  EXPECT_EQ(t.count, 5000);
}

TEST(Evaluation, CalcAsksEachFreeVariableOnceInPostfixOrder) {
  const std::pair<const char*, std::vector<std::string>> rows[] = {
      {"x+x", {"x"}}, {"y*x+x*y", {"y", "x"}}, {"sin(b)+a", {"b", "a"}}, {"X+x", {"X", "x"}}, {"PI+E+3", {}}};
  for (const auto& [formula, prompts] : rows) {
    RecordingHost host;
    Engine e(host);
    ASSERT_TRUE(Calc(e, formula)) << formula;
    EXPECT_EQ(host.prompts, prompts) << formula;
  }
  // A cancelled input box ends without an answer or a message; the next Calc starts afresh.
  RecordingHost host;
  host.answers = {std::string("1"), std::nullopt};
  Engine e(host);
  EXPECT_FALSE(Calc(e, "x+y+z"));
  EXPECT_EQ(host.prompts, (std::vector<std::string>{"x", "y"}));
  EXPECT_TRUE(host.errors.empty() && e.CancelFlag);
  host.answers = {std::string("2")};
  EXPECT_EQ(Calc(e, "x*3"), "6");
  // Outside Calc a free variable takes the unbound policy's value, or when a run winds down the
  // value last produced; nothing is asked.
  host.prompts.clear();
  auto run = [&](const char* formula, int16_t policy, int16_t stop) {
    e.BeginRun(-1, formula);
    e.UnboundPolicy = policy;
    e.SplitFormula();
    e.TokenizeBody();
    int16_t n = e.CompilePostfix(e.CurrentSlot);
    e.StopRequested = stop;
    return e.EvaluateProgram(n);
  };
  EXPECT_EQ(run("x+1", 0, 0), 1);
  EXPECT_EQ(run("x+1", 1, 0), 2);
  EXPECT_EQ(run("5+x", -1, 1), 10);
  EXPECT_TRUE(host.prompts.empty());
}

TEST(Evaluation, ConstantTextsAndHostileTexts) {
  const std::tuple<const char*, double, int> rows[] = {  // text, value, error
      {"PI/2", 3.14159265358979 / 2, 0}, {"-1", -1, 0}, {"+2", 2, 0}, {"2^3^2", 64, 0}, {"2*(3+4)", 14, 0},
      {"1E-5", 1e-5, 0}, {"", 0, 0}, {"abc", 0, 0}, {"12abc+1", 13, 0}, {"1/0", 0, 11}, {"(-8)^(1/3)", 0, 14},
      {"(2", 0, 23}, {"2)", 0, 23}, {"2+", 0, 22}, {"2*(-3)", -6, 0}, {"E", 2.71828182845905, 0}, {" 1 2 ", 12, 0},
  };
  for (const auto& [text, value, error] : rows) {
    RecordingHost host;
    Engine e(host);
    double v = e.EvaluateConstantText(text);
    EXPECT_EQ(host.errors, error ? std::vector<int>{error} : std::vector<int>{}) << text;
    EXPECT_TRUE(error || std::fabs(v - value) <= 1e-15 * std::fabs(value)) << text << ": " << v;
  }
  // Hostile texts end in an error or an answer.
  std::vector<std::string> texts = {std::string(100000, '('), std::string(5000, '1'), std::string(3000, '-'),
                                    "\xff\xfe\x00", "integ(integ(x,0,1,2),0,1,2)", "sgm(sgm(k,1,2,k),1,2,j)",
                                    ",,,", "((()))", "1e308*10", "f(((", "!!!", "^", "(,)", "=", "===", ""};
  for (int i = 0; i < 2000; ++i) texts.back() += "sin(";
  for (const auto& t : texts) {
    RecordingHost host;
    Engine e(host);
    auto answer = Calc(e, t);
    EXPECT_TRUE(answer || !host.errors.empty() || !host.faults.empty() || e.failed()) << t.substr(0, 40);
  }
}

TEST(NumberText, Forms) {
  struct Row {
    double v;
    const char *plain, *list;
  };
  const Row rows[] = {
      {1.0 / 3, "0.333333333333333", " .333333333333333"}, {-0.25, "-0.25", "-.25"}, {2, "2", " 2"},
      {1e-7, "1E-07", " 1E-07"}, {std::pow(2.0, 100), "1.26765060022823E+30", " 1.26765060022823E+30"},
      {1e14, "100000000000000", " 100000000000000"}, {1e15, "1E+15", " 1E+15"}, {0.0001, "0.0001", " .0001"},
      {-0.0, "0", " 0"}, {-1e300, "-1E+300", "-1E+300"},
      {123456789012345678.0, "1.23456789012346E+17", " 1.23456789012346E+17"},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(PlainText(r.v), r.plain) << r.v;
    EXPECT_EQ(ListText(r.v), r.list) << r.v;
  }
  const std::pair<float, const char*> floats[] = {{1.0f / 3, " .3333333"}, {-0.5f, "-.5"}, {2.0f, " 2"},
                                                  {1e-9f, " 1E-09"}};
  for (const auto& [v, text] : floats) EXPECT_EQ(ListText(v), text) << v;
  const std::pair<double, const char*> fixed[] = {{0.25, ".25"}, {3, "3."}, {-1.5, "-1.5"}, {0, "."},
                                                  {123.456789, "123.45679"}, {-0.000001, "."}, {0.000005, ".00001"},
                                                  {1e6, "1000000."}};
  for (const auto& [v, text] : fixed) EXPECT_EQ(Fixed5Text(v), text) << v;
}

TEST(NumberText, NumericTestAndReading) {
  struct Row {
    const char* text;
    bool numeric;
    double lenient;
  };
  const Row rows[] = {
      {"12", true, 12},   {" -3.5 ", true, -3.5}, {"+.5", true, 0.5},    {"5.", true, 5},      {"1e-3", true, 1e-3},
      {"2 ", true, 2},    {"", false, 0},         {" ", false, 0},       {"12abc", false, 12}, {"1E", false, 1},
      {"1E+", false, 1},  {".", false, 0},        {"-", false, 0},       {"1.2.3", false, 1.2}, {"inf", false, 0},
      {"nan", false, 0},  {"0x10", false, 0},     {"1e999", true, 0},    {"1 2", false, 1},    {"--1", false, 0},
      {"PI", false, 0},   {"１", false, 0},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(IsNumeric(r.text), r.numeric) << '"' << r.text << '"';
    EXPECT_EQ(ReadLenient(r.text), r.lenient) << '"' << r.text << '"';
    EXPECT_EQ(ReadNumber(r.text).has_value(), r.numeric) << '"' << r.text << '"';
  }
  EXPECT_EQ(std::tuple(*ReadNumber(" 0.1 "), *ReadNumber("1e999"), *ReadNumber("1e-999")),
            std::tuple(0.1, HUGE_VAL, 0.0));
  // 16- and 32-bit counts: halves to even, nullopt when the value does not fit.
  const std::pair<double, std::optional<int16_t>> counts[] = {
      {2.5, 2}, {3.5, 4}, {-2.5, -2}, {32767.4, 32767}, {32767.5, {}}, {-32768.6, {}}, {std::nan(""), {}}};
  for (const auto& [v, n] : counts) EXPECT_EQ(ToInt16(v), n) << v;
  EXPECT_EQ(std::tuple(*ToInt32(2147483647.0), ToInt32(2147483648.0).has_value()), std::tuple(2147483647, false));
}

// A number cell holds PlainText(v) and reads it back: Round15 gives that value bit for bit, for
// every kind of double, with or without a site's remembered binade. The integer read-back
// decides almost every normal value itself: the text is the rare way.
TEST(NumberText, Round15IsThePlainTextReadBack) {
  auto bits = [](double v) { return std::bit_cast<uint64_t>(v); };
  detail::Round15Guess guess;
  auto expectSame = [&](double v) {
    const uint64_t readBack = bits(ReadNumber(PlainText(v)).value_or(std::nan("")));
    ASSERT_EQ(bits(Round15(v)), readBack) << std::hexfloat << v;
    ASSERT_EQ(bits(Round15(v, guess)), readBack) << std::hexfloat << v;
  };
  std::mt19937_64 rng(20240611);
  int normal = 0, decided = 0;
  for (int i = 0; i < 400000; ++i) {
    const double v = std::bit_cast<double>(rng());  // every exponent, subnormals included
    if (!std::isfinite(v)) continue;
    expectSame(v);
    double wide = 0;
    if (!std::isnormal(v) || std::fabs(v) > 1e308) continue;
    ++normal;
    if (!detail::Round15Wide(v, wide)) continue;
    ++decided;
    ASSERT_EQ(bits(wide), bits(Round15(v))) << std::hexfloat << v;
  }
  EXPECT_GT(decided, normal - normal / 1000);
  // Sweeps that keep to a binade for many points, as tools' x and a chain's values do, across
  // every magnitude and both signs, through zero and the ends of the table.
  for (double v : {1e-320, 1e-200, 3e-8, 0.999, -0.5, 7.0, 9e14, 4e15, 1e200, -1e300}) {
    for (int i = 0; i < 20000; ++i, v *= 1.0007) expectSame(v);
  }
  // Values next to a half in the 16th digit, where the product's rounding error decides.
  std::uniform_int_distribution<int64_t> digits(100000000000000, 999999999999999);
  std::uniform_int_distribution<int> places(0, 21);
  for (int i = 0; i < 200000; ++i) {
    double v = (static_cast<double>(digits(rng)) + 0.5) / std::pow(10.0, places(rng));
    for (double w : {v, std::nextafter(v, 0.0), std::nextafter(v, 1e300), -v}) expectSame(w);
  }
  // Ties in the 16th digit, neighbours of powers of ten, tiny and huge magnitudes, the edges of
  // the range (the text of the largest doubles reads back beyond it).
  const double max = std::numeric_limits<double>::max();
  for (double v : {0.0, 0.5, 2.5, 100000000000000.5, 100000000000001.5, 999999999999999.5, 0.1 + 0.2, 0.1, 1e-7,
                   std::nextafter(1e-7, 0.0), 1e15, std::nextafter(1e15, 0.0), std::nextafter(1e-5, 1.0),
                   std::nextafter(1e-5, 0.0), 9.999999999999999e22, 1e35, 1e-300, 1e300, 5e-324, 1e-310,
                   2.2250738585072014e-308, std::nextafter(2.2250738585072014e-308, 0.0), 1.79769313486231e308,
                   std::nextafter(1.797693134862315e308, 0.0), 1.797693134862315e308, max, 123456789012345678.0,
                   0.000123456789012345678}) {
    for (double w : {v, -v}) expectSame(w);
  }
  // Far from 1: exact 15-digit decimals, 16th digits on or next to a half (the product's
  // truncated power of ten cannot decide those), over the whole exponent range.
  char text[64];
  for (int exp10 = -300; exp10 <= 290; exp10 += 7) {
    for (const char* d : {"123456789012345", "1234567890123455", "9999999999999995", "1000000000000005",
                          "9999999999999994999", "1000000000000000"}) {
      std::snprintf(text, sizeof text, "%se%d", d, exp10);
      expectSame(*ReadNumber(text));
      expectSame(std::nextafter(*ReadNumber(text), 0.0));
    }
  }
  EXPECT_TRUE(std::isinf(Round15(max)) && std::isinf(Round15(-max)) && Round15(-max) < 0);
  EXPECT_EQ(bits(Round15(std::numeric_limits<double>::infinity(), guess)), bits(HUGE_VAL));
  EXPECT_TRUE(std::isnan(Round15(std::nan(""), guess)));
  const double subnormal = std::bit_cast<double>(uint64_t{0x000ec7a8e4e0e03e});
  EXPECT_NE(Round15(subnormal), subnormal);
}

}  // namespace
}  // namespace merida

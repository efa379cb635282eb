// The critical-value tables, their lookups and interpolation, and the three tests.
#include "stats/hypothesis_test.h"

#include <gtest/gtest.h>

#include "stats/critical_tables.h"
#include "test_support.h"

namespace merida {
namespace {

TEST(CriticalValues, LookupsAndInterpolation) {
  struct Case {
    char table;  // t, c(hi-square), F
    int level, nu1, nu2;
    float expected;
  } cases[] = {
      {'t', 5, 9, 0, 2.262f}, {'t', 5, 29, 0, 2.045f}, {'t', 5, 30, 0, 2.042f}, {'t', 5, 35, 0, 2.0315f},
      {'t', 1, 50, 0, 2.682f}, {'t', 5, 90, 0, 1.990f}, {'t', 5, 119, 0, 1.9803333f}, {'t', 5, 120, 0, 1.95996f},
      {'t', 5, 150, 0, 1.95996f}, {'t', 1, kInfiniteFreedom, 0, 2.57582f}, {'c', 5, 12, 0, 21.0f},
      {'c', 5, 45, 0, 61.65f}, {'c', 1, 30, 0, 50.9f}, {'c', 5, 99, 0, 124.3f - (124.3f - 113.1f) * 0.1f},
      {'c', 5, 100, 0, 124.3f}, {'c', 1, 1000, 0, 135.8f}, {'F', 5, 1, 1, 161.4f}, {'F', 1, 2, 2, 99.01f},
      {'F', 1, 1, 30, 7.56f}, {'F', 5, 10, 20, 2.365f}, {'F', 5, 7, 10, 3.145f}, {'F', 5, 24, 5, 4.53f},
      {'F', 5, 44, 5, 4.53f}, {'F', 5, 45, 5, 4.36f}, {'F', 1, 49, 5, 9.47f}, {'F', 1, 50, 5, 9.02f},
      {'F', 5, 1, 35, 4.125f}, {'F', 5, 1, 199, 3.92f}, {'F', 5, 1, 200, 3.84f}, {'F', 5, 10, 35, 2.135f},
  };
  for (const Case& c : cases) {
    float v = c.table == 't'   ? CriticalT(c.level, c.nu1)
              : c.table == 'c' ? CriticalChiSquare(c.level, c.nu1)
                               : CriticalF(c.level, c.nu1, c.nu2);
    EXPECT_NEAR(v, c.expected, 2e-5f * c.expected) << c.table << c.level << " " << c.nu1 << " " << c.nu2;
  }
}

TEST(CriticalValues, TablesFallAndRiseAsTheyShould) {
  // Catches a misplaced or mistyped entry: t and F fall with freedom, chi-square rises.
  for (int level = 0; level < 2; ++level) {
    for (int row = 1; row < 34; ++row) EXPECT_LT(kTTable[level][row], kTTable[level][row - 1]) << row;
    for (int row = 1; row < 37; ++row) EXPECT_GT(kChiSquareTable[level][row], kChiSquareTable[level][row - 1]) << row;
    for (int row = 0; row < 34; ++row) {
      for (int c = 0; c < 10; ++c) {
        const float f = kFTable[level][row][c];
        // Past two numerator freedoms the points fall along the row too, except the low rows' tails.
        EXPECT_TRUE(row == 0 || f <= kFTable[level][row - 1][c]) << level << " " << row << " " << c;
        EXPECT_TRUE(c < 2 || row < 2 || f <= kFTable[level][row][c - 1]) << level << " " << row << " " << c;
        // 1 % points lie above 5 % points; both are 1 at infinite freedom.
        EXPECT_TRUE(level == 0 || (row == 33 && c == 9) || f > kFTable[0][row][c]) << row << " " << c;
      }
    }
  }
  EXPECT_EQ((std::array{kFTable[1][1][0], kFTable[1][0][8], kFTable[0][33][5]}), (std::array{98.49f, 6234.0f, 2.09f}));
}

class HypothesisTest : public test::EngineTest {
 protected:
  HypothesisTest() { rows({{12, 10}, {18, 20}, {30, 30}}); }
  // "statistic critical conclusion", or "error N".
  std::string run(TestKind kind, std::array<std::string, 6> boxes, int level = 5, const char* column = nullptr) {
    host.errors.clear();
    result = RunTest(engine, table, kind, TestInput{std::move(boxes), level, column != nullptr, column ? column : ""});
    if (!result) return "error " + std::to_string(host.errors.size() == 1 ? host.errors[0] : -1);
    return result->statisticBox + " " + result->criticalBox + " " + result->conclusion;
  }
  // The boxes a record run filled, joined by blanks.
  std::string shown(std::initializer_list<int> boxes) {
    std::string s;
    for (int k : boxes) s.append(s.empty() ? "" : " ").append(result->boxes[k].value_or("?"));
    return s;
  }
  // Orbita rows of two columns.
  void rows(std::initializer_list<std::array<float, 2>> data) {
    table.dimension = 2;
    table.count = static_cast<int16_t>(data.size());
    table.kind = OrbitaData;
    int i = 0;
    for (auto [a, b] : data) table.values[++i] = {a, b, 0};
  }
  RecordFunctionTable table;
  std::optional<TestResult> result;
};

const TestKind kMean = TestKind::kMean, kVariance = TestKind::kVariance, kChi = TestKind::kChiSquare;
const std::string kMeanSame = " 標本の平均値は、母集団と異なるとは言えない";
const std::string kMeanDiffers = " 標本の平均値は、母集団と異なる", kVarianceSame = " ２標本の分散は異なるとは言えない";
const std::string kFits = " 適合すると言える";

TEST_F(HypothesisTest, TypedBoxes) {
  const std::tuple<TestKind, std::array<std::string, 6>, int, std::string> cases[] = {
      {kMean, {"50", "-1", "", "53", "4", "10"}, 5, "2.25 2.262" + kMeanSame},         // t, nu 9
      {kMean, {"50", "", "", "53", "4", "10"}, 5, "2.25 2.262" + kMeanSame},           // a blank deviation is none
      {kMean, {"50", "-1", "", "53", "4", "36"}, 5, "4.43706 2.0315" + kMeanDiffers},  // nu 35
      {kMean, {"50", "6", "", "53", "-1", "16"}, 5, "2. 1.95996" + kMeanDiffers},      // normal
      {kMean, {"50", "6", "", "53", "-1", "16"}, 1, "2. 2.57582" + kMeanSame},
      {kMean, {"50", "6", "", "53", "4", "10"}, 5, "error 46"},    // both deviations
      {kMean, {"50", "-6", "", "53", "-4", "10"}, 5, "error 46"},  // neither
      {kMean, {"50", "-1", "", "53", "4", "1"}, 5, "error 48"},    // t with no freedom
      {kMean, {"50", "-1", "", "53", "0", "10"}, 5, "error 46"},   // a zero deviation divides
      {kMean, {"50", "0", "", "53", "", "10"}, 5, "error 46"},
      {kMean, {"50", "6", "", "53", "", "0"}, 5, "error 46"},      // normal with no sample
      {kMean, {"", "-1", "", "53", "4", "10"}, 5, "error 46"},     // no population mean
      {kMean, {"50", "-1", "", "5x", "4", "10"}, 5, "error 46"},   // not a number
      {kMean, {"50", "-1", "", "53", "4", ""}, 5, "error 46"},
      // 11 * 9 / 10 over 21 * 4 / 20: F = 2.357..., nu 10 and 20, whichever deviation is larger.
      {kVariance, {"", "3", "11", "", "2", "21"}, 5, "2.35714 2.365" + kVarianceSame},
      {kVariance, {"", "2", "21", "", "3", "11"}, 5, "2.35714 2.365" + kVarianceSame},
      {kVariance, {"", "4", "11", "", "2", "21"}, 1, "4.19048 3.395 ２標本の分散は異なる"},
      {kVariance, {"", "2", "1", "", "3", "10"}, 5, "error 48"},
      {kVariance, {"", "0", "5", "", "0", "10"}, 5, "error 46"},
      {kVariance, {"", "-2", "5", "", "3", "10"}, 5, "error 46"},
      {kVariance, {"", "2", "", "", "3", "10"}, 5, "error 46"},
      // Chi-square .6 of the table against the point for the freedom of the class and row counts.
      {kChi, {"", "", "3", "", "", ""}, 5, ".6 5.99" + kFits}, {kChi, {"", "", "", "", "", "4"}, 5, ".6 7.81" + kFits},
      {kChi, {"", "", "3", "", "", "-2"}, 5, ".6 5.99" + kFits},
      {kChi, {"", "", "3", "", "", "4"}, 5, ".6 12.59" + kFits},
      {kChi, {"", "", "0", "", "", ""}, 5, "error 48"},          {kChi, {"", "", "1", "", "", ""}, 5, "error 48"},
      {kChi, {"", "", "x", "", "", ""}, 5, "error 46"},
  };
  for (const auto& [kind, boxes, level, want] : cases) {
    EXPECT_EQ(run(kind, boxes, level), want) << boxes[1] << " " << boxes[2] << " " << boxes[4] << " " << boxes[5];
  }
}

TEST_F(HypothesisTest, RecordOptionReadsTheChosenColumns) {
  rows({{2, 1}, {4, 1}, {4, 5}, {6, 5}});
  EXPECT_EQ(run(kMean, {"3", "-1", "", "", "", ""}, 5, "1"), "1.22474 3.182" + kMeanSame);  // |4 - 3| sqrt 3 / sqrt 2
  EXPECT_EQ(shown({3, 4, 5}), "4. 1.41421 4");
  run(kMean, {"3", "-1", "", "", "", ""}, 5, "2");
  EXPECT_EQ(shown({3, 4}), "3. 2.");
  EXPECT_EQ(run(kVariance, {}, 5, "1").substr(0, 2), "2.");  // exchanged: 4 over 2
  EXPECT_EQ(shown({1, 2, 4, 5}), "1.41421 4 2. 4");
  for (auto [kind, column] : {std::pair{kMean, "3"}, std::pair{kMean, "0"}, std::pair{kVariance, "2"}}) {
    EXPECT_EQ(run(kind, {"3", "-1", "", "", "", ""}, 5, column), "error 45") << column;
  }
}

TEST_F(HypothesisTest, ChiSquareOfTheRecordedTable) {
  table.values[1][0] = 40;  // (40 - 10)^2 / 10 + (18 - 20)^2 / 20
  EXPECT_EQ(run(kChi, {"", "", "3", "", "", ""}), "90.2 5.99 適合するとは言えない");
  table.values[2][1] = 0;  // an expected frequency of 0
  EXPECT_EQ(run(kChi, {"", "", "3", "", "", ""}), "error 46");
  using KindAndDimension = std::pair<int16_t, int16_t>;
  for (auto [kind, dimension] : {KindAndDimension{WaveData, 2}, KindAndDimension{OrbitaData, 1}}) {
    table.kind = kind;
    table.dimension = dimension;
    EXPECT_EQ(run(kChi, {"", "", "3", "", "", ""}), "error 47");
  }
}

}  // namespace
}  // namespace merida

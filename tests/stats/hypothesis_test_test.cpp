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
      {'t', 5, 9, 0, 2.262f},       {'t', 5, 29, 0, 2.045f},     {'t', 5, 30, 0, 2.042f},
      {'t', 5, 35, 0, 2.0315f},     {'t', 1, 50, 0, 2.682f},     {'t', 5, 90, 0, 1.990f},
      {'t', 5, 119, 0, 1.9803333f},
      {'t', 5, 120, 0, 1.95996f},   {'t', 5, 150, 0, 1.95996f},  {'t', 1, kInfiniteFreedom, 0, 2.57582f},
      {'c', 5, 12, 0, 21.0f},       {'c', 5, 45, 0, 61.65f},     {'c', 1, 30, 0, 50.9f},
      {'c', 5, 99, 0, 124.3f - (124.3f - 113.1f) * 0.1f},        {'c', 5, 100, 0, 124.3f},
      {'c', 5, 120, 0, 124.3f},     {'c', 1, 1000, 0, 135.8f},
      {'F', 5, 1, 1, 161.4f},       {'F', 1, 2, 2, 99.01f},      {'F', 1, 1, 30, 7.56f},
      {'F', 5, 10, 20, 2.365f},     {'F', 5, 7, 10, 3.145f},     {'F', 5, 24, 5, 4.53f},
      {'F', 5, 44, 5, 4.53f},       {'F', 5, 45, 5, 4.36f},      {'F', 1, 49, 5, 9.47f},
      {'F', 1, 50, 5, 9.02f},       {'F', 5, 1, 35, 4.125f},     {'F', 5, 1, 150, 3.92f},
      {'F', 5, 1, 199, 3.92f},      {'F', 5, 1, 200, 3.84f},     {'F', 5, 10, 35, 2.135f},
  };
  for (const Case& c : cases) {
    float v = c.table == 't' ? CriticalT(c.level, c.nu1)
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
        if (row > 0) {
          EXPECT_LE(kFTable[level][row][c], kFTable[level][row - 1][c]) << level << " " << row << " " << c;
        }
        // Past two numerator freedoms the points fall along the row, except the low rows' tails.
        if (c > 1 && row > 1) {
          EXPECT_LE(kFTable[level][row][c], kFTable[level][row][c - 1]) << level << " " << row << " " << c;
        }
        // 1 % points lie above 5 % points; both are 1 at infinite freedom.
        if (level == 1 && (row < 33 || c < 9)) {
          EXPECT_GT(kFTable[1][row][c], kFTable[0][row][c]) << row << " " << c;
        }
      }
    }
  }
  EXPECT_EQ(kFTable[1][1][0], 98.49f);
  EXPECT_EQ(kFTable[1][0][8], 6234.0f);
  EXPECT_EQ(kFTable[0][33][5], 2.09f);
}

class HypothesisTest : public ::testing::Test {
 protected:
  HypothesisTest() : engine(host) { engine.ResetEngine(); }
  std::optional<TestResult> run(TestKind kind, std::array<std::string, 6> boxes, int level = 5) {
    host.errors.clear();
    TestInput in;
    in.boxes = std::move(boxes);
    in.level = level;
    return RunTest(engine, table, kind, in);
  }
  test::RecordingHost host;
  Engine engine;
  RecordFunctionTable table;
};

TEST_F(HypothesisTest, MeanTestIsTOrNormalByWhichDeviationIsGiven) {
  struct Case {
    std::array<std::string, 6> boxes;
    int level;
    const char *statistic, *critical;
    bool differs;
  } cases[] = {
      {{"50", "-1", "", "53", "4", "10"}, 5, "2.25", "2.262", false},     // t, nu 9
      {{"50", "", "", "53", "4", "10"}, 5, "2.25", "2.262", false},       // a blank deviation is not given
      {{"50", "-1", "", "53", "4", "36"}, 5, "4.43706", "2.0315", true},  // nu 35
      {{"50", "6", "", "53", "-1", "16"}, 5, "2.", "1.95996", true},      // normal
      {{"50", "6", "", "53", "-1", "16"}, 1, "2.", "2.57582", false},
  };
  for (const Case& c : cases) {
    auto r = run(TestKind::kMean, c.boxes, c.level);
    ASSERT_TRUE(r) << c.statistic;
    EXPECT_EQ(r->statisticBox, c.statistic);
    EXPECT_EQ(r->criticalBox, c.critical);
    EXPECT_EQ(r->conclusion, c.differs ? "標本の平均値は、母集団と異なる" : "標本の平均値は、母集団と異なるとは言えない");
  }
}

TEST_F(HypothesisTest, RefusedInputs) {
  struct Case {
    TestKind kind;
    std::array<std::string, 6> boxes;
    int error;
  } cases[] = {
      {TestKind::kMean, {"50", "6", "", "53", "4", "10"}, 46},    // both deviations
      {TestKind::kMean, {"50", "-6", "", "53", "-4", "10"}, 46},  // neither
      {TestKind::kMean, {"50", "-1", "", "53", "4", "1"}, 48},    // t with no freedom
      {TestKind::kMean, {"50", "-1", "", "53", "0", "10"}, 46},   // a zero deviation divides
      {TestKind::kMean, {"50", "0", "", "53", "", "10"}, 46},
      {TestKind::kMean, {"50", "6", "", "53", "", "0"}, 46},      // normal with no sample
      {TestKind::kMean, {"", "-1", "", "53", "4", "10"}, 46},     // no population mean
      {TestKind::kMean, {"50", "-1", "", "5x", "4", "10"}, 46},   // not a number
      {TestKind::kMean, {"50", "-1", "", "53", "4", ""}, 46},
      {TestKind::kVariance, {"", "2", "1", "", "3", "10"}, 48},
      {TestKind::kVariance, {"", "0", "5", "", "0", "10"}, 46},
      {TestKind::kVariance, {"", "-2", "5", "", "3", "10"}, 46},
      {TestKind::kVariance, {"", "2", "", "", "3", "10"}, 46},
  };
  for (const Case& c : cases) {
    EXPECT_FALSE(run(c.kind, c.boxes)) << c.boxes[1] << " " << c.boxes[4];
    EXPECT_EQ(host.errors, std::vector<int>{c.error}) << c.boxes[1] << " " << c.boxes[4] << " " << c.boxes[5];
  }
}

TEST_F(HypothesisTest, VarianceTestPutsTheLargerDeviationOnTop) {
  // 11 * 9 / 10 over 21 * 4 / 20: F = 2.357..., nu 10 and 20.
  for (auto boxes : {std::array<std::string, 6>{"", "3", "11", "", "2", "21"},
                     std::array<std::string, 6>{"", "2", "21", "", "3", "11"}}) {
    auto r = run(TestKind::kVariance, boxes);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->statisticBox, "2.35714");
    EXPECT_EQ(r->criticalBox, "2.365");
    EXPECT_EQ(r->conclusion, "２標本の分散は異なるとは言えない");
  }
  auto r = run(TestKind::kVariance, {"", "4", "11", "", "2", "21"}, 1);
  ASSERT_TRUE(r);
  EXPECT_EQ(r->conclusion, "２標本の分散は異なる");
}

TEST_F(HypothesisTest, RecordOptionReadsTheChosenColumns) {
  table.dimension = 2;
  table.count = 4;
  table.kind = OrbitaData;
  const float data[4][2] = {{2, 1}, {4, 1}, {4, 5}, {6, 5}};
  for (int i = 0; i < 4; ++i) table.values[i + 1] = {data[i][0], data[i][1], 0};
  TestInput in;
  in.boxes = {"3", "-1", "", "", "", ""};
  in.record = true;
  auto r = RunTest(engine, table, TestKind::kMean, in);
  ASSERT_TRUE(r);
  EXPECT_EQ(r->boxes[3], "4.");
  EXPECT_EQ(r->boxes[4], "1.41421");
  EXPECT_EQ(r->boxes[5], "4");
  EXPECT_EQ(r->statisticBox, "1.22474");  // |4 - 3| sqrt 3 / sqrt 2
  in.column = "2";
  r = RunTest(engine, table, TestKind::kMean, in);
  ASSERT_TRUE(r);
  EXPECT_EQ(r->boxes[3], "3.");
  EXPECT_EQ(r->boxes[4], "2.");

  in.column = "1";
  r = RunTest(engine, table, TestKind::kVariance, in);
  ASSERT_TRUE(r);
  EXPECT_EQ(r->boxes[1], "1.41421");
  EXPECT_EQ(r->boxes[2], "4");
  EXPECT_EQ(r->boxes[4], "2.");
  EXPECT_EQ(r->statisticBox, "2.");  // exchanged: 4 over 2

  for (auto [kind, column] : {std::pair{TestKind::kMean, "3"}, std::pair{TestKind::kMean, "0"},
                              std::pair{TestKind::kVariance, "2"}}) {
    host.errors.clear();
    in.column = column;
    EXPECT_FALSE(RunTest(engine, table, kind, in));
    EXPECT_EQ(host.errors, std::vector<int>{45}) << column;
  }
}

TEST_F(HypothesisTest, ChiSquareOfFit) {
  table.dimension = 2;
  table.count = 3;
  table.kind = OrbitaData;
  table.values[1] = {12, 10, 0};
  table.values[2] = {18, 20, 0};
  table.values[3] = {30, 30, 0};
  struct Case {
    std::string a, b;
    const char* critical;  // chi-square .6 against the point for the freedom
  } cases[] = {{"3", "", "5.99"}, {"", "4", "7.81"}, {"3", "-2", "5.99"}, {"3", "4", "12.59"}};
  for (const Case& c : cases) {
    auto r = run(TestKind::kChiSquare, {"", "", c.a, "", "", c.b});
    ASSERT_TRUE(r) << c.a << c.b;
    EXPECT_EQ(r->statisticBox, ".6");
    EXPECT_EQ(r->criticalBox, c.critical);
    EXPECT_EQ(r->conclusion, "適合すると言える");
  }
  table.values[1][0] = 40;
  auto r = run(TestKind::kChiSquare, {"", "", "3", "", "", ""});
  ASSERT_TRUE(r);
  EXPECT_EQ(r->conclusion, "適合するとは言えない");

  const std::pair<std::string, int> refused[] = {{"0", 48}, {"1", 48}, {"x", 46}};
  for (const auto& [a, error] : refused) {
    EXPECT_FALSE(run(TestKind::kChiSquare, {"", "", a, "", "", ""}));
    EXPECT_EQ(host.errors, std::vector<int>{error}) << a;
  }
  table.values[2][1] = 0;  // an expected frequency of 0
  EXPECT_FALSE(run(TestKind::kChiSquare, {"", "", "3", "", "", ""}));
  EXPECT_EQ(host.errors, std::vector<int>{46});
  for (auto [kind, dimension] : {std::pair<int16_t, int16_t>{WaveData, 2}, std::pair<int16_t, int16_t>{OrbitaData, 1}}) {
    table.kind = kind;
    table.dimension = dimension;
    EXPECT_FALSE(run(TestKind::kChiSquare, {"", "", "3", "", "", ""}));
    EXPECT_EQ(host.errors, std::vector<int>{47});
  }
}

}  // namespace
}  // namespace merida

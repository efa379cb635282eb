// The statistical analysis: selection, frequency classes, basic statistics, regression and
// multiple regression, with their errors and undefined quantities.
#include "stats/statistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "test_support.h"

namespace merida {
namespace {

class StatisticsTest : public ::testing::Test {
 protected:
  StatisticsTest() : engine(host) { engine.ResetEngine(); }
  // Rows of up to three columns, as Memory leaves them.
  void rows(std::initializer_list<std::vector<float>> data, int16_t kind = OrbitaData) {
    table = RecordFunctionTable{};
    int i = 0;
    for (const auto& row : data) {
      ++i;
      for (size_t j = 0; j < row.size(); ++j) table.values[i][j] = row[j];
      table.dimension = static_cast<int16_t>(row.size());
    }
    table.count = static_cast<int16_t>(i);
    table.kind = kind;
  }
  void column(const std::vector<float>& values) {
    table = RecordFunctionTable{};
    for (size_t i = 0; i < values.size(); ++i) table.values[i + 1][0] = values[i];
    table.count = static_cast<int16_t>(values.size());
    table.dimension = 1;
    table.kind = OrbitaData;
  }
  test::RecordingHost host;
  Engine engine;
  RecordFunctionTable table;
};

TEST(StatisticsText, KindAndBoxes) {
  const std::pair<int16_t, const char*> kinds[] = {
      {-1, "ﾃﾞｰﾀが記録関数に読み込まれていません"}, {0, "ﾃﾞｰﾀが記録関数に読み込まれていません"},
      {1, "WAVE形式のﾃﾞｰﾀです"}, {2, "PALOMA形式のﾃﾞｰﾀです"}, {3, "ORBITA形式のﾃﾞｰﾀです"},
      {4, "ﾃﾞｰﾀの形式が違います"}};
  for (auto [kind, text] : kinds) EXPECT_STREQ(RecordKindText(kind), text) << kind;
  const std::pair<std::optional<float>, const char*> boxes[] = {
      {0.25f, ".25"}, {3.0f, "3."}, {-1.5f, "-1.5"}, {1.118034f, "1.11803"}, {std::nullopt, ""},
      {std::numeric_limits<float>::infinity(), ""}, {std::numeric_limits<float>::quiet_NaN(), ""}};
  for (auto [v, text] : boxes) EXPECT_EQ(StatBox(v), text);
}

TEST(StatisticsSelect, AgreesWithSortingAtEveryPosition) {
  std::mt19937 random(7);
  for (int n : {1, 2, 3, 7, 64, 501}) {
    for (int spread : {3, 1000}) {  // many ties, then few
      std::vector<float> v(n);
      for (float& x : v) x = static_cast<float>(random() % spread);
      std::vector<float> sorted = v;
      std::sort(sorted.begin(), sorted.end());
      for (int k = 1; k <= n; k += std::max(1, n / 9)) {
        std::vector<float> work = v;
        ASSERT_EQ(SelectKth(work, k), sorted[k - 1]) << n << " " << k;
        EXPECT_LE(*std::max_element(work.begin(), work.begin() + k), sorted[k - 1]);
        EXPECT_GE(*std::min_element(work.begin() + k - 1, work.end()), sorted[k - 1]);
      }
    }
  }
}

TEST_F(StatisticsTest, MedianOfOddAndEvenCounts) {
  // n = 4 picks k = 2 (2.5 to even), n = 6 picks k = 4: both partners of the mean are found.
  const std::pair<std::vector<float>, const char*> cases[] = {
      {{1, 2, 3, 4}, "2.5"}, {{5, 1, 3}, "3."}, {{6, 5, 4, 3, 2, 1}, "3.5"}, {{9, 1, 9, 1, 5, 5}, "5."},
      {{7}, "7."}, {{-2, 8}, "3."}};
  for (const auto& [values, median] : cases) {
    column(values);
    auto r = FrequencyDistribution(engine, table, "1");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->medianBox, median);
  }
}

TEST_F(StatisticsTest, ClassesLeaveTheMaximumOutAndTheLowestTieIsTheMode) {
  std::vector<float> values;
  for (int k = 0; k <= 100; ++k) values.push_back(static_cast<float>(k));
  column(values);
  auto r = FrequencyDistribution(engine, table, "1");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->width, 1.0f);
  EXPECT_EQ(r->modeBox, ".5");
  EXPECT_EQ(r->medianBox, "50.");
  ASSERT_EQ(r->chart.size(), 100u);
  for (int c = 0; c < 100; ++c) {
    EXPECT_EQ(r->chart[c].x, c);
    EXPECT_EQ(r->chart[c].y, 1) << c;  // 100 itself is in no class
  }

  column({0, 10, 10, 3, 3, 3, 10, 10, 10});  // class 31 holds three, the maximum's four are left out
  r = FrequencyDistribution(engine, table, "1");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->classes[30], 3);
  EXPECT_EQ(r->modeBox, "3.05");
  EXPECT_EQ(r->chart[30].x, 0.1f * 30);
}

TEST_F(StatisticsTest, AConstantColumnIsOneClass) {
  column({4, 4, 4});
  auto r = FrequencyDistribution(engine, table, "1");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->classes[0], 3);
  EXPECT_EQ(r->modeBox, "4.");
  EXPECT_EQ(r->medianBox, "4.");
  auto basic = BasicStatistics(engine, table, "1");
  ASSERT_TRUE(basic);
  EXPECT_EQ(basic->varianceBox, ".");
  EXPECT_EQ(basic->deviationBox, ".");
}

TEST_F(StatisticsTest, ARangeBeyondFloatsShowsNoMode) {
  column({-3e38f, 3e38f, 0, 1});
  auto r = FrequencyDistribution(engine, table, "1");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->medianBox, ".5");
  EXPECT_EQ(r->modeBox, "");
  auto basic = BasicStatistics(engine, table, "1");
  ASSERT_TRUE(basic);
  EXPECT_EQ(basic->varianceBox, "");
}

TEST_F(StatisticsTest, BasicStatisticsDivideByN) {
  column({1, 2, 3, 4});
  auto r = BasicStatistics(engine, table, "1");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->meanBox, "2.5");
  EXPECT_EQ(r->varianceBox, "1.25");
  EXPECT_EQ(r->deviationBox, "1.11803");
  // Sums stay in single precision: 1e8 swallows the 1s it is added to.
  column({1e8f, 1, 1, 1, 1});
  r = BasicStatistics(engine, table, "1");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->mean, 1e8f / 5);
}

TEST_F(StatisticsTest, RegressionPairsColumnsAndWrapsTheThird) {
  rows({{0, 1, 5}, {1, 3, 2}, {2, 5, -1}, {3, 7, -4}});
  struct Case {
    const char* box;
    const char *a, *b, *r;
  } cases[] = {
      {"1", "2.", "1.", "1."},               // y = 2x + 1
      {"2", "-1.5", "6.5", "-1."},           // column 3 against column 2
      {"3", "-.33333", "1.66667", "-1."},    // column 1 against column 3
  };
  for (const Case& c : cases) {
    auto r = RegressionLine(engine, table, c.box);
    ASSERT_TRUE(r) << c.box;
    EXPECT_EQ(r->aBox, c.a) << c.box;
    EXPECT_EQ(r->bBox, c.b) << c.box;
    EXPECT_EQ(r->rBox, c.r) << c.box;
    EXPECT_EQ(r->chart.size(), 4u);
  }
  auto r = RegressionLine(engine, table, "2");
  EXPECT_EQ(r->chart[3].x, 7);
  EXPECT_EQ(r->chart[3].y, -4);
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(StatisticsTest, RegressionWithAConstantColumnLeavesUndefinedBoxesEmpty) {
  rows({{2, 1}, {2, 5}, {2, 9}});
  auto r = RegressionLine(engine, table, "1");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->aBox, "");
  EXPECT_EQ(r->bBox, "");
  EXPECT_EQ(r->rBox, "");
  EXPECT_EQ(r->chart.size(), 3u);
  rows({{1, 2}, {5, 2}, {9, 2}});  // a horizontal line: a and b exist, r does not
  r = RegressionLine(engine, table, "1");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->aBox, ".");
  EXPECT_EQ(r->bBox, "2.");
  EXPECT_EQ(r->rBox, "");
}

TEST_F(StatisticsTest, ColumnAndDimensionErrors) {
  struct Case {
    int dimension;
    int count;
    int analysis;  // 0 Freq, 1 Ave, 2 Regres, 3 MultReg
    const char* box;
    int error;
  } cases[] = {
      {1, 3, 0, "4", 45}, {3, 3, 1, "4", 45},  {2, 3, 1, "3", 45}, {1, 3, 0, "0", 45},  {1, 3, 1, "x", 45},
      {0, 0, 0, "1", 45}, {1, 3, 2, "1", 44},  {2, 3, 2, "2", 45}, {2, 3, 2, "3", 45},  {1, 0, 1, "1", 46},
      {2, 0, 2, "1", 46}, {3, 0, 3, "1", 46},  {2, 3, 3, "1", 49}, {0, 0, 3, "1", 49},
  };
  for (const Case& c : cases) {
    table = RecordFunctionTable{};
    table.dimension = static_cast<int16_t>(c.dimension);
    table.count = static_cast<int16_t>(c.count);
    host.errors.clear();
    bool produced = false;
    switch (c.analysis) {
      case 0: produced = FrequencyDistribution(engine, table, c.box).has_value(); break;
      case 1: produced = BasicStatistics(engine, table, c.box).has_value(); break;
      case 2: produced = RegressionLine(engine, table, c.box).has_value(); break;
      case 3: produced = MultipleRegression(engine, table).has_value(); break;
    }
    EXPECT_FALSE(produced) << c.analysis << " " << c.box;
    EXPECT_EQ(host.errors, std::vector<int>{c.error}) << c.analysis << " " << c.box;
  }
}

TEST_F(StatisticsTest, MultipleRegressionFitsThePlane) {
  rows({{0, 0, 1}, {1, 0, 3}, {0, 1, 4}, {1, 1, 6}});
  auto r = MultipleRegression(engine, table);
  ASSERT_TRUE(r);
  const char* expected[19] = {".5", ".5", "3.5", ".25", ".25", "3.25", ".", ".5", ".75", ".",
                              ".5547", ".83205", "1.", "1.", "-1.", "1.", "2.", "3.", "1."};
  for (int k = 0; k < 19; ++k) EXPECT_EQ(r->boxes[k], expected[k]) << "Text" << k + 1;
}

TEST_F(StatisticsTest, CollinearExplanatoryColumnsLeaveThePlaneUndefined) {
  rows({{1, 2, 1}, {2, 4, 5}, {3, 6, 4}});
  auto r = MultipleRegression(engine, table);
  ASSERT_TRUE(r);
  EXPECT_EQ(r->boxes[0], "2.");
  EXPECT_EQ(r->boxes[9], "1.");  // rxy
  for (int k : {12, 13, 16, 17, 18}) EXPECT_EQ(r->boxes[k], "") << "Text" << k + 1;
}

}  // namespace
}  // namespace merida

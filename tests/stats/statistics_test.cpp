// The statistical data grid (opening, dimension and count, Enter movement, Memory, ORBITA.ORB) and
// the analysis: selection, frequency classes, basic statistics, regression and multiple regression,
// with their errors and undefined quantities.
#include "stats/statistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <random>

#include "engine/atomic_file.h"
#include "stats/stat_data.h"
#include "test_support.h"

namespace merida {
namespace {

class StatisticsTest : public test::EngineTest {
 protected:
  // Rows of up to three columns, as Memory leaves them.
  void rows(const std::vector<std::vector<float>>& data) {
    table = RecordFunctionTable{};
    for (const auto& row : data) {
      std::copy(row.begin(), row.end(), table.values[++table.count].begin());
      table.dimension = static_cast<int16_t>(row.size());
    }
    table.kind = OrbitaData;
  }
  void column(const std::vector<float>& values) {
    std::vector<std::vector<float>> data;
    for (float v : values) data.push_back({v});
    rows(data);
  }
  RecordFunctionTable table;
};

TEST(StatisticsText, KindAndBoxes) {
  const std::pair<int16_t, const char*> kinds[] = {
      {0, "ﾃﾞｰﾀが記録関数に読み込まれていません"}, {1, "WAVE形式のﾃﾞｰﾀです"}, {2, "PALOMA形式のﾃﾞｰﾀです"},
      {3, "ORBITA形式のﾃﾞｰﾀです"}, {4, "ﾃﾞｰﾀの形式が違います"}};
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

TEST_F(StatisticsTest, MedianModeMeanAndVariance) {
  // n = 4 picks k = 2 (2.5 to even), n = 6 picks k = 4: both partners of the mean are found.
  // The mode is the middle of the lowest of the fullest classes; the variance divides by n.
  const std::tuple<std::vector<float>, std::string> cases[] = {
      {{1, 2, 3, 4}, "2.5 1.015 2.5 1.25"}, {{5, 1, 3}, "3. 1.02 3. 2.66667"}, {{7}, "7. 7. 7. ."},
      {{6, 5, 4, 3, 2, 1}, "3.5 1.025 3.5 2.91667"}, {{9, 1, 9, 1, 5, 5}, "5. 1.04 5. 10.66667"},
      {{4, 4, 4}, "4. 4. 4. ."},            // a constant column is one class
      {{-3e38f, 3e38f, 0, 1}, ".5  .25 "},  // a range beyond floats has no mode or variance
  };
  for (const auto& [values, boxes] : cases) {
    column(values);
    auto f = FrequencyDistribution(engine, table, "1");
    auto b = BasicStatistics(engine, table, "1");
    ASSERT_TRUE(f && b) << boxes;
    EXPECT_EQ(f->medianBox + " " + f->modeBox + " " + b->meanBox + " " + b->varianceBox, boxes);
  }
  column({4, 4, 4});
  EXPECT_EQ(FrequencyDistribution(engine, table, "1")->classes[0], 3);
  EXPECT_EQ(BasicStatistics(engine, table, "1")->deviationBox, ".");
  column({1e8f, 1, 1, 1, 1});  // sums stay in single precision: 1e8 swallows the 1s
  EXPECT_EQ(BasicStatistics(engine, table, "1")->mean, 1e8f / 5);
}

TEST_F(StatisticsTest, ClassesLeaveTheMaximumOut) {
  std::vector<float> values;
  for (int k = 0; k <= 100; ++k) values.push_back(static_cast<float>(k));
  column(values);
  auto r = FrequencyDistribution(engine, table, "1");
  ASSERT_TRUE(r);
  ASSERT_EQ(std::tuple(r->width, r->modeBox, r->medianBox, r->chart.size()), std::tuple(1.0f, ".5", "50.", 100u));
  for (int c = 0; c < 100; ++c) EXPECT_EQ(std::pair(r->chart[c].x, r->chart[c].y), std::pair(c + 0.0, 1.0)) << c;
  column({0, 10, 10, 3, 3, 3, 10, 10, 10});  // class 31 holds three, the maximum's four are left out
  r = FrequencyDistribution(engine, table, "1");
  EXPECT_EQ(std::tuple(r->classes[30], r->modeBox, r->chart[30].x), std::tuple(3, "3.05", 0.1f * 30));
}

TEST_F(StatisticsTest, RegressionPairsColumnsAndWrapsTheThird) {
  rows({{0, 1, 5}, {1, 3, 2}, {2, 5, -1}, {3, 7, -4}});
  // y = 2x + 1; column 3 against column 2; column 1 against column 3.
  const std::pair<const char*, const char*> cases[] = {
      {"1", "2. 1. 1."}, {"2", "-1.5 6.5 -1."}, {"3", "-.33333 1.66667 -1."}};
  for (auto [box, abr] : cases) {
    auto r = RegressionLine(engine, table, box);
    ASSERT_TRUE(r) << box;
    EXPECT_EQ(std::tuple(r->aBox + " " + r->bBox + " " + r->rBox, r->chart.size()), std::tuple(abr, 4u)) << box;
  }
  const ChartPoint last = RegressionLine(engine, table, "2")->chart[3];
  EXPECT_EQ(std::pair(last.x, last.y), std::pair(7.0, -4.0));
  EXPECT_TRUE(host.errors.empty());
  // A constant column leaves undefined boxes empty; a horizontal line has a and b, but no r.
  rows({{2, 1}, {2, 5}, {2, 9}});
  auto r = RegressionLine(engine, table, "1");
  EXPECT_EQ(std::tuple(r->aBox + " " + r->bBox + " " + r->rBox, r->chart.size()), std::tuple("  ", 3u));
  rows({{1, 2}, {5, 2}, {9, 2}});
  r = RegressionLine(engine, table, "1");
  EXPECT_EQ(r->aBox + " " + r->bBox + " " + r->rBox, ". 2. ");
}

TEST_F(StatisticsTest, ColumnAndDimensionErrors) {
  // Dimension, count, analysis (0 Freq, 1 Ave, 2 Regres, 3 MultReg), column box, error.
  const std::tuple<int16_t, int16_t, int, const char*, int> cases[] = {
      {1, 3, 0, "4", 45}, {3, 3, 1, "4", 45}, {2, 3, 1, "3", 45}, {1, 3, 0, "0", 45}, {0, 0, 0, "1", 45},
      {1, 3, 2, "1", 44}, {2, 3, 2, "2", 45}, {2, 3, 2, "3", 45}, {1, 0, 1, "1", 46}, {2, 0, 2, "1", 46},
      {3, 0, 3, "1", 46}, {2, 3, 3, "1", 49},
  };
  for (const auto& [dimension, count, analysis, box, error] : cases) {
    table = RecordFunctionTable{};
    table.dimension = dimension;
    table.count = count;
    host.errors.clear();
    const bool produced = analysis == 0   ? FrequencyDistribution(engine, table, box).has_value()
                          : analysis == 1 ? BasicStatistics(engine, table, box).has_value()
                          : analysis == 2 ? RegressionLine(engine, table, box).has_value()
                                          : MultipleRegression(engine, table).has_value();
    EXPECT_EQ(std::tuple(produced, host.errors), std::tuple(false, std::vector<int>{error})) << analysis << " " << box;
  }
}

TEST_F(StatisticsTest, MultipleRegression) {
  rows({{0, 0, 1}, {1, 0, 3}, {0, 1, 4}, {1, 1, 6}});
  auto r = MultipleRegression(engine, table);
  ASSERT_TRUE(r);
  const char* plane[19] = {".5", ".5", "3.5", ".25", ".25", "3.25", ".", ".5", ".75", ".",
                           ".5547", ".83205", "1.", "1.", "-1.", "1.", "2.", "3.", "1."};
  for (int k = 0; k < 19; ++k) EXPECT_EQ(r->boxes[k], plane[k]) << "Text" << k + 1;
  // Collinear explanatory columns leave the plane undefined.
  rows({{1, 2, 1}, {2, 4, 5}, {3, 6, 4}});
  r = MultipleRegression(engine, table);
  ASSERT_TRUE(r);
  EXPECT_EQ(r->boxes[0] + " " + r->boxes[9], "2. 1.");  // rxy
  for (int k : {12, 13, 16, 17, 18}) EXPECT_EQ(r->boxes[k], "") << "Text" << k + 1;
}

TEST(StatDataTest, OpensOnTheTableOrOneColumnOfFiveRowsWithoutData) {
  RecordFunctionTable t;
  t.kind = 0;
  t.dimension = 3;
  t.count = 40;
  t.values[1] = {9, 9, 9};
  StatData empty(t, false), ja(t, true);
  EXPECT_EQ(std::tuple(empty.dimension(), empty.count(), empty.row(), empty.column(), empty.cell(1, 1)),
            std::tuple(1, 5, 1, 1, ""));
  // Headings carry the number with its leading blank.
  empty.enterCount("12");
  EXPECT_EQ(std::tuple(empty.cell(0, 0), ja.cell(0, 0), empty.cell(0, 1), empty.cell(5, 0), empty.cell(12, 0)),
            std::tuple(" Dim", " 次元", "  1", "  5", "  12"));
  t.kind = ComputedData;
  t.dimension = 2;
  t.count = 3;
  t.values[1] = {0.5f, -2.25f, 7};
  t.values[2] = {1e-7f, 1.0f / 3, 7};
  t.values[3] = {12345678.0f, 0, 7};
  StatData d(t, false);
  ASSERT_EQ(std::tuple(d.dimension(), d.count()), std::tuple(2, 3));
  // Seven digits; nothing beyond the dimension.
  const std::vector<std::string> cells = {"0.5", "-2.25", "", "1E-07", "0.3333333", "", "1.234568E+07", "0", ""};
  for (int k = 0; k < 9; ++k) EXPECT_EQ(d.cell(k / 3 + 1, k % 3 + 1), cells[k]) << k;
}

TEST(StatDataTest, DimensionAndCountAreRoundedAndCapped) {
  RecordFunctionTable t;
  StatData d(t, false);
  d.enterDimension("2");
  const std::tuple<bool, const char*, int> cases[] = {  // dimension or count, text, value
      {true, "5", 3},        {true, "2.5", 2}, {true, "0", 2},    {true, " 3", 3},   {true, "1e9", 3}, {true, "1.6", 2},
      {false, "6000", 5000}, {false, "10", 10}, {false, "-4", 10}, {false, "3.5", 4}};
  for (auto [dimension, text, value] : cases) {
    EXPECT_EQ(dimension ? d.enterDimension(text) : d.enterCount(text), std::to_string(value)) << text;
    EXPECT_EQ(dimension ? d.dimension() : d.count(), value) << text;
  }
}

int Current(const StatData& d) { return d.row() * 10 + d.column(); }

TEST(StatDataTest, EnterClickAndTypeMoveTheCurrentCell) {
  RecordFunctionTable t;
  StatData d(t, false);
  for (int k = 1; k <= 5; ++k) d.enterValue(std::to_string(k));
  EXPECT_EQ(std::tuple(d.cell(5, 1), Current(d)), std::tuple("5", 11));  // one column: back to its top
  // Down the column, then to the next column, then back to the first.
  d.enterDimension("2");
  d.enterCount("3");
  for (int rc : {11, 21, 31, 12, 22, 32, 11}) {
    EXPECT_EQ(Current(d), rc);
    d.enterValue("v");
  }
  // A click makes a cell current; a click or typing outside the cells does nothing.
  d.enterDimension("3");
  d.enterCount("5");
  d.select(4, 2);
  d.enterValue("x");
  d.setCell(2, 3, "7.5");
  EXPECT_EQ(std::tuple(d.cell(4, 2), d.cell(2, 3)), std::tuple("x", "7.5"));
  for (auto [i, j] : {std::pair{0, 1}, std::pair{1, 0}, std::pair{6, 1}, std::pair{1, 4}}) {
    d.select(i, j);
    d.setCell(i, j, "junk");
    EXPECT_NE(d.cell(i, j), "junk") << i << "," << j;
  }
  EXPECT_EQ(Current(d), 52);
  // Shrinking keeps the cells that still fit and the current cell inside.
  d.enterCount("3");
  d.enterDimension("1");
  EXPECT_EQ(std::tuple(d.cell(3, 1), Current(d)), std::tuple("v", 31));
}

class OrbitaFileTest : public test::TempDirTest {};

// Memory reads every cell leniently; ORBITA.ORB holds the cells as typed, column by column.
TEST_F(OrbitaFileTest, MemoryAndTheFile) {
  RecordFunctionTable t;
  t.kind = NoData;
  StatData d(t, false);
  d.enterDimension("2");
  d.enterCount("4");
  const char* typed[] = {" 1.50", "  2.5", "abc", "", "1e3", "-7x", "1e300", "-1e300"};
  const float stored[] = {1.5f, 2.5f, 0, 0, 1000, -7, FLT_MAX, -FLT_MAX};
  for (const char* s : typed) d.enterValue(s);
  d.storeInto(t);
  EXPECT_EQ(std::tuple(t.kind, t.dimension, t.count), std::tuple(OrbitaData, 2, 4));
  for (int k = 0; k < 8; ++k) EXPECT_EQ(t.values[k % 4 + 1][k / 4], stored[k]) << typed[k];
  ASSERT_TRUE(d.writeFile(dir_));
  ASSERT_TRUE(d.writeFile(dir_));  // replacing an older file leaves no temporary beside it
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_), std::filesystem::directory_iterator()), 1);
  EXPECT_EQ(test::FileText(dir_ / "ORBITA.ORB"),
            "ORBITA\r\n2\r\n4\r\n 1.50\r\n  2.5\r\nabc\r\n\r\n1e3\r\n-7x\r\n1e300\r\n-1e300\r\n");
  EXPECT_FALSE(d.writeFile(dir_ / "missing" / "dir") || std::filesystem::exists(dir_ / "missing"));
}

}  // namespace
}  // namespace merida

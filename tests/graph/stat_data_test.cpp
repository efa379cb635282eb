// The statistical data grid: opening, dimension and count, Enter movement, Memory, ORBITA.ORB.
#include "stats/stat_data.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <sstream>

#include "engine/atomic_file.h"
#include "test_support.h"

namespace merida {
namespace {

TEST(StatDataTest, OpensWithOneColumnOfFiveRowsWithoutData) {
  for (int16_t kind : {int16_t{0}, int16_t{NoData}}) {
    RecordFunctionTable t;
    t.kind = kind;
    t.dimension = 3;
    t.count = 40;
    t.values[1] = {9, 9, 9};
    StatData d(t, false);
    EXPECT_EQ(d.dimension(), 1);
    EXPECT_EQ(d.count(), 5);
    EXPECT_EQ(d.row(), 1);
    EXPECT_EQ(d.column(), 1);
    EXPECT_EQ(d.cell(1, 1), "");
  }
}

TEST(StatDataTest, HeadingsCarryTheNumberWithItsLeadingBlank) {
  RecordFunctionTable t;
  StatData en(t, false), ja(t, true);
  EXPECT_EQ(en.cell(0, 0), " Dim");
  EXPECT_EQ(ja.cell(0, 0), " 次元");
  EXPECT_EQ(en.cell(0, 1), "  1");
  EXPECT_EQ(en.cell(1, 0), "  1");
  EXPECT_EQ(en.cell(5, 0), "  5");
  en.enterCount("12");
  EXPECT_EQ(en.cell(12, 0), "  12");
}

TEST(StatDataTest, OpensOnTheRowsOfATableWithData) {
  RecordFunctionTable t;
  t.kind = ComputedData;
  t.dimension = 2;
  t.count = 3;
  t.values[1] = {0.5f, -2.25f, 7};
  t.values[2] = {1e-7f, 1.0f / 3, 7};
  t.values[3] = {12345678.0f, 0, 7};
  StatData d(t, false);
  ASSERT_EQ(d.dimension(), 2);
  ASSERT_EQ(d.count(), 3);
  const char* expected[3][2] = {{"0.5", "-2.25"}, {"1E-07", "0.3333333"}, {"1.234568E+07", "0"}};
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 2; ++j) EXPECT_EQ(d.cell(i, j), expected[i - 1][j - 1]) << i << "," << j;
  }
  EXPECT_EQ(d.cell(1, 3), "");  // beyond the dimension
}

TEST(StatDataTest, DimensionAndCountAreRoundedAndCapped) {
  struct Case {
    const char* text;
    std::string shown;
    int value;
  };
  const Case dims[] = {{"5", "3", 3}, {"2", "2", 2}, {"2.5", "2", 2}, {"0", "2", 2}, {"abc", "2", 2}, {" 3", "3", 3},
                       {"1e9", "3", 3}, {"1.6", "2", 2}};
  RecordFunctionTable t;
  StatData d(t, false);
  d.enterDimension("2");
  for (const Case& c : dims) {
    EXPECT_EQ(d.enterDimension(c.text), c.shown) << c.text;
    EXPECT_EQ(d.dimension(), c.value) << c.text;
  }
  const Case counts[] = {{"6000", "5000", 5000}, {"10", "10", 10}, {"-4", "10", 10}, {"3.5", "4", 4}, {"5000", "5000", 5000}};
  for (const Case& c : counts) {
    EXPECT_EQ(d.enterCount(c.text), c.shown) << c.text;
    EXPECT_EQ(d.count(), c.value) << c.text;
  }
}

TEST(StatDataTest, EnterMovesDownTheColumnThenToTheNextColumn) {
  RecordFunctionTable t;
  StatData d(t, false);
  for (int k = 1; k <= 5; ++k) d.enterValue(std::to_string(k));
  for (int k = 1; k <= 5; ++k) EXPECT_EQ(d.cell(k, 1), std::to_string(k));
  EXPECT_EQ(d.row(), 1);  // one column: back to its top
  EXPECT_EQ(d.column(), 1);

  d.enterDimension("2");
  d.enterCount("3");
  const int path[][2] = {{1, 1}, {2, 1}, {3, 1}, {1, 2}, {2, 2}, {3, 2}, {1, 1}};
  for (const auto& p : path) {
    EXPECT_EQ(d.row(), p[0]);
    EXPECT_EQ(d.column(), p[1]);
    d.enterValue("v");
  }
}

TEST(StatDataTest, ClickingACellMakesItCurrent) {
  RecordFunctionTable t;
  StatData d(t, false);
  d.enterDimension("3");
  d.select(4, 2);
  EXPECT_EQ(d.row(), 4);
  EXPECT_EQ(d.column(), 2);
  d.enterValue("x");
  EXPECT_EQ(d.cell(4, 2), "x");
  EXPECT_EQ(d.row(), 5);
  for (auto [i, j] : {std::pair{0, 1}, std::pair{1, 0}, std::pair{6, 1}, std::pair{1, 4}}) {
    d.select(i, j);
    EXPECT_EQ(d.row(), 5);
    EXPECT_EQ(d.column(), 2);
  }
}

TEST(StatDataTest, TypingIntoACellLeavesTheCurrentCellAndIgnoresHeadings) {
  RecordFunctionTable t;
  StatData d(t, false);
  d.enterDimension("2");
  d.select(2, 1);
  d.setCell(4, 2, "7.5");
  EXPECT_EQ(d.cell(4, 2), "7.5");
  EXPECT_EQ(d.row(), 2);
  EXPECT_EQ(d.column(), 1);
  for (auto [i, j] : {std::pair{0, 1}, std::pair{1, 0}, std::pair{6, 1}, std::pair{1, 3}}) {
    d.setCell(i, j, "junk");
    EXPECT_NE(d.cell(i, j), "junk") << i << "," << j;
  }
  d.enterValue("9");  // Enter still fills the current cell
  EXPECT_EQ(d.cell(2, 1), "9");
  EXPECT_EQ(d.orbitaText(), "ORBITA\r\n2\r\n5\r\n\r\n9\r\n\r\n\r\n\r\n\r\n\r\n\r\n7.5\r\n\r\n");
}

TEST(StatDataTest, ShrinkingKeepsTheCellsThatStillFitAndTheCurrentCellInside) {
  RecordFunctionTable t;
  StatData d(t, false);
  d.enterDimension("2");
  for (int k = 1; k <= 10; ++k) d.enterValue("c" + std::to_string(k));
  d.select(5, 2);
  d.enterCount("3");
  d.enterDimension("1");
  EXPECT_EQ(d.cell(3, 1), "c3");
  EXPECT_EQ(d.row(), 3);
  EXPECT_EQ(d.column(), 1);
}

TEST(StatDataTest, MemoryReadsEveryCellLeniently) {
  RecordFunctionTable t;
  t.kind = NoData;
  StatData d(t, false);
  d.enterDimension("2");
  d.enterCount("4");
  const char* typed[] = {"1", "  2.5", "abc", "", "1e3", "-7x", "1e300", "-1e300"};
  const float stored[] = {1, 2.5f, 0, 0, 1000, -7, FLT_MAX, -FLT_MAX};
  for (const char* s : typed) d.enterValue(s);
  d.storeInto(t);
  EXPECT_EQ(t.kind, OrbitaData);
  EXPECT_EQ(t.dimension, 2);
  EXPECT_EQ(t.count, 4);
  for (int k = 0; k < 8; ++k) EXPECT_EQ(t.values[k % 4 + 1][k / 4], stored[k]) << typed[k];
}

class OrbitaFileTest : public test::TempDirTest {};

TEST_F(OrbitaFileTest, FileReadsBackLineByLine) {
  RecordFunctionTable t;
  StatData d(t, false);
  d.enterDimension("3");
  d.enterCount("2");
  const std::vector<std::string> typed = {" 1.50", "-2", "", "3E+2", "abc", "0.125"};
  for (const std::string& s : typed) d.enterValue(s);
  ASSERT_TRUE(d.writeFile(dir_));
  // Replacing an older file leaves no temporary beside it.
  ASSERT_TRUE(d.writeFile(dir_));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_), std::filesystem::directory_iterator()), 1);

  std::istringstream in(*test::FileText(dir_ / "ORBITA.ORB"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    ASSERT_FALSE(line.empty());
    ASSERT_EQ(line.back(), '\r');
    line.pop_back();
    lines.push_back(line);
  }
  ASSERT_EQ(lines.size(), 3u + 6u);
  EXPECT_EQ(lines[0], "ORBITA");
  EXPECT_EQ(lines[1], "3");
  EXPECT_EQ(lines[2], "2");
  for (size_t k = 0; k < typed.size(); ++k) EXPECT_EQ(lines[3 + k], typed[k]);
}

TEST_F(OrbitaFileTest, AFailedWriteReportsFalse) {
  RecordFunctionTable t;
  StatData d(t, false);
  EXPECT_FALSE(d.writeFile(dir_ / "missing" / "dir"));
  EXPECT_FALSE(std::filesystem::exists(dir_ / "missing"));
}

}  // namespace
}  // namespace merida

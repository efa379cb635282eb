// Go's elimination and its messages, Simult, Determinant, Inverse and the grid helpers.
#include "algebra/linear_system.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace merida {
namespace {

using Lines = std::vector<std::string>;
const Lines kZeroPivot = {"対角要素が０になり", "計算できません", "係数の行または列を", "交換してください"};
const Lines kResidual = {"係数がおかしいと", "思われます"};
const Lines kSingular = {"行列式が０になり", "計算できません"};

struct SolveCase {
  const char* name;
  CellTexts grid;
  LinearOutcome outcome;
  Lines lines;
};

void PrintTo(const SolveCase& c, std::ostream* os) { *os << c.name; }

class GoTest : public ::testing::TestWithParam<SolveCase> {};

TEST_P(GoTest, ListsWhatTheEliminationGives) {
  const SolveCase& c = GetParam();
  LinearResult r = SolveByElimination(c.grid);
  EXPECT_EQ(r.outcome, c.outcome);
  EXPECT_EQ(r.lines, c.lines);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GoTest,
    ::testing::Values(
        SolveCase{"TwoByTwo", {{"2", "1", "3"}, {"1", "-1", "0"}}, LinearOutcome::Listed, {" X1 =  1", " X2 =  1"}},
        SolveCase{"ThreeByThree",
                  {{"1", "1", "1", "6"}, {"0", "2", "5", "-4"}, {"2", "5", "-1", "27"}},
                  LinearOutcome::Listed,
                  {" X1 =  5", " X2 =  3", " X3 = -2"}},
        SolveCase{"OneThirdInSingle", {{"3", "1"}}, LinearOutcome::Listed, {" X1 =  .3333333"}},
        SolveCase{"NegativeHalf", {{"2", "-1"}}, LinearOutcome::Listed, {" X1 = -.5"}},
        SolveCase{"ZeroSolution", {{"5", "0"}}, LinearOutcome::Listed, {" X1 =  0"}},
        SolveCase{"BlanksAndExponents", {{" 2E0 ", "1", "3"}, {"1", "-1", " 0.0"}}, LinearOutcome::Listed,
                  {" X1 =  1", " X2 =  1"}},
        SolveCase{"FirstPivotZeroThoughSolvable", {{"0", "1", "1"}, {"1", "0", "2"}}, LinearOutcome::Refused, kZeroPivot},
        SolveCase{"SingularForward", {{"1", "2", "3"}, {"2", "4", "6"}}, LinearOutcome::Refused, kZeroPivot},
        SolveCase{"SecondPivotZeroGoingForward",
                  {{"1", "1", "1", "1"}, {"1", "1", "2", "1"}, {"0", "1", "1", "1"}},
                  LinearOutcome::Refused, kZeroPivot},
        SolveCase{"ThirdPivotZeroFoundGoingBack",
                  {{"1", "1", "1", "1"}, {"1", "2", "1", "1"}, {"2", "3", "2", "1"}},
                  LinearOutcome::Refused, kZeroPivot},
        SolveCase{"LastPivotZeroFoundGoingBack", {{"1", "1", "1"}, {"1", "1", "2"}}, LinearOutcome::Refused, kZeroPivot},
        SolveCase{"ResidualWarningAfterTheLines", {{"11", "1E17"}}, LinearOutcome::Listed,
                  {" X1 =  9.090909E+15", "係数がおかしいと", "思われます"}},
        SolveCase{"ResidualWarningOncePerRow", {{"11", "0", "1E17"}, {"0", "11", "1E17"}}, LinearOutcome::Listed,
                  {" X1 =  9.090909E+15", " X2 =  9.090909E+15", "係数がおかしいと", "思われます", "係数がおかしいと",
                   "思われます"}},
        SolveCase{"EmptyCellEndsSilently", {{"2", "1", "3"}, {"1", "", "0"}}, LinearOutcome::Silent, {}},
        SolveCase{"BlankCellIsEmpty", {{"2", "1", "3"}, {"1", "  ", "0"}}, LinearOutcome::Silent, {}},
        SolveCase{"MissingConstantIsEmpty", {{"2", "1", "3"}, {"1", "-1"}}, LinearOutcome::Silent, {}},
        SolveCase{"EmptyBeforeTextEndsSilently", {{"2", "", "3"}, {"1", "x", "0"}}, LinearOutcome::Silent, {}},
        SolveCase{"NoRows", {}, LinearOutcome::Silent, {}},
        SolveCase{"DivisionByZeroIsAFault", {{"0", "1"}}, LinearOutcome::Fault, {}},
        SolveCase{"ZeroOverZeroIsAFault", {{"0", "0"}}, LinearOutcome::Fault, {}},
        SolveCase{"OverflowingCellIsAFault", {{"1E999", "1"}}, LinearOutcome::Fault, {}},
        SolveCase{"UnknownBeyondSingleIsAFault", {{"1E-300", "1E-250"}}, LinearOutcome::Fault, {}},
        SolveCase{"RatioOverflowIsAFault", {{"1E-300", "1", "1"}, {"1E300", "1", "1"}}, LinearOutcome::Fault, {}}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(GoTest, RefusesTextThatIsNotANumberAndNamesTheCell) {
  LinearResult r = SolveByElimination({{"2", "1", "3"}, {"1", "abc", "0"}});
  EXPECT_EQ(r.outcome, LinearOutcome::NotNumeric);
  EXPECT_TRUE(r.lines.empty());
  EXPECT_EQ(r.badRow, 2);
  EXPECT_EQ(r.badColumn, 2);
  r = SolveByElimination({{"2", "1", "3"}, {"1", "1", "PI"}});
  EXPECT_EQ(r.outcome, LinearOutcome::NotNumeric);
  EXPECT_EQ(r.badColumn, 3);
  EXPECT_EQ(SolveByElimination({{"1,5", "1"}}).outcome, LinearOutcome::NotNumeric);
}

TEST(GoTest, TenUnknownsOfADiagonallyDominantSystem) {
  // 10 on the diagonal, 1 elsewhere, constants chosen so that every unknown is 1.
  CellTexts grid(10);
  for (int i = 0; i < 10; ++i) {
    for (int j = 0; j < 10; ++j) grid[i].push_back(i == j ? "10" : "1");
    grid[i].push_back("19");
  }
  LinearResult r = SolveByElimination(grid);
  ASSERT_EQ(r.outcome, LinearOutcome::Listed);
  ASSERT_EQ(r.lines.size(), 10u);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(r.lines[i], " X" + std::to_string(i + 1) + " =  1");
  grid.push_back(grid.back());
  EXPECT_EQ(SolveByElimination(grid).outcome, LinearOutcome::Silent);
}

class SimultTest : public ::testing::TestWithParam<SolveCase> {};

TEST_P(SimultTest, ListsTheComponentsSolution) {
  const SolveCase& c = GetParam();
  LinearResult r = SolveByMatrix(c.grid);
  EXPECT_EQ(r.outcome, c.outcome);
  EXPECT_EQ(r.lines, c.lines);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SimultTest,
    ::testing::Values(
        SolveCase{"TwoByTwo", {{"2", "1", "3"}, {"1", "-1", "0"}}, LinearOutcome::Listed, {" X1 =  1", " X2 =  1"}},
        SolveCase{"NeedsARowExchangeWhichGoRefuses", {{"0", "1", "1"}, {"1", "0", "2"}}, LinearOutcome::Listed,
                  {" X1 =  2", " X2 =  1"}},
        SolveCase{"OneThird", {{"3", "1"}}, LinearOutcome::Listed, {" X1 =  .3333333"}},
        SolveCase{"IntegerSolutionWithoutNoise", {{"4", "7", "2", "24"}, {"3", "6", "1", "18"}, {"2", "5", "3", "21"}},
                  LinearOutcome::Listed, {" X1 =  1", " X2 =  2", " X3 =  3"}},
        SolveCase{"ThirdsOfAnIntegerSystem", {{"1", "2", "3", "1"}, {"2", "5", "3", "1"}, {"1", "0", "8", "1"}},
                  LinearOutcome::Listed, {" X1 = -15", " X2 =  5", " X3 =  2"}},
        SolveCase{"Singular", {{"1", "2", "3"}, {"2", "4", "6"}}, LinearOutcome::Refused, kSingular},
        SolveCase{"CellBeyondSingleIsAFault", {{"1E39", "1"}}, LinearOutcome::Fault, {}},
        SolveCase{"SolutionBeyondSingleIsAFault", {{"1E-30", "1E30"}}, LinearOutcome::Fault, {}},
        SolveCase{"EmptyCell", {{"3", ""}}, LinearOutcome::Silent, {}},
        SolveCase{"TextCell", {{"3", "one"}}, LinearOutcome::NotNumeric, {}}),
    [](const auto& p) { return std::string(p.param.name); });

struct MatrixCase {
  const char* name;
  CellTexts grid;
  Lines determinant;
  CellTexts inverse;  // empty: singular
};

void PrintTo(const MatrixCase& c, std::ostream* os) { *os << c.name; }

class MatrixModeTest : public ::testing::TestWithParam<MatrixCase> {};

TEST_P(MatrixModeTest, DeterminantLine) {
  LinearResult r = Determinant(GetParam().grid);
  EXPECT_EQ(r.outcome, LinearOutcome::Listed);
  EXPECT_EQ(r.lines, GetParam().determinant);
}

TEST_P(MatrixModeTest, InverseCells) {
  const MatrixCase& c = GetParam();
  LinearResult r = Inverse(c.grid);
  if (c.inverse.empty()) {
    EXPECT_EQ(r.outcome, LinearOutcome::Refused);
    EXPECT_EQ(r.lines, kSingular);
    EXPECT_TRUE(r.cells.empty());
  } else {
    EXPECT_EQ(r.outcome, LinearOutcome::Listed);
    EXPECT_TRUE(r.lines.empty());
    EXPECT_EQ(r.cells, c.inverse);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Known, MatrixModeTest,
    ::testing::Values(
        MatrixCase{"OneByOne", {{"4"}}, {" 4"}, {{"0.25"}}},
        MatrixCase{"TwoByTwo", {{"4", "7"}, {"2", "6"}}, {" 10"}, {{"0.6", "-0.7"}, {"-0.2", "0.4"}}},
        MatrixCase{"NegativeDeterminant", {{"1", "2"}, {"3", "4"}}, {"-2"}, {{"-2", "1"}, {"1.5", "-0.5"}}},
        MatrixCase{"Diagonal", {{"2", "0", "0"}, {"0", "-4", "0"}, {"0", "0", "8"}}, {"-64"},
                   {{"0.5", "0", "0"}, {"0", "-0.25", "0"}, {"0", "0", "0.125"}}},
        MatrixCase{"Permutation", {{"0", "1", "0"}, {"0", "0", "1"}, {"1", "0", "0"}}, {" 1"},
                   {{"0", "0", "1"}, {"1", "0", "0"}, {"0", "1", "0"}}},
        MatrixCase{"SingularRows", {{"1", "2", "3"}, {"4", "5", "6"}, {"7", "8", "9"}}, {" 0"}, {}},
        MatrixCase{"ZeroMatrix", {{"0", "0"}, {"0", "0"}}, {" 0"}, {}},
        MatrixCase{"BelowThresholdWrittenAsZero", {{"1", "0"}, {"0", "1E7"}}, {" 1E+07"}, {{"1", "0"}, {"0", "0"}}},
        MatrixCase{"AtThresholdKept", {{"1E6"}}, {" 1000000"}, {{"1E-06"}}},
        MatrixCase{"NinthsWithAnExactDeterminant", {{"4", "7", "2"}, {"3", "6", "1"}, {"2", "5", "3"}}, {" 9"},
                   {{"1.444444", "-1.222222", "-0.5555556"},
                    {"-0.7777778", "0.8888889", "0.2222222"},
                    {"0.3333333", "-0.6666667", "0.3333333"}}},
        MatrixCase{"IntegerInverse", {{"1", "2", "3"}, {"2", "5", "3"}, {"1", "0", "8"}}, {"-1"},
                   {{"-40", "16", "9"}, {"13", "-5", "-3"}, {"5", "-2", "-1"}}},
        MatrixCase{"PascalOrderFour", {{"1", "1", "1", "1"}, {"1", "2", "3", "4"}, {"1", "3", "6", "10"}, {"1", "4", "10", "20"}},
                   {" 1"}, {{"4", "-6", "4", "-1"}, {"-6", "14", "-11", "3"}, {"4", "-11", "10", "-3"}, {"-1", "3", "-3", "1"}}},
        MatrixCase{"ThirdsInSingle", {{"3", "0"}, {"0", "-3"}}, {"-9"}, {{"0.3333333", "0"}, {"0", "-0.3333333"}}}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(MatrixModeTest, OrderTenTridiagonal) {
  // 2 on the diagonal, -1 beside it: determinant n + 1, inverse min(i,j)(n+1-max(i,j))/(n+1).
  const int n = 10;
  CellTexts grid(n, std::vector<std::string>(n, "0"));
  for (int i = 0; i < n; ++i) {
    grid[i][i] = "2";
    if (i > 0) grid[i][i - 1] = "-1";
    if (i + 1 < n) grid[i][i + 1] = "-1";
  }
  EXPECT_EQ(Determinant(grid).lines, Lines{" 11"});
  LinearResult r = Inverse(grid);
  ASSERT_EQ(r.outcome, LinearOutcome::Listed);
  ASSERT_EQ(r.cells.size(), 10u);
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      double expected = std::min(i, j) * (n + 1.0 - std::max(i, j)) / (n + 1.0);
      double got = std::stod(r.cells[i - 1][j - 1]);
      EXPECT_NEAR(got, expected, 2e-5) << i << "," << j;
    }
  }
}

TEST(MatrixModeTest, InputRulesMatchGo) {
  EXPECT_EQ(Determinant({{"1", ""}, {"0", "1"}}).outcome, LinearOutcome::Silent);
  LinearResult r = Inverse({{"1", "0"}, {"0", "x"}});
  EXPECT_EQ(r.outcome, LinearOutcome::NotNumeric);
  EXPECT_EQ(r.badRow, 2);
  EXPECT_EQ(r.badColumn, 2);
  EXPECT_EQ(Determinant({{"1E20", "0"}, {"0", "1E20"}}).outcome, LinearOutcome::Fault);
  EXPECT_EQ(Inverse({{"1E39"}}).outcome, LinearOutcome::Fault);
  // The matrix grid has no constant column: a third text in a row is not read.
  EXPECT_EQ(Determinant({{"1", "0", "junk"}, {"0", "1", "junk"}}).lines, Lines{" 1"});
}

TEST(MatrixModeTest, InverseReadsBackItsOwnCells) {
  CellTexts grid = {{"4", "7"}, {"2", "6"}};
  LinearResult once = Inverse(grid);
  LinearResult twice = Inverse(once.cells);
  ASSERT_EQ(twice.outcome, LinearOutcome::Listed);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) EXPECT_NEAR(std::stod(twice.cells[i][j]), std::stod(grid[i][j]), 1e-5);
}

struct DimensionCase {
  const char* text;
  std::optional<int> order;
};

class DimensionTest : public ::testing::TestWithParam<DimensionCase> {};

TEST_P(DimensionTest, Order) { EXPECT_EQ(DimensionFromText(GetParam().text), GetParam().order) << GetParam().text; }

INSTANTIATE_TEST_SUITE_P(Texts, DimensionTest,
                         ::testing::Values(DimensionCase{"3", 3}, DimensionCase{" 7 ", 7}, DimensionCase{"10", 10},
                                           DimensionCase{"15", 10}, DimensionCase{"32767", 10},
                                           DimensionCase{"2.5", 2}, DimensionCase{"3.5", 4}, DimensionCase{"1", 1},
                                           DimensionCase{"0", std::nullopt}, DimensionCase{"-2", std::nullopt},
                                           DimensionCase{"0.4", std::nullopt}, DimensionCase{"40000", std::nullopt},
                                           DimensionCase{"", std::nullopt}, DimensionCase{"three", std::nullopt}));

TEST(GridLayoutTest, Headers) {
  EXPECT_EQ(ColumnHeaders(3, false), (Lines{" a1", " a2", " a3", " c"}));
  EXPECT_EQ(ColumnHeaders(2, true), (Lines{" a1", " a2"}));
  EXPECT_EQ(ColumnHeaders(10, true).back(), " a10");
  EXPECT_EQ(RowHeaders(3), (Lines{"1", "2", "3"}));
}

struct MoveCase {
  CellPosition from;
  int n;
  bool matrix;
  CellPosition to;
};

class NextCellTest : public ::testing::TestWithParam<MoveCase> {};

TEST_P(NextCellTest, Moves) {
  const MoveCase& c = GetParam();
  CellPosition got = NextCell(c.from, c.n, c.matrix);
  EXPECT_EQ(got.row, c.to.row);
  EXPECT_EQ(got.column, c.to.column);
}

INSTANTIATE_TEST_SUITE_P(Enter, NextCellTest,
                         ::testing::Values(MoveCase{{1, 1}, 3, false, {1, 2}}, MoveCase{{1, 3}, 3, false, {1, 4}},
                                           MoveCase{{1, 4}, 3, false, {2, 1}}, MoveCase{{3, 4}, 3, false, {1, 1}},
                                           MoveCase{{1, 3}, 3, true, {2, 1}}, MoveCase{{2, 2}, 3, true, {2, 3}},
                                           MoveCase{{1, 1}, 1, true, {1, 1}}, MoveCase{{1, 1}, 1, false, {1, 2}}));

TEST(CellTextTest, PlainFormWithSevenDigits) {
  EXPECT_EQ(CellText(0.5f), "0.5");
  EXPECT_EQ(CellText(-0.25f), "-0.25");
  EXPECT_EQ(CellText(1.0f / 3.0f), "0.3333333");
  EXPECT_EQ(CellText(-2.0f), "-2");
  EXPECT_EQ(CellText(0.0f), "0");
  EXPECT_EQ(CellText(1e-7f), "1E-07");
  EXPECT_EQ(CellText(123456789.0f), "1.234568E+08");
  EXPECT_EQ(CellText(-1234.5f), "-1234.5");
}

}  // namespace
}  // namespace merida

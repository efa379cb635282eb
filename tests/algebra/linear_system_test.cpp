// Go's elimination and its messages, Simult, Determinant, Inverse and the grid helpers; the
// matrix component under them: order limits, singular matrices, overflow, known results.
#include "algebra/linear_system.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "controls/matrix.h"

namespace merida {
namespace {

using Lines = std::vector<std::string>;
const Lines kZeroPivot = {"対角要素が０になり", "計算できません", "係数の行または列を", "交換してください"};
const Lines kSingular = {"行列式が０になり", "計算できません"};
using O = LinearOutcome;

TEST(LinearSystemTest, GoAndSimultListWhatTheyGive) {
  struct Case {
    LinearResult (*solve)(const CellTexts&);
    CellTexts grid;
    O outcome;
    Lines lines;
  };
  const auto go = SolveByElimination, simult = SolveByMatrix;
  const Case cases[] = {
      {go, {{" 2E0 ", "1", "3"}, {"1", "-1", " 0.0"}}, O::Listed, {" X1 =  1", " X2 =  1"}},
      {go, {{"1", "1", "1", "6"}, {"0", "2", "5", "-4"}, {"2", "5", "-1", "27"}}, O::Listed,
       {" X1 =  5", " X2 =  3", " X3 = -2"}},
      {go, {{"3", "1"}}, O::Listed, {" X1 =  .3333333"}},
      {go, {{"0", "1", "1"}, {"1", "0", "2"}}, O::Refused, kZeroPivot},  // solvable, but Go does not exchange
      {go, {{"1", "1", "1"}, {"1", "1", "2"}}, O::Refused, kZeroPivot},  // found going back
      // The residual warning after the lines, once per row.
      {go, {{"11", "0", "1E17"}, {"0", "11", "1E17"}}, O::Listed,
       {" X1 =  9.090909E+15", " X2 =  9.090909E+15", "係数がおかしいと", "思われます", "係数がおかしいと",
        "思われます"}},
      {go, {{"2", "1", "3"}, {"1", "  ", "0"}}, O::Silent, {}},  // a blank cell is empty
      {go, {{"2", "1", "3"}, {"1", "-1"}}, O::Silent, {}}, {go, {}, O::Silent, {}},
      {go, {{"1E999", "1"}}, O::Fault, {}},
      {go, {{"1E-300", "1E-250"}}, O::Fault, {}},  // an unknown beyond single precision
      {go, {{"1E-300", "1", "1"}, {"1E300", "1", "1"}}, O::Fault, {}},  // the ratio overflows
      {simult, {{"0", "1", "1"}, {"1", "0", "2"}}, O::Listed, {" X1 =  2", " X2 =  1"}},
      {simult, {{"4", "7", "2", "24"}, {"3", "6", "1", "18"}, {"2", "5", "3", "21"}}, O::Listed,
       {" X1 =  1", " X2 =  2", " X3 =  3"}},  // no noise in the last digit
      {simult, {{"1", "2", "3"}, {"2", "4", "6"}}, O::Refused, kSingular}, {simult, {{"1E39", "1"}}, O::Fault, {}},
      {simult, {{"1E-30", "1E30"}}, O::Fault, {}},
  };
  for (size_t k = 0; k < std::size(cases); ++k) {
    LinearResult r = cases[k].solve(cases[k].grid);
    EXPECT_EQ(std::tuple(r.outcome, r.lines), std::tuple(cases[k].outcome, cases[k].lines)) << "case " << k;
  }
  // Text that is no number names its cell.
  for (const LinearResult& r :
       {SolveByElimination({{"2", "1", "3"}, {"1", "abc", "0"}}), Inverse({{"1", "0"}, {"0", "PI"}})}) {
    EXPECT_EQ(std::tuple(r.outcome, r.badRow * 10 + r.badColumn), std::tuple(O::NotNumeric, 22));
  }
}

TEST(LinearSystemTest, TenUnknownsAndNoMore) {
  // 10 on the diagonal, 1 elsewhere, constants chosen so that every unknown is 1.
  CellTexts grid(10);
  for (int i = 0; i < 10; ++i) {
    for (int j = 0; j < 10; ++j) grid[i].push_back(i == j ? "10" : "1");
    grid[i].push_back("19");
  }
  LinearResult r = SolveByElimination(grid);
  ASSERT_EQ(r.lines.size(), 10u);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(r.lines[i], " X" + std::to_string(i + 1) + " =  1");
  grid.push_back(grid.back());
  EXPECT_EQ(SolveByElimination(grid).outcome, O::Silent);
}

TEST(LinearSystemTest, DeterminantAndInverseCells) {
  // Grid, determinant line, inverse cells (none: singular).
  const std::tuple<CellTexts, const char*, CellTexts> cases[] = {
      {{{"1", "2"}, {"3", "4"}}, "-2", {{"-2", "1"}, {"1.5", "-0.5"}}},
      {{{"1", "2", "3"}, {"4", "5", "6"}, {"7", "8", "9"}}, " 0", {}},
      {{{"1", "0"}, {"0", "1E7"}}, " 1E+07", {{"1", "0"}, {"0", "0"}}},  // below the threshold: written as 0
      {{{"1E6"}}, " 1000000", {{"1E-06"}}},                              // at it: kept
      {{{"4", "7", "2"}, {"3", "6", "1"}, {"2", "5", "3"}}, " 9",
       {{"1.444444", "-1.222222", "-0.5555556"}, {"-0.7777778", "0.8888889", "0.2222222"},
        {"0.3333333", "-0.6666667", "0.3333333"}}},
      {{{"1", "2", "3"}, {"2", "5", "3"}, {"1", "0", "8"}}, "-1",
       {{"-40", "16", "9"}, {"13", "-5", "-3"}, {"5", "-2", "-1"}}},
  };
  for (const auto& [grid, determinant, inverse] : cases) {
    EXPECT_EQ(Determinant(grid).lines, Lines{determinant});
    LinearResult r = Inverse(grid);
    EXPECT_EQ(std::tuple(r.outcome, r.lines, r.cells),
              std::tuple(inverse.empty() ? O::Refused : O::Listed, inverse.empty() ? kSingular : Lines{}, inverse))
        << determinant;
  }
  EXPECT_EQ(Determinant({{"1", ""}, {"0", "1"}}).outcome, O::Silent);
  EXPECT_EQ(Determinant({{"1E20", "0"}, {"0", "1E20"}}).outcome, O::Fault);
  EXPECT_EQ(Inverse({{"1E39"}}).outcome, O::Fault);
  // The matrix grid has no constant column: a third text in a row is not read.
  EXPECT_EQ(Determinant({{"1", "0", "junk"}, {"0", "1", "junk"}}).lines, Lines{" 1"});
}

TEST(LinearSystemTest, GridHelpers) {
  const std::pair<const char*, std::optional<int>> dims[] = {
      {" 7 ", 7}, {"15", 10}, {"2.5", 2}, {"3.5", 4}, {"1", 1}, {"0.4", {}}, {"40000", {}}, {"", {}}, {"three", {}}};
  for (auto [text, order] : dims) EXPECT_EQ(DimensionFromText(text), order) << text;
  EXPECT_EQ(ColumnHeaders(3, false), (Lines{" a1", " a2", " a3", " c"}));
  EXPECT_EQ(std::tuple(ColumnHeaders(10, true).back(), ColumnHeaders(2, true).size()), std::tuple(" a10", 2u));
  EXPECT_EQ(RowHeaders(3), (Lines{"1", "2", "3"}));
  // Enter from (row, column) in an order n grid, with or without the constant column.
  const std::tuple<int, int, int, bool, int, int> moves[] = {
      {1, 1, 3, false, 1, 2}, {1, 3, 3, false, 1, 4}, {1, 4, 3, false, 2, 1}, {3, 4, 3, false, 1, 1},
      {1, 3, 3, true, 2, 1},  {2, 2, 3, true, 2, 3},  {1, 1, 1, true, 1, 1},  {1, 1, 1, false, 1, 2}};
  for (auto [row, column, n, matrix, toRow, toColumn] : moves) {
    CellPosition got = NextCell({row, column}, n, matrix);
    EXPECT_EQ(got.row * 100 + got.column, toRow * 100 + toColumn) << row << "," << column << " n " << n << matrix;
  }
  const std::pair<float, const char*> texts[] = {{0.5f, "0.5"},     {-0.25f, "-0.25"}, {1.0f / 3, "0.3333333"},
                                                 {0.0f, "0"},       {1e-7f, "1E-07"},  {123456789.0f, "1.234568E+08"}};
  for (auto [v, text] : texts) EXPECT_EQ(CellText(v), text);
}

MatrixControl Matrix(int n, const std::vector<double>& a, const std::vector<double>& b = {}) {
  MatrixControl m;
  m.setOrder(n);
  m.setMatrix(a);
  m.setVector(b);
  return m;
}

TEST(MatrixControlTest, OrdersAndElements) {
  EXPECT_EQ(std::tuple(Matrix(0, {}).order(), Matrix(11, {}).order()), std::tuple(1, 10));
  MatrixControl m = Matrix(2, {1, 2, 3, 4});
  m.setOrder(2);  // clears the data
  EXPECT_EQ(m.determinant().values, std::vector<double>{0.0});
  // Missing elements are zero, extra ones ignored; rows are exchanged where a pivot is zero.
  EXPECT_EQ(Matrix(2, {2}).solve().status, MatrixStatus::Singular);
  EXPECT_EQ(Matrix(2, {2, 0, 0, 4, 99, 99}, {2}).solve().values, (std::vector<double>{1, 0}));
  const std::vector<double> x = Matrix(3, {0, 2, 1, 1, 0, 0, 3, 0, 1}, {7, 1, 6}).solve().values;
  ASSERT_EQ(x.size(), 3u);
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(x[k], k + 1, 1e-15);
}

TEST(MatrixControlTest, SingularOverflowAndBadlyScaled) {
  MatrixControl m = Matrix(3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_EQ(std::tuple(m.inverse().status, m.solve().status, m.determinant().values),
            std::tuple(MatrixStatus::Singular, MatrixStatus::Singular, std::vector<double>{0.0}));
  EXPECT_EQ(Matrix(2, {1, 0, 0, 1e-8}).inverse().values[3], 1e8);  // regular, however scaled
  EXPECT_EQ(Matrix(2, {1e200, 0, 0, 1e200}).determinant().status, MatrixStatus::Overflow);
  EXPECT_EQ(Matrix(2, {1e-320, 0, 0, 1}).inverse().status, MatrixStatus::Overflow);  // a subnormal pivot
  EXPECT_EQ(Matrix(2, {INFINITY, 0, 0, 1}).determinant().status, MatrixStatus::Overflow);
  EXPECT_EQ(Matrix(2, {1, 0, 0, 1}, {NAN, 1}).solve().status, MatrixStatus::Overflow);
}

TEST(MatrixControlTest, HilbertOfOrderFourAgainstItsIntegerInverse) {
  const double known[16] = {16,   -120,  240,  -140,  -120, 1200,  -2700, 1680,
                            240, -2700, 6480, -4200, -140, 1680, -4200, 2800};
  std::vector<double> h;
  for (int k = 0; k < 16; ++k) h.push_back(1.0 / (k / 4 + k % 4 + 1));
  const MatrixResult inv = Matrix(4, h).inverse();
  ASSERT_EQ(inv.values.size(), 16u);
  for (int k = 0; k < 16; ++k) EXPECT_NEAR(inv.values[k], known[k], std::fabs(known[k]) * 1e-9) << k;
  EXPECT_NEAR(Matrix(4, h).determinant().values[0], 1.0 / 6048000.0, 1e-18);
}

}  // namespace
}  // namespace merida

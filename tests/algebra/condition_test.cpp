// Answers from matrices too ill-conditioned for single precision come with a warning.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "algebra/linear_system.h"

namespace merida {
namespace {

CellTexts Hilbert(int n, bool withConstants) {
  CellTexts grid(static_cast<size_t>(n));
  char cell[32];
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      std::snprintf(cell, sizeof cell, "%.9g", 1.0 / (i + j - 1));
      grid[static_cast<size_t>(i - 1)].push_back(cell);
    }
    if (withConstants) grid[static_cast<size_t>(i - 1)].push_back("1");
  }
  return grid;
}

TEST(ConditionWarning, HilbertMatricesWarnFromOrderSix) {
  const struct {
    int order;
    double condition;  // the 2-norm condition number of the exact Hilbert matrix
  } cases[] = {{3, 524.06}, {5, 4.766e5}, {6, 1.495e7}, {8, 1.526e10}, {10, 1.6e13}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.order);
    for (auto operation : {SolveByMatrix, Determinant, Inverse}) {
      const LinearResult r = operation(Hilbert(c.order, operation == SolveByMatrix));
      ASSERT_EQ(r.outcome, LinearOutcome::Listed);
      // The cells are read in single precision: from order 6 the rounding moves the matrix
      // far enough to change its condition, though not below the warning.
      EXPECT_TRUE(c.order <= 5 ? std::fabs(r.condition / c.condition - 1) <= 0.01 : r.condition > 1e7) << r.condition;
      EXPECT_EQ(r.warning.empty(), c.order < 6) << r.warning;
    }
  }
  EXPECT_EQ(SolveByMatrix(Hilbert(6, true)).warning,
            "ill-conditioned (condition number about 1.4E+07); the answer may have no correct digits");
}

TEST(ConditionWarning, ThresholdIsWhereSinglePrecisionRunsOut) {
  EXPECT_EQ(std::tuple(ConditionWarning(1), ConditionWarning(8.3e6)), std::tuple("", ""));
  const std::string tail = "); the answer may have no correct digits";
  EXPECT_EQ(ConditionWarning(8.4e6), "ill-conditioned (condition number about 8.4E+06" + tail);
  EXPECT_EQ(ConditionWarning(INFINITY), "ill-conditioned (condition number about infinity" + tail);
}

}  // namespace
}  // namespace merida

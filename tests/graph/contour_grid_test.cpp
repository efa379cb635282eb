// Grid evaluation of f(x, y) and the cell-by-cell crossing rule.
#include "contour/contour_grid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "test_support.h"

namespace merida {
namespace {

using ContourGridTest = test::EngineTest;

TEST_F(ContourGridTest, GridHoldsTheFormulaAtEveryNode) {
  GridResult r = EvaluateGrid(engine, "x*10+y^2", GridBoxes{"-1", "2", "3", "0", "1", "4"});
  ASSERT_EQ(r.end, GridEnd::kCompleted);
  const ContourGrid& g = r.grid;
  ASSERT_EQ(g.nx, 3);
  ASSERT_EQ(g.ny, 4);
  ASSERT_EQ(g.z.size(), 20u);
  for (int i = 0; i <= 4; ++i) {
    for (int j = 0; j <= 3; ++j) {
      double x = -1 + j * 1.0, y = i * 0.25;
      EXPECT_NEAR(g.at(i, j), x * 10 + y * y, 1e-12) << i << "," << j;
    }
  }
  EXPECT_NEAR(g.zMin, -10, 1e-12);
  EXPECT_NEAR(g.zMax, 21, 1e-12);
  EXPECT_EQ(host.checkpoints, 5);  // once per row
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(ContourGridTest, OneVariableOrNoneIsAccepted) {
  for (const char* f : {"y", "x", "7", "f(x,y)=x-y"}) {
    SCOPED_TRACE(f);
    GridResult r = EvaluateGrid(engine, f, GridBoxes{"0", "1", "2", "0", "1", "2"});
    EXPECT_EQ(r.end, GridEnd::kCompleted);
  }
}

TEST_F(ContourGridTest, DivisionsAboveAHundredAreCapped) {
  GridResult r = EvaluateGrid(engine, "x+y", GridBoxes{"0", "1", "150", "0", "1", "500"});
  ASSERT_EQ(r.end, GridEnd::kCompleted);
  EXPECT_EQ(r.grid.nx, 100);
  EXPECT_EQ(r.grid.ny, 100);
  EXPECT_EQ(r.xDivisionsBox, "100");
  EXPECT_EQ(r.yDivisionsBox, "100");
  r = EvaluateGrid(engine, "x+y", GridBoxes{"0", "1", "100", "0", "1", "99.5"});
  EXPECT_EQ(r.grid.ny, 100);
  EXPECT_FALSE(r.xDivisionsBox);
  EXPECT_FALSE(r.yDivisionsBox);
}

TEST_F(ContourGridTest, UnusableBoxesEndSilently) {
  const GridBoxes cases[] = {
      {"0", "1", "0", "0", "1", "5"},   {"0", "1", "x", "0", "1", "5"},   {"1", "0", "5", "0", "1", "5"},
      {"0", "1", "5", "0", "1", "0.4"}, {"0", "1", "5", "2", "2", "5"},   {"0", "1", "5", "0", "1", ""},
      {"0", "1", "99999", "0", "1", "5"},
  };
  for (const GridBoxes& b : cases) {
    GridResult r = EvaluateGrid(engine, "x*y", b);
    EXPECT_EQ(r.end, GridEnd::kSilent);
    EXPECT_TRUE(host.errors.empty());
  }
}

TEST_F(ContourGridTest, VariableErrors) {
  struct Case {
    const char* formula;
    int error;
  };
  const Case cases[] = {{"x*y*z", 31}, {"x+t", 32}, {"X+y", 32}, {"f(a,b)=a*b", 32}, {"x/(x-y)", 11}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.formula);
    host.errors.clear();
    GridResult r = EvaluateGrid(engine, c.formula, GridBoxes{"0", "1", "4", "0", "1", "4"});
    EXPECT_EQ(r.end, GridEnd::kError);
    EXPECT_EQ(host.errors, std::vector<int>{c.error});
    EXPECT_EQ(engine.BindToX, -1);
  }
}

TEST_F(ContourGridTest, OverflowEndsQuietly) {
  GridResult r = EvaluateGrid(engine, "exp(x*y)", GridBoxes{"0", "100", "4", "0", "100", "4"});
  EXPECT_EQ(r.end, GridEnd::kFault);
  EXPECT_TRUE(host.errors.empty());
  EXPECT_TRUE(host.faults.empty());
  EXPECT_EQ(engine.BindToX, -1);
  EXPECT_EQ(engine.StopRequested, 1);
}

TEST_F(ContourGridTest, StopRequestEndsAfterTheRow) {
  host.stopAt = 3;
  GridResult r = EvaluateGrid(engine, "x+y", GridBoxes{"0", "1", "10", "0", "1", "10"});
  EXPECT_EQ(r.end, GridEnd::kStopped);
  EXPECT_EQ(host.checkpoints, 3);
}

// A grid of one cell spanning (0,0)-(1,1) with the given corner values.
ContourGrid Cell(double z00, double z01, double z10, double z11) {
  ContourGrid g;
  g.xMax = g.yMax = 1;
  g.nx = g.ny = 1;
  g.dx = g.dy = 1;
  g.z = {z00, z01, z10, z11};
  return g;
}

void ExpectSegment(const Segment& s, double x1, double y1, double x2, double y2) {
  EXPECT_DOUBLE_EQ(s.x1, x1);
  EXPECT_DOUBLE_EQ(s.y1, y1);
  EXPECT_DOUBLE_EQ(s.x2, x2);
  EXPECT_DOUBLE_EQ(s.y2, y2);
}

TEST(TraceLevelTest, TwoCrossingsAreJoinedByLinearInterpolation) {
  std::vector<Segment> s = TraceLevel(Cell(-1, 3, -1, 1), 0);
  ASSERT_EQ(s.size(), 1u);
  ExpectSegment(s[0], 0.25, 0, 0.5, 1);  // bottom edge first, then top
}

TEST(TraceLevelTest, FourCrossingsArePairedByTheSquaredDistanceTest) {
  // P1 (.25,0) bottom, P2 (.5,1) top, P3 (0,.5) left, P4 (1,.75) right: P1P4 is the longer.
  std::vector<Segment> s = TraceLevel(Cell(1, -3, -1, 1), 0);
  ASSERT_EQ(s.size(), 2u);
  ExpectSegment(s[0], 0.25, 0, 0, 0.5);
  ExpectSegment(s[1], 0.5, 1, 1, 0.75);
  // A symmetric saddle: equal distances pair P1 with P4 and P2 with P3.
  s = TraceLevel(Cell(1, -1, -1, 1), 0);
  ASSERT_EQ(s.size(), 2u);
  ExpectSegment(s[0], 0.5, 0, 1, 0.5);
  ExpectSegment(s[1], 0.5, 1, 0, 0.5);
}

TEST(TraceLevelTest, AVertexOnTheLevelIsACrossingOfTheEdgesStartingThere) {
  // z00 = level: the bottom and left edges both add (0,0); nothing else crosses.
  std::vector<Segment> s = TraceLevel(Cell(2, 3, 3, 3), 2);
  ASSERT_EQ(s.size(), 1u);
  ExpectSegment(s[0], 0, 0, 0, 0);
  // z11 = level only ends edges, so no crossing is added at all.
  EXPECT_TRUE(TraceLevel(Cell(3, 3, 3, 2), 2).empty());
  // Three crossings draw nothing.
  EXPECT_TRUE(TraceLevel(Cell(0, 1, -1, 1), 0).empty());
}

TEST(TraceLevelTest, CoordinatesFollowTheGridSpacing) {
  ContourGrid g = Cell(-1, 1, -1, 1);
  g.xMin = 10;
  g.xMax = 14;
  g.dx = 4;
  g.yMin = -2;
  g.yMax = 0;
  g.dy = 2;
  std::vector<Segment> s = TraceLevel(g, 0);
  ASSERT_EQ(s.size(), 1u);
  ExpectSegment(s[0], 12, -2, 12, 0);
}

TEST_F(ContourGridTest, UnitCircleOfTheImplicitPlot) {
  GridResult r = EvaluateGrid(engine, "x^2+y^2-1", GridBoxes{"-2", "2", "40", "-2", "2", "40"});
  ASSERT_EQ(r.end, GridEnd::kCompleted);
  std::vector<Segment> s = TraceLevel(r.grid, 0, &engine);
  ASSERT_GE(s.size(), 40u);
  std::set<int> sectors;  // every 10-degree sector of the circle is reached
  for (const Segment& seg : s) {
    for (auto [x, y] : {std::pair{seg.x1, seg.y1}, std::pair{seg.x2, seg.y2}}) {
      EXPECT_NEAR(std::hypot(x, y), 1.0, 0.01);
      sectors.insert(static_cast<int>(std::floor((std::atan2(y, x) + M_PI) / (M_PI / 18))) % 36);
    }
  }
  EXPECT_EQ(sectors.size(), 36u);
}

}  // namespace
}  // namespace merida

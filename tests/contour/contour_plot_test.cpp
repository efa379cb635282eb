// Grid evaluation of f(x, y), the cell-by-cell crossing rule, levels and their lines, heights as
// colours, axis ticks and view angles.
#include "contour/contour_plot.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "contour/contour_grid.h"
#include "test_support.h"

namespace merida {
namespace {

class ContourPlotTest : public test::EngineTest {
 protected:
  ContourGrid grid(const char* formula, GridBoxes boxes) {
    GridResult r = EvaluateGrid(engine, formula, boxes, false);
    EXPECT_EQ(r.end, GridEnd::kCompleted) << formula;
    return r.grid;
  }
};

TEST_F(ContourPlotTest, LevelBoxes) {
  using L = std::optional<std::array<double, 3>>;  // lowest, highest, step
  const std::tuple<LevelBoxes, L, std::optional<std::string>> cases[] = {
      {{"0.5", "2.5", "1"}, L{{0, 2, 1}}, {}},  {{"1.5", "3.5", "1"}, L{{2, 4, 1}}, {}},  // halves to even
      {{"-PI", "PI*2", "2.5"}, L{{-3, 6, 2}}, {}}, {{"0", "1000", "100"}, L{{0, 1000, 100}}, {}},
      {{"0", "1000", "150"}, L{{0, 1000, 100}}, "100"},
      {{"4", "1", "500"}, {}, "100"},  // capped even when nothing is drawn
      // The lowest must be below the highest once rounded; the step a 16-bit count of at least 1.
      {{"2", "2", "1"}, {}, {}}, {{"2.4", "1.6", "1"}, {}, {}}, {{"1", "4", "0.5"}, {}, {}}, {{"1", "4", "x"}, {}, {}},
      {{"1", "4", "40000"}, {}, {}},
  };
  for (const auto& [boxes, levels, stepBox] : cases) {
    SCOPED_TRACE(boxes.lowest + " " + boxes.highest + " " + boxes.step);
    LevelsResult r = ReadLevels(engine, boxes);
    EXPECT_EQ(r.levels ? L({r.levels->lowest, r.levels->highest, r.levels->step}) : L(), levels);
    EXPECT_EQ(r.stepBox, stepBox);
  }
  EXPECT_TRUE(host.errors.empty());
  // A box that is no number shows its error; an earlier action's error does not end this one.
  engine.ErrorFlag = 1;
  EXPECT_TRUE(ReadLevels(engine, {"1", "4", "1"}).levels);
  EXPECT_FALSE(ReadLevels(engine, {"1", "4*", "1"}).levels);
  EXPECT_EQ(host.errors.size(), 1u);
}

// Each level of z = x - 1/2 over 0..4 is the vertical line x = k + 1/2, one segment per row.
TEST_F(ContourPlotTest, LevelsAreDrawnFromTheLowestInWholeSteps) {
  const ContourGrid g = grid("x-0.5", {"0", "4", "4", "0", "1", "2"});
  const std::pair<Levels, std::vector<double>> cases[] = {
      {{0, 2, 1}, {0.5, 1.5, 2.5}},
      {{-7, 3, 2}, {1.5, 3.5}},  // -7, -5, ... first reach zmin..zmax at 1
      {{-7, 2, 2}, {1.5}},
      {{-100, 100, 1}, {0.5, 1.5, 2.5, 3.5}},  // levels outside zmin..zmax cross nothing
      {{1, 2, 5}, {1.5}},
      {{4, 9, 1}, {}},
  };
  for (const auto& [levels, lines] : cases) {
    std::vector<Segment> out;
    EXPECT_TRUE(ContourLines(g, levels, nullptr, out));
    ASSERT_EQ(out.size(), lines.size() * 2) << levels.lowest;
    for (size_t k = 0; k < out.size(); ++k) {  // row by row within a level
      EXPECT_NEAR(out[k].x1, lines[k / 2], 1e-12) << levels.lowest << " " << k;
      EXPECT_NEAR(out[k].x2, lines[k / 2], 1e-12) << levels.lowest << " " << k;
      EXPECT_EQ(std::tuple(out[k].y1, out[k].y2), std::tuple(k % 2 * 0.5, k % 2 * 0.5 + 0.5));
    }
  }
  // A level on a grid value adds the vertex: z = x + 2y has 2 at (2, 0) and (0, 1).
  std::vector<Segment> out;
  ContourLines(grid("x+2*y", {"0", "2", "1", "0", "1", "1"}), {2, 3, 5}, nullptr, out);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ((std::array<double, 4>{out[0].x1, out[0].y1, out[0].x2, out[0].y2}), (std::array<double, 4>{0, 1, 2, 0}));
}

TEST_F(ContourPlotTest, FourCirclesLevelByLevel) {
  const ContourGrid g = grid("x^2+y^2", {"-2", "2", "20", "-2", "2", "20"});
  std::vector<Segment> all;
  ASSERT_TRUE(ContourLines(g, {1, 4, 1}, &engine, all));
  EXPECT_EQ(host.checkpoints, 21 + 4 * 20);  // each grid row, then each row of cells per level
  int last = 1;
  for (const Segment& s : all) {
    const int level = static_cast<int>(std::lround(s.x1 * s.x1 + s.y1 * s.y1));
    ASSERT_GE(level, last);  // drawn level by level
    last = level;
    for (double r : {std::hypot(s.x1, s.y1), std::hypot(s.x2, s.y2)}) EXPECT_NEAR(r, std::sqrt(level), 0.01);
  }
  EXPECT_EQ(last, 4);
  // A stop ends the lines after the row: the fifth row of the second level.
  host.checkpoints = 0;
  host.stopAt = 25;
  std::vector<Segment> out;
  EXPECT_FALSE(ContourLines(g, {1, 4, 1}, &engine, out));
  EXPECT_EQ(host.checkpoints, 25);
  for (const Segment& s : out) EXPECT_LT(s.x1 * s.x1 + s.y1 * s.y1, 2.5);
}

TEST(ContourTextTest, MinMaxTextAndHeightColours) {
  const std::tuple<double, double, const char*> texts[] = {
      {0, 8, "0 ～ 8"}, {-0.4, 2.5, "0 ～ 2"}, {-3.5, 3.5, "-4 ～ 4"}, {1e20, 3e20, "1E+20 ～ 3E+20"}};
  for (auto [zMin, zMax, text] : texts) {
    ContourGrid g;
    g.zMin = zMin;
    g.zMax = zMax;
    EXPECT_EQ(MinMaxText(g), text);
  }
  const std::tuple<double, double, double, int> bytes[] = {
      {-2, -2, 8, 0}, {8, -2, 8, 255}, {3, -2, 8, 128} /* 127.5 to even */, {1, 1, 1, 0} /* flat */, {9, -2, 8, 255}};
  for (auto [h, lo, hi, byte] : bytes) EXPECT_EQ(HeightByte(h, lo, hi), byte) << h;
  auto only = [](int16_t ColorScheme::*flag) {
    ColorScheme c;
    c.Green = -1;
    c.*flag = 1;
    return c;
  };
  // Seven bands; a limit belongs to the band below it.
  const std::pair<uint8_t, Rgb> bands[] = {
      {0, {0, 0, 255}},     {36, {0, 0, 255}},     {37, {0, 255, 255}},  {72, {0, 255, 255}},   {73, {0, 255, 0}},
      {108, {0, 255, 0}},   {109, {255, 0, 255}},  {144, {255, 0, 255}}, {145, {255, 0, 0}},    {180, {255, 0, 0}},
      {181, {255, 255, 0}}, {216, {255, 255, 0}},  {217, {255, 255, 255}}, {255, {255, 255, 255}}};
  for (auto [level, color] : bands) EXPECT_EQ(SchemeColor(level, only(&ColorScheme::MultiColor)), color) << int(level);
  EXPECT_EQ(SchemeColor(200, only(&ColorScheme::Red)), (Rgb{200, 0, 0}));
  EXPECT_EQ(SchemeColor(200, only(&ColorScheme::Green)), (Rgb{0, 200, 0}));
  EXPECT_EQ(SchemeColor(200, only(&ColorScheme::SkyBlue)), (Rgb{0, 200, 200}));
  EXPECT_EQ(SchemeColor(200, only(&ColorScheme::Yellow)), (Rgb{200, 200, 0}));
  EXPECT_EQ(SchemeColor(200, ColorScheme{}), (Rgb{0, 200, 0}));
}

TEST(ContourTextTest, TicksAndAngles) {
  const std::pair<double, double> steps[] = {
      {3, 1},      {14.9, 1},    {1.5, 0.5},    {2.9, 0.5}, {1, 0.5}, {0.3, 0.1}, {0.25, 0.05}, {0.02, 0.005},
      {15, 5},     {29, 5},      {30, 10},      {150, 50},  {1e6, 1e5}, {0, 0},   {-1, 0},     {INFINITY, 0}};
  for (auto [range, step] : steps) EXPECT_DOUBLE_EQ(TickStep(range), step) << range;
  // Every positive range gets between 2 and 14 steps.
  for (double range = 1e-6; range < 1e9; range *= 1.37) {
    const double n = std::floor(range / TickStep(range));
    EXPECT_TRUE(n >= 2 && n <= 14) << range;
  }
  EXPECT_EQ(Ticks(-2, 2), (std::vector<double>{-2, -1, 0, 1, 2}));
  EXPECT_EQ(Ticks(0.1, 0.4), (std::vector<double>{0.1, 0.2, 0.3, 0.4}));
  EXPECT_EQ(Ticks(-0.7, 0.4), (std::vector<double>{-0.5, 0}));
  EXPECT_EQ(Ticks(3, 62), (std::vector<double>{10, 20, 30, 40, 50, 60}));
  EXPECT_TRUE(Ticks(5, 5).empty());
  // Decide holds the angles to 0..180 and their sum to 180 (else the defaults).
  using A = std::optional<std::pair<double, double>>;
  const std::tuple<const char*, const char*, A> angles[] = {
      {"-10", "200", A{{0, 180}}}, {"100", "100", A{{20, 30}}}, {"180", "0.5", A{{20, 30}}}, {"45", "60", A{{45, 60}}},
      {" 90 ", "90", A{{90, 90}}}, {"1e3", "-1e3", A{{180, 0}}}, {"abc", "30", A{}},          {"20", "", A{}}};
  for (const auto& [a, b, want] : angles) {
    std::optional<ViewAngles> v = DecideAngles(a, b);
    EXPECT_EQ(v ? A({v->x, v->y}) : A(), want) << a << " " << b;
  }
}

using ContourGridTest = test::EngineTest;

TEST_F(ContourGridTest, GridHoldsTheFormulaAtEveryNode) {
  GridResult r = EvaluateGrid(engine, "x*10+y^2", GridBoxes{"-1", "2", "3", "-1", "1", "4"});
  ASSERT_EQ(r.end, GridEnd::kCompleted);
  const ContourGrid& g = r.grid;
  ASSERT_EQ(std::tuple(g.nx, g.ny, g.z.size()), std::tuple(3, 4, 20u));
  for (int k = 0; k < 20; ++k) {
    const int i = k / 4, j = k % 4;
    EXPECT_NEAR(g.at(i, j), (j - 1) * 10 + (i / 2.0 - 1) * (i / 2.0 - 1), 1e-12) << i << "," << j;
  }
  EXPECT_EQ(std::tuple(g.zMin, g.zMax, host.checkpoints), std::tuple(-10, 21, 5));  // events once per row
  for (const char* f : {"y", "7", "f(x,y)=x-y"}) {  // one variable or none will do
    EXPECT_EQ(EvaluateGrid(engine, f, GridBoxes{"0", "1", "2", "0", "1", "2"}).end, GridEnd::kCompleted) << f;
  }
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(ContourGridTest, DivisionsAboveAHundredAreCapped) {
  GridResult r = EvaluateGrid(engine, "x+y", GridBoxes{"0", "1", "150", "0", "1", "500"});
  EXPECT_EQ(std::tuple(r.end, r.grid.nx, r.grid.ny, r.xDivisionsBox, r.yDivisionsBox),
            std::tuple(GridEnd::kCompleted, 100, 100, "100", "100"));
  r = EvaluateGrid(engine, "x+y", GridBoxes{"0", "1", "100", "0", "1", "99.5"});
  EXPECT_EQ(std::tuple(r.grid.ny, r.xDivisionsBox, r.yDivisionsBox), std::tuple(100, std::nullopt, std::nullopt));
}

TEST_F(ContourGridTest, UnusableBoxesErrorsFaultsAndStop) {
  const GridBoxes silent[] = {{"0", "1", "0", "0", "1", "5"}, {"0", "1", "x", "0", "1", "5"},
                              {"1", "0", "5", "0", "1", "5"}, {"0", "1", "5", "0", "1", "0.4"},
                              {"0", "1", "5", "2", "2", "5"}, {"0", "1", "99999", "0", "1", "5"}};
  for (const GridBoxes& b : silent) EXPECT_EQ(EvaluateGrid(engine, "x*y", b).end, GridEnd::kSilent);
  EXPECT_TRUE(host.errors.empty());
  const std::pair<const char*, int> errors[] = {{"x*y*z", 31}, {"x+t", 32}, {"X+y", 32}, {"f(a,b)=a*b", 32},
                                                {"x/(x-y)", 11}};
  for (auto [formula, error] : errors) {
    host.errors.clear();
    const GridEnd end = EvaluateGrid(engine, formula, GridBoxes{"0", "1", "4", "0", "1", "4"}).end;
    EXPECT_EQ(std::tuple(end, host.errors, engine.BindToX), std::tuple(GridEnd::kError, std::vector<int>{error}, -1));
  }
  host.errors.clear();
  EXPECT_EQ(EvaluateGrid(engine, "exp(x*y)", GridBoxes{"0", "100", "4", "0", "100", "4"}).end, GridEnd::kFault);
  EXPECT_EQ(std::tuple(host.errors.size(), host.faults.size(), engine.BindToX, engine.StopRequested),
            std::tuple(0u, 0u, -1, 1));
  host.checkpoints = 0;
  host.stopAt = 3;
  EXPECT_EQ(EvaluateGrid(engine, "x+y", GridBoxes{"0", "1", "10", "0", "1", "10"}).end, GridEnd::kStopped);
  EXPECT_EQ(host.checkpoints, 3);
}

// One cell spanning (x0, y0)-(x0 + w, y0 + h) with the given corner values.
ContourGrid Cell(double z00, double z01, double z10, double z11, double x0 = 0, double y0 = 0, double w = 1,
                 double h = 1) {
  ContourGrid g;
  g.xMin = x0;
  g.yMin = y0;
  g.xMax = x0 + w;
  g.yMax = y0 + h;
  g.nx = g.ny = 1;
  g.dx = w;
  g.dy = h;
  g.z = {z00, z01, z10, z11};
  return g;
}

TEST(TraceLevelTest, CrossingsOfOneCell) {
  using S = std::vector<std::array<double, 4>>;
  const std::tuple<ContourGrid, double, S> cases[] = {
      // Two crossings joined by linear interpolation: bottom edge first, then top.
      {Cell(-1, 3, -1, 1), 0, {{0.25, 0, 0.5, 1}}},
      // Four: P1 (.25,0) bottom, P2 (.5,1) top, P3 (0,.5) left, P4 (1,.75) right; P1P4 is the longer.
      {Cell(1, -3, -1, 1), 0, {{0.25, 0, 0, 0.5}, {0.5, 1, 1, 0.75}}},
      // A symmetric saddle: equal distances pair P1 with P4 and P2 with P3.
      {Cell(1, -1, -1, 1), 0, {{0.5, 0, 1, 0.5}, {0.5, 1, 0, 0.5}}},
      // A vertex on the level is a crossing of the edges starting there: z00 for bottom and left.
      {Cell(2, 3, 3, 3), 2, {{0, 0, 0, 0}}},
      {Cell(3, 3, 3, 2), 2, {}},  // z11 only ends edges
      {Cell(0, 1, -1, 1), 0, {}},  // three crossings draw nothing
      {Cell(-1, 1, -1, 1, 10, -2, 4, 2), 0, {{12, -2, 12, 0}}},  // the grid's spacing
  };
  for (const auto& [cell, level, want] : cases) {
    S got;
    for (const Segment& s : TraceLevel(cell, level)) got.push_back({s.x1, s.y1, s.x2, s.y2});
    EXPECT_EQ(got, want) << cell.z[0] << " " << cell.z[1] << " " << cell.z[2] << " " << cell.z[3];
  }
}

}  // namespace
}  // namespace merida

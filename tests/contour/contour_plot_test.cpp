// Levels and their lines, heights as colours, axis ticks and view angles.
#include "contour/contour_plot.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <optional>
#include <set>

#include "test_support.h"

namespace merida {
namespace {

class ContourPlotTest : public ::testing::Test {
 protected:
  ContourPlotTest() : engine(host) {
    host.engine = &engine;
    engine.ResetEngine();
  }
  ContourGrid grid(const char* formula, GridBoxes boxes) {
    GridResult r = EvaluateGrid(engine, formula, boxes, false);
    EXPECT_EQ(r.end, GridEnd::kCompleted) << formula;
    return r.grid;
  }
  test::StoppingHost host;
  Engine engine;
};

TEST_F(ContourPlotTest, LevelBoxes) {
  struct Case {
    LevelBoxes boxes;
    std::optional<Levels> levels;
    std::optional<std::string> stepBox;
  };
  const Case cases[] = {
      {{"1", "4", "1"}, Levels{1, 4, 1}, {}},
      {{"0.5", "2.5", "1"}, Levels{0, 2, 1}, {}},  // halves to even
      {{"1.5", "3.5", "1"}, Levels{2, 4, 1}, {}},
      {{"-PI", "PI*2", "2.5"}, Levels{-3, 6, 2}, {}},
      {{"0", "1000", "150"}, Levels{0, 1000, 100}, "100"},
      {{"0", "1000", "100"}, Levels{0, 1000, 100}, {}},
      {{"2", "2", "1"}, {}, {}},  // the lowest must be below the highest
      {{"2.4", "1.6", "1"}, {}, {}},
      {{"3", "1", "1"}, {}, {}},
      {{"1", "4", "0.5"}, {}, {}},  // a step rounding to 0
      {{"1", "4", "-1"}, {}, {}},
      {{"1", "4", "x"}, {}, {}},
      {{"1", "4", ""}, {}, {}},
      {{"1", "4", "40000"}, {}, {}},  // not a 16-bit count
      {{"1", "4", "500"}, Levels{1, 4, 100}, "100"},
      {{"4", "1", "500"}, {}, "100"},  // capped even when nothing is drawn
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.boxes.lowest + " " + c.boxes.highest + " " + c.boxes.step);
    LevelsResult r = ReadLevels(engine, c.boxes);
    ASSERT_EQ(r.levels.has_value(), c.levels.has_value());
    if (c.levels) {
      EXPECT_EQ(r.levels->lowest, c.levels->lowest);
      EXPECT_EQ(r.levels->highest, c.levels->highest);
      EXPECT_EQ(r.levels->step, c.levels->step);
    }
    EXPECT_EQ(r.stepBox, c.stepBox);
    EXPECT_TRUE(host.errors.empty());
  }
}

TEST_F(ContourPlotTest, ALevelBoxThatIsNoNumberShowsItsError) {
  engine.ErrorFlag = 1;  // an earlier action's error does not end this one
  EXPECT_TRUE(ReadLevels(engine, {"1", "4", "1"}).levels);
  EXPECT_FALSE(ReadLevels(engine, {"1", "4*", "1"}).levels);
  EXPECT_EQ(host.errors.size(), 1u);
  EXPECT_EQ(engine.ErrorFlag, 1);
}

// Each level of z = x - 1/2 over 0..4 is the vertical line x = k + 1/2, one segment per row.
TEST_F(ContourPlotTest, LevelsAreDrawnFromTheLowestInWholeSteps) {
  const ContourGrid g = grid("x-0.5", {"0", "4", "4", "0", "1", "2"});
  struct Case {
    Levels levels;
    std::vector<double> lines;  // the x of each level drawn, in order
  };
  const Case cases[] = {
      {{0, 2, 1}, {0.5, 1.5, 2.5}},        // the 0.5 to 2.5 boxes
      {{-7, 3, 2}, {1.5, 3.5}},            // -7, -5, ... first reach zmin..zmax at 1
      {{-7, 2, 2}, {1.5}},
      {{-100, 100, 1}, {0.5, 1.5, 2.5, 3.5}},  // levels outside zmin..zmax cross nothing
      {{1, 2, 5}, {1.5}},
      {{4, 9, 1}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.levels.lowest);
    std::vector<Segment> out;
    EXPECT_TRUE(ContourLines(g, c.levels, nullptr, out));
    ASSERT_EQ(out.size(), c.lines.size() * 2);
    for (size_t k = 0; k < out.size(); ++k) {
      const double x = c.lines[k / 2];
      EXPECT_NEAR(out[k].x1, x, 1e-12);
      EXPECT_NEAR(out[k].x2, x, 1e-12);
      EXPECT_NEAR(out[k].y1, k % 2 * 0.5, 1e-12);  // row by row within a level
      EXPECT_NEAR(out[k].y2, k % 2 * 0.5 + 0.5, 1e-12);
    }
  }
}

TEST_F(ContourPlotTest, ALevelOnAGridValueAddsTheVertex) {
  // z = x + 2y on 0..2 by 0..1, one division each way: z00 = 0, z01 = 2, z10 = 2, z11 = 4.
  const ContourGrid g = grid("x+2*y", {"0", "2", "1", "0", "1", "1"});
  std::vector<Segment> out;
  ContourLines(g, {2, 3, 5}, nullptr, out);
  // Level 2 runs through (2, 0) and (0, 1): the right and top edges start there.
  ASSERT_EQ(out.size(), 1u);
  EXPECT_DOUBLE_EQ(out[0].x1, 0);
  EXPECT_DOUBLE_EQ(out[0].y1, 1);
  EXPECT_DOUBLE_EQ(out[0].x2, 2);
  EXPECT_DOUBLE_EQ(out[0].y2, 0);
}

// The end points of a level's segments: where two segments meet and where the line breaks off.
struct Ends {
  int joined = 0;
  std::vector<std::pair<double, double>> loose;
};

Ends EndsOf(const std::vector<Segment>& segments) {
  std::map<std::pair<long long, long long>, int> seen;
  auto key = [](double x, double y) { return std::pair{std::llround(x * 1e9), std::llround(y * 1e9)}; };
  for (const Segment& s : segments) {
    ++seen[key(s.x1, s.y1)];
    ++seen[key(s.x2, s.y2)];
  }
  Ends e;
  for (const auto& [p, n] : seen) {
    if (n == 1) e.loose.emplace_back(p.first / 1e9, p.second / 1e9);
    if (n == 2) ++e.joined;
  }
  return e;
}

TEST_F(ContourPlotTest, FourCirclesWithGapsWhereTheyMeetGridVertices) {
  const ContourGrid g = grid("x^2+y^2", {"-2", "2", "20", "-2", "2", "20"});
  std::vector<Segment> all;
  ASSERT_TRUE(ContourLines(g, {1, 4, 1}, &engine, all));
  EXPECT_EQ(host.checkpoints, 21 + 4 * 20);  // each grid row, then each row of cells per level

  // Drawing order: level by level, each segment on its own circle.
  std::vector<std::vector<Segment>> circles(5);
  int last = 1;
  for (const Segment& s : all) {
    const int level = static_cast<int>(std::lround(s.x1 * s.x1 + s.y1 * s.y1));
    ASSERT_GE(level, last);
    last = level;
    for (double r : {std::hypot(s.x1, s.y1), std::hypot(s.x2, s.y2)}) EXPECT_NEAR(r, std::sqrt(level), 0.01);
    circles[level].push_back(s);
  }
  // x^2 + y^2 = 3 meets no vertex of the 0.2 grid (75 is no sum of two squares): a closed circle.
  Ends three = EndsOf(circles[3]);
  EXPECT_TRUE(three.loose.empty());
  EXPECT_EQ(three.joined, static_cast<int>(circles[3].size()));
  // The others pass through vertices, where the crossing rule leaves the line open; every loose
  // end is next to such a vertex.
  for (int level : {1, 2, 4}) {
    SCOPED_TRACE(level);
    Ends e = EndsOf(circles[level]);
    EXPECT_FALSE(e.loose.empty());
    for (auto [x, y] : e.loose) {
      bool nearVertex = false;
      for (int i = 0; i <= g.ny; ++i) {
        for (int j = 0; j <= g.nx; ++j) {
          nearVertex |= g.at(i, j) == level && std::hypot(g.x(j) - x, g.y(i) - y) <= 0.2 * std::sqrt(2) + 1e-9;
        }
      }
      EXPECT_TRUE(nearVertex) << x << "," << y;
    }
  }
  // Each circle goes all the way round, gaps apart.
  for (int level = 1; level <= 4; ++level) {
    std::set<int> quadrants;
    for (const Segment& s : circles[level]) quadrants.insert((s.x1 + s.x2 > 0) * 2 + (s.y1 + s.y2 > 0));
    EXPECT_EQ(quadrants.size(), 4u) << level;
  }
}

TEST_F(ContourPlotTest, StopEndsTheLinesAfterTheRow) {
  const ContourGrid g = grid("x^2+y^2", {"-2", "2", "20", "-2", "2", "20"});
  host.checkpoints = 0;
  host.stopAt = 25;  // the fifth row of the second level
  std::vector<Segment> out;
  EXPECT_FALSE(ContourLines(g, {1, 4, 1}, &engine, out));
  EXPECT_EQ(host.checkpoints, 25);
  for (const Segment& s : out) EXPECT_LT(s.x1 * s.x1 + s.y1 * s.y1, 2.5);
}

TEST(MinMaxTextTest, WholeNumbersJoinedByAWaveDash) {
  struct Case {
    double zMin, zMax;
    const char* text;
  };
  const Case cases[] = {{0, 8, "0 ～ 8"}, {-0.4, 2.5, "0 ～ 2"}, {-3.5, 3.5, "-4 ～ 4"}, {1e20, 3e20, "1E+20 ～ 3E+20"}};
  for (const Case& c : cases) {
    ContourGrid g;
    g.zMin = c.zMin;
    g.zMax = c.zMax;
    EXPECT_EQ(MinMaxText(g), c.text);
  }
}

TEST(HeightColorTest, BytesAndSchemes) {
  EXPECT_EQ(HeightByte(-2, -2, 8), 0);
  EXPECT_EQ(HeightByte(8, -2, 8), 255);
  EXPECT_EQ(HeightByte(3, -2, 8), 128);  // 127.5 to even
  EXPECT_EQ(HeightByte(1, 1, 1), 0);     // a flat grid
  EXPECT_EQ(HeightByte(9, -2, 8), 255);

  ColorScheme multi;
  multi.Green = -1;
  multi.MultiColor = 1;
  const std::pair<uint8_t, Rgb> bands[] = {
      {0, {0, 0, 255}},       {36, {0, 0, 255}},       {37, {0, 255, 255}},   {72, {0, 255, 255}},
      {73, {0, 255, 0}},      {108, {0, 255, 0}},      {109, {255, 0, 255}},  {144, {255, 0, 255}},
      {145, {255, 0, 0}},     {180, {255, 0, 0}},      {181, {255, 255, 0}},  {216, {255, 255, 0}},
      {217, {255, 255, 255}}, {255, {255, 255, 255}},
  };
  for (auto [level, color] : bands) EXPECT_EQ(SchemeColor(level, multi), color) << int(level);

  auto only = [](int16_t ColorScheme::*flag) {
    ColorScheme c;
    c.Green = -1;
    c.*flag = 1;
    return c;
  };
  EXPECT_EQ(SchemeColor(200, only(&ColorScheme::Red)), (Rgb{200, 0, 0}));
  EXPECT_EQ(SchemeColor(200, only(&ColorScheme::Green)), (Rgb{0, 200, 0}));
  EXPECT_EQ(SchemeColor(200, only(&ColorScheme::SkyBlue)), (Rgb{0, 200, 200}));
  EXPECT_EQ(SchemeColor(200, only(&ColorScheme::Yellow)), (Rgb{200, 200, 0}));
  EXPECT_EQ(SchemeColor(200, ColorScheme{}), (Rgb{0, 200, 0}));
}

TEST(TickTest, StepsBetweenThreeAndFourteenOrHalvedFromOneOrTwo) {
  const std::pair<double, double> cases[] = {
      {4, 1},       {3, 1},      {14.9, 1},   {1.5, 0.5},   {2.9, 0.5},  {1.2, 0.5},  {1, 0.5},
      {0.5, 0.1},  {0.3, 0.1},  {0.25, 0.05}, {0.16, 0.05}, {0.02, 0.005}, {15, 5},  {29, 5},
      {30, 10},     {149, 10},   {150, 50},   {1e6, 1e5},   {0, 0},      {-1, 0},    {INFINITY, 0},
  };
  for (auto [range, step] : cases) EXPECT_DOUBLE_EQ(TickStep(range), step) << range;
  // Every positive range gets between 3 and 14 ticks' worth of steps.
  for (double range = 1e-6; range < 1e9; range *= 1.37) {
    const double n = std::floor(range / TickStep(range));
    EXPECT_GE(n, 2) << range;
    EXPECT_LE(n, 14) << range;
  }
}

TEST(TickTest, TicksAreTheMultiplesInsideTheRange) {
  EXPECT_EQ(Ticks(-2, 2), (std::vector<double>{-2, -1, 0, 1, 2}));
  EXPECT_EQ(Ticks(0.1, 0.4), (std::vector<double>{0.1, 0.2, 0.3, 0.4}));
  EXPECT_EQ(Ticks(-0.7, 0.4), (std::vector<double>{-0.5, 0}));
  EXPECT_EQ(Ticks(3, 32), (std::vector<double>{5, 10, 15, 20, 25, 30}));
  EXPECT_EQ(Ticks(3, 62), (std::vector<double>{10, 20, 30, 40, 50, 60}));
  EXPECT_TRUE(Ticks(5, 5).empty());
}

TEST(AxisAngleTest, DecideHoldsTheAnglesToTheirRange) {
  struct Case {
    const char *a, *b;
    std::optional<std::pair<double, double>> accepted;
  };
  const Case cases[] = {
      {"-10", "200", std::pair{0.0, 180.0}},  // the sum 180 is accepted
      {"100", "100", std::pair{20.0, 30.0}},
      {"180", "0.5", std::pair{20.0, 30.0}},
      {"45", "60", std::pair{45.0, 60.0}},
      {" 90 ", "90", std::pair{90.0, 90.0}},
      {"1e3", "-1e3", std::pair{180.0, 0.0}},
      {"abc", "30", std::nullopt},
      {"20", "", std::nullopt},
  };
  for (const Case& c : cases) {
    std::optional<ViewAngles> v = DecideAngles(c.a, c.b);
    ASSERT_EQ(v.has_value(), c.accepted.has_value()) << c.a << " " << c.b;
    if (v) {
      EXPECT_EQ(v->x, c.accepted->first) << c.a;
      EXPECT_EQ(v->y, c.accepted->second) << c.b;
    }
  }
}

}  // namespace
}  // namespace merida

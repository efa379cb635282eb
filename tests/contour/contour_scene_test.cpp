// The projection and the three drawings as shapes: what is drawn, where, in which colour and order.
#include "contour/contour_scene.h"

#include <gtest/gtest.h>

#include <cmath>

#include "test_support.h"

namespace merida {
namespace {

constexpr double kPi = 3.14159265358979;

DrawRequest Request(MapDrawing drawing, bool colorMode = false, ViewAngles angles = {}) {
  DrawRequest r;
  r.drawing = drawing;
  r.colorMode = colorMode;
  r.angles = angles;
  return r;
}

class ContourSceneTest : public ::testing::Test {
 protected:
  ContourSceneTest() : engine(host) {
    host.engine = &engine;
    engine.ResetEngine();
  }
  ContourGrid grid(const char* formula, GridBoxes boxes) {
    GridResult r = EvaluateGrid(engine, formula, boxes, false);
    EXPECT_EQ(r.end, GridEnd::kCompleted) << formula;
    return r.grid;
  }
  static std::vector<const MapItem*> itemsOf(const MapScene& s, MapItem::Kind kind) {
    std::vector<const MapItem*> out;
    for (const MapItem& item : s.items) {
      if (item.kind == kind) out.push_back(&item);
    }
    return out;
  }
  test::StoppingHost host;
  Engine engine;
};

TEST_F(ContourSceneTest, ProjectionPlacesTheCornersOfTheBox) {
  // z = x + y on 0..2 by 0..4: zmin at (0, 0), zmax at the far corner.
  const ContourGrid g = grid("x+y", {"0", "2", "4", "0", "4", "8"});
  struct Case {
    double a, b;
  };
  for (Case c : {Case{20, 30}, Case{0, 90}, Case{45, 45}, Case{60, 10}}) {
    SCOPED_TRACE(c.a);
    const double ca = std::cos(c.a * kPi / 180), sa = std::sin(c.a * kPi / 180);
    const double cb = std::cos(c.b * kPi / 180), sb = std::sin(c.b * kPi / 180);
    const double W = ca + cb, H = sb + sa + 1;
    Projection p(g, {c.a, c.b});
    EXPECT_NEAR(p.width(), W, 1e-12);
    EXPECT_NEAR(p.height(), H, 1e-12);
    const struct {
      int i, j;
      double x, y;
    } corners[] = {
        {0, 0, W / 2, H},                          // nearest corner at zmin: the bottom
        {0, 4, W / 2 + ca, H - sa - 2.0 / 6},      // along x: z = 2 of 0..6
        {8, 0, W / 2 - cb, H - sb - 4.0 / 6},      // along y: z = 4
        {8, 4, W / 2 + ca - cb, H - sa - sb - 1},  // the far corner at zmax: the top
    };
    for (const auto& k : corners) {
      MapPoint m = p.at(k.i, k.j);
      EXPECT_NEAR(m.x, k.x, 1e-12) << k.i << "," << k.j;
      EXPECT_NEAR(m.y, k.y, 1e-12) << k.i << "," << k.j;
    }
  }
}

TEST_F(ContourSceneTest, AFlatSurfaceLiesAtHeightZero) {
  const ContourGrid g = grid("7", {"0", "1", "2", "0", "1", "2"});
  Projection p(g, {});
  for (int i = 0; i <= 2; ++i) {
    for (int j = 0; j <= 2; ++j) {
      EXPECT_TRUE(std::isfinite(p.at(i, j).y));
      EXPECT_NEAR(p.at(i, j).y, p.at(i, j, g.zMin).y, 1e-15);
    }
  }
  MapScene s;
  EXPECT_TRUE(BuildMap(g, Request(MapDrawing::kHide), nullptr, s));
  for (const MapItem* q : itemsOf(s, MapItem::kPolygon)) EXPECT_EQ(q->color, (Rgb{0, 0, 0}));
}

TEST_F(ContourSceneTest, MeshJoinsEveryRowThenEveryColumnInBlue) {
  const ContourGrid g = grid("x*y", {"-1", "1", "4", "-1", "1", "3"});
  MapScene s;
  ASSERT_TRUE(BuildMap(g, Request(MapDrawing::kCube), nullptr, s));
  auto lines = itemsOf(s, MapItem::kPolyline);
  ASSERT_EQ(lines.size(), 4u + 5u);
  Projection p(g, {});
  for (int k = 0; k < 9; ++k) {
    const MapItem& line = *lines[k];
    EXPECT_EQ(line.color, kContourBlue);
    EXPECT_FALSE(line.ink);
    const bool row = k < 4;
    ASSERT_EQ(line.count, row ? 5u : 4u);
    for (uint32_t n = 0; n < line.count; ++n) {
      MapPoint expected = row ? p.at(k, static_cast<int>(n)) : p.at(static_cast<int>(n), k - 4);
      EXPECT_DOUBLE_EQ(s.pointsOf(line)[n].x, expected.x);
      EXPECT_DOUBLE_EQ(s.pointsOf(line)[n].y, expected.y);
    }
  }
  EXPECT_EQ(s.count(MapItem::kPolygon), 0u);
  EXPECT_GT(s.count(MapItem::kText), 3u);  // tick labels and axis names
}

TEST_F(ContourSceneTest, SurfaceIsFilledFromTheBackWithMeanHeightColours) {
  // z = x + 10y on 0..3 by 0..2: cell means rise with i and j.
  const ContourGrid g = grid("x+10*y", {"0", "3", "3", "0", "2", "2"});
  for (bool cube : {false, true}) {
    DrawRequest r = Request(cube ? MapDrawing::kCube : MapDrawing::kHide, cube);
    r.colors.Green = -1;
    r.colors.Red = 1;
    MapScene s;
    ASSERT_TRUE(BuildMap(g, r, nullptr, s));
    auto cells = itemsOf(s, MapItem::kPolygon);
    ASSERT_EQ(cells.size(), 6u);
    EXPECT_EQ(s.count(MapItem::kPolyline), 0u);
    Projection p(g, r.angles);
    int n = 0;
    for (int i = 2; i >= 1; --i) {
      for (int j = 2; j >= 0; --j, ++n) {
        const MapItem& cell = *cells[n];
        EXPECT_TRUE(cell.outline);
        ASSERT_EQ(cell.count, 4u);
        const MapPoint corners[] = {p.at(i, j), p.at(i, j + 1), p.at(i - 1, j + 1), p.at(i - 1, j)};
        for (int k = 0; k < 4; ++k) EXPECT_DOUBLE_EQ(s.pointsOf(cell)[k].x, corners[k].x);
        // Mean of x + 10y over the cell's corners: j + 1/2 + 10 (i - 1/2); zmin 0, zmax 23.
        const double mean = j + 0.5 + 10 * (i - 0.5);
        EXPECT_EQ(cell.color, (Rgb{static_cast<uint8_t>(std::nearbyint(255 * mean / 23)), 0, 0})) << i << "," << j;
      }
    }
    // The axes come last, over the surface.
    EXPECT_NE(s.items.back().kind, MapItem::kPolygon);
    EXPECT_TRUE(s.items.back().ink);
  }
}

TEST_F(ContourSceneTest, PlotFillsThePlanFirstWithColourModeThenAxesThenLines) {
  const ContourGrid g = grid("x^2+y^2", {"-2", "2", "20", "-2", "2", "20"});
  for (bool colorMode : {false, true}) {
    DrawRequest r = Request(MapDrawing::kPlot, colorMode);
    r.levels = {1, 4, 1};
    MapScene s;
    ASSERT_TRUE(BuildMap(g, r, nullptr, s));
    EXPECT_EQ(s.left, -0.2);
    EXPECT_EQ(s.bottom, 1.4);
    std::vector<Segment> segments;
    ContourLines(g, r.levels, nullptr, segments);
    std::vector<const MapItem*> blue;
    for (const MapItem& item : s.items) {
      if (item.kind == MapItem::kLine && !item.ink) blue.push_back(&item);
    }
    ASSERT_EQ(blue.size(), segments.size());
    for (size_t k = 0; k < blue.size(); ++k) {
      const MapPoint* m = s.pointsOf(*blue[k]);
      EXPECT_EQ(blue[k]->color, kContourBlue);
      EXPECT_NEAR(m[0].x, (segments[k].x1 + 2) / 4, 1e-12);
      EXPECT_NEAR(m[0].y, 1 - (segments[k].y1 + 2) / 4, 1e-12);
      EXPECT_NEAR(m[1].x, (segments[k].x2 + 2) / 4, 1e-12);
      EXPECT_NEAR(m[1].y, 1 - (segments[k].y2 + 2) / 4, 1e-12);
    }
    // The lines are drawn last.
    EXPECT_EQ(&s.items.back(), blue.back());
    auto cells = itemsOf(s, MapItem::kPolygon);
    ASSERT_EQ(cells.size(), colorMode ? 400u : 0u);
    if (colorMode) {
      EXPECT_EQ(&s.items.front(), cells.front());
      EXPECT_FALSE(cells.front()->outline);
      // The corner cell (-2..-1.8, -2..-1.8) at the bottom left, mean 7.24 of 0..8.
      const MapPoint* c = s.pointsOf(*cells.front());
      EXPECT_NEAR(c[0].x, 0, 1e-12);
      EXPECT_NEAR(c[0].y, 1, 1e-12);
      EXPECT_EQ(cells.front()->color, (Rgb{0, 231, 0}));
    }
  }
}

TEST_F(ContourSceneTest, TheViewHoldsTheWholeSurfaceAtEveryAngle) {
  const ContourGrid g = grid("x*y", {"-1", "1", "6", "-1", "1", "6"});
  for (ViewAngles a : {ViewAngles{20, 30}, ViewAngles{0, 180}, ViewAngles{180, 0}, ViewAngles{90, 90},
                       ViewAngles{120, 50}}) {
    SCOPED_TRACE(a.x);
    MapScene s;
    ASSERT_TRUE(BuildMap(g, Request(MapDrawing::kHide, false, a), nullptr, s));
    for (const MapItem* cell : itemsOf(s, MapItem::kPolygon)) {
      for (uint32_t k = 0; k < cell->count; ++k) {
        const MapPoint m = s.pointsOf(*cell)[k];
        EXPECT_GE(m.x, s.left + 0.25 - 1e-9);
        EXPECT_LE(m.x, s.right - 0.25 + 1e-9);
        EXPECT_GE(m.y, s.top + 0.25 - 1e-9);
        EXPECT_LE(m.y, s.bottom - 0.25 + 1e-9);
      }
    }
    // At 20 and 30 degrees the view is exactly (-0.5, -0.5) to (W + 0.5, H + 0.5).
    if (a.x == 20) {
      Projection p(g, a);
      EXPECT_DOUBLE_EQ(s.left, -0.5);
      EXPECT_DOUBLE_EQ(s.top, -0.5);
      EXPECT_DOUBLE_EQ(s.right, p.width() + 0.5);
      EXPECT_DOUBLE_EQ(s.bottom, p.height() + 0.5);
    }
  }
}

TEST_F(ContourSceneTest, StopEndsTheSurfaceAfterTheCell) {
  const ContourGrid g = grid("x*y", {"-1", "1", "10", "-1", "1", "10"});
  host.checkpoints = 0;
  host.stopAt = 7;
  MapScene s;
  EXPECT_FALSE(BuildMap(g, Request(MapDrawing::kHide), &engine, s));
  EXPECT_EQ(s.count(MapItem::kPolygon), 7u);
  EXPECT_EQ(s.count(MapItem::kText), 0u);  // no axes after a stop
}

}  // namespace
}  // namespace merida

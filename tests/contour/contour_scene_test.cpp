// The projection and the three drawings as shapes: what is drawn, where, in which colour and order.
#include "contour/contour_scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

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

std::vector<const MapItem*> ItemsOf(const MapScene& s, MapItem::Kind kind) {
  std::vector<const MapItem*> out;
  for (const MapItem& item : s.items) {
    if (item.kind == kind) out.push_back(&item);
  }
  return out;
}

// The drawing's cells: the polygons before the axes (the colour key's strips come after).
std::vector<const MapItem*> Cells(const MapScene& s) {
  std::vector<const MapItem*> out;
  for (auto i = s.items.begin(); i != s.items.end() && !i->ink; ++i) {
    if (i->kind == MapItem::kPolygon) out.push_back(&*i);
  }
  return out;
}

void ExpectAt(const MapPoint& got, const MapPoint& want) {
  EXPECT_LE(std::hypot(got.x - want.x, got.y - want.y), 1e-12) << got.x << "," << got.y;
}

class ContourSceneTest : public test::EngineTest {
 protected:
  ContourGrid grid(const char* formula, GridBoxes boxes) {
    GridResult r = EvaluateGrid(engine, formula, boxes, false);
    EXPECT_EQ(r.end, GridEnd::kCompleted) << formula;
    return r.grid;
  }
  MapScene scene;
};

TEST_F(ContourSceneTest, ProjectionPlacesTheCornersOfTheBox) {
  // z = x + y on 0..2 by -1..3: zmin at the first node, zmax at the far corner.
  const ContourGrid g = grid("x+y", {"0", "2", "4", "-1", "3", "8"});
  for (ViewAngles v : {ViewAngles{20, 30}, ViewAngles{0, 90}, ViewAngles{45, 45}, ViewAngles{60, 10}}) {
    SCOPED_TRACE(v.x);
    const double ca = std::cos(v.x * kPi / 180), sa = std::sin(v.x * kPi / 180);
    const double cb = std::cos(v.y * kPi / 180), sb = std::sin(v.y * kPi / 180);
    const double W = ca + cb, H = sb + sa + 1;
    Projection p(g, v);
    ExpectAt({p.width(), p.height()}, {W, H});
    ExpectAt(p.at(0, 0), {W / 2, H});                          // nearest corner at zmin: the bottom
    ExpectAt(p.at(0, 4), {W / 2 + ca, H - sa - 2.0 / 6});      // along x: z = 2 of 0..6
    ExpectAt(p.at(8, 0), {W / 2 - cb, H - sb - 4.0 / 6});      // along y: z = 4
    ExpectAt(p.at(8, 4), {W / 2 + ca - cb, H - sa - sb - 1});  // the far corner at zmax: the top
  }
  // A flat surface lies at height 0, in black.
  const ContourGrid flat = grid("7", {"0", "1", "2", "0", "1", "2"});
  Projection p(flat, {});
  EXPECT_NEAR(p.at(2, 1).y, p.at(2, 1, flat.zMin).y, 1e-15);
  EXPECT_TRUE(BuildMap(flat, Request(MapDrawing::kHide), nullptr, scene));
  for (const MapItem* q : ItemsOf(scene, MapItem::kPolygon)) EXPECT_EQ(q->color, (Rgb{0, 0, 0}));
}

TEST_F(ContourSceneTest, MeshJoinsEveryRowThenEveryColumnInBlue) {
  const ContourGrid g = grid("x*y", {"-1", "1", "4", "-1", "1", "3"});
  ASSERT_TRUE(BuildMap(g, Request(MapDrawing::kCube), nullptr, scene));
  auto lines = ItemsOf(scene, MapItem::kPolyline);
  ASSERT_EQ(lines.size(), 4u + 5u);
  Projection p(g, {});
  for (int k = 0; k < 9; ++k) {
    const bool row = k < 4;
    ASSERT_EQ(std::tuple(lines[k]->color, lines[k]->ink, lines[k]->count),
              std::tuple(kContourBlue, false, row ? 5u : 4u));
    for (int n = 0; n < static_cast<int>(lines[k]->count); ++n) {
      ExpectAt(scene.pointsOf(*lines[k])[n], row ? p.at(k, n) : p.at(n, k - 4));
    }
  }
  EXPECT_EQ(scene.count(MapItem::kPolygon), 0u);
  EXPECT_GT(scene.count(MapItem::kText), 3u);  // tick labels and axis names
}

TEST_F(ContourSceneTest, SurfaceIsFilledFromTheBackWithMeanHeightColours) {
  // z = x + 10y on 0..3 by 0..2: cell means rise with i and j.
  const ContourGrid g = grid("x+10*y", {"0", "3", "3", "0", "2", "2"});
  for (bool cube : {false, true}) {
    DrawRequest r = Request(cube ? MapDrawing::kCube : MapDrawing::kHide, cube);
    r.colors.Green = -1;
    r.colors.Red = 1;
    ASSERT_TRUE(BuildMap(g, r, nullptr, scene));
    auto cells = Cells(scene);
    ASSERT_EQ(std::tuple(cells.size(), scene.count(MapItem::kPolyline)), std::tuple(6u, 1u));  // and the key's frame
    Projection p(g, r.angles);
    int n = 0;
    for (int i = 2; i >= 1; --i) {
      for (int j = 2; j >= 0; --j, ++n) {
        ASSERT_EQ(std::tuple(cells[n]->outline, cells[n]->count), std::tuple(true, 4u));
        const MapPoint corners[] = {p.at(i, j), p.at(i, j + 1), p.at(i - 1, j + 1), p.at(i - 1, j)};
        for (int k = 0; k < 4; ++k) ExpectAt(scene.pointsOf(*cells[n])[k], corners[k]);
        // Mean of x + 10y over the cell's corners: j + 1/2 + 10 (i - 1/2); zmin 0, zmax 23.
        const double mean = j + 0.5 + 10 * (i - 0.5);
        EXPECT_EQ(cells[n]->color, (Rgb{static_cast<uint8_t>(std::nearbyint(255 * mean / 23)), 0, 0})) << i << j;
      }
    }
    // The axes come last, over the surface.
    EXPECT_TRUE(scene.items.back().kind != MapItem::kPolygon && scene.items.back().ink);
  }
  // A stop ends the surface after the cell, without axes.
  host.stopAt = host.checkpoints + 4;
  EXPECT_FALSE(BuildMap(g, Request(MapDrawing::kHide), &engine, scene));
  EXPECT_EQ(std::tuple(scene.count(MapItem::kPolygon), scene.count(MapItem::kText)), std::tuple(4u, 0u));
}

TEST_F(ContourSceneTest, PlotFillsThePlanFirstWithColourModeThenAxesThenLines) {
  const ContourGrid g = grid("x^2+y^2", {"-2", "2", "20", "-2", "2", "20"});
  for (bool colorMode : {false, true}) {
    DrawRequest r = Request(MapDrawing::kPlot, colorMode);
    r.levels = {1, 4, 1};
    ASSERT_TRUE(BuildMap(g, r, nullptr, scene));
    EXPECT_EQ(std::tuple(scene.left, scene.bottom), std::tuple(-0.2, 1.4));
    std::vector<Segment> segments;
    ContourLines(g, r.levels, nullptr, segments);
    std::vector<const MapItem*> blue;
    for (const MapItem& item : scene.items) {
      if (item.kind == MapItem::kLine && !item.ink) blue.push_back(&item);
    }
    ASSERT_EQ(blue.size(), segments.size());
    for (size_t k = 0; k < blue.size(); ++k) {
      const MapPoint* m = scene.pointsOf(*blue[k]);
      EXPECT_EQ(blue[k]->color, kContourBlue);
      ExpectAt(m[0], {(segments[k].x1 + 2) / 4, 1 - (segments[k].y1 + 2) / 4});
      ExpectAt(m[1], {(segments[k].x2 + 2) / 4, 1 - (segments[k].y2 + 2) / 4});
    }
    // After the lines only their level labels, on paper patches.
    for (auto* i = blue.back() + 1; i != scene.items.data() + scene.items.size(); ++i) EXPECT_TRUE(i->boxed);
    auto cells = Cells(scene);
    ASSERT_EQ(cells.size(), colorMode ? 400u : 0u);
    if (colorMode) {
      // First the corner cell (-2..-1.8, -2..-1.8) at the bottom left, mean 7.24 of 0..8.
      EXPECT_EQ(std::tuple(&scene.items.front(), cells.front()->outline, cells.front()->color),
                std::tuple(cells.front(), false, Rgb{0, 231, 0}));
      ExpectAt(scene.pointsOf(*cells.front())[0], {0, 1});
    }
  }
}

TEST_F(ContourSceneTest, TheViewHoldsTheWholeSurfaceAtEveryAngle) {
  const ContourGrid g = grid("x*y", {"-1", "1", "6", "-1", "1", "6"});
  for (ViewAngles a : {ViewAngles{20, 30}, ViewAngles{0, 180}, ViewAngles{180, 0}, ViewAngles{90, 90},
                       ViewAngles{120, 50}}) {
    SCOPED_TRACE(a.x);
    ASSERT_TRUE(BuildMap(g, Request(MapDrawing::kHide, false, a), nullptr, scene));
    for (const MapItem* cell : Cells(scene)) {
      for (uint32_t k = 0; k < cell->count; ++k) {
        const MapPoint m = scene.pointsOf(*cell)[k];
        EXPECT_TRUE(m.x >= scene.left + 0.25 - 1e-9 && m.x <= scene.right - 0.25 + 1e-9) << m.x;
        EXPECT_TRUE(m.y >= scene.top + 0.25 - 1e-9 && m.y <= scene.bottom - 0.25 + 1e-9) << m.y;
      }
    }
  }
  // At 20 and 30 degrees the view is exactly (-0.5, -0.5) to (W + 0.5, H + 0.5).
  ASSERT_TRUE(BuildMap(g, Request(MapDrawing::kHide, false, {20, 30}), nullptr, scene));
  Projection p(g, {20, 30});
  EXPECT_EQ((std::array<double, 4>{scene.left, scene.top, scene.right, scene.bottom}),
            (std::array<double, 4>{-0.5, -0.5, p.width() + 0.5, p.height() + 0.5}));
}

// The colour key: strips from zmin at the bottom to zmax at the top, merged where the colour
// holds (MultiColor's seven bands change after bytes 36, 72, ...), right of the drawing.
TEST_F(ContourSceneTest, ColourKeyBesideEveryFilledDrawing) {
  const ContourGrid g = grid("x^2+y^2", {"-2", "2", "20", "-2", "2", "20"});
  ColorScheme multi;
  multi.Green = -1;
  multi.MultiColor = 1;
  for (auto [drawing, colorMode, colors, strips] :
       {std::tuple{MapDrawing::kPlot, true, multi, 7u}, {MapDrawing::kHide, false, ColorScheme{}, 256u},
        {MapDrawing::kCube, true, multi, 7u}, {MapDrawing::kPlot, false, multi, 0u},
        {MapDrawing::kCube, false, multi, 0u}}) {
    DrawRequest r = Request(drawing, colorMode);
    r.colors = colors;
    r.levels = {1, 4, 1};
    ASSERT_TRUE(BuildMap(g, r, nullptr, scene));
    auto polygons = ItemsOf(scene, MapItem::kPolygon);
    const auto cells = Cells(scene);
    ASSERT_EQ(polygons.size() - cells.size(), strips) << static_cast<int>(drawing);
    if (strips == 0) continue;
    double cellsRight = 0;
    for (auto* c : cells) cellsRight = std::max({cellsRight, scene.pointsOf(*c)[0].x, scene.pointsOf(*c)[1].x});
    std::vector<const MapItem*> key(polygons.begin() + static_cast<long>(cells.size()), polygons.end());
    const MapPoint *first = scene.pointsOf(*key.front()), *last = scene.pointsOf(*key.back());
    const double bottom = first[0].y, top = last[2].y;
    EXPECT_TRUE(first[0].x > cellsRight && first[1].x < scene.right - 0.2) << first[0].x;
    EXPECT_EQ(std::pair(key.front()->color, key.back()->color), std::pair(SchemeColor(0, colors), SchemeColor(255, colors)));
    const double bandTop = bottom - (bottom - top) * 36.5 / 255;  // MultiColor's first band
    EXPECT_TRUE(strips != 7 || std::abs(scene.pointsOf(*key[0])[2].y - bandTop) < 1e-12);
  }
}

// Level labels: on a segment of their level, inside the frame, apart, at most two a level; the
// z axis stands where its labels are clear of the surface.
TEST_F(ContourSceneTest, LevelLabelsAndTheZAxisKeepClear) {
  const ContourGrid g = grid("x^2+y^2", {"-2", "2", "20", "-2", "2", "20"});
  DrawRequest r = Request(MapDrawing::kPlot);
  r.levels = {1, 4, 1};
  ASSERT_TRUE(BuildMap(g, r, nullptr, scene));
  std::vector<MapPoint> at;
  std::map<std::string, int> perLevel;
  for (const MapItem* t : ItemsOf(scene, MapItem::kText)) {
    if (!t->boxed) continue;
    const MapPoint m = scene.pointsOf(*t)[0];
    const double x = m.x * 4 - 2, y = (1 - m.y) * 4 - 2;  // on the circle x^2 + y^2 = level
    EXPECT_NEAR(x * x + y * y, std::stod(t->text), 0.05) << t->text;
    for (const MapPoint& p : at) EXPECT_GE(std::hypot(p.x - m.x, p.y - m.y), 0.3);
    EXPECT_TRUE(m.x > 0.08 && m.x < 0.92 && m.y > 0.08 && m.y < 0.92);
    at.push_back(m);
    ++perLevel[t->text];
  }
  EXPECT_EQ(perLevel.size(), 4u);
  for (auto [level, n] : perLevel) EXPECT_LE(n, 2) << level;

  ASSERT_TRUE(BuildMap(g, Request(MapDrawing::kHide), nullptr, scene));
  auto inside = [](MapPoint m, const MapPoint* q) {  // ray crossing, for any quadrilateral
    bool in = false;
    for (int k = 0, l = 3; k < 4; l = k++) {
      if ((q[k].y > m.y) != (q[l].y > m.y) && m.x < q[l].x + (q[k].x - q[l].x) * (m.y - q[l].y) / (q[k].y - q[l].y)) in = !in;
    }
    return in;
  };
  int zLabels = 0;
  for (const MapItem* t : ItemsOf(scene, MapItem::kText)) {
    zLabels += t->text == "8";
    for (auto* c : Cells(scene)) EXPECT_FALSE(inside(scene.pointsOf(*t)[0], scene.pointsOf(*c))) << t->text;
  }
  EXPECT_EQ(zLabels, 2);  // zmax on the axis and on the key
}

}  // namespace
}  // namespace merida

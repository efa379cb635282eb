// The three drawings of the Contour Map window, shape by shape in drawing order.
#include "contour/contour_scene.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr double kRadiansPerDegree = 6.28318530717958 / 360;
constexpr double kTick = 0.025;  // tick length, map units
constexpr Rgb kBlack{0, 0, 0};

class SceneWriter {
 public:
  explicit SceneWriter(MapScene& scene) : s_(scene) {}

  void line(MapPoint a, MapPoint b, Rgb color, bool ink = false) {
    add(MapItem::kLine, color, ink, {a, b});
  }
  void polyline(std::initializer_list<MapPoint> points, bool ink) { add(MapItem::kPolyline, kBlack, ink, points); }
  void polygon(std::initializer_list<MapPoint> corners, Rgb fill, bool outline) {
    add(MapItem::kPolygon, fill, false, corners);
    s_.items.back().outline = outline;
  }
  // Opens a polyline whose points follow with point().
  void beginPolyline(Rgb color) {
    MapItem item;
    item.kind = MapItem::kPolyline;
    item.color = color;
    item.first = static_cast<uint32_t>(s_.points.size());
    s_.items.push_back(item);
  }
  void point(MapPoint p) {
    s_.points.push_back(p);
    ++s_.items.back().count;
  }
  void text(MapPoint at, std::string text, int8_t alignX, int8_t alignY, bool boxed = false) {
    MapItem item;
    item.kind = MapItem::kText;
    item.ink = true;
    item.boxed = boxed;
    item.first = static_cast<uint32_t>(s_.points.size());
    item.count = 1;
    item.text = std::move(text);
    item.alignX = alignX;
    item.alignY = alignY;
    s_.points.push_back(at);
    s_.items.push_back(std::move(item));
  }

 private:
  void add(MapItem::Kind kind, Rgb color, bool ink, std::initializer_list<MapPoint> points) {
    MapItem item;
    item.kind = kind;
    item.color = color;
    item.ink = ink;
    item.first = static_cast<uint32_t>(s_.points.size());
    item.count = static_cast<uint32_t>(points.size());
    s_.points.insert(s_.points.end(), points);
    s_.items.push_back(std::move(item));
  }

  MapScene& s_;
};

std::string Label(double v) { return PlainText(v); }

double MeanHeight(const ContourGrid& g, int i0, int j0, int i1, int j1) {
  return (g.at(i0, j0) + g.at(i0, j1) + g.at(i1, j1) + g.at(i1, j0)) / 4;
}

Rgb CellColor(const ContourGrid& g, double h, const ColorScheme& colors) {
  return SchemeColor(HeightByte(h, g.zMin, g.zMax), colors);
}

// Plan view: x to the right over 0..1, y upwards over 0..1.
MapPoint Plan(const ContourGrid& g, double x, double y) {
  return {(x - g.xMin) / (g.xMax - g.xMin), 1 - (y - g.yMin) / (g.yMax - g.yMin)};
}

void PlanAxes(const ContourGrid& g, SceneWriter& w) {
  w.polyline({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}, true);
  for (double x : Ticks(g.xMin, g.xMax)) {
    const double at = Plan(g, x, g.yMin).x;
    w.line({at, 1}, {at, 1 + kTick}, kBlack, true);
    w.text({at, 1 + 1.5 * kTick}, Label(x), 0, -1);
  }
  for (double y : Ticks(g.yMin, g.yMax)) {
    const double at = Plan(g, g.xMin, y).y;
    w.line({0, at}, {-kTick, at}, kBlack, true);
    w.text({-1.5 * kTick, at}, Label(y), 1, 0);
  }
  w.text({0.5, 1.12}, "x", 0, -1);
  w.text({-0.14, 0.5}, "y", 1, 0);
}

// The colour key of the filled drawings: a vertical bar from zmin at `bottom` to zmax at `top`,
// one strip per height byte (strips of one colour merged), ticked on its right.
void ColourBar(const ContourGrid& g, const ColorScheme& colors, double left, double top, double bottom,
               SceneWriter& w) {
  constexpr double kWidth = 0.06;
  if (!(g.zMax > g.zMin)) return;  // a flat grid has one colour and nothing to key
  const double right = left + kWidth;
  auto yOf = [&](double byte) { return bottom - (bottom - top) * std::clamp(byte, 0.0, 255.0) / 255; };
  int from = 0;
  for (int L = 1; L <= 256; ++L) {
    const Rgb color = SchemeColor(static_cast<uint8_t>(from), colors);
    if (L < 256 && SchemeColor(static_cast<uint8_t>(L), colors) == color) continue;
    // Byte L covers the heights that round to it: L - 1/2 to L + 1/2.
    const double y0 = yOf(from - 0.5), y1 = yOf(L - 0.5);
    w.polygon({{left, y0}, {right, y0}, {right, y1}, {left, y1}}, color, false);
    from = L;
  }
  w.polyline({{left, bottom}, {right, bottom}, {right, top}, {left, top}, {left, bottom}}, true);
  for (double z : Ticks(g.zMin, g.zMax)) {
    const double y = bottom - (bottom - top) * (z - g.zMin) / (g.zMax - g.zMin);
    w.line({right, y}, {right + kTick, y}, kBlack, true);
    w.text({right + 1.5 * kTick, y}, Label(z), -1, 0);
  }
}

// Each level named where its line runs clear of the frame and of other names: first one name a
// level, then a second where there is room, on segment midpoints far enough apart to read.
void LevelLabels(const ContourGrid& g, const std::vector<Segment>& segments, SceneWriter& w) {
  constexpr double kApart = 0.3, kInside = 0.08;
  std::vector<MapPoint> placed;
  std::map<double, int> named;
  for (int perLevel : {1, 2}) {
    for (const Segment& s : segments) {
      if (named[s.level] == perLevel) continue;
      const MapPoint a = Plan(g, s.x1, s.y1), b = Plan(g, s.x2, s.y2);
      const MapPoint mid{(a.x + b.x) / 2, (a.y + b.y) / 2};
      if (mid.x < kInside || mid.x > 1 - kInside || mid.y < kInside || mid.y > 1 - kInside) continue;
      const bool crowded = std::any_of(placed.begin(), placed.end(), [&](const MapPoint& p) {
        return std::hypot(p.x - mid.x, p.y - mid.y) < kApart;
      });
      if (crowded) continue;
      placed.push_back(mid);
      ++named[s.level];
      w.text(mid, Label(s.level), 0, 0, true);
    }
  }
}

bool DrawPlot(const ContourGrid& g, const DrawRequest& r, Engine* engine, MapScene& scene) {
  SceneWriter w(scene);
  if (r.colorMode) {
    for (int i = 0; i < g.ny; ++i) {
      for (int j = 0; j < g.nx; ++j) {
        const Rgb fill = CellColor(g, MeanHeight(g, i, j, i + 1, j + 1), r.colors);
        w.polygon({Plan(g, g.x(j), g.y(i)), Plan(g, g.x(j + 1), g.y(i)), Plan(g, g.x(j + 1), g.y(i + 1)),
                   Plan(g, g.x(j), g.y(i + 1))},
                  fill, false);
      }
    }
  }
  PlanAxes(g, w);
  if (r.colorMode) ColourBar(g, r.colors, 1.08, 0, 1, w);
  std::vector<Segment> segments;
  const bool finished = ContourLines(g, r.levels, engine, segments);
  for (const Segment& s : segments) w.line(Plan(g, s.x1, s.y1), Plan(g, s.x2, s.y2), kContourBlue);
  if (finished) LevelLabels(g, segments, w);
  return finished;
}

void SurfaceAxes(const ContourGrid& g, const Projection& p, SceneWriter& w) {
  const MapPoint origin = p.at(0, 0, g.zMin);
  w.line(origin, p.at(0, g.nx, g.zMin), kBlack, true);
  w.line(origin, p.at(g.ny, 0, g.zMin), kBlack, true);
  // The z axis rises from the base's leftmost corner, its labels outside the surface; from the
  // nearest corner they would be written over it.
  int zi = 0, zj = 0;
  for (int i : {0, g.ny}) {
    for (int j : {0, g.nx}) {
      if (p.at(i, j, g.zMin).x < p.at(zi, zj, g.zMin).x - 1e-9) zi = i, zj = j;
    }
  }
  const MapPoint zFoot = p.at(zi, zj, g.zMin), zTop = p.at(zi, zj, g.zMax);
  w.line(zFoot, zTop, kBlack, true);
  // Each name a little beyond its axis' end, and first: a tick label that would cover it gives way.
  auto name = [&](MapPoint end, const char* text) {
    const double dx = end.x - origin.x, dy = end.y - origin.y, length = std::hypot(dx, dy);
    const double k = length > 0 ? 4 * kTick / length : 0;
    w.text({end.x + dx * k, end.y + dy * k - (length > 0 ? 0 : 4 * kTick)}, text, 0, 0);
  };
  name(p.at(0, g.nx, g.zMin), "x");
  name(p.at(g.ny, 0, g.zMin), "y");
  w.text({zTop.x, zTop.y - 4 * kTick}, "z", 0, 0);
  for (double x : Ticks(g.xMin, g.xMax)) {
    const MapPoint at = p.at(0, (x - g.xMin) / g.dx, g.zMin);
    w.line(at, {at.x, at.y + kTick}, kBlack, true);
    w.text({at.x, at.y + 1.5 * kTick}, Label(x), 0, -1);
  }
  for (double z : Ticks(g.zMin, g.zMax)) {
    const MapPoint at = p.at(zi, zj, z);
    w.line(at, {at.x - kTick, at.y}, kBlack, true);
    w.text({at.x - 1.5 * kTick, at.y}, Label(z), 1, 0);
  }
  for (double y : Ticks(g.yMin, g.yMax)) {
    const MapPoint at = p.at((y - g.yMin) / g.dy, 0, g.zMin);
    // The origin's place is taken by the x label, the z axis' foot by the heights.
    if (y == g.yMin || (std::abs(at.x - zFoot.x) < 1e-9 && std::abs(at.y - zFoot.y) < 1e-9)) continue;
    w.line(at, {at.x - kTick, at.y}, kBlack, true);
    w.text({at.x - 1.5 * kTick, at.y}, Label(y), 1, 0);
  }
}

// The surface's rectangle, (-0.5, -0.5) to (W + 0.5, H + 0.5), widened where the box comes
// nearer its edge than a quarter (obtuse angles carry it outside).
void SurfaceView(const ContourGrid& g, const Projection& p, MapScene& scene) {
  constexpr double kRoom = 0.25;
  scene.left = scene.top = -0.5;
  scene.right = p.width() + 0.5;
  scene.bottom = p.height() + 0.5;
  for (int i : {0, g.ny}) {
    for (int j : {0, g.nx}) {
      for (double z : {g.zMin, g.zMax}) {
        const MapPoint c = p.at(i, j, z);
        scene.left = std::min(scene.left, c.x - kRoom);
        scene.right = std::max(scene.right, c.x + kRoom);
        scene.top = std::min(scene.top, c.y - kRoom);
        scene.bottom = std::max(scene.bottom, c.y + kRoom);
      }
    }
  }
}

void DrawMesh(const ContourGrid& g, const Projection& p, SceneWriter& w) {
  for (int i = 0; i <= g.ny; ++i) {
    w.beginPolyline(kContourBlue);
    for (int j = 0; j <= g.nx; ++j) w.point(p.at(i, j));
  }
  for (int j = 0; j <= g.nx; ++j) {
    w.beginPolyline(kContourBlue);
    for (int i = 0; i <= g.ny; ++i) w.point(p.at(i, j));
  }
}

// Back to front, so that nearer cells cover farther ones.
bool DrawSurface(const ContourGrid& g, const Projection& p, const ColorScheme& colors, Engine* engine,
                 SceneWriter& w) {
  for (int i = g.ny; i >= 1; --i) {
    for (int j = g.nx - 1; j >= 0; --j) {
      const Rgb fill = CellColor(g, MeanHeight(g, i, j, i - 1, j + 1), colors);
      w.polygon({p.at(i, j), p.at(i, j + 1), p.at(i - 1, j + 1), p.at(i - 1, j)}, fill, true);
      if (engine && StopRequestedAtCheckpoint(*engine)) return false;
    }
  }
  return true;
}

}  // namespace

std::size_t MapScene::count(MapItem::Kind kind) const {
  return static_cast<std::size_t>(
      std::count_if(items.begin(), items.end(), [kind](const MapItem& item) { return item.kind == kind; }));
}

Projection::Projection(const ContourGrid& grid, ViewAngles degrees) : grid_(grid) {
  const double a = degrees.x * kRadiansPerDegree, b = degrees.y * kRadiansPerDegree;
  cosA_ = std::cos(a);
  sinA_ = std::sin(a);
  cosB_ = std::cos(b);
  sinB_ = std::sin(b);
  sx_ = grid.dx / (grid.xMax - grid.xMin);
  sy_ = grid.dy / (grid.yMax - grid.yMin);
  // A flat grid lies at height 0.
  sz_ = grid.zMax > grid.zMin ? 1 / (grid.zMax - grid.zMin) : 0;
  width_ = cosA_ + cosB_;
  height_ = sinB_ + sinA_ + 1;
}

MapPoint Projection::at(double i, double j, double z) const {
  const double X = cosA_ * sx_ * j - cosB_ * sy_ * i;
  const double Y = sinA_ * sx_ * j + sinB_ * sy_ * i + (z - grid_.zMin) * sz_;
  return {width_ / 2 + X, height_ - Y};
}

bool BuildMap(const ContourGrid& grid, const DrawRequest& request, Engine* engine, MapScene& scene) {
  scene = MapScene{};
  if (request.drawing == MapDrawing::kPlot) return DrawPlot(grid, request, engine, scene);

  const Projection p(grid, request.angles);
  SurfaceView(grid, p, scene);
  SceneWriter w(scene);
  bool finished = true;
  if (request.drawing == MapDrawing::kCube && !request.colorMode) {
    DrawMesh(grid, p, w);
  } else {
    finished = DrawSurface(grid, p, request.colors, engine, w);
  }
  if (finished) {
    SurfaceAxes(grid, p, w);
    if (request.drawing == MapDrawing::kHide || request.colorMode) {
      // The key right of the surface's rightmost corner, and the view widened to hold its labels.
      double rightmost = p.width() / 2;
      for (int i : {0, grid.ny}) {
        for (int j : {0, grid.nx}) rightmost = std::max(rightmost, p.at(i, j, grid.zMin).x);
      }
      const double left = std::max(p.width() + 0.1, rightmost + 0.15);
      scene.right = std::max(scene.right, left + 0.3);
      ColourBar(grid, request.colors, left, 0.2 * p.height(), 0.9 * p.height(), w);
    }
  }
  return finished;
}

}  // namespace merida

// The Contour Map drawing as a list of shapes in the map's own coordinates, painted as listed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contour/contour_grid.h"
#include "contour/contour_plot.h"
#include "engine/engine.h"
#include "main/app_state.h"

namespace merida {

struct MapPoint {
  double x = 0, y = 0;
};

struct MapItem {
  enum Kind : uint8_t { kLine, kPolyline, kPolygon, kText };
  Kind kind = kLine;
  // Lines and polylines in `color`, or in the theme's ink (axes, ticks, labels) when `ink`.
  bool ink = false;
  Rgb color;          // a polygon's fill
  bool outline = false;  // a polygon outlined in black
  uint32_t first = 0, count = 0;  // the item's points in MapScene::points
  std::string text;
  // Which side of the text its point is on: -1 left/top, 0 centre, 1 right/bottom.
  int8_t alignX = 0, alignY = 0;
  // A text on a patch of paper that breaks the line under it (level labels).
  bool boxed = false;
};

struct MapScene {
  // The map's coordinates: (left, top) at the top left corner of the drawing surface.
  double left = -0.2, top = -0.2, right = 1.4, bottom = 1.4;
  std::vector<MapPoint> points;
  std::vector<MapItem> items;

  std::size_t count(MapItem::Kind kind) const;
  const MapPoint* pointsOf(const MapItem& item) const { return points.data() + item.first; }
};

enum class MapDrawing { kPlot, kCube, kHide };

struct DrawRequest {
  MapDrawing drawing = MapDrawing::kPlot;
  bool colorMode = false;  // Plot fills the plan by height, Cube draws the filled surface
  ColorScheme colors;
  ViewAngles angles;
  Levels levels;  // Plot only
};

// The oblique parallel projection of the grid: unit lengths for the x, y and z ranges.
class Projection {
 public:
  Projection(const ContourGrid& grid, ViewAngles degrees);
  // Grid point (i, j) at height z, in map coordinates (larger heights higher on the screen).
  // Fractional i and j place ticks between grid lines.
  MapPoint at(double i, double j, double z) const;
  MapPoint at(int i, int j) const { return at(static_cast<double>(i), static_cast<double>(j), grid_.at(i, j)); }
  double width() const { return width_; }
  double height() const { return height_; }

 private:
  const ContourGrid& grid_;
  double cosA_, sinA_, cosB_, sinB_;
  double sx_, sy_, sz_;
  double width_, height_;
};

// Builds the drawing. With an engine, events are processed after each row of contour cells
// or each surface cell; false when StopRequested ended it (the scene keeps what was drawn).
bool BuildMap(const ContourGrid& grid, const DrawRequest& request, Engine* engine, MapScene& scene);

}  // namespace merida

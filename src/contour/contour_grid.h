// A formula of x and y on a rectangular grid, and the crossing rule that traces a level on it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"

namespace merida {

// The six range boxes: x minimum, maximum, divisions, then the same for y.
struct GridBoxes {
  std::string xMin, xMax, xDivisions;
  std::string yMin, yMax, yDivisions;
};

struct ContourGrid {
  static constexpr int kMaxDivisions = 100;

  double xMin = 0, xMax = 0, yMin = 0, yMax = 0;
  int nx = 0, ny = 0;
  double dx = 0, dy = 0;
  double zMin = 0, zMax = 0;
  // z[i * (nx + 1) + j] = f(xMin + j*dx, yMin + i*dy), i = 0..ny, j = 0..nx.
  std::vector<double> z;

  double at(int i, int j) const { return z[static_cast<size_t>(i) * (nx + 1) + j]; }
  double x(int j) const { return j * dx + xMin; }
  double y(int i) const { return i * dy + yMin; }
};

enum class GridEnd { kCompleted, kSilent, kError, kFault, kStopped };

struct GridResult {
  ContourGrid grid;  // complete only when end is kCompleted
  GridEnd end = GridEnd::kSilent;
  std::optional<std::string> xDivisionsBox;  // "100" when the x divisions were capped
  std::optional<std::string> yDivisionsBox;
};

// Compiles the formula (x and y only, at most two variables: errors 31 and 32), reads the boxes
// and evaluates the grid row by row, yielding to the user interface after each row.
// `withSums` = false leaves sgm out of the compile sequence (the contour window's own order).
GridResult EvaluateGrid(Engine& engine, std::string_view formula, const GridBoxes& boxes,
                        bool withSums = true);

struct Segment {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  double level = 0;  // the height the segment traces
};

// The level curve z = level, cell by cell: crossings interpolated on the cell edges, two joined,
// four paired by the squared-distance test. With an engine, events are processed after each row
// of cells and StopRequested ends the tracing early.
std::vector<Segment> TraceLevel(const ContourGrid& grid, double level, Engine* engine = nullptr);

}  // namespace merida

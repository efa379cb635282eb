// Grid evaluation with x and y bound as number cells, and level tracing over the cells.
#include "contour/contour_grid.h"

#include <algorithm>

#include "engine/formula_sampler.h"

namespace merida {
namespace {

constexpr int kTooManyVariables = 31;
constexpr int kWrongVariableName = 32;

struct AxisRange {
  double min = 0, max = 0;
  int divisions = 0;
};

// One axis' three boxes; nullopt ends the calculation (silently unless the engine failed).
std::optional<AxisRange> ReadAxis(Engine& engine, const char* axis, const std::string& minBox,
                                  const std::string& maxBox, const std::string& divisionsBox,
                                  std::optional<std::string>& shown) {
  AxisRange a;
  a.min = engine.EvaluateConstantText(minBox);
  if (!engine.failed()) a.max = engine.EvaluateConstantText(maxBox);
  if (engine.failed()) return std::nullopt;
  std::optional<int16_t> n = ReadCountBox(divisionsBox);
  if (!n || *n < 1) {
    engine.EndSilently(CountReason(std::string("the number of ") + axis + " divisions", divisionsBox, 1, 32767),
                       axis[0] == 'x' ? "Text3" : "Text6");
    return std::nullopt;
  }
  if (!(a.min < a.max)) {
    engine.EndSilently(std::string("the start of the ") + axis + " range must be below its end",
                       axis[0] == 'x' ? "Text1" : "Text4");
    return std::nullopt;
  }
  a.divisions = *n;
  if (a.divisions > ContourGrid::kMaxDivisions) {
    a.divisions = ContourGrid::kMaxDivisions;
    shown = std::to_string(ContourGrid::kMaxDivisions);
    engine.host().showBox(axis[0] == 'x' ? "Text3" : "Text6", *shown);
  }
  return a;
}

GridEnd Failed(Engine& engine, bool fault) {
  if (fault) {
    EndRunOnFault(engine);
    return GridEnd::kFault;
  }
  engine.BindToX = -1;
  return GridEnd::kError;
}

}  // namespace

GridResult EvaluateGrid(Engine& engine, std::string_view formula, const GridBoxes& boxes,
                        bool withSums) {
  GridResult out;
  engine.ErrorFlag = 0;
  engine.StopRequested = 0;
  engine.IntegralBinding = -1;
  engine.BindToX = 1;

  FormulaSampler sampler(engine);
  if (sampler.compile(formula, withSums) != PointStatus::kOk) {
    out.end = Failed(engine, engine.FaultFlag);
    return out;
  }
  const std::vector<std::string>& vars = sampler.variables();
  if (vars.size() > 2 || std::any_of(vars.begin(), vars.end(),
                                     [](const std::string& v) { return v != "x" && v != "y"; })) {
    engine.Fail(vars.size() > 2 ? kTooManyVariables : kWrongVariableName);
    engine.BindToX = -1;
    out.end = GridEnd::kError;
    return out;
  }

  std::optional<AxisRange> ax = ReadAxis(engine, "x", boxes.xMin, boxes.xMax, boxes.xDivisions, out.xDivisionsBox);
  std::optional<AxisRange> ay;
  if (ax) ay = ReadAxis(engine, "y", boxes.yMin, boxes.yMax, boxes.yDivisions, out.yDivisionsBox);
  if (!ax || !ay) {
    out.end = engine.failed() ? Failed(engine, engine.FaultFlag) : GridEnd::kSilent;
    return out;
  }

  ContourGrid& g = out.grid;
  g.xMin = ax->min;
  g.xMax = ax->max;
  g.nx = ax->divisions;
  g.yMin = ay->min;
  g.yMax = ay->max;
  g.ny = ay->divisions;
  g.dx = (g.xMax - g.xMin) / g.nx;
  g.dy = (g.yMax - g.yMin) / g.ny;
  g.z.assign(static_cast<size_t>(g.nx + 1) * (g.ny + 1), 0.0);

  // x and y as number cells bound once, so that no point rebuilds the program.
  sampler.setCellNames({"x", "y"});
  double cells[2] = {0, 0};
  for (int i = 0; i <= g.ny; ++i) {
    cells[1] = g.y(i);
    for (int j = 0; j <= g.nx; ++j) {
      cells[0] = g.x(j);
      double z = 0;
      PointStatus s = sampler.atValues(cells[0], cells, z);
      if (s != PointStatus::kOk) {
        out.end = Failed(engine, s == PointStatus::kFault);
        return out;
      }
      g.z[static_cast<size_t>(i) * (g.nx + 1) + j] = z;
    }
    engine.host().progress(i + 1, g.ny + 1);
    if (StopRequestedAtCheckpoint(engine)) {
      out.end = GridEnd::kStopped;
      return out;
    }
  }
  auto [lo, hi] = std::minmax_element(g.z.begin(), g.z.end());
  g.zMin = *lo;
  g.zMax = *hi;
  out.end = GridEnd::kCompleted;
  return out;
}

std::vector<Segment> TraceLevel(const ContourGrid& g, double k, Engine* engine) {
  struct Point {
    double x, y;
  };
  std::vector<Segment> out;
  for (int i = 0; i < g.ny; ++i) {
    const double y0 = g.y(i), y1 = g.y(i + 1);
    for (int j = 0; j < g.nx; ++j) {
      const double x0 = g.x(j), x1 = g.x(j + 1);
      const double z00 = g.at(i, j), z01 = g.at(i, j + 1), z10 = g.at(i + 1, j), z11 = g.at(i + 1, j + 1);
      Point p[6];
      int count = 0;
      // An edge from a to b: an interpolated crossing, or the start vertex when it lies on the level.
      auto edge = [&](Point a, double za, Point b, double zb) {
        if ((za - k) * (zb - k) < 0) {
          double f = (k - za) / (zb - za);
          p[count++] = {a.x + f * (b.x - a.x), a.y + f * (b.y - a.y)};
        } else if (za == k) {
          p[count++] = a;
        }
      };
      edge({x0, y0}, z00, {x1, y0}, z01);  // bottom
      edge({x0, y1}, z10, {x1, y1}, z11);  // top
      edge({x0, y0}, z00, {x0, y1}, z10);  // left
      edge({x1, y0}, z01, {x1, y1}, z11);  // right
      auto seg = [&out, k](Point a, Point b) { out.push_back({a.x, a.y, b.x, b.y, k}); };
      auto dist2 = [](Point a, Point b) { return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y); };
      if (count == 2) {
        seg(p[0], p[1]);
      } else if (count == 4) {
        if (dist2(p[0], p[3]) > dist2(p[0], p[2])) {
          seg(p[0], p[2]);
          seg(p[1], p[3]);
        } else {
          seg(p[0], p[3]);
          seg(p[1], p[2]);
        }
      }
    }
    if (engine && StopRequestedAtCheckpoint(*engine)) break;
  }
  return out;
}

}  // namespace merida

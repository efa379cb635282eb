// The function graph's plots (normal, polar, parametric): box texts in, chart points out.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"
#include "main/app_state.h"

namespace merida {

// The texts of the Graph window's range boxes.
struct GraphBoxes {
  std::string start;      // Text1 "Mini"
  std::string end;        // Text2 "Max"
  std::string divisions;  // Text3 "Num"
};

struct ChartPoint {
  double x = 0;
  double y = 0;
};

enum class ChartType { kLine, kLogLin };

enum class PlotEnd {
  kCompleted,
  kNothing,   // Log with no mode to replot
  kSilent,    // a range the plot cannot use
  kError,     // the engine has shown its message
  kFault,     // arithmetic fault: no message, GraphMode = 0
  kStopped,   // StopRequested seen between points
};

struct PlotResult {
  std::vector<ChartPoint> points;  // the points computed, in plotting order
  int pointCount = 0;              // n + 1 once the range was read
  std::optional<std::string> divisionsBox;  // new text of Text3 when the count was capped
  ChartType chartType = ChartType::kLine;
  bool thinLines = false;  // the parametric chart
  bool equalScale = false;  // polar and parametric: one scale on both axes, a circle stays round
  PlotEnd end = PlotEnd::kSilent;
};

// What the main window's Graph button sets before showing the window.
void PrepareGraphDefaults(Engine& engine, AppState& state);

// Go: normal mode, linear axes.
PlotResult PlotGo(Engine& engine, AppState& state, std::string_view formula, const GraphBoxes& boxes);
// Pole: polar mode (r = f(theta)), linear axes.
PlotResult PlotPole(Engine& engine, AppState& state, std::string_view formula, const GraphBoxes& boxes);
// Para after the first press: the two parameter formulas, linear axes, thin lines.
PlotResult PlotPara(Engine& engine, AppState& state, std::string_view first, std::string_view second,
                    const GraphBoxes& boxes);
// Log: the current mode again with a logarithmic vertical axis (nothing in mode 0).
PlotResult PlotLog(Engine& engine, AppState& state, std::string_view formula, std::string_view first,
                   std::string_view second, const GraphBoxes& boxes);

// The routines themselves, for callers that set the flags their own way.
PlotResult NormalOrPolarRoutine(Engine& engine, AppState& state, std::string_view formula,
                                const GraphBoxes& boxes);
PlotResult ParametricRoutine(Engine& engine, AppState& state, std::string_view first,
                             std::string_view second, const GraphBoxes& boxes);

// The largest number of points one plot draws.
constexpr int kMaxGraphPoints = 6000;

}  // namespace merida

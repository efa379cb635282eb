// The Differential & Differential Equation window's computations: box texts in, chart points out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"
#include "graph/graph_plot.h"
#include "main/app_state.h"

namespace merida {

// The window's eight boxes.
struct DiffBoxes {
  std::string var;     // Text1 "Diff Var": the dependent variable y
  std::string width;   // Text2 "Width": the step h
  std::string init;    // Text3 "Init Val": y(x0)
  std::string min;     // Text4 "Min": x0
  std::string max;     // Text5 "Max"
  std::string slope;   // Text6 "Init Val(1)": y'(x0), or z(x0) in Simult
  std::string second;  // Text7 "Second Function": g of Simult
  std::string var2;    // Text8 "Diff Var2": z of Simult
};

// DiffMode values.
enum DiffModeValue : int16_t { kDiffClosed = 0, kDiffDerivative = 1, kDiffSimple = 2, kDiffRungeKutta = 3 };

enum class DiffEnd {
  kCompleted,
  kNothing,  // Simult in Diff mode: no action at all
  kSilent,   // a name or step the computation cannot use
  kError,    // the engine has shown its message
  kFault,    // arithmetic fault: no message, BindToX = -1, StopRequested = 1
  kStopped,  // Close pressed during the run
};

struct DiffResult {
  DiffEnd end = DiffEnd::kSilent;
  bool started = false;  // the computation began: the chart shows exactly `points` (and `points2`)
  int dataSets = 1;      // 2 for Simult outside the phase plane: y and z against x
  std::vector<ChartPoint> points;
  std::vector<ChartPoint> points2;
};

// The largest number of points one computation plots.
constexpr int kMaxDiffPoints = 6000;

// Opening the window: Diff mode, free variables bound to x.
void OpenDiffWindow(Engine& engine, AppState& state);
// The Diff option: Diff mode; the RungeKutta box is to be cleared.
void SelectDiffOption(AppState& state);
// The Diff Equation option: the simple method until RungeKutta is ticked.
void SelectDiffEquationOption(AppState& state);
// A click that left the RungeKutta box `ticked`; returns whether it stays ticked (never in
// Diff mode, where the click has no effect).
bool ClickRungeKutta(AppState& state, bool ticked);
// Close: free variables asked again, the window's mode off, a running computation stopped.
void CloseDiffWindow(Engine& engine, AppState& state);

// True when a dependent-variable name holds only letters, digits and "_".
bool IsDiffVariableName(std::string_view name);

// 1 Grade (grade 1) or 2 Grade (grade 2) in the current DiffMode: derivative, simple or
// Runge-Kutta solver. `plane` is the Plane box (the solvers only).
DiffResult RunGrade(Engine& engine, AppState& state, std::string_view formula, const DiffBoxes& boxes, int grade,
                    bool plane);

// Simult: the pair y' = formula, z' = Text7 by Runge-Kutta (DiffMode becomes 3); nothing in Diff mode.
DiffResult RunSimult(Engine& engine, AppState& state, std::string_view formula, const DiffBoxes& boxes, bool plane);

}  // namespace merida

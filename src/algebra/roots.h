// The Intersection Point window's interval searches: roots of a formula (Go) and the
// intersections of two (Inter), by equal-step sampling and bisection of every sign change.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"
#include "graph/graph_plot.h"
#include "main/app_state.h"

namespace merida {

// The window's boxes that a search reads.
struct RootBoxes {
  std::string min;    // Text1
  std::string max;    // Text2
  std::string num;    // Text3
  std::string judge;  // Text4
};

enum class RootEnd {
  kListed,   // the list was replaced by `lines` (also after an error inside the interval)
  kSilent,   // a box the search cannot use: the previous list stays
  kError,    // the engine has shown its message; nothing listed
  kFault,    // arithmetic fault: no message, nothing listed
  kStopped,  // Close pressed during the scan; nothing listed
};

struct RootResult {
  RootEnd end = RootEnd::kSilent;
  std::vector<std::string> lines;  // "x= 1.5", or "x= 0  y= 0" for Inter
  std::vector<double> rootX, rootY;
  std::vector<ChartPoint> curve1, curve2;  // the samples, when the Graph box is ticked
  std::optional<std::string> numBox;       // new text of Text3 when the count was capped
  std::optional<double> judge;             // the judge value read, which Seek goes on to use
  // Sign changes whose |f| never came within the judge value (a pole such as 1/x at 0): where
  // the halving stopped. They are not roots and are not listed; the window says so.
  std::vector<double> unresolved;
};

constexpr int kMaxRoots = 50;

// Rounds to hundredths, halves away from zero, at any magnitude.
double RoundToHundredths(double v);

// The text a double click on a listed root puts into the Polynomial box: no leading blank.
std::string PolynomialBoxText(double x, bool integer);

// Go: the roots of `formula` on [Min, Max]; `integer` rounds the listed roots to hundredths.
RootResult SearchRoots(Engine& engine, AppState& state, std::string_view formula, const RootBoxes& boxes,
                       bool graph, bool integer);

// Inter: where `first` and `second` meet on [Min, Max], each listed with the first's value.
RootResult SearchIntersections(Engine& engine, AppState& state, std::string_view first, std::string_view second,
                               const RootBoxes& boxes, bool graph);

}  // namespace merida

// The Delay Calculate window's recurrence: timestep(k) is the value k steps back.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"
#include "graph/graph_plot.h"
#include "main/app_state.h"

namespace merida {

// The largest delay a formula may use, and so the grid's number of rows.
constexpr int kMaxDelay = 10;

enum class DelayEnd {
  kCompleted,
  kSilent,   // the Step box or an initial value the run cannot use
  kError,    // the engine has shown its message
  kFault,    // arithmetic fault: no message
  kStopped,  // Close pressed during the run
};

struct DelayResult {
  DelayEnd end = DelayEnd::kSilent;
  int largestDelay = 0;               // K
  std::vector<ChartPoint> points;     // (position, value); position 1 is the first initial value
  std::optional<std::string> stepBox;  // new text of Text1 when the count was capped
};

// Go: the recurrence from the grid's first K cells (rows 1..K of `initialCells`) for the Step
// box's N steps. Every chart point is recorded too.
DelayResult RunDelay(Engine& engine, AppState& state, std::string_view formula, std::string_view stepBox,
                     const std::vector<std::string>& initialCells);

}  // namespace merida

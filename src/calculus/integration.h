// The Integration and Double Integration windows' computations: box texts in, the answer out.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "engine/engine.h"
#include "main/app_state.h"

namespace merida {

// One variable's range boxes: Min, Max and Num.
struct RangeBoxes {
  std::string min;
  std::string max;
  std::string num;
};

enum class IntegrationEnd {
  kCompleted,
  kSilent,   // limits or divisions the rule cannot use
  kError,    // the engine has shown its message
  kFault,    // arithmetic fault: no message, GraphMode = 0
  kStopped,  // Close pressed during the run
};

struct IntegrationResult {
  IntegrationEnd end = IntegrationEnd::kSilent;
  std::optional<double> value;
  std::optional<std::string> numBox;   // new text of the first Num box (Text3)
  std::optional<std::string> numBox2;  // new text of the second Num box (Text6)
};

// The largest number of divisions either rule uses.
constexpr int kMaxIntegrationDivisions = 10000;

// Go of the Integration window: composite Simpson over [Min, Max] in Num divisions.
IntegrationResult IntegrateSingle(Engine& engine, AppState& state, std::string_view formula, const RangeBoxes& boxes);

// Double of the Integration window: the formula's two variables (Label1, Label2), or nullopt
// after error 33 (or the compiler's own error) has been shown.
std::optional<std::pair<std::string, std::string>> PrepareDoubleIntegral(Engine& engine, std::string_view formula);

// Go of the Double Integration window: tensor-product Simpson over first x second. Reports its
// progress a row of the first variable at a time, and a capped count (Text3, Text6) as it reads it.
IntegrationResult IntegrateDouble(Engine& engine, AppState& state, std::string_view formula,
                                  const RangeBoxes& first, const RangeBoxes& second);

}  // namespace merida

// The host the fuzz targets run the engine with: fixed replies, a bounded amount of work.
#pragma once

#include <optional>
#include <string>

#include "engine/engine.h"

namespace merida::fuzz {

// Answers input boxes with "2" a few times, then cancels; after a budget of event polls
// (one per Simpson pair or sum term) it asks the running computation to stop, as a stop
// button would, so that no input can run for long.
class BoundedHost : public EngineHost {
 public:
  Engine* engine = nullptr;
  int prompts = 0;
  long events = 0;

  std::optional<std::string> askValue(const std::string&) override {
    if (++prompts > 8) return std::nullopt;
    return std::string("2");
  }
  void showError(int, const std::string&) override {}
  void showFault(const std::string&) override {}
  void checkpoint() override {
    if (++events > 400 && engine) engine->StopRequested = 1;
  }
};

}  // namespace merida::fuzz

// The engine's only window on the outside world; the GUI, the CLI and the tests implement it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace merida {

class EngineHost {
 public:
  virtual ~EngineHost() = default;

  // Asks for the value of a free variable (title "データ入力", default "0"). nullopt = cancelled.
  virtual std::optional<std::string> askValue(const std::string& prompt) = 0;

  // Shows the message of an error number (already looked up in the error table).
  virtual void showError(int code, const std::string& message) = 0;

  // Shows an arithmetic fault (overflow) once, in a plain message box.
  virtual void showFault(const std::string& description) = 0;

  // A long run's checkpoint (after a point, a row, a term): a stop request sets
  // Engine::StopRequested from here.
  virtual void checkpoint() {}

  // How far a long run has come: `done` of `total` steps.
  virtual void progress(int64_t /*done*/, int64_t /*total*/) {}

  // A box the run rewrites (a capped count), named as its window names it, at the moment the
  // run reads it: a window shows the new text while the run goes on.
  virtual void showBox(const std::string& /*box*/, const std::string& /*text*/) {}
};

// A host that answers nothing and shows nothing: free variables count as cancelled.
class SilentHost : public EngineHost {
 public:
  std::optional<std::string> askValue(const std::string&) override { return std::nullopt; }
  void showError(int, const std::string&) override {}
  void showFault(const std::string&) override {}
};

}  // namespace merida

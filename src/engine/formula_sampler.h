// Compile once, keep the SavedProgram, evaluate point by point: the loop of every tool window.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/engine.h"

namespace merida {

// How one point evaluation ended.
enum class PointStatus {
  kOk,
  kError,  // the engine has shown the message and set ErrorFlag (or an input was cancelled)
  kFault,  // an arithmetic fault: the run ends without a message
};

class FormulaSampler {
 public:
  explicit FormulaSampler(Engine& engine);
  ~FormulaSampler();

  // The tool-window compile sequence on a formula box text (BindToX = 1): split, integrals,
  // sums (unless `withSums` is false), header, tokens, postfix, integrals folded, variables
  // collected or checked. kError/kFault when a step failed (the engine showed any message).
  PointStatus compile(std::string_view formulaBoxText, bool withSums = true);

  // The variables of the compiled formula, in order of first use (or as the header declares).
  const std::vector<std::string>& variables() const { return variables_; }
  const SavedProgram& program() const { return saved_; }

  // f at x: the saved program put back, sums folded at x, evaluated at x.
  PointStatus at(double x, double& y);

  // Every cell of `name` holds `value` as a number cell (its 15-digit text); atSubstituted
  // evaluates the formula so with the remaining variable at x.
  void substitute(std::string_view name, double value);
  PointStatus atSubstituted(double x, double& y);

  // f with every pair of cells (k, `name`) folded into a number cell holding value(k): the
  // delay window's timestep(k). The formula has no free variable.
  PointStatus atFolded(std::string_view name, const std::function<double(double)>& value, double& y);

  // f with each named variable replaced by a number cell (the two-variable tools).
  PointStatus atCells(const std::vector<std::pair<std::string, double>>& bindings, double& y);

  // Folds the sums into the saved program once, at x, instead of at every point.
  PointStatus foldSumsOnce(double x);

  // The names that atValues replaces, fixed once per run (the solvers' y, diff and z).
  void setCellNames(std::vector<std::string> names);
  // f at x with the k-th cell name holding values[k] as a number cell (its 15-digit text):
  // the dependent values of a solver pass through their decimal text at every evaluation.
  PointStatus atValues(double x, std::span<const double> values, double& y);

 private:
  PointStatus status(double y) const;
  // The program as it stands, sums folded at the current XValue, evaluated.
  PointStatus evaluateProgram(int16_t n, double& y);
  void restoreSums();

  // Bound cells: the substituted cells load their numbers from registers, and the code is
  // built once per layout instead of at every point. The texts are the fallback wherever
  // the engine switch is off, sums are folded per point, or a value has no finite read-back.
  enum class Binding : uint8_t { kNone, kSubstitute, kValues, kFolded };
  bool bindingUsable() const;
  void setBinding(Binding kind, std::string_view name);
  void layFolded(std::string_view name);
  PointStatus evaluateBound(const SavedProgram& program, double x, double& y);
  void substituteTexts();

  Engine& engine_;
  SavedProgram saved_;
  SavedProgram substituted_;
  std::vector<std::string> variables_;
  // setCellNames: the names and whether the formula uses each (an unused one binds nothing).
  std::vector<std::string> cellNames_;
  std::vector<bool> cellUsed_;
  // Sums are folded at every point from the integral table, which the next compilation
  // overwrites; a sampler keeps its own copy so two formulas can be sampled side by side.
  bool hasSums_ = false;
  std::array<IntegralEntry, kMaxIntegrals + 1> sums_;
  int16_t sumCount_ = 0;

  std::unique_ptr<CompiledCode> boundCode_;
  Binding binding_ = Binding::kNone;
  std::string bindingName_;
  std::array<int16_t, kMaxTokens + 1> cellRegister_{};  // per cell: its value's index, or -1
  std::vector<double> boundValues_;                      // the point's values, read back
  std::string substitutedName_;
  double substitutedValue_ = 0;
  bool substitutedBound_ = false;  // the last substitute() went to the registers
  SavedProgram folded_;            // the pairs folded into cells, once (atFolded)
  std::vector<double> foldKeys_;   // each pair's k, in the order they fold
  bool foldBound_ = false;
};

// The end of a tool run after an arithmetic fault: BindToX = -1, StopRequested = 1.
void EndRunOnFault(Engine& engine);

// A long run's checkpoint: true when the run has been asked to stop.
bool StopRequestedAtCheckpoint(Engine& engine);

// A count typed in a box: numeric, rounded halves to even, and fitting 16 bits; else nullopt.
std::optional<int16_t> ReadCountBox(std::string_view text);

// Why a tool ended without a message over a count box: "<what> must be a whole number from
// <low> to <high> (not "<text>")", for Engine::EndSilently.
std::string CountReason(std::string_view what, std::string_view text, int low, int high);

// A value as the record table stores it (32-bit); nullopt when it overflows single precision.
std::optional<float> RecordValue(double v);

}  // namespace merida

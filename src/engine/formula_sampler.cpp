// The compile-once, evaluate-per-point loop shared by the tool windows.
#include "engine/formula_sampler.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/number_text.h"

namespace merida {

PointStatus FormulaSampler::compile(std::string_view formulaBoxText, bool withSums) {
  Engine& e = engine_;
  auto ended = [&e] { return e.FaultFlag ? PointStatus::kFault : PointStatus::kError; };
  variables_.clear();
  hasSums_ = false;
  e.BeginRun(1, TrimLeft(formulaBoxText));
  e.SplitFormula();
  if (e.ExpandIntegrals() < 0 || e.failed()) return ended();
  if (withSums && (e.ExpandSigmas() < 0 || e.failed())) return ended();
  e.ParseHeader();
  if (e.failed()) return ended();
  e.TokenizeBody();
  if (e.failed()) return ended();
  int16_t n = e.CompilePostfix(e.CurrentSlot);
  if (n < 0 || e.failed()) return ended();
  n = e.ComputeIntegrals(n);
  if (n < 0 || e.failed()) return ended();
  saved_ = e.SaveProgram(n);
  if (e.HeaderText.empty()) {
    e.CollectVariables();
  } else {
    e.CheckParameters();
  }
  if (e.failed()) return ended();
  const FunctionHeader& header = e.FunctionTable[e.CurrentSlot];
  for (int k = 1; k <= header.ParamCount; ++k) variables_.push_back(header.Param[k]);
  hasSums_ = e.programHasSums(n);
  if (hasSums_) {
    sums_ = e.IntegralTable;
    sumCount_ = e.IntegralCount;
  }
  return PointStatus::kOk;
}

void FormulaSampler::restoreSums() {
  if (!hasSums_) return;
  engine_.IntegralTable = sums_;
  engine_.IntegralCount = sumCount_;
}

PointStatus FormulaSampler::status(double y) const {
  if (engine_.FaultFlag) return PointStatus::kFault;
  if (engine_.failed()) return PointStatus::kError;
  // A non-finite value from finite operands is an overflow, whatever produced it.
  if (!std::isfinite(y)) return PointStatus::kFault;
  return PointStatus::kOk;
}

PointStatus FormulaSampler::at(double x, double& y) {
  restoreSums();
  y = engine_.EvaluateAt(saved_, x);
  return status(y);
}

void FormulaSampler::substitute(std::string_view name, double value) {
  engine_.RestoreProgram(saved_);
  engine_.BindVariableCells(name, value);
  substituted_ = engine_.SaveProgram(saved_.n);
}

PointStatus FormulaSampler::atSubstituted(double x, double& y) {
  restoreSums();
  y = engine_.EvaluateAt(substituted_, x);
  return status(y);
}

PointStatus FormulaSampler::atFolded(std::string_view name, const std::function<double(double)>& value, double& y) {
  engine_.RestoreProgram(saved_);
  return evaluateProgram(engine_.FoldCellPairs(saved_.n, name, value), y);
}

PointStatus FormulaSampler::atCells(const std::vector<std::pair<std::string, double>>& bindings,
                                    double& y) {
  Engine& e = engine_;
  e.RestoreProgram(saved_);
  for (const auto& [name, value] : bindings) e.BindVariableCells(name, value);
  return evaluateProgram(saved_.n, y);
}

PointStatus FormulaSampler::evaluateProgram(int16_t n, double& y) {
  Engine& e = engine_;
  if (hasSums_) {
    const double x = e.XValue;  // a sum runs its index through XValue
    restoreSums();
    e.CurrentSlot += 1;
    int16_t r = e.ComputeSigmas(n);
    e.CurrentSlot -= 1;
    if (r < 0 || e.failed()) {
      y = 0;
      return e.FaultFlag ? PointStatus::kFault : PointStatus::kError;
    }
    n = r;
    e.XValue = x;
  }
  y = e.EvaluateProgram(n);
  return status(y);
}

PointStatus FormulaSampler::foldSumsOnce(double x) {
  if (!hasSums_) return PointStatus::kOk;
  Engine& e = engine_;
  e.RestoreProgram(saved_);
  restoreSums();
  e.XValue = x;
  e.CurrentSlot += 1;
  int16_t n = e.ComputeSigmas(saved_.n);
  e.CurrentSlot -= 1;
  if (n < 0 || e.failed()) return e.FaultFlag ? PointStatus::kFault : PointStatus::kError;
  saved_ = e.SaveProgram(n);
  hasSums_ = false;
  return PointStatus::kOk;
}

void FormulaSampler::setCellNames(std::vector<std::string> names) {
  cellNames_ = std::move(names);
  cellUsed_.assign(cellNames_.size(), false);
  for (size_t k = 0; k < cellNames_.size(); ++k) {
    cellUsed_[k] = std::find(variables_.begin(), variables_.end(), cellNames_[k]) != variables_.end();
  }
}

PointStatus FormulaSampler::atValues(double x, std::span<const double> values, double& y) {
  Engine& e = engine_;
  bool any = false;
  for (size_t k = 0; k < cellNames_.size() && k < values.size(); ++k) {
    if (!cellUsed_[k]) continue;
    // A number cell changes the program, so the engine builds its code again at every point.
    if (!any) e.RestoreProgram(saved_);
    any = true;
    e.BindVariableCells(cellNames_[k], values[k]);
  }
  if (!any) return at(x, y);
  e.XValue = x;
  return evaluateProgram(saved_.n, y);
}

void EndRunOnFault(Engine& engine) {
  engine.BindToX = -1;
  engine.StopRequested = 1;
}

bool StopRequestedAfterEvents(Engine& engine) {
  engine.host().processEvents();
  return engine.StopRequested == 1;
}

std::optional<int16_t> ReadCountBox(std::string_view text) {
  std::optional<double> v = ReadNumber(text);
  if (!v) return std::nullopt;
  return ToInt16(*v);
}

std::optional<float> RecordValue(double v) {
  if (!std::isfinite(v) || std::fabs(v) > std::numeric_limits<float>::max()) return std::nullopt;
  return static_cast<float>(v);
}

}  // namespace merida

// The compile-once, evaluate-per-point loop shared by the tool windows.
#include "engine/formula_sampler.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/evaluator.h"
#include "engine/number_text.h"

namespace merida {

FormulaSampler::FormulaSampler(Engine& engine)
    : engine_(engine), boundCode_(std::make_unique<CompiledCode>()), boundValues_(kMaxBoundCells, 0.0) {}

FormulaSampler::~FormulaSampler() = default;

PointStatus FormulaSampler::compile(std::string_view formulaBoxText, bool withSums) {
  Engine& e = engine_;
  auto ended = [&e] { return e.FaultFlag ? PointStatus::kFault : PointStatus::kError; };
  variables_.clear();
  hasSums_ = false;
  binding_ = Binding::kNone;
  substitutedBound_ = false;
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

bool FormulaSampler::bindingUsable() const {
  // Outside tool mode a free variable asks or takes a policy: only the texts do that.
  return engine_.boundCells() && !hasSums_ && (engine_.BindToX == 1 || engine_.IntegralBinding == 1);
}

void FormulaSampler::setBinding(Binding kind, std::string_view name) {
  if (binding_ == kind && (kind == Binding::kValues || bindingName_ == name)) return;
  binding_ = kind;
  bindingName_ = name;
  boundCode_->identity = ~uint64_t{0};
  cellRegister_.fill(-1);
  if (kind == Binding::kFolded) {
    layFolded(name);
    return;
  }
  for (int i = 1; i <= saved_.n; ++i) {
    const ProgramCell& cell = saved_.program.cell(i);
    if (cell.Kind != kOperandKind) continue;
    if (kind == Binding::kSubstitute) {
      if (cell.Value == name) cellRegister_[i] = 0;
      continue;
    }
    // The first name a cell carries binds it: after that it is a number, not a name.
    for (size_t k = 0; k < cellNames_.size() && cellRegister_[i] < 0; ++k) {
      if (cellUsed_[k] && cell.Value == cellNames_[k]) cellRegister_[i] = static_cast<int16_t>(k);
    }
  }
}

// The pairs fold as FoldCellPairs folds them, with each folded cell bound to the value of
// its pair. A pair whose k is itself a folded cell reads that cell's text, which changes
// from point to point: such a formula keeps the texts.
void FormulaSampler::layFolded(std::string_view name) {
  foldBound_ = false;
  foldKeys_.clear();
  std::array<const std::string*, kMaxTokens + 1> text{};
  int n = saved_.n;
  for (int i = 1; i <= n; ++i) text[i] = &saved_.program.cell(i).Value;
  for (int i = 2; i <= n;) {
    if (*text[i] != name) {
      ++i;
      continue;
    }
    if (cellRegister_[i - 1] >= 0 || foldKeys_.size() >= static_cast<size_t>(kMaxBoundCells)) return;
    cellRegister_[i - 1] = static_cast<int16_t>(foldKeys_.size());
    foldKeys_.push_back(ReadLenient(*text[i - 1]));
    for (int j = i; j < n; ++j) {
      text[j] = text[j + 1];
      cellRegister_[j] = cellRegister_[j + 1];
    }
    cellRegister_[n] = -1;
    --n;
  }
  engine_.RestoreProgram(saved_);
  const int16_t folded = engine_.FoldCellPairs(saved_.n, name, [](double) { return 0.0; });
  folded_ = engine_.SaveProgram(folded);
  foldBound_ = folded == n;
}

PointStatus FormulaSampler::evaluateBound(const SavedProgram& program, double x, double& y) {
  y = engine_.EvaluateBound(*boundCode_, program, cellRegister_.data(), boundValues_.data(), x);
  return status(y);
}

void FormulaSampler::substituteTexts() {
  engine_.RestoreProgram(saved_);
  engine_.BindVariableCells(substitutedName_, substitutedValue_);
  substituted_ = engine_.SaveProgram(saved_.n);
}

void FormulaSampler::substitute(std::string_view name, double value) {
  substitutedName_ = name;
  substitutedValue_ = value;
  const double cell = Round15(value);
  substitutedBound_ = bindingUsable() && std::isfinite(cell);
  if (substitutedBound_) {
    setBinding(Binding::kSubstitute, name);
    boundValues_[0] = cell;
    return;
  }
  substituteTexts();
}

PointStatus FormulaSampler::atSubstituted(double x, double& y) {
  if (substitutedBound_) {
    if (bindingUsable()) [[likely]] return evaluateBound(saved_, x, y);
    substitutedBound_ = false;  // the run left tool mode since: the texts after all
    substituteTexts();
  }
  restoreSums();
  y = engine_.EvaluateAt(substituted_, x);
  return status(y);
}

PointStatus FormulaSampler::atFolded(std::string_view name, const std::function<double(double)>& value, double& y) {
  if (bindingUsable()) {
    setBinding(Binding::kFolded, name);
    bool finite = foldBound_;
    for (size_t j = 0; finite && j < foldKeys_.size(); ++j) {
      boundValues_[j] = Round15(value(foldKeys_[j]));
      finite = std::isfinite(boundValues_[j]);
    }
    if (finite) return evaluateBound(folded_, engine_.XValue, y);
  }
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
  binding_ = Binding::kNone;
  return PointStatus::kOk;
}

void FormulaSampler::setCellNames(std::vector<std::string> names) {
  cellNames_ = std::move(names);
  binding_ = Binding::kNone;
  cellUsed_.assign(cellNames_.size(), false);
  for (size_t k = 0; k < cellNames_.size(); ++k) {
    cellUsed_[k] = std::find(variables_.begin(), variables_.end(), cellNames_[k]) != variables_.end();
  }
}

PointStatus FormulaSampler::atValues(double x, std::span<const double> values, double& y) {
  Engine& e = engine_;
  if (bindingUsable() && values.size() >= cellNames_.size() && cellNames_.size() <= static_cast<size_t>(kMaxBoundCells)) {
    bool any = false, finite = true;
    for (size_t k = 0; k < cellNames_.size(); ++k) {
      if (!cellUsed_[k]) continue;
      any = true;
      boundValues_[k] = Round15(values[k]);
      finite = finite && std::isfinite(boundValues_[k]);
    }
    if (!any) return at(x, y);
    if (finite) {
      setBinding(Binding::kValues, {});
      return evaluateBound(saved_, x, y);
    }
  }
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

bool StopRequestedAtCheckpoint(Engine& engine) {
  engine.host().checkpoint();
  return engine.StopRequested == 1;
}

std::optional<int16_t> ReadCountBox(std::string_view text) {
  std::optional<double> v = ReadNumber(text);
  if (!v) return std::nullopt;
  return ToInt16(*v);
}

std::string CountReason(std::string_view what, std::string_view text, int low, int high) {
  return std::string(what) + " must be a whole number from " + std::to_string(low) + " to " + std::to_string(high) +
         " (not \"" + std::string(Trim(text)) + "\")";
}

std::optional<float> RecordValue(double v) {
  if (!std::isfinite(v) || std::fabs(v) > std::numeric_limits<float>::max()) return std::nullopt;
  return static_cast<float>(v);
}

}  // namespace merida

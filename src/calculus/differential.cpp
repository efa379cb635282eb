// Central differences and the one-step solvers on the tool-window loop: compile once, then
// evaluate with the dependent values put into the program as number cells at every stage.
#include "calculus/differential.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "engine/formula_sampler.h"

namespace merida {
namespace {

constexpr int kVariableError = 27;
constexpr const char* kDiffName = "diff";

struct Fields {
  double h = 0, start = 0, end = 0, init = 0, slope = 0;
};

DiffEnd EndOf(PointStatus s) { return s == PointStatus::kFault ? DiffEnd::kFault : DiffEnd::kError; }

// How a computation that did not complete leaves the engine.
DiffResult& Ended(Engine& engine, DiffResult& r, DiffEnd end) {
  r.end = end;
  if (end == DiffEnd::kFault) EndRunOnFault(engine);
  return r;
}

// Setup: the name check, then every number box through EvaluateConstantText.
std::optional<Fields> Setup(Engine& engine, const DiffBoxes& boxes, DiffResult& r) {
  engine.ErrorFlag = 0;
  engine.StopRequested = 0;
  engine.IntegralBinding = -1;
  engine.FaultFlag = false;
  engine.CancelFlag = false;
  r.end = DiffEnd::kSilent;
  if (!IsDiffVariableName(boxes.var)) {
    engine.EndSilently("the variable's name \"" + boxes.var + "\" may hold only letters, digits and \"_\"", "Text1");
    return std::nullopt;
  }
  Fields f;
  using Box = std::pair<const std::string*, double*>;
  const std::array<Box, 5> read{Box{&boxes.width, &f.h}, Box{&boxes.min, &f.start}, Box{&boxes.max, &f.end},
                                Box{&boxes.init, &f.init}, Box{&boxes.slope, &f.slope}};
  for (auto [text, value] : read) {
    *value = engine.EvaluateConstantText(*text);
    if (engine.failed()) {
      Ended(engine, r, engine.FaultFlag ? DiffEnd::kFault : DiffEnd::kError);
      return std::nullopt;
    }
  }
  return f;
}

// The compile sequence with the sums computed once, at the start of the range, then the
// variable rule: the names the solver substitutes do not count, and at most one variable may
// remain (it takes x).
PointStatus Compile(Engine& engine, FormulaSampler& sampler, std::string_view formula,
                    const std::vector<std::string>& substituted, double start) {
  engine.BindToX = 1;
  engine.StopRequested = 0;
  if (PointStatus s = sampler.compile(formula); s != PointStatus::kOk) return s;
  if (PointStatus s = sampler.foldSumsOnce(start); s != PointStatus::kOk) return s;
  const std::vector<std::string>& vars = sampler.variables();
  auto remaining = std::count_if(vars.begin(), vars.end(), [&](const std::string& v) {
    return std::find(substituted.begin(), substituted.end(), v) == substituted.end();
  });
  if (remaining > 1) {
    engine.Fail(kVariableError);
    return PointStatus::kError;
  }
  sampler.setCellNames(substituted);
  return PointStatus::kOk;
}

// N = Int((end - start) / h) + 1, before any cap. A width of 0, or one whose sign points away
// from the end, gives no count: the computation ends silently rather than run forever or
// backwards. A count beyond 16 bits is kept as the large number it is, so the cap takes it.
std::optional<double> StepCount(Engine& engine, const Fields& f) {
  const double q = (f.end - f.start) / f.h;
  if (!std::isfinite(q) || q < 0) {
    engine.EndSilently("the width must step from the start of the range to its end (not 0, and of the same sign)",
                       "Text2");
    return std::nullopt;
  }
  return std::floor(q) + 1;
}

// Chart points and record rows of one computation.
class Output {
 public:
  Output(AppState& state, DiffResult& r, bool record) : table_(state.Records), r_(r), record_(record) {
    r_.started = true;
    r_.points.clear();
    r_.points2.clear();
  }

  // The record table's header; false when the range does not fit its single precision.
  bool header(const Fields& f, int dimension) {
    if (!record_) return true;
    std::optional<float> a = RecordValue(f.start), b = RecordValue(f.end);
    if (!a || !b) return false;
    table_.kind = ComputedData;
    table_.dimension = static_cast<int16_t>(dimension);
    table_.rangeStart = *a;
    table_.rangeEnd = *b;
    return true;
  }

  // Chart point (x, y) of set 1 and, with z, (x, z) of set 2; record row `row` when recording.
  // false when a value cannot be stored (an overflow).
  bool add(int row, double x, double y, std::optional<double> z = std::nullopt) {
    if (!std::isfinite(x) || !std::isfinite(y) || (z && !std::isfinite(*z))) return false;
    if (record_ && row <= RecordFunctionTable::kCapacity) {
      std::optional<float> a = RecordValue(x), b = RecordValue(y), c = RecordValue(z.value_or(0));
      if (!a || !b || !c) return false;
      table_.RecordPoint(row, *a, *b, *c);
    }
    r_.points.push_back({x, y});
    if (z) r_.points2.push_back({x, *z});
    return true;
  }

  // A phase-plane point: (value, derivative), never recorded.
  bool phase(double value, double derivative) {
    if (!std::isfinite(value) || !std::isfinite(derivative)) return false;
    r_.points.push_back({value, derivative});
    return true;
  }

  void reserve(size_t n, bool two) {
    r_.points.reserve(n);
    if (two) r_.points2.reserve(n);
  }

 private:
  RecordFunctionTable& table_;
  DiffResult& r_;
  bool record_;
};

// Mode 1: first or second central differences, plotted at the middle abscissa.
DiffResult Derivative(Engine& engine, AppState& state, std::string_view formula, const Fields& f, int grade) {
  DiffResult r;
  FormulaSampler sampler(engine);
  if (PointStatus s = Compile(engine, sampler, formula, {}, f.start); s != PointStatus::kOk) return Ended(engine, r, EndOf(s));
  std::optional<double> count = StepCount(engine, f);
  if (count && *count < 2) engine.EndSilently("the range must hold at least two widths", "Text2");
  if (!count || *count < 2) return Ended(engine, r, DiffEnd::kSilent);
  const int n = static_cast<int>(std::min(*count, double{kMaxDiffPoints}));
  const double h = f.h;
  Output out(state, r, true);
  out.reserve(static_cast<size_t>(n), false);
  if (!out.header(f, 2)) return Ended(engine, r, DiffEnd::kFault);
  double x = f.start, X = f.start + h;
  for (int i = 1; i <= n; ++i) {
    double f0 = 0, f1 = 0, f2 = 0;
    PointStatus s = sampler.at(x, f0);
    if (s == PointStatus::kOk && grade == 2) s = sampler.at(x + h, f1);
    if (s == PointStatus::kOk) s = sampler.at(x + 2 * h, f2);
    if (s != PointStatus::kOk) return Ended(engine, r, EndOf(s));
    const double d = grade == 2 ? (f2 - 2 * f1 + f0) / (h * h) : (f2 - f0) / (2 * h);
    if (!out.add(i, X, d)) return Ended(engine, r, DiffEnd::kFault);
    x = X;
    X = X + h;
    engine.host().progress(i, n);
    if (StopRequestedAtCheckpoint(engine)) return Ended(engine, r, DiffEnd::kStopped);
  }
  r.end = DiffEnd::kCompleted;
  return r;
}

// One step of a solver: from (x, y, p) to the next values. p is y' (second order) or z
// (Simult); d is what the phase plane plots beside y before the step.
struct StepState {
  double x = 0, y = 0, p = 0;
  double d = 0;
};

// The two formulas of a solver (g only in Simult), each with its own saved program.
struct Formulas {
  FormulaSampler& f;
  FormulaSampler* g;
};

// One step of the chosen method; kOk with `st` advanced.
PointStatus Step(DiffModeValue method, int grade, Formulas fs, double h, StepState& st) {
  double v[2] = {st.y, st.p};
  auto eval = [&](FormulaSampler& s, double x, double y, double p, double& out) {
    v[0] = y;
    v[1] = p;
    return s.atValues(x, v, out);
  };
  PointStatus s = PointStatus::kOk;
  const double x = st.x, y = st.y, p = st.p;
  if (method == kDiffSimple) {
    // The slope is taken at the new abscissa with the old values.
    double slope = 0;
    if ((s = eval(fs.f, x + h, y, p, slope)) != PointStatus::kOk) return s;
    if (grade == 1) {
      st.d = slope;
      st.y = y + h * slope;
    } else {
      st.d = p;
      st.y = y + h * p;
      st.p = p + h * slope;
    }
    st.x = x + h;
    return s;
  }
  if (fs.g) {
    // Simult: y' = f and z' = g, each stage substituting the stage's y and z into both.
    double F[4], G[4];
    const double xs[4] = {x, x + h / 2, x + h / 2, x + h};
    double ys = y, zs = p;
    for (int k = 0; k < 4; ++k) {
      if ((s = eval(fs.f, xs[k], ys, zs, F[k])) != PointStatus::kOk) return s;
      if ((s = eval(*fs.g, xs[k], ys, zs, G[k])) != PointStatus::kOk) return s;
      F[k] *= h;
      G[k] *= h;
      const double w = k < 2 ? 0.5 : 1;
      ys = y + F[k] * w;
      zs = p + G[k] * w;
    }
    st.d = p;
    st.y = y + (F[0] + 2 * F[1] + 2 * F[2] + F[3]) / 6;
    st.p = p + (G[0] + 2 * G[1] + 2 * G[2] + G[3]) / 6;
    st.x = x + h;
    return s;
  }
  if (grade == 1) {
    double f1, f2, f3, f4;
    if ((s = eval(fs.f, x, y, p, f1)) != PointStatus::kOk) return s;
    const double k1 = h * f1;
    if ((s = eval(fs.f, x + h / 2, y + k1 / 2, p, f2)) != PointStatus::kOk) return s;
    const double k2 = h * f2;
    if ((s = eval(fs.f, x + h / 2, y + k2 / 2, p, f3)) != PointStatus::kOk) return s;
    const double k3 = h * f3;
    if ((s = eval(fs.f, x + h, y + k3, p, f4)) != PointStatus::kOk) return s;
    const double k4 = h * f4;
    st.d = f1;  // the slope at the point itself
    st.y = y + (k1 + 2 * k2 + 2 * k3 + k4) / 6;
    st.x = x + h;
    return s;
  }
  double f1, f2, f3, f4;
  const double L1 = h * p;
  if ((s = eval(fs.f, x, y, p, f1)) != PointStatus::kOk) return s;
  const double K1 = h * f1;
  const double L2 = h * (p + K1 / 2);
  if ((s = eval(fs.f, x + h / 2, y + L1 / 2, p + K1 / 2, f2)) != PointStatus::kOk) return s;
  const double K2 = h * f2;
  const double L3 = h * (p + K2 / 2);
  if ((s = eval(fs.f, x + h / 2, y + L2 / 2, p + K2 / 2, f3)) != PointStatus::kOk) return s;
  const double K3 = h * f3;
  const double L4 = h * (p + K3);
  if ((s = eval(fs.f, x + h, y + L3, p + K3, f4)) != PointStatus::kOk) return s;
  const double K4 = h * f4;
  st.d = p;
  st.y = y + (L1 + 2 * L2 + 2 * L3 + L4) / 6;
  st.p = p + (K1 + 2 * K2 + 2 * K3 + K4) / 6;
  st.x = x + h;
  return s;
}

// The solvers' loop: points, recording, phase plane, events and the stop request.
DiffResult Solve(Engine& engine, AppState& state, const Fields& f, DiffModeValue method, int grade, Formulas fs,
                 bool plane) {
  DiffResult r;
  const bool simult = fs.g != nullptr;
  std::optional<double> count = StepCount(engine, f);
  if (!count) return Ended(engine, r, DiffEnd::kSilent);
  const int n = static_cast<int>(std::min(*count, double{kMaxDiffPoints - 1}));
  Output out(state, r, !plane);
  out.reserve(static_cast<size_t>(n) + 1, simult && !plane);
  r.dataSets = simult && !plane ? 2 : 1;
  if (!out.header(f, simult ? 3 : 2)) return Ended(engine, r, DiffEnd::kFault);
  StepState st{f.start, f.init, grade == 2 || simult ? f.slope : 0, 0};
  auto z = [&]() { return simult ? std::optional<double>(st.p) : std::nullopt; };
  if (!plane && !out.add(1, st.x, st.y, z())) return Ended(engine, r, DiffEnd::kFault);
  for (int i = 1; i <= n; ++i) {
    const double before = st.y;
    if (PointStatus s = Step(method, grade, fs, f.h, st); s != PointStatus::kOk) return Ended(engine, r, EndOf(s));
    bool stored = plane ? out.phase(before, st.d) : out.add(i + 1, st.x, st.y, z());
    if (!stored || !std::isfinite(st.y) || !std::isfinite(st.p)) return Ended(engine, r, DiffEnd::kFault);
    engine.host().progress(i, n);
    if (StopRequestedAtCheckpoint(engine)) return Ended(engine, r, DiffEnd::kStopped);
  }
  // The phase plane ends at the last value with the first-order solvers' last slope, or
  // with the derivative (z) the step produced.
  if (plane && !out.phase(st.y, grade == 2 || simult ? st.p : st.d)) return Ended(engine, r, DiffEnd::kFault);
  r.end = DiffEnd::kCompleted;
  return r;
}

}  // namespace

void OpenDiffWindow(Engine& engine, AppState& state) {
  state.DiffMode = kDiffDerivative;
  engine.BindToX = 1;
}

void SelectDiffOption(AppState& state) { state.DiffMode = kDiffDerivative; }

void SelectDiffEquationOption(AppState& state) { state.DiffMode = kDiffSimple; }

bool ClickRungeKutta(AppState& state, bool ticked) {
  if (state.DiffMode == kDiffDerivative || state.DiffMode == kDiffClosed) return false;
  state.DiffMode = ticked ? kDiffRungeKutta : kDiffSimple;
  return ticked;
}

void CloseDiffWindow(Engine& engine, AppState& state) {
  engine.BindToX = -1;
  state.DiffMode = kDiffClosed;
  engine.StopRequested = 1;
}

bool IsDiffVariableName(std::string_view name) {
  // An empty name passes: it names no cell, so nothing is substituted.
  return std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
  });
}

DiffResult RunGrade(Engine& engine, AppState& state, std::string_view formula, const DiffBoxes& boxes, int grade,
                    bool plane) {
  DiffResult r;
  const int16_t mode = state.DiffMode;
  if (mode != kDiffDerivative && mode != kDiffSimple && mode != kDiffRungeKutta) {
    r.end = DiffEnd::kNothing;
    return r;
  }
  std::optional<Fields> f = Setup(engine, boxes, r);
  if (!f) return r;
  if (mode == kDiffDerivative) return Derivative(engine, state, formula, *f, grade);

  std::vector<std::string> names{boxes.var};
  if (grade == 2) names.push_back(kDiffName);
  FormulaSampler sampler(engine);
  if (PointStatus s = Compile(engine, sampler, formula, names, f->start); s != PointStatus::kOk) {
    return Ended(engine, r, EndOf(s));
  }
  return Solve(engine, state, *f, static_cast<DiffModeValue>(mode), grade, Formulas{sampler, nullptr}, plane);
}

DiffResult RunSimult(Engine& engine, AppState& state, std::string_view formula, const DiffBoxes& boxes, bool plane) {
  DiffResult r;
  if (state.DiffMode != kDiffSimple && state.DiffMode != kDiffRungeKutta) {
    r.end = DiffEnd::kNothing;
    return r;
  }
  std::optional<Fields> f = Setup(engine, boxes, r);
  if (!f) return r;
  if (!IsDiffVariableName(boxes.var2)) {
    engine.EndSilently("the second variable's name \"" + boxes.var2 + "\" may hold only letters, digits and \"_\"",
                       "Text8");
    return Ended(engine, r, DiffEnd::kSilent);
  }
  state.DiffMode = kDiffRungeKutta;

  const std::vector<std::string> names{boxes.var, boxes.var2};
  FormulaSampler fSampler(engine), gSampler(engine);
  PointStatus s = Compile(engine, fSampler, formula, names, f->start);
  if (s == PointStatus::kOk) s = Compile(engine, gSampler, boxes.second, names, f->start);
  if (s != PointStatus::kOk) return Ended(engine, r, EndOf(s));
  return Solve(engine, state, *f, kDiffRungeKutta, 1, Formulas{fSampler, &gSampler}, plane);
}

}  // namespace merida

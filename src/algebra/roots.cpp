// The scan computes every sample from its index; bisection keeps the sign of the left end.
#include "algebra/roots.h"

#include <cmath>
#include <functional>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kRootVariableError = 28;
constexpr int kJudgeTooLargeError = 29;
constexpr int kTooManyRootsError = 30;
constexpr int kGoCap = 6000;
constexpr int kInterCap = 3000;

int Sign(double v) { return (v > 0) - (v < 0); }

// How one stage of a search ended.
enum class Step { kOk, kFull, kError, kFault };

Step StepOf(PointStatus s) {
  if (s == PointStatus::kFault) return Step::kFault;
  return s == PointStatus::kError ? Step::kError : Step::kOk;
}

PointStatus Compile(Engine& engine, FormulaSampler& f, std::string_view formula) {
  PointStatus s = f.compile(formula);
  if (s != PointStatus::kOk) return s;
  if (f.variables().size() > 1) {
    engine.Fail(kRootVariableError);
    return PointStatus::kError;
  }
  return PointStatus::kOk;
}

struct Range {
  double start = 0, end = 0, h = 0, judge = 0;
  int n = 0;
};

// Min, Max, Num and the judge value; nullopt ends the search with `r.end` set.
std::optional<Range> ReadRange(Engine& engine, AppState& state, const RootBoxes& boxes, int cap, RootResult& r) {
  Range g;
  g.start = engine.EvaluateConstantText(boxes.min);
  if (!engine.failed()) g.end = engine.EvaluateConstantText(boxes.max);
  if (engine.failed()) {
    r.end = engine.FaultFlag ? RootEnd::kFault : RootEnd::kError;
    return std::nullopt;
  }
  r.end = RootEnd::kSilent;
  std::optional<int16_t> n = ReadCountBox(boxes.num);
  if (n) state.DivisionCount = *n;
  if (!n || *n < 1) {
    engine.EndSilently(CountReason("the number of divisions", boxes.num, 1, 32767), "Text3");
    return std::nullopt;
  }
  if (!(g.start < g.end)) {
    engine.EndSilently("the start of the range must be below its end", "Text1");
    return std::nullopt;
  }
  g.n = *n;
  if (g.n >= cap) {
    g.n = cap - 1;
    r.numBox = std::to_string(cap);
    engine.host().showBox("Text3", *r.numBox);
  }
  std::optional<double> judge = ReadNumber(boxes.judge);
  if (!judge) {
    engine.EndSilently("the judge value must be a number (not \"" + std::string(Trim(boxes.judge)) + "\")", "Text4");
    return std::nullopt;
  }
  g.judge = *judge;
  r.judge = *judge;
  g.h = (g.end - g.start) / g.n;
  if (!std::isfinite(g.h)) {
    r.end = RootEnd::kFault;
    return std::nullopt;
  }
  if (g.judge > g.h) {
    engine.Fail(kJudgeTooLargeError);
    r.end = RootEnd::kError;
    return std::nullopt;
  }
  return g;
}

// The scan shared by Go and Inter. `sample` gives the tested value at x (and plots it),
// `bisect` the tested value at a midpoint, `found` appends a root (false when the list is full).
class Scan {
 public:
  using Value = std::function<PointStatus(double x, double& y)>;

  Scan(const Range& g, Value sample, Value bisect, std::function<bool(double)> found, std::vector<double>& unresolved)
      : g_(g), sample_(std::move(sample)), bisect_(std::move(bisect)), found_(std::move(found)), unresolved_(unresolved) {}

  // One sample: a root at the sample, else a bisection of a sign change.
  Step at(double x) {
    double y = 0;
    if (Step s = StepOf(sample_(x, y)); s != Step::kOk) return s;
    Step result = Step::kOk;
    if (std::fabs(y) <= g_.judge) {
      if (!found_(x)) return Step::kFull;
      sign_ = Sign(y);
    } else if (sign_ != 0 && sign_ * y < 0) {
      result = bisection(previous_, x);
      sign_ = -sign_;
    } else if (sign_ == 0) {
      sign_ = Sign(y);
    }
    previous_ = x;
    return result;
  }

  void first(double x, double y) {
    sign_ = Sign(y);
    previous_ = x;
  }

 private:
  // Halves [a, b] until a midpoint is within the judge value. When the interval can no longer
  // be halved (a pole such as 1/x at 0, or a judge value finer than the doubles there), the
  // sign change is not a root by the judge value's measure: nothing is listed for it, and where
  // the halving stopped is kept so that the window can say so.
  Step bisection(double a, double b) {
    const int s = sign_;
    for (;;) {
      double m = (a + b) / 2;
      if (m == a || m == b) {
        unresolved_.push_back(m);
        return Step::kOk;
      }
      double y = 0;
      if (Step st = StepOf(bisect_(m, y)); st != Step::kOk) return st;
      if (std::fabs(y) <= g_.judge) return found_(m) ? Step::kOk : Step::kFull;
      if (s * y < 0) {
        b = m;
      } else if (s * y > 0) {
        a = m;
      } else {
        return Step::kOk;
      }
    }
  }

  const Range& g_;
  Value sample_, bisect_;
  std::function<bool(double)> found_;
  std::vector<double>& unresolved_;
  int sign_ = 0;
  double previous_ = 0;
};

// Runs the samples start, start + i*h (i = 1..n-1), end and fills `r`; `line` makes a list line.
void RunScan(Engine& engine, const Range& g, RootResult& r, Scan::Value sample, Scan::Value bisect,
             const std::function<std::string(size_t)>& line, const std::function<void(double)>& onRoot) {
  auto found = [&](double x) {
    if (static_cast<int>(r.rootX.size()) >= kMaxRoots) {
      engine.Fail(kTooManyRootsError);
      return false;
    }
    r.rootX.push_back(x);
    onRoot(x);
    return true;
  };
  auto list = [&] {
    r.end = RootEnd::kListed;
    for (size_t k = 0; k < r.rootX.size(); ++k) r.lines.push_back(line(k));
  };
  auto failed = [&](Step s) {
    if (s == Step::kFault) {
      EndRunOnFault(engine);
      r.end = RootEnd::kFault;
    } else {
      engine.BindToX = -1;
      r.end = RootEnd::kError;
    }
  };
  Scan scan(g, sample, bisect, found, r.unresolved);

  double y0 = 0;
  if (Step s = StepOf(sample(g.start, y0)); s != Step::kOk) return failed(s);
  if (std::fabs(y0) <= g.judge && !found(g.start)) return list();
  scan.first(g.start, y0);
  for (int i = 1; i <= g.n - 1; ++i) {
    Step s = scan.at(i * g.h + g.start);
    if (s == Step::kFault) return failed(s);
    if (s != Step::kOk) {
      engine.BindToX = -1;
      return list();  // an error or the 51st root inside the interval: what was found is listed
    }
    engine.host().progress(i, g.n);
    if (StopRequestedAtCheckpoint(engine)) {
      engine.BindToX = -1;
      r.end = RootEnd::kStopped;
      return;
    }
  }
  Step last = scan.at(g.end);
  if (last == Step::kFull) {
    engine.BindToX = -1;
    return list();
  }
  if (last != Step::kOk) return failed(last);
  engine.BindToX = -1;
  list();
}

void BeginSearch(Engine& engine) {
  engine.StopRequested = 0;
  engine.BindToX = 1;
  engine.ErrorFlag = 0;
  engine.IntegralBinding = -1;
}

RootResult Ended(Engine& engine, RootResult r, PointStatus s) {
  if (s == PointStatus::kFault) {
    EndRunOnFault(engine);
    r.end = RootEnd::kFault;
  } else {
    engine.BindToX = -1;
    r.end = RootEnd::kError;
  }
  return r;
}

}  // namespace

double RoundToHundredths(double v) {
  double r = v * 100;
  if (!std::isfinite(r)) return v;
  double t = std::trunc(r);
  if (std::fabs(r - t) >= 0.5) t += Sign(r);
  return t / 100;
}

std::string PolynomialBoxText(double x, bool integer) {
  return std::string(TrimLeft(ListText(integer ? RoundToHundredths(x) : x)));
}

RootResult SearchRoots(Engine& engine, AppState& state, std::string_view formula, const RootBoxes& boxes, bool graph,
                       bool integer) {
  RootResult r;
  BeginSearch(engine);
  FormulaSampler f(engine);
  if (PointStatus s = Compile(engine, f, formula); s != PointStatus::kOk) return Ended(engine, r, s);
  std::optional<Range> g = ReadRange(engine, state, boxes, kGoCap, r);
  if (!g) {
    if (r.end == RootEnd::kFault) EndRunOnFault(engine);
    else engine.BindToX = -1;
    return r;
  }
  if (graph) r.curve1.reserve(static_cast<size_t>(g->n) + 1);
  auto sample = [&](double x, double& y) {
    PointStatus s = f.at(x, y);
    if (s == PointStatus::kOk && graph) r.curve1.push_back({x, y});
    return s;
  };
  auto bisect = [&](double x, double& y) { return f.at(x, y); };
  auto line = [&](size_t k) { return "x=" + ListText(integer ? RoundToHundredths(r.rootX[k]) : r.rootX[k]); };
  RunScan(engine, *g, r, sample, bisect, line, [](double) {});
  return r;
}

RootResult SearchIntersections(Engine& engine, AppState& state, std::string_view first, std::string_view second,
                               const RootBoxes& boxes, bool graph) {
  RootResult r;
  BeginSearch(engine);
  FormulaSampler f1(engine), f2(engine), d(engine);
  const std::string difference = std::string(first) + "-(" + std::string(second) + ")";
  for (auto [sampler, text] : {std::pair{&f1, first}, std::pair{&f2, second},
                               std::pair{&d, std::string_view(difference)}}) {
    if (PointStatus s = Compile(engine, *sampler, text); s != PointStatus::kOk) return Ended(engine, r, s);
  }
  std::optional<Range> g = ReadRange(engine, state, boxes, kInterCap, r);
  if (!g) {
    if (r.end == RootEnd::kFault) EndRunOnFault(engine);
    else engine.BindToX = -1;
    return r;
  }
  if (graph) {
    r.curve1.reserve(static_cast<size_t>(g->n) + 1);
    r.curve2.reserve(static_cast<size_t>(g->n) + 1);
  }
  auto sample = [&](double x, double& y) {
    double y1 = 0, y2 = 0;
    PointStatus s = f1.at(x, y1);
    if (s == PointStatus::kOk) s = f2.at(x, y2);
    if (s != PointStatus::kOk) return s;
    if (graph) {
      r.curve1.push_back({x, y1});
      r.curve2.push_back({x, y2});
    }
    y = y1 - y2;
    return std::isfinite(y) ? PointStatus::kOk : PointStatus::kFault;
  };
  auto bisect = [&](double x, double& y) { return d.at(x, y); };
  PointStatus rootStatus = PointStatus::kOk;
  auto onRoot = [&](double x) {
    double y = 0;
    if (rootStatus == PointStatus::kOk) rootStatus = f1.at(x, y);
    r.rootY.push_back(y);
  };
  auto line = [&](size_t k) {
    return "x=" + ListText(RoundToHundredths(r.rootX[k])) + "  y=" + ListText(RoundToHundredths(r.rootY[k]));
  };
  RunScan(engine, *g, r, sample, bisect, line, onRoot);
  if (rootStatus == PointStatus::kFault && r.end == RootEnd::kListed) {
    EndRunOnFault(engine);
    r = RootResult{RootEnd::kFault, {}, {}, {}, {}, {}, r.numBox, r.judge, {}};
  }
  return r;
}

}  // namespace merida

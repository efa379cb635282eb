// Sampling a formula over a range in the three coordinate modes, recording every point.
#include "graph/graph_plot.h"

#include <cmath>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kGraphVariableError = 24;

struct PlotRange {
  double start = 0;
  double end = 0;
  int n = 0;
};

// Flags every button handler sets before it plots.
void BeginHandler(Engine& engine) {
  engine.BindToX = 1;
  engine.ErrorFlag = 0;
  engine.StopRequested = 0;
  engine.IntegralBinding = -1;
  engine.FaultFlag = false;
  engine.CancelFlag = false;
}

PlotEnd EndOf(PointStatus status) {
  return status == PointStatus::kFault ? PlotEnd::kFault : PlotEnd::kError;
}

// Reads Text1..Text3; sets out.end and returns nullopt when the plot cannot go on.
std::optional<PlotRange> ReadRange(Engine& engine, AppState& state, const GraphBoxes& boxes,
                                   PlotResult& out) {
  PlotRange r;
  r.start = engine.EvaluateConstantText(boxes.start);
  if (!engine.failed()) r.end = engine.EvaluateConstantText(boxes.end);
  if (engine.failed()) {
    out.end = engine.FaultFlag ? PlotEnd::kFault : PlotEnd::kError;
    return std::nullopt;
  }
  std::optional<int16_t> n = ReadCountBox(boxes.divisions);
  out.end = PlotEnd::kSilent;
  if (!n || *n < 1) {
    engine.EndSilently(CountReason("the number of divisions", boxes.divisions, 1, 32767), "Text3");
    if (n) state.DivisionCount = *n;
    return std::nullopt;
  }
  state.DivisionCount = *n;
  if (!(r.start < r.end)) {
    engine.EndSilently("the start of the range must be below its end", "Text1");
    return std::nullopt;
  }
  r.n = *n;
  if (r.n >= kMaxGraphPoints) {
    r.n = kMaxGraphPoints - 1;
    out.divisionsBox = std::to_string(kMaxGraphPoints);
    engine.host().showBox("Text3", *out.divisionsBox);
  }
  if (!std::isfinite((r.end - r.start) / r.n)) {
    out.end = PlotEnd::kFault;
    return std::nullopt;
  }
  out.pointCount = r.n + 1;
  return r;
}

// Compiles one formula of the graph: at most one variable.
PointStatus CompileGraphFormula(Engine& engine, FormulaSampler& sampler, std::string_view formula) {
  PointStatus s = sampler.compile(formula);
  if (s != PointStatus::kOk) return s;
  if (sampler.variables().size() > 1) {
    engine.Fail(kGraphVariableError);
    return PointStatus::kError;
  }
  return PointStatus::kOk;
}

// Runs the point sequence start, i*h + start (i = 1..n-1), end. `eval` computes one chart
// point at a parameter value; every point is stored and recorded.
template <typename Eval>
void RunPoints(Engine& engine, AppState& state, const PlotRange& r, PlotResult& out, Eval eval) {
  RecordFunctionTable& table = state.Records;
  const double h = (r.end - r.start) / r.n;
  out.points.reserve(static_cast<size_t>(r.n) + 1);

  auto one = [&](int index, double t) {
    ChartPoint p;
    PointStatus s = eval(t, p);
    if (s == PointStatus::kOk && index <= RecordFunctionTable::kCapacity) {
      std::optional<float> x = RecordValue(p.x), y = RecordValue(p.y);
      if (!x || !y) {
        s = PointStatus::kFault;
      } else {
        out.points.push_back(p);
        if (index == 1) {
          table.kind = ComputedData;
          table.dimension = 2;
          table.rangeStart = *RecordValue(r.start);
          table.rangeEnd = *RecordValue(r.end);
        }
        table.RecordPoint(index, *x, *y, 0);
        return true;
      }
    } else if (s == PointStatus::kOk) {
      out.points.push_back(p);
      return true;
    }
    if (s == PointStatus::kFault) {
      EndRunOnFault(engine);
      state.GraphMode = 0;
    } else {
      engine.BindToX = -1;
    }
    out.end = EndOf(s);
    return false;
  };

  if (!one(1, r.start)) return;
  for (int i = 1; i <= r.n - 1; ++i) {
    if (!one(i + 1, i * h + r.start)) return;
    engine.host().progress(i, r.n);
    if (StopRequestedAtCheckpoint(engine)) {
      out.end = PlotEnd::kStopped;
      return;
    }
  }
  if (!one(r.n + 1, r.end)) return;
  out.end = PlotEnd::kCompleted;
}

// The record table's range is single precision; a range beyond it is an overflow.
bool RangeFitsRecord(const PlotRange& r) { return RecordValue(r.start) && RecordValue(r.end); }

}  // namespace

void PrepareGraphDefaults(Engine& engine, AppState& state) {
  state.DivisionCount = 50;
  state.GraphMode = 1;
  engine.ErrorFlag = 0;
  engine.BindToX = 1;
  engine.StopRequested = 0;
  engine.IntegralBinding = -1;
  for (int k = 1; k <= kMaxIntegrals; ++k) engine.IntegralTable[k].State = -1;
}

PlotResult NormalOrPolarRoutine(Engine& engine, AppState& state, std::string_view formula,
                                const GraphBoxes& boxes) {
  PlotResult out;
  FormulaSampler sampler(engine);
  if (PointStatus s = CompileGraphFormula(engine, sampler, formula); s != PointStatus::kOk) {
    engine.BindToX = -1;
    if (s == PointStatus::kFault) EndRunOnFault(engine);
    out.end = EndOf(s);
    return out;
  }
  std::optional<PlotRange> range = ReadRange(engine, state, boxes, out);
  if (!range) return out;
  if (!RangeFitsRecord(*range)) {
    EndRunOnFault(engine);
    state.GraphMode = 0;
    out.end = PlotEnd::kFault;
    return out;
  }
  const bool polar = state.GraphMode == 2;
  RunPoints(engine, state, *range, out, [&](double x, ChartPoint& p) {
    double y = 0;
    PointStatus s = sampler.at(x, y);
    if (s != PointStatus::kOk) return s;
    p = polar ? ChartPoint{y * std::cos(x), y * std::sin(x)} : ChartPoint{x, y};
    return PointStatus::kOk;
  });
  return out;
}

PlotResult ParametricRoutine(Engine& engine, AppState& state, std::string_view first,
                             std::string_view second, const GraphBoxes& boxes) {
  BeginHandler(engine);
  state.GraphMode = 3;
  PlotResult out;
  std::optional<PlotRange> range = ReadRange(engine, state, boxes, out);
  if (!range) return out;
  FormulaSampler fx(engine), fy(engine);
  PointStatus s = CompileGraphFormula(engine, fx, first);
  if (s == PointStatus::kOk) s = CompileGraphFormula(engine, fy, second);
  if (s != PointStatus::kOk) {
    engine.BindToX = -1;
    if (s == PointStatus::kFault) EndRunOnFault(engine);
    out.end = EndOf(s);
    return out;
  }
  if (!RangeFitsRecord(*range)) {
    EndRunOnFault(engine);
    state.GraphMode = 0;
    out.end = PlotEnd::kFault;
    return out;
  }
  RunPoints(engine, state, *range, out, [&](double t, ChartPoint& p) {
    PointStatus st = fx.at(t, p.x);
    if (st == PointStatus::kOk) st = fy.at(t, p.y);
    return st;
  });
  return out;
}

PlotResult PlotGo(Engine& engine, AppState& state, std::string_view formula, const GraphBoxes& boxes) {
  BeginHandler(engine);
  state.GraphMode = 1;
  PlotResult out = NormalOrPolarRoutine(engine, state, formula, boxes);
  out.chartType = ChartType::kLine;
  return out;
}

PlotResult PlotPole(Engine& engine, AppState& state, std::string_view formula,
                    const GraphBoxes& boxes) {
  BeginHandler(engine);
  state.GraphMode = 2;
  PlotResult out = NormalOrPolarRoutine(engine, state, formula, boxes);
  out.chartType = ChartType::kLine;
  out.equalScale = true;
  return out;
}

PlotResult PlotPara(Engine& engine, AppState& state, std::string_view first, std::string_view second,
                    const GraphBoxes& boxes) {
  BeginHandler(engine);
  PlotResult out = ParametricRoutine(engine, state, first, second, boxes);
  out.chartType = ChartType::kLine;
  out.thinLines = true;
  out.equalScale = true;
  return out;
}

PlotResult PlotLog(Engine& engine, AppState& state, std::string_view formula, std::string_view first,
                   std::string_view second, const GraphBoxes& boxes) {
  BeginHandler(engine);
  PlotResult out;
  if (state.GraphMode == 1 || state.GraphMode == 2) {
    out = NormalOrPolarRoutine(engine, state, formula, boxes);
  } else if (state.GraphMode == 3) {
    out = ParametricRoutine(engine, state, first, second, boxes);
  } else {
    out.end = PlotEnd::kNothing;
  }
  out.chartType = ChartType::kLogLin;
  return out;
}

}  // namespace merida

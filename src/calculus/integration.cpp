// Composite Simpson rules on the tool-window loop: compile once, evaluate every panel afresh.
#include "calculus/integration.h"

#include <cmath>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kOneVariableError = 24;
constexpr int kTwoVariablesError = 33;

void BeginHandler(Engine& engine) {
  engine.BindToX = 1;
  engine.ErrorFlag = 0;
  engine.StopRequested = 0;
  engine.IntegralBinding = -1;
}

IntegrationEnd EndOf(PointStatus s) {
  return s == PointStatus::kFault ? IntegrationEnd::kFault : IntegrationEnd::kError;
}

// How a run that did not complete leaves the engine and the graph mode.
IntegrationResult Ended(Engine& engine, AppState& state, IntegrationResult r, IntegrationEnd end) {
  r.end = end;
  r.value.reset();
  if (end == IntegrationEnd::kFault) {
    EndRunOnFault(engine);
    state.GraphMode = 0;
  } else {
    engine.BindToX = -1;
  }
  return r;
}

// A Num box: numeric, rounded halves to even. Counts beyond 16 bits are kept as the large or
// negative numbers they are, so that the cap and the lower bound treat them like any other.
std::optional<double> ReadDivisions(std::string_view text) {
  std::optional<double> v = ReadNumber(text);
  if (!v || !std::isfinite(*v)) return std::nullopt;
  return std::nearbyint(*v);
}

struct Limits {
  double a = 0, b = 0;
};

// The divisions and limits a rule can use (at least `least` divisions, a below b); otherwise
// false, with the reason given to the engine.
bool UsableRange(Engine& engine, std::optional<double> count, std::string_view box, double least, const Limits& l,
                 const char* which, const char* countBox, const char* minBox) {
  if (!count || *count < least) {
    engine.EndSilently(std::string("the number of ") + which + "divisions must be a whole number of at least " +
                       std::to_string(static_cast<int>(least)) + " (not \"" + std::string(Trim(box)) + "\")",
                       countBox);
    return false;
  }
  if (!(l.a < l.b)) {
    engine.EndSilently(std::string("the lower limit of the ") + which + "range must be below the upper limit", minBox);
    return false;
  }
  return true;
}

// Min and Max through EvaluateConstantText; nullopt after an error or fault.
std::optional<Limits> ReadLimits(Engine& engine, const RangeBoxes& boxes) {
  Limits l;
  l.a = engine.EvaluateConstantText(boxes.min);
  if (engine.failed()) return std::nullopt;
  l.b = engine.EvaluateConstantText(boxes.max);
  if (engine.failed()) return std::nullopt;
  return l;
}

}  // namespace

IntegrationResult IntegrateSingle(Engine& engine, AppState& state, std::string_view formula, const RangeBoxes& boxes) {
  IntegrationResult r;
  BeginHandler(engine);
  FormulaSampler f(engine);
  if (PointStatus s = f.compile(formula); s != PointStatus::kOk) return Ended(engine, state, r, EndOf(s));
  if (f.variables().size() > 1) {
    engine.Fail(kOneVariableError);
    return Ended(engine, state, r, IntegrationEnd::kError);
  }
  std::optional<Limits> l = ReadLimits(engine, boxes);
  if (!l) return Ended(engine, state, r, engine.FaultFlag ? IntegrationEnd::kFault : IntegrationEnd::kError);
  std::optional<double> count = ReadDivisions(boxes.num);
  if (!UsableRange(engine, count, boxes.num, 1, *l, "", "Text3", "Text1")) return Ended(engine, state, r, IntegrationEnd::kSilent);
  double n = *count;
  if (std::fmod(n, 2) != 0) {
    n += 1;
    r.numBox = PlainText(n);
  }
  if (n > kMaxIntegrationDivisions) {
    n = kMaxIntegrationDivisions;
    r.numBox = PlainText(n);
  }
  if (r.numBox) engine.host().showBox("Text3", *r.numBox);
  const double h = (l->b - l->a) / n;
  if (!std::isfinite(h)) return Ended(engine, state, r, IntegrationEnd::kFault);

  double S = 0, x0 = l->a, F[3];
  int j = 0;
  do {
    double x = x0;
    for (int k = 0; k <= 2; ++k) {
      x = k * h + x0;
      if (PointStatus s = f.at(x, F[k]); s != PointStatus::kOk) return Ended(engine, state, r, EndOf(s));
    }
    S = S + F[0] + 4 * F[1] + F[2];
    x0 = x;
    j += 2;
    if (StopRequestedAtCheckpoint(engine)) return Ended(engine, state, r, IntegrationEnd::kStopped);
  } while (j < n);

  const double value = h * S / 3;
  if (!std::isfinite(value)) return Ended(engine, state, r, IntegrationEnd::kFault);
  engine.BindToX = -1;
  r.end = IntegrationEnd::kCompleted;
  r.value = value;
  return r;
}

std::optional<std::pair<std::string, std::string>> PrepareDoubleIntegral(Engine& engine, std::string_view formula) {
  BeginHandler(engine);
  FormulaSampler f(engine);
  if (f.compile(formula) != PointStatus::kOk) {
    engine.BindToX = -1;
    return std::nullopt;
  }
  if (f.variables().size() != 2) {
    engine.Fail(kTwoVariablesError);
    engine.BindToX = -1;
    return std::nullopt;
  }
  return std::make_pair(f.variables()[0], f.variables()[1]);
}

IntegrationResult IntegrateDouble(Engine& engine, AppState& state, std::string_view formula, const RangeBoxes& first,
                                  const RangeBoxes& second) {
  IntegrationResult r;
  BeginHandler(engine);
  FormulaSampler f(engine);
  if (PointStatus s = f.compile(formula); s != PointStatus::kOk) return Ended(engine, state, r, EndOf(s));
  if (f.variables().size() != 2) {
    engine.Fail(kTwoVariablesError);
    return Ended(engine, state, r, IntegrationEnd::kError);
  }

  // Each range: limits, a count of at least 2 made even without touching the box, the cap shown.
  struct Range {
    double a, b, n;
  };
  auto read = [&](const RangeBoxes& boxes, std::optional<std::string>& box, const char* which,
                  const char* boxName, const char* minBox) -> std::optional<Range> {
    std::optional<Limits> l = ReadLimits(engine, boxes);
    if (!l) return std::nullopt;
    std::optional<double> count = ReadDivisions(boxes.num);
    if (!UsableRange(engine, count, boxes.num, 2, *l, which, boxName, minBox)) return std::nullopt;
    double n = *count;
    if (std::fmod(n, 2) != 0) n += 1;
    if (n > kMaxIntegrationDivisions) {
      n = kMaxIntegrationDivisions;
      box = PlainText(n);
      engine.host().showBox(boxName, *box);
    }
    return Range{l->a, l->b, n};
  };
  std::optional<Range> r1 = read(first, r.numBox, "first ", "Text3", "Text1");
  std::optional<Range> r2 = r1 ? read(second, r.numBox2, "second ", "Text6", "Text4") : std::nullopt;
  if (!r1 || !r2) {
    if (engine.failed()) return Ended(engine, state, r, engine.FaultFlag ? IntegrationEnd::kFault : IntegrationEnd::kError);
    return Ended(engine, state, r, IntegrationEnd::kSilent);
  }
  const double h1 = (r1->b - r1->a) / r1->n, h2 = (r2->b - r2->a) / r2->n;
  if (!std::isfinite(h1) || !std::isfinite(h2)) return Ended(engine, state, r, IntegrationEnd::kFault);

  const std::string& firstName = f.variables()[0];
  double S = 0, x0 = r1->a, y0 = r2->a, F[3][3];
  int j1 = 0, j2 = 0;
  for (;;) {
    double x = x0, y = y0;
    for (int k = 0; k <= 2; ++k) {
      x = k * h1 + x0;
      f.substitute(firstName, x);
      for (int m = 0; m <= 2; ++m) {
        y = m * h2 + y0;
        if (PointStatus s = f.atSubstituted(y, F[k][m]); s != PointStatus::kOk) return Ended(engine, state, r, EndOf(s));
      }
    }
    S = S + F[0][0] + 4 * F[0][1] + F[0][2] + 4 * F[1][0] + 16 * F[1][1] + 4 * F[1][2] + F[2][0] + 4 * F[2][1] + F[2][2];
    y0 = y;
    j2 += 2;
    if (j2 < r2->n) continue;
    j2 = 0;
    y0 = r2->a;
    j1 += 2;
    x0 = x;
    engine.host().progress(j1 / 2, static_cast<int64_t>(r1->n / 2));
    if (StopRequestedAtCheckpoint(engine)) return Ended(engine, state, r, IntegrationEnd::kStopped);
    if (j1 >= r1->n) break;
  }

  const double value = h1 * h2 * S / 9;
  if (!std::isfinite(value)) return Ended(engine, state, r, IntegrationEnd::kFault);
  engine.BindToX = -1;
  r.end = IntegrationEnd::kCompleted;
  r.value = value;
  return r;
}

}  // namespace merida

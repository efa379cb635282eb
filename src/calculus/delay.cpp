// One evaluation per step: the saved program with each (k, timestep) pair folded to a number.
#include "calculus/delay.h"

#include <cmath>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kSyntaxError = 22;
constexpr int kDelayVariableError = 34;
constexpr int kMaxDelayPoints = 6000;

DelayResult Ended(Engine& engine, DelayResult r, DelayEnd end) {
  r.end = end;
  if (end == DelayEnd::kFault) {
    EndRunOnFault(engine);
  } else {
    engine.BindToX = -1;
  }
  return r;
}

// Ring positions for any whole n, negative delays included.
int Position(long long n, int K) {
  long long p = n % K;
  return static_cast<int>(p < 0 ? p + K : p);
}

}  // namespace

DelayResult RunDelay(Engine& engine, AppState& state, std::string_view formula, std::string_view stepBox,
                     const std::vector<std::string>& initialCells) {
  DelayResult r;
  engine.StopRequested = 0;
  engine.ErrorFlag = 0;
  engine.IntegralBinding = -1;
  FormulaSampler f(engine);
  if (PointStatus s = f.compile(formula); s != PointStatus::kOk) {
    return Ended(engine, r, s == PointStatus::kFault ? DelayEnd::kFault : DelayEnd::kError);
  }
  if (!f.variables().empty()) {
    engine.Fail(kDelayVariableError);
    return Ended(engine, r, DelayEnd::kError);
  }
  std::optional<double> steps = ReadNumber(stepBox);
  if (!steps || !std::isfinite(*steps)) {
    engine.EndSilently("the number of steps must be a number (not \"" + std::string(Trim(stepBox)) + "\")", "Text1");
    return Ended(engine, r, DelayEnd::kSilent);
  }
  // Counts beyond 16 bits are capped like any count above the limit.
  double N = std::nearbyint(*steps);
  if (N > kMaxDelayPoints) {
    N = kMaxDelayPoints - 1;
    r.stepBox = std::to_string(kMaxDelayPoints);
    engine.host().showBox("Text1", *r.stepBox);
  }

  // K: the largest k of the program's timestep(k) cells.
  int K = 0;
  const SavedProgram& saved = f.program();
  for (int i = 2; i <= saved.n; ++i) {
    if (saved.program.cell(i).Value != "timestep") continue;
    std::optional<int16_t> k = ToInt16(ReadLenient(saved.program.cell(i - 1).Value));
    if (k && *k > K) K = *k;
  }
  // No delay, or more than the grid can hold: the formula cannot be a recurrence.
  if (K == 0 || K > kMaxDelay) {
    engine.Fail(kSyntaxError);
    return Ended(engine, r, DelayEnd::kError);
  }
  r.largestDelay = K;

  double history[kMaxDelay];
  for (int row = 1; row <= K; ++row) {
    const std::string& cell = row <= static_cast<int>(initialCells.size()) ? initialCells[row - 1] : std::string();
    if (cell.find_first_not_of(' ') == std::string::npos) {
      engine.EndSilently("the formula reaches back " + std::to_string(K) + " steps: initial value " +
                         std::to_string(row) + " is empty",
                         "Text2");
      return Ended(engine, r, DelayEnd::kSilent);
    }
    history[Position(row - 1, K)] = ReadLenient(cell);
  }

  RecordFunctionTable& table = state.Records;
  table.kind = ComputedData;
  table.dimension = 2;
  table.rangeStart = 1;
  table.rangeEnd = static_cast<float>(N);
  auto add = [&](long long n, double v) {
    ChartPoint p{static_cast<double>(n + 1), v};
    r.points.push_back(p);
    std::optional<float> value = RecordValue(v);
    if (value) table.RecordPoint(static_cast<int>(n + 1), static_cast<float>(p.x), *value, 0);
  };
  r.points.reserve(static_cast<size_t>(std::max<double>(K, N + 1)));
  for (int n = 0; n < K; ++n) add(n, history[Position(n, K)]);

  long long n = K;
  auto delayed = [&](double k) { return history[Position(n - static_cast<long long>(std::nearbyint(k)), K)]; };
  for (; n <= N; ++n) {
    double v = 0;
    PointStatus s = f.atFolded("timestep", delayed, v);
    if (s == PointStatus::kOk && !RecordValue(v)) s = PointStatus::kFault;
    if (s != PointStatus::kOk) return Ended(engine, r, s == PointStatus::kFault ? DelayEnd::kFault : DelayEnd::kError);
    history[Position(n, K)] = v;
    add(n, v);
    engine.host().progress(n, static_cast<int64_t>(N));
    if (StopRequestedAtCheckpoint(engine)) return Ended(engine, r, DelayEnd::kStopped);
  }
  engine.BindToX = -1;
  r.end = DelayEnd::kCompleted;
  return r;
}

}  // namespace merida

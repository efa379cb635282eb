// A 6000-point second-order Runge-Kutta run of the Diff Equation window, end to end (compile,
// evaluate with y and y' substituted, record), against the same loop written by hand in C++.
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <new>
#include <vector>

#include "calculus/differential.h"
#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace {
std::atomic<long> gAllocations{0};
}  // namespace

// Counts every allocation of the process, so the run can show what it allocates per step.
// Out of line, so that the compiler pairs each delete with this new and not a built-in one.
[[gnu::noinline]] void* operator new(std::size_t size) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

using namespace merida;
using Clock = std::chrono::steady_clock;

// y'' = f(x, y, y'): a driven, damped oscillator.
constexpr const char* kFormula = "0-0.5*diff-4*y+sin(x)";
double Native(double x, double y, double p) { return 0 - 0.5 * p - 4 * y + std::sin(x); }

constexpr int kSteps = kMaxDiffPoints - 1;  // 0..60 by 0.01 takes the cap: 5999 steps, 6000 points
// Diff Var, Width, Init Val, Min, Max, Init Val(1).
DiffBoxes Boxes() { return DiffBoxes{"y", "0.01", "1", "0", "60", "0", "", ""}; }

// The window's loop by hand: the same stages, the dependent values read back in 15 digits as
// their number cells give them, the same chart points and record rows.
double HandWritten(RecordFunctionTable& table, std::vector<ChartPoint>& points) {
  const double h = 0.01;
  double x = 0, y = 1, p = 0;
  points.clear();
  points.push_back({x, y});
  table.RecordPoint(1, 0, 1, 0);
  auto f = [](double x_, double y_, double p_) { return Native(x_, Round15(y_), Round15(p_)); };
  for (int i = 1; i <= kSteps; ++i) {
    const double L1 = h * p, K1 = h * f(x, y, p);
    const double L2 = h * (p + K1 / 2), K2 = h * f(x + h / 2, y + L1 / 2, p + K1 / 2);
    const double L3 = h * (p + K2 / 2), K3 = h * f(x + h / 2, y + L2 / 2, p + K2 / 2);
    const double L4 = h * (p + K3), K4 = h * f(x + h, y + L3, p + K3);
    y = y + (L1 + 2 * L2 + 2 * L3 + L4) / 6;
    p = p + (K1 + 2 * K2 + 2 * K3 + K4) / 6;
    x = x + h;
    points.push_back({x, y});
    if (i + 1 <= RecordFunctionTable::kCapacity) {
      table.RecordPoint(i + 1, static_cast<float>(x), static_cast<float>(y), 0);
    }
  }
  return y;
}

void BM_RungeKutta2_6000(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  AppState state;
  OpenDiffWindow(engine, state);
  SelectDiffEquationOption(state);
  ClickRungeKutta(state, true);
  RecordFunctionTable handTable;
  std::vector<ChartPoint> handPoints;
  handPoints.reserve(kMaxDiffPoints);
  const DiffBoxes boxes = Boxes();

  double meridaSeconds = 0, handSeconds = 0;
  long meridaAllocations = 0;
  for (auto _ : st) {
    const long before = gAllocations.load();
    auto t0 = Clock::now();
    DiffResult r = RunGrade(engine, state, kFormula, boxes, 2, false);
    auto t1 = Clock::now();
    meridaAllocations += gAllocations.load() - before;
    double y = HandWritten(handTable, handPoints);
    auto t2 = Clock::now();
    meridaSeconds += std::chrono::duration<double>(t1 - t0).count();
    handSeconds += std::chrono::duration<double>(t2 - t1).count();
    if (r.end != DiffEnd::kCompleted || r.points.size() != kMaxDiffPoints) {
      st.SkipWithError("the run did not complete");
      return;
    }
    // Both loops compute the same numbers to the bit.
    if (r.points.back().y != y || handPoints.back().y != y) {
      st.SkipWithError("the hand-written loop disagrees with the window's");
      return;
    }
    benchmark::DoNotOptimize(r.points.data());
  }
  const double n = static_cast<double>(st.iterations());
  st.counters["merida_ms"] = meridaSeconds / n * 1e3;
  st.counters["hand_ms"] = handSeconds / n * 1e3;
  st.counters["ratio"] = meridaSeconds / handSeconds;
  st.counters["allocs_per_step"] = static_cast<double>(meridaAllocations) / n / kSteps;
}
BENCHMARK(BM_RungeKutta2_6000)->Unit(benchmark::kMillisecond)->UseRealTime();

// One stage evaluation with two number cells, the unit the run repeats 4 x 5999 times.
void BM_EvaluateWithTwoCells(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  FormulaSampler sampler(engine);
  engine.BindToX = 1;
  if (sampler.compile(kFormula, false) != PointStatus::kOk) {
    st.SkipWithError("compile failed");
    return;
  }
  sampler.setCellNames({"y", "diff"});
  double v[2] = {0.3, 0.7}, x = 0.1;
  for (auto _ : st) {
    double out = 0;
    sampler.atValues(x, v, out);
    benchmark::DoNotOptimize(out);
    v[0] += 1e-7;
    v[1] -= 1e-7;
    x += 1e-4;
  }
}
BENCHMARK(BM_EvaluateWithTwoCells);

// The same formula with every name read from x, as tool code binds free variables: what a
// stage would cost if the evaluator took y and y' as values without building its code again.
void BM_EvaluateWithoutRebuild(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  FormulaSampler sampler(engine);
  engine.BindToX = 1;
  if (sampler.compile(kFormula, false) != PointStatus::kOk) {
    st.SkipWithError("compile failed");
    return;
  }
  double x = 0.1;
  for (auto _ : st) {
    double out = 0;
    sampler.at(x, out);
    benchmark::DoNotOptimize(out);
    x += 1e-4;
  }
}
BENCHMARK(BM_EvaluateWithoutRebuild);

}  // namespace

BENCHMARK_MAIN();

// A 100 x 100 double integral end to end (compile, evaluate every block, answer) against the
// same Simpson loops written by hand over the same formula.
#include <benchmark/benchmark.h>

#include <cmath>

#include "calculus/integration.h"
#include "engine/number_text.h"

namespace {

using namespace merida;

constexpr const char* kFormula = "x*y+sin(x)*cos(y)";
constexpr int kDivisions = 100;

void BM_DoubleIntegral100x100(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  AppState state;
  const RangeBoxes first{"0", "2", "100"}, second{"0", "3", "100"};
  for (auto _ : st) {
    IntegrationResult r = IntegrateDouble(engine, state, kFormula, first, second);
    if (!r.value) st.SkipWithError("integral did not complete");
    benchmark::DoNotOptimize(*r.value);
  }
  st.SetItemsProcessed(st.iterations() * 9 * (kDivisions / 2) * (kDivisions / 2));
}
BENCHMARK(BM_DoubleIntegral100x100)->Unit(benchmark::kMillisecond);

// The same blocks, the first variable read back from its 15-digit text as the tool does.
void BM_DoubleIntegral100x100HandWritten(benchmark::State& st) {
  auto f = [](double x, double y) { return x * y + std::sin(x) * std::cos(y); };
  for (auto _ : st) {
    const double a1 = 0, b1 = 2, a2 = 0, b2 = 3, n1 = kDivisions, n2 = kDivisions;
    const double h1 = (b1 - a1) / n1, h2 = (b2 - a2) / n2;
    double S = 0, x0 = a1, F[3][3];
    for (int j1 = 0; j1 < n1; j1 += 2) {
      double y0 = a2, x = x0, y = y0;
      for (int j2 = 0; j2 < n2; j2 += 2) {
        for (int k = 0; k <= 2; ++k) {
          x = *ReadNumber(PlainText(k * h1 + x0));
          for (int m = 0; m <= 2; ++m) {
            y = m * h2 + y0;
            F[k][m] = f(x, y);
          }
        }
        S += F[0][0] + 4 * F[0][1] + F[0][2] + 4 * F[1][0] + 16 * F[1][1] + 4 * F[1][2] + F[2][0] + 4 * F[2][1] +
             F[2][2];
        y0 = y;
      }
      x0 = 2 * h1 + x0;
    }
    benchmark::DoNotOptimize(h1 * h2 * S / 9);
  }
  st.SetItemsProcessed(st.iterations() * 9 * (kDivisions / 2) * (kDivisions / 2));
}
BENCHMARK(BM_DoubleIntegral100x100HandWritten)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

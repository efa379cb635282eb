// A 6000-division root scan of a formula with a dozen built-ins, end to end (compile, sample,
// bisect, list), against the same scan written by hand.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

#include "algebra/roots.h"
#include "dozen_builtins.h"

namespace {

using namespace merida;

// Roots where the sum of a dozen built-ins crosses 7.
const std::string kFormula = std::string(bench::kDozenBuiltins) + "-7";

double F(double x) { return bench::DozenBuiltins(x) - 7; }

void BM_RootScan6000(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  AppState state;
  size_t roots = 0;
  for (auto _ : st) {
    RootResult r = SearchRoots(engine, state, kFormula, {"0.1", "30", "5999", "1E-07"}, false, false);
    if (r.end != RootEnd::kListed) st.SkipWithError("scan did not complete");
    roots = r.rootX.size();
  }
  st.counters["roots"] = static_cast<double>(roots);
}
BENCHMARK(BM_RootScan6000)->Unit(benchmark::kMicrosecond);

void BM_RootScan6000HandWritten(benchmark::State& st) {
  size_t roots = 0;
  for (auto _ : st) {
    const double a = 0.1, b = 30, judge = 1e-7;
    const int n = 5999;
    const double h = (b - a) / n;
    std::vector<double> found;
    auto test = [&](double prev, double x, int& s) {
      double y = F(x);
      if (std::fabs(y) <= judge) {
        found.push_back(x);
        s = (y > 0) - (y < 0);
      } else if (s != 0 && s * y < 0) {
        double lo = prev, hi = x;
        for (;;) {
          double m = (lo + hi) / 2, ym = F(m);
          if (m == lo || m == hi) break;
          if (std::fabs(ym) <= judge) {
            found.push_back(m);
            break;
          }
          (s * ym < 0 ? hi : lo) = m;
        }
        s = -s;
      } else if (s == 0) {
        s = (y > 0) - (y < 0);
      }
    };
    double y0 = F(a);
    int s = (y0 > 0) - (y0 < 0);
    double prev = a;
    for (int i = 1; i <= n - 1; ++i) {
      double x = i * h + a;
      test(prev, x, s);
      prev = x;
    }
    test(prev, b, s);
    roots = found.size();
    benchmark::DoNotOptimize(found.data());
  }
  st.counters["roots"] = static_cast<double>(roots);
}
BENCHMARK(BM_RootScan6000HandWritten)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

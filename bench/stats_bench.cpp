// Freq, Ave and Regres over 5000 rows of three columns, each against a hand-written loop doing
// the same sums in single precision (the median by std::nth_element).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "stats/statistics.h"

namespace {

using namespace merida;

const RecordFunctionTable& Rows() {
  static const RecordFunctionTable table = [] {
    RecordFunctionTable t;
    std::mt19937 random(3);
    std::normal_distribution<float> noise(0, 1);
    for (int i = 1; i <= 5000; ++i) {
      const float x = noise(random) * 10 + 50;
      t.values[i] = {x, 2 * x + noise(random), noise(random)};
    }
    t.count = 5000;
    t.dimension = 3;
    t.kind = OrbitaData;
    return t;
  }();
  return table;
}

void BM_Freq(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  for (auto _ : st) benchmark::DoNotOptimize(FrequencyDistribution(engine, Rows(), "1"));
}
BENCHMARK(BM_Freq)->Unit(benchmark::kMicrosecond);

void BM_FreqHandWritten(benchmark::State& st) {
  const RecordFunctionTable& t = Rows();
  for (auto _ : st) {
    const int n = t.count;
    std::vector<float> copy(n);
    float min = t.values[1][0], max = min;
    for (int i = 1; i <= n; ++i) {
      copy[i - 1] = t.values[i][0];
      min = std::min(min, copy[i - 1]);
      max = std::max(max, copy[i - 1]);
    }
    std::nth_element(copy.begin(), copy.begin() + n / 2 - 1, copy.end());
    const float median = (copy[n / 2 - 1] + *std::min_element(copy.begin() + n / 2, copy.end())) / 2;
    const float h = (max - min) / 100;
    int classes[100] = {};
    for (int i = 1; i <= n; ++i) {
      const float x = t.values[i][0];
      if (x != max) ++classes[std::min(99, static_cast<int>(std::floor((x - min) / h)))];
    }
    const int best = static_cast<int>(std::max_element(classes, classes + 100) - classes);
    std::vector<ChartPoint> chart(100);
    for (int c = 0; c < 100; ++c) chart[c] = {min + c * h, static_cast<double>(classes[c])};
    benchmark::DoNotOptimize(median);
    benchmark::DoNotOptimize(min + (best + 0.5f) * h);
    benchmark::DoNotOptimize(chart.data());
  }
}
BENCHMARK(BM_FreqHandWritten)->Unit(benchmark::kMicrosecond);

void BM_Ave(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  for (auto _ : st) benchmark::DoNotOptimize(BasicStatistics(engine, Rows(), "1"));
}
BENCHMARK(BM_Ave)->Unit(benchmark::kMicrosecond);

void BM_AveHandWritten(benchmark::State& st) {
  const RecordFunctionTable& t = Rows();
  for (auto _ : st) {
    float sum = 0, squares = 0;
    for (int i = 1; i <= t.count; ++i) sum += t.values[i][0];
    const float mean = sum / t.count;
    for (int i = 1; i <= t.count; ++i) squares += (mean - t.values[i][0]) * (mean - t.values[i][0]);
    benchmark::DoNotOptimize(mean);
    benchmark::DoNotOptimize(std::sqrt(squares / t.count));
  }
}
BENCHMARK(BM_AveHandWritten)->Unit(benchmark::kMicrosecond);

void BM_Regres(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  for (auto _ : st) benchmark::DoNotOptimize(RegressionLine(engine, Rows(), "1"));
}
BENCHMARK(BM_Regres)->Unit(benchmark::kMicrosecond);

void BM_RegresHandWritten(benchmark::State& st) {
  const RecordFunctionTable& t = Rows();
  for (auto _ : st) {
    const int n = t.count;
    float sx = 0, sy = 0;
    for (int i = 1; i <= n; ++i) sx += t.values[i][0];
    for (int i = 1; i <= n; ++i) sy += t.values[i][1];
    const float mx = sx / n, my = sy / n;
    float sxx = 0, syy = 0, sxy = 0;
    for (int i = 1; i <= n; ++i) sxx += (mx - t.values[i][0]) * (mx - t.values[i][0]);
    for (int i = 1; i <= n; ++i) syy += (my - t.values[i][1]) * (my - t.values[i][1]);
    for (int i = 1; i <= n; ++i) sxy += (my - t.values[i][1]) * (mx - t.values[i][0]);
    const float a = sxy / sxx;
    std::vector<ChartPoint> chart(n);
    for (int i = 1; i <= n; ++i) chart[i - 1] = {t.values[i][0], t.values[i][1]};
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(my - a * mx);
    benchmark::DoNotOptimize(sxy / std::sqrt(sxx * syy));
    benchmark::DoNotOptimize(chart.data());
  }
}
BENCHMARK(BM_RegresHandWritten)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

// The spectrum component's three operations on 1024 points against FFTW's own plan called
// directly on the same data, and a Continue run of Power over 5000 recorded samples end to end.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cmath>
#include <vector>

#include "controls/spectrum.h"
#include "signal/frequency.h"

namespace {

using namespace merida;

constexpr int kN = 1024;

std::vector<float> Frame() {
  std::vector<float> x(kN);
  for (int i = 0; i < kN; ++i) x[i] = static_cast<float>(std::sin(0.3 * i) + 0.25 * std::cos(0.07 * i));
  return x;
}

template <class Op>
void RunOperation(benchmark::State& st, Op op) {
  Spectrum s;
  const std::vector<float> x = Frame();
  std::vector<float> re(kN), im(kN);
  for (auto _ : st) {
    re = x;
    std::fill(im.begin(), im.end(), 0.0f);
    if (!op(s, re.data(), im.data())) st.SkipWithError("refused");
    benchmark::DoNotOptimize(re.data());
  }
}

void BM_Fourier1024(benchmark::State& st) {
  RunOperation(st, [](Spectrum& s, float* re, float* im) { return s.Fourier(kN, re, im); });
}
BENCHMARK(BM_Fourier1024);

void BM_Power1024(benchmark::State& st) {
  RunOperation(st, [](Spectrum& s, float* re, float* im) { return s.Power(kN, re, im); });
}
BENCHMARK(BM_Power1024);

void BM_Autocorrelation1024(benchmark::State& st) {
  RunOperation(st, [](Spectrum& s, float* re, float* im) { return s.Autocorrelation(kN, re, im); });
}
BENCHMARK(BM_Autocorrelation1024);

// The reference: one forward transform through FFTW's plan, the input copied in as above.
void BM_FftwPlanDirect1024(benchmark::State& st) {
  const std::vector<float> x = Frame();
  fftwf_complex* buffer = static_cast<fftwf_complex*>(fftwf_malloc(sizeof(fftwf_complex) * kN));
  fftwf_plan plan = fftwf_plan_dft_1d(kN, buffer, buffer, FFTW_FORWARD, FFTW_ESTIMATE);
  for (auto _ : st) {
    for (int k = 0; k < kN; ++k) {
      buffer[k][0] = x[k];
      buffer[k][1] = 0;
    }
    fftwf_execute(plan);
    benchmark::DoNotOptimize(buffer);
  }
  fftwf_destroy_plan(plan);
  fftwf_free(buffer);
}
BENCHMARK(BM_FftwPlanDirect1024);

void BM_ContinuePower5000(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  AppState state;
  FrequencyAnalysis fft(engine, state);
  for (auto _ : st) {
    RecordFunctionTable& t = state.Records;
    for (int i = 1; i <= 5000; ++i) t.values[i][0] = static_cast<float>(std::sin(0.25 * i));
    t.count = 5000;
    t.kind = WaveData;
    t.sampleRate = 11025;
    if (fft.go("", {"0", "1", "1024"}, FftSource::kWave).end != FftEnd::kDone ||
        fft.display(FftShow::kPower, FftMode::kContinue).end != FftEnd::kDone) {
      st.SkipWithError("run failed");
    }
  }
}
BENCHMARK(BM_ContinuePower5000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

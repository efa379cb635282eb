// Each long tool run two ways in the same iteration: called directly on an engine, as the
// command line does, and as a window runs it: a job on a worker thread over a copy of the
// engine, with progress reported and the stop request read at every checkpoint. The counters
// give both times and their ratio; the goal is a ratio of at most 1.05.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <functional>
#include <future>

#include "calculus/differential.h"
#include "calculus/integration.h"
#include "contour/contour_grid.h"
#include "engine/job.h"
#include "signal/frequency.h"
#include "signal/wave_maker.h"

namespace {

using namespace merida;
using Clock = std::chrono::steady_clock;
using Work = std::function<bool(Engine&, AppState&)>;  // true when the run completed

double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

double Direct(const Engine& shared, const AppState& sharedState, const Work& work, bool& ok) {
  const auto t0 = Clock::now();
  SilentHost host;
  Engine engine(host);
  engine.CopyStateFrom(shared);
  AppState state = sharedState;
  ok = work(engine, state);
  return Seconds(t0);
}

// As a window starts it: a fresh engine and state copied from the shared ones, a thread, and
// the result handed back when the work ends.
double AsJob(const Engine& shared, const AppState& sharedState, const Work& work, bool& ok) {
  const auto t0 = Clock::now();
  JobHost host;
  Engine engine(host);
  engine.CopyStateFrom(shared);
  AppState state = sharedState;
  std::promise<void> ended;
  {
    Job job(
        [&](std::stop_token stop, JobProgress& progress) {
          host.attach(engine, stop, &progress);
          ok = work(engine, state);
        },
        [&] { ended.set_value(); });
    ended.get_future().wait();
  }
  return Seconds(t0);
}

void SideBySide(benchmark::State& st, const Work& work, const std::function<void(Engine&, AppState&)>& prepare = {}) {
  SilentHost host;
  Engine shared(host);
  shared.ResetEngine();
  AppState sharedState;
  if (prepare) prepare(shared, sharedState);
  double direct = 0, job = 0;
  for (auto _ : st) {
    bool directOk = false, jobOk = false;
    // Alternating which goes first keeps a slow spell on a shared machine from favouring one.
    if (st.iterations() % 2 == 0) {
      direct += Direct(shared, sharedState, work, directOk);
      job += AsJob(shared, sharedState, work, jobOk);
    } else {
      job += AsJob(shared, sharedState, work, jobOk);
      direct += Direct(shared, sharedState, work, directOk);
    }
    if (!directOk || !jobOk) st.SkipWithError("a run did not complete");
  }
  const double n = static_cast<double>(st.iterations());
  st.counters["direct_s"] = direct / n;
  st.counters["job_s"] = job / n;
  st.counters["job/direct"] = direct > 0 ? job / direct : 0;
}

std::filesystem::path Dir() { return std::filesystem::temp_directory_path(); }

void BM_WaveOfASum60000(benchmark::State& st) {
  SideBySide(st, [](Engine& e, AppState&) {
    return MakeWave(e, "sgm(sin(k*x)/k,1,60000,k)", {"0", "0.2", "job_bench.wav"}, false, Dir()).end ==
           WaveEnd::kWritten;
  });
}
BENCHMARK(BM_WaveOfASum60000)->Unit(benchmark::kSecond)->Iterations(2)->UseRealTime();

void BM_DoubleIntegral10000x10000(benchmark::State& st) {
  SideBySide(st, [](Engine& e, AppState& s) {
    return IntegrateDouble(e, s, "x*y+1", {"0", "1", "10000"}, {"0", "1", "10000"}).value.has_value();
  });
}
BENCHMARK(BM_DoubleIntegral10000x10000)->Unit(benchmark::kSecond)->Iterations(2)->UseRealTime();

// Power in Continue mode over 5000 recorded samples in frames of 8: 625 frames, each one a
// checkpoint.
void BM_ContinuePower625Frames(benchmark::State& st) {
  SideBySide(
      st,
      [](Engine& e, AppState& s) {
        FrequencyAnalysis fft(e, s);
        return fft.go("", {"0", "1", "8"}, FftSource::kWave).end == FftEnd::kDone &&
               fft.display(FftShow::kPower, FftMode::kContinue).end == FftEnd::kDone;
      },
      [](Engine&, AppState& s) {
        RecordFunctionTable& t = s.Records;
        for (int i = 1; i <= 5000; ++i) t.values[i][0] = static_cast<float>(std::sin(0.25 * i));
        t.count = 5000;
        t.kind = WaveData;
        t.sampleRate = 11025;
      });
}
BENCHMARK(BM_ContinuePower625Frames)->Unit(benchmark::kMillisecond)->MinTime(1)->UseRealTime();

void BM_Contour101x101(benchmark::State& st) {
  SideBySide(st, [](Engine& e, AppState&) {
    return EvaluateGrid(e, "sin(x)*cos(y)+x*y/10", {"-3", "3", "100", "-3", "3", "100"}, false).end ==
           GridEnd::kCompleted;
  });
}
BENCHMARK(BM_Contour101x101)->Unit(benchmark::kMillisecond)->MinTime(1)->UseRealTime();

void BM_RungeKutta6000Steps(benchmark::State& st) {
  SideBySide(
      st,
      [](Engine& e, AppState& s) {
        return RunGrade(e, s, "0-0.5*diff-4*y+sin(x)", {"y", "0.01", "1", "0", "60", "0", "", ""}, 2, false).end ==
               DiffEnd::kCompleted;
      },
      [](Engine& e, AppState& s) {
        OpenDiffWindow(e, s);
        SelectDiffEquationOption(s);
        ClickRungeKutta(s, true);
      });
}
BENCHMARK(BM_RungeKutta6000Steps)->Unit(benchmark::kMillisecond)->MinTime(1)->UseRealTime();

// What a job costs beyond its work: a copy of the engine, a thread, the hand-back.
void BM_EmptyRun(benchmark::State& st) {
  SideBySide(st, [](Engine&, AppState&) { return true; });
}
BENCHMARK(BM_EmptyRun)->Unit(benchmark::kMicrosecond)->MinTime(1)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();

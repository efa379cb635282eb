// Samples are taken at t0 + i/11025 from the index and the last one at t1 exactly, so the
// file spans the range the user typed whatever the rounding of the step.
#include "signal/wave_maker.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "engine/atomic_file.h"
#include "engine/formula_sampler.h"
#include "engine/number_text.h"
#include "signal/data_files.h"

namespace merida {
namespace {

constexpr int kGraphVariablesError = 24;
constexpr int kMeridaFileSamples = 5000;

// Every run-time failure (an overflow, a constant, a write) ends Go as a fault does.
WaveResult Failed(Engine& engine, WaveEnd end) {
  if (end == WaveEnd::kFault || end == WaveEnd::kConstant || end == WaveEnd::kWriteError) EndRunOnFault(engine);
  else engine.BindToX = -1;
  WaveResult r;
  r.end = end;
  return r;
}

}  // namespace

WaveResult MakeWave(Engine& engine, std::string_view formula, const WaveBoxes& boxes, bool merida,
                    const std::filesystem::path& dir, const std::function<void()>& sampling) {
  engine.ErrorFlag = 0;
  engine.StopRequested = 0;
  engine.IntegralBinding = -1;
  engine.BindToX = 1;
  FormulaSampler f(engine);
  PointStatus s = f.compile(formula);
  if (s == PointStatus::kOk && f.variables().size() > 1) {
    engine.Fail(kGraphVariablesError);
    s = PointStatus::kError;
  }
  if (s != PointStatus::kOk) return Failed(engine, s == PointStatus::kFault ? WaveEnd::kFault : WaveEnd::kError);
  const double t0 = engine.EvaluateConstantText(boxes.from);
  const double t1 = engine.failed() ? 0 : engine.EvaluateConstantText(boxes.to);
  if (engine.failed()) return Failed(engine, engine.FaultFlag ? WaveEnd::kFault : WaveEnd::kError);
  const double dt = 1.0 / kWaveSampleRate;
  const double steps = std::nearbyint((t1 - t0) / dt);
  if (!(t1 > t0)) {
    engine.EndSilently("the end time is not after the start time", "Text2");
    return Failed(engine, WaveEnd::kSilent);
  }
  const int n = steps >= kMaxWaveSamples ? kMaxWaveSamples : static_cast<int>(steps);
  if (n < 1) {
    engine.EndSilently("the time range is shorter than half a sample (1/22050 s)", "Text2");
    return Failed(engine, WaveEnd::kSilent);
  }
  if (sampling) sampling();

  std::vector<float> samples(static_cast<size_t>(n) + 1);
  auto sample = [&](int i, double t) {
    double y = 0;
    PointStatus p = f.at(t, y);
    if (p != PointStatus::kOk) return p;
    std::optional<float> v = RecordValue(y);
    if (!v) return PointStatus::kFault;
    samples[static_cast<size_t>(i)] = *v;
    engine.host().progress(i, n);
    return PointStatus::kOk;
  };
  auto stopped = [&](PointStatus p) -> std::optional<WaveResult> {
    if (p == PointStatus::kError) return Failed(engine, WaveEnd::kError);
    if (p == PointStatus::kFault) return Failed(engine, WaveEnd::kFault);
    if (StopRequestedAtCheckpoint(engine)) return Failed(engine, WaveEnd::kStopped);
    return std::nullopt;
  };
  if (auto r = stopped(sample(1, t0))) return *r;
  for (int i = 1; i <= n - 2; ++i) {
    if (auto r = stopped(sample(i + 1, i * dt + t0))) return *r;
  }
  if (auto r = stopped(sample(n, t1))) return *r;
  engine.BindToX = -1;

  WaveResult r;
  r.samples = n;
  const std::span<const float> values(samples.data() + 1, static_cast<size_t>(n));
  std::string contents;
  if (merida) {
    r.fileName = "mrdsound.mrd";
    contents = MeridaFileText(t0, t1, values.first(std::min(n, kMeridaFileSamples)));
  } else {
    r.fileName = Trim(boxes.name).empty() ? "mrdsound.wav" : boxes.name;
    auto [low, high] = std::minmax_element(values.begin(), values.end());
    const double min = *low, max = *high;
    if (!(max > min)) return Failed(engine, WaveEnd::kConstant);  // nothing to scale onto 0..255
    std::vector<uint8_t> bytes(values.size());
    for (size_t i = 0; i < values.size(); ++i) {
      bytes[i] = static_cast<uint8_t>(std::nearbyint((values[i] - min) * 255 / (max - min)));
    }
    contents = WaveFileBytes(bytes);
  }
  r.written = dir / r.fileName;
  if (FileResult w = WriteFileAtomically(r.written, contents); !w) {
    WaveResult failed = Failed(engine, WaveEnd::kWriteError);
    failed.fileName = r.fileName;
    failed.writeError = w.error;
    return failed;
  }
  r.end = WaveEnd::kWritten;
  return r;
}

}  // namespace merida

// Frames are cut from one sample buffer; in Continue mode its imaginary parts also hold the
// time-continuous power table, which the signal in the real parts never needs.
#include "signal/frequency.h"

#include <algorithm>
#include <cmath>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kGraphVariablesError = 24;
constexpr int kWrongRecordError = 40;
constexpr int kNotComputedError = 50;

}  // namespace

const char* FftStatusText(FftStatus status, bool japanese) {
  switch (status) {
    case FftStatus::kNone: return "";
    case FftStatus::kCalculating: return japanese ? "計算中です" : "Now Calculating";
    case FftStatus::kFinished: return japanese ? "計算終了" : "Calculation Finished";
    case FftStatus::kFourierReal: return japanese ? "ﾌｰﾘｴ係数(実数)" : "Fourier Coefficient (Real)";
    case FftStatus::kFourierImaginary: return japanese ? "ﾌｰﾘｴ係数(虚数)" : "Fourier Coefficient (Imaginary)";
    case FftStatus::kPower: return japanese ? "ﾊﾟﾜｰｽﾍﾟｸﾄﾙ" : "Power Spectrum";
    case FftStatus::kCorrelation: return japanese ? "自己相関関数" : "Self Correlation Function";
  }
  return "";
}

std::optional<int> FrameLength(std::string_view numBox) {
  std::optional<double> v = ReadNumber(numBox);
  if (!v) return std::nullopt;
  const double n = std::nearbyint(*v);
  if (!(n >= 1)) return std::nullopt;
  const double k = std::nearbyint(std::log(n) / std::log(2.0));
  return k >= 10 ? 1024 : 1 << static_cast<int>(k);
}

FrequencyAnalysis::FrequencyAnalysis(Engine& engine, AppState& state)
    : engine_(engine),
      state_(state),
      samples_(kBufferSize),
      re_(Spectrum::kMaxPoints),
      im_(Spectrum::kMaxPoints),
      sumRe_(Spectrum::kMaxPoints),
      sumIm_(Spectrum::kMaxPoints) {}

FrequencyAnalysis::FrequencyAnalysis(Engine& engine, AppState& state, const FrequencyAnalysis& from)
    : FrequencyAnalysis(engine, state) {
  copyFrames(from);
}

void FrequencyAnalysis::copyFrames(const FrequencyAnalysis& from) {
  samples_ = from.samples_;
  source_ = from.source_;
  computed_ = from.computed_;
  n_ = from.n_;
  t_ = from.t_;
  total_ = from.total_;
  partToggle_ = from.partToggle_;
  rows3d_ = from.rows3d_;
  columns3d_ = from.columns3d_;
  index3d_ = from.index3d_;
}

FftGoResult FrequencyAnalysis::go(std::string_view formula, const FftBoxes& boxes, FftSource source) {
  FftGoResult r;
  computed_ = false;
  source_ = source;
  auto ended = [&](FftEnd e) {
    if (e == FftEnd::kFault) EndRunOnFault(engine_);
    else engine_.BindToX = -1;
    r.end = e;
    return r;
  };
  auto range = [&](double& t0, double& t1) -> std::optional<FftEnd> {
    t0 = engine_.EvaluateConstantText(boxes.from);
    t1 = engine_.failed() ? 0 : engine_.EvaluateConstantText(boxes.to);
    if (engine_.failed()) return engine_.FaultFlag ? FftEnd::kFault : FftEnd::kError;
    std::optional<int> n = FrameLength(boxes.num);
    if (!n) {
      engine_.EndSilently("the number of points must be a number of at least 1 (not \"" + std::string(Trim(boxes.num)) +
                              "\")",
                          "Text3");
      return FftEnd::kSilent;
    }
    n_ = *n;
    r.numBox = std::to_string(n_);
    engine_.host().showBox("Text3", *r.numBox);
    if (!(t0 < t1)) {
      engine_.EndSilently("the start of the range must be below its end", "Text1");
      return FftEnd::kSilent;
    }
    return std::nullopt;
  };
  double t0 = 0, t1 = 0;

  if (source == FftSource::kFormula) {
    engine_.ErrorFlag = 0;
    engine_.StopRequested = 0;
    engine_.IntegralBinding = -1;
    engine_.BindToX = 1;
    FormulaSampler f(engine_);
    PointStatus s = f.compile(formula);
    if (s == PointStatus::kOk && f.variables().size() > 1) {
      engine_.Fail(kGraphVariablesError);
      s = PointStatus::kError;
    }
    if (s != PointStatus::kOk) return ended(s == PointStatus::kFault ? FftEnd::kFault : FftEnd::kError);
    if (std::optional<FftEnd> e = range(t0, t1)) return ended(*e);
    const double dt = (t1 - t0) / n_;
    t_ = static_cast<float>(t1 - t0);
    auto sample = [&](int i, double t) -> std::optional<FftEnd> {
      double y = 0;
      PointStatus p = f.at(t, y);
      if (p == PointStatus::kError) return FftEnd::kError;
      if (p == PointStatus::kFault) return FftEnd::kFault;
      samples_[static_cast<size_t>(i)] = {y, 0};
      engine_.host().progress(i, n_ + 1);
      if (StopRequestedAtCheckpoint(engine_)) return FftEnd::kStopped;
      return std::nullopt;
    };
    for (int i = 0; i <= n_ - 1; ++i) {
      if (std::optional<FftEnd> e = sample(i + 1, i * dt + t0)) return ended(*e);
    }
    if (std::optional<FftEnd> e = sample(n_ + 1, t1)) return ended(*e);
    total_ = n_ + 1;
    engine_.BindToX = -1;
  } else {
    RecordFunctionTable& table = state_.Records;
    engine_.ErrorFlag = 0;
    if (table.kind < 1) {
      engine_.EndSilently("no data is loaded");
      return ended(FftEnd::kSilent);
    }
    if (table.kind != static_cast<int16_t>(source)) {
      engine_.Fail(kWrongRecordError);
      return ended(FftEnd::kError);
    }
    const int count = std::clamp<int>(table.count, 0, RecordFunctionTable::kCapacity);
    for (int i = 1; i <= count; ++i) samples_[static_cast<size_t>(i)] = {table.values[i][0], 0};
    total_ = count;
    if (std::optional<FftEnd> e = range(t0, t1)) return ended(*e);
    table.kind = ComputedData;
    table.rangeStart = static_cast<float>(t0);
    table.rangeEnd = static_cast<float>(t1);
    table.dimension = 2;
    t_ = source == FftSource::kWave ? static_cast<float>(n_) / static_cast<float>(table.sampleRate)
                                    : static_cast<float>((t1 - t0) * n_ / count);
  }
  computed_ = true;
  r.end = FftEnd::kDone;
  return r;
}

void FrequencyAnalysis::showPoint(int k, double label, float value, std::vector<ChartPoint>& points) {
  points.push_back({label, value});
  state_.Records.RecordPoint(k, static_cast<float>(label), value, 0);
  state_.Records.dimension = 2;
  state_.Records.kind = ComputedData;
}

FftDisplayResult FrequencyAnalysis::display(FftShow show, FftMode mode,
                                            const std::function<void(const std::vector<ChartPoint>&)>& frame) {
  FftDisplayResult r;
  engine_.ErrorFlag = 0;
  engine_.StopRequested = 0;  // a Close of another tool window must not end this display
  if (!computed_) {
    engine_.Fail(kNotComputedError);
    r.end = FftEnd::kError;
    return r;
  }
  if (source_ == FftSource::kFormula) mode = FftMode::kOneFrame;  // Average and Continue need recorded data
  const int n = n_;
  const int half = n / 2;
  const bool imaginary = show == FftShow::kFourier && partToggle_ == -1;
  if (show == FftShow::kFourier) partToggle_ = static_cast<int16_t>(-partToggle_);
  r.status = show == FftShow::kPower         ? FftStatus::kPower
             : show == FftShow::kCorrelation ? FftStatus::kCorrelation
             : imaginary                     ? FftStatus::kFourierImaginary
                                             : FftStatus::kFourierReal;
  const bool continuous = show == FftShow::kPower && mode == FftMode::kContinue;
  if (continuous) rows3d_ = index3d_ = 0;
  columns3d_ = 0;
  std::fill(sumRe_.begin(), sumRe_.begin() + n, 0.0f);
  std::fill(sumIm_.begin(), sumIm_.begin() + n, 0.0f);

  // One frame's points: the first half (with frequency labels) or all N lags.
  auto points = [&](const std::vector<float>& values) {
    std::vector<ChartPoint> p;
    if (show == FftShow::kCorrelation) {
      for (int k = 0; k < n; ++k) showPoint(k + 1, k + 1, values[static_cast<size_t>(k)], p);
      return p;
    }
    for (int k = 0; k < half; ++k) {
      double label = std::nearbyint(k / static_cast<double>(t_));
      if (!std::isfinite(label)) label = k;  // a frame too short to scale: the index stands
      showPoint(k + 1, label, values[static_cast<size_t>(k)], p);
      if (continuous) {
        ++index3d_;
        samples_[static_cast<size_t>(index3d_)].imag(values[static_cast<size_t>(k)]);
      }
    }
    return p;
  };
  auto chosen = [&]() -> const std::vector<float>& { return imaginary ? im_ : re_; };

  int frames = 0;
  for (int m = 0;; ++m) {
    if (m > 0 && (mode == FftMode::kOneFrame || m * n + n > total_)) break;
    for (int k = 0; k < n; ++k) {
      re_[static_cast<size_t>(k)] = static_cast<float>(samples_[static_cast<size_t>(m * n + k + 1)].real());
      im_[static_cast<size_t>(k)] = 0;
    }
    bool ok = show == FftShow::kFourier ? spectrum_.Fourier(n, re_.data(), im_.data())
              : show == FftShow::kPower ? spectrum_.Power(n, re_.data(), im_.data())
                                        : spectrum_.Autocorrelation(n, re_.data(), im_.data());
    if (!ok) {
      engine_.BindToX = -1;
      r.end = FftEnd::kFault;
      return r;
    }
    ++frames;
    if (mode == FftMode::kAverage) {
      for (int k = 0; k < n; ++k) {
        sumRe_[static_cast<size_t>(k)] += re_[static_cast<size_t>(k)];
        sumIm_[static_cast<size_t>(k)] += im_[static_cast<size_t>(k)];
      }
    } else {
      r.points = points(chosen());
      if (continuous) {
        ++rows3d_;
        columns3d_ = half;
      }
      if (mode == FftMode::kContinue) {
        if (frame) frame(r.points);
        engine_.host().progress(m + 1, total_ / n);
        if (StopRequestedAtCheckpoint(engine_)) {
          r.end = FftEnd::kStopped;
          return r;
        }
      }
    }
  }
  if (mode == FftMode::kAverage) {
    for (int k = 0; k < n; ++k) {
      re_[static_cast<size_t>(k)] = sumRe_[static_cast<size_t>(k)] / static_cast<float>(frames);
      im_[static_cast<size_t>(k)] = sumIm_[static_cast<size_t>(k)] / static_cast<float>(frames);
    }
    r.points = points(chosen());
  }
  r.show3D = continuous;
  r.end = FftEnd::kDone;
  return r;
}

std::vector<std::vector<float>> FrequencyAnalysis::continuousMatrix() const {
  std::vector<std::vector<float>> m;
  if (rows3d_ == 0 || columns3d_ == 0) return m;
  float largest = 0;
  for (int i = 1; i <= index3d_; ++i) largest = std::max(largest, static_cast<float>(samples_[static_cast<size_t>(i)].imag()));
  largest *= 1.1f;
  m.assign(static_cast<size_t>(rows3d_), std::vector<float>(static_cast<size_t>(columns3d_), 0.0f));
  if (!(largest > 0)) return m;  // a silent signal: every point at 0 %
  for (int f = 0; f < rows3d_; ++f) {
    for (int p = 0; p < columns3d_; ++p) {
      const size_t i = static_cast<size_t>(f * columns3d_ + p + 1);
      m[static_cast<size_t>(f)][static_cast<size_t>(p)] = static_cast<float>(samples_[i].imag()) * 100 / largest;
    }
  }
  return m;
}

}  // namespace merida

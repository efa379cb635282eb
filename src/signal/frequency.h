// The frequency analysis window's logic: a formula or the recorded data sampled into frames
// of N points, shown as Fourier coefficients, power spectra or autocorrelations.
#pragma once

#include <complex>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/spectrum.h"
#include "engine/engine.h"
#include "graph/graph_plot.h"
#include "main/app_state.h"

namespace merida {

enum class FftSource : int16_t { kFormula = 0, kWave = 1, kMerida = 2 };
enum class FftMode : int16_t { kOneFrame = 0, kAverage = 1, kContinue = 2 };
enum class FftShow { kFourier, kPower, kCorrelation };

// The status line's texts.
enum class FftStatus { kNone, kCalculating, kFinished, kFourierReal, kFourierImaginary, kPower, kCorrelation };
const char* FftStatusText(FftStatus status, bool japanese);

// N from the Num box: rounded to a power of two in the logarithmic domain (halves to even)
// and capped at 1024; nullopt when the box is not a number of at least 1.
std::optional<int> FrameLength(std::string_view numBox);

struct FftBoxes {
  std::string from;  // Text1
  std::string to;    // Text2
  std::string num;   // Text3
};

enum class FftEnd {
  kDone,
  kSilent,   // nothing happens (a bad Num box, the range reversed, no data loaded)
  kError,    // the engine has shown its message
  kFault,    // a run-time failure during sampling
  kStopped,  // the window was closed
};

struct FftGoResult {
  FftEnd end = FftEnd::kSilent;
  std::optional<std::string> numBox;  // the N used, written back to Text3
};

struct FftDisplayResult {
  FftEnd end = FftEnd::kSilent;
  FftStatus status = FftStatus::kNone;
  std::vector<ChartPoint> points;  // the last frame shown (label, value)
  bool show3D = false;             // Power in Continue mode: the 3D button appears
};

class FrequencyAnalysis {
 public:
  static constexpr int kBufferSize = 5001;

  FrequencyAnalysis(Engine& engine, AppState& state);
  // A copy of `from`'s frames that computes on `engine` and `state` (a job's own).
  FrequencyAnalysis(Engine& engine, AppState& state, const FrequencyAnalysis& from);
  // Takes the frames a job's copy computed.
  void takeResultsFrom(const FrequencyAnalysis& job) { copyFrames(job); }

  // Go: samples the formula (source 0) or copies the recorded data (sources 1 and 2).
  FftGoResult go(std::string_view formula, const FftBoxes& boxes, FftSource source);

  // Fourier, Power or Self Corr over the frames the mode takes. Continue mode hands every
  // frame's points to `frame` as it is shown (the window redraws and lets events run).
  FftDisplayResult display(FftShow show, FftMode mode,
                           const std::function<void(const std::vector<ChartPoint>&)>& frame = {});

  bool computed() const { return computed_; }
  int frameLength() const { return n_; }
  float frameDuration() const { return t_; }
  FftSource source() const { return source_; }

  // The time-continuous table of the last Power in Continue mode, in percent of 1.1 times
  // its largest value: one row per frame, N/2 columns. Empty when there is none.
  std::vector<std::vector<float>> continuousMatrix() const;

 private:
  void showPoint(int k, double label, float value, std::vector<ChartPoint>& points);
  void copyFrames(const FrequencyAnalysis& from);

  Engine& engine_;
  AppState& state_;
  Spectrum spectrum_;
  std::vector<std::complex<double>> samples_;
  FftSource source_ = FftSource::kFormula;
  bool computed_ = false;
  int n_ = 128;
  float t_ = 1;
  int total_ = 0;
  int16_t partToggle_ = 1;
  int rows3d_ = 0, columns3d_ = 0, index3d_ = 0;
  std::vector<float> re_, im_, sumRe_, sumIm_;  // one frame and the averages: no allocation per frame
};

}  // namespace merida

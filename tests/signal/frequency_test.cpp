// The frequency analysis: N from the box, Go on a formula and on recorded data, frames,
// averages, labels, the Fourier toggle, the record table and the time-continuous table.
#include "signal/frequency.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "test_support.h"

namespace merida {
namespace {

class FrequencyTest : public ::testing::Test {
 protected:
  FrequencyTest() : engine(host), fft(engine, state) { engine.ResetEngine(); }
  // WAVE data as the loader leaves it: `count` samples of a 440 Hz tone at 11025 Hz.
  void loadWave(int count = 5000) {
    RecordFunctionTable& t = state.Records;
    for (int i = 1; i <= count; ++i) t.values[i][0] = static_cast<float>(std::round(100 * std::sin(2 * M_PI * 440 * (i - 1) / 11025.0)));
    t.count = static_cast<int16_t>(count);
    t.kind = WaveData;
    t.sampleRate = 11025;
    t.rangeStart = 0;
    t.rangeEnd = static_cast<float>(count);
  }
  test::RecordingHost host;
  Engine engine;
  AppState state;
  FrequencyAnalysis fft;
};

TEST_F(FrequencyTest, FrameLengthIsAPowerOfTwoInTheLogDomain) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"100", 128}, {"90", 64}, {"3000", 1024}, {"1500", 1024}, {"1", 1},       {"3", 4},
      {"1.5", 2},   {"0", {}},  {"-8", {}},     {"abc", {}},    {"0.4", {}},    {"1E3", 1024}};
  for (auto [box, n] : cases) EXPECT_EQ(FrameLength(box), n) << box;
}

TEST_F(FrequencyTest, AFormulaOverOneSecondGivesOneHertzLabels) {
  FftGoResult go = fft.go("sin(2*PI*5*x)", {"0", "1", "100"}, FftSource::kFormula);
  ASSERT_EQ(go.end, FftEnd::kDone);
  EXPECT_EQ(go.numBox, "128");
  FftDisplayResult r = fft.display(FftShow::kPower, FftMode::kOneFrame);
  ASSERT_EQ(r.end, FftEnd::kDone);
  ASSERT_EQ(r.points.size(), 64u);
  for (int k = 0; k < 64; ++k) EXPECT_EQ(r.points[static_cast<size_t>(k)].x, k);
  auto peak = std::max_element(r.points.begin(), r.points.end(), [](auto& a, auto& b) { return a.y < b.y; });
  EXPECT_EQ(peak->x, 5);
  EXPECT_NEAR(peak->y, 0.25, 1e-4);  // (1/2)^2: half the amplitude at +5 Hz
  // Every displayed point is in the record table: label and value.
  EXPECT_EQ(state.Records.count, 64);
  EXPECT_EQ(state.Records.kind, ComputedData);
  EXPECT_EQ(state.Records.dimension, 2);
  EXPECT_EQ(state.Records.values[6][0], 5);
  EXPECT_FALSE(r.show3D);
}

TEST_F(FrequencyTest, FourierAlternatesRealAndImaginaryParts) {
  ASSERT_EQ(fft.go("sin(2*PI*5*x)", {"0", "1", "128"}, FftSource::kFormula).end, FftEnd::kDone);
  FftDisplayResult real = fft.display(FftShow::kFourier, FftMode::kOneFrame);
  FftDisplayResult imaginary = fft.display(FftShow::kFourier, FftMode::kOneFrame);
  EXPECT_EQ(real.status, FftStatus::kFourierReal);
  EXPECT_EQ(imaginary.status, FftStatus::kFourierImaginary);
  EXPECT_NEAR(real.points[5].y, 0, 1e-4);
  EXPECT_NEAR(imaginary.points[5].y, -0.5, 1e-4);
  EXPECT_EQ(fft.display(FftShow::kFourier, FftMode::kOneFrame).status, FftStatus::kFourierReal);
  EXPECT_STREQ(FftStatusText(FftStatus::kFourierImaginary, true), "ﾌｰﾘｴ係数(虚数)");
}

TEST_F(FrequencyTest, WaveDataAveragesWholeFramesWithSampleRateLabels) {
  loadWave();
  ASSERT_EQ(fft.go("", {"0", "1", "1024"}, FftSource::kWave).end, FftEnd::kDone);
  EXPECT_FLOAT_EQ(fft.frameDuration(), 1024.0f / 11025);
  EXPECT_EQ(state.Records.kind, ComputedData);
  FftDisplayResult r = fft.display(FftShow::kPower, FftMode::kAverage);
  ASSERT_EQ(r.end, FftEnd::kDone);
  const double labels[] = {0, 11, 22, 32, 43};
  for (int k = 0; k < 5; ++k) EXPECT_EQ(r.points[static_cast<size_t>(k)].x, labels[k]);
  // The average of the four whole frames (samples 1 to 4096) peaks at 440 Hz's bin.
  auto peak = std::max_element(r.points.begin(), r.points.end(), [](auto& a, auto& b) { return a.y < b.y; });
  EXPECT_NEAR(peak->x, 440, 11);
}

TEST_F(FrequencyTest, ContinuePowerPlaysEachFrameAndBuildsThePercentTable) {
  loadWave();
  ASSERT_EQ(fft.go("", {"0", "1", "1024"}, FftSource::kWave).end, FftEnd::kDone);
  int frames = 0;
  FftDisplayResult r = fft.display(FftShow::kPower, FftMode::kContinue, [&](const std::vector<ChartPoint>& p) {
    ++frames;
    EXPECT_EQ(p.size(), 512u);
  });
  ASSERT_EQ(r.end, FftEnd::kDone);
  EXPECT_EQ(frames, 4);
  EXPECT_TRUE(r.show3D);
  std::vector<std::vector<float>> m = fft.continuousMatrix();
  ASSERT_EQ(m.size(), 4u);
  ASSERT_EQ(m[0].size(), 512u);
  float largest = 0;
  for (auto& row : m) largest = std::max(largest, *std::max_element(row.begin(), row.end()));
  EXPECT_NEAR(largest, 100 / 1.1, 1e-3);
  // Any other display hides the 3D button.
  EXPECT_FALSE(fft.display(FftShow::kCorrelation, FftMode::kContinue).show3D);
}

TEST_F(FrequencyTest, RefusalsAndErrors) {
  test::RecordingHost& h = host;
  EXPECT_EQ(fft.display(FftShow::kPower, FftMode::kOneFrame).end, FftEnd::kError);
  EXPECT_EQ(h.errors, std::vector<int>{50});
  h.errors.clear();
  EXPECT_EQ(fft.go("x*y", {"0", "1", "128"}, FftSource::kFormula).end, FftEnd::kError);
  EXPECT_EQ(h.errors, std::vector<int>{24});
  h.errors.clear();
  EXPECT_EQ(fft.go("x", {"1", "1", "128"}, FftSource::kFormula).end, FftEnd::kSilent);
  EXPECT_EQ(fft.go("x", {"0", "1", "0"}, FftSource::kFormula).end, FftEnd::kSilent);
  EXPECT_FALSE(fft.computed());
  state.Records.kind = NoData;
  EXPECT_EQ(fft.go("", {"0", "1", "128"}, FftSource::kWave).end, FftEnd::kSilent);
  EXPECT_TRUE(h.errors.empty());
  // A second Go on the same loaded data: the table is no longer WAVE data.
  loadWave();
  ASSERT_EQ(fft.go("", {"0", "1", "128"}, FftSource::kWave).end, FftEnd::kDone);
  EXPECT_EQ(fft.go("", {"0", "1", "128"}, FftSource::kWave).end, FftEnd::kError);
  EXPECT_EQ(h.errors, std::vector<int>{40});
  EXPECT_FALSE(fft.computed());
}

TEST_F(FrequencyTest, SelfCorrelationLabelsAreLags) {
  ASSERT_EQ(fft.go("sin(2*PI*4*x)", {"0", "1", "64"}, FftSource::kFormula).end, FftEnd::kDone);
  FftDisplayResult r = fft.display(FftShow::kCorrelation, FftMode::kOneFrame);
  ASSERT_EQ(r.points.size(), 64u);
  EXPECT_EQ(r.points[0].x, 1);
  EXPECT_EQ(r.points[63].x, 64);
  EXPECT_NEAR(r.points[0].y, 0.5, 1e-4);   // the mean power of a unit sine
  EXPECT_NEAR(r.points[8].y, -0.5, 1e-4);  // half a period later
}

}  // namespace
}  // namespace merida

// The spectrum component against direct sums; the frequency analysis: N from the box, Go on a
// formula and on recorded data, frames, averages, labels, the Fourier toggle, the record table
// and the time-continuous table.
#include "signal/frequency.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <random>

#include "controls/spectrum.h"
#include "test_support.h"

namespace merida {
namespace {

constexpr double kPi = 3.14159265358979323846;

std::vector<std::complex<double>> Dft(const std::vector<float>& x) {
  const size_t n = x.size();
  std::vector<std::complex<double>> out(n);
  for (size_t k = 0; k < n; ++k) {
    for (size_t j = 0; j < n; ++j) out[k] += double(x[j]) * std::polar(1.0, -2 * kPi * double(k * j) / double(n));
    out[k] /= double(n);
  }
  return out;
}

TEST(SpectrumTest, AgreesWithDirectSumsAtEverySizeAndLeavesArraysOfUnusableSizesAlone) {
  Spectrum s;
  std::mt19937 g(3);
  std::uniform_real_distribution<float> u(-1, 1);
  for (int n : {1, 2, 8, 64, 1024, 8}) {  // 8 twice: a reused plan gives the same answer
    std::vector<float> x(static_cast<size_t>(n));
    for (float& v : x) v = u(g);
    const std::vector<std::complex<double>> want = Dft(x);
    const double tol = 1e-5 * std::sqrt(double(n));
    std::vector<float> re[3] = {x, x, x}, im[3];
    for (auto& v : im) v.assign(x.size(), 0.0f);
    ASSERT_TRUE(s.Fourier(n, re[0].data(), im[0].data()) && s.Power(n, re[1].data(), im[1].data()) &&
                s.Autocorrelation(n, re[2].data(), im[2].data()));
    for (int k = 0; k < n; ++k) {
      double r = 0;  // the circular autocorrelation at lag k
      for (int j = 0; j < n; ++j) r += double(x[j]) * x[(j + k) % n];
      EXPECT_NEAR(re[0][k], want[k].real(), tol) << n << " " << k;
      EXPECT_NEAR(im[0][k], want[k].imag(), tol) << n << " " << k;
      EXPECT_NEAR(re[1][k], std::norm(want[k]), tol) << n << " " << k;
      EXPECT_NEAR(re[2][k], r / n, tol) << n << " " << k;
      EXPECT_EQ(im[2][k], 0.0f);
    }
  }
  for (int n : {0, -4, 3, 100, 2048}) {
    float re[4] = {1, 2, 3, 4}, im[4] = {0, 0, 0, 0};
    const bool done[] = {s.Fourier(n, re, im), s.Power(n, re, im), s.Autocorrelation(n, re, im)};
    EXPECT_EQ(std::tuple(done[0], done[1], done[2], re[2]), std::tuple(false, false, false, 3.0f)) << n;
  }
}

class FrequencyTest : public test::EngineTest {
 protected:
  // WAVE data as the loader leaves it: 5000 samples of a 440 Hz tone at 11025 Hz.
  void loadWave() {
    RecordFunctionTable& t = state.Records;
    for (int i = 1; i <= 5000; ++i) t.values[i][0] = std::round(100 * std::sin(2 * M_PI * 440 * (i - 1) / 11025.0));
    t.count = 5000;
    t.kind = WaveData;
    t.sampleRate = 11025;
    t.rangeStart = 0;
    t.rangeEnd = 5000;
  }
  FrequencyAnalysis fft{engine, state};
};

auto Peak(const std::vector<ChartPoint>& points) {
  return *std::max_element(points.begin(), points.end(), [](auto& a, auto& b) { return a.y < b.y; });
}

TEST_F(FrequencyTest, FrameLengthIsAPowerOfTwoInTheLogDomain) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"100", 128}, {"90", 64}, {"3000", 1024}, {"1500", 1024}, {"1", 1},    {"3", 4},
      {"1.5", 2},   {"0", {}},  {"-8", {}},     {"abc", {}},    {"0.4", {}}, {"1E3", 1024}};
  for (auto [box, n] : cases) EXPECT_EQ(FrameLength(box), n) << box;
}

TEST_F(FrequencyTest, AFormulaOverOneSecondGivesOneHertzLabels) {
  FftGoResult go = fft.go("sin(2*PI*5*x)", {"0", "1", "100"}, FftSource::kFormula);
  EXPECT_EQ(std::tuple(go.end, go.numBox), std::tuple(FftEnd::kDone, "128"));
  FftDisplayResult r = fft.display(FftShow::kPower, FftMode::kOneFrame);
  ASSERT_EQ(r.points.size(), 64u);
  for (int k = 0; k < 64; ++k) EXPECT_EQ(r.points[static_cast<size_t>(k)].x, k);
  EXPECT_EQ(Peak(r.points).x, 5);
  EXPECT_NEAR(Peak(r.points).y, 0.25, 1e-4);  // (1/2)^2: half the amplitude at +5 Hz
  EXPECT_FALSE(r.show3D);
  // Every displayed point is in the record table: label and value.
  const RecordFunctionTable& t = state.Records;
  EXPECT_EQ(std::tuple(t.count, t.kind, t.dimension, t.values[6][0]), std::tuple(64, ComputedData, 2, 5.0f));
  // Fourier alternates real and imaginary parts.
  FftDisplayResult real = fft.display(FftShow::kFourier, FftMode::kOneFrame);
  FftDisplayResult imaginary = fft.display(FftShow::kFourier, FftMode::kOneFrame);
  EXPECT_EQ(std::tuple(real.status, imaginary.status),
            std::tuple(FftStatus::kFourierReal, FftStatus::kFourierImaginary));
  EXPECT_NEAR(real.points[5].y, 0, 1e-4);
  EXPECT_NEAR(imaginary.points[5].y, -0.5, 1e-4);
  EXPECT_EQ(fft.display(FftShow::kFourier, FftMode::kOneFrame).status, FftStatus::kFourierReal);
  EXPECT_STREQ(FftStatusText(FftStatus::kFourierImaginary, true), "ﾌｰﾘｴ係数(虚数)");
  // Self-correlation labels are lags.
  ASSERT_EQ(fft.go("sin(2*PI*4*x)", {"0", "1", "64"}, FftSource::kFormula).end, FftEnd::kDone);
  r = fft.display(FftShow::kCorrelation, FftMode::kOneFrame);
  ASSERT_EQ(r.points.size(), 64u);
  EXPECT_EQ(r.points[0].x * 100 + r.points[63].x, 164);
  EXPECT_NEAR(r.points[0].y, 0.5, 1e-4);   // the mean power of a unit sine
  EXPECT_NEAR(r.points[8].y, -0.5, 1e-4);  // half a period later
}

TEST_F(FrequencyTest, WaveDataAveragesWholeFramesOrPlaysEachWithSampleRateLabels) {
  loadWave();
  ASSERT_EQ(fft.go("", {"0", "1", "1024"}, FftSource::kWave).end, FftEnd::kDone);
  EXPECT_EQ(std::tuple(fft.frameDuration(), state.Records.kind), std::tuple(1024.0f / 11025, ComputedData));
  FftDisplayResult r = fft.display(FftShow::kPower, FftMode::kAverage);
  for (int k = 0; k < 5; ++k) EXPECT_EQ(r.points[static_cast<size_t>(k)].x, (std::array{0, 11, 22, 32, 43}[k]));
  // The average of the four whole frames (samples 1 to 4096) peaks at 440 Hz's bin.
  EXPECT_NEAR(Peak(r.points).x, 440, 11);
  int frames = 0;
  r = fft.display(FftShow::kPower, FftMode::kContinue, [&](const std::vector<ChartPoint>& p) {
    ++frames;
    EXPECT_EQ(p.size(), 512u);
  });
  EXPECT_EQ(std::tuple(r.end, frames, r.show3D), std::tuple(FftEnd::kDone, 4, true));
  std::vector<std::vector<float>> m = fft.continuousMatrix();
  ASSERT_TRUE(m.size() == 4 && m[0].size() == 512) << m.size();
  float largest = 0;
  for (auto& row : m) largest = std::max(largest, *std::max_element(row.begin(), row.end()));
  EXPECT_NEAR(largest, 100 / 1.1, 1e-3);  // the percent table
  EXPECT_FALSE(fft.display(FftShow::kCorrelation, FftMode::kContinue).show3D) << "any other display hides 3D";
}

TEST_F(FrequencyTest, RefusalsAndErrors) {
  EXPECT_EQ(fft.display(FftShow::kPower, FftMode::kOneFrame).end, FftEnd::kError);
  EXPECT_EQ(fft.go("x*y", {"0", "1", "128"}, FftSource::kFormula).end, FftEnd::kError);
  EXPECT_EQ(host.errors, (std::vector<int>{50, 24}));
  EXPECT_EQ(fft.go("x", {"1", "1", "128"}, FftSource::kFormula).end, FftEnd::kSilent);
  EXPECT_EQ(fft.go("x", {"0", "1", "0"}, FftSource::kFormula).end, FftEnd::kSilent);
  state.Records.kind = NoData;
  EXPECT_EQ(fft.go("", {"0", "1", "128"}, FftSource::kWave).end, FftEnd::kSilent);
  EXPECT_EQ(std::tuple(host.errors.size(), fft.computed()), std::tuple(2u, false));
  // A second Go on the same loaded data: the table is no longer WAVE data.
  loadWave();
  ASSERT_EQ(fft.go("", {"0", "1", "128"}, FftSource::kWave).end, FftEnd::kDone);
  EXPECT_EQ(fft.go("", {"0", "1", "128"}, FftSource::kWave).end, FftEnd::kError);
  EXPECT_EQ(std::tuple(host.errors.back(), fft.computed()), std::tuple(40, false));
}

}  // namespace
}  // namespace merida

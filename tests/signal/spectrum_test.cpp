// The spectrum component against direct sums: the sign and scaling of the transform, the
// power, the circular autocorrelation; unusable N; plans reused across sizes.
#include "controls/spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <vector>

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

TEST(SpectrumTest, AgreesWithDirectSumsAtEverySize) {
  Spectrum s;
  std::mt19937 g(3);
  std::uniform_real_distribution<float> u(-1, 1);
  for (int n : {1, 2, 8, 64, 1024, 8}) {  // 8 twice: a reused plan gives the same answer
    std::vector<float> x(static_cast<size_t>(n));
    for (float& v : x) v = u(g);
    const std::vector<std::complex<double>> want = Dft(x);
    const double tol = 1e-5 * std::sqrt(double(n));

    std::vector<float> re = x, im(x.size(), 0.0f);
    ASSERT_TRUE(s.Fourier(n, re.data(), im.data()));
    for (int k = 0; k < n; ++k) {
      EXPECT_NEAR(re[k], want[k].real(), tol) << n << " " << k;
      EXPECT_NEAR(im[k], want[k].imag(), tol) << n << " " << k;
    }
    re = x;
    std::fill(im.begin(), im.end(), 0.0f);
    ASSERT_TRUE(s.Power(n, re.data(), im.data()));
    for (int k = 0; k < n; ++k) EXPECT_NEAR(re[k], std::norm(want[k]), tol) << n << " " << k;

    re = x;
    std::fill(im.begin(), im.end(), 0.0f);
    ASSERT_TRUE(s.Autocorrelation(n, re.data(), im.data()));
    for (int m = 0; m < n; ++m) {
      double r = 0;
      for (int j = 0; j < n; ++j) r += double(x[j]) * x[(j + m) % n];
      EXPECT_NEAR(re[m], r / n, tol) << n << " " << m;
      EXPECT_EQ(im[m], 0.0f);
    }
  }
}

TEST(SpectrumTest, UnusableSizesLeaveTheArraysAlone) {
  Spectrum s;
  for (int n : {0, -4, 3, 100, 2048}) {
    float re[4] = {1, 2, 3, 4}, im[4] = {0, 0, 0, 0};
    EXPECT_FALSE(s.Fourier(n, re, im)) << n;
    EXPECT_FALSE(s.Power(n, re, im)) << n;
    EXPECT_FALSE(s.Autocorrelation(n, re, im)) << n;
    EXPECT_EQ(re[2], 3);
  }
}

}  // namespace
}  // namespace merida

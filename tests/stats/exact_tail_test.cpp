// The exact p-values and critical values against tails integrated here from the densities.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "stats/hypothesis_test.h"

namespace merida {
namespace {

// Simpson's rule over 0..b after x = u², which keeps the densities with a pole at zero finite
// (the integrand's value at zero is taken as its limit).
double MassBelow(const std::function<double(double)>& density, double b) {
  if (b <= 0) return 0;
  const int n = 20000;
  const double top = std::sqrt(b), h = top / n;
  auto g = [&](double u) {
    u = std::max(u, h * 1e-9);
    return density(u * u) * 2 * u;
  };
  double sum = g(0) + g(top);
  for (int i = 1; i < n; ++i) sum += g(i * h) * (i % 2 ? 4 : 2);
  return sum * h / 3;
}

double TDensity(double nu, double x) {
  return std::exp(std::lgamma((nu + 1) / 2) - std::lgamma(nu / 2) - 0.5 * std::log(nu * M_PI) -
                  (nu + 1) / 2 * std::log1p(x * x / nu));
}
double ChiDensity(double k, double x) {
  return std::exp((k / 2 - 1) * std::log(x) - x / 2 - k / 2 * std::log(2.0) - std::lgamma(k / 2));
}
double FDensity(double a, double b, double x) {
  const double logBeta = std::lgamma(a / 2) + std::lgamma(b / 2) - std::lgamma((a + b) / 2);
  return std::exp(0.5 * (a * std::log(a * x) + b * std::log(b) - (a + b) * std::log(a * x + b)) - std::log(x) - logBeta);
}

// Two-sided for t: the density is even, so the tail beyond |t| on both sides is 1 - 2 × mass(0..t).
double TwoSidedT(double nu, double t) {
  const double half = MassBelow([nu](double x) { return TDensity(nu, std::sqrt(x)) / (2 * std::sqrt(x)); }, t * t);
  return 1 - 2 * half;
}

TEST(ExactTail, PValuesMatchTheIntegratedDensities) {
  const struct {
    char kind;       // t, c(hi-square), F
    long long a, b;  // the freedoms
    double statistic;
  } cases[] = {
      {'t', 1, 0, 3.0}, {'t', 2, 0, 0.8}, {'t', 9, 0, 2.262}, {'t', 9, 0, 0.1}, {'t', 35, 0, 2.0315},
      {'t', 150, 0, 1.5}, {'t', 500, 0, 2.6}, {'t', 29, 0, 0}, {'c', 1, 0, 3.84}, {'c', 2, 0, 1.0}, {'c', 10, 0, 18.31},
      {'c', 45, 0, 61.65}, {'c', 120, 0, 124.3}, {'c', 150, 0, 124.3}, {'F', 1, 1, 161.4}, {'F', 10, 20, 2.35},
      {'F', 60, 200, 1.0}, {'F', 2, 30, 0.5}, {'F', 5, 5, 5.05}, {'F', 24, 120, 1.61}, {'F', 3, 8, 12},
      {'F', 12, 12, 1.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.kind << " " << c.a << "," << c.b << " at " << c.statistic);
    auto tail = [&c](double s) {
      if (c.kind == 't') return TwoSidedT(c.a, s);
      return 1 - MassBelow([&c](double x) { return c.kind == 'c' ? ChiDensity(c.a, x) : FDensity(c.a, c.b, x); }, s);
    };
    const std::optional<ExactTail> e = c.kind == 't'   ? ExactT(5, c.statistic, c.a)
                                       : c.kind == 'c' ? ExactChiSquare(5, c.statistic, c.a)
                                                       : ExactF(5, c.statistic, c.a, c.b);
    ASSERT_TRUE(e);
    EXPECT_NEAR(e->pValue, tail(c.statistic), 2e-6);
    // At the exact critical value the tail is the danger rate itself.
    EXPECT_NEAR(tail(e->critical), 0.05, 2e-6);
  }
}

TEST(ExactTail, KnownCriticalValuesAndLimits) {
  // The values the tables round or approximate.
  EXPECT_NEAR(ExactT(5, 1, kInfiniteFreedom)->critical, 1.959964, 1e-6);
  EXPECT_NEAR(ExactChiSquare(5, 1, 150)->critical, 179.5806, 1e-4);
  EXPECT_NEAR(ExactF(1, 1, 1, 1)->critical, 4052.181, 1e-2);
  // No freedom or a statistic that is not a number: nothing to show.
  EXPECT_FALSE(ExactT(5, 1, 0) || ExactF(5, 1, 0, 3) || ExactChiSquare(5, std::nan(""), 3));
  // Far in the tail the p-value is tiny but not zero, and never above 1 near zero.
  EXPECT_GT(ExactChiSquare(5, 1000, 3)->pValue, 0);
  EXPECT_NEAR(ExactT(5, 0, 5)->pValue, 1, 1e-12);
}

}  // namespace
}  // namespace merida

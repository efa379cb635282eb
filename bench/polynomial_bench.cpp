// Seek on a polynomial of degree 50 (the largest the tools take), built from known roots,
// against the roots of its companion matrix by Eigen's general eigensolver.
#include <benchmark/benchmark.h>

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <vector>

#include "algebra/polynomial.h"

namespace {

using namespace merida;

// 20 real roots across [-3, 3] and 15 complex pairs: coefficients lowest power first.
std::vector<double> Coefficients(std::vector<double>& real) {
  std::vector<double> c{1};
  auto multiply = [&](std::vector<double> f) {
    std::vector<double> next(c.size() + f.size() - 1, 0.0);
    for (size_t a = 0; a < c.size(); ++a)
      for (size_t b = 0; b < f.size(); ++b) next[a + b] += c[a] * f[b];
    c = next;
  };
  for (int k = 0; k < 20; ++k) {
    real.push_back(-2.95 + 0.3 * k);
    multiply({-real.back(), 1});
  }
  for (int k = 0; k < 15; ++k) {
    double angle = 0.2 + 0.18 * k, radius = 1.5 + 0.03 * k;
    multiply({radius * radius, -2 * radius * std::cos(angle), 1});
  }
  return c;
}

// Plain digits or an unsigned exponent: a signed one would split the term.
std::string Formula(const std::vector<double>& c) {
  std::string f;
  for (int i = static_cast<int>(c.size()) - 1; i >= 0; --i) {
    char buf[80];
    if (std::fabs(c[i]) >= 1e15) std::snprintf(buf, sizeof buf, "%+.17E", c[i]);
    else std::snprintf(buf, sizeof buf, "%+.20f", c[i]);
    std::string term = buf;
    if (auto e = term.find("E+"); e != std::string::npos) term.erase(e + 1, 1);
    f += term + (i > 0 ? "*x^" + std::to_string(i) : "");
  }
  return f;
}

void BM_SeekDegree50(benchmark::State& st) {
  std::vector<double> real;
  const std::string formula = Formula(Coefficients(real));
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  PolynomialTools tools(engine);
  tools.seedRandom(1);
  double worst = 0;
  size_t listed = 0;
  for (auto _ : st) {
    PolyResult r = tools.seek(formula, "1E-05", 1e-7, false);
    if (r.end != PolyEnd::kDone) {
      st.SkipWithError("Seek did not finish");
      return;
    }
    listed = r.lines->size();
    std::vector<double> found;
    for (size_t k = 0; k < listed; ++k) {
      if ((*r.lines)[k] != "x= 虚根") found.push_back(r.rootX[k]);
    }
    std::sort(found.begin(), found.end());
    worst = found.size() == real.size() ? 0 : INFINITY;
    for (size_t k = 0; k < found.size() && k < real.size(); ++k) worst = std::max(worst, std::fabs(found[k] - real[k]));
  }
  st.counters["roots"] = static_cast<double>(listed);
  st.counters["worst_real_error"] = worst;
}
BENCHMARK(BM_SeekDegree50)->Unit(benchmark::kMillisecond);

void BM_CompanionEigenDegree50(benchmark::State& st) {
  std::vector<double> real;
  const std::vector<double> c = Coefficients(real);
  const int n = static_cast<int>(c.size()) - 1;
  for (auto _ : st) {
    Eigen::MatrixXd m = Eigen::MatrixXd::Zero(n, n);
    for (int i = 1; i < n; ++i) m(i, i - 1) = 1;
    for (int i = 0; i < n; ++i) m(i, n - 1) = -c[i] / c[n];
    Eigen::EigenSolver<Eigen::MatrixXd> solver(m, false);
    benchmark::DoNotOptimize(solver.eigenvalues().data());
  }
}
BENCHMARK(BM_CompanionEigenDegree50)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

// Expand, Arrange, Seek and Factor: formats to the character, errors, the factoring state,
// and Seek on random polynomials built from known roots.
#include "algebra/polynomial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "test_support.h"

namespace merida {
namespace {

using Lines = std::vector<std::string>;

class PolynomialTest : public test::EngineTest {
 protected:
  PolynomialTest() : tools(engine) { tools.seedRandom(20261123); }
  PolyResult seek(const std::string& f, bool roundOn = false, double judge = 1e-7) {
    return tools.seek(f, "1E-05", judge, roundOn);
  }
  PolyResult factor(const char* root, bool coeff = false) { return tools.factor(root, "1E-05", 1e-7, coeff); }
  PolynomialTools tools;
};

TEST_F(PolynomialTest, ExpandAndArrangeWriteTheSecondFunction) {
  // Expand or Arrange, formula, the second function box ("" on an error), error.
  const bool E = true, A = false;
  const std::tuple<bool, const char*, const char*, int> cases[] = {
      {E, "(x+1)^2*(x-3)", "x^3-x^2-5*x-3", 0}, {E, "(2*x-1)*(x+1)", "2*x^2+x-1", 0},
      {E, "  f(x)=(x-1)*(x+1)", "x^2-1", 0},    {E, "(x-.5)^3", "x^3-1.5*x^2+.75*x-.125", 0},
      {E, "(t+2)*(t-2)", "t^2-4", 0},           {E, "(x^25)*(x^25)", "x^50", 0},
      // No bracket, a bracket never closed, a power without digits, a sum instead of a product.
      {E, "x^2+1", "", 22}, {E, "(x+1", "", 22}, {E, "(x+1)^", "", 22}, {E, "(x+1)+(x-1)", "", 22},
      {E, "(x+1)^0", "", 14}, {E, "(x+1)*(y+1)", "", 52}, {E, "(x^26)*(x^25)", "", 54}, {E, "(x^51)", "", 54},
      {A, "3+x^2-2*x+x^2", "2*x^2-2*x+3", 0},   {A, "x^3+1", "x^3+0*x^2+0*x+1", 0},
      {A, "3*x*x", "3*x+0", 0},                 {A, "-x^3-x", "-x^3+0*x^2-x+0", 0},  // a product of powers is one
      {A, "2*(x+1)", "2*x+2", 0},               {A, "x/4-.5", ".25*x-.5", 0},        // brackets keep their signs
      {A, "x^-2", "", 22}, {A, "x^0+1", "", 14}, {A, "x^51", "", 54}, {A, "x+y", "", 52}, {A, "x+", "", 22},
  };
  for (const auto& [expand, formula, text, error] : cases) {
    host.errors.clear();
    PolyResult r = expand ? tools.expand(formula) : tools.arrange(formula);
    const std::optional<std::string> box = error ? std::nullopt : std::optional<std::string>(text);
    EXPECT_EQ(std::tuple(r.end, r.secondFunction, engine.UnboundPolicy),
              std::tuple(error ? PolyEnd::kError : PolyEnd::kDone, box, -1)) << formula;
    EXPECT_EQ(host.errors, error ? std::vector<int>{error} : std::vector<int>{}) << formula;
  }
}

TEST_F(PolynomialTest, SeekListsRootsAndFactors) {
  const std::tuple<const char*, bool, Lines, const char*> cases[] = {
      {"x^2-2*x+1", false, {"x= 1 重根", "x= 1 重根"}, "(x^2-2*x+1)"}, {"x^2+1", false, {"x= 虚根", "x= 虚根"}, "(x^2+1)"},
      {"2*x^2-3*x+1", false, {"x= .5", "x= 1"}, "(2*x^2-3*x+1)"},
      {"x^3-1", true, {"x= 虚根", "x= 虚根", "x= 1"}, "(x^2+x+1)*(x-1)"},
      {"x^3-x^3+x-2", false, {"x= 2"}, "(x-2)"},  // a leading coefficient of zero is not a degree
  };
  for (const auto& [formula, roundOn, lines, factors] : cases) {
    PolyResult r = seek(formula, roundOn);
    EXPECT_EQ(std::tuple(r.lines.value_or(Lines{}), r.secondFunction.value_or("?"), r.rootX.size()),
              std::tuple(lines, factors, lines.size()));
  }
  for (const char* f : {"5", "x^3-x^3+7"}) EXPECT_EQ(seek(f).end, PolyEnd::kSilent) << f;
  EXPECT_EQ(tools.seek("x^2-1", "tol", 1e-7, false).end, PolyEnd::kSilent);
  EXPECT_TRUE(host.errors.empty());
}

// Builds prod (x - r) * prod (x^2 - 2 re x + |z|^2) and checks Seek lists every root once.
TEST_F(PolynomialTest, SeekFindsEveryRootOfRandomPolynomials) {
  std::mt19937_64 g(7);
  for (int degree : {5, 10, 20}) {
    for (int trial = 0; trial < 20; ++trial) {
      const int pairs = std::uniform_int_distribution<int>(0, degree / 4)(g);
      std::vector<double> grid, c{1};  // c: lowest power first
      for (int k = -12; k <= 12; ++k) grid.push_back(k * 0.4 + 0.1);
      std::shuffle(grid.begin(), grid.end(), g);
      std::vector<double> real(grid.begin(), grid.begin() + (degree - 2 * pairs));
      auto multiply = [&](std::vector<double> f) {
        std::vector<double> next(c.size() + f.size() - 1, 0.0);
        for (size_t a = 0; a < c.size(); ++a)
          for (size_t b = 0; b < f.size(); ++b) next[a + b] += c[a] * f[b];
        c = next;
      };
      for (double r : real) multiply({-r, 1});
      for (int k = 0; k < pairs; ++k) {
        double re = std::uniform_real_distribution<double>(-2, 2)(g);
        double im = std::uniform_real_distribution<double>(0.5, 2)(g);
        multiply({re * re + im * im, -2 * re, 1});
      }
      std::string formula;
      for (int i = degree; i >= 0; --i) {
        char buf[64];
        // Plain digits: a signed exponent would split the term. The constant is a bare number.
        std::snprintf(buf, sizeof buf, i ? "%+.20f*x^%d" : "%+.20f", c[i], i);
        formula += buf;
      }
      PolyResult r = seek(formula);
      ASSERT_EQ(r.lines.value_or(Lines{}).size(), static_cast<size_t>(degree)) << formula;
      std::vector<double> found;
      for (size_t k = 0; k < r.rootX.size(); ++k) {
        if ((*r.lines)[k] != "x= 虚根") found.push_back(r.rootX[k]);
        EXPECT_EQ((*r.lines)[k].find("重根"), std::string::npos) << formula;
      }
      std::sort(found.begin(), found.end());
      std::sort(real.begin(), real.end());
      ASSERT_EQ(found.size(), real.size()) << formula;
      for (size_t k = 0; k < real.size(); ++k) EXPECT_NEAR(found[k], real[k], 1e-6) << formula;
    }
  }
}

TEST_F(PolynomialTest, FactorPeelsOffOneRootPerPressUntilDegreeOne) {
  ASSERT_EQ(tools.arrange("x^3-6*x^2+11*x-6").end, PolyEnd::kDone);
  // 5 is no root: the state stays. At degree 1 nothing is left to divide.
  const std::tuple<const char*, PolyEnd, std::optional<std::string>> presses[] = {
      {"2", PolyEnd::kDone, "(x-2)*(x^2-4*x+3)"}, {"5", PolyEnd::kError, {}}, {"abc", PolyEnd::kSilent, {}},
      {"3", PolyEnd::kDone, "(x-2)*(x-3)*(x-1)"}, {"1", PolyEnd::kSilent, {}}};
  for (const auto& [box, end, text] : presses) {
    host.errors.clear();
    PolyResult r = factor(box);
    EXPECT_EQ(std::tuple(r.end, r.secondFunction, host.errors),
              std::tuple(end, text, end == PolyEnd::kError ? std::vector<int>{53} : std::vector<int>{})) << box;
  }
  tools.close();
  EXPECT_EQ(tools.workDegree(), 0);
}

TEST_F(PolynomialTest, FactorTextsForRootsAndMultipliers) {
  // Formula, the root divided by, Coefficient, the second function box.
  const std::tuple<const char*, const char*, bool, const char*> cases[] = {
      {"x^2-3*x+2", "2", false, "(x-2)*(x-1)"},       {"2*x^2-3*x+1", ".5", true, "(2*x-1)*(x-1)"},
      {"2*x^2-3*x+1", ".5", false, "(x-.5)*(2*x-2)"}, {"x^2+3*x", "0", false, "(x)*(x+3)"},
      {"x^2-4", "-2", false, "(x+2)*(x-2)"},          {"3*x^2-2*x", ".666666666666667", true, "(3*x-2)*(x)"},
  };
  for (const auto& [formula, root, coeff, text] : cases) {
    tools.close();
    ASSERT_EQ(tools.arrange(formula).end, PolyEnd::kDone);
    EXPECT_EQ(factor(root, coeff).secondFunction.value_or("?"), text) << formula << " / " << root;
  }
}

TEST_F(PolynomialTest, FactorWithAnEmptyBoxTakesEveryRealRootOfTheLastSeek) {
  ASSERT_EQ(seek("x^3-1", true).end, PolyEnd::kDone);
  EXPECT_EQ(factor("").secondFunction.value_or("?"), "(x-1)*(x^2+x+1)");
  std::vector<double> roots = seek("x^3-6*x^2+11*x-6", true).rootX;
  std::sort(roots.begin(), roots.end());
  EXPECT_EQ(roots, (std::vector<double>{1, 2, 3}));
  const std::string text = factor("").secondFunction.value_or("");
  EXPECT_EQ(std::count(text.begin(), text.end(), '('), 3) << text;
}

TEST_F(PolynomialTest, CoefficientsThatPrintAsOneAndSnappingToIntegers) {
  const double nearOne = 1.0000000000000002, belowOne = 0.99999999999999989;
  EXPECT_EQ(FactorListText("x", {{1, nearOne, 1}, {0, -belowOne, 2}}), "(x^2+x+1)*(-x+2)");
  const Polynomial p{"t", {0, -nearOne, belowOne}, 2};
  EXPECT_EQ(ArrangeText(p) + " " + ExpandText(p), "t^2-t+0 t^2-t");
  const std::tuple<double, double, double> snaps[] = {
      {2.000001, 1e-5, 2}, {-2.000001, 1e-5, -2}, {2.0001, 1e-5, 2.0001}, {0.5, 0.6, 0}, {1.5, 0.6, 2},
      {-0.000001, 1e-5, 0}, {40000.000001, 1e-5, 40000.000001}};  // beyond 16 bits: unchanged
  for (auto [v, tolerance, want] : snaps) EXPECT_EQ(SnapToInteger(v, tolerance), want) << v;
}

TEST_F(PolynomialTest, StopsFaultsAndBoundedIteration) {
  // A stop during extraction changes nothing.
  ASSERT_EQ(tools.arrange("x^2-1").end, PolyEnd::kDone);
  host.stopAt = host.checkpoints + 2;
  PolyResult r = tools.arrange("x^3+x^2+x+1");
  EXPECT_EQ(std::tuple(r.end, r.secondFunction, tools.polynomial().degree),
            std::tuple(PolyEnd::kStopped, std::nullopt, 2));
  // A judge value no step can meet: every start runs out, and Seek says so.
  r = seek("x^3-1", false, -1);
  EXPECT_EQ(std::tuple(r.end, r.lines), std::tuple(PolyEnd::kNoConvergence, std::nullopt));
  EXPECT_GE(host.checkpoints, PolynomialTools::kStarts * PolynomialTools::kIterationsPerStart);
  // Closing the window during the iteration ends it.
  host.stopAt = host.checkpoints + 50;
  EXPECT_EQ(seek("x^3-1", false, -1).end, PolyEnd::kStopped);
  EXPECT_EQ(host.checkpoints, host.stopAt);
  r = tools.expand("(1E200*x+1)*(1E200*x+1)");
  EXPECT_EQ(std::tuple(r.end, r.secondFunction), std::tuple(PolyEnd::kFault, std::nullopt));
}

}  // namespace
}  // namespace merida

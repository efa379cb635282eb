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

class PolynomialTest : public test::EngineTest {
 protected:
  PolynomialTest() : tools(engine) { tools.seedRandom(20261123); }
  PolyResult seek(const std::string& f, bool roundOn = false, double judge = 1e-7) {
    return tools.seek(f, "1E-05", judge, roundOn);
  }
  PolynomialTools tools;
};

struct TextCase {
  const char* formula;
  const char* text;  // the second-function box, or "" when an error is expected
  int error;         // 0 when none
};

class TextTest : public PolynomialTest, public ::testing::WithParamInterface<TextCase> {
 protected:
  void check(const PolyResult& r) {
    const TextCase& c = GetParam();
    EXPECT_EQ(r.end, c.error ? PolyEnd::kError : PolyEnd::kDone);
    EXPECT_EQ(host.errors, c.error ? std::vector<int>{c.error} : std::vector<int>{});
    EXPECT_EQ(r.secondFunction, c.error ? std::nullopt : std::optional<std::string>(c.text));
  }
};

class ExpandTest : public TextTest {};
TEST_P(ExpandTest, SecondFunctionBox) {
  check(tools.expand(GetParam().formula));
  EXPECT_EQ(engine.UnboundPolicy, -1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ExpandTest,
    ::testing::Values(TextCase{"(x+1)^2*(x-3)", "x^3-x^2-5*x-3", 0},
                      TextCase{"(2*x-1)*(x+1)", "2*x^2+x-1", 0},
                      TextCase{"  f(x)=(x-1)*(x+1)", "x^2-1", 0},
                      TextCase{"(x-.5)^3", "x^3-1.5*x^2+.75*x-.125", 0},
                      TextCase{"(t+2)*(t-2)", "t^2-4", 0},
                      TextCase{"(x^25)*(x^25)", "x^50", 0},
                      TextCase{"(x^50)", "x^50", 0},
                      TextCase{"x^2+1", "", 22},                 // no bracket
                      TextCase{"(x+1", "", 22},                  // bracket never closed
                      TextCase{"(x+1)^", "", 22},                // power without digits
                      TextCase{"(x+1)+(x-1)", "", 22},           // a sum, not a product
                      TextCase{"(x+1)^0", "", 14},
                      TextCase{"(x+1)*(y+1)", "", 52},
                      TextCase{"(x^26)*(x^25)", "", 54},
                      TextCase{"(x+1)^51", "", 54},
                      TextCase{"(x^51)", "", 54}));

class ArrangeTest : public TextTest {};
TEST_P(ArrangeTest, SecondFunctionBox) { check(tools.arrange(GetParam().formula)); }

INSTANTIATE_TEST_SUITE_P(
    Cases, ArrangeTest,
    ::testing::Values(TextCase{"3+x^2-2*x+x^2", "2*x^2-2*x+3", 0},
                      TextCase{"x^3+1", "x^3+0*x^2+0*x+1", 0},
                      TextCase{"3*x*x", "3*x+0", 0},             // a product of powers is one power
                      TextCase{"-x^3-x", "-x^3+0*x^2-x+0", 0},
                      TextCase{"2*(x+1)", "2*x+2", 0},           // brackets keep their signs
                      TextCase{"x/4-.5", ".25*x-.5", 0},
                      TextCase{"x^2*PI", "3.14159265358979*x^2+0*x+0", 0},
                      TextCase{"x^-2", "", 22},
                      TextCase{"x^0+1", "", 14},
                      TextCase{"x^51", "", 54},
                      TextCase{"x+y", "", 52},
                      TextCase{"x+", "", 22}));

struct SeekCase {
  const char* formula;
  bool roundOn;
  std::vector<std::string> lines;
  const char* factors;  // "" when any order of digits will do (only the lines are checked)
};

class SeekTest : public PolynomialTest, public ::testing::WithParamInterface<SeekCase> {};

TEST_P(SeekTest, ListAndFactors) {
  const SeekCase& c = GetParam();
  PolyResult r = seek(c.formula, c.roundOn);
  ASSERT_EQ(r.end, PolyEnd::kDone);
  EXPECT_EQ(r.lines.value_or(std::vector<std::string>{}), c.lines);
  if (*c.factors) {
    EXPECT_EQ(r.secondFunction.value_or("?"), c.factors);
  }
  EXPECT_EQ(r.rootX.size(), c.lines.size());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SeekTest,
    ::testing::Values(SeekCase{"x^2-2*x+1", false, {"x= 1 重根", "x= 1 重根"}, "(x^2-2*x+1)"},
                      SeekCase{"x^2+1", false, {"x= 虚根", "x= 虚根"}, "(x^2+1)"},
                      SeekCase{"x-4", false, {"x= 4"}, "(x-4)"},
                      SeekCase{"2*x^2-3*x+1", false, {"x= .5", "x= 1"}, "(2*x^2-3*x+1)"},
                      SeekCase{"x^3-6*x^2+11*x-6", true, {"x= 1", "x= 2", "x= 3"}, ""},
                      SeekCase{"x^3-1", true, {"x= 虚根", "x= 虚根", "x= 1"}, "(x^2+x+1)*(x-1)"}));

TEST_F(PolynomialTest, SeekFindsTheCubicsRootsInTheOrderItsFactorsCome) {
  PolyResult r = seek("x^3-6*x^2+11*x-6", true);
  ASSERT_EQ(r.end, PolyEnd::kDone);
  std::vector<double> sorted = r.rootX;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(sorted, (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(r.rootX.back(), 1 + 2 + 3 - r.rootX[0] - r.rootX[1]) << "the linear factor's root comes last";
  // Without Integer, the roots keep the digits Bairstow left.
  PolyResult raw = seek("x^3-6*x^2+11*x-6");
  for (double x : raw.rootX) EXPECT_NEAR(x, std::nearbyint(x), 1e-6);
}

TEST_F(PolynomialTest, SeekOfAConstantOrWithABadToleranceDoesNothing) {
  EXPECT_EQ(seek("5").end, PolyEnd::kSilent);
  EXPECT_EQ(seek("x^3-x^3+7").end, PolyEnd::kSilent);
  EXPECT_EQ(tools.seek("x^2-1", "tol", 1e-7, false).end, PolyEnd::kSilent);
  EXPECT_TRUE(host.errors.empty());
  // A leading coefficient of zero is not a degree: x^3-x^3+x-2 is linear.
  PolyResult r = seek("x^3-x^3+x-2");
  EXPECT_EQ(r.lines.value_or(std::vector<std::string>{}), std::vector<std::string>{"x= 2"});
}

// Builds prod (x - r) * prod (x^2 - 2 re x + |z|^2) and checks Seek lists every root once.
TEST_F(PolynomialTest, SeekFindsEveryRootOfRandomPolynomials) {
  std::mt19937_64 g(7);
  for (int degree : {5, 10, 20}) {
    for (int trial = 0; trial < 20; ++trial) {
      const int pairs = std::uniform_int_distribution<int>(0, degree / 4)(g);
      std::vector<double> real;
      std::vector<double> grid;
      for (int k = -12; k <= 12; ++k) grid.push_back(k * 0.4 + 0.1);
      std::shuffle(grid.begin(), grid.end(), g);
      real.assign(grid.begin(), grid.begin() + (degree - 2 * pairs));
      std::vector<double> c{1};  // lowest power first
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
        if (i == 0) std::snprintf(buf, sizeof buf, "%+.20f", c[i]);
        else std::snprintf(buf, sizeof buf, "%+.20f*x^%d", c[i], i);
        formula += buf;
      }
      PolyResult r = seek(formula);
      ASSERT_EQ(r.end, PolyEnd::kDone) << "degree " << degree << ": " << formula;
      const std::vector<std::string>& lines = *r.lines;
      ASSERT_EQ(lines.size(), static_cast<size_t>(degree));
      EXPECT_EQ(std::count(lines.begin(), lines.end(), "x= 虚根"), 2 * pairs) << formula;
      std::vector<double> found;
      for (size_t k = 0; k < lines.size(); ++k) {
        if (lines[k] != "x= 虚根") found.push_back(r.rootX[k]);
        EXPECT_EQ(lines[k].find("重根"), std::string::npos) << formula;
      }
      std::sort(found.begin(), found.end());
      std::sort(real.begin(), real.end());
      ASSERT_EQ(found.size(), real.size());
      for (size_t k = 0; k < real.size(); ++k) EXPECT_NEAR(found[k], real[k], 1e-6) << formula;
    }
  }
}

TEST_F(PolynomialTest, FactorPeelsOffOneRootPerPressUntilDegreeOne) {
  ASSERT_EQ(tools.arrange("x^3-6*x^2+11*x-6").end, PolyEnd::kDone);
  struct Press {
    const char* box;
    PolyEnd end;
    std::optional<std::string> text;
  };
  const Press presses[] = {
      {"2", PolyEnd::kDone, "(x-2)*(x^2-4*x+3)"},
      {"5", PolyEnd::kError, std::nullopt},  // not a root: the state stays
      {"abc", PolyEnd::kSilent, std::nullopt},
      {"3", PolyEnd::kDone, "(x-2)*(x-3)*(x-1)"},
      {"1", PolyEnd::kSilent, std::nullopt},  // degree 1: nothing left to divide
  };
  for (const Press& p : presses) {
    host.errors.clear();
    PolyResult r = tools.factor(p.box, "1E-05", 1e-7, false);
    EXPECT_EQ(r.end, p.end) << p.box;
    EXPECT_EQ(r.secondFunction, p.text) << p.box;
    EXPECT_EQ(host.errors, p.end == PolyEnd::kError ? std::vector<int>{53} : std::vector<int>{}) << p.box;
  }
  tools.close();
  EXPECT_EQ(tools.workDegree(), 0);
}

TEST_F(PolynomialTest, FactorTextsForRootsAndMultipliers) {
  struct Case {
    const char* formula;
    const char* root;
    bool coeff;
    const char* text;
  };
  const Case cases[] = {
      {"x^2-3*x+2", "2", false, "(x-2)*(x-1)"},
      {"2*x^2-3*x+1", ".5", true, "(2*x-1)*(x-1)"},
      {"2*x^2-3*x+1", ".5", false, "(x-.5)*(2*x-2)"},
      {"x^2+3*x", "0", false, "(x)*(x+3)"},
      {"x^2-4", "-2", false, "(x+2)*(x-2)"},
      {"3*x^2-2*x", ".666666666666667", true, "(3*x-2)*(x)"},
  };
  for (const Case& c : cases) {
    tools.close();
    ASSERT_EQ(tools.arrange(c.formula).end, PolyEnd::kDone);
    PolyResult r = tools.factor(c.root, "1E-05", 1e-7, c.coeff);
    EXPECT_EQ(r.secondFunction.value_or("?"), c.text) << c.formula << " / " << c.root;
  }
}

TEST_F(PolynomialTest, FactorWithAnEmptyBoxTakesEveryRealRootOfTheLastSeek) {
  ASSERT_EQ(seek("x^3-1", true).end, PolyEnd::kDone);
  PolyResult r = tools.factor("", "1E-05", 1e-7, false);
  EXPECT_EQ(r.end, PolyEnd::kDone);
  EXPECT_EQ(r.secondFunction.value_or("?"), "(x-1)*(x^2+x+1)");

  ASSERT_EQ(seek("x^3-6*x^2+11*x-6", true).end, PolyEnd::kDone);
  r = tools.factor("", "1E-05", 1e-7, false);
  ASSERT_TRUE(r.secondFunction);
  EXPECT_EQ(std::count(r.secondFunction->begin(), r.secondFunction->end(), '('), 3) << *r.secondFunction;
}

TEST_F(PolynomialTest, CoefficientsThatPrintAsOneAreWrittenAsTheBareVariable) {
  const double nearOne = 1.0000000000000002, belowOne = 0.99999999999999989;
  EXPECT_EQ(FactorListText("x", {{1, nearOne, 1}, {0, -belowOne, 2}}), "(x^2+x+1)*(-x+2)");
  Polynomial p;
  p.varName = "t";
  p.degree = 2;
  p.coef = {0, -nearOne, belowOne};
  EXPECT_EQ(ArrangeText(p), "t^2-t+0");
  EXPECT_EQ(ExpandText(p), "t^2-t");
}

TEST_F(PolynomialTest, SnappingToIntegers) {
  struct Case {
    double v, tolerance, want;
  };
  const Case cases[] = {{2.000001, 1e-5, 2},  {-2.000001, 1e-5, -2}, {2.0001, 1e-5, 2.0001},
                        {0.5, 0.6, 0},         {1.5, 0.6, 2},         {-0.000001, 1e-5, 0},
                        {40000.000001, 1e-5, 40000.000001}};  // beyond 16 bits: unchanged
  for (const Case& c : cases) EXPECT_EQ(SnapToInteger(c.v, c.tolerance), c.want) << c.v;
}

TEST_F(PolynomialTest, AStopDuringExtractionChangesNothing) {
  ASSERT_EQ(tools.arrange("x^2-1").end, PolyEnd::kDone);
  host.stopAt = host.checkpoints + 2;
  PolyResult r = tools.arrange("x^3+x^2+x+1");
  EXPECT_EQ(r.end, PolyEnd::kStopped);
  EXPECT_FALSE(r.secondFunction);
  EXPECT_EQ(tools.polynomial().degree, 2);
}

TEST_F(PolynomialTest, BairstowIsBoundedAndStoppable) {
  // A judge value no step can meet: every start runs out, and Seek says so.
  PolyResult r = seek("x^3-1", false, -1);
  EXPECT_EQ(r.end, PolyEnd::kNoConvergence);
  EXPECT_FALSE(r.lines);
  EXPECT_FALSE(r.secondFunction);
  EXPECT_GE(host.checkpoints, PolynomialTools::kStarts * PolynomialTools::kIterationsPerStart);
  // Closing the window during the iteration ends it.
  host.stopAt = host.checkpoints + 50;
  EXPECT_EQ(seek("x^3-1", false, -1).end, PolyEnd::kStopped);
  EXPECT_EQ(host.checkpoints, host.stopAt);
}

TEST_F(PolynomialTest, OverflowingCoefficientsEndAsAFault) {
  PolyResult r = tools.expand("(1E200*x+1)*(1E200*x+1)");
  EXPECT_EQ(r.end, PolyEnd::kFault);
  EXPECT_FALSE(r.secondFunction);
}

}  // namespace
}  // namespace merida

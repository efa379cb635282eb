// Cells bound to registers against number texts written into the cells: the same results to
// the bit, the same errors and faults, for the three ways tools put numbers into cells.
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"
#include "test_support.h"

namespace merida {
namespace {

using test::RecordingHost;

struct Outcome {
  PointStatus status;
  uint64_t bits;
  int16_t error;
  bool fault;
  std::vector<int> shown;

  bool operator==(const Outcome&) const = default;
};

std::string Describe(const Outcome& o) {
  return "status " + std::to_string(static_cast<int>(o.status)) + " value " +
         std::to_string(std::bit_cast<double>(o.bits)) + " bits " + std::to_string(o.bits) + " error " +
         std::to_string(o.error) + (o.fault ? " fault" : "") + " shown " + std::to_string(o.shown.size());
}

// The three engines every case runs on: the texts (the reference), bound cells with the
// lean form, bound cells on the full machine.
enum class Mode { kTexts, kBound, kBoundFull };

// One engine and sampler running a sequence of points; flags are cleared after each point so
// that a sequence goes on past errors and faults as a fresh point would.
class Runner {
 public:
  explicit Runner(Mode mode) : engine_(host_), sampler_(engine_) {
    engine_.ResetEngine();
    engine_.setBoundCells(mode != Mode::kTexts);
    engine_.setLeanCode(mode != Mode::kBoundFull);
  }
  bool compile(const std::string& formula) { return sampler_.compile(formula) == PointStatus::kOk; }
  FormulaSampler& sampler() { return sampler_; }
  Engine& engine() { return engine_; }

  Outcome point(const std::function<PointStatus(double&)>& evaluate) {
    host_.errors.clear();
    double y = 0;
    PointStatus s = evaluate(y);
    Outcome o{s, std::bit_cast<uint64_t>(s == PointStatus::kOk ? y : 0.0), engine_.ErrorFlag, engine_.FaultFlag,
              host_.errors};
    engine_.ErrorFlag = 0;
    engine_.FaultFlag = false;
    return o;
  }

 private:
  RecordingHost host_;
  Engine engine_;
  FormulaSampler sampler_;
};

const double kMax = std::numeric_limits<double>::max();

// Values that reach the rules' corners: signs of zero, ties, integral exponents at the edge of
// 16 bits, subnormals, the top of the range (whose text reads back as an overflow).
const std::vector<double> kValues = {0.0, -0.0, 1, -1, 2, -3, 0.5, 2.5, 0.1 + 0.2, -1.0 / 3, 32767, 32768, -32767,
                                     100000000000000.5, 1e-200, 1e-320, -4e-318, 1e-7, 1e300, -1e300, 7e307, kMax,
                                     -kMax, 123456.789012345678};
const std::vector<double> kPoints = {0.0, -0.0, 1, -2, 0.75, 0.1 + 0.2, 1e-310, 1e200, 3};

// Formulas over x and the names the tools bind, chosen for the rules each touches: linked
// later cells, constant fusion on either side, integral and general powers with a bound
// exponent, divisions by a bound zero, domain errors, overflows before and after errors.
const std::vector<std::string> kFormulas = {
    "y", "y+x", "x-y", "y*x", "x/y", "y/x", "y-y", "y*y*y", "2*y", "y*2", "2-y", "y-2", "y/0", "2/y", "0-y",
    "0-y*3", "y^2", "y^3*4", "3*y^2", "y^0", "y^(0-1)", "x^y", "y^x", "2^y", "y^y", "y^0.5", "(0-2)^y",
    "sqr(y)", "ln(y)", "ln(y)+1/x", "atan(y*1e300*1e300)", "y*1e300*1e300-ln(0)", "x*1e300*1e300-ln(y)",
    "sin(y)+cos(x)", "exp(y)", "tan(y)*y", "abs(y)-y", "log(y)", "asin(y)", "Gamma(y)", "y-x-y+x",
    "y*x+sin(y)*cos(x)", "1/(y-y)", "y^32768", "x^(y*2)", "erf(y)+tanh(x)", "sinh(y)*y", "y^(0-2)",
    "perm(y,2)", "comb(5,y)", "y*1e300", "(y+1)*(y-1)/(x+y)", "y-(x-y)", "E*y+PI",
};

void ExpectSame(const Outcome& texts, const Outcome& bound, const std::string& what) {
  EXPECT_EQ(texts, bound) << what << ": texts " << Describe(texts) << " / bound " << Describe(bound);
}

// The double integral's first variable: substitute once, then several points of the other.
void CompareSubstituted(const std::string& formula, const std::vector<double>& values,
                        const std::vector<double>& points) {
  Runner texts(Mode::kTexts), bound(Mode::kBound), full(Mode::kBoundFull);
  const std::string f = formula + "+0*w";  // a second remaining variable, as the integral has
  ASSERT_TRUE(texts.compile(f)) << f;
  ASSERT_TRUE(bound.compile(f) && full.compile(f)) << f;
  const std::string name = "y";
  for (double v : values) {
    for (Runner* r : {&texts, &bound, &full}) r->sampler().substitute(name, v);
    for (double x : points) {
      auto at = [x](Runner& r) { return r.point([&](double& y) { return r.sampler().atSubstituted(x, y); }); };
      const Outcome reference = at(texts);
      const std::string what = f + " with " + name + " = " + std::to_string(v) + " at " + std::to_string(x);
      ExpectSame(reference, at(bound), what);
      ExpectSame(reference, at(full), what + " (full machine)");
    }
  }
}

TEST(BoundCells, SubstitutedFirstVariableMatchesTexts) {
  for (const std::string& formula : kFormulas) CompareSubstituted(formula, kValues, kPoints);
}

// The solvers' dependent values: y, diff and z at once, each used or not.
TEST(BoundCells, SolverValuesMatchTexts) {
  const std::vector<std::string> formulas = {
      "0-0.5*diff-4*y+sin(x)", "y*z-diff", "diff^y+z", "z/diff-y/z", "y+y+diff+diff", "x", "ln(diff)*y^z",
      "z^2+y^(0-2)-diff^0", "sqr(y*diff)-z*1e300*1e300", "atan(diff*1e308*10)+ln(y)", "y/(z-diff)",
  };
  for (const std::string& formula : formulas) {
    Runner texts(Mode::kTexts), bound(Mode::kBound), full(Mode::kBoundFull);
    for (Runner* r : {&texts, &bound, &full}) {
      r->engine().BindToX = 1;
      ASSERT_TRUE(r->compile(formula)) << formula;
      r->sampler().setCellNames({"y", "diff", "z"});
    }
    std::mt19937 rng(7);
    std::uniform_int_distribution<size_t> pick(0, kValues.size() - 1);
    for (int i = 0; i < 400; ++i) {
      const double v[3] = {kValues[pick(rng)], kValues[pick(rng)], kValues[pick(rng)]};
      const double x = kPoints[i % kPoints.size()];
      auto at = [&](Runner& r) { return r.point([&](double& y) { return r.sampler().atValues(x, v, y); }); };
      const Outcome reference = at(texts);
      const std::string what = formula + " at y=" + std::to_string(v[0]) + " diff=" + std::to_string(v[1]) +
                               " z=" + std::to_string(v[2]) + " x=" + std::to_string(x);
      ExpectSame(reference, at(bound), what);
      ExpectSame(reference, at(full), what + " (full machine)");
    }
  }
}

// The delay window's timestep(k): every pair folds into a cell holding the k-th delayed value.
TEST(BoundCells, FoldedPairsMatchTexts) {
  const std::vector<std::string> formulas = {
      "timestep(1)", "timestep(1)+0.5*timestep(2)", "timestep(2)-timestep(1)*timestep(1)",
      "timestep(1)^timestep(2)", "2^timestep(1)", "sqr(timestep(1))", "1/timestep(2)",
      "ln(timestep(1))+timestep(3)", "timestep(timestep(1))", "timestep(1)*1e300*1e300-ln(timestep(2))",
      "sin(timestep(1))+timestep(1)", "3",
  };
  for (const std::string& formula : formulas) {
    Runner texts(Mode::kTexts), bound(Mode::kBound), full(Mode::kBoundFull);
    for (Runner* r : {&texts, &bound, &full}) ASSERT_TRUE(r->compile(formula)) << formula;
    for (size_t start = 0; start < kValues.size(); ++start) {
      // A nested timestep's k is a delayed value itself: any double.
      auto delayed = [&](double k) {
        const size_t step = std::isfinite(k) ? static_cast<size_t>(std::fmod(std::fabs(k), 7.0)) : 0;
        return kValues[(start + step * 5) % kValues.size()];
      };
      auto at = [&](Runner& r) {
        return r.point([&](double& y) { return r.sampler().atFolded("timestep", delayed, y); });
      };
      const Outcome reference = at(texts);
      const std::string what = formula + " from value " + std::to_string(start);
      ExpectSame(reference, at(bound), what);
      ExpectSame(reference, at(full), what + " (full machine)");
    }
  }
}

// Small random formulas over x and y: operators, functions, constants that fuse, in any mix.
std::string RandomFormula(std::mt19937& rng, int depth) {
  static const char* const atoms[] = {"x", "y", "y", "0", "1", "2", "0.5", "3", "1e300", "PI"};
  static const char* const ops[] = {"+", "-", "*", "/", "^"};
  static const char* const functions[] = {"sin", "cos", "atan", "abs", "tan", "exp", "sqr", "ln", "sinh", "erf"};
  std::uniform_int_distribution<int> choice(0, 9);
  const int c = choice(rng);
  if (depth == 0 || c < 3) return atoms[std::uniform_int_distribution<int>(0, 9)(rng)];
  if (c < 8) {
    return "(" + RandomFormula(rng, depth - 1) + ops[std::uniform_int_distribution<int>(0, 4)(rng)] +
           RandomFormula(rng, depth - 1) + ")";
  }
  return std::string(functions[std::uniform_int_distribution<int>(0, 9)(rng)]) + "(" + RandomFormula(rng, depth - 1) + ")";
}

TEST(BoundCells, RandomFormulasMatchTexts) {
  std::mt19937 rng(2024);
  const std::vector<double> values = {0.0, -0.0, 2, -3, 0.1 + 0.2, 1e-320, 1e300, kMax, -0.5};
  const std::vector<double> points = {0.0, 1, -2, 0.3, 1e200};
  int compiled = 0;
  for (int i = 0; i < 300; ++i) {
    std::string formula = RandomFormula(rng, 4);
    if (formula.find('y') == std::string::npos) formula += "+y";
    if (formula.find('x') == std::string::npos) formula += "*x";
    CompareSubstituted(formula, values, points);
    ++compiled;
  }
  EXPECT_EQ(compiled, 300);
}

// The comparisons above must reach every outcome, or they say nothing about errors and faults.
TEST(BoundCells, CasesReachErrorsFaultsAndValues) {
  auto outcome = [](const std::string& formula, double v, double x) {
    Runner r(Mode::kBound);
    EXPECT_TRUE(r.compile(formula + "+0*w"));
    r.sampler().substitute("y", v);
    return r.point([&](double& out) { return r.sampler().atSubstituted(x, out); });
  };
  EXPECT_EQ(outcome("2/y", 0, 1).shown, std::vector<int>{11});
  EXPECT_EQ(outcome("ln(y)", -1, 1).shown, std::vector<int>{13});
  EXPECT_EQ(outcome("y*1e300*1e300-ln(0)", 1, 1).status, PointStatus::kFault);
  // A negative integral power whose product underflows divides by zero.
  EXPECT_EQ(outcome("y^(0-2)", 1e-200, 1).status, PointStatus::kFault);
  EXPECT_EQ(outcome("x^y", -2, 1e-200).status, PointStatus::kFault);
  // The largest double's text reads back beyond the range: an overflow, not a number.
  EXPECT_EQ(outcome("y", kMax, 1).status, PointStatus::kFault);
  // y = 2 is an integral exponent (repeated products); 2.5 a general power.
  Outcome two = outcome("x^y", 2, 0.1 + 0.2), general = outcome("x^y", 2.5, 4);
  EXPECT_EQ(std::bit_cast<double>(two.bits), (0.1 + 0.2) * (0.1 + 0.2));
  EXPECT_EQ(std::bit_cast<double>(general.bits), 32);
  // A later cell of the remaining variable still reads x back in 15 digits.
  EXPECT_EQ(std::bit_cast<double>(outcome("y*x-x", 1, 0.1 + 0.2).bits), (0.1 + 0.2) - Round15(0.1 + 0.2));
}

}  // namespace
}  // namespace merida

// Central differences and the solvers: points, recording, phase plane, counts, errors, faults, stop.
#include "calculus/differential.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "engine/number_text.h"
#include "test_support.h"

namespace merida {
namespace {

class DifferentialTest : public test::EngineTest {
 protected:
  DifferentialTest() { OpenDiffWindow(engine, state); }
  // Diff Equation mode, the simple method or Runge-Kutta.
  void equationMode(bool rungeKutta) {
    SelectDiffEquationOption(state);
    ClickRungeKutta(state, rungeKutta);
  }
};

DiffBoxes Boxes(const char* var, const char* width, const char* min, const char* max, const char* init = "",
                const char* slope = "") {
  DiffBoxes b;
  b.var = var;
  b.width = width;
  b.min = min;
  b.max = max;
  b.init = init;
  b.slope = slope;
  return b;
}

using Points = std::vector<std::pair<double, double>>;

Points Pairs(const std::vector<ChartPoint>& points) {
  Points out;
  for (const ChartPoint& p : points) out.emplace_back(p.x, p.y);
  return out;
}

// Cases whose points are exact in binary: the whole chart is compared.
struct ExactCase {
  const char* name;
  int16_t mode;
  int grade;
  bool plane;
  const char* formula;
  DiffBoxes boxes;
  Points points;
};

void PrintTo(const ExactCase& c, std::ostream* os) { *os << c.name; }

class ExactPointsTest : public DifferentialTest, public ::testing::WithParamInterface<ExactCase> {};

TEST_P(ExactPointsTest, Chart) {
  const ExactCase& c = GetParam();
  state.DiffMode = c.mode;
  DiffResult r = RunGrade(engine, state, c.formula, c.boxes, c.grade, c.plane);
  EXPECT_EQ(r.end, DiffEnd::kCompleted);
  EXPECT_TRUE(r.started);
  EXPECT_EQ(Pairs(r.points), c.points);
  EXPECT_TRUE(host.errors.empty());
  // Events run after every point (and inside a sum's own loop).
  EXPECT_GE(host.checkpoints, c.mode == kDiffDerivative ? static_cast<int>(c.points.size())
                                                            : static_cast<int>(c.points.size()) - 1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ExactPointsTest,
    ::testing::Values(
        // Central differences plotted at the middle abscissa; N = 3/1 + 1 points.
        ExactCase{"FirstDerivativeOfSquare", 1, 1, false, "x^2", Boxes("", "1", "0", "3"),
                  {{1, 2}, {2, 4}, {3, 6}, {4, 8}}},
        ExactCase{"SecondDerivativeOfCube", 1, 2, false, "x^3", Boxes("", "1", "0", "2"), {{1, 6}, {2, 12}, {3, 18}}},
        ExactCase{"DerivativeIgnoresPlane", 1, 1, true, "3*t", Boxes("", "0.5", "0", "1"),
                  {{0.5, 3}, {1, 3}, {1.5, 3}}},
        ExactCase{"DerivativeWithANegativeWidthRunsBackwards", 1, 1, false, "x^2", Boxes("", "-1", "0", "-2"),
                  {{-1, -2}, {-2, -4}, {-3, -6}}},
        // The simple solver takes its slope at x + h with the old y: y' = x gives 1 after one step.
        ExactCase{"SimpleSlopeAtNewAbscissa", 2, 1, false, "x", Boxes("y", "1", "0", "2", "0"),
                  {{0, 0}, {1, 1}, {2, 3}, {3, 6}}},
        ExactCase{"SimpleUsesTheDependentValue", 2, 1, false, "y", Boxes("y", "1", "0", "2", "1"),
                  {{0, 1}, {1, 2}, {2, 4}, {3, 8}}},
        // Phase plane: (y before the step, slope), then (last y, last slope); nothing recorded.
        ExactCase{"SimplePhasePlane", 2, 1, true, "x", Boxes("y", "1", "0", "1", "0"), {{0, 1}, {1, 2}, {3, 2}}},
        // Second order: y = y + h*p and p = p + h*f, f at x + h.
        ExactCase{"SimpleSecondOrder", 2, 2, false, "x", Boxes("y", "1", "0", "1", "0", "0"),
                  {{0, 0}, {1, 0}, {2, 1}}},
        ExactCase{"SimpleSecondOrderPhasePlane", 2, 2, true, "x", Boxes("y", "1", "0", "1", "0", "0"),
                  {{0, 0}, {0, 1}, {1, 3}}},
        ExactCase{"SimpleSecondOrderReadsDiff", 2, 2, false, "0-diff", Boxes("y", "0.5", "0", "0.5", "0", "2"),
                  {{0, 0}, {0.5, 1}, {1, 1.5}}},
        // Runge-Kutta on a polynomial slope of degree 3 is exact.
        ExactCase{"RungeKuttaCubicSlope", 3, 1, false, "4*x^3", Boxes("y", "1", "0", "1", "0"),
                  {{0, 0}, {1, 1}, {2, 16}}},
        ExactCase{"RungeKuttaSecondOrderConstant", 3, 2, false, "2", Boxes("y", "1", "0", "1", "0", "0"),
                  {{0, 0}, {1, 1}, {2, 4}}},
        ExactCase{"RungeKuttaSecondOrderPhasePlane", 3, 2, true, "2", Boxes("y", "1", "0", "1", "0", "0"),
                  {{0, 0}, {1, 2}, {4, 4}}},
        // Sums are computed once, at the start of the range: x in a sum is the start.
        ExactCase{"SumsAreComputedOnceAtTheStart", 2, 1, false, "sgm(x*k,1,2,k)", Boxes("y", "1", "1", "2", "0"),
                  {{1, 0}, {2, 3}, {3, 6}}},
        ExactCase{"DerivativeOfASum", 1, 1, false, "x^2+sgm(k,1,3,k)", Boxes("", "1", "0", "1"), {{1, 2}, {2, 4}}},
        // A start equal to the end still takes one step.
        ExactCase{"EmptyRangeTakesOneStep", 3, 1, false, "1", Boxes("y", "1", "2", "2", "5"), {{2, 5}, {3, 6}}}),
    [](const ::testing::TestParamInfo<ExactCase>& p) { return std::string(p.param.name); });

TEST_F(DifferentialTest, RungeKuttaReachesEToSixDigitsAndRunsOneStepPastTheEnd) {
  equationMode(true);
  DiffResult r = RunGrade(engine, state, "y", Boxes("y", "0.1", "0", "1", "1"), 1, false);
  ASSERT_EQ(r.end, DiffEnd::kCompleted);
  ASSERT_EQ(r.points.size(), 12u) << "11 steps: (1 - 0) / 0.1 is whole";
  EXPECT_NEAR(r.points[10].x, 1, 1e-12);
  EXPECT_NEAR(r.points[10].y, std::exp(1.0), 3e-6);
  EXPECT_GT(std::fabs(r.points[10].y - std::exp(1.0)), 1e-7) << "fourth order, not exact";
  EXPECT_NEAR(r.points[11].x, 1.1, 1e-12);
}

TEST_F(DifferentialTest, RecordsEveryPointWithTheHeader) {
  state.Records.RecordPoint(9, 7, 7, 7);
  equationMode(false);
  DiffResult r = RunGrade(engine, state, "x", Boxes("y", "1", "0", "2", "0"), 1, false);
  ASSERT_EQ(r.end, DiffEnd::kCompleted);
  const RecordFunctionTable& t = state.Records;
  EXPECT_EQ(t.kind, ComputedData);
  EXPECT_EQ(t.dimension, 2);
  EXPECT_EQ(t.rangeStart, 0.0f);
  EXPECT_EQ(t.rangeEnd, 2.0f);
  ASSERT_EQ(t.count, 4);
  for (int i = 1; i <= 4; ++i) {
    EXPECT_EQ(t.values[i][0], r.points[i - 1].x) << i;
    EXPECT_EQ(t.values[i][1], r.points[i - 1].y) << i;
  }

  // The phase plane records nothing and leaves the header alone.
  state.Records.kind = NoData;
  r = RunGrade(engine, state, "x", Boxes("y", "1", "0", "5", "0"), 1, true);
  ASSERT_EQ(r.end, DiffEnd::kCompleted);
  EXPECT_EQ(t.count, 4);
  EXPECT_EQ(t.kind, NoData);
}

// y' = 3y from y = 1/3: the slope reads y back from its 15-digit text, 0.333333333333333.
TEST_F(DifferentialTest, DependentValuesPassThroughTheirDecimalText) {
  equationMode(false);
  DiffResult r = RunGrade(engine, state, "y*3", Boxes("y", "1", "0", "0", "1/3"), 1, false);
  ASSERT_EQ(r.end, DiffEnd::kCompleted);
  ASSERT_EQ(r.points.size(), 2u);
  const double y0 = 1.0 / 3;
  const double read = *ReadNumber(PlainText(y0));
  ASSERT_NE(read, y0);
  EXPECT_EQ(r.points[1].y, y0 + 1 * (read * 3));
  EXPECT_NE(r.points[1].y, y0 + 1 * (y0 * 3));
}

TEST_F(DifferentialTest, SecondOrderRungeKuttaFollowsTheSine) {
  equationMode(true);
  DiffResult r = RunGrade(engine, state, "0-y", Boxes("y", "0.0625", "0", "3", "0", "1"), 2, false);
  ASSERT_EQ(r.end, DiffEnd::kCompleted);
  EXPECT_TRUE(host.errors.empty()) << "the dependent variable does not count as a variable";
  ASSERT_EQ(r.points.size(), 50u);
  double worst = 0;
  for (const ChartPoint& p : r.points) worst = std::max(worst, std::fabs(p.y - std::sin(p.x)));
  EXPECT_LT(worst, 1e-6);
  EXPECT_GT(worst, 0);
}

TEST_F(DifferentialTest, SimultSolvesThePairAndRecordsThreeColumns) {
  equationMode(false);
  DiffBoxes b = Boxes("y", "0.1", "0", "1", "0", "1");
  b.var2 = "z";
  b.second = "0-y";
  DiffResult r = RunSimult(engine, state, "z", b, false);
  ASSERT_EQ(r.end, DiffEnd::kCompleted);
  EXPECT_EQ(state.DiffMode, kDiffRungeKutta) << "Simult ticks RungeKutta";
  EXPECT_EQ(r.dataSets, 2);
  ASSERT_EQ(r.points.size(), 12u);
  ASSERT_EQ(r.points2.size(), 12u);
  for (size_t i = 0; i < r.points.size(); ++i) {
    EXPECT_EQ(r.points[i].x, r.points2[i].x);
    EXPECT_NEAR(r.points[i].y, std::sin(r.points[i].x), 2e-6) << i;
    EXPECT_NEAR(r.points2[i].y, std::cos(r.points[i].x), 2e-6) << i;
  }
  const RecordFunctionTable& t = state.Records;
  EXPECT_EQ(t.dimension, 3);
  EXPECT_EQ(t.count, 12);
  EXPECT_EQ(t.values[1][2], 1.0f);
  EXPECT_EQ(t.values[12][2], static_cast<float>(r.points2[11].y));

  // Phase plane: one set, z against y, from (initial y, initial z).
  DiffResult plane = RunSimult(engine, state, "z", b, true);
  ASSERT_EQ(plane.end, DiffEnd::kCompleted);
  EXPECT_EQ(plane.dataSets, 1);
  ASSERT_EQ(plane.points.size(), 12u);
  EXPECT_EQ(plane.points[0].x, 0);
  EXPECT_EQ(plane.points[0].y, 1);
  for (size_t i = 0; i < 12; ++i) {
    EXPECT_EQ(plane.points[i].x, r.points[i].y) << i;
    EXPECT_EQ(plane.points[i].y, r.points2[i].y) << i;
  }
}

TEST_F(DifferentialTest, ModeSwitches) {
  EXPECT_EQ(state.DiffMode, kDiffDerivative);
  EXPECT_EQ(engine.BindToX, 1);
  EXPECT_FALSE(ClickRungeKutta(state, true)) << "cleared again at once in Diff mode";
  EXPECT_EQ(state.DiffMode, kDiffDerivative);
  SelectDiffEquationOption(state);
  EXPECT_EQ(state.DiffMode, kDiffSimple);
  EXPECT_TRUE(ClickRungeKutta(state, true));
  EXPECT_EQ(state.DiffMode, kDiffRungeKutta);
  EXPECT_FALSE(ClickRungeKutta(state, false));
  EXPECT_EQ(state.DiffMode, kDiffSimple);
  ClickRungeKutta(state, true);
  SelectDiffOption(state);
  EXPECT_EQ(state.DiffMode, kDiffDerivative);
  CloseDiffWindow(engine, state);
  EXPECT_EQ(state.DiffMode, kDiffClosed);
  EXPECT_EQ(engine.BindToX, -1);
  EXPECT_EQ(engine.StopRequested, 1);
}

TEST_F(DifferentialTest, SimultInDiffModeDoesNothing) {
  state.Records.RecordPoint(3, 1, 2, 3);
  DiffBoxes b = Boxes("y", "0.1", "0", "1", "0", "1");
  b.var2 = "z";
  b.second = "0-y";
  DiffResult r = RunSimult(engine, state, "z", b, false);
  EXPECT_EQ(r.end, DiffEnd::kNothing);
  EXPECT_FALSE(r.started);
  EXPECT_EQ(state.DiffMode, kDiffDerivative);
  EXPECT_EQ(state.Records.count, 3);
  EXPECT_EQ(host.checkpoints, 0);
}

// Ends before any point: nothing is computed, recorded or shown.
struct SilentCase {
  const char* name;
  int16_t mode;
  int grade;
  const char* formula;
  DiffBoxes boxes;
  std::optional<int> error;
};

void PrintTo(const SilentCase& c, std::ostream* os) { *os << c.name; }

class NoComputationTest : public DifferentialTest, public ::testing::WithParamInterface<SilentCase> {};

TEST_P(NoComputationTest, EndsBeforeTheFirstPoint) {
  const SilentCase& c = GetParam();
  state.DiffMode = c.mode;
  state.Records.RecordPoint(2, 1, 1, 1);
  DiffResult r = RunGrade(engine, state, c.formula, c.boxes, c.grade, false);
  EXPECT_EQ(r.end, c.error ? DiffEnd::kError : DiffEnd::kSilent);
  EXPECT_FALSE(r.started);
  EXPECT_TRUE(r.points.empty());
  EXPECT_EQ(host.errors, c.error ? std::vector<int>{*c.error} : std::vector<int>{});
  EXPECT_EQ(host.checkpoints, 0);
  EXPECT_EQ(state.Records.count, 2);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NoComputationTest,
    ::testing::Values(
        SilentCase{"NameWithABlank", 3, 1, "y", Boxes("y 1", "0.1", "0", "1", "1"), std::nullopt},
        SilentCase{"NameWithASign", 3, 1, "y", Boxes("-y", "0.1", "0", "1", "1"), std::nullopt},
        SilentCase{"NameWithAPlus", 2, 2, "y", Boxes("y+", "0.1", "0", "1", "1"), std::nullopt},
        SilentCase{"NameCheckedInDiffModeToo", 1, 1, "x", Boxes("a.b", "1", "0", "3"), std::nullopt},
        SilentCase{"TwoVariablesInDiffEquation", 2, 1, "x*t+y", Boxes("y", "0.1", "0", "1", "1"), 27},
        SilentCase{"TwoVariablesInDiff", 1, 1, "x*y", Boxes("y", "0.1", "0", "1"), 27},
        SilentCase{"DiffCountsInFirstGrade", 3, 1, "diff*x", Boxes("y", "0.1", "0", "1", "1"), 27},
        SilentCase{"FormulaError", 3, 1, "sin(y", Boxes("y", "0.1", "0", "1", "1"), 23},
        SilentCase{"BoxError", 3, 1, "y", Boxes("y", "(0.1", "0", "1", "1"), 23},
        SilentCase{"WidthZero", 3, 1, "y", Boxes("y", "0", "0", "1", "1"), std::nullopt},
        SilentCase{"WidthZeroEmptyRange", 2, 1, "y", Boxes("y", "", "1", "1", "1"), std::nullopt},
        SilentCase{"WidthAwayFromTheEnd", 3, 2, "y", Boxes("y", "-0.1", "0", "1", "1"), std::nullopt},
        SilentCase{"DerivativeWidthAwayFromTheEnd", 1, 1, "x", Boxes("", "1", "3", "0"), std::nullopt},
        SilentCase{"DerivativeNeedsTwoPoints", 1, 1, "x", Boxes("", "2", "0", "1"), std::nullopt}),
    [](const ::testing::TestParamInfo<SilentCase>& p) { return std::string(p.param.name); });

TEST_F(DifferentialTest, SecondGradeDoesNotCountDiff) {
  equationMode(true);
  DiffResult r = RunGrade(engine, state, "diff*x+y", Boxes("y", "0.5", "0", "1", "1", "0"), 2, false);
  EXPECT_EQ(r.end, DiffEnd::kCompleted);
  EXPECT_TRUE(host.errors.empty());
}

// Counts beyond 6000, and beyond 16 bits, take the cap instead of ending.
TEST_F(DifferentialTest, StepCountsAreCapped) {
  struct Case {
    int16_t mode;
    const char* width;
    size_t points;
  };
  for (Case c : {Case{1, "0.001", 6000}, Case{1, "1E-9", 6000}, Case{2, "0.001", 6000}, Case{3, "1E-12", 6000},
                 Case{2, "0.001953125", 5122}}) {
    state.DiffMode = c.mode;
    DiffResult r = RunGrade(engine, state, "x", Boxes("y", c.width, "0", "10", "0"), 1, false);
    ASSERT_EQ(r.end, DiffEnd::kCompleted) << c.width;
    EXPECT_EQ(r.points.size(), c.points) << c.width;
    EXPECT_EQ(state.Records.count, std::min<int>(static_cast<int>(c.points), 5000)) << c.width;
  }
}

TEST_F(DifferentialTest, ErrorsKeepThePointsComputedSoFar) {
  // 1/(x-3): the second difference reaches x = 3.
  DiffResult r = RunGrade(engine, state, "1/(x-3)", Boxes("", "1", "0", "3"), 1, false);
  EXPECT_EQ(r.end, DiffEnd::kError);
  EXPECT_TRUE(r.started);
  EXPECT_EQ(r.points.size(), 1u);
  EXPECT_EQ(host.errors, std::vector<int>{11});
  EXPECT_EQ(state.Records.count, 1);
}

TEST_F(DifferentialTest, OverflowEndsQuietlyAsAFault) {
  struct Case {
    int16_t mode;
    int grade;
    const char* formula;
    DiffBoxes boxes;
  };
  for (const Case& c : {Case{3, 1, "exp(y)", Boxes("y", "1", "0", "10", "1")},
                        Case{2, 1, "y*y", Boxes("y", "1", "0", "10", "1E+100")},
                        Case{2, 2, "diff*diff", Boxes("y", "1", "0", "10", "1", "1E+200")},
                        // Finite values whose difference overflows.
                        Case{1, 1, "x*10^307", Boxes("", "15", "-15", "15")},
                        Case{3, 1, "1", Boxes("y", "1E+308", "0", "1E+308", "0")}}) {
    engine.BindToX = 1;
    engine.StopRequested = 0;
    state.DiffMode = c.mode;
    DiffResult r = RunGrade(engine, state, c.formula, c.boxes, c.grade, false);
    EXPECT_EQ(r.end, DiffEnd::kFault) << c.formula << " " << testing::PrintToString(host.errors);
    EXPECT_EQ(engine.BindToX, -1) << c.formula;
    EXPECT_EQ(engine.StopRequested, 1) << c.formula;
  }
  EXPECT_TRUE(host.faults.empty()) << "a tool ends a fault without a message";
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(DifferentialTest, CloseStopsBetweenSteps) {
  for (int16_t mode : {1, 2, 3}) {
    state.DiffMode = mode;
    host.checkpoints = 0;
    host.stopAt = 3;
    DiffResult r =
        RunGrade(engine, state, mode == 1 ? "x" : "x+y", Boxes("y", "0.001", "0", "5", "0"), mode == 1 ? 1 : 2, false);
    EXPECT_EQ(r.end, DiffEnd::kStopped) << mode;
    EXPECT_EQ(host.checkpoints, 3) << mode;
    EXPECT_EQ(r.points.size(), mode == 1 ? 3u : 4u) << mode;
  }
}

}  // namespace
}  // namespace merida

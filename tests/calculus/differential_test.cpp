// Central differences and the solvers: points, recording, phase plane, counts, errors, faults, stop.
#include "calculus/differential.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "engine/number_text.h"
#include "test_support.h"

namespace merida {
namespace {

DiffBoxes Boxes(const char* var, const char* width, const char* min, const char* max, const char* init = "",
                const char* slope = "", const char* var2 = "", const char* second = "") {
  return DiffBoxes{var, width, init, min, max, slope, second, var2};
}

using Points = std::vector<std::pair<double, double>>;

Points Pairs(const std::vector<ChartPoint>& points) {
  Points out;
  for (const ChartPoint& p : points) out.emplace_back(p.x, p.y);
  return out;
}

class DifferentialTest : public test::EngineTest {
 protected:
  DifferentialTest() { OpenDiffWindow(engine, state); }
  DiffResult run(int16_t mode, int grade, const char* formula, const DiffBoxes& b, bool plane = false) {
    state.DiffMode = mode;
    return RunGrade(engine, state, formula, b, grade, plane);
  }
};

// Points exact in binary: the whole chart is compared. Modes: 1 differences, 2 simple, 3 Runge-Kutta.
TEST_F(DifferentialTest, ExactCharts) {
  // Mode, grade, phase plane, formula, boxes, chart.
  const std::tuple<int16_t, int, bool, const char*, DiffBoxes, Points> cases[] = {
      // Central differences plotted at the middle abscissa; N = 3/1 + 1 points.
      {1, 1, false, "x^2", Boxes("", "1", "0", "3"), {{1, 2}, {2, 4}, {3, 6}, {4, 8}}},
      {1, 2, false, "x^3", Boxes("", "1", "0", "2"), {{1, 6}, {2, 12}, {3, 18}}},
      {1, 1, true, "3*t", Boxes("", "0.5", "0", "1"), {{0.5, 3}, {1, 3}, {1.5, 3}}},  // the plane is ignored
      {1, 1, false, "x^2", Boxes("", "-1", "0", "-2"), {{-1, -2}, {-2, -4}, {-3, -6}}},  // backwards
      // The simple solver takes its slope at x + h with the old y: y' = x gives 1 after one step.
      {2, 1, false, "x", Boxes("y", "1", "0", "2", "0"), {{0, 0}, {1, 1}, {2, 3}, {3, 6}}},
      // Phase plane: (y before the step, slope), then (last y, last slope); nothing recorded.
      {2, 1, true, "x", Boxes("y", "1", "0", "1", "0"), {{0, 1}, {1, 2}, {3, 2}}},
      // Second order: y = y + h*p and p = p + h*f, f at x + h.
      {2, 2, false, "x", Boxes("y", "1", "0", "1", "0", "0"), {{0, 0}, {1, 0}, {2, 1}}},
      {2, 2, true, "x", Boxes("y", "1", "0", "1", "0", "0"), {{0, 0}, {0, 1}, {1, 3}}},
      {2, 2, false, "0-diff", Boxes("y", "0.5", "0", "0.5", "0", "2"), {{0, 0}, {0.5, 1}, {1, 1.5}}},
      // Runge-Kutta on a polynomial slope of degree 3 is exact.
      {3, 1, false, "4*x^3", Boxes("y", "1", "0", "1", "0"), {{0, 0}, {1, 1}, {2, 16}}},
      {3, 2, false, "2", Boxes("y", "1", "0", "1", "0", "0"), {{0, 0}, {1, 1}, {2, 4}}},
      {3, 2, true, "2", Boxes("y", "1", "0", "1", "0", "0"), {{0, 0}, {1, 2}, {4, 4}}},
      // Sums are computed once, at the start of the range: x in a sum is the start.
      {2, 1, false, "sgm(x*k,1,2,k)", Boxes("y", "1", "1", "2", "0"), {{1, 0}, {2, 3}, {3, 6}}},
      {3, 1, false, "1", Boxes("y", "1", "2", "2", "5"), {{2, 5}, {3, 6}}},  // an empty range takes one step
  };
  for (const auto& [mode, grade, plane, formula, boxes, points] : cases) {
    SCOPED_TRACE(formula);
    host.checkpoints = 0;
    state.Records = RecordFunctionTable{};
    DiffResult r = run(mode, grade, formula, boxes, plane);
    EXPECT_EQ(std::tuple(r.end, r.started, host.errors.size()), std::tuple(DiffEnd::kCompleted, true, 0u));
    EXPECT_EQ(Pairs(r.points), points);
    // Events run after every point (and inside a sum's own loop).
    EXPECT_GE(host.checkpoints, static_cast<int>(points.size()) - (mode == kDiffDerivative ? 0 : 1));
    // Every point is recorded under the range's header; the phase plane records nothing.
    const RecordFunctionTable& t = state.Records;
    EXPECT_EQ(t.count, !plane || mode == kDiffDerivative ? static_cast<int>(points.size()) : 0);
    if (t.count) {
      EXPECT_EQ(std::tuple(t.kind, t.dimension, t.rangeStart, t.rangeEnd),
                std::tuple(ComputedData, 2, std::stof(boxes.min), std::stof(boxes.max)));
    }
    for (int i = 1; i <= t.count; ++i) EXPECT_EQ(Pairs({{t.values[i][0], t.values[i][1]}}), Points{points[i - 1]});
  }
  // The second grade does not count diff as a variable.
  EXPECT_EQ(run(3, 2, "diff*x+y", Boxes("y", "0.5", "0", "1", "1", "0")).end, DiffEnd::kCompleted);
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(DifferentialTest, RungeKuttaAgainstClosedForms) {
  DiffResult r = run(3, 1, "y", Boxes("y", "0.1", "0", "1", "1"));
  ASSERT_EQ(r.points.size(), 12u) << "11 steps: (1 - 0) / 0.1 is whole, then one past the end";
  const double error = std::fabs(r.points[10].y - std::exp(1.0));
  EXPECT_TRUE(error < 3e-6 && error > 1e-7) << "fourth order, not exact: " << error;
  r = run(3, 2, "0-y", Boxes("y", "0.0625", "0", "3", "0", "1"));
  EXPECT_TRUE(host.errors.empty()) << "the dependent variable does not count as a variable";
  ASSERT_EQ(r.points.size(), 50u);
  double worst = 0;
  for (const ChartPoint& p : r.points) worst = std::max(worst, std::fabs(p.y - std::sin(p.x)));
  EXPECT_TRUE(worst < 1e-6 && worst > 0) << worst;
}

// y' = 3y from y = 1/3: the slope reads y back from its 15-digit text, 0.333333333333333.
TEST_F(DifferentialTest, DependentValuesPassThroughTheirDecimalText) {
  DiffResult r = run(2, 1, "y*3", Boxes("y", "1", "0", "0", "1/3"));
  ASSERT_EQ(r.points.size(), 2u);
  const double y0 = 1.0 / 3, read = *ReadNumber(PlainText(y0));
  ASSERT_NE(read, y0);
  EXPECT_EQ(r.points[1].y, y0 + 1 * (read * 3));
  EXPECT_NE(r.points[1].y, y0 + 1 * (y0 * 3));
}

TEST_F(DifferentialTest, SimultSolvesThePairAndRecordsThreeColumns) {
  const DiffBoxes b = Boxes("y", "0.1", "0", "1", "0", "1", "z", "0-y");
  state.Records.RecordPoint(3, 1, 2, 3);
  const DiffEnd inDiffMode = RunSimult(engine, state, "z", b, false).end;
  EXPECT_EQ(std::tuple(inDiffMode, state.Records.count, host.checkpoints), std::tuple(DiffEnd::kNothing, 3, 0));
  SelectDiffEquationOption(state);
  DiffResult r = RunSimult(engine, state, "z", b, false);  // Simult ticks RungeKutta
  EXPECT_EQ(std::tuple(r.end, state.DiffMode, r.dataSets), std::tuple(DiffEnd::kCompleted, kDiffRungeKutta, 2));
  ASSERT_EQ(std::tuple(r.points.size(), r.points2.size()), std::tuple(12u, 12u));
  // Phase plane: one set, z against y, from (initial y, initial z).
  const DiffResult plane = RunSimult(engine, state, "z", b, true);
  ASSERT_EQ(std::tuple(plane.dataSets, plane.points.size()), std::tuple(1, 12u));
  const RecordFunctionTable& t = state.Records;  // as the first run left it
  EXPECT_EQ(std::tuple(t.dimension, t.count, t.values[1][2]), std::tuple(3, 12, 1.0f));
  for (size_t i = 0; i < 12; ++i) {
    EXPECT_EQ(r.points[i].x, r.points2[i].x);
    EXPECT_NEAR(r.points[i].y, std::sin(r.points[i].x), 2e-6) << i;
    EXPECT_NEAR(r.points2[i].y, std::cos(r.points[i].x), 2e-6) << i;
    EXPECT_EQ(t.values[i + 1][2], static_cast<float>(r.points2[i].y)) << i;
    EXPECT_EQ(std::tuple(plane.points[i].x, plane.points[i].y), std::tuple(r.points[i].y, r.points2[i].y)) << i;
  }
}

TEST_F(DifferentialTest, ModeSwitches) {
  EXPECT_EQ(std::tuple(state.DiffMode, engine.BindToX), std::tuple(kDiffDerivative, 1));
  EXPECT_TRUE(!ClickRungeKutta(state, true) && state.DiffMode == kDiffDerivative) << "cleared again in Diff mode";
  SelectDiffEquationOption(state);
  EXPECT_EQ(state.DiffMode, kDiffSimple);
  EXPECT_TRUE(ClickRungeKutta(state, true) && state.DiffMode == kDiffRungeKutta) << state.DiffMode;
  EXPECT_TRUE(!ClickRungeKutta(state, false) && state.DiffMode == kDiffSimple) << state.DiffMode;
  SelectDiffOption(state);
  EXPECT_EQ(state.DiffMode, kDiffDerivative);
  CloseDiffWindow(engine, state);
  EXPECT_EQ(std::tuple(state.DiffMode, engine.BindToX, engine.StopRequested), std::tuple(kDiffClosed, -1, 1));
}

// Ends before any point: nothing is computed, recorded or shown.
TEST_F(DifferentialTest, EndsBeforeTheFirstPoint) {
  // Mode, grade, formula, boxes, error.
  const std::tuple<int16_t, int, const char*, DiffBoxes, int> cases[] = {
      {3, 1, "y", Boxes("y 1", "0.1", "0", "1", "1"), 0},  // names of letters, digits and _ only
      {1, 1, "x", Boxes("a.b", "1", "0", "3"), 0},  // checked in Diff mode too
      {2, 1, "x*t+y", Boxes("y", "0.1", "0", "1", "1"), 27}, {1, 1, "x*y", Boxes("y", "0.1", "0", "1"), 27},
      {3, 1, "diff*x", Boxes("y", "0.1", "0", "1", "1"), 27},  // diff counts in the first grade
      {3, 1, "sin(y", Boxes("y", "0.1", "0", "1", "1"), 23}, {3, 1, "y", Boxes("y", "(0.1", "0", "1", "1"), 23},
      {3, 1, "y", Boxes("y", "0", "0", "1", "1"), 0},     // width 0
      {2, 1, "y", Boxes("y", "", "1", "1", "1"), 0},      // width 0 over an empty range
      {3, 2, "y", Boxes("y", "-0.1", "0", "1", "1"), 0},  // a width away from the end
      {1, 1, "x", Boxes("", "2", "0", "1"), 0},           // differences need two points
  };
  for (const auto& [mode, grade, formula, boxes, error] : cases) {
    SCOPED_TRACE(boxes.var + " " + formula + " " + boxes.width);
    host.errors.clear();
    host.checkpoints = 0;
    state.Records.RecordPoint(2, 1, 1, 1);
    DiffResult r = run(mode, grade, formula, boxes);
    EXPECT_EQ(std::tuple(r.end, r.started, r.points.size(), host.checkpoints, state.Records.count),
              std::tuple(error ? DiffEnd::kError : DiffEnd::kSilent, false, 0u, 0, 2));
    EXPECT_EQ(host.errors, error ? std::vector<int>{error} : std::vector<int>{});
  }
}

// Counts beyond 6000, and beyond 16 bits, take the cap instead of ending.
TEST_F(DifferentialTest, StepCountsAreCapped) {
  const std::tuple<int16_t, const char*, size_t> cases[] = {
      {1, "0.001", 6000}, {1, "1E-9", 6000}, {2, "0.001", 6000}, {3, "1E-12", 6000}, {2, "0.001953125", 5122}};
  for (auto [mode, width, points] : cases) {
    DiffResult r = run(mode, 1, "x", Boxes("y", width, "0", "10", "0"));
    EXPECT_EQ(std::tuple(r.end, r.points.size(), state.Records.count),
              std::tuple(DiffEnd::kCompleted, points, std::min<int>(static_cast<int>(points), 5000))) << width;
  }
}

TEST_F(DifferentialTest, ErrorsKeepThePointsComputedSoFarAndOverflowEndsQuietly) {
  // 1/(x-3): the second difference reaches x = 3.
  DiffResult r = run(1, 1, "1/(x-3)", Boxes("", "1", "0", "3"));
  EXPECT_EQ(std::tuple(r.end, r.started, r.points.size(), state.Records.count),
            std::tuple(DiffEnd::kError, true, 1u, 1));
  EXPECT_EQ(host.errors, std::vector<int>{11});
  host.errors.clear();
  const std::tuple<int16_t, int, const char*, DiffBoxes> faults[] = {
      {3, 1, "exp(y)", Boxes("y", "1", "0", "10", "1")}, {2, 1, "y*y", Boxes("y", "1", "0", "10", "1E+100")},
      {2, 2, "diff*diff", Boxes("y", "1", "0", "10", "1", "1E+200")},
      {1, 1, "x*10^307", Boxes("", "15", "-15", "15")},  // finite values whose difference overflows
      {3, 1, "1", Boxes("y", "1E+308", "0", "1E+308", "0")}};
  for (const auto& [mode, grade, formula, boxes] : faults) {
    engine.BindToX = 1;
    engine.StopRequested = 0;
    DiffEnd end = run(mode, grade, formula, boxes).end;
    EXPECT_EQ(std::tuple(end, engine.BindToX, engine.StopRequested), std::tuple(DiffEnd::kFault, -1, 1)) << formula;
  }
  EXPECT_TRUE(host.faults.empty() && host.errors.empty()) << "a tool ends a fault without a message";
}

TEST_F(DifferentialTest, CloseStopsBetweenSteps) {
  for (int16_t mode : {1, 2, 3}) {
    host.checkpoints = 0;
    host.stopAt = 3;
    DiffResult r = run(mode, mode == 1 ? 1 : 2, mode == 1 ? "x" : "x+y", Boxes("y", "0.001", "0", "5", "0"));
    EXPECT_EQ(std::tuple(r.end, host.checkpoints, r.points.size()),
              std::tuple(DiffEnd::kStopped, 3, mode == 1 ? 3u : 4u)) << mode;
  }
}

}  // namespace
}  // namespace merida

// The graph routines: point sequence, ranges, caps, errors, faults, stopping and recording.
#include "graph/graph_plot.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "test_support.h"

namespace merida {
namespace {

class GraphPlotTest : public test::EngineTest {
 protected:
  GraphPlotTest() { PrepareGraphDefaults(engine, state); }
  PlotResult go(const std::string& f, const std::string& a, const std::string& b, const std::string& n) {
    return PlotGo(engine, state, f, GraphBoxes{a, b, n});
  }
};

struct NormalCase {
  const char* formula;
  const char* start;
  const char* end;
  const char* divisions;
  double a, b;
  int n;
  std::function<double(double)> f;
};

TEST_F(GraphPlotTest, NormalPlotSamplesEveryPointOfTheRange) {
  const NormalCase cases[] = {
      {"x^2", "0", "2", "4", 0, 2, 4, [](double x) { return x * x; }},
      {"sin(x)", "0", "PI", "6", 0, 3.14159265358979, 6, [](double x) { return std::sin(x); }},
      {"2*x+1", "-1", "1", "1", -1, 1, 1, [](double x) { return 2 * x + 1; }},
      {"3", "0", "1", "2", 0, 1, 2, [](double) { return 3.0; }},
      {"  exp(-x)*cos(3*x)", "-PI/2", "2*PI", "50", -3.14159265358979 / 2, 2 * 3.14159265358979, 50,
       [](double x) { return std::exp(-x) * std::cos(3 * x); }},
      {"f(t)=t/2", "1", "5", "8", 1, 5, 8, [](double t) { return t / 2; }},
      {"x", "0", "1", "2.5", 0, 1, 2, [](double x) { return x; }},  // halves to even
      {"x", "0", "1", "3.5", 0, 1, 4, [](double x) { return x; }},
  };
  for (const NormalCase& c : cases) {
    SCOPED_TRACE(c.formula);
    host.checkpoints = 0;
    PlotResult r = go(c.formula, c.start, c.end, c.divisions);
    ASSERT_EQ(r.end, PlotEnd::kCompleted);
    EXPECT_TRUE(host.errors.empty());
    EXPECT_EQ(host.checkpoints, c.n - 1);  // checkpoints after points 2..n only
    EXPECT_EQ(r.chartType, ChartType::kLine);
    EXPECT_FALSE(r.equalScale);
    EXPECT_EQ(r.pointCount, c.n + 1);
    ASSERT_EQ(r.points.size(), static_cast<size_t>(c.n + 1));
    const double h = (c.b - c.a) / c.n;
    for (int i = 0; i <= c.n; ++i) {
      double x = i == c.n ? c.b : i * h + c.a;
      EXPECT_DOUBLE_EQ(r.points[i].x, x) << "point " << i;
      EXPECT_NEAR(r.points[i].y, c.f(x), 1e-12 * (1 + std::fabs(c.f(x)))) << "point " << i;
    }
    EXPECT_EQ(state.GraphMode, 1);
  }
}

TEST_F(GraphPlotTest, LastPointIsTheEndItselfNotStartPlusNSteps) {
  const double start = 0.2, end = 0.9;
  const int n = 3;
  ASSERT_NE(start + n * ((end - start) / n), end);  // otherwise the case proves nothing
  PlotResult r = go("x", "0.2", "0.9", "3");
  ASSERT_EQ(r.points.size(), 4u);
  EXPECT_EQ(r.points.back().x, end);
  EXPECT_EQ(r.points[1].x, 1 * ((end - start) / n) + start);
}

TEST_F(GraphPlotTest, DivisionsAreCappedAtSixThousandPoints) {
  struct Case {
    const char* box;
    size_t points;
    std::optional<std::string> shown;
    int16_t divisionCount;
  };
  const Case cases[] = {
      {"5999", 6000, std::nullopt, 5999},
      {"6000", 6000, "6000", 6000},
      {"7000", 6000, "6000", 7000},
      {"32767", 6000, "6000", 32767},
      {"5998.5", 5999, std::nullopt, 5998},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.box);
    PlotResult r = go("x", "0", "1", c.box);
    ASSERT_EQ(r.end, PlotEnd::kCompleted);
    EXPECT_EQ(r.points.size(), c.points);
    EXPECT_EQ(r.pointCount, static_cast<int>(c.points));
    EXPECT_EQ(r.divisionsBox, c.shown);
    EXPECT_EQ(state.DivisionCount, c.divisionCount);
    EXPECT_EQ(r.points.back().x, 1);
  }
}

TEST_F(GraphPlotTest, UnusableRangesEndSilently) {
  const GraphBoxes cases[] = {
      {"0", "1", "abc"}, {"0", "1", ""},     {"0", "1", "0"},     {"0", "1", "-3"},
      {"0", "1", "0.4"}, {"0", "1", "1e10"}, {"0", "1", "32768"}, {"1", "1", "10"},
      {"2", "1", "10"},  {"", "", "10"},     {"PI", "3", "10"},   {"0", "1", "1 0"},
  };
  for (const GraphBoxes& b : cases) {
    SCOPED_TRACE(b.start + "|" + b.end + "|" + b.divisions);
    state.Records.count = 7;
    state.Records.kind = NoData;
    PlotResult r = PlotGo(engine, state, "x", b);
    EXPECT_EQ(r.end, PlotEnd::kSilent);
    EXPECT_TRUE(r.points.empty());
    EXPECT_EQ(r.pointCount, 0);
    EXPECT_TRUE(host.errors.empty());
    EXPECT_EQ(state.Records.count, 7);
    EXPECT_EQ(state.Records.kind, NoData);
  }
}

TEST_F(GraphPlotTest, FormulaErrorsShowTheirNumberAndPlotNothing) {
  struct Case {
    const char* formula;
    int error;
  };
  const Case cases[] = {{"x*y", 24}, {"sin(x", 23}, {"2x+1", 21}, {"2*-x", 22}, {"f(a,b)=a+b", 24}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.formula);
    host.errors.clear();
    PlotResult r = go(c.formula, "0", "1", "10");
    EXPECT_EQ(r.end, PlotEnd::kError);
    EXPECT_TRUE(r.points.empty());
    ASSERT_EQ(host.errors.size(), 1u);
    EXPECT_EQ(host.errors[0], c.error);
    EXPECT_EQ(engine.BindToX, -1);
  }
}

TEST_F(GraphPlotTest, EvaluationErrorEndsThePlotWithThePointsSoFar) {
  PlotResult r = go("1/(x-1)", "0", "2", "4");
  EXPECT_EQ(r.end, PlotEnd::kError);
  ASSERT_EQ(r.points.size(), 2u);  // x = 0 and 0.5; x = 1 divides by zero
  EXPECT_EQ(r.points[1].y, -2);
  EXPECT_EQ(host.errors, std::vector<int>{11});
  EXPECT_EQ(engine.BindToX, -1);
  EXPECT_EQ(state.Records.count, 2);
  EXPECT_EQ(state.GraphMode, 1);
}

TEST_F(GraphPlotTest, ArithmeticFaultEndsQuietlyAndLeavesNoModeForLog) {
  const char* formulas[] = {"x!", "exp(x)", "x^30"};
  for (const char* f : formulas) {
    SCOPED_TRACE(f);
    host.faults.clear();
    PrepareGraphDefaults(engine, state);
    // 13! overflows 32 bits; exp(89) and 20^30 overflow the single precision the table records.
    PlotResult r = go(f, "10", "1000", "990");
    EXPECT_EQ(r.end, PlotEnd::kFault);
    EXPECT_GE(r.points.size(), 1u);
    EXPECT_LT(r.points.size(), 991u);
    EXPECT_TRUE(host.faults.empty());
    EXPECT_TRUE(host.errors.empty());
    EXPECT_EQ(engine.BindToX, -1);
    EXPECT_EQ(engine.StopRequested, 1);
    EXPECT_EQ(state.GraphMode, 0);

    PlotResult log = PlotLog(engine, state, f, "", "", GraphBoxes{"10", "1000", "990"});
    EXPECT_EQ(log.end, PlotEnd::kNothing);
    EXPECT_TRUE(log.points.empty());
    EXPECT_EQ(log.chartType, ChartType::kLogLin);
  }
}

TEST_F(GraphPlotTest, PolarSpiralUsesRadiusTimesCosAndSin) {
  PlotResult r = PlotPole(engine, state, "x", GraphBoxes{"0", "4", "8"});
  ASSERT_EQ(r.end, PlotEnd::kCompleted);
  EXPECT_EQ(state.GraphMode, 2);
  EXPECT_TRUE(r.equalScale);
  ASSERT_EQ(r.points.size(), 9u);
  for (int i = 0; i <= 8; ++i) {
    double t = i * 0.5;
    EXPECT_NEAR(r.points[i].x, t * std::cos(t), 1e-12);
    EXPECT_NEAR(r.points[i].y, t * std::sin(t), 1e-12);
  }
}

TEST_F(GraphPlotTest, ParametricPlotTakesXAndYFromTheTwoFormulas) {
  PlotResult r = PlotPara(engine, state, "  cos(t)", "sin(2*t)", GraphBoxes{"0", "2*PI", "40"});
  ASSERT_EQ(r.end, PlotEnd::kCompleted);
  EXPECT_TRUE(r.thinLines);
  EXPECT_TRUE(r.equalScale);
  ASSERT_EQ(r.points.size(), 41u);
  const double h = 2 * 3.14159265358979 / 40;
  for (int i = 0; i < 40; ++i) {
    EXPECT_NEAR(r.points[i].x, std::cos(i * h), 1e-12);
    EXPECT_NEAR(r.points[i].y, std::sin(2 * i * h), 1e-12);
  }
  EXPECT_EQ(state.GraphMode, 3);
  EXPECT_EQ(host.checkpoints, 39);
}

TEST_F(GraphPlotTest, ParametricChecksBothFormulasAndReadsTheRangeFirst) {
  PlotResult r = PlotPara(engine, state, "t", "t*s", GraphBoxes{"0", "1", "4"});
  EXPECT_EQ(r.end, PlotEnd::kError);
  EXPECT_EQ(host.errors, std::vector<int>{24});
  EXPECT_EQ(engine.BindToX, -1);

  host.errors.clear();
  r = PlotPara(engine, state, "t*s", "t", GraphBoxes{"1", "0", "4"});  // bad range: no compile
  EXPECT_EQ(r.end, PlotEnd::kSilent);
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(GraphPlotTest, ParametricFormulasKeepTheirOwnSums) {
  // Compiling the second formula rewrites the shared integral table the first one sums from.
  PlotResult r = PlotPara(engine, state, "sgm(k*t,1,3,k)", "sgm(k+t,1,2,k)", GraphBoxes{"1", "4", "3"});
  ASSERT_EQ(r.end, PlotEnd::kCompleted) << (host.errors.empty() ? 0 : host.errors[0]);
  ASSERT_EQ(r.points.size(), 4u);
  for (int i = 0; i < 4; ++i) {
    double t = 1 + i;
    EXPECT_DOUBLE_EQ(r.points[i].x, 6 * t);
    EXPECT_DOUBLE_EQ(r.points[i].y, 3 + 2 * t);
  }
}

TEST_F(GraphPlotTest, LogReplotsTheCurrentMode) {
  PlotResult normal = go("x^2", "1", "3", "2");
  state.GraphMode = 1;
  PlotResult log = PlotLog(engine, state, "x^2", "", "", GraphBoxes{"1", "3", "2"});
  EXPECT_EQ(log.chartType, ChartType::kLogLin);
  ASSERT_EQ(log.points.size(), normal.points.size());
  EXPECT_EQ(log.points[2].y, 9);

  state.GraphMode = 2;
  log = PlotLog(engine, state, "1", "", "", GraphBoxes{"0", "PI", "2"});
  ASSERT_EQ(log.points.size(), 3u);
  EXPECT_NEAR(log.points[1].x, 0, 1e-12);
  EXPECT_EQ(state.GraphMode, 2);

  state.GraphMode = 3;
  log = PlotLog(engine, state, "ignored*y", "t", "2*t", GraphBoxes{"0", "1", "1"});
  ASSERT_EQ(log.points.size(), 2u);
  EXPECT_EQ(log.points[1].x, 1);
  EXPECT_EQ(log.points[1].y, 2);
  EXPECT_FALSE(log.thinLines);
  EXPECT_FALSE(log.equalScale);  // a log axis has no scale to share

  state.GraphMode = 0;
  log = PlotLog(engine, state, "x", "", "", GraphBoxes{"0", "1", "1"});
  EXPECT_EQ(log.end, PlotEnd::kNothing);
}

TEST_F(GraphPlotTest, StopRequestEndsThePlotAfterTheCurrentPoint) {
  host.stopAt = 5;
  PlotResult r = go("x", "0", "100", "100");
  EXPECT_EQ(r.end, PlotEnd::kStopped);
  EXPECT_EQ(r.points.size(), 6u);  // point 1, then points 2..6 each followed by events
  EXPECT_EQ(state.Records.count, 6);
  EXPECT_EQ(host.checkpoints, 5);
}

TEST_F(GraphPlotTest, PointsAreRecordedWithTheTableHeader) {
  PlotResult r = go("x^2", "-1", "1", "100");
  const RecordFunctionTable& t = state.Records;
  EXPECT_EQ(t.kind, ComputedData);
  EXPECT_EQ(t.dimension, 2);
  EXPECT_EQ(t.count, 101);
  EXPECT_EQ(t.rangeStart, -1.0f);
  EXPECT_EQ(t.rangeEnd, 1.0f);
  for (int i = 1; i <= 101; ++i) {
    EXPECT_EQ(t.values[i][0], static_cast<float>(r.points[i - 1].x));
    EXPECT_EQ(t.values[i][1], static_cast<float>(r.points[i - 1].y));
    EXPECT_EQ(t.values[i][2], 0.0f);
  }
}

TEST_F(GraphPlotTest, PlotsBeyondFiveThousandPointsRecordTheFirstFiveThousand) {
  PlotResult r = go("x", "0", "5999", "5999");
  ASSERT_EQ(r.points.size(), 6000u);
  EXPECT_EQ(state.Records.count, 5000);
  EXPECT_EQ(state.Records.values[5000][0], 4999.0f);
  EXPECT_EQ(r.points.back().x, 5999);
}

TEST_F(GraphPlotTest, ShorterPlotLeavesLaterRowsOfAnEarlierOne) {
  go("x", "0", "49", "49");
  go("-x", "0", "9", "9");
  const RecordFunctionTable& t = state.Records;
  EXPECT_EQ(t.count, 10);
  EXPECT_EQ(t.values[10][1], -9.0f);
  EXPECT_EQ(t.values[11][1], 10.0f);
  EXPECT_EQ(t.values[50][1], 49.0f);
}

TEST_F(GraphPlotTest, DefaultsOfTheGraphButton) {
  state.DivisionCount = 7;
  state.GraphMode = 0;
  engine.StopRequested = 1;
  engine.BindToX = -1;
  engine.IntegralTable[3].State = 1;
  PrepareGraphDefaults(engine, state);
  EXPECT_EQ(state.DivisionCount, 50);
  EXPECT_EQ(state.GraphMode, 1);
  EXPECT_EQ(engine.StopRequested, 0);
  EXPECT_EQ(engine.BindToX, 1);
  EXPECT_EQ(engine.IntegralBinding, -1);
  EXPECT_EQ(engine.IntegralTable[3].State, -1);
}

}  // namespace
}  // namespace merida

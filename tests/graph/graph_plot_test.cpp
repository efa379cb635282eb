// The graph routines: point sequence, ranges, caps, errors, faults, stopping and recording; the
// compile-once, evaluate-per-point helper under them and its box readers.
#include "graph/graph_plot.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <functional>

#include "engine/formula_sampler.h"
#include "test_support.h"

namespace merida {
namespace {

constexpr double kPi = 3.14159265358979;

class GraphPlotTest : public test::EngineTest {
 protected:
  GraphPlotTest() { PrepareGraphDefaults(engine, state); }
  PlotResult go(const std::string& f, const std::string& a, const std::string& b, const std::string& n) {
    return PlotGo(engine, state, f, GraphBoxes{a, b, n});
  }
};

TEST_F(GraphPlotTest, NormalPlotSamplesEveryPointOfTheRangeAndRecordsIt) {
  struct Case {
    const char *formula, *start, *end, *divisions;
    double a, b;
    int n;
    std::function<double(double)> f;
  };
  const Case cases[] = {
      {"x^2", "-1", "1", "100", -1, 1, 100, [](double x) { return x * x; }},
      {"sin(x)", "0", "PI", "6", 0, kPi, 6, [](double x) { return std::sin(x); }},
      {"  f(t)=t/2", "-PI/2", "5", "1", -kPi / 2, 5, 1, [](double t) { return t / 2; }},
      {"x", "0.2", "0.9", "3", 0.2, 0.9, 3, [](double x) { return x; }},  // the end is no sum of steps
      {"x", "0", "1", "2.5", 0, 1, 2, [](double x) { return x; }},        // halves to even
      {"x", "0", "1", "3.5", 0, 1, 4, [](double x) { return x; }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.formula) + " " + c.divisions);
    host.checkpoints = 0;
    PlotResult r = go(c.formula, c.start, c.end, c.divisions);
    ASSERT_EQ(r.end, PlotEnd::kCompleted);
    EXPECT_EQ(host.checkpoints, c.n - 1);  // checkpoints after points 2..n only
    EXPECT_EQ(r.chartType, ChartType::kLine);
    EXPECT_FALSE(r.equalScale);
    EXPECT_EQ(r.pointCount, c.n + 1);
    ASSERT_EQ(r.points.size(), static_cast<size_t>(c.n + 1));
    const RecordFunctionTable& t = state.Records;
    EXPECT_EQ(std::tuple(t.kind, t.dimension, t.count), std::tuple(ComputedData, 2, c.n + 1));
    EXPECT_EQ(std::pair(t.rangeStart, t.rangeEnd), std::pair(static_cast<float>(c.a), static_cast<float>(c.b)));
    for (int i = 0; i <= c.n; ++i) {
      const double x = i == c.n ? c.b : i * ((c.b - c.a) / c.n) + c.a;
      EXPECT_EQ(r.points[i].x, x) << "point " << i;
      EXPECT_NEAR(r.points[i].y, c.f(x), 1e-12 * (1 + std::fabs(c.f(x)))) << "point " << i;
      EXPECT_EQ(t.values[i + 1], (std::array<float, 3>{static_cast<float>(x), static_cast<float>(r.points[i].y), 0}));
    }
    EXPECT_EQ(state.GraphMode, 1);
  }
}

TEST_F(GraphPlotTest, DivisionsAreCappedAtSixThousandPointsAndFiveThousandRecords) {
  const std::tuple<const char*, size_t, std::optional<std::string>> cases[] = {
      {"5998.5", 5999, std::nullopt}, {"5999", 6000, std::nullopt}, {"6000", 6000, "6000"}, {"32767", 6000, "6000"}};
  for (const auto& [box, points, shown] : cases) {
    PlotResult r = go("x", "0", "5999", box);
    ASSERT_EQ(std::tuple(r.end, r.points.size(), r.pointCount, r.divisionsBox, state.Records.count),
              std::tuple(PlotEnd::kCompleted, points, static_cast<int>(points), shown, 5000)) << box;
    EXPECT_EQ(r.points.back().x, 5999) << box;
    EXPECT_EQ(state.DivisionCount, std::nearbyint(std::stod(box))) << box;
  }
  EXPECT_EQ(state.Records.values[5000][0], 4999.0f);
  // A shorter plot leaves the later rows of an earlier one.
  go("-x", "0", "9", "9");
  EXPECT_EQ(std::tuple(state.Records.count, state.Records.values[10][1], state.Records.values[11][1]),
            std::tuple(10, -9.0f, 10.0f));
}

TEST_F(GraphPlotTest, UnusableRangesEndSilentlyAndFormulaErrorsPlotNothing) {
  const GraphBoxes ranges[] = {{"0", "1", "abc"}, {"0", "1", "0"},     {"0", "1", "0.4"}, {"0", "1", "32768"},
                               {"0", "1", "1 0"}, {"1", "1", "10"},    {"2", "1", "10"},  {"", "", "10"},
                               {"PI", "3", "10"}};
  for (const GraphBoxes& b : ranges) {
    SCOPED_TRACE(b.start + "|" + b.end + "|" + b.divisions);
    state.Records.count = 7;
    state.Records.kind = NoData;
    PlotResult r = PlotGo(engine, state, "x", b);
    EXPECT_EQ(std::tuple(r.end, r.points.size(), r.pointCount, state.Records.count, state.Records.kind),
              std::tuple(PlotEnd::kSilent, 0u, 0, 7, NoData));
  }
  EXPECT_TRUE(host.errors.empty());
  const std::pair<const char*, int> errors[] = {{"x*y", 24}, {"sin(x", 23}, {"2x+1", 21}, {"f(a,b)=a+b", 24}};
  for (auto [formula, error] : errors) {
    host.errors.clear();
    PlotResult r = go(formula, "0", "1", "10");
    EXPECT_EQ(std::tuple(r.end, r.points.size(), engine.BindToX), std::tuple(PlotEnd::kError, 0u, -1)) << formula;
    EXPECT_EQ(host.errors, std::vector<int>{error}) << formula;
  }
}

TEST_F(GraphPlotTest, EvaluationErrorsKeepThePointsAndFaultsEndQuietly) {
  PlotResult r = go("1/(x-1)", "0", "2", "4");  // x = 0 and 0.5 are drawn; x = 1 divides by zero
  EXPECT_EQ(std::tuple(r.end, r.points.size(), engine.BindToX, state.Records.count, state.GraphMode),
            std::tuple(PlotEnd::kError, 2u, -1, 2, 1));
  EXPECT_EQ(r.points[1].y, -2);
  EXPECT_EQ(host.errors, std::vector<int>{11});
  host.errors.clear();
  // 13! overflows 32 bits; exp(89) overflows the single precision the table records.
  for (const char* f : {"x!", "exp(x)"}) {
    PrepareGraphDefaults(engine, state);
    r = go(f, "10", "1000", "990");
    EXPECT_TRUE(r.points.size() >= 1 && r.points.size() < 991) << f;
    EXPECT_EQ(std::tuple(r.end, engine.BindToX, engine.StopRequested, state.GraphMode),
              std::tuple(PlotEnd::kFault, -1, 1, 0)) << f;
    PlotResult log = PlotLog(engine, state, f, "", "", GraphBoxes{"10", "1000", "990"});  // no mode left for Log
    EXPECT_EQ(std::pair(log.end, log.chartType), std::pair(PlotEnd::kNothing, ChartType::kLogLin)) << f;
  }
  EXPECT_TRUE(host.faults.empty());
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(GraphPlotTest, PolarAndParametricPlots) {
  PlotResult r = PlotPole(engine, state, "x", GraphBoxes{"0", "4", "8"});
  EXPECT_EQ(std::tuple(r.end, state.GraphMode, r.equalScale), std::tuple(PlotEnd::kCompleted, 2, true));
  ASSERT_EQ(r.points.size(), 9u);
  for (int i = 0; i <= 8; ++i) {
    const double t = i * 0.5;
    EXPECT_LE(std::hypot(r.points[i].x - t * std::cos(t), r.points[i].y - t * std::sin(t)), 1e-12) << i;
  }
  host.checkpoints = 0;
  r = PlotPara(engine, state, "  cos(t)", "sin(2*t)", GraphBoxes{"0", "2*PI", "40"});
  EXPECT_EQ(std::tuple(r.end, state.GraphMode, r.thinLines, r.equalScale),
            std::tuple(PlotEnd::kCompleted, 3, true, true));
  ASSERT_EQ(r.points.size(), 41u);
  for (int i = 0; i < 40; ++i) {
    const double t = i * 2 * kPi / 40;
    EXPECT_LE(std::hypot(r.points[i].x - std::cos(t), r.points[i].y - std::sin(2 * t)), 1e-12) << i;
  }
  EXPECT_EQ(host.checkpoints, 39);
  // Compiling the second formula rewrites the shared integral table the first one sums from.
  r = PlotPara(engine, state, "sgm(k*t,1,3,k)", "sgm(k+t,1,2,k)", GraphBoxes{"1", "4", "3"});
  ASSERT_EQ(r.points.size(), 4u);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(std::tuple(r.points[i].x, r.points[i].y), std::tuple(6.0 + 6 * i, 5.0 + 2 * i));
  // Both formulas are checked, after the range.
  EXPECT_EQ(PlotPara(engine, state, "t", "t*s", GraphBoxes{"0", "1", "4"}).end, PlotEnd::kError);
  EXPECT_EQ(host.errors, std::vector<int>{24});
  EXPECT_EQ(engine.BindToX, -1);
  EXPECT_EQ(PlotPara(engine, state, "t*s", "t", GraphBoxes{"1", "0", "4"}).end, PlotEnd::kSilent);
  EXPECT_EQ(host.errors.size(), 1u);
}

TEST_F(GraphPlotTest, LogReplotsTheCurrentMode) {
  // Normal, polar (the middle point on the y axis), parametric (the formula is not read).
  const std::tuple<int16_t, const char*, GraphBoxes, double, double> cases[] = {
      {1, "x^2", {"1", "3", "2"}, 2, 4}, {2, "1", {"0", "PI", "2"}, 0, 1}, {3, "ignored*y", {"0", "1", "2"}, 0.5, 1}};
  for (const auto& [mode, formula, boxes, x, y] : cases) {
    state.GraphMode = mode;
    PlotResult log = PlotLog(engine, state, formula, "t", "2*t", boxes);
    EXPECT_EQ(log.chartType, ChartType::kLogLin);
    ASSERT_EQ(log.points.size(), 3u) << mode;
    EXPECT_NEAR(log.points[1].x, x, 1e-12) << mode;
    EXPECT_NEAR(log.points[1].y, y, 1e-12) << mode;
    EXPECT_EQ(state.GraphMode, mode);
    EXPECT_FALSE(log.thinLines || log.equalScale);  // a log axis has no scale to share
  }
}

TEST_F(GraphPlotTest, StopEndsThePlotAfterTheCurrentPoint) {
  host.stopAt = 5;
  PlotResult r = go("x", "0", "100", "100");  // point 1, then points 2..6 each followed by events
  EXPECT_EQ(std::tuple(r.end, r.points.size(), state.Records.count, host.checkpoints),
            std::tuple(PlotEnd::kStopped, 6u, 6, 5));
}

class FormulaSamplerTest : public test::EngineTest {
 protected:
  FormulaSampler s{engine};
  double y = 0;
};

TEST_F(FormulaSamplerTest, CompilesOnceAndEvaluatesAtEachX) {
  ASSERT_EQ(s.compile("  sqr(x)+integ(t,0,1,10)"), PointStatus::kOk);
  EXPECT_EQ(s.variables(), std::vector<std::string>{"x"});
  for (double x : {0.0, 1.0, 2.25, 16.0}) {
    ASSERT_EQ(s.at(x, y), PointStatus::kOk);
    EXPECT_NEAR(y, std::sqrt(x) + 0.5, 1e-12);
  }
  EXPECT_EQ(s.at(-1, y), PointStatus::kError);
  EXPECT_EQ(host.errors, std::vector<int>{12});
}

TEST_F(FormulaSamplerTest, ReportsVariablesInOrderAndBindsCells) {
  ASSERT_EQ(s.compile("b*10+a"), PointStatus::kOk);
  EXPECT_EQ(s.variables(), (std::vector<std::string>{"b", "a"}));
  ASSERT_EQ(s.atCells({{"a", 3}, {"b", 4}}, y), PointStatus::kOk);
  EXPECT_EQ(y, 43);
  ASSERT_EQ(s.atCells({{"a", -1}, {"b", 0.5}}, y), PointStatus::kOk);
  EXPECT_EQ(y, 4);
  EXPECT_EQ(s.compile("sin(x"), PointStatus::kError);
  EXPECT_EQ(host.errors, std::vector<int>{23});
  // 13! overflows 32 bits; tools end a fault without a message.
  ASSERT_EQ(s.compile("x!"), PointStatus::kOk);
  EXPECT_EQ(s.at(12, y), PointStatus::kOk);
  EXPECT_EQ(y, 479001600);
  EXPECT_EQ(s.at(13, y), PointStatus::kFault);
  EXPECT_TRUE(host.faults.empty());
}

TEST(FormulaSamplerBoxTest, CountBoxesAndRecordValues) {
  const std::pair<const char*, std::optional<int16_t>> counts[] = {
      {"10", 10},   {" 2.5 ", 2},    {"3.5", 4}, {"-7", -7}, {"1E3", 1000}, {"32767", 32767}, {"32768", {}},
      {"", {}}, {"1 0", {}}, {"PI", {}}, {"5x", {}}};
  for (auto [text, value] : counts) EXPECT_EQ(ReadCountBox(text), value) << text;
  // Record values must fit single precision.
  EXPECT_EQ(RecordValue(1.5), 1.5f);
  EXPECT_EQ(RecordValue(-FLT_MAX), -FLT_MAX);
  for (double v : {1e39, -1e39, double(INFINITY), double(NAN)}) EXPECT_FALSE(RecordValue(v)) << v;
}

}  // namespace
}  // namespace merida

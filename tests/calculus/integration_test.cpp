// The Simpson rules of the Integration windows and the delay recurrence: counts, caps, limits,
// initial values, errors, faults, stopping.
#include "calculus/integration.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "calculus/delay.h"
#include "test_support.h"

namespace merida {
namespace {

using IntegrationTest = test::EngineTest;
const IntegrationEnd kDone = IntegrationEnd::kCompleted, kSilent = IntegrationEnd::kSilent,
                     kError = IntegrationEnd::kError, kFault = IntegrationEnd::kFault;
const std::optional<std::string> kKept;  // the count box keeps what the user typed

TEST_F(IntegrationTest, SingleIntegral) {
  // Formula, boxes, end, value within the tolerance, count box shown, error.
  using Case = std::tuple<const char*, RangeBoxes, IntegrationEnd, double, double, std::optional<std::string>, int>;
  const Case cases[] = {
      {"x^2", {"0", "1", "50"}, kDone, 1.0 / 3, 1e-15, kKept, 0},
      {"x^2", {"0", "1", "7"}, kDone, 1.0 / 3, 1e-15, "8", 0},  // an odd count is made even
      {"x^2", {"0", "1", "1"}, kDone, 1.0 / 3, 1e-15, "2", 0},
      {"x^3-x", {"-1", "2", "2.5"}, kDone, 2.25, 1e-14, kKept, 0},  // 2.5 -> 2
      {"x", {"0", "1", "10001"}, kDone, 0.5, 1e-12, "10000", 0},
      {"x", {"0", "1", "1E+30"}, kDone, 0.5, 1e-12, "10000", 0},
      {"sin(x)", {"0", "PI", "100"}, kDone, 2.0000000108245, 1e-12, kKept, 0},
      {"  t^2", {"-1", "1", "4"}, kDone, 2.0 / 3, 1e-15, kKept, 0},
      {"x", {"1", "0", "10"}, kSilent, 0, 0, kKept, 0},      {"x", {"1", "1", "10"}, kSilent, 0, 0, kKept, 0},
      {"x", {"0", "1", "0.4"}, kSilent, 0, 0, kKept, 0},     {"x", {"0", "1", "ten"}, kSilent, 0, 0, kKept, 0},
      {"x*y", {"0", "1", "10"}, kError, 0, 0, kKept, 24},    {"1/x", {"-1", "1", "2"}, kError, 0, 0, kKept, 11},
      {"x", {"0", "1/0", "2"}, kError, 0, 0, kKept, 11},     {"exp(x)", {"0", "800", "10"}, kFault, 0, 0, kKept, 0},
      {"x", {"-1E+308", "1E+308", "2"}, kFault, 0, 0, kKept, 0},
  };
  for (const auto& [formula, boxes, end, value, tolerance, numBox, error] : cases) {
    SCOPED_TRACE(std::string(formula) + " " + boxes.max + " " + boxes.num);
    host.errors.clear();
    state.GraphMode = 1;
    IntegrationResult r = IntegrateSingle(engine, state, formula, boxes);
    EXPECT_EQ(std::tuple(r.end, r.numBox, r.value.has_value(), engine.BindToX, state.GraphMode),
              std::tuple(end, numBox, end == kDone, -1, end == kFault ? 0 : 1));
    EXPECT_NEAR(r.value.value_or(0), value, tolerance);
    EXPECT_EQ(host.errors, error ? std::vector<int>{error} : std::vector<int>{});
  }
  EXPECT_TRUE(host.faults.empty()) << "a tool ends a fault without a message";
}

// Panels start where the last one ended (accumulated by addition), each evaluating its three
// points afresh: the sum is formed in exactly this order.
TEST_F(IntegrationTest, PanelStartsAccumulateByAddition) {
  for (int n : {2, 6, 10, 30}) {
    const double a = 0.1, b = 1.7, h = (b - a) / n;
    auto f = [](double x) { return std::sqrt(x); };  // x used once: no 15-digit read-back
    double S = 0, x0 = a;
    for (int j = 0; j < n; j += 2) {
      S = S + f(x0) + 4 * f(1 * h + x0) + f(2 * h + x0);
      x0 = 2 * h + x0;
    }
    IntegrationResult r = IntegrateSingle(engine, state, "sqr(x)", {"0.1", "1.7", std::to_string(n)});
    ASSERT_TRUE(r.value) << n;
    EXPECT_EQ(*r.value, h * S / 3) << n;
  }
}

TEST_F(IntegrationTest, CloseStopsBetweenPanelsWithoutAnAnswer) {
  host.stopAt = 3;  // events run after every panel
  IntegrationResult r = IntegrateSingle(engine, state, "x", {"0", "1", "100"});
  EXPECT_EQ(std::tuple(r.end, r.value, host.checkpoints), std::tuple(IntegrationEnd::kStopped, std::nullopt, 3));
  host.stopAt = 5;  // and after every row of blocks
  r = IntegrateDouble(engine, state, "x*y", {"0", "1", "8"}, {"0", "1", "8"});
  EXPECT_EQ(std::tuple(r.end, host.checkpoints), std::tuple(IntegrationEnd::kStopped, 5));
}

TEST_F(IntegrationTest, DoubleIntegral) {
  // Formula, the two ranges, end, value, the two count boxes shown, error.
  using Case = std::tuple<const char*, RangeBoxes, RangeBoxes, IntegrationEnd, double, std::optional<std::string>,
                          std::optional<std::string>, int>;
  const Case cases[] = {
      // An odd count is used one higher while its box keeps what the user typed.
      {"x*y", {"0", "1", "5"}, {"0", "2", "3"}, kDone, 1, kKept, kKept, 0},
      {"x^2*y^3", {"0", "3", "2"}, {"-1", "2", "4"}, kDone, 9 * 15.0 / 4, kKept, kKept, 0},
      {"y-x", {"0", "1", "2"}, {"0", "3", "2"}, kDone, -3, kKept, kKept, 0},  // the first variable used is y
      // A header's order decides: b is the first variable although a is used first.
      {"f(b,a)=a+0*b", {"0", "2", "2"}, {"0", "1", "2"}, kDone, 1, kKept, kKept, 0},
      {"x*y", {"0", "1", "20000"}, {"0", "1", "2"}, kDone, 0.25, "10000", kKept, 0},
      {"x*y", {"0", "1", "2"}, {"0", "1", "10001"}, kDone, 0.25, kKept, "10000", 0},
      {"x*y", {"0", "1", "1"}, {"0", "1", "4"}, kSilent, 0, kKept, kKept, 0},
      {"x*y", {"0", "1", "4"}, {"2", "1", "4"}, kSilent, 0, kKept, kKept, 0},
      {"x*y", {"0", "1", "4"}, {"0", "1", "n"}, kSilent, 0, kKept, kKept, 0},
      {"x", {"0", "1", "4"}, {"0", "1", "4"}, kError, 0, kKept, kKept, 33},
      {"x/y", {"0", "1", "2"}, {"0", "1", "2"}, kError, 0, kKept, kKept, 11},
      {"exp(x*y)", {"0", "30", "2"}, {"0", "30", "2"}, kFault, 0, kKept, kKept, 0},
  };
  for (const auto& [formula, first, second, end, value, numBox, numBox2, error] : cases) {
    SCOPED_TRACE(std::string(formula) + " " + first.num + " " + second.num);
    host.errors.clear();
    IntegrationResult r = IntegrateDouble(engine, state, formula, first, second);
    EXPECT_EQ(std::tuple(r.end, r.numBox, r.numBox2, r.value.has_value(), engine.BindToX),
              std::tuple(end, numBox, numBox2, end == kDone, -1));
    EXPECT_NEAR(r.value.value_or(0), value, 1e-13);
    EXPECT_EQ(host.errors, error ? std::vector<int>{error} : std::vector<int>{});
  }
  // The Double button names the two variables or refuses.
  using Names = std::optional<std::pair<std::string, std::string>>;
  host.errors.clear();
  EXPECT_EQ(PrepareDoubleIntegral(engine, "x*y+y"), Names({"x", "y"}));
  EXPECT_EQ(PrepareDoubleIntegral(engine, "g(s,t)=t*s"), Names({"s", "t"}));
  EXPECT_FALSE(PrepareDoubleIntegral(engine, "sin(x)") || PrepareDoubleIntegral(engine, "1+"));
  EXPECT_EQ(std::tuple(host.errors, engine.BindToX), std::tuple(std::vector<int>{33, 22}, -1));
}

using DelayTest = test::EngineTest;

TEST_F(DelayTest, Sequences) {
  const DelayEnd done = DelayEnd::kCompleted, silent = DelayEnd::kSilent, error = DelayEnd::kError;
  // Formula, steps, initial cells, end, every chart point (initial values first), error.
  using Case = std::tuple<const char*, const char*, std::vector<std::string>, DelayEnd, std::vector<double>, int>;
  const Case cases[] = {
      {"timestep(1)+timestep(2)", "9", {"1", "1"}, done, {1, 1, 2, 3, 5, 8, 13, 21, 34, 55}, 0},
      // The delays are read from the grid top down: row k is the value k-1 steps after the start.
      {"timestep(3)", "5", {"7", "8", "9"}, done, {7, 8, 9, 7, 8, 9}, 0},
      {"2*timestep(1)", "3", {"1", "99", ""}, done, {1, 2, 4, 8}, 0},  // only K rows are read
      {"timestep(0)+timestep(2)", "4", {"1", "2"}, done, {1, 2, 2, 4, 4}, 0},  // a zero delay reads K back
      {"timestep(1)+timestep(2)", "1", {"3", "4"}, done, {3, 4}, 0},  // fewer steps than K: the initial values
      {"timestep(1)+1", "2.5", {"0"}, done, {0, 1, 2}, 0},
      // A delayed value enters the formula as its 15-digit text.
      {"timestep(1)/3", "2", {"1"}, done, {1, 1.0 / 3, 0.333333333333333 / 3}, 0},
      {"2+3", "5", {"1"}, error, {}, 22},              {"timestep(11)", "5", {"1"}, error, {}, 22},
      {"x*timestep(1)", "5", {"1"}, error, {}, 34},    {"timestep(2)", "5", {"1", " "}, silent, {}, 0},
      {"timestep(1)", "five", {"1"}, silent, {}, 0},
      {"1/(timestep(1)-1)", "5", {"2"}, error, {2, 1}, 11},  // what was computed stays
      {"timestep(1)^2", "20", {"1E+10"}, DelayEnd::kFault, {1e10, 1e20}, 0},
  };
  for (const auto& [formula, steps, cells, end, want, code] : cases) {
    SCOPED_TRACE(formula);
    host.errors.clear();
    DelayResult r = RunDelay(engine, state, formula, steps, cells);
    EXPECT_EQ(std::tuple(r.end, engine.BindToX), std::tuple(end, -1));
    std::vector<double> values;
    for (size_t i = 0; i < r.points.size(); ++i) values.push_back(r.points[i].x == i + 1.0 ? r.points[i].y : NAN);
    EXPECT_EQ(values, want);  // at x = 1, 2, ...
    EXPECT_EQ(host.errors, code ? std::vector<int>{code} : std::vector<int>{});
  }
}

TEST_F(DelayTest, StepsAboveTheCapMakeSixThousandPointsAndRecordTheFirstFiveThousand) {
  DelayResult r = RunDelay(engine, state, "timestep(1)+1", "10000", {"0"});
  ASSERT_EQ(std::tuple(r.end, r.stepBox, r.points.size()), std::tuple(DelayEnd::kCompleted, "6000", 6000u));
  EXPECT_EQ(r.points.back().y, 5999);
  const RecordFunctionTable& t = state.Records;
  EXPECT_EQ(std::tuple(t.kind, t.rangeStart, t.rangeEnd, t.count, t.values[3][1]),
            std::tuple(ComputedData, 1.0f, 5999.0f, RecordFunctionTable::kCapacity, 2.0f));
  // A count beyond 16 bits is capped the same way.
  EXPECT_EQ(RunDelay(engine, state, "timestep(1)", "1E+9", {"0"}).stepBox, "6000");
  // Close ends the run after the current step.
  host.stopAt = host.checkpoints + 4;
  r = RunDelay(engine, state, "timestep(1)+1", "100", {"0"});
  EXPECT_EQ(std::tuple(r.end, r.points.size()), std::tuple(DelayEnd::kStopped, 5u));
}

}  // namespace
}  // namespace merida

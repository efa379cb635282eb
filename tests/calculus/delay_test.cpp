// The delay recurrence: initial values, the ring of K values, errors, caps, faults and stopping.
#include "calculus/delay.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

class DelayTest : public test::EngineTest {
 protected:
  std::vector<double> values(const DelayResult& r) {
    std::vector<double> out;
    for (const ChartPoint& p : r.points) out.push_back(p.y);
    return out;
  }
};

struct DelayCase {
  const char* name;
  const char* formula;
  const char* steps;
  std::vector<std::string> cells;
  DelayEnd end;
  std::vector<double> values;  // every chart point, initial values first
  std::optional<int> error;
};

class DelayCaseTest : public DelayTest, public ::testing::WithParamInterface<DelayCase> {};

TEST_P(DelayCaseTest, Sequence) {
  const DelayCase& c = GetParam();
  DelayResult r = RunDelay(engine, state, c.formula, c.steps, c.cells);
  EXPECT_EQ(r.end, c.end);
  EXPECT_EQ(values(r), c.values);
  for (size_t i = 0; i < r.points.size(); ++i) EXPECT_EQ(r.points[i].x, static_cast<double>(i + 1));
  EXPECT_EQ(host.errors, c.error ? std::vector<int>{*c.error} : std::vector<int>{});
  EXPECT_EQ(engine.BindToX, -1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DelayCaseTest,
    ::testing::Values(
        DelayCase{"Fibonacci", "timestep(1)+timestep(2)", "9", {"1", "1"}, DelayEnd::kCompleted,
                  {1, 1, 2, 3, 5, 8, 13, 21, 34, 55}, std::nullopt},
        // The delays are read from the grid top down: row k is the value k-1 steps after the start.
        DelayCase{"RowsInOrder", "timestep(3)", "5", {"7", "8", "9"}, DelayEnd::kCompleted, {7, 8, 9, 7, 8, 9},
                  std::nullopt},
        DelayCase{"OnlyKRowsRead", "2*timestep(1)", "3", {"1", "99", ""}, DelayEnd::kCompleted, {1, 2, 4, 8},
                  std::nullopt},
        DelayCase{"ZeroDelayReadsKBack", "timestep(0)+timestep(2)", "4", {"1", "2"}, DelayEnd::kCompleted,
                  {1, 2, 2, 4, 4}, std::nullopt},
        DelayCase{"StepsBelowKShowsInitialValues", "timestep(1)+timestep(2)", "1", {"3", "4"}, DelayEnd::kCompleted,
                  {3, 4}, std::nullopt},
        DelayCase{"RoundedSteps", "timestep(1)+1", "2.5", {"0"}, DelayEnd::kCompleted, {0, 1, 2}, std::nullopt},
        // A delayed value enters the formula as its 15-digit text.
        DelayCase{"FifteenDigits", "timestep(1)/3", "2", {"1"}, DelayEnd::kCompleted,
                  {1, 1.0 / 3, 0.333333333333333 / 3}, std::nullopt},
        DelayCase{"NoTimestep", "2+3", "5", {"1"}, DelayEnd::kError, {}, 22},
        DelayCase{"TooLongADelay", "timestep(11)", "5", {"1"}, DelayEnd::kError, {}, 22},
        DelayCase{"Variable", "x*timestep(1)", "5", {"1"}, DelayEnd::kError, {}, 34},
        DelayCase{"EmptyInitialCell", "timestep(2)", "5", {"1", " "}, DelayEnd::kSilent, {}, std::nullopt},
        DelayCase{"StepBoxNotANumber", "timestep(1)", "five", {"1"}, DelayEnd::kSilent, {}, std::nullopt},
        DelayCase{"ErrorKeepsWhatWasComputed", "1/(timestep(1)-1)", "5", {"2"}, DelayEnd::kError, {2, 1}, 11},
        DelayCase{"Overflow", "timestep(1)^2", "20", {"1E+10"}, DelayEnd::kFault, {1e10, 1e20}, std::nullopt}),
    [](const ::testing::TestParamInfo<DelayCase>& p) { return std::string(p.param.name); });

TEST_F(DelayTest, StepsAboveTheCapMakeSixThousandPointsAndRecordTheFirstFiveThousand) {
  DelayResult r = RunDelay(engine, state, "timestep(1)+1", "10000", {"0"});
  EXPECT_EQ(r.end, DelayEnd::kCompleted);
  EXPECT_EQ(r.stepBox, "6000");
  ASSERT_EQ(r.points.size(), 6000u);
  EXPECT_EQ(r.points.back().y, 5999);
  EXPECT_EQ(state.Records.kind, ComputedData);
  EXPECT_EQ(state.Records.rangeStart, 1);
  EXPECT_EQ(state.Records.rangeEnd, 5999);
  EXPECT_EQ(state.Records.count, RecordFunctionTable::kCapacity);
  EXPECT_EQ(state.Records.values[3][1], 2.0f);
  // A count beyond 16 bits is capped the same way.
  EXPECT_EQ(RunDelay(engine, state, "timestep(1)", "1E+9", {"0"}).stepBox, "6000");
}

TEST_F(DelayTest, CloseEndsTheRunAfterTheCurrentStep) {
  host.stopAt = 4;
  DelayResult r = RunDelay(engine, state, "timestep(1)+1", "100", {"0"});
  EXPECT_EQ(r.end, DelayEnd::kStopped);
  EXPECT_EQ(r.points.size(), 5u);
}

}  // namespace
}  // namespace merida

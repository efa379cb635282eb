// The Simpson rules of the Integration windows: counts, caps, limits, errors, faults, stopping.
#include "calculus/integration.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "test_support.h"

namespace merida {
namespace {


using IntegrationTest = test::EngineTest;

constexpr double kAny = NAN;  // the value is checked by its own test

struct SingleCase {
  const char* formula;
  RangeBoxes boxes;
  IntegrationEnd end;
  double value;       // expected within `tolerance`; NAN: not checked
  double tolerance;
  std::optional<std::string> numBox;
  std::optional<int> error;
};

class SingleIntegralTest : public IntegrationTest, public ::testing::WithParamInterface<SingleCase> {};

TEST_P(SingleIntegralTest, Case) {
  const SingleCase& c = GetParam();
  state.GraphMode = 1;
  IntegrationResult r = IntegrateSingle(engine, state, c.formula, c.boxes);
  EXPECT_EQ(r.end, c.end);
  EXPECT_EQ(r.numBox, c.numBox);
  EXPECT_EQ(r.value.has_value(), c.end == IntegrationEnd::kCompleted);
  if (r.value && !std::isnan(c.value)) {
    EXPECT_NEAR(*r.value, c.value, c.tolerance);
  }
  EXPECT_EQ(host.errors, c.error ? std::vector<int>{*c.error} : std::vector<int>{});
  EXPECT_EQ(engine.BindToX, -1);
  EXPECT_EQ(state.GraphMode, c.end == IntegrationEnd::kFault ? 0 : 1);
  EXPECT_TRUE(host.faults.empty()) << "a tool ends a fault without a message";
}

const IntegrationEnd kDone = IntegrationEnd::kCompleted, kSilent = IntegrationEnd::kSilent,
                     kError = IntegrationEnd::kError, kFault = IntegrationEnd::kFault;

INSTANTIATE_TEST_SUITE_P(
    Cases, SingleIntegralTest,
    ::testing::Values(
        SingleCase{"x^2", {"0", "1", "50"}, kDone, 1.0 / 3, 1e-15, std::nullopt, std::nullopt},
        SingleCase{"x^2", {"0", "1", "7"}, kDone, 1.0 / 3, 1e-15, "8", std::nullopt},
        SingleCase{"x^2", {"0", "1", "1"}, kDone, 1.0 / 3, 1e-15, "2", std::nullopt},
        SingleCase{"x^3-x", {"-1", "2", "2.5"}, kDone, 2.25, 1e-14, std::nullopt, std::nullopt},  // 2.5 -> 2
        SingleCase{"x^3-x", {"-1", "2", "3.5"}, kDone, 2.25, 1e-14, std::nullopt, std::nullopt},  // 3.5 -> 4
        SingleCase{"x", {"0", "1", "10001"}, kDone, 0.5, 1e-12, "10000", std::nullopt},
        SingleCase{"x", {"0", "1", "1E+30"}, kDone, 0.5, 1e-12, "10000", std::nullopt},
        SingleCase{"sin(x)", {"0", "PI", "100"}, kDone, 2.0000000108245, 1e-12, std::nullopt, std::nullopt},
        SingleCase{"3", {"0", "2", "4"}, kDone, 6, 1e-15, std::nullopt, std::nullopt},
        SingleCase{"  t^2", {"-1", "1", "4"}, kDone, 2.0 / 3, 1e-15, std::nullopt, std::nullopt},
        SingleCase{"x", {"1", "0", "10"}, kSilent, kAny, 0, std::nullopt, std::nullopt},
        SingleCase{"x", {"1", "1", "10"}, kSilent, kAny, 0, std::nullopt, std::nullopt},
        SingleCase{"x", {"0", "1", "0"}, kSilent, kAny, 0, std::nullopt, std::nullopt},
        SingleCase{"x", {"0", "1", "0.4"}, kSilent, kAny, 0, std::nullopt, std::nullopt},
        SingleCase{"x", {"0", "1", "ten"}, kSilent, kAny, 0, std::nullopt, std::nullopt},
        SingleCase{"x*y", {"0", "1", "10"}, kError, kAny, 0, std::nullopt, 24},
        SingleCase{"1/x", {"-1", "1", "2"}, kError, kAny, 0, std::nullopt, 11},
        SingleCase{"x", {"0", "1/0", "2"}, kError, kAny, 0, std::nullopt, 11},
        SingleCase{"exp(x)", {"0", "800", "10"}, kFault, kAny, 0, std::nullopt, std::nullopt},
        SingleCase{"x", {"-1E+308", "1E+308", "2"}, kFault, kAny, 0, std::nullopt, std::nullopt}));

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
  host.stopAt = 3;
  IntegrationResult r = IntegrateSingle(engine, state, "x", {"0", "1", "100"});
  EXPECT_EQ(r.end, IntegrationEnd::kStopped);
  EXPECT_FALSE(r.value);
  EXPECT_EQ(host.checkpoints, 3) << "events run after every panel";

  host.stopAt = 2;
  host.checkpoints = 0;
  r = IntegrateDouble(engine, state, "x*y", {"0", "1", "8"}, {"0", "1", "8"});
  EXPECT_EQ(r.end, IntegrationEnd::kStopped);
  EXPECT_EQ(host.checkpoints, 2) << "events run after every row of blocks";
}

struct DoubleCase {
  const char* formula;
  RangeBoxes first, second;
  IntegrationEnd end;
  double value;
  std::optional<std::string> numBox, numBox2;
  std::optional<int> error;
};

class DoubleIntegralTest : public IntegrationTest, public ::testing::WithParamInterface<DoubleCase> {};

TEST_P(DoubleIntegralTest, Case) {
  const DoubleCase& c = GetParam();
  IntegrationResult r = IntegrateDouble(engine, state, c.formula, c.first, c.second);
  EXPECT_EQ(r.end, c.end);
  EXPECT_EQ(r.numBox, c.numBox);
  EXPECT_EQ(r.numBox2, c.numBox2);
  EXPECT_EQ(r.value.has_value(), c.end == IntegrationEnd::kCompleted);
  if (r.value && !std::isnan(c.value)) {
    EXPECT_NEAR(*r.value, c.value, 1e-13);
  }
  EXPECT_EQ(host.errors, c.error ? std::vector<int>{*c.error} : std::vector<int>{});
  EXPECT_EQ(engine.BindToX, -1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DoubleIntegralTest,
    ::testing::Values(
        DoubleCase{"x*y", {"0", "1", "20"}, {"0", "2", "20"}, kDone, 1, std::nullopt, std::nullopt, std::nullopt},
        // An odd count is used one higher while its box keeps what the user typed.
        DoubleCase{"x*y", {"0", "1", "5"}, {"0", "2", "3"}, kDone, 1, std::nullopt, std::nullopt, std::nullopt},
        DoubleCase{"x^2*y^3", {"0", "3", "2"}, {"-1", "2", "4"}, kDone, 9 * 15.0 / 4, std::nullopt, std::nullopt,
                   std::nullopt},
        // The first variable is the first one used; here y.
        DoubleCase{"y-x", {"0", "1", "2"}, {"0", "3", "2"}, kDone, -3, std::nullopt, std::nullopt, std::nullopt},
        // A header's order decides: b is the first variable although a is used first.
        DoubleCase{"f(b,a)=a+0*b", {"0", "2", "2"}, {"0", "1", "2"}, kDone, 1, std::nullopt, std::nullopt,
                   std::nullopt},
        DoubleCase{"x*y", {"0", "1", "20000"}, {"0", "1", "2"}, kDone, 0.25, "10000", std::nullopt, std::nullopt},
        DoubleCase{"x*y", {"0", "1", "2"}, {"0", "1", "10001"}, kDone, 0.25, std::nullopt, "10000", std::nullopt},
        DoubleCase{"x*y", {"0", "1", "1"}, {"0", "1", "4"}, kSilent, kAny, std::nullopt, std::nullopt, std::nullopt},
        DoubleCase{"x*y", {"0", "1", "4"}, {"2", "1", "4"}, kSilent, kAny, std::nullopt, std::nullopt, std::nullopt},
        DoubleCase{"x*y", {"0", "1", "4"}, {"0", "1", "n"}, kSilent, kAny, std::nullopt, std::nullopt, std::nullopt},
        DoubleCase{"x", {"0", "1", "4"}, {"0", "1", "4"}, kError, kAny, std::nullopt, std::nullopt, 33},
        DoubleCase{"x*y*z", {"0", "1", "4"}, {"0", "1", "4"}, kError, kAny, std::nullopt, std::nullopt, 33},
        DoubleCase{"x/y", {"0", "1", "2"}, {"0", "1", "2"}, kError, kAny, std::nullopt, std::nullopt, 11},
        DoubleCase{"exp(x*y)", {"0", "30", "2"}, {"0", "30", "2"}, kFault, kAny, std::nullopt, std::nullopt,
                   std::nullopt}));

TEST_F(IntegrationTest, DoubleButtonNamesTheTwoVariablesOrRefuses) {
  using Names = std::optional<std::pair<std::string, std::string>>;
  EXPECT_EQ(PrepareDoubleIntegral(engine, "x*y+y"), Names({"x", "y"}));
  EXPECT_EQ(PrepareDoubleIntegral(engine, "g(s,t)=t*s"), Names({"s", "t"}));
  EXPECT_TRUE(host.errors.empty());
  EXPECT_EQ(PrepareDoubleIntegral(engine, "sin(x)"), std::nullopt);
  EXPECT_EQ(PrepareDoubleIntegral(engine, "1+"), std::nullopt);
  EXPECT_EQ(host.errors.front(), 33);
  EXPECT_EQ(host.errors.size(), 2u);
  EXPECT_EQ(engine.BindToX, -1);
}

}  // namespace
}  // namespace merida

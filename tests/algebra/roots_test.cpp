// Go and Inter: samples, roots at samples, bisection, caps, judge value, the 50-root list, errors.
#include "algebra/roots.h"

#include <gtest/gtest.h>

#include <cmath>

#include "test_support.h"

namespace merida {
namespace {

class RootsTest : public test::EngineTest {
 protected:
  RootResult go(const char* f, RootBoxes b, bool graph = false, bool integer = false) {
    return SearchRoots(engine, state, f, b, graph, integer);
  }
};

TEST_F(RootsTest, BisectedRootsLieWithinTheJudgedDistance) {
  RootResult r = go("x^2-4", {"-3", "3", "50", "1E-07"});
  ASSERT_EQ(r.end, RootEnd::kListed);
  ASSERT_EQ(r.rootX.size(), 2u);
  EXPECT_NEAR(r.rootX[0], -2, 2.5e-8);
  EXPECT_NEAR(r.rootX[1], 2, 2.5e-8);
  EXPECT_NE(r.rootX[1], 2) << "no sample falls on 2: the root comes from bisection";
  EXPECT_EQ(r.lines[1], "x=" + std::string(" ") + "1.99999998092651");
  EXPECT_EQ(engine.BindToX, -1);
}

struct RootsCase {
  const char* name;
  const char* formula;
  RootBoxes boxes;
  bool integer;
  RootEnd end;
  std::vector<std::string> lines;
  std::optional<int> error;
};

class RootsCaseTest : public RootsTest, public ::testing::WithParamInterface<RootsCase> {};

TEST_P(RootsCaseTest, Lines) {
  const RootsCase& c = GetParam();
  RootResult r = go(c.formula, c.boxes, false, c.integer);
  EXPECT_EQ(r.end, c.end);
  EXPECT_EQ(r.lines, c.lines);
  EXPECT_EQ(host.errors, c.error ? std::vector<int>{*c.error} : std::vector<int>{});
  EXPECT_EQ(engine.BindToX, -1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RootsCaseTest,
    ::testing::Values(
        // A zero sample is a root; the sign then comes from the next nonzero sample.
        RootsCase{"RootsAtSamples", "x^2-1", {"-2", "2", "4", "1E-07"}, false, RootEnd::kListed, {"x=-1", "x= 1"}, {}},
        RootsCase{"RootAtTheEnds", "x*(x-1)", {"0", "1", "2", "1E-07"}, false, RootEnd::kListed, {"x= 0", "x= 1"}, {}},
        RootsCase{"Integer", "x^2-2", {"0", "2", "10", "1E-07"}, true, RootEnd::kListed, {"x= 1.41"}, {}},
        RootsCase{"IntegerAtLargeMagnitudes", "x-1234.5678", {"1000", "2000", "7", "1E-07"}, true, RootEnd::kListed,
                  {"x= 1234.57"}, {}},
        RootsCase{"NoRoot", "x^2+1", {"-1", "1", "10", "1E-07"}, false, RootEnd::kListed, {}, {}},
        // A touching root without a sign change is found only at a sample.
        RootsCase{"TouchingAtASample", "x^2", {"-1", "1", "10", "1E-07"}, false, RootEnd::kListed, {"x= 0"}, {}},
        RootsCase{"TouchingBetweenSamples", "x^2", {"-1", "1", "9", "1E-07"}, false, RootEnd::kListed, {}, {}},
        RootsCase{"JudgeEqualToTheStepIsAccepted", "x-0.05", {"0", "1", "10", "0.1"}, false, RootEnd::kListed,
                  {"x= 0", "x= .1"}, {}},
        RootsCase{"JudgeAboveTheStep", "x", {"0", "1", "10", "0.2"}, false, RootEnd::kError, {}, 29},
        RootsCase{"TwoVariables", "x*y", {"0", "1", "10", "1E-07"}, false, RootEnd::kError, {}, 28},
        RootsCase{"ReversedRange", "x", {"1", "0", "10", "1E-07"}, false, RootEnd::kSilent, {}, {}},
        RootsCase{"NumNotANumber", "x", {"0", "1", "ten", "1E-07"}, false, RootEnd::kSilent, {}, {}},
        RootsCase{"NumBeyondSixteenBits", "x", {"0", "1", "40000", "1E-07"}, false, RootEnd::kSilent, {}, {}},
        RootsCase{"JudgeNotANumber", "x", {"0", "1", "10", "small"}, false, RootEnd::kSilent, {}, {}},
        // An error inside the interval lists what was found before it.
        RootsCase{"ErrorInsideListsWhatWasFound", "(x+0.5)/(x-0.25)", {"-1", "1", "8", "1E-07"}, false,
                  RootEnd::kListed, {"x=-.5"}, 11},
        // At a pole the sign changes but no midpoint comes near zero: nothing is listed for it.
        RootsCase{"PoleIsNoRoot", "1/(x*x-2)", {"1", "2", "4", "1E-07"}, false, RootEnd::kListed, {}, {}},
        RootsCase{"OverflowEndsWithoutListing", "exp(x)-2", {"0", "1000", "10", "1E-07"}, false, RootEnd::kFault, {},
                  {}}),
    [](const ::testing::TestParamInfo<RootsCase>& p) { return std::string(p.param.name); });

TEST_F(RootsTest, FiftyRootsThenErrorThirty) {
  RootResult r = go("sin(x)", {"0.5", "1000", "5000", "1E-07"});
  EXPECT_EQ(r.end, RootEnd::kListed);
  EXPECT_EQ(r.lines.size(), 50u);
  EXPECT_EQ(host.errors, std::vector<int>{30});
  for (size_t k = 0; k < r.rootX.size(); ++k) EXPECT_NEAR(r.rootX[k], (k + 1) * M_PI, 1e-6);
}

TEST_F(RootsTest, CapsSamplesFromTheIndexAndPlots) {
  RootResult r = go("x-1", {"0", "3", "10000", "1E-07"}, true);
  EXPECT_EQ(r.numBox, "6000");
  ASSERT_EQ(r.curve1.size(), 6000u);
  const double h = 3.0 / 5999;
  EXPECT_EQ(r.curve1[4321].x, 4321 * h + 0) << "x from i, not by adding h";
  EXPECT_EQ(r.curve1.back().x, 3);
  EXPECT_EQ(state.DivisionCount, 10000);
}

TEST_F(RootsTest, CloseStopsWithoutListing) {
  host.stopAt = 5;
  RootResult r = go("x-0.9", {"0", "1", "100", "1E-07"});
  EXPECT_EQ(r.end, RootEnd::kStopped);
  EXPECT_TRUE(r.lines.empty());
}

TEST_F(RootsTest, IntersectionsAreListedRoundedWithTheFirstFunctionsValue) {
  RootResult r = SearchIntersections(engine, state, "x^2", "x", {"-1", "2", "50", "1E-07"}, true);
  EXPECT_EQ(r.end, RootEnd::kListed);
  EXPECT_EQ(r.lines, (std::vector<std::string>{"x= 0  y= 0", "x= 1  y= 1"}));
  EXPECT_EQ(r.curve1.size(), 51u);
  EXPECT_EQ(r.curve2.size(), 51u);
  EXPECT_EQ(r.curve2[50].y, 2);

  r = SearchIntersections(engine, state, "exp(x)", "3", {"0", "2", "7", "1E-07"}, false);
  EXPECT_EQ(r.lines, std::vector<std::string>{"x= 1.1  y= 3"});
  r = SearchIntersections(engine, state, "x", "-x", {"0", "1", "5000", "1E-07"}, false);
  EXPECT_EQ(r.numBox, "3000");
  r = SearchIntersections(engine, state, "x", "t", {"0", "1", "10", "1E-07"}, false);
  EXPECT_EQ(r.end, RootEnd::kError);
  EXPECT_EQ(host.errors.back(), 28);
}

TEST(RoundToHundredthsTest, HalvesAwayFromZeroAtAnyMagnitude) {
  const std::pair<double, double> cases[] = {{1.41421356, 1.41}, {0.125, 0.13},  {-0.125, -0.13}, {2.675, 2.68},
                                             {-1.994, -1.99},    {0, 0},         {1000.456, 1000.46},
                                             {-98765.4321, -98765.43}, {1e20, 1e20}};
  for (auto [v, expected] : cases) EXPECT_DOUBLE_EQ(RoundToHundredths(v), expected) << v;
}

}  // namespace
}  // namespace merida

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
  RootResult inter(const char* f, const char* g, RootBoxes b, bool graph = false) {
    return SearchIntersections(engine, state, f, g, b, graph);
  }
};

TEST_F(RootsTest, Cases) {
  const RootEnd listed = RootEnd::kListed, silent = RootEnd::kSilent;
  // Formula, boxes (start, end, samples, judge), Integer, end, lines, error.
  using Case = std::tuple<const char*, RootBoxes, bool, RootEnd, std::vector<std::string>, int>;
  const Case cases[] = {
      // A zero sample is a root; the sign then comes from the next nonzero sample.
      {"x^2-1", {"-2", "2", "4", "1E-07"}, false, listed, {"x=-1", "x= 1"}, 0},
      {"x*(x-1)", {"0", "1", "2", "1E-07"}, false, listed, {"x= 0", "x= 1"}, 0},
      {"x^2-2", {"0", "2", "10", "1E-07"}, true, listed, {"x= 1.41"}, 0},
      {"x-1234.5678", {"1000", "2000", "7", "1E-07"}, true, listed, {"x= 1234.57"}, 0},
      // A touching root without a sign change is found only at a sample.
      {"x^2", {"-1", "1", "10", "1E-07"}, false, listed, {"x= 0"}, 0},
      {"x^2", {"-1", "1", "9", "1E-07"}, false, listed, {}, 0},
      {"x-0.05", {"0", "1", "10", "0.1"}, false, listed, {"x= 0", "x= .1"}, 0},  // a judge equal to the step
      {"x", {"0", "1", "10", "0.2"}, false, RootEnd::kError, {}, 29},
      {"x*y", {"0", "1", "10", "1E-07"}, false, RootEnd::kError, {}, 28},
      {"x", {"1", "0", "10", "1E-07"}, false, silent, {}, 0}, {"x", {"0", "1", "40000", "1E-07"}, false, silent, {}, 0},
      {"x", {"0", "1", "10", "small"}, false, silent, {}, 0},
      // An error inside the interval lists what was found before it.
      {"(x+0.5)/(x-0.25)", {"-1", "1", "8", "1E-07"}, false, listed, {"x=-.5"}, 11},
      // At a pole the sign changes but no midpoint comes near zero: nothing is listed for it.
      {"1/(x*x-2)", {"1", "2", "4", "1E-07"}, false, listed, {}, 0},
      {"exp(x)-2", {"0", "1000", "10", "1E-07"}, false, RootEnd::kFault, {}, 0},
  };
  for (const auto& [formula, boxes, integer, end, lines, error] : cases) {
    host.errors.clear();
    RootResult r = go(formula, boxes, false, integer);
    EXPECT_EQ(std::tuple(r.end, r.lines, engine.BindToX), std::tuple(end, lines, -1)) << formula;
    EXPECT_EQ(host.errors, error ? std::vector<int>{error} : std::vector<int>{}) << formula;
  }
  // Bisected roots lie within the judged distance: no sample falls on 2.
  RootResult r = go("x^2-4", {"-3", "3", "50", "1E-07"});
  ASSERT_EQ(r.rootX.size(), 2u);
  for (int k : {0, 1}) EXPECT_NEAR(r.rootX[k], 4 * k - 2, 2.5e-8) << k;
  EXPECT_EQ(r.lines[1], "x= 1.99999998092651");
}

TEST_F(RootsTest, FiftyRootsThenErrorThirty) {
  RootResult r = go("sin(x)", {"0.5", "1000", "5000", "1E-07"});
  EXPECT_EQ(std::tuple(r.end, r.lines.size(), host.errors),
            std::tuple(RootEnd::kListed, 50u, std::vector<int>{30}));
  for (size_t k = 0; k < r.rootX.size(); ++k) EXPECT_NEAR(r.rootX[k], (k + 1) * M_PI, 1e-6);
}

TEST_F(RootsTest, CapsSamplesFromTheIndexAndPlots) {
  RootResult r = go("x-1", {"0", "3", "10000", "1E-07"}, true);
  ASSERT_EQ(std::tuple(r.numBox, r.curve1.size(), state.DivisionCount), std::tuple("6000", 6000u, 10000));
  EXPECT_EQ(std::tuple(r.curve1[4321].x, r.curve1.back().x), std::tuple(4321 * (3.0 / 5999) + 0, 3.0))
      << "x from i, not by adding h";
  host.stopAt = host.checkpoints + 5;  // closing the window lists nothing
  r = go("x-0.9", {"0", "1", "100", "1E-07"});
  EXPECT_EQ(std::tuple(r.end, r.lines.size()), std::tuple(RootEnd::kStopped, 0u));
}

TEST_F(RootsTest, IntersectionsAreListedRoundedWithTheFirstFunctionsValue) {
  RootResult r = inter("x^2", "x", {"-1", "2", "50", "1E-07"}, true);
  EXPECT_EQ(r.lines, (std::vector<std::string>{"x= 0  y= 0", "x= 1  y= 1"}));
  ASSERT_EQ(std::tuple(r.curve1.size(), r.curve2.size()), std::tuple(51u, 51u));
  EXPECT_EQ(r.curve2[50].y, 2);
  EXPECT_EQ(inter("exp(x)", "3", {"0", "2", "7", "1E-07"}).lines, std::vector<std::string>{"x= 1.1  y= 3"});
  EXPECT_EQ(inter("x", "-x", {"0", "1", "5000", "1E-07"}).numBox, "3000");
  EXPECT_EQ(inter("x", "t", {"0", "1", "10", "1E-07"}).end, RootEnd::kError);
  EXPECT_EQ(host.errors.back(), 28);
}

TEST(RoundToHundredthsTest, HalvesAwayFromZeroAtAnyMagnitude) {
  const std::pair<double, double> cases[] = {{1.41421356, 1.41}, {0.125, 0.13},       {-0.125, -0.13},
                                             {2.675, 2.68},      {-1.994, -1.99},     {1000.456, 1000.46},
                                             {-98765.4321, -98765.43}, {1e20, 1e20}};
  for (auto [v, expected] : cases) EXPECT_DOUBLE_EQ(RoundToHundredths(v), expected) << v;
}

}  // namespace
}  // namespace merida

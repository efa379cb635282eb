// Chart axes from data: room around the curve, round steps, ticks for the size; colours that
// read on both palettes.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "controls/axis_scale.h"

namespace merida {
namespace {

struct ScaleCase {
  double lo, hi;
  int maxTicks;
  double wantLo, wantHi, wantStep;
};

TEST(NiceScale, RangesAreRoundStepsAroundTheData) {
  const ScaleCase cases[] = {
      {0, 5502, 8, 0, 6000, 1000},     // a spectrum to 5502 Hz stops at 6000, not 10000
      {1, 1024, 8, 0, 1200, 200},      // 1024 lags
      {0, 20, 12, 0, 22, 2},           // a regression's x in 0..20 stays near 0..20
      {-1, 1, 8, -1.5, 1.5, 0.5},      // room above and below: the curve leaves the frame
      {-5, -1, 6, -6, 0, 1},           // all negative keeps zero as its top edge
      {3, 3, 8, 2.7, 3.3, 0.1},        // one value gets width
      {0, 0, 5, -1, 1, 0.5},           // zero alone
      {0.001, 0.004, 8, 0.0005, 0.0045, 0.0005},
      {0, 1, 6, 0, 1.2, 0.2},          // room past the top costs a tick, not a coarser step
      {-2e6, 7e6, 5, -5e6, 1e7, 5e6},  // few ticks on a small chart
  };
  for (const ScaleCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.lo << ".." << c.hi << " in " << c.maxTicks);
    const AxisScale s = NiceScale(c.lo, c.hi, c.maxTicks);
    EXPECT_NEAR(s.lo, c.wantLo, 1e-9 * std::fabs(c.wantStep));
    EXPECT_NEAR(s.hi, c.wantHi, 1e-9 * std::fabs(c.wantStep));
    EXPECT_NEAR(s.step, c.wantStep, 1e-12 * std::fabs(c.wantStep));
    EXPECT_LE(s.ticks, c.maxTicks + 1);
    EXPECT_EQ(s.ticks, std::lround((s.hi - s.lo) / s.step) + 1);
    // The data lie inside, clear of the frame unless the frame is at zero.
    EXPECT_LE(s.lo, c.lo);
    EXPECT_GE(s.hi, c.hi);
    if (c.lo != c.hi && s.lo != 0) {
      EXPECT_LT(s.lo, c.lo);
    }
    if (c.lo != c.hi && s.hi != 0) {
      EXPECT_GT(s.hi, c.hi);
    }
  }
}

TEST(NiceScale, DegenerateDataStillGiveAnAxis) {
  const double inf = std::numeric_limits<double>::infinity(), nan = std::nan("");
  for (auto [lo, hi] : {std::pair{nan, 1.0}, {0.0, inf}, {5.0, 1.0}}) {
    const AxisScale s = NiceScale(lo, hi, 6);
    EXPECT_EQ(s.lo, 0);
    EXPECT_EQ(s.hi, 1);
  }
  // Spans at the ends of the double range: no endless step search, a usable range.
  for (auto [lo, hi] : {std::pair{-1.7e308, 1.7e308}, {1.0, 1.0 + 4e-16}}) {
    const AxisScale s = NiceScale(lo, hi, 6);
    EXPECT_TRUE(std::isfinite(s.lo) && std::isfinite(s.hi));
    EXPECT_LE(s.lo, lo);
    EXPECT_GE(s.hi, hi);
    EXPECT_GE(s.ticks, 2);
  }
}

TEST(TickBudget, GrowsWithTheChartWithinBounds) {
  const struct {
    double pixels, perTick;
    int want;
  } cases[] = {{1400, 90, 12}, {600, 90, 7}, {300, 42, 8}, {50, 90, 2}, {0, 90, 2}, {-5, 40, 2}};
  for (const auto& c : cases) EXPECT_EQ(TickBudget(c.pixels, c.perTick), c.want) << c.pixels;
}

TEST(SeriesColor, ReadableOnLightAndDarkBackgrounds) {
  const Rgb white{255, 255, 255}, darkGrey{53, 53, 53}, black{0, 0, 0}, navy{0, 0, 60};
  // On white the curves keep their usual blue and red.
  EXPECT_EQ(std::pair(SeriesColor(1, white), SeriesColor(2, white)), std::pair(Rgb{0, 0, 255}, Rgb{255, 0, 0}));
  // Blue on dark grey is mixed toward white no further than needed: 5 % less falls short of 4.5.
  const Rgb blue = SeriesColor(1, darkGrey), less{uint8_t(blue.r - 13), uint8_t(blue.g - 13), 255};
  EXPECT_TRUE(blue.r > 13 && ContrastRatio(blue, darkGrey) >= 4.5 && ContrastRatio(less, darkGrey) < 4.5) << int(blue.r);
  for (Rgb bg : {white, darkGrey, black, navy, Rgb{128, 128, 128}}) {
    for (int set : {1, 2}) EXPECT_GE(ContrastRatio(SeriesColor(set, bg), bg), 3.0) << int(bg.r) << " set " << set;
    // The two sets stay told apart.
    EXPECT_NE(SeriesColor(1, bg), SeriesColor(2, bg));
  }
}

}  // namespace
}  // namespace merida

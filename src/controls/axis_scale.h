// How a chart chooses its axes and colours: ranges from the data with a little room, steps of
// 1, 2 or 5 times a power of ten, as many ticks as the chart's size can label, and curve colours
// that stay readable on the window's background.
#pragma once

#include <array>
#include <cstdint>

namespace merida {

struct AxisScale {
  double lo = 0, hi = 1;  // the axis range, on whole steps
  double step = 0.2;      // between labelled ticks
  int ticks = 6;          // labelled ticks from lo to hi, both included
};

// The axis for data from `lo` to `hi` with about `maxTicks` labelled ticks (one more where the
// room around the data reaches past a step). `margin` is the
// room added on each side as a share of the span; it does not carry a range that starts at zero
// (a spectrum, a histogram) below zero. Empty or non-finite data give 0..1.
AxisScale NiceScale(double lo, double hi, int maxTicks, double margin = 0.04);

// 1, 2 or 5 times a power of ten, at least `raw` (> 0).
double NiceStep(double raw);

// Labelled ticks that fit along `pixels` with at least `pixelsPerTick` between them: 2 to 12.
int TickBudget(double pixels, double pixelsPerTick);

struct Rgb {
  std::uint8_t r = 0, g = 0, b = 0;
  bool operator==(const Rgb&) const = default;
};

// The contrast ratio of two colours (1 to 21) from their relative luminance.
double ContrastRatio(Rgb a, Rgb b);

// The colour of data set `set` (1 or 2) on `background`: blue and red where they stand out (a
// ratio of at least 3), otherwise mixed toward white (or black) until the ratio reaches 4.5.
Rgb SeriesColor(int set, Rgb background);

}  // namespace merida

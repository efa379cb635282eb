#include "controls/axis_scale.h"

#include <algorithm>
#include <cmath>

namespace merida {

double NiceStep(double raw) {
  const double decade = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 5.0}) {
    if (m * decade >= raw * (1 - 1e-12)) return m * decade;
  }
  return 10 * decade;
}

namespace {

double Linear(std::uint8_t c) {
  const double s = c / 255.0;
  return s <= 0.04045 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4);
}

double Luminance(Rgb c) { return 0.2126 * Linear(c.r) + 0.7152 * Linear(c.g) + 0.0722 * Linear(c.b); }

Rgb Mix(Rgb a, Rgb b, double t) {
  auto m = [t](std::uint8_t x, std::uint8_t y) {
    return static_cast<std::uint8_t>(std::lround(x + (y - x) * t));
  };
  return {m(a.r, b.r), m(a.g, b.g), m(a.b, b.b)};
}

}  // namespace

int TickBudget(double pixels, double pixelsPerTick) {
  if (!(pixels > 0) || !(pixelsPerTick > 0)) return 2;
  return std::clamp(static_cast<int>(pixels / pixelsPerTick) + 1, 2, 12);
}

AxisScale NiceScale(double lo, double hi, int maxTicks, double margin) {
  if (!std::isfinite(lo) || !std::isfinite(hi) || lo > hi) return {};
  maxTicks = std::max(maxTicks, 2);
  const double dataSpan = hi - lo;
  if (!std::isfinite(hi - lo)) return {lo, hi, hi / 2 - lo / 2, 2};  // no room left to add
  if (lo == hi) {
    const double pad = lo == 0 ? 1 : std::fabs(lo) * 0.1;
    lo -= pad;
    hi += pad;
  } else {
    const double room = (hi - lo) * std::max(margin, 0.0);
    // Data that start at zero keep zero as their edge.
    const bool fromZero = lo >= 0 && lo - room < 0;
    const bool toZero = hi <= 0 && hi + room > 0;
    lo = fromZero ? (lo == 0 ? 0 : std::max(0.0, lo - room)) : lo - room;
    hi = toZero ? (hi == 0 ? 0 : std::min(0.0, hi + room)) : hi + room;
  }
  const double span = hi - lo;
  if (!std::isfinite(span) || span <= 1e-300 || span <= 1e-12 * std::max(std::fabs(lo), std::fabs(hi))) {
    // Too wide or too narrow for steps (values near the double range, or a few ulps apart).
    return {lo, hi, span, 2};
  }
  AxisScale s;
  // The step comes from the data, the range from the data and its room: room that tips the
  // range past a step costs one tick more, not a coarser step (0..1 gives 0..1.2, not 0..1.5).
  for (double step = NiceStep((dataSpan > 0 ? dataSpan : span) / (maxTicks - 1));; step = NiceStep(step * 1.5)) {
    s.lo = std::floor(lo / step + 1e-9) * step;
    s.hi = std::ceil(hi / step - 1e-9) * step;
    s.step = step;
    s.ticks = static_cast<int>(std::lround((s.hi - s.lo) / step)) + 1;
    if (s.ticks <= maxTicks + 1) break;
  }
  // Zero prints as 0, not as a tiny leftover of the division.
  if (std::fabs(s.lo) < s.step * 1e-9) s.lo = 0;
  if (std::fabs(s.hi) < s.step * 1e-9) s.hi = 0;
  return s;
}

double ContrastRatio(Rgb a, Rgb b) {
  double la = Luminance(a), lb = Luminance(b);
  if (la < lb) std::swap(la, lb);
  return (la + 0.05) / (lb + 0.05);
}

Rgb SeriesColor(int set, Rgb background) {
  const Rgb base = set == 2 ? Rgb{255, 0, 0} : Rgb{0, 0, 255};
  if (ContrastRatio(base, background) >= 3) return base;
  // Toward white on a dark background, toward black on a light one.
  const Rgb toward = Luminance(background) < 0.18 ? Rgb{255, 255, 255} : Rgb{0, 0, 0};
  for (int k = 1; k <= 20; ++k) {
    const Rgb c = Mix(base, toward, k * 0.05);
    if (ContrastRatio(c, background) >= 4.5) return c;
  }
  return toward;
}

}  // namespace merida

// Levels, contour lines, height colours, ticks and view angles.
#include "contour/contour_plot.h"

#include <algorithm>
#include <cmath>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kMaxLevelStep = 100;

}  // namespace

std::string MinMaxText(const ContourGrid& grid) {
  return PlainText(std::nearbyint(grid.zMin)) + " ～ " + PlainText(std::nearbyint(grid.zMax));
}

LevelsResult ReadLevels(Engine& engine, const LevelBoxes& boxes) {
  LevelsResult out;
  // Plot starts an action of its own: an earlier error does not end it.
  engine.ErrorFlag = 0;
  engine.FaultFlag = false;
  engine.CancelFlag = false;
  const double lowest = std::nearbyint(engine.EvaluateConstantText(boxes.lowest));
  if (engine.failed()) return out;
  const double highest = std::nearbyint(engine.EvaluateConstantText(boxes.highest));
  if (engine.failed()) return out;
  std::optional<int16_t> step = ReadCountBox(boxes.step);
  if (!step || *step < 1) {
    engine.EndSilently(CountReason("the level step", boxes.step, 1, 32767), "Text9");
    return out;
  }
  Levels levels{lowest, highest, static_cast<double>(*step)};
  if (*step > kMaxLevelStep) {
    levels.step = kMaxLevelStep;
    out.stepBox = std::to_string(kMaxLevelStep);
  }
  if (!(lowest < highest)) {
    engine.EndSilently("the lowest level must be below the highest, once both are rounded to whole numbers", "Text7");
    return out;
  }
  out.levels = levels;
  return out;
}

bool ContourLines(const ContourGrid& grid, const Levels& levels, Engine* engine, std::vector<Segment>& out) {
  // A level below zmin or above zmax has no crossing: start at the first one that can have.
  double k = levels.lowest;
  if (k < grid.zMin) {
    k += std::floor((grid.zMin - k) / levels.step) * levels.step;
    if (k < grid.zMin && k + levels.step > k) k += levels.step;
  }
  const double top = std::min(levels.highest, grid.zMax);
  while (k <= top) {
    std::vector<Segment> drawn = TraceLevel(grid, k, engine);
    out.insert(out.end(), drawn.begin(), drawn.end());
    if (engine && engine->StopRequested == 1) return false;
    const double next = std::trunc(k) + levels.step;
    if (next == k) break;  // beyond 2^53 a step no longer moves the level
    k = next;
  }
  return true;
}

uint8_t HeightByte(double h, double zMin, double zMax) {
  const double level = std::nearbyint(255 * (h - zMin) / (zMax - zMin));
  if (!(level > 0)) return 0;  // also a flat grid's 0/0
  return level >= 255 ? 255 : static_cast<uint8_t>(level);
}

Rgb SchemeColor(uint8_t level, const ColorScheme& scheme) {
  const uint8_t L = level;
  if (scheme.MultiColor == 1) {
    // Seven bands; a limit belongs to the band below it.
    static constexpr struct {
      uint8_t top;
      Rgb color;
    } kBands[] = {{36, {0, 0, 255}},   {72, {0, 255, 255}},  {108, {0, 255, 0}},     {144, {255, 0, 255}},
                  {180, {255, 0, 0}}, {216, {255, 255, 0}}, {255, {255, 255, 255}}};
    for (const auto& band : kBands) {
      if (L <= band.top) return band.color;
    }
  }
  if (scheme.Red == 1) return {L, 0, 0};
  if (scheme.SkyBlue == 1) return {0, L, L};
  if (scheme.Yellow == 1) return {L, L, 0};
  return {0, L, 0};
}

double TickStep(double range) {
  if (!(range > 0) || !std::isfinite(range)) return 0;
  // Below 1.5 the search goes down by tens, from 15 on up, in between 1 already fits.
  const int direction = range < 1.5 ? -1 : range >= 15 ? 1 : 0;
  for (int e = 0; e > -400 && e < 400; e += direction) {
    const double step = std::pow(10.0, e);
    const double steps = std::floor(range / step + 1e-9);  // 0.3 / 0.1 is three steps
    if (steps >= 3 && steps <= 14) return step;
    if (steps >= 1 && steps <= 2) return step / 2;
    if (direction == 0) return step;
  }
  return 0;
}

std::vector<double> Ticks(double min, double max) {
  std::vector<double> out;
  const double step = TickStep(max - min);
  if (step == 0) return out;
  // A tick a rounding error outside the range still belongs to it.
  const double first = std::ceil(min / step - 1e-9), last = std::floor(max / step + 1e-9);
  if (!(last - first < 64)) return out;
  for (double m = first; m <= last; ++m) out.push_back(Round15(m * step));
  return out;
}

std::optional<ViewAngles> DecideAngles(std::string_view xBox, std::string_view yBox) {
  std::optional<double> a = ReadNumber(xBox), b = ReadNumber(yBox);
  if (!a || !b) return std::nullopt;
  ViewAngles v{std::clamp(*a, 0.0, 180.0), std::clamp(*b, 0.0, 180.0)};
  if (v.x + v.y > 180) v = ViewAngles{};
  return v;
}

}  // namespace merida

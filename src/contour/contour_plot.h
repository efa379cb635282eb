// Levels and contour lines, heights as colours, axis ticks and the view angles of the contour drawings.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "contour/contour_grid.h"
#include "controls/axis_scale.h"
#include "engine/engine.h"
#include "main/app_state.h"

namespace merida {

// Label5 while the grid is being evaluated.
inline constexpr const char* kCalculatingText = "計算中";

// Label5 after Calc: zmin and zmax rounded to whole numbers, "-3 ～ 8".
std::string MinMaxText(const ContourGrid& grid);

// The level boxes: lowest, highest, step (Text7, Text8, Text9).
struct LevelBoxes {
  std::string lowest, highest, step;
};

struct Levels {
  double lowest = 0, highest = 0;  // whole numbers, lowest below highest
  double step = 1;                 // whole, 1 to 100
};

struct LevelsResult {
  std::optional<Levels> levels;        // nullopt: nothing is drawn (engine.failed() tells an error)
  std::optional<std::string> stepBox;  // "100" when the step was capped
};

// What the Contour window's boxes show when it opens: -2 to 2 in 20 divisions each way, levels
// 1 to 4 in steps of 1.
inline GridBoxes OpeningGridBoxes() { return {"-2", "2", "20", "-2", "2", "20"}; }
inline LevelBoxes OpeningLevelBoxes() { return {"1", "4", "1"}; }

// Reads the three level boxes: the levels rounded halves to even, the step capped at 100.
LevelsResult ReadLevels(Engine& engine, const LevelBoxes& boxes);

// Every level's segments in drawing order (level by level, then row by row), in the formula's
// coordinates. Levels outside zmin..zmax cross no cell and are skipped. With an engine, events
// are processed after each row; false when StopRequested ended the tracing (`out` keeps what
// was drawn by then).
bool ContourLines(const ContourGrid& grid, const Levels& levels, Engine* engine, std::vector<Segment>& out);

inline constexpr Rgb kContourBlue{0, 0, 255};

// 0 at zmin to 255 at zmax, rounded halves to even; 0 on a flat grid.
uint8_t HeightByte(double h, double zMin, double zMax);

// The colour of height byte L in the scheme whose flag is 1 (Green when none is).
Rgb SchemeColor(uint8_t level, const ColorScheme& scheme);

// The tick step for an axis range: a power of ten, or half of one when a power of ten leaves
// only one or two steps. 0 for a range that is not positive and finite.
double TickStep(double range);

// The multiples of TickStep(max - min) between min and max.
std::vector<double> Ticks(double min, double max);

struct ViewAngles {
  double x = 20, y = 30;  // degrees
};

// Decide of the Axis Angle dialog: each box's value held to 0..180, and 20, 30 when they add up
// to more than 180. nullopt when a box is not numeric (the angles stay as they are).
std::optional<ViewAngles> DecideAngles(std::string_view xBox, std::string_view yBox);

}  // namespace merida

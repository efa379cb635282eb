// The published critical-value tables the hypothesis tests look up (generated source).
#pragma once

namespace merida {

// [level: 0 = 5 %, 1 = 1 %][row]. t and F rows: freedom 1..30, 40, 60, 120, infinity.
extern const float kTTable[2][34];
// Chi-square rows: freedom 1..30, 40, 50, ..., 100.
extern const float kChiSquareTable[2][37];
// F columns (numerator freedom): 1, 2, 3, 4, 5, 6, 8, 12, 24, infinity.
extern const float kFTable[2][34][10];

}  // namespace merida

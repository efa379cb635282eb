// Program-wide values shared by the windows; the application owns one instance.
#pragma once

#include <cstdint>

#include "engine/record_table.h"

namespace merida {

enum DisplayLanguageValue : int16_t { kEnglish = 1, kJapanese = 2 };

struct ColorScheme {
  int16_t Red = -1, Green = 1, SkyBlue = -1, Yellow = -1, MultiColor = -1;
};

struct AppState {
  int16_t DisplayLanguage = kEnglish;
  int16_t GraphMode = 0;        // 0 none, 1 normal, 2 polar, 3 parametric
  int16_t DivisionCount = 20;
  int16_t ActiveParameterBox = 1;
  int16_t DiffMode = 0;
  int16_t ColorMode = -1;
  ColorScheme Colors;
  double ViewAngleX = 20, ViewAngleY = 30;  // contour view angles, degrees
  double MemoryValue = 0;                   // the calculator pad's memory
  int16_t MatrixWindowMode = -1;            // -1 equations, 1 matrix
  RecordFunctionTable Records;

  bool japanese() const { return DisplayLanguage == kJapanese; }
};

// After a job ran on its own copy of the state (`before` when it started, `after` when it
// ended): every value the job changed is set in `shared`, the rest left as others set them.
void ApplyChanges(AppState& shared, const AppState& before, const AppState& after);

}  // namespace merida

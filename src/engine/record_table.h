// The shared data table through which computed and loaded data pass between windows.
#pragma once

#include <array>
#include <cstdint>

namespace merida {

enum RecordKind : int16_t {
  NoData = -1,
  WaveData = 1,
  MeridaTextData = 2,
  OrbitaData = 3,
  ComputedData = 4,
};

struct RecordFunctionTable {
  static constexpr int kCapacity = 5000;

  int16_t count = 0;
  int16_t dimension = 0;
  float rangeStart = 0;
  float rangeEnd = 0;
  // values[i][j - 1] is row i, column j; row 0 is never filled by the loaders.
  std::array<std::array<float, 3>, kCapacity + 1> values{};
  int16_t kind = 0;
  uint32_t sampleRate = 0;  // a WAVE file's rate, up to 2^32 - 1

  // Stores row i (1..5000) and sets count = i; rows above 5000 are ignored.
  void RecordPoint(int i, float a, float b, float c) {
    if (i < 0 || i > kCapacity) return;
    count = static_cast<int16_t>(i);
    values[i] = {a, b, c};
  }

  // True when the table holds data any window may analyse.
  bool hasData() const { return kind >= 1; }
};

}  // namespace merida

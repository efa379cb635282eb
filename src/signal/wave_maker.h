// The WAVE File Make window's Go: the main formula sampled at 11025 Hz into an 8-bit WAVE
// file, or into a MERIDA text data file.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "engine/engine.h"

namespace merida {

struct WaveBoxes {
  std::string from;  // Text1, an expression
  std::string to;    // Text2
  std::string name;  // Text3: the file name, empty for the default
};

enum class WaveEnd {
  kWritten,
  kSilent,   // the end time is not after the start: nothing written, no message
  kError,       // the engine has shown its message
  kFault,       // an overflow: a sample too large for single precision, or an arithmetic fault
  kConstant,    // every sample equal: nothing to scale onto the bytes
  kWriteError,  // the file could not be written; writeError says why
  kStopped,     // the window was closed during sampling
};

struct WaveResult {
  WaveEnd end = WaveEnd::kSilent;
  int samples = 0;                  // n, after the cap
  std::string fileName;             // what Text3 shows after a file is written
  std::filesystem::path written;    // the full path Test plays
  std::string writeError;           // the system's reason ("No space left on device")
};

constexpr int kMaxWaveSamples = 11025;

// Go. `sampling` is called once the range is known, before the first sample (the window
// shows "作成中" then). Files go to `dir` and replace any file of that name atomically.
WaveResult MakeWave(Engine& engine, std::string_view formula, const WaveBoxes& boxes, bool merida,
                    const std::filesystem::path& dir, const std::function<void()>& sampling = {});

}  // namespace merida

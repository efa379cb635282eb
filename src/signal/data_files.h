// The three data file formats: 8-bit mono WAVE, the MERIDA text data file and the ORBITA
// statistics file. Readers fill the record table; writers produce the files' exact bytes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <istream>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"
#include "engine/record_table.h"
#include "graph/graph_plot.h"

namespace merida {

enum class DataFormat { kWave, kOrbita, kMerida };

// The reader a path goes to: ".wav"/".WAV" anywhere in it, else ".orb"/".ORB", else MERIDA
// text. Case-sensitive on purpose: DATA.Wav is read as MERIDA text (and refused there).
DataFormat ReaderFor(std::string_view path);

// What the Load window's boxes show after a load; a box left unset keeps its text.
struct LoadBoxes {
  std::optional<std::string> text1, text2, text3, text4;
};

struct LoadResult {
  bool loaded = false;  // the table holds the file; otherwise its kind is NoData
  LoadBoxes boxes;
};

// Load: reads `path` into `table` with the reader ReaderFor chooses. A failed load changes
// nothing but the kind (NoData): the rows are replaced only when the whole file has been
// read. Errors 39, 41 and 43 are shown through the engine; other failures are silent.
LoadResult LoadDataFile(Engine& engine, RecordFunctionTable& table, const std::filesystem::path& path);

// The readers on an open file (binary mode). They read no more than they use: a WAVE header
// and at most 5000 samples; text fields up to the last one needed.
LoadResult ReadWave(std::istream& in, std::string_view fullPath, RecordFunctionTable& table);
LoadResult ReadMeridaText(Engine& engine, std::istream& in, RecordFunctionTable& table);
LoadResult ReadOrbita(Engine& engine, std::istream& in, RecordFunctionTable& table);

// The File Display chart: column 1 against rangeStart + (i - 1) * dx, dx spreading the range
// over the count. A count of 0 has no step: the chart is empty.
std::vector<ChartPoint> FileDisplayPoints(const RecordFunctionTable& table);

constexpr uint32_t kWaveSampleRate = 11025;

// An 8-bit mono PCM file at 11025 Hz: the 44-byte header, the samples, one zero byte.
std::string WaveFileBytes(std::span<const uint8_t> samples);

// A MERIDA text data file: the tag, the count, the range, the samples; CR LF lines.
std::string MeridaFileText(double rangeStart, double rangeEnd, std::span<const float> samples);

}  // namespace merida

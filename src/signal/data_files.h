// The three data file formats: 8-bit mono WAVE, the MERIDA text data file and the ORBITA
// statistics file. Readers fill the record table; writers produce the files' exact bytes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"
#include "engine/file_input.h"
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
  int errorCode = 0;    // 39, 41 or 43: LoadDataFile shows it through the engine
  // Why a load was refused when no error number says it, for the command line. The window
  // shows it only when `shown`: a file found but not readable (an I/O error, a FIFO); the
  // rest ends silently there.
  std::string reason;
  bool shown = false;
  bool stopped = false;  // a stop request ended the load; the rows are as they were
};

// Reads `path` into `table` with the reader ReaderFor chooses; touches nothing else, so it
// may run on a worker thread over a copy of the table. A failed, refused or stopped load
// changes nothing but the kind (NoData): the rows are replaced only when the whole file has
// been read. `stop` ends a load within its next 64 KiB.
LoadResult ReadDataFile(RecordFunctionTable& table, const std::filesystem::path& path, std::stop_token stop = {});

// Load: ReadDataFile, then errors 39, 41 and 43 shown through the engine.
LoadResult LoadDataFile(Engine& engine, RecordFunctionTable& table, const std::filesystem::path& path);

// The readers. They read no more than they use: a WAVE header and at most 5000 samples; text
// fields up to the last one needed, passing over values past the 5000th unparsed. They fill
// `table` whole, or set its kind to NoData and leave its rows.
LoadResult ReadWave(ByteInput& in, std::string_view fullPath, RecordFunctionTable& table);
LoadResult ReadMeridaText(ByteInput& in, RecordFunctionTable& table);
LoadResult ReadOrbita(ByteInput& in, RecordFunctionTable& table);

// The File Display chart: column 1 against rangeStart + (i - 1) * dx, dx spreading the range
// over the count. A count of 0 has no step: the chart is empty.
std::vector<ChartPoint> FileDisplayPoints(const RecordFunctionTable& table);

constexpr uint32_t kWaveSampleRate = 11025;

// An 8-bit mono PCM file at 11025 Hz: the 44-byte header, the samples, one zero byte.
std::string WaveFileBytes(std::span<const uint8_t> samples);

// A MERIDA text data file: the tag, the count, the range, the samples; CR LF lines.
std::string MeridaFileText(double rangeStart, double rangeEnd, std::span<const float> samples);

}  // namespace merida

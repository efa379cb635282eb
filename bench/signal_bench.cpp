// Writing an 11025-sample WAVE file from a formula with a dozen built-ins, end to end (compile,
// sample, scale, atomic write), against a hand-written loop and fwrite; loading a 5000-row
// MERIDA text file against a hand-written strtof loop.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "dozen_builtins.h"
#include "engine/atomic_file.h"
#include "signal/data_files.h"
#include "signal/wave_maker.h"

namespace {

using namespace merida;

using bench::DozenBuiltins;
using bench::kDozenBuiltins;

std::filesystem::path Dir() {
  static const std::filesystem::path dir = [] {
    auto d = std::filesystem::temp_directory_path() / "merida_signal_bench";
    std::filesystem::create_directories(d);
    return d;
  }();
  return dir;
}

void BM_WaveFromFormula(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  for (auto _ : st) {
    WaveResult r = MakeWave(engine, kDozenBuiltins, {"0.1", "1.1", "bench.wav"}, false, Dir());
    if (r.end != WaveEnd::kWritten) st.SkipWithError("no file written");
  }
}
BENCHMARK(BM_WaveFromFormula)->Unit(benchmark::kMicrosecond);

void BM_WaveHandWritten(benchmark::State& st) {
  const std::string path = (Dir() / "hand.wav").string();
  for (auto _ : st) {
    const int n = 11025;
    std::vector<float> s(n);
    for (int i = 0; i < n; ++i) s[i] = static_cast<float>(DozenBuiltins(0.1 + i / 11025.0));
    auto [lo, hi] = std::minmax_element(s.begin(), s.end());
    const double min = *lo, max = *hi;
    std::vector<uint8_t> bytes(n);
    for (int i = 0; i < n; ++i) bytes[i] = static_cast<uint8_t>(std::nearbyint((s[i] - min) * 255 / (max - min)));
    std::string file = WaveFileBytes(bytes);
    FILE* f = std::fopen(path.c_str(), "wb");
    std::fwrite(file.data(), 1, file.size(), f);
    std::fclose(f);
  }
}
BENCHMARK(BM_WaveHandWritten)->Unit(benchmark::kMicrosecond);

std::filesystem::path MeridaFile() {
  std::vector<float> v(5000);
  for (int i = 0; i < 5000; ++i) v[i] = static_cast<float>(std::sin(i * 0.01) * 100);
  auto path = Dir() / "rows.mrd";
  WriteFileAtomically(path, MeridaFileText(0, 1, v));
  return path;
}

void BM_LoadMerida5000(benchmark::State& st) {
  const auto path = MeridaFile();
  SilentHost host;
  Engine engine(host);
  RecordFunctionTable table;
  for (auto _ : st) {
    if (!LoadDataFile(engine, table, path).loaded) st.SkipWithError("not loaded");
  }
}
BENCHMARK(BM_LoadMerida5000)->Unit(benchmark::kMicrosecond);

void BM_LoadMerida5000HandWritten(benchmark::State& st) {
  const auto path = MeridaFile();
  std::vector<float> rows(5001);
  for (auto _ : st) {
    std::ifstream in(path, std::ios::binary);
    std::string line;
    for (int i = 0; i < 4; ++i) std::getline(in, line);
    int k = 1;
    while (k <= 5000 && std::getline(in, line)) rows[k++] = std::strtof(line.c_str(), nullptr);
    benchmark::DoNotOptimize(rows.data());
  }
}
BENCHMARK(BM_LoadMerida5000HandWritten)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

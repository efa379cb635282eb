// Fuzz targets: the three data file readers, one per build (MERIDA_FUZZ_READER). A load either
// fills the table consistently or leaves every row as it was with the kind NoData; a WAVE
// file that loads, written again from its rows, loads to the same rows.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "signal/data_files.h"

namespace {

constexpr float kSentinel = 7.25f;

merida::RecordFunctionTable Filled() {
  merida::RecordFunctionTable t;
  for (auto& row : t.values) row = {kSentinel, kSentinel, kSentinel};
  t.count = 17;
  t.dimension = 3;
  t.kind = merida::ComputedData;
  return t;
}

merida::LoadResult Read(const std::string& bytes, merida::RecordFunctionTable& t) {
  merida::ByteInput in(bytes);
#if MERIDA_FUZZ_READER == 0
  return merida::ReadWave(in, "fuzz.wav", t);
#elif MERIDA_FUZZ_READER == 1
  return merida::ReadMeridaText(in, t);
#else
  return merida::ReadOrbita(in, t);
#endif
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace merida;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  RecordFunctionTable t = Filled();
  LoadResult r = Read(bytes, t);
  if (!r.loaded) {
    const RecordFunctionTable before = Filled();
    if (t.kind != NoData || t.count != before.count || t.values != before.values) std::abort();
    return 0;
  }
  if (t.kind < 1 || t.count < 0 || t.count > RecordFunctionTable::kCapacity) std::abort();
  if (t.dimension < 1 || t.dimension > 3) std::abort();
#if MERIDA_FUZZ_READER == 0
  std::vector<uint8_t> samples;
  for (int i = 1; i <= t.count; ++i) samples.push_back(static_cast<uint8_t>(t.values[i][0] + 128));
  RecordFunctionTable again = Filled();
  const std::string written = WaveFileBytes(samples);
  ByteInput in(written);
  if (!ReadWave(in, "again.wav", again).loaded || again.count != t.count) std::abort();
  for (int i = 1; i <= t.count; ++i) {
    if (again.values[i][0] != t.values[i][0]) std::abort();
  }
#endif
  return 0;
}

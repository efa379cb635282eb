// A WAVE file written by another program in the canonical layout loads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <algorithm>
#include <fstream>
#include <iterator>

#include "signal/data_files.h"
#include "test_support.h"

namespace merida {
namespace {

class SoxWaveTest : public test::TempDirTest {};

TEST_F(SoxWaveTest, SineWrittenBySoxLoads) {
  if (std::system("command -v sox >/dev/null 2>&1") != 0) GTEST_SKIP() << "sox is not on PATH";
  ASSERT_EQ(std::system("sox -n -r 11025 -b 8 -c 1 -e unsigned-integer t.wav synth 0.1 sine 440 2>/dev/null"), 0);
  std::ifstream in(dir_ / "t.wav", std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  ASSERT_GT(bytes.size(), 44u);
  // The data size field; an odd size is followed by a pad byte the reader never reads.
  size_t dataBytes = 0;
  for (size_t k = 0; k < 4; ++k) dataBytes |= size_t{static_cast<uint8_t>(bytes[40 + k])} << (8 * k);

  test::RecordingHost host;
  Engine engine(host);
  engine.ResetEngine();
  RecordFunctionTable table;
  const LoadResult r = LoadDataFile(engine, table, dir_ / "t.wav");
  ASSERT_TRUE(r.loaded) << r.boxes.text1.value_or("");
  EXPECT_TRUE(host.errors.empty());
  EXPECT_EQ(table.kind, WaveData);
  EXPECT_EQ(table.sampleRate, 11025);
  EXPECT_EQ(r.boxes.text2, "11025");
  // 0.1 s at 11025 Hz, every sample the file holds.
  EXPECT_NEAR(table.count, 1103, 1);
  EXPECT_EQ(static_cast<size_t>(table.count), dataBytes);
  EXPECT_EQ(table.rangeEnd, static_cast<float>(table.count));
  float low = 0, high = 0;
  int rises = 0;  // upward zero crossings: 440 per second
  for (int i = 1; i <= table.count; ++i) {
    const float v = table.values[i][0];
    EXPECT_EQ(v, static_cast<float>(static_cast<uint8_t>(bytes[43 + static_cast<size_t>(i)])) - 128) << i;
    low = std::min(low, v);
    high = std::max(high, v);
    if (i > 1 && table.values[i - 1][0] < 0 && v >= 0) ++rises;
  }
  // A sine centred on byte 128, at whatever level the other program chose.
  EXPECT_GT(high, 60);
  EXPECT_NEAR(high, -low, 2);
  EXPECT_NEAR(rises, 44, 1);
}

}  // namespace
}  // namespace merida

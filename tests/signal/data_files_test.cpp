// The three readers on good, refused, truncated and malformed files; the writers byte for
// byte and read back; the WAVE maker's sampling, scaling and files.
#include "signal/data_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <stop_token>

#include "engine/atomic_file.h"
#include "engine/number_text.h"
#include "signal/wave_maker.h"
#include "test_support.h"

namespace merida {
namespace {

class DataFilesTest : public test::TempDirTest {
 protected:
  DataFilesTest() : engine(host) { engine.ResetEngine(); }
  // Rows 1..5000 hold 7 in every column, so rows a load leaves alone are seen.
  void fillTable() {
    for (auto& row : table.values) row = {7, 7, 7};
    table.count = 5000;
    table.kind = OrbitaData;
    host.errors.clear();
  }
  LoadResult load(const std::string& name, const std::string& contents) {
    std::ofstream(dir_ / name, std::ios::binary) << contents;
    return LoadDataFile(engine, table, dir_ / name);
  }
  std::vector<int> errors(int error) { return error > 0 ? std::vector<int>{error} : std::vector<int>{}; }
  WaveResult make(const char* formula, const char* from, const char* to, bool merida = false, const char* name = "") {
    return MakeWave(engine, formula, {from, to, name}, merida, dir_);
  }
  test::RecordingHost host;
  Engine engine;
  RecordFunctionTable table;
};

// A canonical header with fields overridable, and `n` data bytes promised.
std::string WaveHeader(uint32_t n, int channels = 1, int bits = 8, const char* data = "data", uint32_t rate = 11025) {
  std::string h = WaveFileBytes({}).substr(0, 44);
  h[22] = static_cast<char>(channels);
  h[34] = static_cast<char>(bits);
  h.replace(36, 4, data);
  for (int k = 0; k < 4; ++k) h[24 + k] = static_cast<char>((rate >> (8 * k)) & 0xFF);
  for (int k = 0; k < 4; ++k) h[40 + k] = static_cast<char>((n >> (8 * k)) & 0xFF);
  return h;
}

TEST_F(DataFilesTest, ReaderIsChosenByCaseSensitiveExtension) {
  const std::pair<const char*, DataFormat> cases[] = {
      {"a.wav", DataFormat::kWave},       {"A.WAV", DataFormat::kWave},      {"DATA.Wav", DataFormat::kMerida},
      {"ORBITA.ORB", DataFormat::kOrbita}, {"x.orb", DataFormat::kOrbita},    {"dir.wav/x.mrd", DataFormat::kWave},
      {"s.mrd", DataFormat::kMerida},     {"noext", DataFormat::kMerida}};
  for (auto [path, format] : cases) EXPECT_EQ(ReaderFor(path), format) << path;
}

TEST_F(DataFilesTest, WaveFilesWrittenReadAndRefused) {
  const std::string bytes = WaveFileBytes(std::vector<uint8_t>{128, 0, 255, 1});
  EXPECT_EQ(bytes, std::string("RIFF\x29\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x11\x2b\0\0\x11\x2b\0\0\x01\0\x08\0"
                               "data\x04\0\0\0\x80\x00\xff\x01\0", 49));
  LoadResult r = load("t.wav", bytes);
  EXPECT_EQ(std::tuple(r.loaded, table.kind, table.count, table.sampleRate, table.rangeEnd),
            std::tuple(true, WaveData, 4, 11025u, 4.0f));
  for (int i = 1; i <= 4; ++i) EXPECT_EQ(table.values[i][0], (std::array<float, 4>{0, -128, 127, -127}[i - 1]));
  EXPECT_EQ(std::tuple(r.boxes.text1, r.boxes.text2, r.boxes.text3, r.boxes.text4),
            std::tuple((dir_ / "t.wav").string(), "11025", "0", "4"));
  // A refusal shows the failing field and keeps the rows.
  const std::tuple<const char*, std::string, std::optional<std::string>> refused[] = {
      {"stereo", WaveHeader(4, 2) + "abcd", "2"}, {"16 bits", WaveHeader(4, 1, 16) + "abcd", "16"},
      {"a LIST chunk first", WaveHeader(4, 1, 8, "LIST") + "abcd", "LIST"},
      {"not RIFF", "RIFX" + WaveHeader(4).substr(4), std::nullopt},
      {"cut before the channels", WaveHeader(4).substr(0, 21), ""},
      {"cut before data", WaveHeader(4).substr(0, 38), "da"}, {"empty", "", std::nullopt},
  };
  for (const auto& [name, contents, text1] : refused) {
    fillTable();
    r = load("x.wav", contents);
    EXPECT_EQ(std::tuple(r.loaded, table.kind, r.boxes.text1, table.values[1][0], host.errors.size()),
              std::tuple(false, NoData, text1, 7.0f, 0u)) << name;
  }
}

// A WAVE file written by another program in the canonical layout loads.
TEST_F(DataFilesTest, WaveWrittenBySoxLoads) {
  if (std::system("command -v sox >/dev/null 2>&1") != 0) GTEST_SKIP() << "sox is not on PATH";
  ASSERT_EQ(std::system("sox -n -r 11025 -b 8 -c 1 -e unsigned-integer t.wav synth 0.1 sine 440 2>/dev/null"), 0);
  const std::string bytes = test::FileText(dir_ / "t.wav").value_or("");
  ASSERT_GT(bytes.size(), 44u);
  // The data size field; an odd size is followed by a pad byte the reader never reads.
  size_t dataBytes = 0;
  for (size_t k = 0; k < 4; ++k) dataBytes |= size_t{static_cast<uint8_t>(bytes[40 + k])} << (8 * k);
  const LoadResult r = LoadDataFile(engine, table, dir_ / "t.wav");
  // 0.1 s at 11025 Hz: every sample the file holds, each byte less 128.
  EXPECT_EQ(std::tuple(r.loaded, host.errors.size(), table.kind, r.boxes.text2, static_cast<size_t>(table.count)),
            std::tuple(true, 0u, WaveData, "11025", dataBytes));
  EXPECT_NEAR(table.count, 1103, 1);
  for (int i = 1; i <= table.count; ++i) {
    EXPECT_EQ(table.values[i][0], static_cast<uint8_t>(bytes[43 + static_cast<size_t>(i)]) - 128.0f) << i;
  }
}

TEST_F(DataFilesTest, WaveDataIsCappedNeverReadPastTheEndAndRatesStayUnsigned) {
  fillTable();
  ASSERT_TRUE(load("big.wav", WaveHeader(10000) + std::string(10000, '\x90')).loaded);
  EXPECT_EQ(std::tuple(table.count, table.rangeEnd, table.values[5000][0]), std::tuple(5000, 5000.0f, 16.0f));
  // The header promises 3000 bytes at 3 GHz, the file holds 2: the rest loads as silence.
  LoadResult r = load("short.wav", WaveHeader(3000, 1, 8, "data", 3000000000u) + std::string("\xff\x00", 2));
  ASSERT_EQ(std::tuple(r.loaded, table.count), std::tuple(true, 3000));
  EXPECT_EQ((std::array<float, 4>{table.values[1][0], table.values[2][0], table.values[3][0], table.values[3000][0]}),
            (std::array<float, 4>{127, -128, 0, 0}));
  EXPECT_EQ(table.values[3001][0], 16) << "rows above the count stay";
  EXPECT_EQ(std::tuple(table.sampleRate, r.boxes.text2), std::tuple(3000000000u, "3000000000"));
}

TEST_F(DataFilesTest, MeridaTextFiles) {
  // Name, text, error (-1: refused with a reason), count and rows 1.. as loaded (5000 and 7: as they were).
  using Case = std::tuple<const char*, std::string, int, int16_t, std::vector<float>>;
  std::string six;
  for (int i = 0; i < 6000; ++i) six += " 1\r\n";
  const Case cases[] = {
      {"written form", "MERIDA\r\n 3\r\n 0\r\n 2\r\n .5\r\n-3E2\r\n 12\r\n", 0, 3, {0.5f, -300, 12, 7}},
      {"commas and bare LF", "MERIDA,2, 0,1\n1,2\n", 0, 2, {1, 2, 7}},
      {"count above the samples", "MERIDA\r\n4\r\n0\r\n1\r\n1\r\n2\r\n", 0, 4, {1, 2, 7, 7}},
      {"empty and junk fields", "MERIDA\r\n3\r\n0\r\n1\r\n\r\nabc\r\n4x\r\n", 0, 3, {0, 0, 4}},
      {"6000 samples", "MERIDA\r\n6000\r\n0\r\n1\r\n" + six, 0, 5000, {1, 1}},
      {"wrong tag", "MERIDAX\r\n1\r\n0\r\n1\r\n5\r\n", 39, 5000, {7}},
      {"binary garbage", std::string("\0\x01\xfe\xff MERIDA", 11), 39, 5000, {7}},
      {"header cut short", "MERIDA\r\n3\r\n0\r\n", -1, 5000, {7}},
      {"negative count", "MERIDA\r\n-3\r\n0\r\n1\r\n5\r\n", -1, 5000, {7}},
      {"sample beyond single precision", "MERIDA\r\n2\r\n0\r\n1\r\n5\r\n1E39\r\n", -1, 5000, {7}},
      {"huge count line", "MERIDA\r\n" + std::string(5000, '9') + "\r\n0\r\n1\r\n5\r\n", -1, 5000, {7}},
      {"huge sample", "MERIDA\r\n2\r\n0\r\n1\r\n5\r\n" + std::string(4097, '1') + "\r\n", -1, 5000, {7}},
  };
  for (const auto& [name, text, error, count, rows] : cases) {
    fillTable();
    LoadResult r = load("d.mrd", text);
    // A refusal without a number says why.
    EXPECT_EQ(std::tuple(r.loaded, table.kind, r.reason.empty(), table.count),
              std::tuple(error == 0, error ? NoData : MeridaTextData, error >= 0, count)) << name;
    EXPECT_EQ(host.errors, errors(error)) << name;
    for (size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(table.values[i + 1][0], rows[i]) << name << " " << i;
  }
}

TEST_F(DataFilesTest, OrbitaFiles) {
  // Columns past the first are found by counting the values before them, up to the count,
  // though only 5000 of each are kept.
  auto column = [](int n, float v) {
    std::string s;
    for (int i = 0; i < n; ++i) s += ListText(v + static_cast<float>(i % 3)) + (i % 2 ? "," : "\r\n");
    return s;
  };
  // Name, text, error (-1: refused with a reason), dimension, count, rows 1.. (3, 5000 and 7: as they were).
  const std::tuple<const char*, std::string, int, int16_t, int16_t, std::vector<std::array<float, 3>>> cases[] = {
      {"two columns", "ORBITA\r\n2\r\n3\r\n1\r\n2\r\n3\r\n 4\r\n5\r\n6\r\n", 0, 2, 3,
       {{1, 4, 7}, {2, 5, 7}, {3, 6, 7}}},
      {"short second column", "ORBITA\r\n2\r\n3\r\n1\r\n2\r\n3\r\n4\r\n5\r\n", 43, 3, 5000, {{7, 7, 7}}},
      {"four columns", "ORBITA\r\n4\r\n1\r\n1\r\n1\r\n1\r\n1\r\n", 41, 3, 5000, {{7, 7, 7}}},
      {"no columns", "ORBITA\r\n0\r\n1\r\n1\r\n", 41, 3, 5000, {{7, 7, 7}}},
      {"negative rows", "ORBITA\r\n1\r\n-2\r\n1\r\n", 43, 3, 5000, {{7, 7, 7}}},
      {"wrong tag", "orbita\r\n1\r\n1\r\n1\r\n", 39, 3, 5000, {{7, 7, 7}}},
      {"the second column 500 short", "ORBITA\r\n2\r\n6000\r\n" + column(6000, 1) + column(5500, 10), 43, 3, 5000,
       {{7, 7, 7}}},
      {"a long value past the 5000th",
       "ORBITA\r\n2\r\n6000\r\n" + column(5500, 1) + std::string(5000, '3') + "\r\n" + column(6499, 10), -1, 3, 5000,
       {{7, 7, 7}}},
      {"two full columns of 6000", "ORBITA\r\n2\r\n6000\r\n" + column(6000, 1) + column(6000, 10), 0, 2, 5000,
       {{1, 10, 7}, {2, 11, 7}}},
  };
  for (const auto& [name, text, error, dimension, count, rows] : cases) {
    fillTable();
    table.dimension = 3;
    LoadResult r = load("s.orb", text);
    EXPECT_EQ(std::tuple(r.loaded, table.kind, table.count, table.dimension),
              std::tuple(error == 0, error ? NoData : OrbitaData, count, dimension)) << name;
    EXPECT_EQ(host.errors, errors(error)) << name;
    for (size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(table.values[i + 1], rows[i]) << name << " " << i;
  }
  EXPECT_EQ((std::array<float, 2>{table.values[5000][0], table.values[5000][1]}), (std::array<float, 2>{2, 11}));
}

// The readers stop where the rules stop using the file: after a field too long to be a number,
// and after the 5000th value where no later column has to match the count.
TEST_F(DataFilesTest, ReadersReadNoFurtherThanTheRulesUse) {
  std::string values;
  for (int i = 0; i < 5000; ++i) values += "1\r\n";
  const std::string rest(8 << 20, '2');  // what follows is never looked at
  const std::tuple<std::string, bool, bool, uint64_t> cases[] = {
      {"MERIDA\r\n2\r\n" + rest, false, false, 8192},  // a range line of 8 MB
      {"ORBITA\r\n1\r\n" + rest, true, false, 8192},   // a count line of 8 MB
      {"ORBITA\r\n1\r\n1000000000\r\n" + values + rest, true, true, 100000},  // a billion rows of one column
      {"MERIDA\r\n9000\r\n0\r\n1\r\n" + values + rest, false, true, 100000},  // samples past the 5000th
  };
  for (const auto& [text, orbita, loaded, readAtMost] : cases) {
    fillTable();
    ByteInput in(text);
    LoadResult r = orbita ? ReadOrbita(in, table) : ReadMeridaText(in, table);
    EXPECT_EQ(r.loaded, loaded) << text.substr(0, 20);
    EXPECT_LE(in.position(), readAtMost) << text.substr(0, 20);
    EXPECT_EQ(table.count, 5000);
  }
}

// Files from anywhere: what cannot be opened, is not a regular file, or fails while being
// read is a refused load that says why; the rows stay as they were.
TEST_F(DataFilesTest, FilesThatCannotBeReadAreRefusedAndKeepTheRows) {
  ::mkfifo("pipe.mrd", 0644);
  std::filesystem::create_directory("folder.orb");
  for (const char* name : {"mem.wav", "mem.orb", "mem.mrd"}) std::filesystem::create_symlink("/proc/self/mem", name);
  // Shown in the window unless the file cannot be opened, which ends silently there.
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"pipe.mrd", "cannot read pipe.mrd: not a regular file", true},
      {"folder.orb", "cannot read folder.orb: Is a directory", false},
      {"missing.wav", "cannot read missing.wav: No such file or directory", false},
      {"mem.wav", "cannot read mem.wav: Input/output error", true},
      {"mem.orb", "cannot read mem.orb: Input/output error", true},
      {"mem.mrd", "cannot read mem.mrd: Input/output error", true},
  };
  for (const auto& [name, reason, shown] : cases) {
    fillTable();
    LoadResult r = LoadDataFile(engine, table, dir_ / name);  // no format error for a file that was not read
    EXPECT_EQ(std::tuple(r.loaded, r.reason, r.shown, host.errors.size(), table.kind, table.count, table.values[1][0]),
              std::tuple(false, reason, shown, 0u, NoData, 5000, 7.0f)) << name;
  }
  // A stopped load keeps the rows too.
  std::ofstream("s.mrd", std::ios::binary) << "MERIDA\r\n1\r\n0\r\n1\r\n5\r\n";
  fillTable();
  std::stop_source stop;
  stop.request_stop();
  LoadResult r = ReadDataFile(table, dir_ / "s.mrd", stop.get_token());
  EXPECT_EQ(std::tuple(r.stopped, r.loaded, table.kind, table.values[1][0]), std::tuple(true, false, NoData, 7.0f));
}

TEST_F(DataFilesTest, FileDisplayLabels) {
  const std::tuple<float, float, int16_t, std::vector<double>> cases[] = {
      {0, 5000, 5000, {0, 1, 2}}, {0, 2, 100, {0, 0.02f, 0.04f}}, {0, 1, 0, {}}};
  for (const auto& [start, end, count, labels] : cases) {
    table.rangeStart = start;
    table.rangeEnd = end;
    table.count = count;
    std::vector<ChartPoint> points = FileDisplayPoints(table);
    ASSERT_EQ(points.size(), static_cast<size_t>(count));
    for (size_t i = 0; i < labels.size(); ++i) EXPECT_EQ(points[i].x, labels[i]);
  }
}

TEST_F(DataFilesTest, WaveMakerWritesWhatTheLoaderReadsBack) {
  WaveResult r = make("sin(2*PI*440*x)", "0", "1");
  EXPECT_EQ(std::tuple(r.end, r.samples, r.fileName), std::tuple(WaveEnd::kWritten, 11025, "mrdsound.wav"));
  std::string bytes = test::FileText(dir_ / "mrdsound.wav").value_or("");
  ASSERT_EQ(bytes.size(), 11070u);  // one second is 11025 samples, scaled onto the full 0..255
  EXPECT_TRUE(bytes.find('\0', 44) != std::string::npos && bytes.find('\xff', 44) != std::string::npos);
  EXPECT_EQ(engine.BindToX, -1);
  EXPECT_TRUE(LoadDataFile(engine, table, dir_ / "mrdsound.wav").loaded && table.count == 5000) << table.count;
  // Samples at 0, dt, 2dt and the end 4dt: the third lies half way, 127.5 rounds to even.
  ASSERT_EQ(make("x", "0", "4/11025", false, "mid.wav").samples, 4);
  EXPECT_EQ(test::FileText(dir_ / "mid.wav")->substr(44), std::string("\x00\x40\x80\xff\x00", 5));
  // A MERIDA file holds at most 5000 samples.
  r = make("sin(2*PI*440*x)", "0", "0.6", true, "ignored.wav");
  EXPECT_EQ(std::tuple(r.end, r.samples, r.fileName), std::tuple(WaveEnd::kWritten, 6615, "mrdsound.mrd"));
  EXPECT_EQ(test::FileText(dir_ / "mrdsound.mrd")->substr(0, 28), "MERIDA\r\n 5000\r\n 0\r\n .6\r\n 0\r\n");
  ASSERT_TRUE(LoadDataFile(engine, table, dir_ / "mrdsound.mrd").loaded);
  EXPECT_EQ(std::tuple(table.count, table.rangeEnd), std::tuple(5000, 0.6f));
  EXPECT_FLOAT_EQ(table.values[2][0], static_cast<float>(std::sin(2 * 3.14159265358979 * 440 / 11025)));
}

TEST_F(DataFilesTest, WaveMakerEndsWithoutAFile) {
  std::filesystem::create_directory(dir_ / "taken.wav");
  const std::tuple<const char*, const char*, const char*, WaveEnd, int, const char*> cases[] = {
      {"x", "1", "1", WaveEnd::kSilent, 0, ""},  // no time to sample
      {"x", "1", "0", WaveEnd::kSilent, 0, ""},
      {"3", "0", "1", WaveEnd::kConstant, 0, ""},  // a constant cannot be scaled
      {"x*y", "0", "1", WaveEnd::kError, 24, ""}, {"1E200*exp(x*1000)", "0", "1", WaveEnd::kFault, 0, ""},
      {"1E39*sin(2*PI*x)", "0", "1", WaveEnd::kFault, 0, ""},  // beyond single precision
      {"x", "0", "1", WaveEnd::kWriteError, 0, "taken.wav"},
  };
  for (const auto& [formula, from, to, end, error, name] : cases) {
    host.errors.clear();
    WaveResult r = make(formula, from, to, false, name);
    EXPECT_EQ(std::tuple(r.end, r.writeError, std::filesystem::exists(dir_ / "mrdsound.wav"), engine.BindToX),
              std::tuple(end, end == WaveEnd::kWriteError ? "Is a directory" : "", false, -1)) << formula;
    EXPECT_EQ(host.errors, errors(error)) << formula;
  }
}

}  // namespace
}  // namespace merida

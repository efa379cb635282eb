// The three readers on good, refused, truncated and malformed files; the writers byte for
// byte and read back; the WAVE maker's sampling, scaling and files.
#include "signal/data_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
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
  }
  LoadResult load(const std::string& name, const std::string& contents) {
    std::ofstream(dir_ / name, std::ios::binary) << contents;
    return LoadDataFile(engine, table, dir_ / name);
  }
  test::RecordingHost host;
  Engine engine;
  RecordFunctionTable table;
};

// A canonical header with fields overridable, and `n` data bytes promised.
std::string WaveHeader(uint32_t n, int channels = 1, int bits = 8, const char* data = "data") {
  std::vector<uint8_t> none;
  std::string h = WaveFileBytes(none).substr(0, 44);
  h[22] = static_cast<char>(channels);
  h[34] = static_cast<char>(bits);
  h.replace(36, 4, data);
  for (int k = 0; k < 4; ++k) h[40 + k] = static_cast<char>((n >> (8 * k)) & 0xFF);
  return h;
}

TEST_F(DataFilesTest, ReaderIsChosenByCaseSensitiveExtension) {
  const std::pair<const char*, DataFormat> cases[] = {
      {"a.wav", DataFormat::kWave},   {"A.WAV", DataFormat::kWave},    {"DATA.Wav", DataFormat::kMerida},
      {"x.orb", DataFormat::kOrbita}, {"ORBITA.ORB", DataFormat::kOrbita}, {"dir.wav/x.mrd", DataFormat::kWave},
      {"s.mrd", DataFormat::kMerida}, {"noext", DataFormat::kMerida}};
  for (auto [path, format] : cases) EXPECT_EQ(ReaderFor(path), format) << path;
}

TEST_F(DataFilesTest, WaveWriterBytesAndReadBack) {
  std::vector<uint8_t> samples{128, 0, 255, 1};
  std::string bytes = WaveFileBytes(samples);
  ASSERT_EQ(bytes.size(), 4u + 45);
  EXPECT_EQ(bytes.substr(0, 16), std::string("RIFF\x29\0\0\0WAVEfmt ", 16));
  EXPECT_EQ(bytes.substr(16, 28), std::string("\x10\0\0\0\x01\0\x01\0\x11\x2b\0\0\x11\x2b\0\0\x01\0\x08\0data\x04\0\0\0", 28));
  EXPECT_EQ(bytes.back(), '\0');
  LoadResult r = load("t.wav", bytes);
  ASSERT_TRUE(r.loaded);
  EXPECT_EQ(table.kind, WaveData);
  EXPECT_EQ(table.count, 4);
  EXPECT_EQ(table.sampleRate, 11025);
  EXPECT_EQ(table.rangeEnd, 4);
  const float want[] = {0, -128, 127, -127};
  for (int i = 1; i <= 4; ++i) EXPECT_EQ(table.values[i][0], want[i - 1]);
  EXPECT_EQ(*r.boxes.text1, (dir_ / "t.wav").string());
  EXPECT_EQ(*r.boxes.text2, "11025");
  EXPECT_EQ(*r.boxes.text3, "0");
  EXPECT_EQ(*r.boxes.text4, "4");
}

TEST_F(DataFilesTest, RefusedWaveFilesShowTheFailingFieldAndKeepTheRows) {
  struct Case {
    const char* name;
    std::string bytes;
    std::optional<std::string> text1;
  };
  const Case cases[] = {
      {"stereo", WaveHeader(4, 2) + "abcd", "2"},
      {"16 bits", WaveHeader(4, 1, 16) + "abcd", "16"},
      {"a LIST chunk first", WaveHeader(4, 1, 8, "LIST") + "abcd", "LIST"},
      {"not RIFF", "RIFX" + WaveHeader(4).substr(4), std::nullopt},
      {"cut before the channels", WaveHeader(4).substr(0, 21), ""},
      {"cut in the rate", WaveHeader(4).substr(0, 26), "1"},
      {"cut before data", WaveHeader(4).substr(0, 38), "da"},
      {"empty", "", std::nullopt},
  };
  for (const Case& c : cases) {
    fillTable();
    table.kind = OrbitaData;
    LoadResult r = load("x.wav", c.bytes);
    EXPECT_FALSE(r.loaded) << c.name;
    EXPECT_EQ(table.kind, NoData) << c.name;
    EXPECT_EQ(r.boxes.text1, c.text1) << c.name;
    EXPECT_EQ(table.values[1][0], 7) << c.name;
    EXPECT_TRUE(host.errors.empty()) << c.name;
  }
}

TEST_F(DataFilesTest, SampleRatesOf2To31AndAboveStayUnsigned) {
  std::string header = WaveHeader(4);
  for (int k = 0; k < 4; ++k) header[24 + k] = static_cast<char>((3000000000u >> (8 * k)) & 0xFF);
  LoadResult r = load("fast.wav", header + "abcd");
  ASSERT_TRUE(r.loaded);
  EXPECT_EQ(table.sampleRate, 3000000000u);
  EXPECT_EQ(*r.boxes.text2, "3000000000");
}

TEST_F(DataFilesTest, WaveDataSizeIsCappedAndNeverReadPastTheEnd) {
  fillTable();
  LoadResult r = load("big.wav", WaveHeader(10000) + std::string(10000, '\x90'));
  ASSERT_TRUE(r.loaded);
  EXPECT_EQ(table.count, 5000);
  EXPECT_EQ(table.rangeEnd, 5000);
  EXPECT_EQ(table.values[5000][0], 16);
  // The header promises 3000 bytes, the file holds 2: the rest loads as silence.
  r = load("short.wav", WaveHeader(3000) + std::string("\xff\x00", 2));
  ASSERT_TRUE(r.loaded);
  EXPECT_EQ(table.count, 3000);
  EXPECT_EQ(table.values[1][0], 127);
  EXPECT_EQ(table.values[2][0], -128);
  EXPECT_EQ(table.values[3][0], 0);
  EXPECT_EQ(table.values[3000][0], 0);
  EXPECT_EQ(table.values[3001][0], 16) << "rows above the count stay";
  EXPECT_EQ(*r.boxes.text2, "11025");
}

TEST_F(DataFilesTest, MeridaTextFiles) {
  struct Case {
    const char* name;
    std::string text;
    bool loaded;
    int error;
    int16_t count;
    std::vector<float> rows;  // rows 1.. as loaded (7 = left as it was)
  };
  std::string six;
  for (int i = 0; i < 6000; ++i) six += " 1\r\n";
  const Case cases[] = {
      {"written form", "MERIDA\r\n 3\r\n 0\r\n 2\r\n .5\r\n-3E2\r\n 12\r\n", true, 0, 3, {0.5f, -300, 12, 7}},
      {"commas and bare LF", "MERIDA,2, 0,1\n1,2\n", true, 0, 2, {1, 2, 7}},
      {"count above the samples", "MERIDA\r\n4\r\n0\r\n1\r\n1\r\n2\r\n", true, 0, 4, {1, 2, 7, 7}},
      {"empty and junk fields", "MERIDA\r\n3\r\n0\r\n1\r\n\r\nabc\r\n4x\r\n", true, 0, 3, {0, 0, 4}},
      {"6000 samples", "MERIDA\r\n6000\r\n0\r\n1\r\n" + six, true, 0, 5000, {1, 1}},
      {"count halves to even", "MERIDA\r\n2.5\r\n0\r\n1\r\n9\r\n", true, 0, 2, {9, 7}},
      {"wrong tag", "MERIDAX\r\n1\r\n0\r\n1\r\n5\r\n", false, 39, 5000, {7}},
      {"binary garbage", std::string("\0\x01\xfe\xff MERIDA", 11), false, 39, 5000, {7}},
      {"header cut short", "MERIDA\r\n3\r\n0\r\n", false, 0, 5000, {7}},
      {"negative count", "MERIDA\r\n-3\r\n0\r\n1\r\n5\r\n", false, 0, 5000, {7}},
      {"sample beyond single precision", "MERIDA\r\n2\r\n0\r\n1\r\n5\r\n1E39\r\n", false, 0, 5000, {7}},
      {"huge count line", "MERIDA\r\n" + std::string(5000, '9') + "\r\n0\r\n1\r\n5\r\n", false, 0, 5000, {7}},
      {"huge range line", "MERIDA\r\n1\r\n" + std::string(4097, '1') + "\r\n1\r\n5\r\n", false, 0, 5000, {7}},
      {"huge sample", "MERIDA\r\n2\r\n0\r\n1\r\n5\r\n" + std::string(4097, '1') + "\r\n", false, 0, 5000, {7}},
  };
  for (const Case& c : cases) {
    fillTable();
    host.errors.clear();
    LoadResult r = load("d.mrd", c.text);
    EXPECT_EQ(r.loaded, c.loaded) << c.name;
    EXPECT_EQ(table.kind, c.loaded ? MeridaTextData : NoData) << c.name;
    EXPECT_EQ(host.errors, c.error ? std::vector<int>{c.error} : std::vector<int>{}) << c.name;
    EXPECT_EQ(!c.loaded && !c.error, !r.reason.empty()) << c.name << ": a refusal without a number says why";
    EXPECT_EQ(table.count, c.count) << c.name;
    for (size_t i = 0; i < c.rows.size(); ++i) EXPECT_EQ(table.values[i + 1][0], c.rows[i]) << c.name << " row " << i + 1;
  }
}

// The readers stop where the rules stop using the file: after a field too long to be a number,
// and after the 5000th value where no later column has to match the count.
TEST_F(DataFilesTest, ReadersReadNoFurtherThanTheRulesUse) {
  struct Case {
    const char* name;
    std::string text;
    bool orbita, loaded;
    uint64_t readAtMost;
  };
  std::string values;
  for (int i = 0; i < 5000; ++i) values += "1\r\n";
  const std::string rest(8 << 20, '2');  // what follows is never looked at
  const Case cases[] = {
      {"a range line of 8 MB", "MERIDA\r\n2\r\n" + rest, false, false, 8192},
      {"a count line of 8 MB", "ORBITA\r\n1\r\n" + rest, true, false, 8192},
      {"a billion rows of one column", "ORBITA\r\n1\r\n1000000000\r\n" + values + rest, true, true, 100000},
      {"samples past the 5000th", "MERIDA\r\n9000\r\n0\r\n1\r\n" + values + rest, false, true, 100000},
  };
  for (const Case& c : cases) {
    fillTable();
    ByteInput in(c.text);
    LoadResult r = c.orbita ? ReadOrbita(in, table) : ReadMeridaText(in, table);
    EXPECT_EQ(r.loaded, c.loaded) << c.name;
    EXPECT_LE(in.position(), c.readAtMost) << c.name;
    if (c.loaded) {
      EXPECT_EQ(table.count, 5000) << c.name;
    }
  }
}

// Columns past the first are found by counting the values before them, up to the count,
// though only 5000 of each are kept.
TEST_F(DataFilesTest, OrbitaColumnsBeyond5000RowsAreCountedNotKept) {
  auto column = [](int n, float v) {
    std::string s;
    for (int i = 0; i < n; ++i) s += ListText(v + static_cast<float>(i % 3)) + (i % 2 ? "," : "\r\n");
    return s;
  };
  struct Case {
    const char* name;
    std::string text;
    int error;
  };
  const Case cases[] = {
      {"two full columns of 6000", "ORBITA\r\n2\r\n6000\r\n" + column(6000, 1) + column(6000, 10), 0},
      {"the second column 500 short", "ORBITA\r\n2\r\n6000\r\n" + column(6000, 1) + column(5500, 10), 43},
      {"7000 declared, 6000 in each", "ORBITA\r\n2\r\n7000\r\n" + column(6000, 1) + column(6000, 10), 43},
      {"a long value past the 5000th", "ORBITA\r\n2\r\n6000\r\n" + column(5500, 1) + std::string(5000, '3') +
                                           "\r\n" + column(6499, 10), -1},
  };
  for (const Case& c : cases) {
    fillTable();
    host.errors.clear();
    LoadResult r = load("big.orb", c.text);
    EXPECT_EQ(r.loaded, c.error == 0) << c.name;
    EXPECT_EQ(host.errors, c.error > 0 ? std::vector<int>{c.error} : std::vector<int>{}) << c.name;
    if (c.error == 0) {
      EXPECT_EQ(table.count, 5000) << c.name;
      EXPECT_EQ(table.values[5000][0], 1 + 4999 % 3) << c.name;
      EXPECT_EQ(table.values[1][1], 10) << c.name << ": column 2 starts after all of column 1";
      EXPECT_EQ(table.values[5000][1], 10 + 4999 % 3) << c.name;
    } else {
      EXPECT_EQ(table.values[1][0], 7) << c.name;
    }
  }
}

// Files from anywhere: what cannot be opened, is not a regular file, or fails while being
// read is a refused load that says why; the rows stay as they were.
TEST_F(DataFilesTest, FilesThatCannotBeReadAreRefusedAndKeepTheRows) {
  struct Case {
    const char* name;
    const char* reason;
    bool shown;  // in the window; a file that cannot be opened ends silently there
  };
  ::mkfifo("pipe.mrd", 0644);
  std::filesystem::create_directory("folder.orb");
  std::filesystem::create_symlink("/proc/self/mem", "mem.wav");
  std::filesystem::create_symlink("/proc/self/mem", "mem.orb");
  std::filesystem::create_symlink("/proc/self/mem", "mem.mrd");
  const Case cases[] = {
      {"pipe.mrd", "cannot read pipe.mrd: not a regular file", true},
      {"folder.orb", "cannot read folder.orb: Is a directory", false},
      {"missing.wav", "cannot read missing.wav: No such file or directory", false},
      {"mem.wav", "cannot read mem.wav: Input/output error", true},
      {"mem.orb", "cannot read mem.orb: Input/output error", true},
      {"mem.mrd", "cannot read mem.mrd: Input/output error", true},
  };
  for (const Case& c : cases) {
    fillTable();
    table.kind = OrbitaData;
    host.errors.clear();
    LoadResult r = LoadDataFile(engine, table, dir_ / c.name);
    EXPECT_FALSE(r.loaded) << c.name;
    EXPECT_EQ(r.reason, c.reason) << c.name;
    EXPECT_EQ(r.shown, c.shown) << c.name;
    EXPECT_TRUE(host.errors.empty()) << c.name << ": no format error for a file that was not read";
    EXPECT_EQ(table.kind, NoData) << c.name;
    EXPECT_EQ(table.count, 5000) << c.name;
    EXPECT_EQ(table.values[1][0], 7) << c.name;
  }
}

TEST_F(DataFilesTest, AStoppedLoadKeepsTheRows) {
  std::ofstream("s.mrd", std::ios::binary) << "MERIDA\r\n1\r\n0\r\n1\r\n5\r\n";
  fillTable();
  std::stop_source stop;
  stop.request_stop();
  LoadResult r = ReadDataFile(table, dir_ / "s.mrd", stop.get_token());
  EXPECT_TRUE(r.stopped);
  EXPECT_FALSE(r.loaded);
  EXPECT_EQ(table.kind, NoData);
  EXPECT_EQ(table.values[1][0], 7);
}

TEST_F(DataFilesTest, OrbitaFiles) {
  struct Case {
    const char* name;
    std::string text;
    int error;  // 0: loads
    int16_t dimension, count;
    std::vector<std::array<float, 3>> rows;
  };
  const Case cases[] = {
      {"two columns", "ORBITA\r\n2\r\n3\r\n1\r\n2\r\n3\r\n 4\r\n5\r\n6\r\n", 0, 2, 3, {{1, 4, 7}, {2, 5, 7}, {3, 6, 7}}},
      {"short second column", "ORBITA\r\n2\r\n3\r\n1\r\n2\r\n3\r\n4\r\n5\r\n", 43, 0, 5000, {{7, 7, 7}}},
      {"four columns", "ORBITA\r\n4\r\n1\r\n1\r\n1\r\n1\r\n1\r\n", 41, 0, 5000, {{7, 7, 7}}},
      {"no columns", "ORBITA\r\n0\r\n1\r\n1\r\n", 41, 0, 5000, {{7, 7, 7}}},
      {"negative rows", "ORBITA\r\n1\r\n-2\r\n1\r\n", 43, 0, 5000, {{7, 7, 7}}},
      {"wrong tag", "orbita\r\n1\r\n1\r\n1\r\n", 39, 0, 5000, {{7, 7, 7}}},
  };
  for (const Case& c : cases) {
    fillTable();
    table.dimension = 3;
    host.errors.clear();
    LoadResult r = load("s.orb", c.text);
    EXPECT_EQ(r.loaded, c.error == 0) << c.name;
    EXPECT_EQ(table.kind, c.error ? NoData : OrbitaData) << c.name;
    EXPECT_EQ(host.errors, c.error ? std::vector<int>{c.error} : std::vector<int>{}) << c.name;
    EXPECT_EQ(table.count, c.count) << c.name;
    if (!c.error) {
      EXPECT_EQ(table.dimension, c.dimension) << c.name;
    }
    for (size_t i = 0; i < c.rows.size(); ++i) EXPECT_EQ(table.values[i + 1], c.rows[i]) << c.name;
  }
}

TEST_F(DataFilesTest, FileDisplayLabels) {
  struct Case {
    float start, end;
    int16_t count;
    std::vector<double> labels;
  };
  const Case cases[] = {{0, 5000, 5000, {0, 1, 2}}, {0, 2, 100, {0, 0.02f, 0.04f}}, {0, 1, 0, {}}};
  for (const Case& c : cases) {
    table.rangeStart = c.start;
    table.rangeEnd = c.end;
    table.count = c.count;
    std::vector<ChartPoint> points = FileDisplayPoints(table);
    EXPECT_EQ(points.size(), static_cast<size_t>(c.count));
    for (size_t i = 0; i < c.labels.size(); ++i) EXPECT_EQ(points[i].x, c.labels[i]);
  }
}

class WaveMakerTest : public DataFilesTest {
 protected:
  WaveResult make(const char* formula, const char* from, const char* to, bool merida = false, const char* name = "") {
    return MakeWave(engine, formula, {from, to, name}, merida, dir_);
  }
};

TEST_F(WaveMakerTest, OneSecondIs11025SamplesIn11070Bytes) {
  WaveResult r = make("sin(2*PI*440*x)", "0", "1");
  ASSERT_EQ(r.end, WaveEnd::kWritten);
  EXPECT_EQ(r.samples, 11025);
  EXPECT_EQ(r.fileName, "mrdsound.wav");
  std::optional<std::string> bytes = test::FileText(dir_ / "mrdsound.wav");
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->size(), 11070u);
  std::string data = bytes->substr(44, 11025);
  EXPECT_NE(data.find('\0'), std::string::npos);
  EXPECT_NE(data.find('\xff'), std::string::npos);
  EXPECT_EQ(engine.BindToX, -1);
  // What the maker writes, the loader reads back.
  ASSERT_TRUE(LoadDataFile(engine, table, dir_ / "mrdsound.wav").loaded);
  EXPECT_EQ(table.count, 5000);
}

TEST_F(WaveMakerTest, TheMidpointOfTheRangeScalesTo128) {
  // Samples at 0, dt, 2dt and the end 4dt: the third lies half way, 127.5 rounds to even.
  WaveResult r = make("x", "0", "4/11025", false, "mid.wav");
  ASSERT_EQ(r.end, WaveEnd::kWritten);
  ASSERT_EQ(r.samples, 4);
  EXPECT_EQ(test::FileText(dir_ / "mid.wav")->substr(44), std::string("\x00\x40\x80\xff\x00", 5));
}

TEST_F(WaveMakerTest, MeridaFileHoldsAtMost5000SamplesAndLoadsBack) {
  WaveResult r = make("sin(2*PI*440*x)", "0", "0.6", true, "ignored.wav");
  ASSERT_EQ(r.end, WaveEnd::kWritten);
  EXPECT_EQ(r.samples, 6615);
  EXPECT_EQ(r.fileName, "mrdsound.mrd");
  std::string text = *test::FileText(dir_ / "mrdsound.mrd");
  EXPECT_EQ(text.substr(0, 28), "MERIDA\r\n 5000\r\n 0\r\n .6\r\n 0\r\n");
  ASSERT_TRUE(LoadDataFile(engine, table, dir_ / "mrdsound.mrd").loaded);
  EXPECT_EQ(table.count, 5000);
  EXPECT_FLOAT_EQ(table.rangeEnd, 0.6f);
  EXPECT_FLOAT_EQ(table.values[2][0], static_cast<float>(std::sin(2 * 3.14159265358979 * 440 / 11025)));
}

TEST_F(WaveMakerTest, GoEndsWithoutAFile) {
  struct Case {
    const char* formula;
    const char* from;
    const char* to;
    WaveEnd end;
    int error;
    const char* name = "";
  };
  std::filesystem::create_directory(dir_ / "taken.wav");
  const Case cases[] = {
      {"x", "1", "1", WaveEnd::kSilent, 0},          // no time to sample
      {"x", "1", "0", WaveEnd::kSilent, 0},
      {"3", "0", "1", WaveEnd::kConstant, 0},        // a constant cannot be scaled
      {"x*y", "0", "1", WaveEnd::kError, 24},
      {"1E200*exp(x*1000)", "0", "1", WaveEnd::kFault, 0},
      {"1E39*sin(2*PI*x)", "0", "1", WaveEnd::kFault, 0},  // beyond single precision
      {"x", "0", "1", WaveEnd::kWriteError, 0, "taken.wav"},
  };
  for (const Case& c : cases) {
    host.errors.clear();
    WaveResult r = make(c.formula, c.from, c.to, false, c.name);
    EXPECT_EQ(r.end, c.end) << c.formula;
    EXPECT_EQ(r.writeError, c.end == WaveEnd::kWriteError ? "Is a directory" : "") << c.formula;
    EXPECT_EQ(host.errors, c.error ? std::vector<int>{c.error} : std::vector<int>{}) << c.formula;
    EXPECT_FALSE(std::filesystem::exists(dir_ / "mrdsound.wav")) << c.formula;
    EXPECT_EQ(engine.BindToX, -1);
  }
}

}  // namespace
}  // namespace merida

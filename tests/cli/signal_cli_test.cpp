// merida-cli wave, load, display and fft, run as a user runs them, one after another in one
// directory: what wave writes, load and fft read.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

class SignalCliTest : public test::TempDirTest {
 protected:
  static std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }
};

TEST_F(SignalCliTest, WaveThenLoadThenDisplay) {
  test::CliResult made = test::RunCli({"wave", "--from", "0", "--to", "1", "sin(2*PI*440*x)"});
  EXPECT_EQ(made.status, 0);
  EXPECT_EQ(made.out, "mrdsound.wav\n");
  test::CliResult loaded = test::RunCli({"load", "mrdsound.wav"});
  EXPECT_EQ(loaded.status, 0);
  EXPECT_EQ(Lines(loaded.out), (std::vector<std::string>{(std::filesystem::current_path() / "mrdsound.wav").string(),
                                                         "11025", "0", "5000"}));
  std::vector<std::string> shown = Lines(test::RunCli({"display", "mrdsound.wav"}).out);
  ASSERT_EQ(shown.size(), 5000u);
  EXPECT_EQ(shown[0], "0 0");  // byte 128: the sine starts at the middle of the range
  EXPECT_EQ(shown[4999].substr(0, 5), "4999 ");
}

TEST_F(SignalCliTest, MeridaFileRowsAndRefusals) {
  EXPECT_EQ(test::RunCli({"wave", "--mrd", "--from", "0", "--to", "0.2", "sin(2*PI*440*x)"}).out, "mrdsound.mrd\n");
  std::vector<std::string> rows = Lines(test::RunCli({"load", "--rows", "mrdsound.mrd"}).out);
  ASSERT_EQ(rows.size(), 4u + 2205);
  EXPECT_EQ(std::vector<std::string>(rows.begin(), rows.begin() + 6),
            (std::vector<std::string>{"mrdsound.mrd", "2205", "0", "0.2", "0", "0.2481378"}));

  std::ofstream(dir_ / "stereo.wav", std::ios::binary)
      << std::string("RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0", 24) << std::string(20, '\0');
  test::CliResult stereo = test::RunCli({"load", "stereo.wav"});
  EXPECT_EQ(stereo.status, 1);
  EXPECT_EQ(stereo.out, "2\n");  // the field that failed, as Text1 shows it
  EXPECT_EQ(stereo.err, "merida-cli: stereo.wav: not a WAVE file this program reads (8-bit mono PCM with a 44-byte header)\n");
  std::filesystem::copy_file(dir_ / "stereo.wav", dir_ / "DATA.Wav");
  test::ExpectCli({"NotMeridaText", {"load", "DATA.Wav"}, 1, "", "error 39: ﾌｧｲﾙの形式が違います\n"});
}

// Whatever the file or the failure, a command that ends without its output says why in one
// line, and a failed read or write changes nothing.
TEST_F(SignalCliTest, FailuresSayWhatHappened) {
  struct Row {
    std::vector<std::string> args;
    int status;
    std::string err;
    std::string shell = "";
  };
  ::mkfifo("pipe.mrd", 0644);
  std::filesystem::create_directory("taken.wav");
  for (const char* name : {"mem.mrd", "mem.wav", "mem.orb"}) std::filesystem::create_symlink("/proc/self/mem", name);
  const std::string fileTooLarge = "ulimit -f 1; trap '' XFSZ;";
  const Row rows[] = {
      {{"load", "mem.mrd"}, 1, "merida-cli: cannot read mem.mrd: Input/output error\n"},
      {{"display", "mem.wav"}, 1, "merida-cli: cannot read mem.wav: Input/output error\n"},
      {{"stat", "ave", "mem.orb"}, 1, "merida-cli: cannot read mem.orb: Input/output error\n"},
      {{"test", "t", "--pop", "0 1", "--record", "mem.orb", "--column", "1"}, 1,
       "merida-cli: cannot read mem.orb: Input/output error\n"},
      {{"fft", "--mrd", "mem.mrd", "--from", "0", "--to", "1", "--num", "8", "--show", "power"}, 1,
       "merida-cli: cannot read mem.mrd: Input/output error\n"},
      {{"load", "pipe.mrd"}, 1, "merida-cli: cannot read pipe.mrd: not a regular file\n"},
      {{"load", "nonexistent.mrd"}, 1, "merida-cli: cannot read nonexistent.mrd: No such file or directory\n"},
      {{"wave", "--from", "0", "--to", "1", "exp(x*1000)"}, 3, "fault: Overflow\n"},
      {{"wave", "--from", "0", "--to", "1", "1E39*sin(2*PI*x)"}, 3, "fault: Overflow\n"},
      {{"wave", "--from", "0", "--to", "1", "3"}, 1,
       "merida-cli: nothing written: the formula has the same value at every sample\n"},
      {{"wave", "--from", "0", "--to", "1", "--name", "taken.wav", "x"}, 1,
       "merida-cli: cannot write taken.wav: Is a directory\n"},
      {{"wave", "--from", "0", "--to", "1", "x"}, 1, "merida-cli: cannot write mrdsound.wav: File too large\n",
       fileTooLarge},
      {{"fft", "--num", "-1", "--from", "0", "--to", "1", "--show", "power", "sin(x)"}, 1,
       "merida-cli: the number of points must be a number of at least 1 (not \"-1\")\n"},
      {{"fft", "--from", "1", "--to", "0", "--num", "8", "--show", "power", "x"}, 1,
       "merida-cli: the start of the range must be below its end\n"},
  };
  for (const Row& r : rows) {
    test::CliResult got = test::RunCli(r.args, "", r.shell);
    EXPECT_EQ(got.status, r.status) << r.args[0] << " " << r.args[1];
    EXPECT_EQ(got.err, r.err) << r.args[0] << " " << r.args[1];
    EXPECT_EQ(got.out, "") << r.args[0] << " " << r.args[1];
  }
  EXPECT_FALSE(std::filesystem::exists("mrdsound.wav"));
  EXPECT_TRUE(std::filesystem::is_directory("taken.wav"));
}

// A WAVE file's sample rate is unsigned: 3 GHz labels the spectrum in the billions, not below 0.
TEST_F(SignalCliTest, SampleRatesAbove2To31LabelTheSpectrumUpward) {
  std::string wave = "RIFF";
  wave += std::string("\x4d\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0", 20);
  wave += std::string("\x00\x5e\xd0\xb2", 4);  // 3000000000, little-endian
  wave += std::string("\x00\x5e\xd0\xb2\x01\0\x08\0data\x40\0\0\0", 16);
  for (int i = 0; i < 64; ++i) wave += static_cast<char>(128 + (i % 2 ? 60 : -60));
  std::ofstream("fast.wav", std::ios::binary) << wave;
  EXPECT_EQ(Lines(test::RunCli({"load", "fast.wav"}).out)[1], "3000000000");
  test::CliResult r = test::RunCli({"fft", "--wave", "fast.wav", "--from", "0", "--to", "64", "--num", "64", "--show",
                                    "power"});
  ASSERT_EQ(r.status, 0) << r.err;
  std::vector<std::string> points = Lines(r.out);
  ASSERT_EQ(points.size(), 32u);
  EXPECT_EQ(points[1].substr(0, points[1].find(' ')), "46875000");  // 3E9 / 64
  for (const std::string& p : points) EXPECT_NE(p[0], '-') << p;
}

TEST_F(SignalCliTest, FftOfAFormulaAndOfAFileInContinueMode) {
  test::CliResult power = test::RunCli({"fft", "--from", "0", "--to", "1", "--num", "100", "--show", "power",
                                        "sin(2*PI*5*x)"});
  EXPECT_EQ(power.status, 0);
  EXPECT_EQ(power.err, "Text3: 128\n");
  std::vector<std::string> points = Lines(power.out);
  ASSERT_EQ(points.size(), 64u);
  EXPECT_EQ(points[5], "5 0.25");

  ASSERT_EQ(test::RunCli({"wave", "--mrd", "--from", "0", "--to", "0.2", "sin(2*PI*440*x)"}).status, 0);
  test::CliResult frames = test::RunCli({"fft", "--mrd", "mrdsound.mrd", "--continue", "--from", "0", "--to", "0.2",
                                         "--num", "512", "--show", "power", "--matrix", "m.txt"});
  EXPECT_EQ(frames.status, 0);
  std::vector<std::string> lines = Lines(frames.out);
  EXPECT_EQ(lines.size(), 4u * 256 + 3) << "four frames of 256 points, an empty line between";
  EXPECT_EQ(std::count(lines.begin(), lines.end(), ""), 3);
  std::ifstream in(dir_ / "m.txt");
  std::stringstream text;
  text << in.rdbuf();
  std::vector<std::string> matrix = Lines(text.str());
  ASSERT_EQ(matrix.size(), 4u);
  EXPECT_EQ(std::count(matrix[0].begin(), matrix[0].end(), ' '), 255);

  const std::string usage = "usage: merida-cli fft ";
  test::ExpectCli({"TwoFiles", {"fft", "--wave", "a.wav", "--mrd", "b.mrd", "--from", "0", "--to", "1", "--num", "8",
                                "--show", "power"}, 2, "", usage, true});
  test::ExpectCli({"ContinueOnAFormula", {"fft", "--continue", "--from", "0", "--to", "1", "--num", "8", "--show",
                                          "power", "x"}, 2, "", usage, true});
}

}  // namespace
}  // namespace merida

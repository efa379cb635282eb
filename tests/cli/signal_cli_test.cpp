// merida-cli wave, load, display and fft, run as a user runs them, one after another in one
// directory: what wave writes, load and fft read.
#include <gtest/gtest.h>

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
  std::filesystem::copy_file(dir_ / "stereo.wav", dir_ / "DATA.Wav");
  test::ExpectCli({"NotMeridaText", {"load", "DATA.Wav"}, 1, "", "error 39: ﾌｧｲﾙの形式が違います\n"});
  test::ExpectCli({"Constant", {"wave", "--from", "0", "--to", "1", "3"}, 3, "", "fault: ", true});
  EXPECT_FALSE(std::filesystem::exists(dir_ / "mrdsound.wav"));
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
  test::ExpectCli({"BeforeGo", {"fft", "--from", "1", "--to", "0", "--num", "8", "--show", "power", "x"}, 1, "", ""});
}

}  // namespace
}  // namespace merida

// merida-cli contour: Label5, the segments of Plot, drawings written to files; errors and usage.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "contour/contour_plot.h"
#include "engine/number_text.h"
#include "test_support.h"

namespace merida {
namespace {

using test::CliCase;

class ContourCli : public test::CliCaseTest {};
TEST_P(ContourCli, Runs) {
  CliCase c = GetParam();
  c.args.insert(c.args.begin(), "contour");
  test::ExpectCli(c);
}

const std::string kUsage =
    "usage: merida-cli contour --x A,B,N --y C,D,M [--levels K0,K1,D] FORMULA\n"
    "  merida-cli contour --x A,B,N --y C,D,M --draw plot|cube|hide [--levels K0,K1,D] "
    "[--color red|green|skyblue|yellow|multi] [--angles A,B] --out FILE.png|FILE.svg FORMULA\n";

INSTANTIATE_TEST_SUITE_P(
    Cases, ContourCli,
    ::testing::Values(
        CliCase{"Calc", {"--x", "-2,2,20", "--y", "-2,2,20", "x^2+y^2"}, 0, "0 ～ 8\n", ""},
        CliCase{"CappedDivisions", {"--x", "-2,2,150", "--y", "-1,1,500", "x"}, 0, "-2 ～ 2\n",
                       "Text3: 100\nText6: 100\n"},
        CliCase{"WrongVariable", {"--x", "0,1,4", "--y", "0,1,4", "x*t"}, 1, "",
                       "error 32: 等高線の変数名はｘとｙだけです\n"},
        CliCase{"ThreeVariables", {"--x", "0,1,4", "--y", "0,1,4", "x*y*z"}, 1, "",
                       "error 31: 等高線の変数は2個です\n"},
        CliCase{"ReversedRange", {"--x", "2,-2,20", "--y", "-2,2,20", "x"}, 1, "",
                "merida-cli: the start of the x range must be below its end\n"},
        CliCase{"TooManyDivisions", {"--x", "0,1,32768", "--y", "0,1,10", "x"}, 1, "",
                "merida-cli: the number of x divisions must be a whole number from 1 to 32767 (not \"32768\")\n"},
        CliCase{"Overflow", {"--x", "0,100,4", "--y", "0,100,4", "exp(x*y)"}, 3, "", "fault: Overflow\n"},
        CliCase{"CappedStep", {"--x", "0,4,4", "--y", "0,1,1", "--levels", "0,400,150", "x-0.5"}, 0,
                       "0 ～ 4\n0.5 0 0.5 1\n", "Text9: 100\n"},
        CliCase{"LowestNotBelowHighest", {"--x", "0,4,4", "--y", "0,1,1", "--levels", "2.5,1.5,1", "x"}, 1,
                       "0 ～ 4\n",
                "merida-cli: the lowest level must be below the highest, once both are rounded to whole numbers\n"},
        CliCase{"LevelError", {"--x", "0,4,4", "--y", "0,1,1", "--levels", "1,4*,1", "x"}, 1, "0 ～ 4\n",
                       "error 22: 文法エラーです\n"},
        CliCase{"MissingY", {"--x", "0,4,4", "x"}, 2, "", kUsage},
        CliCase{"TwoPartRange", {"--x", "0,4", "--y", "0,1,1", "x"}, 2, "", kUsage},
        CliCase{"DrawWithoutOut", {"--x", "0,4,4", "--y", "0,1,1", "--draw", "hide", "x"}, 2, "", kUsage},
        CliCase{"OutWithoutDraw", {"--x", "0,4,4", "--y", "0,1,1", "--out", "a.png", "x"}, 2, "", kUsage},
        CliCase{"UnknownDrawing", {"--x", "0,4,4", "--y", "0,1,1", "--draw", "mesh", "--out", "a.png", "x"},
                       2, "", kUsage},
        CliCase{"UnknownImage", {"--x", "0,4,4", "--y", "0,1,1", "--draw", "cube", "--out", "a.gif", "x"}, 2,
                       "", kUsage},
        CliCase{"UnknownColor",
                       {"--x", "0,4,4", "--y", "0,1,1", "--draw", "cube", "--color", "pink", "--out", "a.png", "x"},
                       2, "", kUsage},
        CliCase{"ColorWithoutDraw", {"--x", "0,4,4", "--y", "0,1,1", "--color", "red", "x"}, 2, "", kUsage},
        CliCase{"AngleNotANumber",
                       {"--x", "0,4,4", "--y", "0,1,1", "--draw", "cube", "--angles", "a,30", "--out", "a.png", "x"},
                       2, "", kUsage}),
    test::CliCaseName);

class ContourCliFiles : public test::TempDirTest {
 protected:
  std::string read(const std::string& name) const {
    std::ifstream in(dir_ / name, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }
};

// The command draws what the window's logic draws, segment for segment.
TEST_F(ContourCliFiles, PlotLinesAreTheWindowsSegments) {
  test::CliResult r =
      test::RunCli({"contour", "--x", "-2,2,20", "--y", "-2,2,20", "--levels", "1,4,1", "x^2+y^2"});
  ASSERT_EQ(r.status, 0);
  test::RecordingHost host;
  Engine engine(host);
  engine.ResetEngine();
  GridResult grid = EvaluateGrid(engine, "x^2+y^2", GridBoxes{"-2", "2", "20", "-2", "2", "20"}, false);
  std::vector<Segment> segments;
  ASSERT_TRUE(ContourLines(grid.grid, {1, 4, 1}, nullptr, segments));
  std::string expected = "0 ～ 8\n";
  for (const Segment& s : segments) {
    expected += PlainText(s.x1) + " " + PlainText(s.y1) + " " + PlainText(s.x2) + " " + PlainText(s.y2) + "\n";
  }
  EXPECT_GT(segments.size(), 100u);
  EXPECT_EQ(r.out, expected);
}

#ifdef MERIDA_CLI_DRAWS
TEST_F(ContourCliFiles, DrawingsAreWrittenAsPngOrSvg) {
  struct Case {
    std::vector<std::string> options;
    const char* file;
    std::string err;
  };
  const Case cases[] = {
      {{"--draw", "plot", "--levels", "1,4,1"}, "plot.png", ""},
      {{"--draw", "plot", "--color", "multi"}, "plan.png", ""},
      {{"--draw", "cube"}, "cube.svg", ""},
      {{"--draw", "hide", "--color", "red", "--angles", "-10,200"}, "hide.png", "Text1: 0\nText2: 180\n"},
      {{"--draw", "hide", "--angles", "100,100"}, "reset.png", "Text1: 20\nText2: 30\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    std::vector<std::string> args{"contour", "--x", "-2,2,20", "--y", "-2,2,20"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    args.insert(args.end(), {"--out", c.file, "x^2+y^2"});
    test::CliResult r = test::RunCli(args);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "0 ～ 8\n");
    EXPECT_EQ(r.err, c.err);
    const std::string data = read(c.file);
    if (std::string(c.file).ends_with(".png")) {
      ASSERT_GE(data.size(), 24u);
      EXPECT_EQ(data.substr(0, 8), "\x89PNG\r\n\x1a\n");
      EXPECT_EQ(data.substr(16, 8), std::string("\0\0\x02\x80\0\0\x02\x80", 8));  // 640 x 640
    } else {
      EXPECT_NE(data.find("<svg"), std::string::npos);
      EXPECT_NE(data.find("</svg>"), std::string::npos);
    }
  }
}

TEST_F(ContourCliFiles, AFileThatCannotBeWrittenFails) {
  test::CliResult r = test::RunCli(
      {"contour", "--x", "0,1,2", "--y", "0,1,2", "--draw", "cube", "--out", "no/such/dir/a.png", "x"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "merida-cli: cannot write no/such/dir/a.png: No such file or directory\n");
  EXPECT_FALSE(std::filesystem::exists(dir_ / "no"));
}
#endif

}  // namespace
}  // namespace merida

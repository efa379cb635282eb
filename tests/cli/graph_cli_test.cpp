// merida-cli graph: points on standard output, errors, silent ends, faults and usage.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "test_support.h"

namespace merida {
namespace {

using test::CliResult;
using test::RunCli;

class GraphCliTest : public test::TempDirTest {};

std::vector<std::pair<double, double>> Points(const std::string& out) {
  std::vector<std::pair<double, double>> points;
  std::istringstream in(out);
  for (std::string line; std::getline(in, line);) {
    size_t blank = line.find(' ');
    EXPECT_NE(blank, std::string::npos) << line;
    EXPECT_EQ(line.find(' ', blank + 1), std::string::npos) << line;  // exactly one blank
    points.emplace_back(std::stod(line.substr(0, blank)), std::stod(line.substr(blank + 1)));
  }
  return points;
}

TEST_F(GraphCliTest, PrintsOneLinePerPointInPlainForm) {
  CliResult r = RunCli({"graph", "--min", "0", "--max", "1", "--num", "4", "x^2"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
  EXPECT_EQ(r.out, "0 0\n0.25 0.0625\n0.5 0.25\n0.75 0.5625\n1 1\n");
}

TEST_F(GraphCliTest, PolarAndParametricModes) {
  CliResult polar = RunCli({"graph", "--polar", "--min", "0", "--max", "2*PI", "--num", "8", "2"});
  ASSERT_EQ(polar.status, 0);
  auto p = Points(polar.out);
  ASSERT_EQ(p.size(), 9u);
  for (auto [x, y] : p) EXPECT_NEAR(std::hypot(x, y), 2, 1e-12);

  CliResult para = RunCli({"graph", "--min", "-1", "--max", "1", "--num", "2", "--param", "t^2", "-t"});
  EXPECT_EQ(para.status, 0);
  EXPECT_EQ(para.out, "1 1\n0 0\n-1 1\n");
}

TEST_F(GraphCliTest, CappedPlotHasSixThousandLinesEndingAtMax) {
  CliResult r = RunCli({"graph", "--min", "0", "--max", "3", "--num", "10000", "x"});
  ASSERT_EQ(r.status, 0);
  auto p = Points(r.out);
  ASSERT_EQ(p.size(), 6000u);
  EXPECT_EQ(p.back().first, 3);
  EXPECT_EQ(r.err, "Text3: 6000\n") << "the window shows the cap in its Num box";
}

TEST_F(GraphCliTest, ErrorsSilentEndsFaultsAndUsage) {
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string errPrefix;
  };
  const Case cases[] = {
      {{"graph", "--min", "0", "--max", "1", "--num", "2", "x*y"}, 1, "error 24: "},
      {{"graph", "--min", "0", "--max", "2", "--num", "4", "1/(x-1)"}, 1, "error 11: "},
      {{"graph", "--min", "1", "--max", "0", "--num", "2", "x"}, 1, ""},
      {{"graph", "--min", "10", "--max", "20", "--num", "10", "x!"}, 3, "fault: "},
      {{"graph", "--min", "0", "--max", "1", "x"}, 2, "usage: "},
      {{"graph", "--min", "0", "--max", "1", "--num", "2"}, 2, "usage: "},
      {{"graph", "--min", "0", "--max", "1", "--num", "2", "x", "x"}, 2, "usage: "},
      {{"graph", "--min", "0", "--max", "1", "--num", "2", "--polar", "--param", "t", "t"}, 2, "usage: "},
      {{"graph", "--min", "0", "--max", "1", "--num", "2", "--bogus", "x"}, 2, "usage: "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args.back());
    CliResult r = RunCli(c.args);
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err.substr(0, c.errPrefix.size()), c.errPrefix);
    if (c.errPrefix.empty()) {
      EXPECT_EQ(r.err, "");
    }
  }
}

TEST_F(GraphCliTest, UserFunctionsFromTheStoreCanBePlotted) {
  ASSERT_EQ(RunCli({"rec", "sq(a)=a*a"}).status, 0);
  CliResult r = RunCli({"graph", "--min", "-2", "--max", "2", "--num", "2", "sq(x)+1"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "-2 5\n0 1\n2 5\n");
}

}  // namespace
}  // namespace merida

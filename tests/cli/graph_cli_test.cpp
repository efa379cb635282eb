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

TEST_F(GraphCliTest, PolarModeReachesThePolarPlot) {
  CliResult polar = RunCli({"graph", "--polar", "--min", "0", "--max", "2*PI", "--num", "8", "2"});
  ASSERT_EQ(polar.status, 0);
  auto p = Points(polar.out);
  ASSERT_EQ(p.size(), 9u);
  for (auto [x, y] : p) EXPECT_NEAR(std::hypot(x, y), 2, 1e-12);
}

TEST_F(GraphCliTest, CappedPlotHasSixThousandLinesEndingAtMax) {
  CliResult r = RunCli({"graph", "--min", "0", "--max", "3", "--num", "10000", "x"});
  ASSERT_EQ(r.status, 0);
  auto p = Points(r.out);
  ASSERT_EQ(p.size(), 6000u);
  EXPECT_EQ(p.back().first, 3);
  EXPECT_EQ(r.err, "Text3: 6000\n") << "the window shows the cap in its Num box";
}

class GraphCli : public test::CliCaseTest {};
TEST_P(GraphCli, Runs) { test::ExpectCli(GetParam()); }

constexpr bool kPrefix = true;

INSTANTIATE_TEST_SUITE_P(
    Cases, GraphCli,
    ::testing::Values(
        test::CliCase{"Plain", {"graph", "--min", "0", "--max", "1", "--num", "4", "x^2"}, 0,
                      "0 0\n0.25 0.0625\n0.5 0.25\n0.75 0.5625\n1 1\n", ""},
        test::CliCase{"Param", {"graph", "--min", "-1", "--max", "1", "--num", "2", "--param", "t^2", "-t"}, 0,
                      "1 1\n0 0\n-1 1\n", ""},
        test::CliCase{"TwoVariables", {"graph", "--min", "0", "--max", "1", "--num", "2", "x*y"}, 1, "", "error 24: ",
                      kPrefix},
        test::CliCase{"DivisionByZero", {"graph", "--min", "0", "--max", "2", "--num", "4", "1/(x-1)"}, 1, "",
                      "error 11: ", kPrefix},
        test::CliCase{"ReversedIsSilent", {"graph", "--min", "1", "--max", "0", "--num", "2", "x"}, 1, "",
                      "merida-cli: the start of the range must be below its end\n"},
        test::CliCase{"TooManyDivisions", {"graph", "--min", "0", "--max", "1", "--num", "1e12", "x"}, 1, "",
                      "merida-cli: the number of divisions must be a whole number from 1 to 32767 (not \"1e12\")\n"},
        test::CliCase{"Fault", {"graph", "--min", "10", "--max", "20", "--num", "10", "x!"}, 3, "", "fault: ", kPrefix},
        test::CliCase{"MissingNum", {"graph", "--min", "0", "--max", "1", "x"}, 2, "", "usage: ", kPrefix},
        test::CliCase{"NoFormula", {"graph", "--min", "0", "--max", "1", "--num", "2"}, 2, "", "usage: ", kPrefix},
        test::CliCase{"TwoFormulas", {"graph", "--min", "0", "--max", "1", "--num", "2", "x", "x"}, 2, "", "usage: ",
                      kPrefix},
        test::CliCase{"PolarAndParam", {"graph", "--min", "0", "--max", "1", "--num", "2", "--polar", "--param", "t", "t"},
                      2, "", "usage: ", kPrefix},
        test::CliCase{"UnknownOption", {"graph", "--min", "0", "--max", "1", "--num", "2", "--bogus", "x"}, 2, "",
                      "usage: ", kPrefix}),
    test::CliCaseName);

TEST_F(GraphCliTest, UserFunctionsFromTheStoreCanBePlotted) {
  ASSERT_EQ(RunCli({"rec", "sq(a)=a*a"}).status, 0);
  CliResult r = RunCli({"graph", "--min", "-2", "--max", "2", "--num", "2", "sq(x)+1"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "-2 5\n0 1\n2 5\n");
}

}  // namespace
}  // namespace merida

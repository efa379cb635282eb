// merida-cli diff and ode, run as a user runs them: chart points, errors, silent ends, usage.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

struct DiffCliCase {
  const char* name;
  std::vector<std::string> args;
  int status;
  std::string out;
  std::string err;
};

void PrintTo(const DiffCliCase& c, std::ostream* os) { *os << c.name; }

class DiffCliTest : public test::TempDirTest, public ::testing::WithParamInterface<DiffCliCase> {};

TEST_P(DiffCliTest, PrintsTheChartPoints) {
  const DiffCliCase& c = GetParam();
  test::CliResult r = test::RunCli(c.args);
  EXPECT_EQ(r.status, c.status);
  EXPECT_EQ(r.out, c.out);
  EXPECT_EQ(r.err, c.err);
}

const std::string kDiffUsage = "usage: merida-cli diff [--order 2] --width H --min A --max B FORMULA\n";
const std::string kOdeUsage =
    "usage: merida-cli ode [--order 2] [--rk] [--plane] --var Y --width H --min A --max B --init Y0 [--slope P0] "
    "FORMULA\n"
    "       merida-cli ode --simult [--plane] --var Y --var2 Z --second G --width H --min A --max B --init Y0 "
    "--slope Z0 FORMULA\n";
const std::string kError27 = "error 27: 微分および微分方程式の変数は１個までです\n";

INSTANTIATE_TEST_SUITE_P(
    Cases, DiffCliTest,
    ::testing::Values(
        DiffCliCase{"FirstDerivative", {"diff", "--width", "1", "--min", "0", "--max", "3", "x^2"}, 0,
                    "1 2\n2 4\n3 6\n4 8\n", ""},
        DiffCliCase{"SecondDerivative", {"diff", "--order", "2", "--width", "1", "--min", "0", "--max", "2", "x^3"}, 0,
                    "1 6\n2 12\n3 18\n", ""},
        DiffCliCase{"DerivativeOfANegativeFormula", {"diff", "--width", "0.5", "--min", "0", "--max", "0.5", "-t"}, 0,
                    "0.5 -1\n1 -1\n", ""},
        DiffCliCase{"DiffTwoVariables", {"diff", "--width", "1", "--min", "0", "--max", "3", "x*y"}, 1, "", kError27},
        DiffCliCase{"DiffWidthZero", {"diff", "--width", "0", "--min", "0", "--max", "3", "x"}, 1, "", ""},
        DiffCliCase{"DiffOrderThree", {"diff", "--order", "3", "--width", "1", "--min", "0", "--max", "3", "x"}, 2, "",
                    kDiffUsage},
        DiffCliCase{"DiffMissingWidth", {"diff", "--min", "0", "--max", "3", "x"}, 2, "", kDiffUsage},
        DiffCliCase{"Simple", {"ode", "--var", "y", "--width", "1", "--min", "0", "--max", "2", "--init", "0", "x"}, 0,
                    "0 0\n1 1\n2 3\n3 6\n", ""},
        DiffCliCase{"SimplePlane",
                    {"ode", "--plane", "--var", "y", "--width", "1", "--min", "0", "--max", "1", "--init", "0", "x"}, 0,
                    "0 1\n1 2\n3 2\n", ""},
        DiffCliCase{"SecondOrderRungeKutta",
                    {"ode", "--order", "2", "--rk", "--var", "y", "--width", "1", "--min", "0", "--max", "1", "--init",
                     "0", "--slope", "0", "2"},
                    0, "0 0\n1 1\n2 4\n", ""},
        DiffCliCase{"SecondOrderRungeKuttaPlane",
                    {"ode", "--order", "2", "--rk", "--plane", "--var", "y", "--width", "1", "--min", "0", "--max", "1",
                     "--init", "0", "--slope", "0", "2"},
                    0, "0 0\n1 2\n4 4\n", ""},
        DiffCliCase{"Simult",
                    {"ode", "--simult", "--var", "y", "--var2", "z", "--second", "2*x", "--width", "1", "--min", "0",
                     "--max", "1", "--init", "0", "--slope", "5", "1"},
                    0, "0 0 5\n1 1 6\n2 2 9\n", ""},
        DiffCliCase{"SimultPlane",
                    {"ode", "--simult", "--plane", "--var", "y", "--var2", "z", "--second", "2*x", "--width", "1",
                     "--min", "0", "--max", "1", "--init", "0", "--slope", "5", "1"},
                    0, "0 5\n1 6\n2 9\n", ""},
        DiffCliCase{"OdeTwoVariables",
                    {"ode", "--rk", "--var", "y", "--width", "0.1", "--min", "0", "--max", "1", "--init", "1", "x*t+y"},
                    1, "", kError27},
        DiffCliCase{"OdeNameWithABlank",
                    {"ode", "--rk", "--var", "y 1", "--width", "0.1", "--min", "0", "--max", "1", "--init", "1", "y"}, 1,
                    "", ""},
        DiffCliCase{"OdeWidthAwayFromTheEnd",
                    {"ode", "--var", "y", "--width", "-0.1", "--min", "0", "--max", "1", "--init", "1", "y"}, 1, "", ""},
        DiffCliCase{"OdeOverflow",
                    {"ode", "--rk", "--var", "y", "--width", "1", "--min", "0", "--max", "10", "--init", "1", "exp(y)"},
                    3, "", "fault: Overflow\n"},
        DiffCliCase{"OdeMissingInit", {"ode", "--var", "y", "--width", "1", "--min", "0", "--max", "1", "y"}, 2, "",
                    kOdeUsage},
        DiffCliCase{"SimultWithOrder",
                    {"ode", "--simult", "--order", "2", "--var", "y", "--var2", "z", "--second", "y", "--width", "1",
                     "--min", "0", "--max", "1", "--init", "0", "--slope", "0", "z"},
                    2, "", kOdeUsage},
        DiffCliCase{"SimultWithoutSecond",
                    {"ode", "--simult", "--var", "y", "--var2", "z", "--width", "1", "--min", "0", "--max", "1",
                     "--init", "0", "--slope", "0", "z"},
                    2, "", kOdeUsage},
        DiffCliCase{"SecondWithoutSimult",
                    {"ode", "--var", "y", "--second", "y", "--width", "1", "--min", "0", "--max", "1", "--init", "0",
                     "z"},
                    2, "", kOdeUsage}),
    [](const ::testing::TestParamInfo<DiffCliCase>& p) { return std::string(p.param.name); });

std::vector<std::vector<double>> Rows(const std::string& out) {
  std::vector<std::vector<double>> rows;
  std::istringstream lines(out);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::vector<double> row;
    for (double v; fields >> v;) row.push_back(v);
    rows.push_back(row);
  }
  return rows;
}

class DiffCliRunTest : public test::TempDirTest {};

TEST_F(DiffCliRunTest, RungeKuttaReachesEAndRunsOneStepPast) {
  test::CliResult r =
      test::RunCli({"ode", "--rk", "--var", "y", "--width", "0.1", "--min", "0", "--max", "1", "--init", "1", "y"});
  ASSERT_EQ(r.status, 0) << r.err;
  auto rows = Rows(r.out);
  ASSERT_EQ(rows.size(), 12u);
  EXPECT_EQ(rows[10][0], 1);
  EXPECT_NEAR(rows[10][1], std::exp(1.0), 3e-6);
  EXPECT_EQ(rows[11][0], 1.1);
}

}  // namespace
}  // namespace merida

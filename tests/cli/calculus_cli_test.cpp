// merida-cli integ, dinteg and delay, run as a user runs them: answers, rewritten boxes, errors, usage.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

struct CalculusCliCase {
  const char* name;
  std::vector<std::string> args;
  int status;
  std::string out;
  std::string err;  // standard error exactly
};

void PrintTo(const CalculusCliCase& c, std::ostream* os) { *os << c.name; }

class CalculusCliTest : public test::TempDirTest, public ::testing::WithParamInterface<CalculusCliCase> {};

TEST_P(CalculusCliTest, PrintsTheAnswerLabel) {
  const CalculusCliCase& c = GetParam();
  test::CliResult r = test::RunCli(c.args);
  EXPECT_EQ(r.status, c.status);
  EXPECT_EQ(r.out, c.out);
  EXPECT_EQ(r.err, c.err);
}

const std::string kIntegUsage = "usage: merida-cli integ --min A --max B --num N FORMULA\n";
const std::string kDintegUsage =
    "usage: merida-cli dinteg --min A --max B --num N --min2 C --max2 D --num2 M FORMULA\n";

INSTANTIATE_TEST_SUITE_P(
    Cases, CalculusCliTest,
    ::testing::Values(
        CalculusCliCase{"Cubic", {"integ", "--min", "0", "--max", "1", "--num", "10", "x^2"}, 0, "0.333333333333333\n", ""},
        CalculusCliCase{"OddCountMadeEven", {"integ", "--min", "0", "--max", "1", "--num", "7", "x^2"}, 0,
                        "0.333333333333333\n", "Text3: 8\n"},
        CalculusCliCase{"CountCapped", {"integ", "--num", "50000", "--min", "0", "--max", "2", "x"}, 0,
                        "1.99999999999989\n",  // 5000 panel starts accumulated by addition
                        "Text3: 10000\n"},
        CalculusCliCase{"Sine", {"integ", "--min", "0", "--max", "PI", "--num", "100", "sin(x)"}, 0, "2.0000000108245\n", ""},
        CalculusCliCase{"NegativeFormula", {"integ", "--min", "0", "--max", "1", "--num", "2", "-x"}, 0, "-0.5\n", ""},
        CalculusCliCase{"ReversedIsSilent", {"integ", "--min", "1", "--max", "0", "--num", "10", "x"}, 1, "", ""},
        CalculusCliCase{"TwoVariables", {"integ", "--min", "0", "--max", "1", "--num", "10", "x*y"}, 1, "",
                        "error 24: グラフおよび積分の変数は１個までです\n"},
        CalculusCliCase{"Overflow", {"integ", "--min", "0", "--max", "800", "--num", "10", "exp(x)"}, 3, "",
                        "fault: Overflow\n"},
        CalculusCliCase{"IntegMissingNum", {"integ", "--min", "0", "--max", "1", "x"}, 2, "", kIntegUsage},
        CalculusCliCase{"IntegTwoFormulas", {"integ", "--min", "0", "--max", "1", "--num", "2", "x", "y"}, 2, "",
                        kIntegUsage},
        CalculusCliCase{"Double",
                        {"dinteg", "--min", "0", "--max", "1", "--num", "5", "--min2", "0", "--max2", "2", "--num2", "4", "x*y"},
                        0, "1\n", ""},
        CalculusCliCase{"DoubleCapped",
                        {"dinteg", "--min", "0", "--max", "1", "--num", "2", "--min2", "0", "--max2", "1", "--num2", "12345",
                         "x+y"},
                        0, "0.999999999999974\n", "Text6: 10000\n"},
        CalculusCliCase{"DoubleOneVariable",
                        {"dinteg", "--min", "0", "--max", "1", "--num", "2", "--min2", "0", "--max2", "1", "--num2", "2", "x"},
                        1, "", "error 33: ２重積分の変数は２個です\n"},
        CalculusCliCase{"DoubleCountOfOne",
                        {"dinteg", "--min", "0", "--max", "1", "--num", "1", "--min2", "0", "--max2", "1", "--num2", "2", "x*y"},
                        1, "", ""},
        CalculusCliCase{"DelayFibonacci", {"delay", "--steps", "6", "--init", "1,1", "timestep(1)+timestep(2)"}, 0,
                        "1 1\n2 1\n3 2\n4 3\n5 5\n6 8\n7 13\n", ""},
        CalculusCliCase{"DelayNoTimestep", {"delay", "--steps", "6", "--init", "1", "2*3"}, 1, "",
                        "error 22: 文法エラーです\n"},
        CalculusCliCase{"DelayVariable", {"delay", "--steps", "6", "--init", "1", "x*timestep(1)"}, 1, "",
                        "error 34: 遅延演算で変数は使えません\n"},
        CalculusCliCase{"DelayMissingInitialValue", {"delay", "--steps", "6", "--init", "1", "timestep(2)"}, 1, "", ""},
        CalculusCliCase{"DelayOverflow", {"delay", "--steps", "60", "--init", "10", "timestep(1)^3"}, 3, "",
                        "fault: Overflow\n"},
        CalculusCliCase{"DelayUsage", {"delay", "--init", "1", "timestep(1)"}, 2, "",
                        "usage: merida-cli delay --steps N --init V1,V2,...,VK FORMULA\n"},
        CalculusCliCase{"DoubleMissingRange", {"dinteg", "--min", "0", "--max", "1", "--num", "2", "x*y"}, 2, "",
                        kDintegUsage}),
    [](const ::testing::TestParamInfo<CalculusCliCase>& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace merida

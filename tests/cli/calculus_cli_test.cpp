// merida-cli integ, dinteg and delay: answers, rewritten boxes, errors, faults, usage.
// The integration and delay cases themselves are in tests/calculus.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

using test::CliCase;

class CalculusCli : public test::CliCaseTest {};
TEST_P(CalculusCli, Runs) { test::ExpectCli(GetParam()); }

const std::string kIntegUsage = "usage: merida-cli integ --min A --max B --num N FORMULA\n";
const std::string kDintegUsage =
    "usage: merida-cli dinteg --min A --max B --num N --min2 C --max2 D --num2 M FORMULA\n";

INSTANTIATE_TEST_SUITE_P(
    Commands, CalculusCli,
    ::testing::Values(
        CliCase{"OddCountMadeEven", {"integ", "--min", "0", "--max", "1", "--num", "7", "x^2"}, 0,
                "0.333333333333333\n", "Text3: 8\n"},
        CliCase{"NegativeFormulaIsNoOption", {"integ", "--min", "0", "--max", "1", "--num", "2", "-x"}, 0, "-0.5\n", ""},
        CliCase{"ReversedIsSilent", {"integ", "--min", "1", "--max", "0", "--num", "10", "x"}, 1, "",
                "merida-cli: the lower limit of the range must be below the upper limit\n"},
        CliCase{"TwoVariables", {"integ", "--min", "0", "--max", "1", "--num", "10", "x*y"}, 1, "",
                "error 24: グラフおよび積分の変数は１個までです\n"},
        CliCase{"Overflow", {"integ", "--min", "0", "--max", "800", "--num", "10", "exp(x)"}, 3, "", "fault: Overflow\n"},
        CliCase{"IntegMissingNum", {"integ", "--min", "0", "--max", "1", "x"}, 2, "", kIntegUsage},
        CliCase{"IntegTwoFormulas", {"integ", "--min", "0", "--max", "1", "--num", "2", "x", "y"}, 2, "", kIntegUsage},
        CliCase{"Double",
                {"dinteg", "--min", "0", "--max", "1", "--num", "5", "--min2", "0", "--max2", "2", "--num2", "4", "x*y"},
                0, "1\n", ""},
        CliCase{"DoubleCapped",
                {"dinteg", "--min", "0", "--max", "1", "--num", "2", "--min2", "0", "--max2", "1", "--num2", "12345",
                 "x+y"},
                0, "0.999999999999974\n", "Text6: 10000\n"},
        CliCase{"DoubleOneVariable",
                {"dinteg", "--min", "0", "--max", "1", "--num", "2", "--min2", "0", "--max2", "1", "--num2", "2", "x"},
                1, "", "error 33: ２重積分の変数は２個です\n"},
        CliCase{"DoubleMissingRange", {"dinteg", "--min", "0", "--max", "1", "--num", "2", "x*y"}, 2, "", kDintegUsage},
        CliCase{"DelayFibonacci", {"delay", "--steps", "6", "--init", "1,1", "timestep(1)+timestep(2)"}, 0,
                "1 1\n2 1\n3 2\n4 3\n5 5\n6 8\n7 13\n", ""},
        CliCase{"DelayVariable", {"delay", "--steps", "6", "--init", "1", "x*timestep(1)"}, 1, "",
                "error 34: 遅延演算で変数は使えません\n"},
        CliCase{"DelayOverflow", {"delay", "--steps", "60", "--init", "10", "timestep(1)^3"}, 3, "", "fault: Overflow\n"},
        CliCase{"DelayUsage", {"delay", "--init", "1", "timestep(1)"}, 2, "",
                "usage: merida-cli delay --steps N --init V1,V2,...,VK FORMULA\n"}),
    test::CliCaseName);

}  // namespace
}  // namespace merida

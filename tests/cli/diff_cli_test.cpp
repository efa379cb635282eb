// merida-cli diff and ode: chart points, errors, silent ends, faults, usage.
// The solvers' cases are in tests/calculus; here each option is parsed and run once.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

using test::CliCase;

class DiffCli : public test::CliCaseTest {};
TEST_P(DiffCli, Runs) { test::ExpectCli(GetParam()); }

const std::string kDiffUsage = "usage: merida-cli diff [--order 2] --width H --min A --max B FORMULA\n";
const std::string kOdeUsage =
    "usage: merida-cli ode [--order 2] [--rk] [--plane] --var Y --width H --min A --max B --init Y0 [--slope P0] "
    "FORMULA\n"
    "       merida-cli ode --simult [--plane] --var Y --var2 Z --second G --width H --min A --max B --init Y0 "
    "--slope Z0 FORMULA\n";
const std::string kError27 = "error 27: 微分および微分方程式の変数は１個までです\n";

INSTANTIATE_TEST_SUITE_P(
    Commands, DiffCli,
    ::testing::Values(
        CliCase{"FirstDerivative", {"diff", "--width", "1", "--min", "0", "--max", "3", "x^2"}, 0,
                "1 2\n2 4\n3 6\n4 8\n", ""},
        CliCase{"SecondDerivative", {"diff", "--order", "2", "--width", "1", "--min", "0", "--max", "2", "x^3"}, 0,
                "1 6\n2 12\n3 18\n", ""},
        CliCase{"DerivativeOfANegativeFormula", {"diff", "--width", "0.5", "--min", "0", "--max", "0.5", "-t"}, 0,
                "0.5 -1\n1 -1\n", ""},
        CliCase{"DiffTwoVariables", {"diff", "--width", "1", "--min", "0", "--max", "3", "x*y"}, 1, "", kError27},
        CliCase{"DiffWidthZeroEndsSilently", {"diff", "--width", "0", "--min", "0", "--max", "3", "x"}, 1, "",
                "merida-cli: the width must step from the start of the range to its end (not 0, and of the same sign)\n"},
        CliCase{"DiffMissingWidth", {"diff", "--min", "0", "--max", "3", "x"}, 2, "", kDiffUsage},
        CliCase{"DiffOrderThree", {"diff", "--order", "3", "--width", "1", "--min", "0", "--max", "3", "x"}, 2, "",
                kDiffUsage},
        CliCase{"Simple", {"ode", "--var", "y", "--width", "1", "--min", "0", "--max", "2", "--init", "0", "x"}, 0,
                "0 0\n1 1\n2 3\n3 6\n", ""},
        CliCase{"SimplePlane",
                {"ode", "--plane", "--var", "y", "--width", "1", "--min", "0", "--max", "1", "--init", "0", "x"}, 0,
                "0 1\n1 2\n3 2\n", ""},
        CliCase{"SecondOrderRungeKutta",
                {"ode", "--order", "2", "--rk", "--var", "y", "--width", "1", "--min", "0", "--max", "1", "--init",
                 "0", "--slope", "0", "2"},
                0, "0 0\n1 1\n2 4\n", ""},
        CliCase{"Simult",
                {"ode", "--simult", "--var", "y", "--var2", "z", "--second", "2*x", "--width", "1", "--min", "0",
                 "--max", "1", "--init", "0", "--slope", "5", "1"},
                0, "0 0 5\n1 1 6\n2 2 9\n", ""},
        CliCase{"SimultPlane",
                {"ode", "--simult", "--plane", "--var", "y", "--var2", "z", "--second", "2*x", "--width", "1",
                 "--min", "0", "--max", "1", "--init", "0", "--slope", "5", "1"},
                0, "0 5\n1 6\n2 9\n", ""},
        CliCase{"OdeOverflow",
                {"ode", "--rk", "--var", "y", "--width", "1", "--min", "0", "--max", "10", "--init", "1", "exp(y)"},
                3, "", "fault: Overflow\n"},
        CliCase{"OdeMissingInit", {"ode", "--var", "y", "--width", "1", "--min", "0", "--max", "1", "y"}, 2, "",
                kOdeUsage},
        CliCase{"SimultWithOrder",
                {"ode", "--simult", "--order", "2", "--var", "y", "--var2", "z", "--second", "y", "--width", "1",
                 "--min", "0", "--max", "1", "--init", "0", "--slope", "0", "z"},
                2, "", kOdeUsage},
        CliCase{"SimultWithoutSecond",
                {"ode", "--simult", "--var", "y", "--var2", "z", "--width", "1", "--min", "0", "--max", "1",
                 "--init", "0", "--slope", "0", "z"},
                2, "", kOdeUsage},
        CliCase{"SecondWithoutSimult",
                {"ode", "--var", "y", "--second", "y", "--width", "1", "--min", "0", "--max", "1", "--init", "0",
                 "z"},
                2, "", kOdeUsage}),
    test::CliCaseName);

}  // namespace
}  // namespace merida

// merida-cli roots, inter and the polynomial tools: options, list lines, errors, usage.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

using test::CliCase;

class RootsCli : public test::CliCaseTest {};
TEST_P(RootsCli, Runs) { test::ExpectCli(GetParam()); }

INSTANTIATE_TEST_SUITE_P(
    Commands, RootsCli,
    ::testing::Values(
        CliCase{"Integer", {"roots", "--integer", "--min", "0", "--max", "2", "--num", "10", "x^2-2"}, 0,
                "x= 1.41\n", ""},
        // The capped count goes to standard error as the window's Num box would show it.
        CliCase{"Capped", {"roots", "--min", "0", "--max", "3", "--num", "9000", "--judge", "1E-4", "x-1"}, 0,
                "x= .999916652775463\n", "Text3: 6000\n"},
        CliCase{"JudgeTooLarge", {"roots", "--min", "0", "--max", "1", "--num", "10", "--judge", "0.5", "x"}, 1, "",
                "error 29: 判定値が大きすぎます\n"},
        CliCase{"Intersections", {"inter", "--second", "x", "--min", "-1", "--max", "2", "--num", "50", "x^2"}, 0,
                "x= 0  y= 0\nx= 1  y= 1\n", ""},
        CliCase{"InterUsage", {"inter", "--min", "0", "--max", "2", "--num", "4", "x"}, 2, "",
                "usage: merida-cli inter --second G --min A --max B --num N [--judge J] FORMULA\n"},
        CliCase{"Expand", {"expand", "(x+1)^2*(x-3)"}, 0, "x^3-x^2-5*x-3\n", ""},
        CliCase{"ExpandNeedsBrackets", {"expand", "x^2+1"}, 1, "", "error 22: 文法エラーです\n"},
        CliCase{"Arrange", {"arrange", "x^3+1"}, 0, "x^3+0*x^2+0*x+1\n", ""},
        CliCase{"SeekDoubleRoot", {"seek", "x^2-2*x+1"}, 0, "x= 1 重根\nx= 1 重根\n(x^2-2*x+1)\n", ""},
        CliCase{"SeekGivesUp", {"seek", "--judge", "-1", "x^3-1"}, 1, "",
                "merida-cli: Seek found no factor: the method did not converge\n"},
        CliCase{"FactorEachRoot", {"factor", "--root", "2", "--root", "3", "x^3-6*x^2+11*x-6"}, 0,
                "(x-2)*(x^2-4*x+3)\n(x-2)*(x-3)*(x-1)\n", ""},
        CliCase{"FactorCoeff", {"factor", "--coeff", "--root", ".5", "2*x^2-3*x+1"}, 0, "(2*x-1)*(x-1)\n", ""},
        CliCase{"FactorNotARoot", {"factor", "--root", "2", "--root", "5", "x^3-6*x^2+11*x-6"}, 1,
                "(x-2)*(x^2-4*x+3)\n", "error 53: 因数分解の因子がおかしい\n"},
        CliCase{"FactorAfterSeek", {"factor", "--integer", "x^3-1"}, 0, "(x-1)*(x^2+x+1)\n", ""},
        CliCase{"FactorUsage", {"factor", "x^2-1", "--root"}, 2, "",
                "usage: merida-cli factor [--coeff] [--integer] [--tolerance T] [--root V]... FORMULA\n"}),
    test::CliCaseName);

}  // namespace
}  // namespace merida

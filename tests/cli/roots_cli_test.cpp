// merida-cli roots, inter and the polynomial tools, run as a user runs them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

struct RootsCliCase {
  const char* name;
  std::vector<std::string> args;
  int status;
  std::string out;
  std::string err;
};

class RootsCliTest : public test::TempDirTest, public ::testing::WithParamInterface<RootsCliCase> {};

TEST_P(RootsCliTest, PrintsTheListLines) {
  const RootsCliCase& c = GetParam();
  test::CliResult r = test::RunCli(c.args);
  EXPECT_EQ(r.status, c.status);
  EXPECT_EQ(r.out, c.out);
  EXPECT_EQ(r.err, c.err);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RootsCliTest,
    ::testing::Values(
        RootsCliCase{"Quadratic", {"roots", "--min", "-3", "--max", "3", "--num", "50", "x^2-4"}, 0,
                     "x=-1.99999998092651\nx= 1.99999998092651\n", ""},
        RootsCliCase{"Integer", {"roots", "--integer", "--min", "0", "--max", "2", "--num", "10", "x^2-2"}, 0,
                     "x= 1.41\n", ""},
        RootsCliCase{"Capped", {"roots", "--min", "0", "--max", "3", "--num", "9000", "--judge", "1E-4", "x-1"}, 0,  // a sample within the judge value
                     "x= .999916652775463\n", "Text3: 6000\n"},
        RootsCliCase{"JudgeTooLarge", {"roots", "--min", "0", "--max", "1", "--num", "10", "--judge", "0.5", "x"}, 1, "",
                     "error 29: 判定値が大きすぎます\n"},
        RootsCliCase{"Intersections", {"inter", "--second", "x", "--min", "-1", "--max", "2", "--num", "50", "x^2"}, 0,
                     "x= 0  y= 0\nx= 1  y= 1\n", ""},
        RootsCliCase{"InterCapped", {"inter", "--second", "1", "--min", "0", "--max", "2", "--num", "4000", "x"}, 0,
                     "x= 1  y= 1\n", "Text3: 3000\n"},
        RootsCliCase{"InterUsage", {"inter", "--min", "0", "--max", "2", "--num", "4", "x"}, 2, "",
                     "usage: merida-cli inter --second G --min A --max B --num N [--judge J] FORMULA\n"},
        RootsCliCase{"Expand", {"expand", "(x+1)^2*(x-3)"}, 0, "x^3-x^2-5*x-3\n", ""},
        RootsCliCase{"ExpandNeedsBrackets", {"expand", "x^2+1"}, 1, "", "error 22: 文法エラーです\n"},
        RootsCliCase{"Arrange", {"arrange", "x^3+1"}, 0, "x^3+0*x^2+0*x+1\n", ""},
        RootsCliCase{"SeekDoubleRoot", {"seek", "x^2-2*x+1"}, 0, "x= 1 重根\nx= 1 重根\n(x^2-2*x+1)\n", ""},
        RootsCliCase{"SeekGivesUp", {"seek", "--judge", "-1", "x^3-1"}, 1, "",
                     "Seek found no factor: the method did not converge.\n"},
        RootsCliCase{"FactorEachRoot", {"factor", "--root", "2", "--root", "3", "x^3-6*x^2+11*x-6"}, 0,
                     "(x-2)*(x^2-4*x+3)\n(x-2)*(x-3)*(x-1)\n", ""},
        RootsCliCase{"FactorCoeff", {"factor", "--coeff", "--root", ".5", "2*x^2-3*x+1"}, 0, "(2*x-1)*(x-1)\n", ""},
        RootsCliCase{"FactorNotARoot", {"factor", "--root", "2", "--root", "5", "x^3-6*x^2+11*x-6"}, 1,
                     "(x-2)*(x^2-4*x+3)\n", "error 53: 因数分解の因子がおかしい\n"},
        RootsCliCase{"FactorAfterSeek", {"factor", "x^3-1"}, 0, "(x-1)*(x^2+x+1)\n", ""},
        RootsCliCase{"FactorUsage", {"factor", "x^2-1", "--root"}, 2, "",
                     "usage: merida-cli factor [--coeff] [--integer] [--tolerance T] [--root V]... FORMULA\n"}),
    [](const ::testing::TestParamInfo<RootsCliCase>& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace merida

// merida-cli roots and inter, run as a user runs them.
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
                     "usage: merida-cli inter --second G --min A --max B --num N [--judge J] FORMULA\n"}),
    [](const ::testing::TestParamInfo<RootsCliCase>& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace merida

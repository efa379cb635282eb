// merida-cli solve, simult, det, inverse, pfactor, primes and gcm, run as a user runs them.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

using test::RunCli;

struct CliCase {
  const char* name;
  std::vector<std::string> args;
  int status;
  std::string out;
  std::string errPrefix;  // standard error starts with this ("" = empty)
};

void PrintTo(const CliCase& c, std::ostream* os) { *os << c.name; }

class AlgebraCliTest : public test::TempDirTest, public ::testing::WithParamInterface<CliCase> {};

TEST_P(AlgebraCliTest, PrintsTheWindowsLines) {
  const CliCase& c = GetParam();
  test::CliResult r = RunCli(c.args);
  EXPECT_EQ(r.status, c.status);
  EXPECT_EQ(r.out, c.out);
  if (c.errPrefix.empty()) {
    EXPECT_EQ(r.err, "");
  } else {
    EXPECT_EQ(r.err.rfind(c.errPrefix, 0), 0u) << r.err;
  }
}

const std::string kZeroPivot = "対角要素が０になり\n計算できません\n係数の行または列を\n交換してください\n";

INSTANTIATE_TEST_SUITE_P(
    Commands, AlgebraCliTest,
    ::testing::Values(
        CliCase{"SolveTwoByTwo", {"solve", "2 1 3", "1 -1 0"}, 0, " X1 =  1\n X2 =  1\n", ""},
        CliCase{"SolveOneThird", {"solve", "3 1"}, 0, " X1 =  .3333333\n", ""},
        CliCase{"SolveZeroPivot", {"solve", "0 1 1", "1 0 2"}, 1, kZeroPivot, ""},
        CliCase{"SolveResidualWarning", {"solve", "11 1E17"}, 0, " X1 =  9.090909E+15\n係数がおかしいと\n思われます\n", ""},
        CliCase{"SolveTextCell", {"solve", "2 x 3", "1 -1 0"}, 1, "", "error 46: 入力ﾃﾞｰﾀがおかしい\n"},
        CliCase{"SolveShortRowEndsSilently", {"solve", "2 1", "1 -1 0"}, 1, "", ""},
        CliCase{"SolveLongRowIsUsage", {"solve", "2 1 3 4", "1 -1 0"}, 2, "", "usage: merida-cli solve"},
        CliCase{"SolveNoRowsIsUsage", {"solve"}, 2, "", "usage: merida-cli solve"},
        CliCase{"SolveElevenRowsIsUsage",
                {"solve", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1"}, 2, "", "usage: merida-cli solve"},
        CliCase{"SolveDivisionByZeroIsAFault", {"solve", "0 1"}, 3, "", "fault: "},
        CliCase{"SimultRowExchange", {"simult", "0 1 1", "1 0 2"}, 0, " X1 =  2\n X2 =  1\n", ""},
        CliCase{"SimultSingular", {"simult", "1 2 3", "2 4 6"}, 1, "行列式が０になり\n計算できません\n", ""},
        CliCase{"Det", {"det", "1 2", "3 4"}, 0, "-2\n", ""},
        CliCase{"DetSingular", {"det", "1 2 3", "4 5 6", "7 8 9"}, 0, " 0\n", ""},
        CliCase{"DetTextCell", {"det", "1 2", "3 four"}, 1, "", "error 46: "},
        CliCase{"InverseGridRows", {"inverse", "4 7", "2 6"}, 0, "0.6 -0.7\n-0.2 0.4\n", ""},
        CliCase{"InverseThreshold", {"inverse", "1 0", "0 1E7"}, 0, "1 0\n0 0\n", ""},
        CliCase{"InverseSingular", {"inverse", "1 2", "2 4"}, 1, "行列式が０になり\n計算できません\n", ""},
        CliCase{"InverseOverflowIsAFault", {"inverse", "1E39"}, 3, "", "fault: "},
        CliCase{"Pfactor360", {"pfactor", "360"}, 0, " 2＾ 3\n 3＾ 2\n 5\n", ""},
        CliCase{"PfactorLargestPrime", {"pfactor", "2147483647"}, 0, " 2147483647\n", ""},
        CliCase{"PfactorNearTop", {"pfactor", "2147483646"}, 0, " 2\n 3＾ 2\n 7\n 11\n 31\n 151\n 331\n", ""},
        CliCase{"PfactorOne", {"pfactor", "1"}, 1, "", ""},
        CliCase{"PfactorText", {"pfactor", "many"}, 1, "", ""},
        CliCase{"PfactorBeyond32Bits", {"pfactor", "2147483648"}, 1, "", ""},
        CliCase{"PfactorUsage", {"pfactor"}, 2, "", "usage: merida-cli pfactor N"},
        CliCase{"Primes10", {"primes", "10"}, 0, " 2\n 3\n 5\n 7\n 4 個ある\n", ""},
        CliCase{"Primes2", {"primes", "2"}, 0, " 2\n 1 個ある\n", ""},
        CliCase{"PrimesOne", {"primes", "1"}, 1, "", ""},
        CliCase{"PrimesUsage", {"primes", "1", "2"}, 2, "", "usage: merida-cli primes N"},
        CliCase{"Gcm", {"gcm", "12", "18"}, 0, "G.C.M.\n 6\nL.C.M.\n 36\n", ""},
        CliCase{"GcmSame", {"gcm", "7", "7"}, 0, "G.C.M.\n 7\nL.C.M.\n 7\n", ""},
        CliCase{"GcmLcmOverflow", {"gcm", "100000", "99999"}, 1, "", ""},
        CliCase{"GcmOne", {"gcm", "1", "99"}, 1, "", ""},
        CliCase{"GcmUsage", {"gcm", "12"}, 2, "", "usage: merida-cli gcm A B"}),
    [](const auto& p) { return std::string(p.param.name); });

class AlgebraCliRunTest : public test::TempDirTest {};

TEST_F(AlgebraCliRunTest, GcmHeadingsFollowTheSettingsFile) {
  std::ofstream("MERIDA.DEF") << "Japanese\r\n";
  test::CliResult r = RunCli({"gcm", "12", "18"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "最大公約数.\n 6\n最小公倍数.\n 36\n");
}

TEST_F(AlgebraCliRunTest, PrimeListingToAMillion) {
  test::CliResult r = RunCli({"primes", "1000000"});
  EXPECT_EQ(r.status, 0);
  size_t lines = 0;
  for (char ch : r.out) lines += ch == '\n';
  EXPECT_EQ(lines, 78499u);  // pi(10^6) primes and the count line
  const std::string tail = " 999983\n 78498 個ある\n";
  ASSERT_GE(r.out.size(), tail.size());
  EXPECT_EQ(r.out.substr(r.out.size() - tail.size()), tail);
}

}  // namespace
}  // namespace merida

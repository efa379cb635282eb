// merida-cli solve, simult, det, inverse, pfactor, primes and gcm: arguments, output lines, exit status.
// The algorithms' cases are in tests/algebra; here each command's contract is run once or twice.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace merida {
namespace {

using test::CliCase;
using test::RunCli;

class AlgebraCli : public test::CliCaseTest {};
TEST_P(AlgebraCli, Runs) { test::ExpectCli(GetParam()); }

const std::string kZeroPivot = "対角要素が０になり\n計算できません\n係数の行または列を\n交換してください\n";
constexpr bool kPrefix = true;

INSTANTIATE_TEST_SUITE_P(
    Commands, AlgebraCli,
    ::testing::Values(
        CliCase{"SolveTwoByTwo", {"solve", "2 1 3", "1 -1 0"}, 0, " X1 =  1\n X2 =  1\n", ""},
        CliCase{"SolveRefusalOnStandardOutput", {"solve", "0 1 1", "1 0 2"}, 1, kZeroPivot, ""},
        CliCase{"SolveTextCell", {"solve", "2 x 3", "1 -1 0"}, 1, "", "error 46: 入力ﾃﾞｰﾀがおかしい\n"},
        CliCase{"SolveShortRowEndsSilently", {"solve", "2 1", "1 -1 0"}, 1, "",
                "merida-cli: row 1 has no number in column 3\n"},
        CliCase{"SolveLongRowIsUsage", {"solve", "2 1 3 4", "1 -1 0"}, 2, "", "usage: merida-cli solve", kPrefix},
        CliCase{"SolveElevenRowsIsUsage", {"solve", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1"}, 2, "",
                "usage: merida-cli solve", kPrefix},
        CliCase{"SolveDivisionByZeroIsAFault", {"solve", "0 1"}, 3, "", "fault: ", kPrefix},
        CliCase{"SimultRowExchange", {"simult", "0 1 1", "1 0 2"}, 0, " X1 =  2\n X2 =  1\n", ""},
        CliCase{"Det", {"det", "1 2", "3 4"}, 0, "-2\n", ""},
        CliCase{"DetTextCell", {"det", "1 2", "3 four"}, 1, "", "error 46: ", kPrefix},
        CliCase{"InverseGridRows", {"inverse", "4 7", "2 6"}, 0, "0.6 -0.7\n-0.2 0.4\n", ""},
        CliCase{"InverseSingular", {"inverse", "1 2", "2 4"}, 1, "行列式が０になり\n計算できません\n", ""},
        CliCase{"InverseOverflowIsAFault", {"inverse", "1E39"}, 3, "", "fault: ", kPrefix},
        CliCase{"Pfactor360", {"pfactor", "360"}, 0, " 2＾ 3\n 3＾ 2\n 5\n", ""},
        CliCase{"PfactorOneIsSilent", {"pfactor", "1"}, 1, "",
                "merida-cli: N must be a whole number from 2 to 2147483647 (not \"1\")\n"},
        CliCase{"PfactorUsage", {"pfactor"}, 2, "", "usage: merida-cli pfactor N", kPrefix},
        CliCase{"Primes10", {"primes", "10"}, 0, " 2\n 3\n 5\n 7\n 4 個ある\n", ""},
        CliCase{"PrimesUsage", {"primes", "1", "2"}, 2, "", "usage: merida-cli primes N", kPrefix},
        CliCase{"Gcm", {"gcm", "12", "18"}, 0, "G.C.M.\n 6\nL.C.M.\n 36\n", ""},
        CliCase{"GcmLcmOverflow", {"gcm", "100000", "99999"}, 1, "",
                "merida-cli: the least common multiple is above 2147483647\n"},
        CliCase{"GcmUsage", {"gcm", "12"}, 2, "", "usage: merida-cli gcm A B", kPrefix}),
    test::CliCaseName);

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

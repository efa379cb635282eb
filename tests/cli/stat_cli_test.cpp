// merida-cli stat and test: a data file loaded first, then one button, printed as the boxes show.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "test_support.h"

namespace merida {
namespace {

class StatCliTest : public test::TempDirTest {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    // Two columns on y = 2x + 1, and the observed/expected counts of a fit.
    std::ofstream(dir_ / "line.orb") << "ORBITA\n2\n4\n0\n1\n2\n3\n1\n3\n5\n7\n";
    std::ofstream(dir_ / "plane.orb") << "ORBITA\n3\n4\n0\n1\n0\n1\n0\n0\n1\n1\n1\n3\n4\n6\n";
    std::ofstream(dir_ / "fit.orb") << "ORBITA\n2\n3\n12\n18\n30\n10\n20\n30\n";
  }
};

TEST_F(StatCliTest, EachButtonPrintsItsBoxes) {
  const test::CliCase cases[] = {
      {"Freq", {"stat", "freq", "line.orb"}, 0, "1.5\n.015\n", ""},
      {"Ave", {"stat", "ave", "--column", "2", "line.orb"}, 0, "4.\n5.\n2.23607\n", ""},
      {"Regres", {"stat", "regres", "line.orb"}, 0, "2.\n1.\n1.\n", ""},
      {"RegresChart", {"stat", "regres", "--chart", "line.orb"}, 0, "2.\n1.\n1.\n0 1\n1 3\n2 5\n3 7\n", ""},
      {"MultReg", {"stat", "multreg", "plane.orb"}, 0,
       ".5\n.5\n3.5\n.25\n.25\n3.25\n.\n.5\n.75\n.\n.5547\n.83205\n1.\n1.\n-1.\n1.\n2.\n3.\n1.\n", ""},
      {"YColumnOutsideTheData", {"stat", "regres", "--column", "2", "line.orb"}, 1, "", "error 45: 次元の数が多すぎます\n"},
      {"MultRegNeedsThree", {"stat", "multreg", "line.orb"}, 1, "", "error 49: 重回帰は３次元ﾃﾞｰﾀです\n"},
      {"NoSuchFile", {"stat", "ave", "none.orb"}, 1, "", "merida-cli: cannot read none.orb: No such file or directory\n"},
      {"UnknownButton", {"stat", "median", "line.orb"}, 2, "", "usage: ", true},
      {"T", {"test", "t", "--pop", "50 -1", "--sample", "53 4 10"}, 0, "2.25\n2.262\n標本の平均値は、母集団と異なるとは言えない\n", ""},
      {"Normal1", {"test", "t", "--level", "1", "--pop", "50 6", "--sample", "53 -1 16"}, 0,
       "2.\n2.57582\n標本の平均値は、母集団と異なるとは言えない\n", ""},
      {"BothDeviations", {"test", "t", "--pop", "50 6", "--sample", "53 4 10"}, 1, "", "error 46: 入力ﾃﾞｰﾀがおかしい\n"},
      {"FFromRecord", {"test", "f", "--record", "line.orb", "--column", "1"}, 0, "4.\n9.28\n２標本の分散は異なるとは言えない\n",
       "Text2: 1.11803\nText3: 4\nText5: 2.23607\nText6: 4\n"},
      {"Chi", {"test", "chi", "--record", "fit.orb", "--pop", "0 0 3"}, 0, ".6\n5.99\n適合すると言える\n", ""},
      {"ChiWithoutData", {"test", "chi", "--pop", "0 0 3"}, 1, "", "error 47: 記録関数の形式が違います\n"},
      {"ChiNoFreedom", {"test", "chi", "--record", "fit.orb"}, 1, "", "error 48: 自由度がありません\n"},
      {"BadLevel", {"test", "t", "--level", "10"}, 2, "", "usage: ", true},
      {"FourWords", {"test", "t", "--pop", "1 2 3 4"}, 2, "", "usage: ", true},
  };
  for (const test::CliCase& c : cases) test::ExpectCli(c);
}

}  // namespace
}  // namespace merida

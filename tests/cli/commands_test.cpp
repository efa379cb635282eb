// merida-cli end to end: arguments, output lines, rewritten boxes, standard error, exit statuses
// and the files commands read and write. The tools' own cases are in the tests of their logic;
// here each command's contract is run once or twice.
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <cstdio>
#include <sstream>

#include "contour/contour_plot.h"
#include "engine/number_text.h"
#include "test_support.h"

namespace merida {
namespace {

using test::RunCli;

// The arguments of a command line: words split at blanks, '...' quoting a word that holds blanks.
std::vector<std::string> Words(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream in(line);
  for (std::string word; in >> std::quoted(word, '\'');) words.push_back(word);
  return words;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// A run and what it must print, as CliCase but with its arguments as one command line.
struct CliRun {
  const char* line;
  int status;
  std::string out, err;
  bool errIsPrefix = false;
};
void PrintTo(const CliRun& r, std::ostream* os) { *os << r.line; }
void ExpectRun(const CliRun& r) { test::ExpectCli({r.line, Words(r.line), r.status, r.out, r.err, r.errIsPrefix}); }

// Each row runs in a fresh directory holding `store` as MERIDA.DAT (none when empty): the
// commands before it, which must succeed, then the command checked, with its standard input. A
// command that fails leaves the store as it was, and a store that must not be saved over is left
// as it is; bad lines of the store are reported but do not fail the command.
TEST(CliMain, Runs) {
  struct Row {
    std::vector<const char*> before;
    const char* line;
    std::string input, out, err;
    int status;
    std::string store = "";
    bool readOnly = false;
  };
  const std::string usage = "usage: merida-cli calc [--var NAME=VALUE]... FORMULA\n";
  const std::string readOnly = "merida-cli: MERIDA.DAT not written: the file is read-only\n";
  std::string many;
  for (int i = 0; i < 3000; ++i) many += "bad(" + std::to_string(i) + "\r\n";
  const std::string manyErr = "error 22: 文法エラーです\nmerida-cli: MERIDA.DAT: 3000 lines could not be loaded (the "
                              "first error is shown); 2744 of them cannot be kept, so MERIDA.DAT will not be saved "
                              "over until it is shortened\n";
  const Row rows[] = {
      {{}, "calc 1+2", "", "3\n", "", 0},
      {{}, "calc 1/0", "", "", "error 11: 0で割ることは不可です\n", 1},
      {{}, "calc 13!", "", "", "fault: Overflow\n", 3},
      {{}, "calc x+y", "2\nPI/4\n", "2.78539816339745\n", "x\ny\n", 0},  // prompts on standard error
      {{}, "calc x+1", "", "1\n", "x\n", 0},                              // no more input: "0"
      {{}, "calc --var x=3 --var y=PI x*y", "", "9.42477796076937\n", "", 0},
      {{}, "calc --var x=2 x+y", "5\n", "7\n", "y\n", 0},
      {{}, "calc --var x=1E-99999999999999999999 x", "", "0\n", "", 0},
      {{}, "calc integ(x,1,0,10)", "", "", "merida-cli: integ: the lower limit must be below the upper limit\n", 1},
      {{}, "calc", "", "", usage, 2},
      {{}, "calc --var x 1", "", "", usage, 2},
      {{}, "calc 1 2", "", "", usage, 2},
      {{}, "frobnicate", "", "", "merida-cli: unknown command 'frobnicate'\n", 2},
      {{"rec f(x)=x+1", "rec g(x)=f(x)*2", "del 1"}, "calc g(1)", "", "", "error 4: ユーザ関数が見つかりません\n", 1},
      {{"rec sq(x)=x*x", "rec x^2+y", "rec p(x,y)=perm(x,y)"}, "list", "",
       "sq(x)=x*x\nf_1(x,y)=x^2+y\np(x,y)=perm(x,y)\n", "", 0},
      {{"rec sq(x)=x*x"}, "rec sq(t)=t", "", "", "error 7: このユーザ関数は既に登録されています\n", 1},
      {{"rec sq(x)=x*x"}, "calc sq(3)+1", "", "10\n", "", 0},
      {{"rec sq(x)=x*x", "rec x+1", "del 1"}, "list", "", "f_1(x)=x+1\n", "", 0},
      {{"rec sq(x)=x*x", "rec x+1", "del 1"}, "calc sq(3)", "", "", "error 22: 文法エラーです\n", 1},
      {{"rec sq(x)=x*x", "rec x+1"}, "del 9", "", "",
       "merida-cli: del: there is no function 9 (the functions are numbered 1 to 2)\n", 1},
      {{}, "del x", "", "", "usage: merida-cli del N\n", 2},
      {{}, "del 0", "", "", "merida-cli: del: there is no function 0 (no functions are registered)\n", 1},
      {{}, "calc a(1)", "", "2\n", "error 7: このユーザ関数は既に登録されています\n", 0, "a(x)=x+1\r\na(y)=y\r\n"},
      {{}, "rec b(x)=x", "", "", readOnly, 1, "a(x)=x\r\n", true},
      {{}, "del 1", "", "", readOnly, 1, "a(x)=x\r\n", true},
      {{}, "list", "", "", manyErr, 0, many},  // reported once, in one summary line
      {{}, "rec b(x)=x", "", "",
       manyErr + "merida-cli: MERIDA.DAT not written: it holds 2744 lines this program cannot keep; it is left as it "
                 "is until it is shortened\n", 1, many},
  };
  for (const Row& r : rows) {
    test::TempDirScope dir;
    if (!r.store.empty()) std::ofstream("MERIDA.DAT", std::ios::binary) << r.store;
    if (r.readOnly) ::chmod("MERIDA.DAT", 0444);
    for (const char* b : r.before) ASSERT_EQ(RunCli(Words(b)).status, 0) << b;
    auto got = RunCli(Words(r.line), r.input);
    EXPECT_EQ(got.out, r.out) << r.line;
    EXPECT_EQ(got.err, r.err) << r.line;
    EXPECT_EQ(got.status, r.status) << r.line;
    if (r.status != 0 && r.before.empty()) {
      EXPECT_EQ(test::FileText("MERIDA.DAT"), r.store.empty() ? std::nullopt : std::optional(r.store)) << r.line;
    }
  }
}

class ToolCli : public test::TempDirTest, public ::testing::WithParamInterface<CliRun> {
 protected:
  void SetUp() override {
    TempDirTest::SetUp();
    // Two columns on y = 2x + 1, three columns, and the observed/expected counts of a fit.
    std::ofstream("line.orb") << "ORBITA\n2\n4\n0\n1\n2\n3\n1\n3\n5\n7\n";
    std::ofstream("plane.orb") << "ORBITA\n3\n4\n0\n1\n0\n1\n0\n0\n1\n1\n1\n3\n4\n6\n";
    std::ofstream("fit.orb") << "ORBITA\n2\n3\n12\n18\n30\n10\n20\n30\n";
  }
};
TEST_P(ToolCli, Runs) { ExpectRun(GetParam()); }

const std::string kZeroPivot = "対角要素が０になり\n計算できません\n係数の行または列を\n交換してください\n";
const std::string kIntegUsage = "usage: merida-cli integ --min A --max B --num N FORMULA\n";
const std::string kDintegUsage =
    "usage: merida-cli dinteg --min A --max B --num N --min2 C --max2 D --num2 M FORMULA\n";
const std::string kDiffUsage = "usage: merida-cli diff [--order 2] --width H --min A --max B FORMULA\n";
const std::string kOdeUsage =
    "usage: merida-cli ode [--order 2] [--rk] [--plane] --var Y --width H --min A --max B --init Y0 [--slope P0] "
    "FORMULA\n       merida-cli ode --simult [--plane] --var Y --var2 Z --second G --width H --min A --max B --init Y0 "
    "--slope Z0 FORMULA\n";
const std::string kContourUsage =
    "usage: merida-cli contour --x A,B,N --y C,D,M [--levels K0,K1,D] FORMULA\n"
    "  merida-cli contour --x A,B,N --y C,D,M --draw plot|cube|hide [--levels K0,K1,D] "
    "[--color red|green|skyblue|yellow|multi] [--angles A,B] --out FILE.png|FILE.svg FORMULA\n";

INSTANTIATE_TEST_SUITE_P(Commands, ToolCli, ::testing::ValuesIn(std::vector<CliRun>{
  {"solve '2 1 3' '1 -1 0'", 0, " X1 =  1\n X2 =  1\n", ""}, {"solve '0 1 1' '1 0 2'", 1, kZeroPivot, ""},
  {"solve '2 x 3' '1 -1 0'", 1, "", "error 46: 入力ﾃﾞｰﾀがおかしい\n"},
  {"solve '2 1' '1 -1 0'", 1, "", "merida-cli: row 1 has no number in column 3\n"},
  {"solve '2 1 3 4' '1 -1 0'", 2, "", "usage: merida-cli solve", true},
  {"solve 1 1 1 1 1 1 1 1 1 1 1", 2, "", "usage: merida-cli solve", true},
  {"solve '0 1'", 3, "", "fault: ", true}, {"simult '0 1 1' '1 0 2'", 0, " X1 =  2\n X2 =  1\n", ""},
  {"det '1 2' '3 4'", 0, "-2\n", ""}, {"inverse '4 7' '2 6'", 0, "0.6 -0.7\n-0.2 0.4\n", ""},
  {"inverse '1 2' '2 4'", 1, "行列式が０になり\n計算できません\n", ""}, {"pfactor 360", 0, " 2＾ 3\n 3＾ 2\n 5\n", ""},
  {"pfactor 1", 1, "", "merida-cli: N must be a whole number from 2 to 2147483647 (not \"1\")\n"},
  {"pfactor", 2, "", "usage: merida-cli pfactor N", true}, {"primes 10", 0, " 2\n 3\n 5\n 7\n 4 個ある\n", ""},
  {"primes 1 2", 2, "", "usage: merida-cli primes N", true}, {"gcm 12 18", 0, "G.C.M.\n 6\nL.C.M.\n 36\n", ""},
  {"gcm 100000 99999", 1, "", "merida-cli: the least common multiple is above 2147483647\n"},
  {"gcm 12", 2, "", "usage: merida-cli gcm A B", true},
  {"integ --min 0 --max 1 --num 7 x^2", 0, "0.333333333333333\n", "Text3: 8\n"},
  {"integ --min 1 --max 0 --num 10 x", 1, "",
   "merida-cli: the lower limit of the range must be below the upper limit\n"},
  {"integ --min 0 --max 1 --num 10 x*y", 1, "", "error 24: グラフおよび積分の変数は１個までです\n"},
  {"integ --min 0 --max 800 --num 10 exp(x)", 3, "", "fault: Overflow\n"},
  {"integ --min 0 --max 1 x", 2, "", kIntegUsage},
  {"dinteg --min 0 --max 1 --num 2 --min2 0 --max2 1 --num2 12345 x+y", 0, "0.999999999999974\n", "Text6: 10000\n"},
  {"dinteg --min 0 --max 1 --num 2 --min2 0 --max2 1 --num2 2 x", 1, "", "error 33: ２重積分の変数は２個です\n"},
  {"dinteg --min 0 --max 1 --num 2 x*y", 2, "", kDintegUsage},
  {"delay --steps 6 --init 1,1 timestep(1)+timestep(2)", 0, "1 1\n2 1\n3 2\n4 3\n5 5\n6 8\n7 13\n", ""},
  {"delay --steps 6 --init 1 x*timestep(1)", 1, "", "error 34: 遅延演算で変数は使えません\n"},
  {"delay --init 1 timestep(1)", 2, "", "usage: merida-cli delay --steps N --init V1,V2,...,VK FORMULA\n"},
  {"diff --order 2 --width 1 --min 0 --max 2 x^3", 0, "1 6\n2 12\n3 18\n", ""},
  {"diff --width 1 --min 0 --max 3 x*y", 1, "", "error 27: 微分および微分方程式の変数は１個までです\n"},
  {"diff --width 0 --min 0 --max 3 x", 1, "",
   "merida-cli: the width must step from the start of the range to its end (not 0, and of the same sign)\n"},
  {"diff --order 3 --width 1 --min 0 --max 3 x", 2, "", kDiffUsage},
  {"ode --plane --var y --width 1 --min 0 --max 1 --init 0 x", 0, "0 1\n1 2\n3 2\n", ""},
  {"ode --order 2 --rk --var y --width 1 --min 0 --max 1 --init 0 --slope 0 2", 0, "0 0\n1 1\n2 4\n", ""},
  {"ode --simult --var y --var2 z --second 2*x --width 1 --min 0 --max 1 --init 0 --slope 5 1", 0,
   "0 0 5\n1 1 6\n2 2 9\n", ""},
  {"ode --simult --plane --var y --var2 z --second 2*x --width 1 --min 0 --max 1 --init 0 --slope 5 1",
   0, "0 5\n1 6\n2 9\n", ""},
  {"ode --rk --var y --width 1 --min 0 --max 10 --init 1 exp(y)", 3, "", "fault: Overflow\n"},
  {"ode --simult --order 2 --var y --var2 z --second y --width 1 --min 0 --max 1 --init 0 --slope 0 z", 2, "",
   kOdeUsage},
  {"ode --simult --var y --var2 z --width 1 --min 0 --max 1 --init 0 --slope 0 z", 2, "", kOdeUsage},
  {"ode --var y --second y --width 1 --min 0 --max 1 --init 0 z", 2, "", kOdeUsage},
  {"contour --x -2,2,150 --y -1,1,500 x", 0, "-2 ～ 2\n", "Text3: 100\nText6: 100\n"},
  {"contour --x 0,1,4 --y 0,1,4 x*t", 1, "", "error 32: 等高線の変数名はｘとｙだけです\n"},
  {"contour --x 2,-2,20 --y -2,2,20 x", 1, "", "merida-cli: the start of the x range must be below its end\n"},
  {"contour --x 0,1,32768 --y 0,1,10 x", 1, "",
   "merida-cli: the number of x divisions must be a whole number from 1 to 32767 (not \"32768\")\n"},
  {"contour --x 0,100,4 --y 0,100,4 exp(x*y)", 3, "", "fault: Overflow\n"},
  {"contour --x 0,4,4 --y 0,1,1 --levels 0,400,150 x-0.5", 0, "0 ～ 4\n0.5 0 0.5 1\n", "Text9: 100\n"},
  {"contour --x 0,4,4 --y 0,1,1 --levels 2.5,1.5,1 x", 1, "0 ～ 4\n",
   "merida-cli: the lowest level must be below the highest, once both are rounded to whole numbers\n"},
  {"contour --x 0,4,4 --y 0,1,1 --levels 1,4*,1 x", 1, "0 ～ 4\n", "error 22: 文法エラーです\n"},
  {"contour --x 0,4 --y 0,1,1 x", 2, "", kContourUsage},
  {"contour --x 0,4,4 --y 0,1,1 --out a.png x", 2, "", kContourUsage},
  {"contour --x 0,4,4 --y 0,1,1 --draw mesh --out a.png x", 2, "", kContourUsage},
  {"contour --x 0,4,4 --y 0,1,1 --draw cube --out a.gif x", 2, "", kContourUsage},
  {"contour --x 0,4,4 --y 0,1,1 --draw cube --color pink --out a.png x", 2, "", kContourUsage},
  {"contour --x 0,4,4 --y 0,1,1 --color red x", 2, "", kContourUsage},
  {"contour --x 0,4,4 --y 0,1,1 --draw cube --angles a,30 --out a.png x", 2, "", kContourUsage},
  {"graph --min -1 --max 1 --num 2 --param t^2 -t", 0, "1 1\n0 0\n-1 1\n", ""},
  {"graph --min 0 --max 2 --num 4 1/(x-1)", 1, "", "error 11: ", true},
  {"graph --min 1 --max 0 --num 2 x", 1, "", "merida-cli: the start of the range must be below its end\n"},
  {"graph --min 0 --max 1 --num 1e12 x", 1, "",
   "merida-cli: the number of divisions must be a whole number from 1 to 32767 (not \"1e12\")\n"},
  {"graph --min 10 --max 20 --num 10 x!", 3, "", "fault: ", true},
  {"graph --min 0 --max 1 --num 2", 2, "", "usage: ", true},
  {"graph --min 0 --max 1 --num 2 x x", 2, "", "usage: ", true},
  {"graph --min 0 --max 1 --num 2 --polar --param t t", 2, "", "usage: ", true},
  {"graph --min 0 --max 1 --num 2 --bogus x", 2, "", "usage: ", true},
  {"roots --min 0 --max 3 --num 9000 --judge 1E-4 x-1", 0, "x= .999916652775463\n", "Text3: 6000\n"},
  {"roots --min 0 --max 1 --num 10 --judge 0.5 x", 1, "", "error 29: 判定値が大きすぎます\n"},
  {"inter --second x --min -1 --max 2 --num 50 x^2", 0, "x= 0  y= 0\nx= 1  y= 1\n", ""},
  {"inter --min 0 --max 2 --num 4 x", 2, "",
   "usage: merida-cli inter --second G --min A --max B --num N [--judge J] FORMULA\n"},
  {"expand (x+1)^2*(x-3)", 0, "x^3-x^2-5*x-3\n", ""}, {"expand x^2+1", 1, "", "error 22: 文法エラーです\n"},
  {"arrange x^3+1", 0, "x^3+0*x^2+0*x+1\n", ""}, {"seek x^2-2*x+1", 0, "x= 1 重根\nx= 1 重根\n(x^2-2*x+1)\n", ""},
  {"seek --judge -1 x^3-1", 1, "", "merida-cli: Seek found no factor: the method did not converge\n"},
  {"factor --coeff --root .5 2*x^2-3*x+1", 0, "(2*x-1)*(x-1)\n", ""},
  {"factor --root 2 --root 5 x^3-6*x^2+11*x-6", 1, "(x-2)*(x^2-4*x+3)\n", "error 53: 因数分解の因子がおかしい\n"},
  {"factor --integer x^3-1", 0, "(x-1)*(x^2+x+1)\n", ""},
  {"factor x^2-1 --root", 2, "",
   "usage: merida-cli factor [--coeff] [--integer] [--tolerance T] [--root V]... FORMULA\n"},
  {"stat freq line.orb", 0, "1.5\n.015\n", ""}, {"stat ave --column 2 line.orb", 0, "4.\n5.\n2.23607\n", ""},
  {"stat regres --chart line.orb", 0, "2.\n1.\n1.\n0 1\n1 3\n2 5\n3 7\n", ""},
  {"stat multreg plane.orb", 0,
   ".5\n.5\n3.5\n.25\n.25\n3.25\n.\n.5\n.75\n.\n.5547\n.83205\n1.\n1.\n-1.\n1.\n2.\n3.\n1.\n", ""},
  {"stat regres --column 2 line.orb", 1, "", "error 45: 次元の数が多すぎます\n"},
  {"stat multreg line.orb", 1, "", "error 49: 重回帰は３次元ﾃﾞｰﾀです\n"},
  {"stat median line.orb", 2, "", "usage: ", true},
  {"test t --pop '50 -1' --sample '53 4 10'", 0, "2.25\n2.262\n標本の平均値は、母集団と異なるとは言えない\n", ""},
  {"test t --pop '50 6' --sample '53 4 10'", 1, "", "error 46: 入力ﾃﾞｰﾀがおかしい\n"},
  {"test f --record line.orb --column 1", 0, "4.\n9.28\n２標本の分散は異なるとは言えない\n",
   "Text2: 1.11803\nText3: 4\nText5: 2.23607\nText6: 4\n"},
  {"test chi --record fit.orb --pop '0 0 3'", 0, ".6\n5.99\n適合すると言える\n", ""},
  {"test chi --pop '0 0 3'", 1, "", "error 47: 記録関数の形式が違います\n"}, {"test t --level 10", 2, "", "usage: ", true},
  {"test t --pop '1 2 3 4'", 2, "", "usage: ", true},
  // The exact values after the table's; a note where they decide the other way (F(60, 200): the
  // table's infinity column says 1.00, the distribution 1.386).
  {"test t --pop '50 -1' --sample '53 4 10' --exact", 0,
   "2.25\n2.262\n標本の平均値は、母集団と異なるとは言えない\np-value 0.0510033\nexact critical value 2.26216\n", ""},
  {"test f --pop '0 1.0891340 61' --sample '0 1 201' --exact", 0,
   "1.19998\n1.\n２標本の分散は異なる\np-value 0.177412\nexact critical value 1.38558\n",
   "note: the exact critical value gives the other conclusion\n"},
  {"--lang en test t --pop '50 6' --sample '53 4 10'", 1, "", "error 46: 入力ﾃﾞｰﾀがおかしい (The input data are wrong)\n"},
  {"--lang ja test t --pop '50 6' --sample '53 4 10'", 1, "", "error 46: 入力ﾃﾞｰﾀがおかしい\n"},
  {"--lang fr calc 1", 2, "", "usage: ", true},
  {"simult '1 1 2' '1 1.0000002384185791015625 0'", 0, " X1 =  8388610\n X2 = -8388608\n",
   "warning: ill-conditioned (condition number about 1.7E+07); the answer may have no correct digits\n"},
  {"simult '2 1 3' '1 -1 0'", 0, " X1 =  1\n X2 =  1\n", ""},
  {"roots --min -1 --max 1.7 --num 3 --judge 0 'x^3-0.001'", 0, "",
   "note: the sign change near x=0.1 never came within the judge value; it is not listed as a root\n"},
}));

class CliFiles : public test::TempDirTest {};

// Points with one blank between x and y; a polar plot and a plot whose count the window caps;
// the store's functions can be plotted, and headings follow the settings file.
TEST_F(CliFiles, GraphPointsAndTheFilesOfTheDirectory) {
  const auto polar = Lines(RunCli(Words("graph --polar --min 0 --max 2*PI --num 8 2")).out);
  ASSERT_EQ(polar.size(), 9u);
  for (const std::string& line : polar) {
    double x = 0, y = 0;
    int n = 0;
    ASSERT_EQ(std::sscanf(line.c_str(), "%lf %lf%n", &x, &y, &n), 2) << line;
    EXPECT_EQ(line.size(), static_cast<size_t>(n)) << line;
    EXPECT_NEAR(std::hypot(x, y), 2, 1e-12) << line;
  }
  test::CliResult capped = RunCli(Words("graph --min 0 --max 3 --num 10000 x"));
  EXPECT_EQ(capped.err, "Text3: 6000\n") << "the window shows the cap in its Num box";
  ASSERT_EQ(Lines(capped.out).size(), 6000u);
  EXPECT_EQ(Lines(capped.out).back(), "3 3");
  ASSERT_EQ(RunCli({"rec", "sq(a)=a*a"}).status, 0);
  ExpectRun({"graph --min -2 --max 2 --num 2 sq(x)+1", 0, "-2 5\n0 1\n2 5\n", ""});
  std::ofstream("MERIDA.DEF") << "Japanese\r\n";
  ExpectRun({"gcm 12 18", 0, "最大公約数.\n 6\n最小公倍数.\n 36\n", ""});
}

// The command draws what the window's logic draws, segment for segment.
TEST_F(CliFiles, ContourPlotLinesAreTheWindowsSegments) {
  test::CliResult r = RunCli(Words("contour --x -2,2,20 --y -2,2,20 --levels 1,4,1 x^2+y^2"));
  ASSERT_EQ(r.status, 0);
  test::RecordingHost host;
  Engine engine(host);
  engine.ResetEngine();
  GridResult grid = EvaluateGrid(engine, "x^2+y^2", GridBoxes{"-2", "2", "20", "-2", "2", "20"}, false);
  std::vector<Segment> segments;
  ASSERT_TRUE(ContourLines(grid.grid, {1, 4, 1}, nullptr, segments));
  std::string expected = "0 ～ 8\n";
  for (const Segment& s : segments) {
    expected += PlainText(s.x1) + " " + PlainText(s.y1) + " " + PlainText(s.x2) + " " + PlainText(s.y2) + "\n";
  }
  EXPECT_GT(segments.size(), 100u);
  EXPECT_EQ(r.out, expected);
}

#ifdef MERIDA_CLI_DRAWS
TEST_F(CliFiles, ContourDrawingsAreWrittenAsPngOrSvg) {
  const std::tuple<const char*, const char*, std::string> cases[] = {  // options, file, rewritten boxes
      {"--draw plot --levels 1,4,1", "plot.png", ""}, {"--draw plot --color multi", "plan.png", ""},
      {"--draw cube", "cube.svg", ""},
      {"--draw hide --color red --angles -10,200", "hide.png", "Text1: 0\nText2: 180\n"},
      {"--draw hide --angles 100,100", "reset.png", "Text1: 20\nText2: 30\n"},
  };
  for (const auto& [options, file, err] : cases) {
    SCOPED_TRACE(file);
    const std::string line = std::string("contour --x -2,2,20 --y -2,2,20 ") + options + " --out " + file + " x^2+y^2";
    ExpectRun({line.c_str(), 0, "0 ～ 8\n", err});
    const std::string data = test::FileText(file).value_or("");
    if (std::string(file).ends_with(".png")) {
      ASSERT_GE(data.size(), 24u);
      EXPECT_EQ(data.substr(0, 8), "\x89PNG\r\n\x1a\n");
      EXPECT_EQ(data.substr(16, 8), std::string("\0\0\x02\x80\0\0\x02\x80", 8));  // 640 x 640
    } else {
      EXPECT_TRUE(data.find("<svg") != std::string::npos && data.find("</svg>") != std::string::npos);
    }
  }
  test::CliResult r = RunCli(Words("contour --x 0,1,2 --y 0,1,2 --draw cube --out no/such/dir/a.png x"));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "merida-cli: cannot write no/such/dir/a.png: No such file or directory\n");
  EXPECT_FALSE(std::filesystem::exists("no"));
}
#endif

TEST_F(CliFiles, WaveAndMeridaFilesAreWrittenLoadedAndShown) {
  EXPECT_EQ(RunCli(Words("wave --from 0 --to 1 sin(2*PI*440*x)")).out, "mrdsound.wav\n");
  EXPECT_EQ(Lines(RunCli({"load", "mrdsound.wav"}).out),
            (std::vector<std::string>{std::filesystem::absolute("mrdsound.wav").string(), "11025", "0", "5000"}));
  std::vector<std::string> shown = Lines(RunCli({"display", "mrdsound.wav"}).out);
  ASSERT_EQ(shown.size(), 5000u);
  EXPECT_EQ(shown[0], "0 0");  // byte 128: the sine starts at the middle of the range
  EXPECT_EQ(shown[4999].substr(0, 5), "4999 ");
  EXPECT_EQ(RunCli(Words("wave --mrd --from 0 --to 0.2 sin(2*PI*440*x)")).out, "mrdsound.mrd\n");
  std::vector<std::string> rows = Lines(RunCli({"load", "--rows", "mrdsound.mrd"}).out);
  ASSERT_EQ(rows.size(), 4u + 2205);
  EXPECT_EQ(std::vector<std::string>(rows.begin(), rows.begin() + 6),
            (std::vector<std::string>{"mrdsound.mrd", "2205", "0", "0.2", "0", "0.2481378"}));
  // Frames of a file in continue mode, and their matrix written to a file.
  test::CliResult frames = RunCli(Words("fft --mrd mrdsound.mrd --continue --from 0 --to 0.2 --num 512 --show power "
                                        "--matrix m.txt"));
  EXPECT_EQ(frames.status, 0);
  std::vector<std::string> lines = Lines(frames.out);
  EXPECT_EQ(lines.size(), 4u * 256 + 3) << "four frames of 256 points, an empty line between";
  EXPECT_EQ(std::count(lines.begin(), lines.end(), ""), 3);
  std::vector<std::string> matrix = Lines(test::FileText("m.txt").value_or(""));
  ASSERT_EQ(matrix.size(), 4u);
  EXPECT_EQ(std::count(matrix[0].begin(), matrix[0].end(), ' '), 255);
  // A formula's spectrum, its count made a power of two.
  test::CliResult power = RunCli(Words("fft --from 0 --to 1 --num 100 --show power sin(2*PI*5*x)"));
  EXPECT_EQ(power.err, "Text3: 128\n");
  ASSERT_EQ(Lines(power.out).size(), 64u);
  EXPECT_EQ(Lines(power.out)[5], "5 0.25");
  // A WAVE file's sample rate is unsigned: 3 GHz labels the spectrum in the billions, not below 0.
  std::string wave = std::string("RIFF\x4d\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0", 24) +
                     std::string("\x00\x5e\xd0\xb2\x00\x5e\xd0\xb2\x01\0\x08\0data\x40\0\0\0", 20);  // 3000000000
  for (int i = 0; i < 64; ++i) wave += static_cast<char>(128 + (i % 2 ? 60 : -60));
  std::ofstream("fast.wav", std::ios::binary) << wave;
  EXPECT_EQ(Lines(RunCli({"load", "fast.wav"}).out)[1], "3000000000");
  auto points = Lines(RunCli(Words("fft --wave fast.wav --from 0 --to 64 --num 64 --show power")).out);
  ASSERT_EQ(points.size(), 32u);
  EXPECT_EQ(points[1].substr(0, points[1].find(' ')), "46875000");  // 3E9 / 64
  for (const std::string& p : points) EXPECT_NE(p[0], '-') << p;
}

// Whatever the file or the failure, a command that ends without its output says why in one
// line, and a failed read or write changes nothing.
TEST_F(CliFiles, FailuresSayWhatHappened) {
  ::mkfifo("pipe.mrd", 0644);
  std::filesystem::create_directory("taken.wav");
  for (const char* name : {"mem.mrd", "mem.wav", "mem.orb"}) std::filesystem::create_symlink("/proc/self/mem", name);
  std::ofstream("stereo.wav", std::ios::binary) << std::string("RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0", 24)
                                                << std::string(20, '\0');
  std::filesystem::copy_file("stereo.wav", "DATA.Wav");
  const std::string fftUsage = "usage: merida-cli fft ", io = ": Input/output error\n", cannot = "merida-cli: cannot ";
  const CliRun runs[] = {
      {"load mem.mrd", 1, "", cannot + "read mem.mrd" + io}, {"display mem.wav", 1, "", cannot + "read mem.wav" + io},
      {"stat ave mem.orb", 1, "", cannot + "read mem.orb" + io},
      {"test t --pop '0 1' --record mem.orb --column 1", 1, "", cannot + "read mem.orb" + io},
      {"fft --mrd mem.mrd --from 0 --to 1 --num 8 --show power", 1, "", cannot + "read mem.mrd" + io},
      {"load pipe.mrd", 1, "", "merida-cli: cannot read pipe.mrd: not a regular file\n"},
      {"load nonexistent.mrd", 1, "", "merida-cli: cannot read nonexistent.mrd: No such file or directory\n"},
      {"load stereo.wav", 1, "2\n",  // the field that failed, as Text1 shows it
       "merida-cli: stereo.wav: not a WAVE file this program reads (8-bit mono PCM with a 44-byte header)\n"},
      {"load DATA.Wav", 1, "", "error 39: ﾌｧｲﾙの形式が違います\n"},
      {"wave --from 0 --to 1 exp(x*1000)", 3, "", "fault: Overflow\n"},
      {"wave --from 0 --to 1 3", 1, "",
       "merida-cli: nothing written: the formula has the same value at every sample\n"},
      {"wave --from 0 --to 1 --name taken.wav x", 1, "", "merida-cli: cannot write taken.wav: Is a directory\n"},
      {"fft --num -1 --from 0 --to 1 --show power sin(x)", 1, "",
       "merida-cli: the number of points must be a number of at least 1 (not \"-1\")\n"},
      {"fft --from 1 --to 0 --num 8 --show power x", 1, "",
       "merida-cli: the start of the range must be below its end\n"},
      {"fft --wave a.wav --mrd b.mrd --from 0 --to 1 --num 8 --show power", 2, "", fftUsage, true},
      {"fft --continue --from 0 --to 1 --num 8 --show power x", 2, "", fftUsage, true},
  };
  for (const CliRun& r : runs) {
    SCOPED_TRACE(r.line);
    ExpectRun(r);
  }
  test::CliResult full = RunCli(Words("wave --from 0 --to 1 x"), "", "ulimit -f 1; trap '' XFSZ;");
  EXPECT_EQ(full.err, "merida-cli: cannot write mrdsound.wav: File too large\n");
  EXPECT_EQ(full.status, 1);
  EXPECT_FALSE(std::filesystem::exists("mrdsound.wav"));
  EXPECT_TRUE(std::filesystem::is_directory("taken.wav"));
}

}  // namespace
}  // namespace merida

// merida-cli calc, rec, list and del end to end: output, standard error, exit status, files.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "test_support.h"

namespace merida {
namespace {

using test::RunCli;

class CliTest : public test::TempDirTest {};

TEST_F(CliTest, CalcPrintsAnswersErrorsAndFaults) {
  struct Row {
    std::vector<std::string> args;
    std::string input, out, err;
    int status;
  };
  const Row rows[] = {
      {{"calc", "1+2"}, "", "3\n", "", 0},
      {{"calc", "1/0"}, "", "", "error 11: 0で割ることは不可です\n", 1},
      {{"calc", "13!"}, "", "", "fault: Overflow\n", 3},
      {{"calc", "x+y"}, "2\nPI/4\n", "2.78539816339745\n", "x\ny\n", 0},
      {{"calc", "x+1"}, "", "1\n", "x\n", 0},
      {{"calc", "--var", "x=3", "--var", "y=PI", "x*y"}, "", "9.42477796076937\n", "", 0},
      {{"calc", "--var", "x=2", "x+y"}, "5\n", "7\n", "y\n", 0},
      {{"calc", "integ(x,1,0,10)"}, "", "", "merida-cli: integ: the lower limit must be below the upper limit\n", 1},
      {{"calc"}, "", "", "usage: merida-cli calc [--var NAME=VALUE]... FORMULA\n", 2},
      {{"calc", "--var", "x", "1"}, "", "", "usage: merida-cli calc [--var NAME=VALUE]... FORMULA\n", 2},
      {{"calc", "1", "2"}, "", "", "usage: merida-cli calc [--var NAME=VALUE]... FORMULA\n", 2},
      {{"frobnicate"}, "", "", "merida-cli: unknown command 'frobnicate'\n", 2},
  };
  for (const Row& r : rows) {
    auto got = RunCli(r.args, r.input);
    std::string label = r.args.size() > 1 ? r.args.back() : r.args[0];
    EXPECT_EQ(got.out, r.out) << label;
    EXPECT_EQ(got.err, r.err) << label;
    EXPECT_EQ(got.status, r.status) << label;
  }
}

TEST_F(CliTest, RecListDelKeepTheStore) {
  EXPECT_EQ(RunCli({"rec", "sq(x)=x*x"}).status, 0);
  EXPECT_EQ(RunCli({"rec", "x^2+y"}).status, 0);
  EXPECT_EQ(RunCli({"rec", "p(x,y)=perm(x,y)"}).status, 0);
  auto dup = RunCli({"rec", "sq(t)=t"});
  EXPECT_EQ(dup.status, 1);
  EXPECT_EQ(dup.err, "error 7: このユーザ関数は既に登録されています\n");
  EXPECT_EQ(RunCli({"list"}).out, "sq(x)=x*x\nf_1(x,y)=x^2+y\np(x,y)=perm(x,y)\n");
  EXPECT_EQ(RunCli({"calc", "sq(3)+1"}).out, "10\n");
  EXPECT_EQ(RunCli({"del", "1"}).status, 0);
  EXPECT_EQ(RunCli({"list"}).out, "f_1(x,y)=x^2+y\np(x,y)=perm(x,y)\n");
  auto none = RunCli({"del", "9"});
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.out + none.err, "merida-cli: del: there is no function 9 (the functions are numbered 1 to 2)\n");
  EXPECT_EQ(RunCli({"del", "x"}).status, 2);
  auto gone = RunCli({"calc", "sq(3)"});
  EXPECT_EQ(gone.err, "error 22: 文法エラーです\n");
}

TEST_F(CliTest, BadStoreLinesAreReportedButDoNotFailTheCommand) {
  std::ofstream("MERIDA.DAT", std::ios::binary) << "a(x)=x+1\r\na(y)=y\r\n";
  auto r = RunCli({"calc", "a(1)"});
  EXPECT_EQ(r.out, "2\n");
  EXPECT_EQ(r.err, "error 7: このユーザ関数は既に登録されています\n");
  EXPECT_EQ(r.status, 0);
}

// A store that must not be saved over is left as it is, and the command says why.
TEST_F(CliTest, RefusedStoreSavesChangeNothing) {
  auto del = RunCli({"del", "0"});
  EXPECT_EQ(del.status, 1);
  EXPECT_EQ(del.err, "merida-cli: del: there is no function 0 (no functions are registered)\n");
  EXPECT_FALSE(std::filesystem::exists("MERIDA.DAT")) << "a del makes no store";

  std::ofstream("MERIDA.DAT", std::ios::binary) << "a(x)=x\r\n";
  ::chmod("MERIDA.DAT", 0444);
  for (const std::vector<std::string>& args : {std::vector<std::string>{"rec", "b(x)=x"}, {"del", "1"}}) {
    auto r = RunCli(args);
    EXPECT_EQ(r.status, 1) << args[0];
    EXPECT_EQ(r.err, "merida-cli: MERIDA.DAT not written: the file is read-only\n") << args[0];
  }
  EXPECT_EQ(test::FileText("MERIDA.DAT"), "a(x)=x\r\n");

  // Lines the store cannot keep are reported once, in one summary line, at every start.
  std::string many;
  for (int i = 0; i < 3000; ++i) many += "bad(" + std::to_string(i) + "\r\n";
  std::filesystem::remove("MERIDA.DAT");
  std::ofstream("MERIDA.DAT", std::ios::binary) << many;
  auto list = RunCli({"list"});
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(list.err, "error 22: 文法エラーです\n"
                      "merida-cli: MERIDA.DAT: 3000 lines could not be loaded (the first error is shown); 2744 of "
                      "them cannot be kept, so MERIDA.DAT will not be saved over until it is shortened\n");
  auto rec = RunCli({"rec", "b(x)=x"});
  EXPECT_EQ(rec.status, 1);
  EXPECT_EQ(test::FileText("MERIDA.DAT"), many);
}

// In a sticky, world-writable directory such as /tmp, a MERIDA.DAT or a WAVE file that is a link
// planted by another user is not followed: the file it names stays as it was.
TEST_F(CliTest, SavesDoNotFollowLinksPlantedByAnotherUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root to give a link to another user";
  std::ofstream("victim", std::ios::binary) << "precious";
  std::filesystem::create_directory("shared");
  ::chmod("shared", 01777);
  for (const char* name : {"shared/MERIDA.DAT", "shared/out.wav"}) {
    std::filesystem::create_symlink(std::filesystem::absolute("victim"), name);
    ASSERT_EQ(::lchown(name, 65534, 65534), 0);
  }
  std::filesystem::current_path("shared");
  const std::string refused = "a symbolic link another user owns in a shared directory (not followed)";
  auto rec = RunCli({"rec", "b(x)=x"});
  EXPECT_EQ(rec.status, 1);
  EXPECT_EQ(rec.err, "merida-cli: MERIDA.DAT not written: " + refused + "\n");
  auto wave = RunCli({"wave", "--from", "0", "--to", "1", "--name", "out.wav", "x"});
  EXPECT_EQ(wave.status, 1);
  EXPECT_EQ(wave.err, "merida-cli: cannot write out.wav: " + refused + "\n");
  std::filesystem::current_path("..");
  EXPECT_EQ(test::FileText("victim"), "precious");
}

// Each row runs its commands in a fresh directory; the last command's output is checked.
TEST(CliStore, SequencesOfCommands) {
  struct Row {
    std::vector<std::vector<std::string>> before;
    std::vector<std::string> args;
    std::string out, err;
    int status;
  };
  const Row rows[] = {
      {{{"rec", "h(n)=sgm(g(k),1,n,k)"}, {"rec", "g(x)=h(x-1)+1"}}, {"calc", "g(3)"}, "4\n", "", 0},
      {{{"rec", "f(x)=x+1"}, {"rec", "g(x)=f(x)*2"}, {"del", "1"}}, {"calc", "g(1)"}, "",
       "error 4: ユーザ関数が見つかりません\n", 1},
      {{}, {"calc", "--var", "x=1E-99999999999999999999", "x"}, "0\n", "", 0},
  };
  for (const Row& r : rows) {
    test::TempDirScope dir;
    for (const auto& b : r.before) ASSERT_EQ(RunCli(b).status, 0) << b.back();
    auto got = RunCli(r.args);
    std::string label = r.args.back().substr(0, 40);
    EXPECT_EQ(got.out, r.out) << label;
    EXPECT_EQ(got.err, r.err) << label;
    EXPECT_EQ(got.status, r.status) << label;
  }
}

}  // namespace
}  // namespace merida

// User functions: Rec, calls, the list, delete, the store text and loading it.
#include <sys/stat.h>

#include <fstream>

#include "engine/engine.h"
#include "main/calculator.h"
#include "main/settings.h"
#include "test_support.h"

namespace merida {
namespace {

using test::RecordingHost;

struct Rec {
  const char* formula;
  int error;  // 0 = registered
};

TEST(UserFunctions, RegisteringAndCalling) {
  RecordingHost host;
  Engine e(host);
  const Rec recs[] = {
      {"sq(x)=x*x", 0},          {"x^2+y", 0},          {"h(x)=x+y", 3},        {"h(x,y)=x", 2},
      {"sq(t)=t", 7},            {"f(x,1)=x", 1},       {"g(a,b,c,d,e,f,g,h,i,j,k)=a", 5},
      {"2h(x)=x", 21},           {"p(x,y)=x+perm(x,y)", 0}, {"q(x)=sq(x)+1", 0},  {"r(x)=sq(x,1)", 8},
      {"F(a)=integ(t^2,0,a,100)", 0}, {"c(X)=x+1", 0},  {"k=3", 0},
  };
  for (const Rec& r : recs) {
    host.errors.clear();
    bool ok = e.RegisterFormula(r.formula);
    EXPECT_EQ(ok, r.error == 0) << r.formula;
    EXPECT_EQ(host.errors.empty() ? 0 : host.errors.front(), r.error) << r.formula;
  }
  EXPECT_EQ(e.userFunctionCount(), 7);
  EXPECT_EQ(e.FunctionListLine(2), "f_1(x,y)=x^2+y");
  EXPECT_EQ(e.FunctionListLine(5), "F(a)=integ(t^2,0,a,100)");

  struct Call {
    const char* formula;
    const char* answer;
  };
  const Call calls[] = {
      {"sq(3)+1", "10"}, {"f_1(2,3)", "7"}, {"p(5,2)", "25"}, {"q(4)", "17"},
      {"sq(sq(2))", "16"}, {"F(3)", "9.00000000000001"}, {"sq(0.1+0.2)", "0.09"},
  };
  for (const Call& c : calls) {
    host.errors.clear();
    EXPECT_EQ(Calc(e, c.formula).value_or("none"), c.answer) << c.formula;
  }
  host.errors.clear();
  EXPECT_FALSE(Calc(e, "sq(2,3)"));
  EXPECT_EQ(host.errors, std::vector<int>{8});
  // Parameters match the body without regard to case but are substituted exactly:
  // the lower-case x of c(X)=x+1 stays a free variable and is asked for.
  host.prompts.clear();
  host.answers = {std::string("10")};
  EXPECT_EQ(Calc(e, "c(1)"), "11");
  EXPECT_EQ(host.prompts, std::vector<std::string>{"x"});
}

TEST(UserFunctions, AutomaticNamesReuseTheSmallestFreeNumber) {
  RecordingHost host;
  Engine e(host);
  ASSERT_TRUE(e.RegisterFormula("x+1"));
  ASSERT_TRUE(e.RegisterFormula("x+2"));
  ASSERT_TRUE(e.RegisterFormula("x+3"));
  ASSERT_TRUE(e.DeleteFunction(1));
  EXPECT_EQ(e.userFunctionCount(), 2);
  EXPECT_EQ(e.FunctionListLine(1), "f_2(x)=x+2");
  EXPECT_EQ(e.FunctionListLine(2), "f_3(x)=x+3");
  ASSERT_TRUE(e.RegisterFormula("x+4"));
  EXPECT_EQ(e.FunctionListLine(3), "f_1(x)=x+4");
  EXPECT_FALSE(e.DeleteFunction(0));
  EXPECT_FALSE(e.DeleteFunction(4));
}

TEST(UserFunctions, FiftiethFunctionIsRefused) {
  RecordingHost host;
  Engine e(host);
  for (int i = 1; i <= 49; ++i) ASSERT_TRUE(e.RegisterFormula("x+" + std::to_string(i))) << i;
  EXPECT_FALSE(e.RegisterFormula("x+50"));
  EXPECT_EQ(host.errors, std::vector<int>{9});
  EXPECT_EQ(e.userFunctionCount(), 49);
  // Sums still compile in the slot above a full work slot.
  EXPECT_EQ(Calc(e, "sgm(k,1,4,k)+f_49(1)"), "60");
}

TEST(UserFunctions, DeletedFunctionsAreNotFound) {
  RecordingHost host;
  Engine e(host);
  ASSERT_TRUE(e.RegisterFormula("g(x)=x+1"));
  ASSERT_TRUE(e.RegisterFormula("f(x)=g(x)*2"));
  EXPECT_EQ(Calc(e, "f(1)"), "4");
  ASSERT_TRUE(e.DeleteFunction(1));
  // The caller was registered while g existed: its call is not found. A new formula that
  // names g is a syntax error, g being no function name any more.
  EXPECT_FALSE(Calc(e, "f(1)"));
  EXPECT_EQ(host.errors.back(), 4);
  EXPECT_FALSE(Calc(e, "g(1)"));
  EXPECT_EQ(host.errors.back(), 22);
  // A function redefined after the one that calls it cannot make the calls endless.
  ASSERT_TRUE(e.RegisterFormula("g(x)=f(x)"));
  host.errors.clear();
  EXPECT_FALSE(Calc(e, "g(1)"));
  EXPECT_EQ(host.errors.size(), 1u);
}

TEST(UserFunctions, EmptyOrBlankParametersAreRefused) {
  const Rec recs[] = {
      {"g(x, )=x", 21}, {"g(x,)=x", 21}, {"g(,x)=x", 21}, {"g( )=1", 21}, {"g(x,,y)=x+y", 21},
      {"g()=1", 0},     {"h(x,y)=x+y", 0},
  };
  for (const Rec& r : recs) {
    RecordingHost host;
    Engine e(host);
    EXPECT_EQ(e.RegisterFormula(r.formula), r.error == 0) << r.formula;
    EXPECT_EQ(host.errors.empty() ? 0 : host.errors.front(), r.error) << r.formula;
  }
}

TEST(UserFunctions, OverlongTextsAreError10) {
  const std::string longName(5000, 'a');
  struct Row {
    std::string formula;
    bool rec;  // Rec rather than Calc
    int error;
  };
  const Row rows[] = {
      {"1+" + longName, false, 10},
      {"f(x)=x+" + longName, true, 10},
      {longName + "(x)=x", true, 10},
      {"f(x)=integ(" + longName + ",0,1,2)", true, 10},
      {"1+0." + std::string(kMaxFormulaLength - 4, '0'), false, 0},
      {"1+0." + std::string(kMaxFormulaLength - 3, '0'), false, 10},
  };
  for (const Row& r : rows) {
    RecordingHost host;
    Engine e(host);
    bool ok = r.rec ? e.RegisterFormula(r.formula) : Calc(e, r.formula).has_value();
    EXPECT_EQ(ok, r.error == 0) << r.formula.size();
    EXPECT_EQ(host.errors.empty() ? 0 : host.errors.front(), r.error) << r.formula.size();
    EXPECT_TRUE(host.prompts.empty());
  }
}

class StoreTest : public test::TempDirTest {};

std::string ReadFile(const char* name) {
  std::ifstream in(name, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

TEST_F(StoreTest, SaveAndLoadKeepOrderWithAtSigns) {
  RecordingHost host;
  {
    Engine e(host);
    ASSERT_TRUE(e.RegisterFormula("f(x,y)=x+perm(x,y)"));
    ASSERT_TRUE(e.RegisterFormula("g=2"));
    ASSERT_TRUE(e.RegisterFormula("F(a)=integ(t^2,0,a,100)+sgm(k,1,a,k)"));
    ASSERT_TRUE(SaveUserFunctions(e, "."));
  }
  EXPECT_EQ(ReadFile("MERIDA.DAT"), "f(x@y)=x+perm(x@y)\r\ng()=2\r\nF(a)=integ(t^2@0@a@100)+sgm(k@1@a@k)\r\n");
  Engine loaded(host);
  LoadUserFunctions(loaded, ".");
  ASSERT_EQ(loaded.userFunctionCount(), 3);
  EXPECT_EQ(loaded.FunctionListLine(1), "f(x,y)=x+perm(x,y)");
  EXPECT_EQ(loaded.FunctionListLine(3), "F(a)=integ(t^2,0,a,100)+sgm(k,1,a,k)");
  EXPECT_EQ(Calc(loaded, "f(5,2)"), "25");
  EXPECT_EQ(Calc(loaded, "F(3)"), "15");
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(StoreTest, LinesThatCannotBeRegisteredAreKeptWhereTheyWere) {
  struct Row {
    std::string stored;
    std::vector<int> errors;
    int registered;
    std::string saved;
  };
  const std::string huge = "f(x)=x+" + std::string(10000, 'a');
  std::string sixty;
  for (int i = 1; i <= 60; ++i) sixty += "f" + std::to_string(i) + "(x)=x+" + std::to_string(i) + "\r\n";
  // Only the first line that fails is shown; the rest are kept all the same.
  const Row rows[] = {
      {"a(x)=x+1\r\na(y)=y\n\n2b(x)=x\r\nc(x)=x*(2\r\nd(x)=x*3", {7}, 2,
       "a(x)=x+1\r\na(y)=y\r\n2b(x)=x\r\nc(x)=x*(2\r\nd(x)=x*3\r\n"},
      {"f(x@ )=x\r\ng(@x)=x\r\nh(x@)=x\r\nk( )=1\r\n", {21}, 0,
       "f(x@ )=x\r\ng(@x)=x\r\nh(x@)=x\r\nk( )=1\r\n"},
      {"g(x)=nothere(x)*2\r\nk()=(g(1)\r\n", {23}, 1, "g(x)=nothere(x)*2\r\nk()=(g(1)\r\n"},
      {huge + "\r\nok(x)=x\r\n", {10}, 1, huge + "\r\nok(x)=x\r\n"},
      {sixty, {9}, 49, sixty},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.stored.substr(0, 40));
    std::ofstream("MERIDA.DAT", std::ios::binary) << r.stored;
    RecordingHost host;
    Engine e(host);
    LoadUserFunctions(e, ".");
    EXPECT_EQ(host.errors, r.errors);
    EXPECT_EQ(e.userFunctionCount(), r.registered);
    ASSERT_TRUE(SaveUserFunctions(e, "."));
    EXPECT_EQ(ReadFile("MERIDA.DAT"), r.saved);
  }
}

// A store that is not one this program wrote (lines too long to hold, or more lines that fail
// than it keeps) loads what it can, says so in one line, and is never saved over.
TEST_F(StoreTest, StoresTooLargeToKeepLoadWhatTheyCanAndAreNotSavedOver) {
  struct Row {
    const char* name;
    std::string stored;
    uint64_t failed, dropped;
    int registered;
  };
  std::string many = "ok(x)=x\r\n";
  for (int i = 0; i < 100000; ++i) many += "bad(\r\n";
  const Row rows[] = {
      {"a line of 1 MB", "a(x)=x\r\n" + std::string(1 << 20, 'b') + "\r\nc(x)=x\r\n", 2, 2, 1},
      {"100000 lines that fail", many, 100000, 100000 - kMaxKeptLines, 1},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.name);
    std::ofstream("MERIDA.DAT", std::ios::binary | std::ios::trunc) << r.stored;
    RecordingHost host;
    Engine e(host);
    StoreLoad load = LoadUserFunctions(e, ".");
    EXPECT_EQ(host.errors.size(), 1u);
    EXPECT_EQ(load.lines.failed, r.failed);
    EXPECT_EQ(load.lines.dropped, r.dropped);
    EXPECT_EQ(e.userFunctionCount(), r.registered);
    EXPECT_NE(StoreLoadNotice(load).find("will not be saved over"), std::string::npos) << StoreLoadNotice(load);
    ASSERT_TRUE(e.RegisterFormula("new(x)=x"));
    FileResult saved = SaveUserFunctions(e, ".");
    EXPECT_NE(saved.error.find("cannot keep"), std::string::npos) << saved.error;
    EXPECT_EQ(ReadFile("MERIDA.DAT"), r.stored);
  }
}

// Settings and store files that are not regular files, or cannot be read, load nothing and
// never block; a huge settings file is read no further than its first line.
TEST_F(StoreTest, OnlyRegularFilesAreReadAndOnlyAsFarAsNeeded) {
  ASSERT_EQ(::mkfifo("MERIDA.DAT", 0644), 0);
  ASSERT_EQ(::mkfifo("MERIDA.DEF", 0644), 0);
  RecordingHost host;
  Engine e(host);
  EXPECT_EQ(LoadUserFunctions(e, ".").error, "not a regular file");
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 1);
  std::filesystem::remove("MERIDA.DAT");
  std::filesystem::create_symlink("/proc/self/mem", "MERIDA.DAT");
  StoreLoad load = LoadUserFunctions(e, ".");
  EXPECT_EQ(load.error, "Input/output error");
  EXPECT_EQ(StoreLoadNotice(load), "cannot read MERIDA.DAT: Input/output error");
  EXPECT_FALSE(SaveUserFunctions(e, ".")) << "a store that cannot be read is not saved over";
  EXPECT_TRUE(std::filesystem::is_symlink("MERIDA.DAT"));
  EXPECT_TRUE(host.errors.empty());
  // 2 GB of nothing after the first line, without the disk space: only the line is read.
  std::filesystem::remove("MERIDA.DEF");
  std::ofstream("MERIDA.DEF", std::ios::binary) << "Japanese\r\n";
  std::filesystem::resize_file("MERIDA.DEF", uint64_t{2} << 30);
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 2);
}

TEST_F(StoreTest, LoadedLinesAreSavedAsWrittenAndListedAsRegistered) {
  struct Row {
    std::string stored, listed;
  };
  const Row rows[] = {
      {"f( x )=x+1", "f(x)=x+1"},
      {"g(x)=+x", "g(x)=x"},
      {"n(k)(junk)=k*2", "n(k,(junk)=k*2"},  // listed as the header parses
      {"p(x@y)=x+y  ", "p(x,y)=x+y"},
      {"q(x@y)=x+y", "q(x,y)=x+y"},
  };
  std::string stored;
  for (const Row& r : rows) stored += r.stored + "\r\n";
  std::ofstream("MERIDA.DAT", std::ios::binary) << stored;
  RecordingHost host;
  Engine e(host);
  LoadUserFunctions(e, ".");
  ASSERT_EQ(e.userFunctionCount(), 5);
  for (int k = 1; k <= 5; ++k) EXPECT_EQ(e.FunctionListLine(k), rows[k - 1].listed);
  ASSERT_TRUE(e.DeleteFunction(2));
  ASSERT_TRUE(e.RegisterFormula("r(x, y)=x*y"));
  ASSERT_TRUE(SaveUserFunctions(e, "."));
  EXPECT_EQ(ReadFile("MERIDA.DAT"), "f( x )=x+1\r\nn(k)(junk)=k*2\r\np(x@y)=x+y  \r\nq(x@y)=x+y\r\nr(x@y)=x*y\r\n");
  EXPECT_EQ(Calc(e, "f(1)+p(1,2)+r(2,3)"), "11");
}

TEST_F(StoreTest, KeptLinesStayBetweenTheirNeighboursAcrossDeleteAndRec) {
  std::ofstream("MERIDA.DAT", std::ios::binary) << "a(x)=1+x\r\nbad(\r\nb(x)=2+x\r\n";
  RecordingHost host;
  Engine e(host);
  LoadUserFunctions(e, ".");
  ASSERT_EQ(e.userFunctionCount(), 2);
  ASSERT_TRUE(e.DeleteFunction(1));
  ASSERT_TRUE(e.RegisterFormula("c(x)=3+x"));
  ASSERT_TRUE(SaveUserFunctions(e, "."));
  EXPECT_EQ(ReadFile("MERIDA.DAT"), "bad(\r\nb(x)=2+x\r\nc(x)=3+x\r\n");
  EXPECT_EQ(Calc(e, "b(1)+c(1)"), "7");
}

TEST_F(StoreTest, RedefiningADeletedFunctionKeepsTheFunctionsThatCallIt) {
  RecordingHost host;
  auto restart = [&](auto&& action) {
    Engine e(host);
    LoadUserFunctions(e, ".");
    action(e);
    ASSERT_TRUE(SaveUserFunctions(e, "."));
  };
  restart([](Engine& e) { ASSERT_TRUE(e.RegisterFormula("f(x)=x+1")); });
  restart([](Engine& e) { ASSERT_TRUE(e.RegisterFormula("g(x)=f(x)*2")); });
  restart([](Engine& e) { ASSERT_TRUE(e.DeleteFunction(1)); });
  restart([&](Engine& e) {
    ASSERT_EQ(e.userFunctionCount(), 1);
    EXPECT_FALSE(Calc(e, "g(1)"));
    EXPECT_EQ(host.errors, std::vector<int>{4});
    ASSERT_TRUE(e.RegisterFormula("f(x)=x+10"));
    EXPECT_EQ(Calc(e, "g(1)"), "22");
  });
  EXPECT_EQ(ReadFile("MERIDA.DAT"), "g(x)=f(x)*2\r\nf(x)=x+10\r\n");
  Engine e(host);
  LoadUserFunctions(e, ".");
  EXPECT_EQ(Calc(e, "g(2)"), "24");
  EXPECT_EQ(host.errors, std::vector<int>{4});
}

TEST_F(StoreTest, FunctionsThatCallEachOtherEndWithAnErrorNotACrash) {
  std::ofstream("MERIDA.DAT", std::ios::binary) << "h(x)=g(x)\r\ng(x)=h(x)+1\r\nm(x)=sgm(m(k)@1@x@k)\r\n";
  RecordingHost host;
  Engine e(host);
  LoadUserFunctions(e, ".");
  ASSERT_EQ(e.userFunctionCount(), 3);
  for (const char* formula : {"g(1)", "m(3)", "sgm(g(k),1,2,k)"}) {
    host.errors.clear();
    EXPECT_FALSE(Calc(e, formula)) << formula;
    EXPECT_EQ(host.errors, std::vector<int>{10}) << formula;
  }
  EXPECT_FALSE(e.busy());
}

TEST_F(StoreTest, MissingOrBinaryStoreLoadsNothingAndNeverCrashes) {
  RecordingHost host;
  Engine e(host);
  LoadUserFunctions(e, ".");
  EXPECT_EQ(e.userFunctionCount(), 0);
  std::string junk;
  for (int i = 0; i < 4096; ++i) junk += static_cast<char>((i * 7919) % 256);
  std::ofstream("MERIDA.DAT", std::ios::binary) << junk;
  LoadUserFunctions(e, ".");
  for (int k = 1; k <= e.userFunctionCount(); ++k) EXPECT_FALSE(e.FunctionListLine(k).empty());
}

TEST_F(StoreTest, SavingLeavesNoTemporaryFilesAndStaleOnesAreRemoved) {
  std::ofstream("MERIDA.DAT.merida-tmp-abc123") << "half written";
  RecordingHost host;
  Engine e(host);
  LoadUserFunctions(e, ".");
  ASSERT_TRUE(e.RegisterFormula("s(x)=x"));
  ASSERT_TRUE(SaveUserFunctions(e, "."));
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(".")) {
    ++files;
    EXPECT_EQ(entry.path().filename(), "MERIDA.DAT");
  }
  EXPECT_EQ(files, 1);
}

TEST_F(StoreTest, DisplayLanguageFile) {
  struct Row {
    const char* contents;
    int16_t language;
  };
  const Row rows[] = {{"Japanese\r\n", 2}, {"English\r\n", 1}, {"japanese\r\n", 1}, {"Japanese", 2},
                      {"", 1},             {"French\r\n", 1},  {"Japanese,x\r\n", 1}};
  for (const Row& r : rows) {
    std::ofstream("MERIDA.DEF", std::ios::binary) << r.contents;
    EXPECT_EQ(ReadDisplayLanguage(".", 1), r.language) << r.contents;
  }
  std::filesystem::remove("MERIDA.DEF");
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 1);
  ASSERT_TRUE(WriteDisplayLanguage(".", 2));
  ::chmod("MERIDA.DEF", 0444);
  EXPECT_EQ(WriteDisplayLanguage(".", 1).error, "the file is read-only");
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 2);
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 2);
}

TEST(UserFunctions, FunctionsWithoutParametersAreCalledWithEmptyParentheses) {
  test::RecordingHost host;
  Engine e(host);
  ASSERT_TRUE(e.RegisterFormula("g=2*PI"));
  EXPECT_EQ(e.FunctionListLine(1), "g()=2*PI");
  EXPECT_EQ(Calc(e, "2*g()^2"), "78.9568352087147");
  EXPECT_TRUE(host.errors.empty());
}

// A window handling events inside a long sum may try to change the function table.
class DeletingHost : public test::RecordingHost {
 public:
  Engine* engine = nullptr;
  bool deleted = true, registered = true;
  void checkpoint() override {
    if (engine) {
      deleted = engine->DeleteFunction(1);
      registered = engine->RegisterFormula("z(x)=x");
    }
  }
};

TEST(UserFunctions, FunctionTableIsNotChangedDuringARun) {
  DeletingHost host;
  Engine e(host);
  ASSERT_TRUE(e.RegisterFormula("sq(x)=x*x"));
  ASSERT_TRUE(e.RegisterFormula("s(n)=sgm(sq(k),1,n,k)"));
  host.engine = &e;
  EXPECT_EQ(Calc(e, "s(100)+sq(2)"), "338354");  // long enough for a checkpoint
  EXPECT_FALSE(host.deleted);
  EXPECT_FALSE(host.registered);
  host.engine = nullptr;
  EXPECT_FALSE(e.busy());
  EXPECT_TRUE(e.DeleteFunction(1));
}

// Two programs that loaded the same store save one after the other: neither loses the
// other's additions or deletions.
TEST(StoreMerge, SavesMergeWhatAnotherProgramSavedMeanwhile) {
  struct Row {
    std::vector<std::string> recA, recB;
    int delB;  // 0 = none
    std::string saved;
    int conflict = 0;  // the error B's save meets: B's save is refused, the file is A's
  };
  const std::string base = "f(x)=x+1\r\ng(x)=f(x)*2\r\n";
  const Row rows[] = {
      {{"a(x)=x+3"}, {"b(x)=x+4"}, 0, base + "a(x)=x+3\r\nb(x)=x+4\r\n"},
      {{}, {"b(x)=x+4"}, 1, "g(x)=f(x)*2\r\nb(x)=x+4\r\n"},
      {{"a(x)=x+3"}, {}, 2, "f(x)=x+1\r\na(x)=x+3\r\n"},
      {{"a(x)=x+3"}, {"a(x)=x+3"}, 0, base + "a(x)=x+3\r\n"},
      {{"a(x)=x+3"}, {"a(x)=x+5"}, 0, base + "a(x)=x+3\r\n", 7},
      {{"a(x)=x+3"}, {"b(x)=x+5", "a(x)=x+5"}, 0, base + "a(x)=x+3\r\n", 7},
  };
  for (const Row& r : rows) {
    test::TempDirScope dir;
    std::ofstream("MERIDA.DAT", std::ios::binary) << base;
    test::RecordingHost host;
    Engine a(host), b(host);
    LoadUserFunctions(a, ".");
    LoadUserFunctions(b, ".");
    for (const auto& f : r.recA) ASSERT_TRUE(a.RegisterFormula(f));
    for (const auto& f : r.recB) ASSERT_TRUE(b.RegisterFormula(f));
    if (r.delB) {
      ASSERT_TRUE(b.DeleteFunction(r.delB));
    }
    ASSERT_TRUE(SaveUserFunctions(a, "."));
    host.errors.clear();
    EXPECT_EQ(static_cast<bool>(SaveUserFunctions(b, ".")), r.conflict == 0);
    EXPECT_EQ(host.errors, r.conflict ? std::vector<int>{r.conflict} : std::vector<int>{});
    EXPECT_EQ(ReadFile("MERIDA.DAT"), r.saved);
    if (r.conflict) {
      EXPECT_EQ(b.userFunctionCount(), 2 + static_cast<int>(r.recB.size())) << "B keeps its functions to resolve";
      continue;
    }
    EXPECT_EQ(b.StoreText(), r.saved) << "the later saver holds what it saved";
    // A saves again without changes: B's changes stay.
    ASSERT_TRUE(SaveUserFunctions(a, "."));
    EXPECT_EQ(a.StoreText(), r.saved);
  }
}

// The list (and the store) shows a body as written, whatever was lifted out of it.
TEST(UserFunctions, IntegralsInsideSumsAreListedAsWritten) {
  struct Row {
    const char* formula;
    const char* call;
    const char* answer;  // null: not called (a sum's limits are read as constant texts)
  };
  const Row rows[] = {
      {"h(n)=sgm(integ(x,0,2,10)*k,1,n,k)", "h(2)", "6"},
      {"h(n)=sgm(k,1,integ(x,0,2,2),k)+integ(t,0,n,2)", "h(2)", nullptr},
      {"h(n)=integ(x,0,n,2)+sgm(integ(t,0,1,2)+k,1,2,k)*integ(x,0,1,2)", "h(2)", "4"},
  };
  for (const Row& r : rows) {
    test::RecordingHost host;
    Engine e(host);
    ASSERT_TRUE(e.RegisterFormula(r.formula)) << r.formula;
    EXPECT_EQ(e.FunctionListLine(1), r.formula);
    if (r.answer) {
      EXPECT_EQ(Calc(e, r.call), r.answer) << r.formula;
    }
    Engine loaded(host);
    loaded.LoadStoreText(e.StoreText());
    EXPECT_EQ(loaded.FunctionListLine(1), r.formula);
    EXPECT_TRUE(host.errors.empty()) << r.formula;
  }
}

// A stop button pressed during a run of sums nested through calls ends the whole run.
TEST(UserFunctions, AStopEndsSumsNestedThroughCalls) {
  struct Row {
    const char* formula;
    int stopAfter;
  };
  const Row rows[] = {{"g(32)", 50}, {"g(32)", 1}, {"sgm(g(j),1,32,j)", 50}, {"2*g(20)+1", 500}};
  for (const Row& r : rows) {
    test::StoppingHost host;
    Engine e(host);
    ASSERT_TRUE(e.RegisterFormula("h(n)=sgm(g(k),0,n,k)"));
    ASSERT_TRUE(e.RegisterFormula("g(x)=h(x-1)/1"));
    host.engine = &e;
    host.stopAt = r.stopAfter;
    EXPECT_FALSE(Calc(e, r.formula)) << r.formula;
    // Each level ends at its next poll once the stop is set; nothing starts afresh.
    EXPECT_LT(host.checkpoints, r.stopAfter + 100) << r.formula;
    EXPECT_FALSE(e.busy());
  }
}

}  // namespace
}  // namespace merida

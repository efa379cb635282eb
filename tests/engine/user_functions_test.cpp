// User functions and the files that keep them: Rec, calls, the list, delete, the store text,
// loading and saving it, the settings file; atomic replacement of any file (modes, symbolic
// links, stale and live temporaries, failures, locks).
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "engine/atomic_file.h"
#include "main/calculator.h"
#include "main/settings.h"
#include "test_support.h"

namespace merida {
namespace {

using test::RecordingHost;

// Steps on two engines, A and B ("B:" before a step), in one directory. What a step gives:
//   rec F, calc F    "" when registered, or the answer (input boxes are answered "10")
//   del N            "", or "refused" (as a Rec or Calc that failed without a message)
//   list, count      the Function List's lines joined by "|", or their number
//   load             a new engine loading MERIDA.DAT: the notice about lines it could not load
//   save, text       the reason a save failed ("" when it did not), or the engine's store text
//   write T, file    MERIDA.DAT written, or what it holds
// after the errors shown, each as "error N", all joined by "; ".
class Script {
 public:
  std::string run(const std::string& line) {
    const bool b = line.rfind("B:", 0) == 0;
    const std::string step = line.substr(b ? 2 : 0);
    const std::string cmd = step.substr(0, step.find(' ')), arg = step.substr(std::min(step.size(), cmd.size() + 1));
    std::unique_ptr<Engine>& e = b ? b_ : a_;
    host_.errors.clear();
    host_.answers = {std::string("10")};
    std::string out;
    if (cmd == "rec") out = e->RegisterFormula(arg) ? "+" : "-";
    if (cmd == "calc") out = Calc(*e, arg).value_or("-");
    if (cmd == "del") out = e->DeleteFunction(std::stoi(arg)) ? "" : "refused";
    if (cmd == "count") out = std::to_string(e->userFunctionCount());
    for (int k = 1; cmd == "list" && k <= e->userFunctionCount(); ++k) {
      out += (k > 1 ? "|" : "") + e->FunctionListLine(k);
    }
    if (cmd == "load") out = StoreLoadNotice(LoadUserFunctions(*(e = std::make_unique<Engine>(host_)), "."));
    if (cmd == "save") out = SaveUserFunctions(*e, ".").error;
    if (cmd == "text") out = e->StoreText();
    if (cmd == "write") std::ofstream("MERIDA.DAT", std::ios::binary | std::ios::trunc) << arg;
    if (cmd == "file") out = test::FileText("MERIDA.DAT").value_or("<none>");
    std::string shown;
    for (int code : host_.errors) shown += (shown.empty() ? "error " : "; error ") + std::to_string(code);
    if (out == "-") return shown.empty() ? "refused" : shown;  // a Rec or Calc that failed
    if (out == "+") out = shown.empty() ? "" : "registered";
    return out.empty() ? shown : shown.empty() ? out : shown + "; " + out;
  }

 private:
  RecordingHost host_;
  std::unique_ptr<Engine> a_ = std::make_unique<Engine>(host_), b_ = std::make_unique<Engine>(host_);
};

using Steps = std::vector<std::pair<std::string, std::string>>;

void RunScripts(const std::vector<Steps>& scripts) {
  for (const Steps& steps : scripts) {
    test::TempDirScope dir;
    Script script;
    for (const auto& [step, expected] : steps) EXPECT_EQ(script.run(step), expected) << step.substr(0, 80);
  }
}

TEST(UserFunctions, RegisteringCallingListingAndDeleting) {
  const std::string longName(5000, 'a'), zeros = "1+0." + std::string(kMaxFormulaLength - 4, '0');
  Steps fifty;
  for (int i = 1; i <= 49; ++i) fifty.push_back({"rec x+" + std::to_string(i), ""});
  fifty.insert(fifty.end(), {{"rec x+50", "error 9"}, {"count", "49"}, {"calc sgm(k,1,4,k)+f_49(1)", "60"}});
  RunScripts({
      {{"rec sq(x)=x*x", ""}, {"rec x^2+y", ""}, {"rec h(x)=x+y", "error 3"}, {"rec h(x,y)=x", "error 2"},
       {"rec sq(t)=t", "error 7"}, {"rec f(x,1)=x", "error 1"}, {"rec g(a,b,c,d,e,f,g,h,i,j,k)=a", "error 5"},
       {"rec 2h(x)=x", "error 21"}, {"rec p(x,y)=x+perm(x,y)", ""}, {"rec q(x)=sq(x)+1", ""},
       {"rec r(x)=sq(x,1)", "error 8"}, {"rec F(a)=integ(t^2,0,a,100)", ""}, {"rec k=3", ""},
       {"rec g(x, )=x", "error 21"}, {"rec g(x,)=x", "error 21"}, {"rec g(,x)=x", "error 21"},
       {"rec g( )=1", "error 21"}, {"rec g(x,,y)=x+y", "error 21"}, {"rec g()=1", ""},
       {"list", "sq(x)=x*x|f_1(x,y)=x^2+y|p(x,y)=x+perm(x,y)|q(x)=sq(x)+1|F(a)=integ(t^2,0,a,100)|k()=3|g()=1"},
       {"calc sq(3)+1", "10"}, {"calc f_1(2,3)", "7"}, {"calc p(5,2)", "25"}, {"calc q(4)", "17"},
       {"calc sq(sq(2))", "16"}, {"calc F(3)", "9.00000000000001"}, {"calc sq(0.1+0.2)", "0.09"},
       {"calc 2*k()^2", "18"}, {"calc sq(2,3)", "error 8"},
       // Parameters match the body without regard to case but are substituted exactly: the
       // lower-case x of c(X)=x+1 stays a free variable and is asked for.
       {"rec c(X)=x+1", ""}, {"calc c(1)", "11"}},
      // Automatic names take the smallest free number. A caller registered while g existed does
      // not find it once deleted; a new formula naming g is a syntax error; g redefined after its
      // caller cannot make the calls endless.
      {{"rec x+1", ""}, {"rec x+2", ""}, {"rec x+3", ""}, {"del 1", ""}, {"rec x+4", ""},
       {"list", "f_2(x)=x+2|f_3(x)=x+3|f_1(x)=x+4"}, {"del 0", "refused"}, {"del 4", "refused"},
       {"rec g(x)=x+1", ""}, {"rec f(x)=g(x)*2", ""}, {"calc f(1)", "4"}, {"del 4", ""}, {"calc f(1)", "error 4"},
       {"calc g(1)", "error 22"}, {"rec g(x)=f(x)", ""}, {"calc g(1)", "error 10"}},
      fifty,  // the fiftieth is refused; sums still compile in the slot above a full work slot
      {{"calc 1+" + longName, "error 10"}, {"rec f(x)=x+" + longName, "error 10"},
       {"rec " + longName + "(x)=x", "error 10"}, {"rec f(x)=integ(" + longName + ",0,1,2)", "error 10"},
       {"calc " + zeros, "1"}, {"calc " + zeros + "0", "error 10"}},
      // The list and the store show a body as written, whatever was lifted out of it (a sum's
      // limits are read as constant texts: the second is not called).
      {{"rec h(n)=sgm(integ(x,0,2,10)*k,1,n,k)", ""}, {"calc h(2)", "6"}, {"save", ""}, {"load", ""},
       {"list", "h(n)=sgm(integ(x,0,2,10)*k,1,n,k)"}},
      {{"rec h(n)=sgm(k,1,integ(x,0,2,2),k)+integ(t,0,n,2)", ""}, {"save", ""}, {"load", ""},
       {"list", "h(n)=sgm(k,1,integ(x,0,2,2),k)+integ(t,0,n,2)"}},
      {{"rec h(n)=integ(x,0,n,2)+sgm(integ(t,0,1,2)+k,1,2,k)*integ(x,0,1,2)", ""}, {"calc h(2)", "4"}, {"save", ""},
       {"load", ""}, {"list", "h(n)=integ(x,0,n,2)+sgm(integ(t,0,1,2)+k,1,2,k)*integ(x,0,1,2)"}},
  });
}

// Lines that cannot be registered stay where they were; lines are saved as written.
TEST(Store, LoadChangeSaveAndLoadAgain) {
  const std::string huge = "f(x)=x+" + std::string(10000, 'a');
  std::string sixty, many = "ok(x)=x\r\n";
  for (int i = 1; i <= 60; ++i) sixty += "f" + std::to_string(i) + "(x)=x+" + std::to_string(i) + "\r\n";
  for (int i = 0; i < 100000; ++i) many += "bad(\r\n";
  const std::string big = "a(x)=x\r\n" + std::string(1 << 20, 'b') + "\r\nc(x)=x\r\n";
  const std::string notKept = " cannot be kept, so MERIDA.DAT will not be saved over until it is shortened";
  const std::string notSaved = " this program cannot keep; it is left as it is until it is shortened";
  const std::string kept = "f( x )=x+1\r\ng(x)=+x\r\nn(k)(junk)=k*2\r\np(x@y)=x+y  \r\n";
  RunScripts({
      {{"load", ""}, {"rec f(x,y)=x+perm(x,y)", ""}, {"rec g=2", ""}, {"rec F(a)=integ(t^2,0,a,100)+sgm(k,1,a,k)", ""},
       {"save", ""}, {"file", "f(x@y)=x+perm(x@y)\r\ng()=2\r\nF(a)=integ(t^2@0@a@100)+sgm(k@1@a@k)\r\n"}, {"load", ""},
       {"list", "f(x,y)=x+perm(x,y)|g()=2|F(a)=integ(t^2,0,a,100)+sgm(k,1,a,k)"}, {"calc f(5,2)", "25"},
       {"calc F(3)", "15"}},
      // Only the first line that fails is shown.
      {{"write a(x)=x+1\r\na(y)=y\n\n2b(x)=x\r\nc(x)=x*(2\r\nd(x)=x*3", ""},
       {"load", "error 7; MERIDA.DAT: 3 lines could not be loaded (the first error is shown)"}, {"count", "2"},
       {"save", ""}, {"file", "a(x)=x+1\r\na(y)=y\r\n2b(x)=x\r\nc(x)=x*(2\r\nd(x)=x*3\r\n"}, {"calc d(1)", "3"}},
      {{"write f(x@ )=x\r\ng(@x)=x\r\nh(x@)=x\r\nk( )=1\r\n", ""},
       {"load", "error 21; MERIDA.DAT: 4 lines could not be loaded (the first error is shown)"}, {"count", "0"},
       {"save", ""}, {"file", "f(x@ )=x\r\ng(@x)=x\r\nh(x@)=x\r\nk( )=1\r\n"}},
      {{"write g(x)=nothere(x)*2\r\nk()=(g(1)\r\n", ""}, {"load", "error 23"}, {"count", "1"}, {"save", ""},
       {"file", "g(x)=nothere(x)*2\r\nk()=(g(1)\r\n"}},
      {{"write " + huge + "\r\nok(x)=x\r\n", ""}, {"load", "error 10"}, {"count", "1"}, {"save", ""},
       {"file", huge + "\r\nok(x)=x\r\n"}},
      {{"write " + sixty, ""}, {"load", "error 9; MERIDA.DAT: 11 lines could not be loaded (the first error is shown)"},
       {"count", "49"}, {"save", ""}, {"file", sixty}},
      {{"write a(x)=1+x\r\nbad(\r\nb(x)=2+x\r\n", ""}, {"load", "error 23"}, {"del 1", ""}, {"rec c(x)=3+x", ""},
       {"save", ""}, {"file", "bad(\r\nb(x)=2+x\r\nc(x)=3+x\r\n"}, {"load", "error 23"}, {"calc b(1)+c(1)", "7"}},
      {{"write " + kept + "q(x@y)=x+y\r\n", ""}, {"load", ""}, {"del 5", ""}, {"rec r(x, y)=x*y", ""}, {"save", ""},
       {"file", kept + "r(x@y)=x*y\r\n"}, {"load", ""},  // listed as the header parses
       {"list", "f(x)=x+1|g(x)=x|n(k,(junk)=k*2|p(x,y)=x+y|r(x,y)=x*y"}, {"calc f(1)+p(1,2)+r(2,3)", "11"}},
      // Functions that call each other end with an error, not a crash.
      {{"write h(x)=g(x)\r\ng(x)=h(x)+1\r\nm(x)=sgm(m(k)@1@x@k)\r\n", ""}, {"load", ""}, {"count", "3"},
       {"calc g(1)", "error 10"}, {"calc m(3)", "error 10"}, {"calc sgm(g(k),1,2,k)", "error 10"}},
      // A store that is not one this program wrote (lines too long to hold, or more lines that
      // fail than it keeps) loads what it can, says so in one line, and is never saved over.
      {{"write " + big, ""},
       {"load", "error 10; MERIDA.DAT: 2 lines could not be loaded (the first error is shown); 2 of them" + notKept},
       {"count", "1"}, {"rec new(x)=x", ""}, {"save", "it holds 2 lines" + notSaved}, {"file", big}},
      {{"write " + many, ""},
       {"load", "error 23; MERIDA.DAT: 100000 lines could not be loaded (the first error is shown); 99744 of them" +
                    notKept},
       {"count", "1"}, {"rec new(x)=x", ""}, {"save", "it holds 99744 lines" + notSaved}, {"file", many}},
      // A function deleted and defined again serves the functions that call it, across starts.
      {{"rec f(x)=x+1", ""}, {"save", ""}, {"load", ""}, {"rec g(x)=f(x)*2", ""}, {"save", ""}, {"load", ""},
       {"del 1", ""}, {"save", ""}, {"load", ""}, {"count", "1"}, {"calc g(1)", "error 4"}, {"rec f(x)=x+10", ""},
       {"calc g(1)", "22"}, {"save", ""}, {"file", "g(x)=f(x)*2\r\nf(x)=x+10\r\n"}, {"load", ""}, {"calc g(2)", "24"}},
  });
}

// Two programs that loaded the same store save one after the other: neither loses the other's
// additions or deletions; a function both defined differently refuses the later save.
TEST(Store, SavesMergeWhatAnotherProgramSavedMeanwhile) {
  const std::string base = "f(x)=x+1\r\ng(x)=f(x)*2\r\n";
  const std::pair<std::string, std::string> start[] = {{"write " + base, ""}, {"load", ""}, {"B:load", ""}};
  const std::string ab = "a(x)=x+3\r\nb(x)=x+4\r\n", conflict = "error 7; another program saved a function of the "
                                                                      "same name there";
  const std::vector<Steps> changes = {
      {{"rec a(x)=x+3", ""}, {"B:rec b(x)=x+4", ""}, {"save", ""}, {"B:save", ""}, {"B:text", base + ab}},
      {{"B:rec b(x)=x+4", ""}, {"B:del 1", ""}, {"save", ""}, {"B:save", ""},
       {"B:text", "g(x)=f(x)*2\r\nb(x)=x+4\r\n"}},
      {{"rec a(x)=x+3", ""}, {"B:del 2", ""}, {"save", ""}, {"B:save", ""}, {"B:text", "f(x)=x+1\r\na(x)=x+3\r\n"}},
      {{"rec a(x)=x+3", ""}, {"B:rec a(x)=x+3", ""}, {"save", ""}, {"B:save", ""}, {"B:text", base + "a(x)=x+3\r\n"}},
      {{"rec a(x)=x+3", ""}, {"B:rec a(x)=x+5", ""}, {"save", ""}, {"B:save", conflict}, {"B:count", "3"},
       {"file", base + "a(x)=x+3\r\n"}},
      {{"rec a(x)=x+3", ""}, {"B:rec b(x)=x+5", ""}, {"B:rec a(x)=x+5", ""}, {"save", ""}, {"B:save", conflict},
       {"B:count", "4"}, {"file", base + "a(x)=x+3\r\n"}},
  };
  std::vector<Steps> scripts;
  for (const Steps& c : changes) {
    Steps s(std::begin(start), std::end(start));
    s.insert(s.end(), c.begin(), c.end());
    if (s.back().first == "B:text") {  // A saves again without changes: B's changes stay
      s.insert(s.end(), {{"file", s.back().second}, {"save", ""}, {"text", s.back().second}});
    }
    scripts.push_back(s);
  }
  RunScripts(scripts);
}

// A stop button pressed during a run of sums nested through calls ends the whole run, and a
// window handling events inside a long sum cannot change the function table.
TEST(UserFunctions, RunsAreStoppedAndKeepTheirFunctionTable) {
  for (const auto& [formula, stopAfter] :
       {std::pair{"g(32)", 50}, {"g(32)", 1}, {"sgm(g(j),1,32,j)", 50}, {"2*g(20)+1", 500}}) {
    test::StoppingHost host;
    Engine e(host);
    ASSERT_TRUE(e.RegisterFormula("h(n)=sgm(g(k),0,n,k)") && e.RegisterFormula("g(x)=h(x-1)/1"));
    host.engine = &e;
    host.stopAt = stopAfter;
    EXPECT_FALSE(Calc(e, formula)) << formula;
    // Each level ends at its next poll once the stop is set; nothing starts afresh.
    EXPECT_LT(host.checkpoints, stopAfter + 100) << formula;
    EXPECT_FALSE(e.busy());
  }
  struct DeletingHost : RecordingHost {
    Engine* engine = nullptr;
    bool changed = true;
    void checkpoint() override {
      if (engine) changed = engine->DeleteFunction(1) || engine->RegisterFormula("z(x)=x");
    }
  } host;
  Engine e(host);
  ASSERT_TRUE(e.RegisterFormula("sq(x)=x*x") && e.RegisterFormula("s(n)=sgm(sq(k),1,n,k)"));
  host.engine = &e;
  EXPECT_EQ(Calc(e, "s(100)+sq(2)"), "338354");  // long enough for a checkpoint
  EXPECT_FALSE(host.changed);
  host.engine = nullptr;
  EXPECT_TRUE(e.DeleteFunction(1));
}

// MERIDA.DEF's first line names the language. Files that are not regular files, or cannot be
// read, load nothing and never block; a huge settings file is read no further than its first
// line; a binary store loads what it can; a stale temporary is gone after the next save.
TEST(Store, SettingsAndHostileFiles) {
  test::TempDirScope dir;
  for (auto [contents, language] : {std::pair{"Japanese\r\n", 2}, {"English\r\n", 1}, {"japanese\r\n", 1},
                                    {"Japanese", 2}, {"", 1}, {"French\r\n", 1}, {"Japanese,x\r\n", 1}}) {
    std::ofstream("MERIDA.DEF", std::ios::binary) << contents;
    EXPECT_EQ(ReadDisplayLanguage(".", 1), language) << contents;
  }
  std::filesystem::remove("MERIDA.DEF");
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 1);
  ASSERT_TRUE(WriteDisplayLanguage(".", 2));
  ::chmod("MERIDA.DEF", 0444);
  EXPECT_EQ(WriteDisplayLanguage(".", 1).error, "the file is read-only");
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 2);
  std::filesystem::remove("MERIDA.DEF");
  ASSERT_EQ(::mkfifo("MERIDA.DAT", 0644), 0);
  ASSERT_EQ(::mkfifo("MERIDA.DEF", 0644), 0);
  RecordingHost host;
  Engine e(host);
  EXPECT_EQ(LoadUserFunctions(e, ".").error, "not a regular file");
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 1);
  std::filesystem::remove("MERIDA.DAT");
  std::filesystem::create_symlink("/proc/self/mem", "MERIDA.DAT");
  EXPECT_EQ(StoreLoadNotice(LoadUserFunctions(e, ".")), "cannot read MERIDA.DAT: Input/output error");
  EXPECT_FALSE(SaveUserFunctions(e, ".")) << "a store that cannot be read is not saved over";
  EXPECT_TRUE(std::filesystem::is_symlink("MERIDA.DAT") && host.errors.empty());
  // 2 GB of nothing after the first line, without the disk space: only the line is read.
  std::filesystem::remove("MERIDA.DEF");
  std::ofstream("MERIDA.DEF", std::ios::binary) << "Japanese\r\n";
  std::filesystem::resize_file("MERIDA.DEF", uint64_t{2} << 30);
  EXPECT_EQ(ReadDisplayLanguage(".", 1), 2);
  for (const char* name : {"MERIDA.DEF", "MERIDA.DAT"}) std::filesystem::remove(name);
  std::string junk;
  for (int i = 0; i < 4096; ++i) junk += static_cast<char>((i * 7919) % 256);
  std::ofstream("MERIDA.DAT", std::ios::binary) << junk;
  std::ofstream("MERIDA.DAT.merida-tmp-abc123") << "half written";
  Engine binary(host);
  LoadUserFunctions(binary, ".");
  for (int k = 1; k <= binary.userFunctionCount(); ++k) EXPECT_FALSE(binary.FunctionListLine(k).empty());
  ASSERT_TRUE(SaveUserFunctions(binary, "."));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), std::filesystem::directory_iterator()), 1);
}

class AtomicFileTest : public test::TempDirTest {
 protected:
  void TearDown() override {  // nothing ever leaves a temporary behind
    for (const auto& e : std::filesystem::recursive_directory_iterator(".")) {
      EXPECT_EQ(e.path().filename().string().find(".merida-tmp-"), std::string::npos) << e.path();
    }
    TempDirTest::TearDown();
  }
};

mode_t ModeOf(const char* path) {
  struct stat st {};
  return ::stat(path, &st) == 0 ? (st.st_mode & 07777) : 0;
}

TEST_F(AtomicFileTest, NewFilesFollowTheUmaskReplacedFilesKeepTheirMode) {
  const std::tuple<mode_t, int, mode_t> rows[] = {  // umask, the old file's mode (-1: none), the new mode
      {022, -1, 0644},   {077, -1, 0600},   {002, -1, 0664},   {0, -1, 0666},
      {022, 0640, 0640}, {077, 0664, 0664}, {022, 0600, 0600}, {0, 0200, 0200}};
  for (const auto& [umask, existing, expected] : rows) {
    SCOPED_TRACE(testing::Message() << std::oct << "umask " << umask << " existing " << existing);
    std::filesystem::remove("MERIDA.DAT");
    if (existing >= 0) {
      std::ofstream("MERIDA.DAT") << "old\r\n";
      ASSERT_EQ(::chmod("MERIDA.DAT", static_cast<mode_t>(existing)), 0);
    }
    mode_t previous = ::umask(umask);
    FileResult written = WriteFileAtomically("MERIDA.DAT", "new\r\n");
    ::umask(previous);
    ASSERT_TRUE(written) << written.error;
    EXPECT_EQ(std::tuple(ModeOf("MERIDA.DAT"), test::FileText("MERIDA.DAT")), std::tuple(expected, "new\r\n"));
  }
}

// Links are followed and kept; a refused or failed save says why and changes nothing, neither
// the target nor what a link names.
TEST_F(AtomicFileTest, LinksAreFollowedAndRefusalsChangeNothing) {
  std::filesystem::create_directory("data");
  for (const char* name : {"data/store.dat", "data/orbita.orb", "readonly"}) std::ofstream(name) << "old";
  ::chmod("data/store.dat", 0640);
  ::chmod("readonly", 0444);
  ::mkfifo("fifo", 0644);
  for (const auto& [target, link] : {std::pair{"data/store.dat", "MERIDA.DAT"}, {"data/orbita.orb", "link2"},
                                     {"link2", "ORBITA.ORB"}, {"data/new.def", "MERIDA.DEF"}, {"/dev/null", "null"},
                                     {"loop", "loop"}, {"readonly", "to-readonly"}}) {
    std::filesystem::create_symlink(target, link);
  }
  const std::tuple<const char*, const char*, const char*> rows[] = {  // path, error, the file it names
      {"MERIDA.DAT", "", "data/store.dat"}, {"ORBITA.ORB", "", "data/orbita.orb"},  // through a second link
      {"MERIDA.DEF", "", "data/new.def"},   {"missing/MERIDA.DAT", "No such file or directory", ""},
      {"data", "Is a directory", ""},       {"fifo", "not a regular file", ""},
      {"null", "not a regular file", ""},  // never a device, even when root may write it
      {"loop", "Too many levels of symbolic links", ""}, {"to-readonly", "the file is read-only", "readonly"},
      {"readonly", "the file is read-only", "readonly"},  // even to root, as the mode says
  };
  for (const auto& [path, error, real] : rows) {
    EXPECT_EQ(WriteFileAtomically(path, "new").error, error) << path;
    EXPECT_TRUE(!*real || test::FileText(real) == std::string(*error ? "old" : "new")) << path;
  }
  EXPECT_EQ(std::tuple(ModeOf("data/store.dat"), ModeOf("readonly"), std::filesystem::read_symlink("ORBITA.ORB")),
            std::tuple(0640u, 0444u, std::filesystem::path("link2")));
  EXPECT_TRUE(std::filesystem::is_fifo("fifo") && std::filesystem::is_character_file("/dev/null"));
}

// The kernel's rule for links in a sticky, world-writable directory such as /tmp: followed
// when the link is the writer's own or the directory owner's, refused when another user
// planted it. Changing owners needs root.
TEST_F(AtomicFileTest, LinksPlantedByAnotherUserInAStickyDirectoryAreNotFollowed) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root to give a link to another user";
  constexpr uid_t kOther = 65534;
  const std::tuple<uid_t, uid_t, mode_t, bool> rows[] = {  // directory and link owner, mode, followed
      {0, kOther, 01777, false},      // planted by another user
      {0, 0, 01777, true},            // the writer's own
      {kOther, kOther, 01777, true},  // the directory owner's
      {0, kOther, 0777, true},        // not sticky: anyone could replace the file anyway
  };
  for (const auto& [dirOwner, linkOwner, dirMode, followed] : rows) {
    SCOPED_TRACE(testing::Message() << "dir " << dirOwner << " link " << linkOwner << std::oct << " " << dirMode);
    std::filesystem::remove_all("shared");
    std::filesystem::create_directory("shared");
    ASSERT_EQ(::chmod("shared", dirMode), 0);
    ASSERT_EQ(::chown("shared", dirOwner, 0), 0);
    std::filesystem::create_symlink(std::filesystem::absolute("victim"), "shared/out.wav");
    ASSERT_EQ(::lchown("shared/out.wav", linkOwner, 0), 0);
    std::ofstream("victim") << "precious";
    FileResult w = WriteFileAtomically("shared/out.wav", "new");
    EXPECT_EQ(static_cast<bool>(w), followed) << w.error;
    EXPECT_EQ(std::tuple(test::FileText("victim"), std::filesystem::is_symlink("shared/out.wav")),
              std::tuple(followed ? "new" : "precious", true));
  }
}

// Only temporaries whose writer is gone are removed; a lock follows the file it locks across
// its replacement.
TEST_F(AtomicFileTest, StaleTemporariesAndLocks) {
  const char *dead = "MERIDA.DAT.merida-tmp-dead01", *live = "MERIDA.DAT.merida-tmp-live01";
  for (const char* name : {dead, live, "notes.txt"}) std::ofstream(name) << "some";
  int fd = ::open(live, O_RDONLY);  // a running writer holds its temporary locked
  ASSERT_EQ(::flock(fd, LOCK_EX), 0);
  RemoveStaleTemporaries(".");
  EXPECT_TRUE(!std::filesystem::exists(dead) && std::filesystem::exists(live) && std::filesystem::exists("notes.txt"));
  ::close(fd);  // the writer ended without renaming: now it is stale
  RemoveStaleTemporaries(".");
  EXPECT_FALSE(std::filesystem::exists(live));
  {
    FileLock lock("MERIDA.DAT");  // creates the file it locks
    ASSERT_TRUE(lock.held());
    EXPECT_EQ(test::FileText("MERIDA.DAT"), "");
    ASSERT_TRUE(WriteFileAtomically("MERIDA.DAT", "new"));
  }
  FileLock again("MERIDA.DAT");  // on the new file, and free
  EXPECT_TRUE(again.held());
  fd = ::open("MERIDA.DAT", O_RDONLY);
  EXPECT_NE(::flock(fd, LOCK_EX | LOCK_NB), 0);  // held by `again`
  ::close(fd);
  EXPECT_FALSE(FileLock("missing/MERIDA.DAT").held());
}

}  // namespace
}  // namespace merida

// Atomic replacement: modes, symbolic links, stale and live temporaries, failures.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "engine/atomic_file.h"
#include "test_support.h"

namespace merida {
namespace {

class AtomicFileTest : public test::TempDirTest {};

mode_t ModeOf(const char* path) {
  struct stat st {};
  return ::stat(path, &st) == 0 ? (st.st_mode & 07777) : 0;
}

std::string Contents(const char* path) { return test::FileText(path).value_or("<unreadable>"); }

std::vector<std::string> Temporaries() {
  std::vector<std::string> names;
  for (const auto& e : std::filesystem::recursive_directory_iterator(".")) {
    if (e.path().filename().string().find(".merida-tmp-") != std::string::npos) names.push_back(e.path());
  }
  return names;
}

TEST_F(AtomicFileTest, NewFilesFollowTheUmaskReplacedFilesKeepTheirMode) {
  struct Row {
    mode_t umask;
    int existing;  // the old file's mode, -1 when there is none
    mode_t expected;
  };
  const Row rows[] = {
      {022, -1, 0644}, {077, -1, 0600}, {002, -1, 0664}, {0, -1, 0666},
      {022, 0640, 0640}, {077, 0664, 0664}, {022, 0600, 0600}, {0, 0200, 0200},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(testing::Message() << std::oct << "umask " << r.umask << " existing " << r.existing);
    std::filesystem::remove("MERIDA.DAT");
    if (r.existing >= 0) {
      std::ofstream("MERIDA.DAT") << "old\r\n";
      ASSERT_EQ(::chmod("MERIDA.DAT", static_cast<mode_t>(r.existing)), 0);
    }
    mode_t previous = ::umask(r.umask);
    FileResult written = WriteFileAtomically("MERIDA.DAT", "new\r\n");
    ::umask(previous);
    ASSERT_TRUE(written) << written.error;
    EXPECT_EQ(ModeOf("MERIDA.DAT"), r.expected);
    EXPECT_EQ(Contents("MERIDA.DAT"), "new\r\n");
    EXPECT_TRUE(Temporaries().empty());
  }
}

TEST_F(AtomicFileTest, SymbolicLinksAreFollowedAndKept) {
  struct Row {
    const char* link;
    const char* target;  // as written in the link
    const char* real;    // the file it names
    bool targetExists;
  };
  const Row rows[] = {
      {"MERIDA.DAT", "data/store.dat", "data/store.dat", true},
      {"ORBITA.ORB", "link2", "data/orbita.orb", true},  // through a second link
      {"MERIDA.DEF", "data/new.def", "data/new.def", false},
  };
  std::filesystem::create_directory("data");
  std::filesystem::create_symlink("data/orbita.orb", "link2");
  for (const Row& r : rows) {
    SCOPED_TRACE(r.link);
    if (r.targetExists) {
      std::ofstream(r.real) << "old";
      ASSERT_EQ(::chmod(r.real, 0640), 0);
    }
    std::filesystem::create_symlink(r.target, r.link);
    ASSERT_TRUE(WriteFileAtomically(r.link, "new"));
    EXPECT_TRUE(std::filesystem::is_symlink(r.link));
    EXPECT_EQ(std::filesystem::read_symlink(r.link), r.target);
    EXPECT_EQ(Contents(r.real), "new");
    if (r.targetExists) {
      EXPECT_EQ(ModeOf(r.real), 0640u);
    }
  }
  EXPECT_TRUE(Temporaries().empty());
}

TEST_F(AtomicFileTest, OnlyTemporariesWhoseWriterIsGoneAreRemoved) {
  std::ofstream("MERIDA.DAT.merida-tmp-dead01") << "half";
  std::ofstream("ORBITA.ORB.merida-tmp-dead02") << "";
  std::ofstream("MERIDA.DAT.merida-tmp-live01") << "being written";
  std::ofstream("notes.txt") << "keep";
  // A running writer holds its temporary locked, as WriteFileAtomically does.
  int live = ::open("MERIDA.DAT.merida-tmp-live01", O_RDONLY);
  ASSERT_GE(live, 0);
  ASSERT_EQ(::flock(live, LOCK_EX), 0);
  RemoveStaleTemporaries(".");
  EXPECT_EQ(Temporaries(), std::vector<std::string>{"./MERIDA.DAT.merida-tmp-live01"});
  EXPECT_TRUE(std::filesystem::exists("notes.txt"));
  ::close(live);  // the writer ended without renaming: now it is stale
  RemoveStaleTemporaries(".");
  EXPECT_TRUE(Temporaries().empty());
}

// A refused or failed save says why and changes nothing: not the target, not what a link
// names, and it leaves no temporary.
TEST_F(AtomicFileTest, RefusedAndFailedSavesChangeNothing) {
  struct Row {
    const char* path;
    const char* reason;
  };
  std::ofstream("kept") << "old";
  std::ofstream("readonly") << "old";
  ::chmod("readonly", 0444);
  std::filesystem::create_directory("dir");
  ::mkfifo("fifo", 0644);
  std::filesystem::create_symlink("/dev/null", "null");
  std::filesystem::create_symlink("loop", "loop");
  std::filesystem::create_symlink("readonly", "to-readonly");
  const Row rows[] = {
      {"missing/MERIDA.DAT", "No such file or directory"},
      {"dir", "Is a directory"},
      {"fifo", "not a regular file"},
      {"null", "not a regular file"},  // never a device, even when root may write it
      {"loop", "Too many levels of symbolic links"},
      {"readonly", "the file is read-only"},  // even to root, as the mode says
      {"to-readonly", "the file is read-only"},
  };
  for (const Row& r : rows) {
    FileResult w = WriteFileAtomically(r.path, "new");
    EXPECT_EQ(w.error, r.reason) << r.path;
  }
  EXPECT_EQ(Contents("readonly"), "old");
  EXPECT_EQ(ModeOf("readonly"), 0444u);
  EXPECT_TRUE(std::filesystem::is_fifo("fifo"));
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_TRUE(Temporaries().empty());
}

// The kernel's rule for links in a sticky, world-writable directory such as /tmp: followed
// when the link is the writer's own or the directory owner's, refused when another user
// planted it. Changing owners needs root.
TEST_F(AtomicFileTest, LinksPlantedByAnotherUserInAStickyDirectoryAreNotFollowed) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root to give a link to another user";
  constexpr uid_t kOther = 65534;
  struct Row {
    uid_t dirOwner, linkOwner;
    mode_t dirMode;
    bool followed;
  };
  const Row rows[] = {
      {0, kOther, 01777, false},  // planted by another user
      {0, 0, 01777, true},        // the writer's own
      {kOther, kOther, 01777, true},  // the directory owner's
      {0, kOther, 0777, true},    // not sticky: anyone could replace the file anyway
  };
  std::ofstream("victim") << "precious";
  for (const Row& r : rows) {
    SCOPED_TRACE(testing::Message() << "dir " << r.dirOwner << " link " << r.linkOwner << std::oct << " mode " << r.dirMode);
    std::filesystem::remove_all("shared");
    std::filesystem::create_directory("shared");
    ASSERT_EQ(::chmod("shared", r.dirMode), 0);
    ASSERT_EQ(::chown("shared", r.dirOwner, 0), 0);
    std::filesystem::create_symlink(std::filesystem::absolute("victim"), "shared/out.wav");
    ASSERT_EQ(::lchown("shared/out.wav", r.linkOwner, 0), 0);
    std::ofstream("victim") << "precious";
    FileResult w = WriteFileAtomically("shared/out.wav", "new");
    EXPECT_EQ(static_cast<bool>(w), r.followed) << w.error;
    EXPECT_EQ(Contents("victim"), r.followed ? "new" : "precious");
    EXPECT_TRUE(std::filesystem::is_symlink("shared/out.wav"));
  }
  EXPECT_TRUE(Temporaries().empty());
}

TEST_F(AtomicFileTest, LockFollowsTheFileAcrossReplacement) {
  {
    FileLock lock("MERIDA.DAT");  // creates the file it locks
    ASSERT_TRUE(lock.held());
    EXPECT_EQ(Contents("MERIDA.DAT"), "");
    ASSERT_TRUE(WriteFileAtomically("MERIDA.DAT", "new"));
  }
  // The lock above was on the replaced file: a new lock must be on the new one, and free.
  FileLock again("MERIDA.DAT");
  EXPECT_TRUE(again.held());
  int fd = ::open("MERIDA.DAT", O_RDONLY);
  EXPECT_NE(::flock(fd, LOCK_EX | LOCK_NB), 0);  // held by `again`
  ::close(fd);
  EXPECT_FALSE(FileLock("missing/MERIDA.DAT").held());
}

}  // namespace
}  // namespace merida

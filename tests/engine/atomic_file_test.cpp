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

std::string Contents(const char* path) { return ReadWholeFile(path).value_or("<unreadable>"); }

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
      {022, 0640, 0640}, {077, 0664, 0664}, {022, 0600, 0600}, {0, 0444, 0444},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(testing::Message() << std::oct << "umask " << r.umask << " existing " << r.existing);
    std::filesystem::remove("MERIDA.DAT");
    if (r.existing >= 0) {
      std::ofstream("MERIDA.DAT") << "old\r\n";
      ASSERT_EQ(::chmod("MERIDA.DAT", static_cast<mode_t>(r.existing)), 0);
    }
    mode_t previous = ::umask(r.umask);
    bool ok = WriteFileAtomically("MERIDA.DAT", "new\r\n");
    ::umask(previous);
    ASSERT_TRUE(ok);
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

TEST_F(AtomicFileTest, AFailedWriteLeavesTheOldFileAndNoTemporary) {
  std::ofstream("MERIDA.DAT") << "old";
  EXPECT_FALSE(WriteFileAtomically("missing/MERIDA.DAT", "new"));
  std::filesystem::create_directory("MERIDA.DIR");
  EXPECT_FALSE(WriteFileAtomically("MERIDA.DIR", "new"));  // rename over a directory fails
  EXPECT_EQ(Contents("MERIDA.DAT"), "old");
  EXPECT_TRUE(std::filesystem::is_directory("MERIDA.DIR"));
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

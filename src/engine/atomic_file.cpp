// Atomic file replacement with POSIX calls (rename is atomic within a directory).
#include "engine/atomic_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <sstream>

namespace merida {
namespace {

constexpr const char* kTempMarker = ".merida-tmp-";

bool WriteAll(int fd, std::string_view data) {
  while (!data.empty()) {
    ssize_t w = ::write(fd, data.data(), data.size());
    if (w < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data.remove_prefix(static_cast<size_t>(w));
  }
  return true;
}

int Flock(int fd, int operation) {
  int r;
  do {
    r = ::flock(fd, operation);
  } while (r != 0 && errno == EINTR);
  return r;
}

// The file a path finally names: symbolic links followed, even to a target not yet there.
std::filesystem::path FinalTarget(std::filesystem::path path) {
  std::error_code ec;
  for (int hops = 0; hops < 40 && std::filesystem::is_symlink(path, ec); ++hops) {
    std::filesystem::path link = std::filesystem::read_symlink(path, ec);
    if (ec) break;
    path = link.is_absolute() ? link : path.parent_path() / link;
  }
  return path;
}

std::string RandomSuffix() {
  static const char kChars[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  uint64_t x = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
               (static_cast<uint64_t>(::getpid()) << 32) ^ reinterpret_cast<uintptr_t>(&x);
  std::string s;
  for (int i = 0; i < 10; ++i) {
    x ^= x << 13;
    x ^= x >> 7;
    x ^= x << 17;
    s += kChars[x % (sizeof kChars - 1)];
  }
  return s;
}

// The directory's own lock orders creating temporaries (shared) against removing stale ones
// (exclusive): a temporary is never seen between its creation and its writer's lock on it.
class DirectoryLock {
 public:
  DirectoryLock(const std::filesystem::path& dir, int operation)
      : fd_(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (fd_ >= 0) Flock(fd_, operation);
  }
  ~DirectoryLock() {
    if (fd_ >= 0) ::close(fd_);
  }
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;
  int fd() const { return fd_; }
  void unlock() {
    if (fd_ >= 0) Flock(fd_, LOCK_UN);
  }

 private:
  int fd_;
};

}  // namespace

bool WriteFileAtomically(const std::filesystem::path& path, std::string_view contents) {
  std::filesystem::path target = FinalTarget(path);
  std::filesystem::path dir = target.parent_path();
  if (dir.empty()) dir = ".";
  struct stat old {};
  bool replacing = ::stat(target.c_str(), &old) == 0;

  DirectoryLock dirLock(dir, LOCK_SH);
  std::string tmp;
  int fd = -1;
  for (int attempt = 0; attempt < 16 && fd < 0; ++attempt) {
    tmp = (dir / (target.filename().string() + kTempMarker + RandomSuffix())).string();
    // 0666 here lets the umask decide a new file's mode, as for any file a program creates.
    fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST) break;
  }
  if (fd < 0) return false;
  Flock(fd, LOCK_EX);  // held until the rename is done: the file is not stale
  dirLock.unlock();

  bool ok = !replacing || ::fchmod(fd, old.st_mode & 07777) == 0;
  ok = ok && WriteAll(fd, contents) && ::fsync(fd) == 0;
  if (ok) ok = ::rename(tmp.c_str(), target.c_str()) == 0;
  if (!ok) ::unlink(tmp.c_str());
  ::close(fd);
  if (!ok) return false;
  if (dirLock.fd() >= 0) ::fsync(dirLock.fd());
  return true;
}

void RemoveStaleTemporaries(const std::filesystem::path& dir) {
  DirectoryLock dirLock(dir, LOCK_EX);
  std::error_code ec;
  for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
    std::filesystem::path p = it->path();
    if (p.filename().string().find(kTempMarker) == std::string::npos) continue;
    int fd = ::open(p.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) continue;
    struct stat held {}, named {};
    // Lockable means its writer is gone; the name must still be that file, not a newer one.
    if (Flock(fd, LOCK_EX | LOCK_NB) == 0 && ::fstat(fd, &held) == 0 && S_ISREG(held.st_mode) &&
        ::lstat(p.c_str(), &named) == 0 && named.st_ino == held.st_ino && named.st_dev == held.st_dev) {
      ::unlink(p.c_str());
    }
    ::close(fd);
  }
}

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream out;
  out << in.rdbuf();
  if (in.bad()) return std::nullopt;
  return out.str();
}

FileLock::FileLock(const std::filesystem::path& path) {
  // A save renames a new file over the old one, so the file locked may stop being the one
  // the path names before the lock is granted: then lock the new one.
  for (int attempt = 0; attempt < 100; ++attempt) {
    int fd = ::open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) return;
    struct stat held {}, named {};
    if (Flock(fd, LOCK_EX) == 0 && ::fstat(fd, &held) == 0 && ::stat(path.c_str(), &named) == 0 &&
        named.st_ino == held.st_ino && named.st_dev == held.st_dev) {
      fd_ = fd;
      return;
    }
    ::close(fd);
  }
}

FileLock::~FileLock() {
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace merida

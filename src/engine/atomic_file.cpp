// Atomic file replacement with POSIX calls (rename is atomic within a directory).
#include "engine/atomic_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

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
    if (w == 0) {
      errno = EIO;
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

std::string Reason(int err) { return std::strerror(err); }

// The kernel's rule for protected symlinks: in a sticky, world-writable directory a link is
// followed only when its owner is the follower or the directory's owner.
bool PlantedLink(const std::filesystem::path& link, const struct stat& linkStat) {
  std::filesystem::path dir = link.parent_path();
  if (dir.empty()) dir = ".";
  struct stat d {};
  if (::stat(dir.c_str(), &d) != 0) return true;
  const bool shared = (d.st_mode & S_ISVTX) && (d.st_mode & S_IWOTH);
  return shared && linkStat.st_uid != ::geteuid() && linkStat.st_uid != d.st_uid;
}

// Write permission as its mode gives it: root, whom the kernel lets write anything, is held
// to the mode too, as an editor holds it, so that a file made read-only stays as it is.
bool WriteProtected(const std::filesystem::path& path, const struct stat& st) {
  if (::geteuid() == 0) return (st.st_mode & 0222) == 0;
  return ::access(path.c_str(), W_OK) != 0 && (errno == EACCES || errno == EPERM || errno == EROFS);
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

FileResult SaveTarget(const std::filesystem::path& path, std::filesystem::path& target) {
  target = path;
  for (int hops = 0;; ++hops) {
    struct stat st {};
    if (::lstat(target.c_str(), &st) != 0) {
      if (errno == ENOENT) return {};  // a new file
      return {Reason(errno)};
    }
    if (!S_ISLNK(st.st_mode)) {
      if (!S_ISREG(st.st_mode)) return {S_ISDIR(st.st_mode) ? Reason(EISDIR) : "not a regular file"};
      if (WriteProtected(target, st)) return {"the file is read-only"};
      return {};
    }
    if (hops == 40) return {Reason(ELOOP)};
    if (PlantedLink(target, st)) {
      return {"a symbolic link another user owns in a shared directory (not followed)"};
    }
    std::error_code ec;
    std::filesystem::path link = std::filesystem::read_symlink(target, ec);
    if (ec) return {ec.message()};
    target = link.is_absolute() ? link : target.parent_path() / link;
  }
}

FileResult WriteFileAtomically(const std::filesystem::path& path, std::string_view contents) {
  std::filesystem::path target;
  if (FileResult refused = SaveTarget(path, target); !refused) return refused;
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
  if (fd < 0) return {Reason(errno)};
  Flock(fd, LOCK_EX);  // held until the rename is done: the file is not stale
  dirLock.unlock();

  int err = 0;
  auto step = [&](bool ok) {
    if (!ok && !err) err = errno ? errno : EIO;
    return ok;
  };
  errno = 0;
  bool ok = (!replacing || step(::fchmod(fd, old.st_mode & 07777) == 0)) && step(WriteAll(fd, contents)) &&
            step(::fsync(fd) == 0) && step(::rename(tmp.c_str(), target.c_str()) == 0);
  if (!ok) ::unlink(tmp.c_str());
  ::close(fd);
  if (!ok) return {Reason(err)};
  if (dirLock.fd() >= 0) ::fsync(dirLock.fd());
  return {};
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

FileLock::FileLock(const std::filesystem::path& target, bool create) {
  // A save renames a new file over the old one, so the file locked may stop being the one
  // the path names before the lock is granted: then lock the new one.
  for (int attempt = 0; attempt < 100; ++attempt) {
    int fd = ::open(target.c_str(), O_RDONLY | (create ? O_CREAT : 0) | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
    if (fd < 0) return;
    struct stat held {}, named {};
    if (Flock(fd, LOCK_EX) == 0 && ::fstat(fd, &held) == 0 && ::stat(target.c_str(), &named) == 0 &&
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

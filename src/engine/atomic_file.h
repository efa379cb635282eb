// Replacing a file so that a crash leaves the old or the new contents, whole, and locking a
// file for a read-modify-write shared with other running programs.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace merida {

// Why a save was refused or failed, for a message ("Permission denied"); empty when it worked.
struct FileResult {
  std::string error;
  explicit operator bool() const { return error.empty(); }
};

// The file a save to `path` replaces: symbolic links followed only where the kernel would
// follow them (never one that another user owns in a sticky, world-writable directory). A
// target that exists must be a regular file the user may write, its mode saying so even to
// root; otherwise the save is refused with the reason.
FileResult SaveTarget(const std::filesystem::path& path, std::filesystem::path& target);

// Writes a temporary file beside the target SaveTarget finds, syncs it, renames it over the
// target, syncs the directory. A replaced file keeps its mode; a new one gets 0666 less the
// umask. A refused or failed save changes nothing.
FileResult WriteFileAtomically(const std::filesystem::path& path, std::string_view contents);

// Removes the temporary files that killed writes left in `dir`. A temporary that a running
// program is still writing is locked by it and left alone.
void RemoveStaleTemporaries(const std::filesystem::path& dir);

// An exclusive advisory lock (flock) on the file `target` names (a SaveTarget: no link), held
// for the object's life, so that programs sharing the file take turns at reading, changing and
// rewriting it. Waits for the lock; creates the file empty when it does not exist and `create`
// is set. held() is false when the file cannot be opened or created; the caller then goes on
// without the lock.
class FileLock {
 public:
  explicit FileLock(const std::filesystem::path& target, bool create = true);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  bool held() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

}  // namespace merida

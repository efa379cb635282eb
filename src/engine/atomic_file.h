// Replacing a file so that a crash leaves the old or the new contents, whole, and locking a
// file for a read-modify-write shared with other running programs.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace merida {

// Writes a temporary file beside `path`, syncs it, renames it over `path`, syncs the directory.
// A replaced file keeps its mode; a new one gets 0666 less the umask. A symbolic link is
// followed: its target is replaced and the link stays.
bool WriteFileAtomically(const std::filesystem::path& path, std::string_view contents);

// Removes the temporary files that killed writes left in `dir`. A temporary that a running
// program is still writing is locked by it and left alone.
void RemoveStaleTemporaries(const std::filesystem::path& dir);

// The whole file, or nullopt when it cannot be read.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path);

// An exclusive advisory lock (flock) on the file `path` names, held for the object's life, so
// that programs sharing the file take turns at reading, changing and rewriting it. Waits for
// the lock; creates the file empty when it does not exist. held() is false when the file
// cannot be opened or created; the caller then goes on without the lock.
class FileLock {
 public:
  explicit FileLock(const std::filesystem::path& path);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  bool held() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

}  // namespace merida

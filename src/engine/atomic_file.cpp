// Atomic file replacement with POSIX calls (rename is atomic within a directory).
#include "engine/atomic_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
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

}  // namespace

bool WriteFileAtomically(const std::filesystem::path& path, std::string_view contents) {
  std::filesystem::path dir = path.parent_path();
  if (dir.empty()) dir = ".";
  std::string tmpl = (dir / (path.filename().string() + kTempMarker + "XXXXXX")).string();
  int fd = ::mkstemp(tmpl.data());
  if (fd < 0) return false;
  bool ok = WriteAll(fd, contents) && ::fsync(fd) == 0;
  ok = (::close(fd) == 0) && ok;
  if (ok) ok = ::rename(tmpl.c_str(), path.c_str()) == 0;
  if (!ok) {
    ::unlink(tmpl.c_str());
    return false;
  }
  int dfd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY);
  if (dfd >= 0) {
    ::fsync(dfd);
    ::close(dfd);
  }
  return true;
}

void RemoveStaleTemporaries(const std::filesystem::path& dir) {
  std::error_code ec;
  for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
    std::string name = it->path().filename().string();
    if (name.find(kTempMarker) != std::string::npos && it->is_regular_file(ec)) {
      std::filesystem::remove(it->path(), ec);
    }
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

}  // namespace merida

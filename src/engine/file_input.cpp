// POSIX reads: open without blocking, refuse what is not a regular file, read in 64 KiB pieces.
#include "engine/file_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace merida {
namespace {

constexpr size_t kChunk = 64 * 1024;

}  // namespace

ByteInput::ByteInput(std::string_view bytes) : data_(bytes.data()), end_(bytes.size()), offset_(bytes.size()) {}

ByteInput::ByteInput(int fd) : fd_(fd), buffer_(kChunk), data_(buffer_.data()) {}

ByteInput::ByteInput(ByteInput&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)),
      buffer_(std::move(other.buffer_)),
      data_(fd_ >= 0 ? buffer_.data() : other.data_),
      pos_(other.pos_),
      end_(other.end_),
      offset_(other.offset_),
      stop_(std::move(other.stop_)),
      stopped_(other.stopped_),
      error_(std::move(other.error_)) {}

ByteInput::~ByteInput() {
  if (fd_ >= 0) ::close(fd_);
}

std::optional<ByteInput> ByteInput::Open(const std::filesystem::path& path, std::string& error, int* code) {
  auto refuse = [&](int err, const char* reason) {
    error = reason ? reason : std::strerror(err);
    if (code) *code = err;
    return std::nullopt;
  };
  // Non-blocking, so that opening a FIFO returns at once instead of waiting for a writer.
  int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return refuse(errno, nullptr);
  struct stat st {};
  if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(fd);
    return S_ISDIR(st.st_mode) ? refuse(EISDIR, nullptr) : refuse(EINVAL, "not a regular file");
  }
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  return ByteInput(fd);
}

void ByteInput::refill() {
  pos_ = end_ = 0;
  if (fd_ < 0 || stopped_ || !error_.empty()) return;
  if (stop_.stop_requested()) {
    stopped_ = true;
    return;
  }
  ssize_t r;
  do {
    r = ::read(fd_, buffer_.data(), buffer_.size());
  } while (r < 0 && errno == EINTR);
  if (r < 0) {
    error_ = std::strerror(errno);
    return;
  }
  end_ = static_cast<size_t>(r);
  offset_ += end_;
}

size_t ByteInput::read(char* out, size_t n) {
  size_t done = 0;
  while (done < n) {
    std::string_view at = buffered();
    if (at.empty()) break;
    const size_t k = std::min(at.size(), n - done);
    std::memcpy(out + done, at.data(), k);
    consume(k);
    done += k;
  }
  return done;
}

std::optional<std::string_view> NextLine(ByteInput& in, std::string& scratch, size_t maxLength, bool& tooLong) {
  tooLong = false;
  scratch.clear();
  bool any = false;
  for (;;) {
    std::string_view at = in.buffered();
    if (at.empty()) break;
    any = true;
    const size_t nl = at.find('\n');
    const size_t take = nl == std::string_view::npos ? at.size() : nl;
    if (!tooLong && scratch.size() + take <= maxLength + 1) {
      scratch.append(at.data(), take);  // one byte over: room for the CR before the LF
    } else {
      tooLong = true;
    }
    in.consume(nl == std::string_view::npos ? take : take + 1);
    if (nl != std::string_view::npos) break;
  }
  if (!any) return std::nullopt;
  if (!scratch.empty() && scratch.back() == '\r') scratch.pop_back();
  if (scratch.size() > maxLength) tooLong = true;
  if (tooLong) {
    scratch.clear();
    return std::nullopt;
  }
  return std::string_view(scratch);
}

SmallFile ReadSmallFile(const std::filesystem::path& path, size_t maxBytes) {
  SmallFile f;
  int code = 0;
  std::optional<ByteInput> in = ByteInput::Open(path, f.error, &code);
  if (!in) {
    f.missing = code == ENOENT;
    if (f.missing) f.error.clear();
    return f;
  }
  f.text.resize(maxBytes);
  f.text.resize(in->read(f.text.data(), maxBytes));
  f.error = in->error();
  return f;
}

}  // namespace merida

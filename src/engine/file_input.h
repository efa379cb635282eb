// Reading files that come from anywhere: regular files only, never blocking on a FIFO, read in
// bounded pieces, an I/O error reported as the reason a read was refused, never thrown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace merida {

class ByteInput {
 public:
  // Bytes already in memory (tests, fuzzing).
  explicit ByteInput(std::string_view bytes);
  ~ByteInput();
  ByteInput(ByteInput&& other) noexcept;
  ByteInput& operator=(ByteInput&&) = delete;
  ByteInput(const ByteInput&) = delete;
  ByteInput& operator=(const ByteInput&) = delete;

  // Opens `path` for reading. nullopt, with the reason in `error` (and its errno in `code`),
  // when it cannot be opened or is not a regular file (a directory: EISDIR; a FIFO or a
  // device: EINVAL).
  static std::optional<ByteInput> Open(const std::filesystem::path& path, std::string& error, int* code = nullptr);

  // The unread bytes at hand, refilled when none are left; empty at the end of the input,
  // after a read error and after a stop request.
  std::string_view buffered() {
    if (pos_ == end_) refill();
    return std::string_view(data_ + pos_, end_ - pos_);
  }
  // Marks n of the buffered bytes read.
  void consume(size_t n) { pos_ += n; }
  int peek() { return buffered().empty() ? -1 : static_cast<unsigned char>(data_[pos_]); }
  int get() {
    int c = peek();
    if (c >= 0) ++pos_;
    return c;
  }
  // Reads up to n bytes; fewer only at the end.
  size_t read(char* out, size_t n);

  // Bytes read so far.
  uint64_t position() const { return offset_ - (end_ - pos_); }

  // A stop request ends the input at the next refill (every 64 KiB of a file).
  void setStopToken(std::stop_token stop) { stop_ = std::move(stop); }
  bool stopped() const { return stopped_; }
  // The system's reason a read failed ("Input/output error"); empty while none has.
  const std::string& error() const { return error_; }

 private:
  explicit ByteInput(int fd);
  void refill();

  int fd_ = -1;
  std::vector<char> buffer_;
  const char* data_ = nullptr;
  size_t pos_ = 0, end_ = 0;
  uint64_t offset_ = 0;
  std::stop_token stop_;
  bool stopped_ = false;
  std::string error_;
};

// A line of at most `maxLength` bytes without its CR LF or LF; a longer line is passed over to
// its end and comes back as nullopt with `tooLong` set. nullopt without it at the end.
std::optional<std::string_view> NextLine(ByteInput& in, std::string& scratch, size_t maxLength, bool& tooLong);

// The start of a small file: at most `maxBytes` of it, the rest left unread.
struct SmallFile {
  std::string text;
  bool missing = false;    // there is no such file: not an error
  std::string error;       // why it could not be read; empty when it was
};
SmallFile ReadSmallFile(const std::filesystem::path& path, size_t maxBytes);

}  // namespace merida

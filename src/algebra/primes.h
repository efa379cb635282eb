// Prime factors, the prime listing with its count, and G.C.M./L.C.M. on signed 32-bit integers.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace merida {

// A box's number as the prime tools read it: numeric text rounded to a 32-bit integer
// (halves to even); nullopt for anything else.
std::optional<int32_t> ReadInteger(std::string_view text);

// The list form of an integer: " 97", "-5".
std::string IntegerText(int64_t v);
// Writes the list form of v at out, no terminator; returns the end. At most 12 characters.
char* WriteIntegerText(int64_t v, char* out);

struct PrimeFactor {
  int32_t prime = 0;
  int16_t exponent = 0;  // 0 for a last factor above the trial limit (it occurs once)
};

// Trial division by 2, 3, 4, ... up to the square root of n rounded to the nearest integer;
// empty below 2.
std::vector<PrimeFactor> Factorise(int32_t n);
// P Factor's lines: " 2＾ 3" (full-width caret) for exponents of 2 and more, else " 5".
std::vector<std::string> FactorLines(std::string_view boxText);

// The line that ends a listing: " 4 個ある".
std::string CountLine(int64_t count);

// The primes up to a limit in increasing order, one segment at a time (a sieve of odd numbers),
// so that a listing to 2^31 - 1 never holds more than a segment.
class PrimeSieve {
 public:
  // Primes from `from` (at least 2) up to `limit`.
  explicit PrimeSieve(int32_t limit, int32_t from = 2);
  // Replaces `out` with the next primes (2 comes first); false once every prime was given.
  bool next(std::vector<int32_t>& out);
  bool done() const { return next_ > limit_; }

 private:
  int64_t limit_;
  int64_t next_ = 2;  // the lowest number not yet sieved
  std::vector<int32_t> basePrimes_;
  std::vector<int64_t> nextMultiple_;  // per base prime: the next odd multiple to strike
  std::vector<uint8_t> segment_;
};

// The primes of a listing held at about one byte each (gaps between odd primes, with an anchor
// every 256 primes), so that a list view can show millions of lines without millions of strings.
class PrimeStore {
 public:
  void clear();
  // Appends the next consecutive primes of a listing (2 may come first).
  void append(const std::vector<int32_t>& primes);
  size_t size() const { return (hasTwo_ ? 1 : 0) + oddCount_; }
  // The i-th prime, 0-based; i < size().
  int32_t at(size_t i) const;

 private:
  static constexpr size_t kAnchorEvery = 256;
  bool hasTwo_ = false;
  size_t oddCount_ = 0;
  int32_t last_ = 0;
  std::vector<int32_t> anchors_;    // odd prime k * 256
  std::vector<uint8_t> halfGaps_;   // odd prime i minus odd prime i - 1, halved (0 at anchors)
};

// Prime's lines: " 2", " 3", ... every prime up to the box's number, then the count line.
// `stop` is asked after every segment; once it answers true the listing ends without the count.
// Nothing at all for a number of 1 or less, or a text that is not a number. Returns the count
// of lines given.
int64_t ListPrimeLines(std::string_view boxText, const std::function<void(std::string_view)>& line,
                       const std::function<bool()>& stop = {});

struct GcmResult {
  int32_t gcd = 0;
  int32_t lcm = 0;
};
// Euclid's algorithm, then lcm = (a / g) * b; nullopt when a or b is at most 1, when the lcm
// leaves 32 bits, or when `stop` answers true between steps.
std::optional<GcmResult> GreatestCommonMeasure(int32_t a, int32_t b, const std::function<bool()>& stop = {});
// G.C.M.'s four lines, headings by language: "G.C.M."/"最大公約数.", gcd, "L.C.M."/"最小公倍数.", lcm.
// nullopt when nothing happens (a box that is not a number above 1, or a stop); an empty list
// when the least common multiple leaves 32 bits, because the list was already cleared then.
std::optional<std::vector<std::string>> GcmLines(std::string_view text1, std::string_view text2, bool japanese,
                                  const std::function<bool()>& stop = {});

}  // namespace merida

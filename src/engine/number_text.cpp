// Number texts: fixed formats independent of the process locale.
#include "engine/number_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace merida {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string Upper(std::string s) {
  for (char& c : s) {
    if (c == 'e') c = 'E';
    if (c == 'i' || c == 'n' || c == 'f' || c == 'a') c = static_cast<char>(c - 'a' + 'A');
  }
  return s;
}

std::string General(double v, int digits) {
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, digits);
  return Upper(std::string(buf, r.ptr));
}

// Length of the longest numeric prefix of s (no blanks, optional sign); 0 if none.
size_t NumericPrefix(std::string_view s) {
  size_t i = 0, n = s.size();
  if (i < n && (s[i] == '+' || s[i] == '-')) ++i;
  size_t intDigits = 0, fracDigits = 0;
  while (i < n && IsDigit(s[i])) ++i, ++intDigits;
  if (i < n && s[i] == '.') {
    size_t j = i + 1;
    while (j < n && IsDigit(s[j])) ++j, ++fracDigits;
    if (intDigits + fracDigits > 0) i = j;
  }
  if (intDigits + fracDigits == 0) return 0;
  if (i < n && (s[i] == 'E' || s[i] == 'e')) {
    size_t j = i + 1;
    if (j < n && (s[j] == '+' || s[j] == '-')) ++j;
    size_t expDigits = 0;
    while (j < n && IsDigit(s[j])) ++j, ++expDigits;
    if (expDigits > 0) i = j;
  }
  return i;
}

// The decimal exponent of an unsigned numeric token's value (1.5E3 gives 3, 0.02 gives -2),
// saturated far beyond any double; the token is not zero. Out-of-range tokens are told apart
// by it: the digits of the exponent alone say nothing when the mantissa has many zeros.
int64_t DecimalExponent(std::string_view s) {
  constexpr int64_t kSaturated = int64_t{1} << 40;
  size_t e = s.find_first_of("eE");
  std::string_view mantissa = s.substr(0, e);
  int64_t exp10 = 0;
  if (e != std::string_view::npos) {
    size_t i = e + 1;
    bool negative = i < s.size() && s[i] == '-';
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    for (; i < s.size() && IsDigit(s[i]); ++i) exp10 = std::min(exp10 * 10 + (s[i] - '0'), kSaturated);
    if (negative) exp10 = -exp10;
  }
  size_t point = mantissa.find('.');
  if (point == std::string_view::npos) point = mantissa.size();
  size_t lead = mantissa.find_first_not_of("0.");
  if (lead == std::string_view::npos) return -kSaturated;  // all zeros: the value is 0
  int64_t position = lead < point ? static_cast<int64_t>(point - lead) - 1 : -static_cast<int64_t>(lead - point);
  return position + exp10;
}

// Parses a complete numeric token (sign allowed); infinite on overflow, 0 on underflow.
double ParseToken(std::string_view s) {
  bool negative = false;
  if (!s.empty() && (s[0] == '+' || s[0] == '-')) {
    negative = s[0] == '-';
    s.remove_prefix(1);
  }
  double v = 0;
  auto r = std::from_chars(s.data(), s.data() + s.size(), v);
  if (r.ec == std::errc::result_out_of_range) v = DecimalExponent(s) < 0 ? 0.0 : HUGE_VAL;
  return negative ? -v : v;
}

constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Powers of ten 1e-8 .. 1e35 as doubles, for finding a value's decimal exponent.
constexpr int kPow10Bias = 8;
constexpr double kPow10Signed[] = {1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1e0,  1e1,  1e2,  1e3,
                               1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                               1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22, 1e23, 1e24, 1e25, 1e26, 1e27,
                               1e28, 1e29, 1e30, 1e31, 1e32, 1e33, 1e34, 1e35};

// Veltkamp halves of 10^q (26 significant bits or fewer each), made at compile time.
struct SplitPow10 {
  double hi[23], lo[23];
  constexpr SplitPow10() : hi{}, lo{} {
    for (int i = 0; i < 23; ++i) {
      double c = 134217729.0 * kPow10[i];
      hi[i] = c - (c - kPow10[i]);
      lo[i] = kPow10[i] - hi[i];
    }
  }
};
constexpr SplitPow10 kSplit10;

// a * 10^q - t exactly, where t is the rounded product (Dekker's product). The halves of a
// come from masking its bits, which no contraction of the arithmetic can disturb.
double ProductError(double a, double t, int q) {
  double ah = std::bit_cast<double>(std::bit_cast<uint64_t>(a) & ~((uint64_t{1} << 27) - 1));
  double al = a - ah;
  double ph = kSplit10.hi[q], pl = kSplit10.lo[q];
  return ((ah * ph - t) + ah * pl + al * ph) + al * pl;
}

}  // namespace

// Read back as the number texts read: a text beyond the largest double is infinite.
double detail::Round15Slow(double v) {
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, 15);
  return ParseToken(std::string_view(buf, static_cast<size_t>(r.ptr - buf)));
}

std::string PlainText(double v) {
  if (v == 0) return "0";
  return General(v, 15);
}

std::string PlainText(float v) {
  if (v == 0) return "0";
  return General(static_cast<double>(v), 7);
}

static std::string ToListForm(std::string s) {
  if (s.rfind("0.", 0) == 0) s.erase(0, 1);
  else if (s.rfind("-0.", 0) == 0) s.erase(1, 1);
  if (s.empty() || s[0] != '-') s.insert(0, 1, ' ');
  return s;
}

std::string ListText(double v) { return ToListForm(PlainText(v)); }

std::string ListText(float v) {
  if (v == 0) return " 0";
  return ToListForm(General(static_cast<double>(v), 7));
}

std::string Fixed5Text(double v) {
  char buf[400];
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, 5);
  std::string s(buf, r.ptr);
  if (s.find('.') != std::string::npos) {
    while (!s.empty() && s.back() == '0') s.pop_back();
  }
  bool negative = !s.empty() && s[0] == '-';
  std::string digits = negative ? s.substr(1) : s;
  if (digits.rfind("0.", 0) == 0) digits.erase(0, 1);
  if (digits == ".") return ".";  // a value that rounds to zero carries no sign
  return negative ? "-" + digits : digits;
}

bool IsNumeric(std::string_view text) {
  std::string_view t = Trim(text);
  if (t.empty()) return false;
  size_t len = NumericPrefix(t);
  return len == t.size();
}

std::optional<double> ReadNumber(std::string_view text) {
  std::string_view t = Trim(text);
  if (t.empty() || NumericPrefix(t) != t.size()) return std::nullopt;
  return ParseToken(t);
}

double ReadLenient(std::string_view text) {
  std::string_view t = TrimLeft(text);
  size_t len = NumericPrefix(t);
  if (len == 0) return 0;
  double v = ParseToken(t.substr(0, len));
  return std::isfinite(v) ? v : 0;
}

namespace detail {

constexpr Round15Scale MakeScale(int biased) {
  int e = ((biased - 1023) * 78913) >> 18;  // floor(exp2 * log10 2): the binade's lowest decade
  // kPow10Signed holds 1e-8 .. 1e35; kPow10 holds 1e0 .. 1e22.
  double next = kPow10Signed[e + 1 + kPow10Bias];
  bool belowFits = 14 - e >= 0 && 14 - e <= 22, aboveFits = 13 - e >= 0 && 13 - e <= 22;
  return {next, belowFits ? kPow10[14 - e] : 0, aboveFits ? kPow10[13 - e] : 0, belowFits ? 14 - e : 0,
          aboveFits ? 13 - e : 0};
}

constexpr Round15ScaleTable MakeScaleTable() {
  Round15ScaleTable t{};
  for (int i = 0; i < kRound15Scales; ++i) t.v[i] = MakeScale(kRound15FirstBiased + i);
  return t;
}
constexpr Round15ScaleTable kRound15Table = MakeScaleTable();

double Round15Learn(double v, Round15Guess& guess) {
  const uint64_t binade = (std::bit_cast<uint64_t>(v) >> 52) & 0x7FF;
  // The first and last binades hold values outside the table's range: never remembered.
  if (binade > kRound15FirstBiased && binade < kRound15FirstBiased + kRound15Scales - 1) {
    guess = {binade, kRound15Table.v[binade - kRound15FirstBiased], nullptr};
  } else if (const FusedBinade* fused = FusedBinadeOf(binade); fused && FusedReadBackAvailable()) {
    guess = {binade, {}, fused};
    return Round15Fused(v, *fused);
  }
  return Round15(v);
}

double Round15Tie(double a, double t, double whole, double frac, int places) {
  double err = ProductError(a, t, places);
  if (frac > 0 && err > 0) return whole + 1;
  if (frac < 0 && err < 0) return whole - 1;
  return whole;  // a true half: the even neighbour, which whole already is
}

}  // namespace detail

std::optional<int16_t> ToInt16(double v) {
  if (!std::isfinite(v)) return std::nullopt;
  double r = std::nearbyint(v);
  if (r < -32768.0 || r > 32767.0) return std::nullopt;
  return static_cast<int16_t>(r);
}

std::optional<int32_t> ToInt32(double v) {
  if (!std::isfinite(v)) return std::nullopt;
  double r = std::nearbyint(v);
  if (r < -2147483648.0 || r > 2147483647.0) return std::nullopt;
  return static_cast<int32_t>(r);
}

std::string_view TrimLeft(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  return text.substr(i);
}

std::string_view Trim(std::string_view text) {
  text = TrimLeft(text);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace merida

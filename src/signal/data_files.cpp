// Every reader works on a scratch copy of the table and commits it whole, so a file that
// fails half way leaves the rows as they were. Header fields are checked against the real
// size; no field is ever read past the end of the file.
#include "signal/data_files.h"

#include <cerrno>
#include <cmath>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kWrongFormatError = 39;
constexpr int kColumnCountError = 41;
constexpr int kDataCountError = 43;
constexpr size_t kWaveHeader = 44;
// No number is this long: a longer field is garbage, and reading on would take a 1 GB line
// to its end before saying so.
constexpr size_t kMaxField = 4096;

uint32_t LittleEndian(std::string_view bytes, size_t at) {
  uint32_t v = 0;
  for (size_t k = 0; k < 4; ++k) v |= uint32_t{static_cast<uint8_t>(bytes[at + k])} << (8 * k);
  return v;
}

// Fields separated by commas or line ends, leading blanks skipped, a CR before LF dropped.
class FieldReader {
 public:
  explicit FieldReader(ByteInput& in) : in_(in) {}

  // The next field; nullopt at the end of the input, and from a field too long to be one on.
  std::optional<std::string> next() {
    if (tooLong_) return std::nullopt;
    int c = in_.peek();
    if (c < 0) return std::nullopt;
    while (c == ' ') {
      in_.get();
      c = in_.peek();
    }
    std::string field;
    bool lineEnd = false;
    for (;;) {
      c = in_.get();
      if (c < 0 || c == ',') break;
      if (c == '\n') {
        lineEnd = true;
        break;
      }
      if (field.size() == kMaxField) {
        tooLong_ = true;
        return std::nullopt;
      }
      field.push_back(static_cast<char>(c));
    }
    if (lineEnd && !field.empty() && field.back() == '\r') field.pop_back();
    return field;
  }

  // Passes over up to n fields without converting them; returns how many there were. The same
  // length limit holds as for next().
  int64_t skip(int64_t n) {
    int64_t done = 0;
    size_t length = 0;
    bool started = false, leading = true;
    while (done < n && !tooLong_) {
      std::string_view at = in_.buffered();
      if (at.empty()) {
        if (started) ++done;  // the last field, without a separator after it
        break;
      }
      size_t i = 0;
      for (; i < at.size(); ++i) {
        const char c = at[i];
        if (c == ',' || c == '\n') {
          started = false;
          leading = true;
          length = 0;
          if (++done == n) {
            ++i;
            break;
          }
          continue;
        }
        started = true;
        if (leading && c == ' ') continue;
        leading = false;
        if (++length > kMaxField) {
          tooLong_ = true;
          break;
        }
      }
      in_.consume(i);
    }
    return done;
  }
  bool tooLong() const { return tooLong_; }

 private:
  ByteInput& in_;
  bool tooLong_ = false;
};

// A field read leniently into single precision; nullopt when it overflows (out of range).
std::optional<float> FloatField(std::string_view field) { return RecordValue(ReadLenient(field)); }

// A count field rounded halves to even; nullopt when it is no usable count.
std::optional<int64_t> CountField(std::string_view field) {
  double v = std::nearbyint(ReadLenient(field));
  if (!(v >= 0)) return std::nullopt;
  return v > 1e18 ? int64_t{1000000000000000000} : static_cast<int64_t>(v);
}

LoadResult Refused(RecordFunctionTable& table, LoadResult r = {}) {
  table.kind = NoData;
  r.loaded = false;
  return r;
}

LoadResult Refused(RecordFunctionTable& table, std::string reason) {
  LoadResult r;
  r.reason = std::move(reason);
  return Refused(table, r);
}

LoadResult Failed(RecordFunctionTable& table, int code) {
  LoadResult r;
  r.errorCode = code;
  return Refused(table, r);
}

constexpr const char* kLongField = "a field is longer than 4096 characters";
constexpr const char* kOutOfRange = "a value is out of the range of single precision";

// A text file read whole: the table takes it, and the boxes show the count and the range.
LoadResult TextLoaded(RecordFunctionTable& table, const RecordFunctionTable& read, RecordKind kind) {
  table = read;
  table.kind = kind;
  LoadResult r;
  r.loaded = true;
  r.boxes.text2 = std::to_string(table.count);
  r.boxes.text3 = PlainText(table.rangeStart);
  r.boxes.text4 = PlainText(table.rangeEnd);
  return r;
}

}  // namespace

DataFormat ReaderFor(std::string_view path) {
  auto has = [&](std::string_view s) { return path.find(s) != std::string_view::npos; };
  if (has(".wav") || has(".WAV")) return DataFormat::kWave;
  if (has(".orb") || has(".ORB")) return DataFormat::kOrbita;
  return DataFormat::kMerida;
}

LoadResult ReadWave(ByteInput& in, std::string_view fullPath, RecordFunctionTable& table) {
  std::string header(kWaveHeader, '\0');
  header.resize(in.read(header.data(), kWaveHeader));

  LoadResult r;
  r.reason = "not a WAVE file this program reads (8-bit mono PCM with a 44-byte header)";
  // Each field is shown as it is read, so a refused file leaves the failing one in Text1;
  // a field reaching past the end of the file fails with what was there.
  auto shown = [&](std::string text) {
    r.boxes.text1 = std::move(text);
    return *r.boxes.text1;
  };
  auto chars = [&](size_t at, size_t n) { return at < header.size() ? header.substr(at, n) : std::string(); };
  auto byteText = [&](size_t at) {
    return at < header.size() ? std::to_string(static_cast<uint8_t>(header[at])) : std::string();
  };
  if (chars(0, 4) != "RIFF") return Refused(table, r);
  if (shown(chars(8, 7)) != "WAVEfmt") return Refused(table, r);
  if (shown(byteText(20)) != "1") return Refused(table, r);
  if (shown(byteText(22)) != "1") return Refused(table, r);
  if (header.size() < 28) return Refused(table, r);
  const uint32_t rate = LittleEndian(header, 24);
  shown(std::to_string(rate));
  if (shown(byteText(34)) != "8") return Refused(table, r);
  if (shown(chars(36, 4)) != "data") return Refused(table, r);
  if (header.size() < kWaveHeader) return Refused(table, r);
  const uint32_t size = LittleEndian(header, 40);
  r.boxes.text2 = std::to_string(size);

  const int n = static_cast<int>(std::min<uint32_t>(size, RecordFunctionTable::kCapacity));
  std::string samples(static_cast<size_t>(n), '\0');
  samples.resize(in.read(samples.data(), samples.size()));
  RecordFunctionTable t = table;
  t.count = static_cast<int16_t>(n);
  t.dimension = 1;
  t.rangeStart = 0;
  t.rangeEnd = static_cast<float>(n);
  // Samples the data size promises but the file does not hold load as silence.
  for (int i = 1; i <= n; ++i) {
    const size_t k = static_cast<size_t>(i - 1);
    t.values[i][0] = k < samples.size() ? static_cast<float>(static_cast<uint8_t>(samples[k]) - 128) : 0.0f;
  }
  t.sampleRate = rate;
  t.kind = WaveData;
  table = t;
  r = {};
  r.loaded = true;
  r.boxes.text1 = std::string(fullPath);
  r.boxes.text2 = std::to_string(rate);
  r.boxes.text3 = "0";
  r.boxes.text4 = PlainText(t.rangeEnd);
  return r;
}

LoadResult ReadMeridaText(ByteInput& in, RecordFunctionTable& table) {
  FieldReader fields(in);
  std::optional<std::string> tag = fields.next();
  if (!tag || *tag != "MERIDA") return Failed(table, kWrongFormatError);
  std::optional<std::string> countText = fields.next();
  std::optional<std::string> startText = fields.next();
  std::optional<std::string> endText = fields.next();
  if (fields.tooLong()) return Refused(table, kLongField);
  if (!countText || !startText || !endText) return Refused(table, "the count or the range is missing");
  std::optional<int64_t> n = CountField(*countText);
  if (!n) return Refused(table, "the count is negative");
  std::optional<float> start = FloatField(*startText), end = FloatField(*endText);
  if (!start || !end) return Refused(table, kOutOfRange);
  RecordFunctionTable t = table;
  t.rangeStart = *start;
  t.rangeEnd = *end;
  t.dimension = 1;
  t.count = static_cast<int16_t>(std::min<int64_t>(*n, RecordFunctionTable::kCapacity));
  for (int row = 1; row <= RecordFunctionTable::kCapacity; ++row) {
    std::optional<std::string> field = fields.next();
    if (!field) break;
    std::optional<float> v = FloatField(*field);
    if (!v) return Refused(table, kOutOfRange);
    t.values[row][0] = *v;
  }
  if (fields.tooLong()) return Refused(table, kLongField);
  return TextLoaded(table, t, MeridaTextData);
}

LoadResult ReadOrbita(ByteInput& in, RecordFunctionTable& table) {
  FieldReader fields(in);
  std::optional<std::string> tag = fields.next();
  if (!tag || *tag != "ORBITA") return Failed(table, kWrongFormatError);
  std::optional<std::string> dText = fields.next();
  std::optional<std::string> nText = fields.next();
  if (fields.tooLong()) return Refused(table, kLongField);
  if (!dText || !nText) return Refused(table, "the column or row count is missing");
  const double d = std::nearbyint(ReadLenient(*dText));
  if (!(d >= 1 && d <= 3)) return Failed(table, kColumnCountError);
  // A negative row count promises nothing a column could match.
  std::optional<int64_t> n = CountField(*nText);
  if (!n) return Failed(table, kDataCountError);
  RecordFunctionTable t = table;
  t.dimension = static_cast<int16_t>(d);
  int64_t first = -1;
  for (int j = 1; j <= t.dimension; ++j) {
    int64_t read = 0;
    const int64_t stored = std::min<int64_t>(*n, RecordFunctionTable::kCapacity);
    while (read < stored) {
      std::optional<std::string> field = fields.next();
      if (!field) break;
      ++read;
      std::optional<float> v = FloatField(*field);
      if (!v) return Refused(table, kOutOfRange);
      t.values[read][j - 1] = *v;
    }
    // Values past the 5000th are only counted, and only where a later column must match.
    if (read == stored && read < *n && t.dimension > 1) read += fields.skip(*n - read);
    if (fields.tooLong()) return Refused(table, kLongField);
    const bool full = read >= RecordFunctionTable::kCapacity;
    if ((read < *n && !full) || (first >= 0 && read != first)) return Failed(table, kDataCountError);
    if (first < 0) first = read;
  }
  t.count = static_cast<int16_t>(std::min<int64_t>(*n, RecordFunctionTable::kCapacity));
  return TextLoaded(table, t, OrbitaData);
}

LoadResult ReadDataFile(RecordFunctionTable& table, const std::filesystem::path& path, std::stop_token stop) {
  const std::string name = path.filename().string();
  std::string why;
  int code = 0;
  std::optional<ByteInput> in = ByteInput::Open(path, why, &code);
  if (!in) {
    LoadResult r = Refused(table, "cannot read " + name + ": " + why);
    r.shown = code == EINVAL;  // there, but a FIFO or a device: not a file that failed to open
    return r;
  }
  in->setStopToken(std::move(stop));
  // The readers fill a copy: a read that fails or is stopped half way leaves the rows alone.
  RecordFunctionTable read = table;
  LoadResult r;
  switch (ReaderFor(path.string())) {
    case DataFormat::kWave: r = ReadWave(*in, path.string(), read); break;
    case DataFormat::kOrbita: r = ReadOrbita(*in, read); break;
    case DataFormat::kMerida: r = ReadMeridaText(*in, read); break;
  }
  if (!in->error().empty() || in->stopped()) {
    LoadResult refused = Refused(table, in->stopped() ? "stopped" : "cannot read " + name + ": " + in->error());
    refused.shown = !in->stopped();
    refused.stopped = in->stopped();
    return refused;
  }
  table = read;
  if (!r.loaded && r.errorCode == 0 && !r.reason.empty()) r.reason = name + ": " + r.reason;
  return r;
}

LoadResult LoadDataFile(Engine& engine, RecordFunctionTable& table, const std::filesystem::path& path) {
  engine.ErrorFlag = 0;
  LoadResult r = ReadDataFile(table, path);
  if (r.errorCode) engine.Fail(r.errorCode);
  return r;
}

std::vector<ChartPoint> FileDisplayPoints(const RecordFunctionTable& table) {
  std::vector<ChartPoint> points;
  const int m = std::min<int>(table.count, RecordFunctionTable::kCapacity);
  if (m <= 0) return points;
  // Single precision, as the table holds the range.
  const float dx = (table.rangeEnd - table.rangeStart) / static_cast<float>(table.count);
  points.reserve(static_cast<size_t>(m));
  for (int i = 1; i <= m; ++i) {
    points.push_back({table.rangeStart + static_cast<float>(i - 1) * dx, table.values[i][0]});
  }
  return points;
}

std::string WaveFileBytes(std::span<const uint8_t> samples) {
  const uint32_t n = static_cast<uint32_t>(samples.size());
  std::string out;
  out.reserve(kWaveHeader + n + 1);
  auto u32 = [&](uint32_t v) {
    for (int k = 0; k < 4; ++k) out.push_back(static_cast<char>((v >> (8 * k)) & 0xFF));
  };
  auto u16 = [&](uint16_t v) {
    out.push_back(static_cast<char>(v & 0xFF));
    out.push_back(static_cast<char>(v >> 8));
  };
  out += "RIFF";
  u32(n + 37);  // counts the final zero byte
  out += "WAVEfmt ";
  u32(16);
  u16(1);  // PCM
  u16(1);  // mono
  u32(kWaveSampleRate);
  u32(kWaveSampleRate);  // bytes per second
  u16(1);                // block align
  u16(8);                // bits per sample
  out += "data";
  u32(n);
  out.append(reinterpret_cast<const char*>(samples.data()), samples.size());
  out.push_back('\0');
  return out;
}

std::string MeridaFileText(double rangeStart, double rangeEnd, std::span<const float> samples) {
  std::string out = "MERIDA\r\n" + ListText(static_cast<double>(samples.size())) + "\r\n";
  out += ListText(rangeStart) + "\r\n" + ListText(rangeEnd) + "\r\n";
  for (float v : samples) out += ListText(v) + "\r\n";
  return out;
}

}  // namespace merida

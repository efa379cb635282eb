// The statistical data window's logic, free of any user-interface code.
#include "stats/stat_data.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "engine/atomic_file.h"
#include "engine/number_text.h"

namespace merida {
namespace {

// A recorded value as a grid cell shows it: single precision, 7 significant digits.
std::string CellText(float v) {
  if (v == 0) return "0";
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.7G", static_cast<double>(v));
  return buf;
}

// A typed value as the table stores it; magnitudes beyond single precision saturate.
float TableValue(std::string_view text) {
  double v = ReadLenient(TrimLeft(text));
  constexpr double kMax = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(v, -kMax, kMax));
}

// The rounded value of a box, limited to [1, max]; nullopt below 1.
std::optional<int> BoxCount(std::string_view text, int max) {
  double v = std::nearbyint(ReadLenient(TrimLeft(text)));
  if (!(v >= 1)) return std::nullopt;
  return v > max ? max : static_cast<int>(v);
}

}  // namespace

StatData::StatData(const RecordFunctionTable& table, bool japanese) : japanese_(japanese) {
  if (!table.hasData()) {
    resize(1, 5);
    return;
  }
  resize(std::clamp<int>(table.dimension, 1, kMaxDimension), std::clamp<int>(table.count, 1, kMaxCount));
  for (int j = 1; j <= d_; ++j) {
    for (int i = 1; i <= n_; ++i) cells_[j - 1][i - 1] = CellText(table.values[i][j - 1]);
  }
}

void StatData::resize(int d, int n) {
  d_ = d;
  n_ = n;
  cells_.resize(kMaxDimension);
  for (auto& column : cells_) column.resize(static_cast<size_t>(n));
  r_ = std::min(r_, n_);
  c_ = std::min(c_, d_);
}

std::string StatData::cell(int i, int j) const {
  if (i == 0 && j == 0) return japanese_ ? " 次元" : " Dim";
  // Headings are a blank and the number with its own leading blank.
  if (i == 0) return "  " + std::to_string(j);
  if (j == 0) return "  " + std::to_string(i);
  if (i < 1 || i > n_ || j < 1 || j > d_) return {};
  return cells_[j - 1][i - 1];
}

std::string StatData::enterDimension(std::string_view text) {
  if (std::optional<int> d = BoxCount(text, kMaxDimension)) resize(*d, n_);
  return std::to_string(d_);
}

std::string StatData::enterCount(std::string_view text) {
  if (std::optional<int> n = BoxCount(text, kMaxCount)) resize(d_, *n);
  return std::to_string(n_);
}

void StatData::enterValue(std::string_view text) {
  cells_[c_ - 1][r_ - 1] = std::string(text);
  if (r_ < n_) {
    ++r_;
  } else {
    r_ = 1;
    c_ = c_ < d_ ? c_ + 1 : 1;
  }
}

void StatData::select(int i, int j) {
  if (i < 1 || i > n_ || j < 1 || j > d_) return;
  r_ = i;
  c_ = j;
}

void StatData::setCell(int i, int j, std::string_view text) {
  if (i < 1 || i > n_ || j < 1 || j > d_) return;
  cells_[j - 1][i - 1] = std::string(text);
}

void StatData::storeInto(RecordFunctionTable& table) const {
  for (int j = 1; j <= d_; ++j) {
    for (int i = 1; i <= n_; ++i) table.values[i][j - 1] = TableValue(cells_[j - 1][i - 1]);
  }
  table.dimension = static_cast<int16_t>(d_);
  table.count = static_cast<int16_t>(n_);
  table.kind = OrbitaData;
}

std::string StatData::orbitaText() const {
  std::string text = "ORBITA\r\n" + std::to_string(d_) + "\r\n" + std::to_string(n_) + "\r\n";
  for (int j = 1; j <= d_; ++j) {
    for (int i = 1; i <= n_; ++i) text += cells_[j - 1][i - 1] + "\r\n";
  }
  return text;
}

FileResult StatData::writeFile(const std::filesystem::path& dir) const {
  return WriteFileAtomically(dir / "ORBITA.ORB", orbitaText());
}

}  // namespace merida

// The statistical data grid: dimension and count, Enter-driven entry, Memory and ORBITA.ORB.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "engine/atomic_file.h"
#include "engine/record_table.h"

namespace merida {

class StatData {
 public:
  static constexpr int kMaxDimension = 3;
  static constexpr int kMaxCount = RecordFunctionTable::kCapacity;

  // Opening: one column of five rows when the table holds no data, else the table's rows.
  StatData(const RecordFunctionTable& table, bool japanese);

  int dimension() const { return d_; }
  int count() const { return n_; }
  // The current cell (row r, column c), both from 1.
  int row() const { return r_; }
  int column() const { return c_; }

  // Grid text at (i, j); row 0 and column 0 are the headings.
  std::string cell(int i, int j) const;

  // Enter in the dimension box: d rounded, at most 3; returns what the box must show.
  std::string enterDimension(std::string_view text);
  // Enter in the count box: n rounded, at most 5000; returns what the box must show.
  std::string enterCount(std::string_view text);
  // Enter in the input box: the text goes into the current cell, which moves down the column,
  // then to the top of the next one (back to column 1 after the last).
  void enterValue(std::string_view text);
  // A click on a data cell makes it current; headings are ignored.
  void select(int i, int j);
  // Text typed straight into data cell (i, j); the current cell stays where it is.
  void setCell(int i, int j, std::string_view text);

  // Memory: every cell read leniently (empty = 0) into the table, kind OrbitaData.
  void storeInto(RecordFunctionTable& table) const;
  // The ORBITA.ORB text: tag, d, n, then the cells column by column, CR LF lines.
  std::string orbitaText() const;
  // File: writes ORBITA.ORB in `dir` atomically (the window shows no failure).
  FileResult writeFile(const std::filesystem::path& dir) const;

 private:
  void resize(int d, int n);

  bool japanese_;
  int d_ = 1, n_ = 5, r_ = 1, c_ = 1;
  // cells_[j - 1][i - 1] is the text typed for row i, column j.
  std::vector<std::vector<std::string>> cells_;
};

}  // namespace merida

// The formulas calculated since the program started, recalled with Up and Down in the formula box.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "engine/atomic_file.h"

namespace merida {

class FormulaHistory {
 public:
  // Formulas kept, in memory and in the file: the oldest give way.
  static constexpr std::size_t kKept = 200;
  // Longer formulas are not kept in the file (a box holds far less).
  static constexpr std::size_t kLongestLine = 4096;
  static constexpr const char* kFileName = "MERIDA.HIS";

  // Reads the history kept beside MERIDA.DEF in `dir`, oldest first; a missing file is an
  // empty history. Over-long lines are skipped; the reason for an unreadable file is returned.
  std::string load(const std::filesystem::path& dir);
  // Writes the history there, one formula per line, atomically and never through a link.
  FileResult save(const std::filesystem::path& dir) const;

  // A calculated formula; blank ones and a repeat of the newest are not kept twice.
  void add(const std::string& formula);

  // Up: the next older formula. `current` is the box's text, kept as the draft when leaving the
  // newest end so that Down can bring it back. nullopt at the oldest (or with nothing kept).
  std::optional<std::string> older(const std::string& current);
  // Down: the next newer formula, and past the newest the draft. nullopt when not browsing.
  std::optional<std::string> newer();

  std::size_t size() const { return entries_.size(); }

 private:
  std::vector<std::string> entries_;
  std::size_t position_ = 0;  // == entries_.size() while not browsing
  std::string draft_;
};

}  // namespace merida

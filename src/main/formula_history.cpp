// Browsing restarts after every Calc, like a shell's history.
#include "main/formula_history.h"

#include "engine/file_input.h"

namespace merida {

std::string FormulaHistory::load(const std::filesystem::path& dir) {
  SmallFile f = ReadSmallFile(dir / kFileName, kKept * (kLongestLine + 2));
  if (f.missing) return {};
  if (!f.error.empty()) return f.error;
  std::vector<std::string> read;
  std::string_view rest(f.text);
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.size() <= kLongestLine && line.find_first_not_of(" \t") != std::string_view::npos) read.emplace_back(line);
  }
  if (read.size() > kKept) read.erase(read.begin(), read.end() - static_cast<std::ptrdiff_t>(kKept));
  entries_ = std::move(read);
  position_ = entries_.size();
  draft_.clear();
  return {};
}

FileResult FormulaHistory::save(const std::filesystem::path& dir) const {
  std::filesystem::path target;
  if (FileResult refused = SaveTarget(dir / kFileName, target); !refused) return refused;
  std::string text;
  for (const std::string& formula : entries_) {
    if (formula.size() <= kLongestLine) text.append(formula).append("\r\n");
  }
  FileLock lock(target);
  return WriteFileAtomically(target, text);
}

void FormulaHistory::add(const std::string& formula) {
  // A line break would split the formula in the file; the box never holds one.
  if (formula.find_first_not_of(" \t") != std::string::npos && formula.find_first_of("\r\n") == std::string::npos &&
      (entries_.empty() || entries_.back() != formula)) {
    entries_.push_back(formula);
    if (entries_.size() > kKept) entries_.erase(entries_.begin());
  }
  position_ = entries_.size();
  draft_.clear();
}

std::optional<std::string> FormulaHistory::older(const std::string& current) {
  if (position_ == 0) return std::nullopt;
  if (position_ == entries_.size()) draft_ = current;
  return entries_[--position_];
}

std::optional<std::string> FormulaHistory::newer() {
  if (position_ >= entries_.size()) return std::nullopt;
  ++position_;
  return position_ == entries_.size() ? draft_ : entries_[position_];
}

}  // namespace merida

// Browsing restarts after every Calc, like a shell's history.
#include "main/formula_history.h"

namespace merida {

void FormulaHistory::add(const std::string& formula) {
  if (formula.find_first_not_of(" \t") != std::string::npos && (entries_.empty() || entries_.back() != formula)) {
    entries_.push_back(formula);
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

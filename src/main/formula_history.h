// The formulas calculated since the program started, recalled with Up and Down in the formula box.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace merida {

class FormulaHistory {
 public:
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

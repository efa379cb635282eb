// The answer label and the display hold plain-form texts; their numeric value is read leniently.
#include "main/memory_pad.h"

#include <cmath>

#include "engine/number_text.h"

namespace merida {

std::string MemoryDisplayOnOpen(double memory) {
  if (memory == 0) return {};
  return PlainText(memory);
}

std::optional<double> AddAnswerToMemory(double memory, std::string_view answerText, int sign) {
  if (answerText.empty()) return std::nullopt;
  double sum = memory + sign * ReadLenient(answerText);
  if (!std::isfinite(sum)) return std::nullopt;  // an overflow keeps the old memory
  return sum;
}

std::optional<std::string> RecallMemory(std::string_view displayText) {
  if (displayText.empty()) return std::nullopt;
  return PlainText(ReadLenient(displayText));
}

}  // namespace merida

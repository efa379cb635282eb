// The calculator pad's memory arithmetic on the texts of the answer label and the pad display.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace merida {

// What the display shows when the pad opens: the memory in plain form, or nothing when it is 0.
std::string MemoryDisplayOnOpen(double memory);

// M+ (sign 1) and M- (sign -1): the new memory, or nullopt when the answer label is empty
// or the sum overflows.
std::optional<double> AddAnswerToMemory(double memory, std::string_view answerText, int sign);

// MR: the formula box's new text, or nullopt when the display is empty.
std::optional<std::string> RecallMemory(std::string_view displayText);

}  // namespace merida

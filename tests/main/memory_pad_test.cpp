// The pad's memory arithmetic on answer and display texts.
#include "main/memory_pad.h"

#include <gtest/gtest.h>

#include <limits>

namespace merida {
namespace {

struct AddCase {
  double memory;
  const char* answer;
  int sign;
  std::optional<double> result;
};

void PrintTo(const AddCase& c, std::ostream* out) {
  *out << c.memory << (c.sign > 0 ? " M+ \"" : " M- \"") << c.answer << '"';
}

class MemoryAdd : public ::testing::TestWithParam<AddCase> {};

TEST_P(MemoryAdd, AddsOrSubtractsTheAnswer) {
  const AddCase& c = GetParam();
  EXPECT_EQ(AddAnswerToMemory(c.memory, c.answer, c.sign), c.result);
}

INSTANTIATE_TEST_SUITE_P(Pad, MemoryAdd,
                         ::testing::Values(AddCase{0, "2", 1, 2.0}, AddCase{2, "3", 1, 5.0},
                                           AddCase{5, "3", -1, 2.0}, AddCase{0, "0.25", -1, -0.25},
                                           AddCase{1, "1.26765060022823E+30", 1, 1.26765060022823E+30},
                                           AddCase{1, "1E-07", -1, 1 - 1e-7}, AddCase{4, "", 1, std::nullopt},
                                           AddCase{4, "", -1, std::nullopt},
                                           AddCase{1.7e308, "1.7E+308", 1, std::nullopt},
                                           AddCase{-1.7e308, "1.7E+308", -1, std::nullopt}));

TEST(MemoryPad, DisplayOnOpenIsEmptyOnlyForZero) {
  EXPECT_EQ(MemoryDisplayOnOpen(0), "");
  EXPECT_EQ(MemoryDisplayOnOpen(-0.0), "");
  EXPECT_EQ(MemoryDisplayOnOpen(7), "7");
  EXPECT_EQ(MemoryDisplayOnOpen(-0.25), "-0.25");
  EXPECT_EQ(MemoryDisplayOnOpen(1e20), "1E+20");
}

TEST(MemoryPad, RecallGivesThePlainTextOfTheDisplay) {
  EXPECT_EQ(RecallMemory(""), std::nullopt);
  EXPECT_EQ(RecallMemory("5"), "5");
  EXPECT_EQ(RecallMemory("0"), "0");
  EXPECT_EQ(RecallMemory("-0.25"), "-0.25");
  EXPECT_EQ(RecallMemory("1E-07"), "1E-07");
  EXPECT_EQ(RecallMemory("0.333333333333333"), "0.333333333333333");
}

}  // namespace
}  // namespace merida

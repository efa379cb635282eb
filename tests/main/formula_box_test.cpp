// The main window's formula box: Up and Down through the calculated formulas (the draft kept at
// the newest end), and the pad's memory arithmetic on answer and display texts.
#include <gtest/gtest.h>

#include "main/formula_history.h"
#include "main/memory_pad.h"

namespace merida {
namespace {

// 'C' calculates `box`; 'U' is Up with the box holding `box`, 'D' Down: `expect` is the box
// afterwards (nullopt: the key changes nothing).
struct Step {
  char key;
  std::string box;
  std::optional<std::string> expect = std::nullopt;
};

TEST(FormulaHistory, UpAndDown) {
  const std::optional<std::string> none;
  const std::vector<Step> cases[] = {
      {{'U', "1+", none}, {'D', "1+", none}},
      // Repeats of the newest and blanks are not kept; the oldest stops Up.
      {{'C', "1+2"}, {'C', "1+2"}, {'C', "   "}, {'C', ""}, {'C', "5!"}, {'C', "1+2"},
       {'U', "", "1+2"}, {'U', "1+2", "5!"}, {'U', "5!", "1+2"}, {'U', "1+2", none}},
      // Down goes back to the draft, then stops.
      {{'C', "1+2"}, {'C', "3*4"}, {'U', "half typed", "3*4"}, {'U', "3*4", "1+2"}, {'D', "1+2", "3*4"},
       {'D', "3*4", "half typed"}, {'D', "half typed", none}},
      // Down without browsing does nothing; a Calc ends browsing and keeps the recalled formula.
      {{'C', "1"}, {'C', "2"}, {'D', "x", none}, {'U', "draft", "2"}, {'U', "2", "1"}, {'C', "1"},
       {'U', "", "1"}, {'U', "1", "2"}, {'U', "2", "1"}, {'U', "1", none}, {'D', "1", "2"}, {'D', "2", "1"},
       {'D', "1", ""}},
  };
  for (const auto& steps : cases) {
    FormulaHistory history;
    for (const Step& s : steps) {
      if (s.key == 'C') history.add(s.box);
      else EXPECT_EQ(s.key == 'U' ? history.older(s.box) : history.newer(), s.expect)
          << "case " << &steps - cases << " step " << &s - steps.data();
    }
  }
}

TEST(MemoryPad, AddRecallAndDisplay) {
  const std::tuple<double, const char*, int, std::optional<double>> adds[] = {  // nullopt: the memory stays
      {2, "3", 1, 5.0}, {5, "3", -1, 2.0}, {1, "1.26765060022823E+30", 1, 1.26765060022823E+30},
      {1, "1E-07", -1, 1 - 1e-7}, {4, "", 1, std::nullopt},  // no answer
      {1.7e308, "1.7E+308", 1, std::nullopt}, {-1.7e308, "1.7E+308", -1, std::nullopt}};  // overflows
  for (const auto& [memory, answer, sign, result] : adds) {
    EXPECT_EQ(AddAnswerToMemory(memory, answer, sign), result) << memory << " " << sign << " " << answer;
  }
  const std::pair<double, const char*> opened[] = {{0, ""}, {-0.0, ""}, {7, "7"}, {-0.25, "-0.25"}, {1e20, "1E+20"}};
  for (const auto& [memory, text] : opened) EXPECT_EQ(MemoryDisplayOnOpen(memory), text) << memory;
  EXPECT_EQ(RecallMemory(""), std::nullopt);
  for (const char* shown : {"5", "0", "-0.25", "1E-07", "0.333333333333333"}) EXPECT_EQ(RecallMemory(shown), shown);
}

}  // namespace
}  // namespace merida

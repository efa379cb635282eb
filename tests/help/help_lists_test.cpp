// The help window's reference lines: counts, order and the characters that are easy to lose.
#include "help/help_lists.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "main/app_state.h"

namespace merida {
namespace {

const std::string kIdeographicSpace = "\xE3\x80\x80";

// The first word of a line, after its leading blank.
std::string_view FirstWord(std::string_view line) { return line.substr(1, line.find(' ', 1) - 1); }

TEST(HelpLists, BothLanguagesListTheSameOperatorsAndFunctionsInOrder) {
  const char* symbols[] = {"+", "-", "*", "/", "^", "!"};
  for (int16_t language : {kEnglish, kJapanese}) {
    auto ops = OperatorLines(language), functions = FunctionLines(language);
    ASSERT_EQ(ops.size(), 6u);
    ASSERT_EQ(functions.size(), 26u);
    for (size_t i = 0; i < ops.size(); ++i) EXPECT_EQ(FirstWord(ops[i]), symbols[i]) << language;
    for (size_t i = 0; i < functions.size(); ++i) {
      EXPECT_EQ(FirstWord(functions[i]), FirstWord(FunctionLines(kEnglish)[i])) << i;
      // Only timestep's line ends with an ideographic space.
      EXPECT_EQ(functions[i].find(kIdeographicSpace) != functions[i].npos, i == 20) << functions[i];
    }
    EXPECT_EQ(FirstWord(functions[0]), "sqr(x)");
    EXPECT_EQ(FirstWord(functions[25]), "Pn(n,x)");
  }
  for (int16_t language : {0, 3, -1}) {  // any other value is English
    EXPECT_EQ(OperatorLines(language).data(), OperatorLines(kEnglish).data());
    EXPECT_EQ(FunctionLines(language).data(), FunctionLines(kEnglish).data());
  }
  // Lines kept byte for byte: language, function (List2) or operator (List1), index from 1.
  const std::tuple<int16_t, bool, int, std::string> rows[] = {
      {kEnglish, false, 5, " ^  Power  "}, {kJapanese, false, 6, " !   階乗   "},
      {kEnglish, true, 2, " abs(x)     Abusolute  "}, {kEnglish, true, 17, " random(a)  Random Numbers(0～1) "},
      {kEnglish, true, 25, " Gamma(x)  Gammma Function"}, {kJapanese, true, 3, " sin(x)      ｻｲﾝ        "},
      {kJapanese, true, 23, " Jn(n,x) 第1種ﾍﾞｯｾﾙ関数"}, {kEnglish, true, 21, " timestep(n)    Delay " + kIdeographicSpace},
      {kJapanese, true, 21, " timestep(n)    遅延 " + kIdeographicSpace},
  };
  for (const auto& [language, function, index, text] : rows) {
    EXPECT_EQ((function ? FunctionLines(language) : OperatorLines(language))[index - 1], text);
  }
  // Half-width katakana are U+FF61..U+FF9F (EF BD xx, EF BE xx); no full-width サ or ル sneaked in.
  int halfWidth = 0;
  for (std::string_view line : FunctionLines(kJapanese)) {
    for (size_t i = 0; i + 1 < line.size(); ++i) {
      halfWidth += line[i] == '\xEF' && (line[i + 1] == '\xBD' || line[i + 1] == '\xBE');
    }
    EXPECT_TRUE(line.find("\xE3\x82\xB5") == line.npos && line.find("\xE3\x83\xAB") == line.npos) << line;
  }
  EXPECT_GT(halfWidth, 40);
}

}  // namespace
}  // namespace merida

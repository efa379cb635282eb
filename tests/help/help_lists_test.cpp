// The help window's reference lines: counts, order and the characters that are easy to lose.
#include "help/help_lists.h"

#include <gtest/gtest.h>

#include <string>

#include "main/app_state.h"

namespace merida {
namespace {

constexpr std::string_view kIdeographicSpace = "\xE3\x80\x80";

TEST(HelpLists, EachLanguageHasSixOperatorsAndTwentySixFunctions) {
  for (int16_t language : {kEnglish, kJapanese}) {
    EXPECT_EQ(OperatorLines(language).size(), 6u);
    EXPECT_EQ(FunctionLines(language).size(), 26u);
  }
}

TEST(HelpLists, AnyOtherLanguageValueGivesEnglish) {
  for (int16_t language : {0, 3, -1}) {
    EXPECT_EQ(OperatorLines(language).data(), OperatorLines(kEnglish).data());
    EXPECT_EQ(FunctionLines(language).data(), FunctionLines(kEnglish).data());
  }
}

struct LineCase {
  int16_t language;
  bool function;  // List2 rather than List1
  int index;      // from 1
  const char* text;
};

void PrintTo(const LineCase& c, std::ostream* out) {
  *out << (c.language == kJapanese ? "Japanese " : "English ") << (c.function ? "function " : "operator ") << c.index;
}

class HelpLine : public ::testing::TestWithParam<LineCase> {};

TEST_P(HelpLine, IsKeptByteForByte) {
  const LineCase& c = GetParam();
  auto lines = c.function ? FunctionLines(c.language) : OperatorLines(c.language);
  EXPECT_EQ(lines[c.index - 1], c.text);
}

INSTANTIATE_TEST_SUITE_P(Lines, HelpLine,
                         ::testing::Values(LineCase{kEnglish, false, 5, " ^  Power  "},
                                           LineCase{kJapanese, false, 6, " !   階乗   "},
                                           LineCase{kEnglish, true, 2, " abs(x)     Abusolute  "},
                                           LineCase{kEnglish, true, 17, " random(a)  Random Numbers(0～1) "},
                                           LineCase{kEnglish, true, 25, " Gamma(x)  Gammma Function"},
                                           LineCase{kJapanese, true, 3, " sin(x)      ｻｲﾝ        "},
                                           LineCase{kJapanese, true, 23, " Jn(n,x) 第1種ﾍﾞｯｾﾙ関数"}));

TEST(HelpLists, TimestepLinesEndWithAnIdeographicSpace) {
  EXPECT_EQ(FunctionLines(kEnglish)[20],
            std::string(" timestep(n)    Delay ") + std::string(kIdeographicSpace));
  EXPECT_EQ(FunctionLines(kJapanese)[20],
            std::string(" timestep(n)    遅延 ") + std::string(kIdeographicSpace));
  for (int16_t language : {kEnglish, kJapanese}) {
    int count = 0;
    for (std::string_view line : FunctionLines(language)) count += line.find(kIdeographicSpace) != line.npos;
    EXPECT_EQ(count, 1) << language;
  }
}

TEST(HelpLists, JapaneseKatakanaIsHalfWidth) {
  // Half-width katakana are U+FF61..U+FF9F: EF BD xx or EF BE xx in UTF-8.
  int halfWidth = 0;
  for (std::string_view line : FunctionLines(kJapanese)) {
    for (size_t i = 0; i + 1 < line.size(); ++i) {
      if (line[i] == '\xEF' && (line[i + 1] == '\xBD' || line[i + 1] == '\xBE')) ++halfWidth;
    }
    // No full-width katakana (U+30A1..U+30FA: E3 82 A1 .. E3 83 BA) sneaked in.
    EXPECT_EQ(line.find("\xE3\x82\xB5"), line.npos) << line;  // サ
    EXPECT_EQ(line.find("\xE3\x83\xAB"), line.npos) << line;  // ル
  }
  EXPECT_GT(halfWidth, 40);
}

// The first word of a line, after its leading blank.
std::string_view FirstWord(std::string_view line) {
  line.remove_prefix(1);
  return line.substr(0, line.find(' '));
}

TEST(HelpLists, BothLanguagesNameTheSameOperatorsAndFunctionsInOrder) {
  auto english = FunctionLines(kEnglish);
  auto japanese = FunctionLines(kJapanese);
  for (size_t i = 0; i < english.size(); ++i) EXPECT_EQ(FirstWord(japanese[i]), FirstWord(english[i])) << i;
  EXPECT_EQ(FirstWord(english[0]), "sqr(x)");
  EXPECT_EQ(FirstWord(english[25]), "Pn(n,x)");
  auto englishOps = OperatorLines(kEnglish);
  auto japaneseOps = OperatorLines(kJapanese);
  const char* symbols[] = {"+", "-", "*", "/", "^", "!"};
  for (size_t i = 0; i < englishOps.size(); ++i) {
    EXPECT_EQ(FirstWord(englishOps[i]), symbols[i]);
    EXPECT_EQ(FirstWord(japaneseOps[i]), symbols[i]);
  }
}

}  // namespace
}  // namespace merida

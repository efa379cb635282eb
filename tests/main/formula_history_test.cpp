// Up and Down through the calculated formulas, the draft kept at the newest end.
#include "main/formula_history.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace merida {
namespace {

// One key press: 'U' Up with the box holding `box`, 'D' Down; `expect` is the box afterwards
// (nullopt: the key changes nothing).
struct Step {
  char key;
  std::string box;
  std::optional<std::string> expect;
};

struct HistoryCase {
  const char* name;
  std::vector<std::string> calculated;
  std::vector<Step> steps;
};

class FormulaHistoryTest : public ::testing::TestWithParam<HistoryCase> {};

TEST_P(FormulaHistoryTest, Recall) {
  const HistoryCase& c = GetParam();
  FormulaHistory history;
  for (const auto& f : c.calculated) history.add(f);
  for (std::size_t i = 0; i < c.steps.size(); ++i) {
    const Step& s = c.steps[i];
    auto got = s.key == 'U' ? history.older(s.box) : history.newer();
    EXPECT_EQ(got, s.expect) << "step " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FormulaHistoryTest,
    ::testing::Values(
        HistoryCase{"Empty", {}, {{'U', "1+", std::nullopt}, {'D', "1+", std::nullopt}}},
        HistoryCase{"NewestFirstThenStopsAtOldest",
                    {"1+2", "sin(x)", "2^10"},
                    {{'U', "", "2^10"}, {'U', "2^10", "sin(x)"}, {'U', "sin(x)", "1+2"}, {'U', "1+2", std::nullopt}}},
        HistoryCase{"DownReturnsTheDraft",
                    {"1+2", "3*4"},
                    {{'U', "half typed", "3*4"},
                     {'U', "3*4", "1+2"},
                     {'D', "1+2", "3*4"},
                     {'D', "3*4", "half typed"},
                     {'D', "half typed", std::nullopt}}},
        HistoryCase{"DownWithoutBrowsingDoesNothing", {"1+2"}, {{'D', "x", std::nullopt}}},
        HistoryCase{"RepeatsAndBlanksAreNotKept",
                    {"1+2", "1+2", "   ", "", "5!", "1+2"},
                    {{'U', "", "1+2"}, {'U', "1+2", "5!"}, {'U', "5!", "1+2"}, {'U', "1+2", std::nullopt}}}),
    [](const ::testing::TestParamInfo<HistoryCase>& p) { return std::string(p.param.name); });

TEST(FormulaHistoryTest, CalcEndsBrowsing) {
  FormulaHistory history;
  history.add("1");
  history.add("2");
  ASSERT_EQ(history.older("draft"), "2");
  ASSERT_EQ(history.older("2"), "1");
  history.add("1");  // the recalled formula calculated again
  EXPECT_EQ(history.size(), 3u);
  EXPECT_EQ(history.older(""), "1");
  EXPECT_EQ(history.older("1"), "2");
  EXPECT_EQ(history.newer(), "1");
  EXPECT_EQ(history.newer(), "");  // the draft is the box as it was at the first Up
}

}  // namespace
}  // namespace merida

// Calc over the formula table in tests/data/formulas.tsv: answers, error numbers, faults.
#include <fstream>
#include <sstream>

#include "engine/engine.h"
#include "main/calculator.h"
#include "test_support.h"

namespace merida {
namespace {

struct Case {
  int line;
  std::string formula, expected;
  std::vector<std::string> replies;
  std::vector<std::string> functions;  // registered before the formula is computed
};

std::vector<std::string> SplitBars(const std::string& text) {
  std::vector<std::string> parts;
  std::stringstream s(text);
  for (std::string part; std::getline(s, part, '|');) parts.push_back(part);
  return parts;
}

std::vector<Case> ReadCases() {
  std::ifstream in(std::string(MERIDA_TEST_DATA) + "/formulas.tsv");
  std::vector<Case> cases;
  std::string row;
  for (int line = 1; std::getline(in, row); ++line) {
    if (row.empty() || row[0] == '#') continue;
    std::vector<std::string> cols;
    std::stringstream ss(row);
    for (std::string col; std::getline(ss, col, '\t');) cols.push_back(col);
    if (cols.size() < 2) continue;
    Case c{line, cols[0], cols[1], {}, {}};
    if (cols.size() > 2) c.replies = SplitBars(cols[2]);
    if (cols.size() > 3) c.functions = SplitBars(cols[3]);
    cases.push_back(c);
  }
  return cases;
}

TEST(Formulas, TableOfCalcResults) {
  auto cases = ReadCases();
  ASSERT_GT(cases.size(), 100u);
  for (const Case& c : cases) {
    SCOPED_TRACE("formulas.tsv line " + std::to_string(c.line) + ": " + c.formula);
    test::RecordingHost host;
    for (const auto& r : c.replies) host.answers.push_back(r);
    Engine engine(host);
    for (const auto& f : c.functions) EXPECT_TRUE(engine.RegisterFormula(f)) << f;
    auto answer = Calc(engine, c.formula);
    std::string got;
    if (answer) got = *answer;
    else if (!host.errors.empty()) got = "error " + std::to_string(host.errors.front());
    else if (!host.faults.empty()) got = "fault";
    else got = "silent";
    EXPECT_EQ(got, c.expected);
    EXPECT_LE(host.errors.size(), 1u) << "an action reports at most one error";
    EXPECT_EQ(host.faults.size(), c.expected == "fault" ? 1u : 0u);
  }
}

}  // namespace
}  // namespace merida

// The display language: read from MERIDA.DEF at start, captions of every window of the main group.
#include "gui_fixture.h"

namespace merida::test {
namespace {

const std::vector<Caption> kMainCaptions = {
    {"", "MERIDA", "メリダ電卓"}, {"Frame2", "Answer", "答"},      {"Command1", "Calc", "計算"},
    {"Command10", "Inter", "根"}, {"Command12", "Edit", "電卓"}, {"Command20", "Prime", "素数"},
};
const std::vector<Caption> kListCaptions = {{"", "Function List", "関数一覧"}, {"Command3", "Selct", "選択"}};
const std::vector<Caption> kPadCaptions = {{"", "Edit", "電卓"}, {"Command4", "Close", "中止"}};
const std::vector<Caption> kHelpCaptions = {
    {"", "Help", "ヘルプ"}, {"Frame1", "Calculate", "演算子"}, {"Command4", "Japan", "英語"}};

const std::vector<Caption> kErrorCaptions = {{"", "Error Message", "エラーメッセージ"},
                                             {"Command1", "OK", "OK"}};

struct SettingsCase {
  const char* file;  // contents of MERIDA.DEF, nullptr for none
  bool japanese;
};

void PrintTo(const SettingsCase& c, std::ostream* out) {
  *out << (c.file ? "\"" + std::string(c.file) + "\"" : std::string("no file"));
}

class StartLanguage : public GuiTest, public ::testing::WithParamInterface<SettingsCase> {};

TEST_P(StartLanguage, EveryWindowShowsTheCaptionsOfTheFile) {
  if (GetParam().file) writeFile("MERIDA.DEF", GetParam().file);
  start();
  bool japanese = GetParam().japanese;
  EXPECT_EQ(state().DisplayLanguage, japanese ? kJapanese : kEnglish);
  ExpectCaptions(&main(), kMainCaptions, japanese);
  press(3);
  ExpectCaptions(window(QStringLiteral("FunctionListWindow")), kListCaptions, japanese);
  press(12);
  ExpectCaptions(window(QStringLiteral("PadWindow")), kPadCaptions, japanese);
  press(8);
  ExpectCaptions(window(QStringLiteral("HelpWindow")), kHelpCaptions, japanese);
  calc("1/0");
  ExpectCaptions(window(QStringLiteral("ErrorWindow")), kErrorCaptions, japanese);
}

INSTANTIATE_TEST_SUITE_P(Settings, StartLanguage,
                         ::testing::Values(SettingsCase{nullptr, false}, SettingsCase{"Japanese\r\n", true},
                                           SettingsCase{"Japanese\nEnglish\n", true}, SettingsCase{"French\r\n", false}));

}  // namespace
}  // namespace merida::test

// The display language: read from MERIDA.DEF at start, captions of every window of the main group.
#include <QGroupBox>

#include "gui_fixture.h"

namespace merida::test {
namespace {

// control -> {English, Japanese}; "" names the window itself.
struct Caption {
  const char* control;
  const char* english;
  const char* japanese;
};

const std::vector<Caption> kMainCaptions = {
    {"", "MERIDA", "メリダ電卓"},    {"Frame1", "Function", "関数"}, {"Frame2", "Answer", "答"},
    {"Command1", "Calc", "計算"},    {"Command2", "Graph", "ｸﾞﾗﾌ"},  {"Command3", "List", "一覧"},
    {"Command4", "Rec", "登録"},     {"Command5", "Clear", "ｸﾘｱ"},   {"Command6", "End", "終了"},
    {"Command7", "Integ", "積分"},   {"Command8", "Help", "ﾍﾙﾌﾟ"},   {"Command9", "Diff", "微分"},
    {"Command10", "Inter", "根"},    {"Command11", "Contr", "等高"}, {"Command12", "Edit", "電卓"},
    {"Command13", "Simult", "連立"}, {"Command14", "Delay", "遅延"}, {"Command15", "Wave", "音"},
    {"Command16", "Matrix", "行列"}, {"Command17", "FFT", "FFT"},    {"Command18", "Load", "ﾌｧｲﾙ"},
    {"Command19", "Stat", "統計"},   {"Command20", "Prime", "素数"},
};

const std::vector<Caption> kListCaptions = {
    {"", "Function List", "関数一覧"}, {"Command4", "Rec", "記録"},   {"Command3", "Selct", "選択"},
    {"Command2", "Del", "削除"},       {"Command1", "Close", "中止"},
};

const std::vector<Caption> kPadCaptions = {
    {"", "Edit", "電卓"},     {"Command1", "M+", "M+"}, {"Command2", "M-", "M-"},
    {"Command3", "MC", "MC"}, {"Command5", "MR", "MR"}, {"Command4", "Close", "中止"},
};

const std::vector<Caption> kHelpCaptions = {
    {"", "Help", "ヘルプ"},
    {"Frame1", "Calculate", "演算子"},
    {"Frame2", "Function", "定義関数"},
    {"Command3", "Version", "ﾊﾞｰｼﾞｮﾝ"},
    {"Command4", "Japan", "英語"},
    {"Command5", "Manual", "説明書"},
    {"Command2", "Close", "中止"},
};

const std::vector<Caption> kErrorCaptions = {{"", "Error Message", "エラーメッセージ"},
                                             {"Command1", "OK", "OK"}};

QString CaptionOf(QWidget* window, const char* control) {
  if (!*control) return window->windowTitle();
  QWidget* w = window->findChild<QWidget*>(QString::fromLatin1(control));
  if (!w) return QStringLiteral("<missing %1>").arg(QString::fromLatin1(control));
  if (auto* frame = qobject_cast<QGroupBox*>(w)) return frame->title();
  if (auto* button = qobject_cast<QAbstractButton*>(w)) return button->text();
  return QStringLiteral("<no caption>");
}

void ExpectCaptions(QWidget* window, const std::vector<Caption>& table, bool japanese) {
  ASSERT_NE(window, nullptr);
  for (const Caption& c : table) {
    EXPECT_EQ(CaptionOf(window, c.control).toStdString(), japanese ? c.japanese : c.english)
        << window->objectName().toStdString() << " " << c.control;
  }
}

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
                         ::testing::Values(SettingsCase{nullptr, false}, SettingsCase{"English\r\n", false},
                                           SettingsCase{"Japanese\r\n", true}, SettingsCase{"Japanese", true},
                                           SettingsCase{"japanese\r\n", false},
                                           SettingsCase{"Japanese\nEnglish\n", true}, SettingsCase{"", false},
                                           SettingsCase{"French\r\n", false}));

}  // namespace
}  // namespace merida::test

// The Help window: both lists, the version box, the language switch and the manual.
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QListWidget>
#include <QMessageBox>

#include "gui_fixture.h"
#include "help/help_lists.h"

namespace merida::test {
namespace {

class UrlCatcher : public QObject {
  Q_OBJECT

 public:
  QList<QUrl> urls;

 public slots:
  void open(const QUrl& url) { urls << url; }
};

class Help : public GuiTest {
 protected:
  QWidget* openHelp() {
    press(8);
    QWidget* help = window(QStringLiteral("HelpWindow"));
    EXPECT_NE(help, nullptr);
    return help;
  }
  static QStringList lines(QWidget* help, const char* list) {
    QStringList out;
    auto* box = child<QListWidget>(help, list);
    for (int i = 0; box && i < box->count(); ++i) out << box->item(i)->text();
    return out;
  }
  static QStringList expected(std::span<const std::string_view> source) {
    QStringList out;
    for (std::string_view line : source)
      out << QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()));
    return out;
  }
  // Presses the language switch and answers the Yes/No box; returns its title and text.
  std::pair<QString, QString> switchLanguage(QWidget* help, QMessageBox::StandardButton answer) {
    std::pair<QString, QString> box;
    OnNextModal<QMessageBox>([&box, answer](QMessageBox* question) {
      box = {question->windowTitle(), question->text()};
      EXPECT_NE(question->button(QMessageBox::Yes), nullptr);
      EXPECT_NE(question->button(QMessageBox::No), nullptr);
      question->button(answer)->click();
    });
    click(help, "Command4");
    return box;
  }
  QString frameTitle(const char* frame) { return child<QGroupBox>(&main(), frame)->title(); }
};

TEST_F(Help, SwitchRenewsMainAndHelpAndRewritesTheFile) {
  start();
  QWidget* help = openHelp();
  const QStringList englishOperators = expected(OperatorLines(kEnglish));
  const QStringList englishFunctions = expected(FunctionLines(kEnglish));
  EXPECT_EQ(lines(help, "List1"), englishOperators);
  EXPECT_EQ(lines(help, "List2"), englishFunctions);

  auto box = switchLanguage(help, QMessageBox::Yes);
  EXPECT_EQ(box.first, "English To Japanese");
  EXPECT_EQ(box.second, "Japanese Transfer?");
  EXPECT_EQ(state().DisplayLanguage, kJapanese);
  EXPECT_EQ(main().windowTitle(), "メリダ電卓");
  EXPECT_EQ(frameTitle("Frame2"), "答");
  EXPECT_EQ(help->windowTitle(), "ヘルプ");
  EXPECT_EQ(lines(help, "List1"), expected(OperatorLines(kJapanese)));
  EXPECT_EQ(lines(help, "List2"), expected(FunctionLines(kJapanese)));
  EXPECT_EQ(readFile("MERIDA.DEF"), "Japanese\r\n");

  box = switchLanguage(help, QMessageBox::Yes);
  EXPECT_EQ(box.first, "日本語を英語にする");
  EXPECT_EQ(box.second, "英語にしますか?");
  EXPECT_EQ(state().DisplayLanguage, kEnglish);
  EXPECT_EQ(child<QPushButton>(&main(), "Command20")->text(), "Prime");
  EXPECT_EQ(help->windowTitle(), "Help");
  EXPECT_EQ(lines(help, "List1"), englishOperators);
  EXPECT_EQ(lines(help, "List2"), englishFunctions);
  EXPECT_EQ(readFile("MERIDA.DEF"), "English\r\n");

  // The next start reads the language back, lists included.
  switchLanguage(help, QMessageBox::Yes);
  start();
  EXPECT_EQ(state().DisplayLanguage, kJapanese);
  EXPECT_EQ(child<QPushButton>(&main(), "Command8")->text(), "ﾍﾙﾌﾟ");
  EXPECT_EQ(lines(openHelp(), "List2"), expected(FunctionLines(kJapanese)));
}

TEST_F(Help, NoChangesNothingButWritesTheFile) {
  start();
  QWidget* help = openHelp();
  QStringList before = lines(help, "List2");
  ASSERT_EQ(readFile("MERIDA.DEF"), "");
  switchLanguage(help, QMessageBox::No);
  EXPECT_EQ(state().DisplayLanguage, kEnglish);
  EXPECT_EQ(main().windowTitle(), "MERIDA");
  EXPECT_EQ(help->windowTitle(), "Help");
  EXPECT_EQ(lines(help, "List2"), before);
  EXPECT_EQ(readFile("MERIDA.DEF"), "English\r\n");
}

TEST_F(Help, WindowsAlreadyOpenKeepTheirCaptionsAndLaterOnesUseTheNewLanguage) {
  start();
  press(12);
  QWidget* pad = window(QStringLiteral("PadWindow"));
  ASSERT_NE(pad, nullptr);
  switchLanguage(openHelp(), QMessageBox::Yes);
  EXPECT_EQ(pad->windowTitle(), "Edit");
  EXPECT_EQ(child<QPushButton>(pad, "Command4")->text(), "Close");

  press(3);
  QWidget* list = window(QStringLiteral("FunctionListWindow"));
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->windowTitle(), "関数一覧");
  calc("ln(0)");
  EXPECT_EQ(window(QStringLiteral("ErrorWindow"))->windowTitle(), "エラーメッセージ");
}

TEST_F(Help, VersionBoxInBothLanguages) {
  for (bool japanese : {false, true}) {
    writeFile("MERIDA.DEF", japanese ? "Japanese\r\n" : "English\r\n");
    start();
    QWidget* help = openHelp();
    QString title, text;
    int buttons = 0;
    OnNextModal<QMessageBox>([&](QMessageBox* box) {
      title = box->windowTitle();
      text = box->text();
      buttons = static_cast<int>(box->buttons().size());
      box->button(QMessageBox::Ok)->click();
    });
    click(help, "Command3");
    EXPECT_EQ(title, japanese ? "バージョン情報" : "Version Number");
    EXPECT_EQ(text, japanese ? "メリダ電卓  Ver.7.6" : "Merida Calculator  Ver.7.6");
    EXPECT_EQ(buttons, 1);
  }
}

// The manual beside the program (a build), else where an installation puts it.
TEST_F(Help, ManualOpensMeridaHtmBesideTheProgramOrInstalled) {
  const QDir programDir(QCoreApplication::applicationDirPath());
  const QString beside = programDir.filePath("Merida.htm");
  ASSERT_FALSE(QFileInfo::exists(beside)) << "the test program's directory holds no manual";
  start();
  for (bool installed : {true, false}) {
    if (!installed) QFile(beside).open(QIODevice::WriteOnly);
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &catcher, "open");
    click(openHelp(), "Command5");
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    if (!installed) QFile::remove(beside);
    ASSERT_EQ(catcher.urls.size(), 1);
    const QString expected = installed ? QDir::cleanPath(programDir.filePath("../share/merida/Merida.htm")) : beside;
    EXPECT_EQ(catcher.urls[0], QUrl::fromLocalFile(expected)) << installed;
  }
}

TEST_F(Help, CloseClosesTheWindow) {
  start();
  click(openHelp(), "Command2");
  EXPECT_EQ(window(QStringLiteral("HelpWindow")), nullptr);
}

}  // namespace
}  // namespace merida::test

#include "help_test.moc"

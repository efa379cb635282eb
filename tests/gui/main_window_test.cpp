// The main window and what it opens first: Calc with its input and fault boxes, its keys and
// buttons, the Error Message window, the pad, the Function List and the Help window.
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QListWidget>
#include <filesystem>

#include "graph/parameter_window.h"
#include "gui_fixture.h"
#include "help/help_lists.h"

namespace merida::test {
namespace {

struct CalcCase {
  const char* formula;
  std::vector<std::string> replies;  // input box answers in order; "" cancels
  const char* answer;                // "" when no answer is shown
  std::vector<std::string> prompts;  // the variables asked for
  const char* error = "";            // the Error Message window's text
  size_t faults = 0;                 // fault boxes shown
};

void PrintTo(const CalcCase& c, std::ostream* out) { *out << '"' << c.formula << '"'; }

class CalcFlow : public GuiTest, public ::testing::WithParamInterface<CalcCase> {};

TEST_P(CalcFlow, ShowsTheAnswerAsksForEachVariableAndReportsTheRest) {
  const CalcCase& c = GetParam();
  start();
  EXPECT_EQ(calc("1+1"), "2");
  replies_.assign(c.replies.begin(), c.replies.end());
  EXPECT_EQ(calc(QString::fromUtf8(c.formula)).toStdString(), c.answer);
  EXPECT_EQ(prompts_, c.prompts);
  EXPECT_TRUE(replies_.empty()) << "input boxes not asked";
  EXPECT_EQ(errorText().toStdString(), c.error);
  EXPECT_EQ(calc("2+2"), "4") << "the next Calc works as before";
  EXPECT_EQ(faults_.size(), c.faults);
}

INSTANTIATE_TEST_SUITE_P(
    MainWindow, CalcFlow,
    ::testing::Values(CalcCase{"1/3", {}, "0.333333333333333", {}}, CalcCase{"a-b", {"10", "3"}, "7", {"a", "b"}},
                      CalcCase{"a+b", {"1", ""}, "", {"a", "b"}}, CalcCase{"f(x)=x+1", {"2"}, "3", {"x"}},
                      CalcCase{"1/0", {}, "", {}, "0で割ることは不可です"},
                      CalcCase{"(1+2", {}, "", {}, "括弧の個数が合いません"}, CalcCase{"13!", {}, "", {}, "", 1}));

// The real boxes: the input box asks with the variable and "0"; the fault box speaks the
// display language with room for its title beside the window's own buttons.
TEST_F(GuiTest, RealInputAndFaultBoxes) {
  for (const char* language : {"English", "Japanese"}) {
    writeFile("MERIDA.DEF", std::string(language) + "\r\n");
    start();
    app_->host().setAnswerFunction({});
    app_->host().setFaultFunction({});
    QStringList asked;
    OnNextModal<QInputDialog>([&](QInputDialog* box) {
      asked = {box->windowTitle(), box->labelText(), box->textValue()};
      box->setTextValue("4");
      box->accept();
    });
    EXPECT_EQ(QStringList{calc("x*2")} + asked, (QStringList{"8", "データ入力", "x", "0"}));
    OnNextModal<QInputDialog>([](QInputDialog* box) { box->reject(); });
    EXPECT_EQ(calc("y+1") + errorText(), "");
    QStringList fault;
    int width = 0, titleWidth = 0;
    OnNextModal<QMessageBox>([&](QMessageBox* box) {
      fault = {box->windowTitle(), box->text()};
      width = box->width();
      titleWidth = box->fontMetrics().horizontalAdvance(box->windowTitle());
      box->accept();
    });
    EXPECT_EQ(calc("13!"), "");
    EXPECT_EQ(fault, (QStringList{main().windowTitle(), *language == 'J' ? "オーバーフローしました" : "Overflow"}));
    EXPECT_GE(width, std::max(titleWidth + 120, 300)) << language;
  }
}

TEST_F(GuiTest, FormulaBoxKeysAnswerLabelClearAndEnd) {
  start();
  main().activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&main()));
  QLineEdit* text = main().Text1;
  text->setFocus();
  enter(text, "2^10");
  EXPECT_TRUE(text->hasFocus()) << "Enter keeps the cursor in the box";
  calc("1+2");
  EXPECT_TRUE(text->hasFocus()) << "a click on Calc gives it back";
  // Up and Down recall calculated formulas and come back to the one being typed.
  text->setText("sin(");
  for (auto [key, shown] :
       {std::pair{Qt::Key_Up, "1+2"}, {Qt::Key_Up, "2^10"}, {Qt::Key_Down, "1+2"}, {Qt::Key_Down, "sin("}}) {
    QTest::keyClick(text, key);
    EXPECT_EQ(text->text(), shown);
  }
  EXPECT_TRUE(child<QLabel>(&main(), "Label1")->textInteractionFlags() & Qt::TextSelectableByKeyboard);
  press(5);  // Clear
  EXPECT_EQ(main().formulaText() + "|" + main().answerText(), "|3");
  int closed = 0;
  QObject::connect(&main(), &MainWindow::closed, [&closed] { ++closed; });
  press(6);  // End
  EXPECT_TRUE(!main().isVisible() && closed == 1);
}

// Loaded with the first message (a bad store line at start, the rest loading), only raised
// while open, never modal, beside the window that raised it.
TEST_F(GuiTest, ErrorWindowKeepsItsFirstMessageAndOpensBesideItsRaiser) {
  writeFile("MERIDA.DAT", "sq(x)=x*x\r\nsq(t)=t\r\ncube(x)=x*x*x\r\n");
  start();
  EXPECT_EQ(errorText(), "このユーザ関数は既に登録されています");
  EXPECT_EQ(calc("cube(2)+sq(3)"), "17");
  acknowledgeError();
  main().move(40, 40);
  calc("1/0");
  calc("sqr(-1)");
  QWidget* errors = window("ErrorWindow");
  EXPECT_EQ(errorText(), "0で割ることは不可です");
  // English mode puts the English of the message on a second line.
  auto* english = child<QLabel>(errors, "EnglishLabel");
  EXPECT_TRUE(english->isVisible() && english->text() == "Division by zero is not allowed");
  EXPECT_FALSE(errors->isModal() || QApplication::activeModalWidget());
  EXPECT_FALSE(errors->frameGeometry().intersects(main().frameGeometry()));
  errors->close();
  QWidget* graph = open("GraphWindow");
  graph->move(300, 300);
  QApplication::setActiveWindow(graph);
  fill(graph, {{"formula", "x*y"}});
  click(graph, "Command1");
  EXPECT_EQ(errorText(), "グラフおよび積分の変数は１個までです");
  EXPECT_FALSE(window("ErrorWindow")->frameGeometry().intersects(graph->frameGeometry()));
}

// The pad adds the answer label's 15 digits, not the full double, and keeps its memory.
TEST_F(GuiTest, PadButtonsReachTheAnswerLabelAndTheMemoryOutlivesTheWindow) {
  start();
  QWidget* pad = open("PadWindow");
  auto display = [&] { return child<QLabel>(pad, "Label1")->text(); };
  click(pad, "Command1");  // no answer yet: nothing changes
  calc("1/4");
  click(pad, "Command2");
  calc("1/3");
  click(pad, "Command1");
  main().setFormulaText("");
  click(pad, "Command5");
  EXPECT_EQ(display() + "|" + main().formulaText(), "0.083333333333333|0.083333333333333");
  click(pad, "Command4");
  pad = open("PadWindow");
  EXPECT_EQ(display(), "0.083333333333333");
  click(pad, "Command3");
  EXPECT_EQ(std::pair(display(), state().MemoryValue), std::pair(QString("0"), 0.0));
}

// Rec lists, Del deletes the chosen line once, the list's Rec writes the store that the next
// start reads, Select copies a line into the main formula box, or, while a parametric graph is
// set up, into the active parameter box.
TEST_F(GuiTest, FunctionListShowsDeletesSavesAndSelects) {
  start();
  rec("sq(x)=x*x");
  rec("x^2+y");
  rec("h(x)=x+y");  // refused: an extra variable
  EXPECT_EQ(errorText(), "式の変数が余分です");
  QWidget* list = open("FunctionListWindow");
  auto* lines = child<QListWidget>(list, "List1");
  EXPECT_EQ(Lines(lines), (QStringList{"sq(x)=x*x", "f_1(x,y)=x^2+y"}));
  EXPECT_EQ(open("FunctionListWindow"), list) << "one window";
  main().setFormulaText("kept");
  click(list, "Command3");  // Select without a choice
  lines->setCurrentRow(0);
  click(list, "Command2");
  click(list, "Command2");  // Del again without a new choice
  EXPECT_EQ(Lines(lines), QStringList{"f_1(x,y)=x^2+y"});
  EXPECT_EQ(std::pair(main().formulaText(), engine().userFunctionCount()), std::pair(QString("kept"), int16_t{1}));
  EXPECT_EQ(readFile("MERIDA.DAT"), "") << "nothing is saved without the list's Rec";
  click(list, "Command4");
  EXPECT_EQ(readFile("MERIDA.DAT"), "f_1(x@y)=x^2+y\r\n");

  start();
  main().setFormulaText("cos(t)");
  auto* parameter = open<ParameterWindow>();
  QTest::keyClicks(parameter->Text2, "s");  // typing makes the second box active
  click(parameter, "Command1");             // its List button
  for (const char* target : {"Text2", "formula"}) {
    list = open("FunctionListWindow");
    child<QListWidget>(list, "List1")->setCurrentRow(0);
    click(list, "Command3");
    EXPECT_EQ(window("FunctionListWindow"), nullptr);
    EXPECT_EQ(parameter->Text1->text() + "|" + parameter->Text2->text() + "|" + main().formulaText(),
              *target == 'T' ? "cos(t)|f_1(x,y)=x^2+y|cos(t)" : "cos(t)|f_1(x,y)=x^2+y|f_1(x,y)=x^2+y");
    click(parameter, "Command3");  // Close: back to the normal mode, where choices go to the main window
  }
}

class UrlCatcher : public QObject {
  Q_OBJECT

 public:
  QList<QUrl> urls;

 public slots:
  void open(const QUrl& url) { urls << url; }
};

// The lists, the version box and the switch (which rewrites the file, Yes or No) in each
// language; the manual beside the program (a build), else where an installation puts it.
TEST_F(GuiTest, HelpListsVersionLanguageSwitchAndManual) {
  auto lists = [](int16_t language) {
    QStringList out;
    for (auto lines : {OperatorLines(language), FunctionLines(language)}) {
      for (std::string_view l : lines) out << QString::fromUtf8(l.data(), static_cast<qsizetype>(l.size()));
    }
    return out;
  };
  // Each step's boxes are in the language before it: the version box, then the switch's question.
  const QStringList english{"Version Number", "Merida Calculator  Ver.7.6", "English To Japanese",
                            "Japanese Transfer?"};
  const QStringList japanese{"バージョン情報", "メリダ電卓  Ver.7.6", "日本語を英語にする", "英語にしますか?"};
  start();
  for (auto [answer, boxes, language] : {std::tuple{QMessageBox::No, english, kEnglish},
                                         {QMessageBox::Yes, english, kJapanese},
                                         {QMessageBox::Yes, japanese, kEnglish},
                                         {QMessageBox::Yes, english, kJapanese},
                                         {QMessageBox::No, japanese, kJapanese}}) {
    QWidget* help = open("HelpWindow");
    QStringList version, question;
    AnswerNextBox(QMessageBox::Ok, &version);
    click(help, "Command3");
    AnswerNextBox(answer, &question);
    click(help, "Command4");
    EXPECT_EQ(version + question, boxes);
    EXPECT_EQ(state().DisplayLanguage, language);
    EXPECT_EQ(Lines(child<QListWidget>(help, "List1")) + Lines(child<QListWidget>(help, "List2")), lists(language));
    EXPECT_EQ(readFile("MERIDA.DEF"), language == kJapanese ? "Japanese\r\n" : "English\r\n");
    if (answer == QMessageBox::Yes && language == kJapanese) start();  // the next start reads it back
  }

  const QDir programDir(QCoreApplication::applicationDirPath());
  const QString beside = programDir.filePath("Merida.htm");
  ASSERT_FALSE(QFileInfo::exists(beside)) << "the test program's directory holds no manual";
  for (bool installed : {true, false}) {
    if (!installed) QFile(beside).open(QIODevice::WriteOnly);
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler("file", &catcher, "open");
    click(open("HelpWindow"), "Command5");
    QDesktopServices::unsetUrlHandler("file");
    if (!installed) QFile::remove(beside);
    const QString expected = installed ? QDir::cleanPath(programDir.filePath("../share/merida/Merida.htm")) : beside;
    EXPECT_EQ(catcher.urls, QList<QUrl>{QUrl::fromLocalFile(expected)}) << installed;
  }
}

}  // namespace
}  // namespace merida::test

#include "main_window_test.moc"

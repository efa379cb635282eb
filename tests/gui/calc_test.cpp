// Calc of the main window: answers, asked variables, errors, faults and the keyboard.
#include <QLabel>
#include <QLineEdit>

#include "gui_fixture.h"

namespace merida::test {
namespace {

struct CalcCase {
  const char* formula;
  std::vector<std::string> replies;  // input box answers in order; "" cancels
  const char* answer;                // "" when no answer is shown
  std::vector<std::string> prompts;  // the variables asked for
};

void PrintTo(const CalcCase& c, std::ostream* out) { *out << '"' << c.formula << '"'; }

class CalcFlow : public GuiTest, public ::testing::WithParamInterface<CalcCase> {};

TEST_P(CalcFlow, ShowsTheAnswerAndAsksForEachVariable) {
  const CalcCase& c = GetParam();
  start();
  replies_.assign(c.replies.begin(), c.replies.end());
  EXPECT_EQ(calc(QString::fromUtf8(c.formula)).toStdString(), c.answer);
  EXPECT_EQ(prompts_, c.prompts);
  EXPECT_TRUE(replies_.empty()) << "input boxes not asked";
  EXPECT_EQ(errorText(), QString());
  EXPECT_TRUE(faults_.empty());
}

INSTANTIATE_TEST_SUITE_P(
    MainWindow, CalcFlow,
    ::testing::Values(CalcCase{"1/3", {}, "0.333333333333333", {}}, CalcCase{"x*2", {"4"}, "8", {"x"}},
                      CalcCase{"a-b", {"10", "3"}, "7", {"a", "b"}}, CalcCase{"a+b", {"1", ""}, "", {"a", "b"}}));

TEST_F(GuiTest, HeaderOfACalcIsAskedForButNotRegistered) {
  start();
  replies_ = {"2"};
  EXPECT_EQ(calc("f(x)=x+1"), "3");
  EXPECT_EQ(prompts_, std::vector<std::string>{"x"});
  EXPECT_EQ(engine().userFunctionCount(), 0);
}

TEST_F(GuiTest, AnErrorLeavesTheAnswerEmptyAndShowsTheMessage) {
  for (auto [formula, message] : {std::pair{"1/0", "0で割ることは不可です"}, std::pair{"(1+2", "括弧の個数が合いません"}}) {
    start();
    EXPECT_EQ(calc("1+1"), "2");
    EXPECT_EQ(calc(QString::fromUtf8(formula)), "");
    EXPECT_EQ(errorText().toStdString(), message);
    EXPECT_TRUE(faults_.empty());
  }
}

TEST_F(GuiTest, AFaultShowsOnceAndNoAnswer) {
  start();
  EXPECT_EQ(calc("13!"), "");
  EXPECT_EQ(faults_.size(), 1u);
  EXPECT_EQ(errorText(), QString());
  EXPECT_EQ(calc("2+2"), "4");  // the next Calc works normally
  EXPECT_EQ(faults_.size(), 1u);
}

TEST_F(GuiTest, EnterInTheFormulaBoxRunsCalcAndKeepsTheFocus) {
  start();
  main().activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&main()));
  auto* text = child<QLineEdit>(&main(), "Text1");
  text->setFocus();
  QTest::keyClicks(text, "6*7");
  QTest::keyClick(text, Qt::Key_Return);
  EXPECT_EQ(main().answerText(), "42");
  EXPECT_TRUE(text->hasFocus());

  // A mouse click on Calc gives the focus back to the formula box.
  text->setText("1+1");
  click(&main(), "Command1");
  EXPECT_EQ(main().answerText(), "2");
  EXPECT_TRUE(text->hasFocus());
}

TEST_F(GuiTest, AnswerCanBeSelectedAndCopied) {
  start();
  calc("1/3");
  auto* label = child<QLabel>(&main(), "Label1");
  EXPECT_TRUE(label->textInteractionFlags() & Qt::TextSelectableByMouse);
  EXPECT_TRUE(label->textInteractionFlags() & Qt::TextSelectableByKeyboard);
  label->setSelection(0, label->text().size());
  EXPECT_EQ(label->selectedText(), "0.333333333333333");
}

TEST_F(GuiTest, ClearEmptiesOnlyTheFormulaBox) {
  start();
  calc("2*21");
  press(5);
  EXPECT_EQ(main().formulaText(), "");
  EXPECT_EQ(main().answerText(), "42");
}

TEST_F(GuiTest, EndClosesTheMainWindow) {
  start();
  ASSERT_TRUE(main().isVisible());
  int closed = 0;
  QObject::connect(&main(), &MainWindow::closed, [&closed] { ++closed; });
  press(6);
  EXPECT_FALSE(main().isVisible());
  EXPECT_EQ(closed, 1);
}

TEST_F(GuiTest, EveryButtonHasItsWindowAndOneWithoutAnOpenerIsDisabled) {
  start();
  for (int n = 1; n <= 20; ++n) {
    auto* button = child<QPushButton>(&main(), ("Command" + std::to_string(n)).c_str());
    EXPECT_TRUE(button->isEnabled()) << n;
    EXPECT_TRUE(button->toolTip().isEmpty()) << n;
  }
  press(19);
  EXPECT_NE(window(QStringLiteral("StatWindow")), nullptr);

  // A button whose opener is taken away says so instead of doing nothing.
  auto* stat = child<QPushButton>(&main(), "Command19");
  main().setToolOpener(19, {});
  EXPECT_FALSE(stat->isEnabled());
  EXPECT_EQ(stat->toolTip(), "This window is not available yet.");
  int opened = 0;
  main().setToolOpener(19, [&opened] { ++opened; });
  EXPECT_TRUE(stat->isEnabled());
  EXPECT_TRUE(stat->toolTip().isEmpty());
  press(19);
  EXPECT_EQ(opened, 1);
}

TEST_F(GuiTest, RealInputBoxAsksWithTheVariableAndDefaultZero) {
  start();
  app_->host().setAnswerFunction({});
  QString title, label, preset;
  OnNextModal<QInputDialog>([&](QInputDialog* box) {
    title = box->windowTitle();
    label = box->labelText();
    preset = box->textValue();
    box->setTextValue("4");
    box->accept();
  });
  EXPECT_EQ(calc("x*2"), "8");
  EXPECT_EQ(title, "データ入力");
  EXPECT_EQ(label, "x");
  EXPECT_EQ(preset, "0");

  OnNextModal<QInputDialog>([](QInputDialog* box) { box->reject(); });
  EXPECT_EQ(calc("y+1"), "");
  EXPECT_EQ(errorText(), QString());
}

}  // namespace
}  // namespace merida::test

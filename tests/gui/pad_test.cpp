// The calculator pad: M+, M-, MC, MR and a memory that outlives the window.
#include <QLabel>

#include "gui_fixture.h"

namespace merida::test {
namespace {

class Pad : public GuiTest {
 protected:
  QWidget* openPad() {
    press(12);
    QWidget* pad = window(QStringLiteral("PadWindow"));
    EXPECT_NE(pad, nullptr);
    return pad;
  }
  QString display(QWidget* pad) { return child<QLabel>(pad, "Label1")->text(); }
};

TEST_F(Pad, AddsAnswersAndRecallsTheSum) {
  start();
  QWidget* pad = openPad();
  EXPECT_EQ(display(pad), "");
  calc("2");
  click(pad, "Command1");
  calc("3");
  click(pad, "Command1");
  EXPECT_EQ(display(pad), "5");
  main().setFormulaText("");
  click(pad, "Command5");
  EXPECT_EQ(main().formulaText(), "5");
}

TEST_F(Pad, SubtractsAndKeepsFractions) {
  start();
  QWidget* pad = openPad();
  calc("1/4");
  click(pad, "Command2");
  EXPECT_EQ(display(pad), "-0.25");
  // The label's 15 digits are what is added, not the full double.
  calc("1/3");
  click(pad, "Command1");
  EXPECT_EQ(display(pad), "0.083333333333333");
  click(pad, "Command5");
  EXPECT_EQ(main().formulaText(), "0.083333333333333");
  EXPECT_EQ(calc(main().formulaText()), "0.083333333333333");
}

TEST_F(Pad, ClearThenRecallGivesZero) {
  start();
  QWidget* pad = openPad();
  calc("9");
  click(pad, "Command1");
  click(pad, "Command3");
  EXPECT_EQ(display(pad), "0");
  EXPECT_EQ(state().MemoryValue, 0);
  click(pad, "Command5");
  EXPECT_EQ(main().formulaText(), "0");
}

TEST_F(Pad, EmptyAnswerAndEmptyDisplayChangeNothing) {
  start();
  QWidget* pad = openPad();
  ASSERT_EQ(main().answerText(), "");
  click(pad, "Command1");
  click(pad, "Command2");
  EXPECT_EQ(display(pad), "");
  EXPECT_EQ(state().MemoryValue, 0);
  main().setFormulaText("kept");
  click(pad, "Command5");
  EXPECT_EQ(main().formulaText(), "kept");
}

TEST_F(Pad, MemorySurvivesClosingAndReopening) {
  start();
  QWidget* pad = openPad();
  calc("7");
  click(pad, "Command1");
  click(pad, "Command4");
  EXPECT_EQ(window(QStringLiteral("PadWindow")), nullptr);
  pad = openPad();
  EXPECT_EQ(display(pad), "7");
}

}  // namespace
}  // namespace merida::test

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

// The arithmetic is the memory pad's (tests/main); here the buttons reach it with the answer label's text.
TEST_F(Pad, ButtonsAddSubtractClearAndRecallTheAnswerLabel) {
  start();
  QWidget* pad = openPad();
  EXPECT_EQ(display(pad), "");
  click(pad, "Command1");  // no answer yet: nothing changes
  EXPECT_EQ(display(pad), "");
  calc("1/4");
  click(pad, "Command2");
  EXPECT_EQ(display(pad), "-0.25");
  // The label's 15 digits are what is added, not the full double.
  calc("1/3");
  click(pad, "Command1");
  EXPECT_EQ(display(pad), "0.083333333333333");
  main().setFormulaText("");
  click(pad, "Command5");
  EXPECT_EQ(main().formulaText(), "0.083333333333333");
  click(pad, "Command3");
  EXPECT_EQ(display(pad), "0");
  EXPECT_EQ(state().MemoryValue, 0);
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

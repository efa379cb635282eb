// The Error Message window: loaded with the first message, only raised while it stays open.
#include "gui_fixture.h"

namespace merida::test {
namespace {

TEST_F(GuiTest, TwoErrorsInARowKeepTheFirstMessage) {
  start();
  calc("1/0");
  EXPECT_EQ(errorText(), "0で割ることは不可です");
  calc("sqr(-1)");
  EXPECT_EQ(errorText(), "0で割ることは不可です");
  rec("h(x)=x+y");
  EXPECT_EQ(errorText(), "0で割ることは不可です");
}

TEST_F(GuiTest, AfterOkOrClosingTheNextErrorShowsItsOwnMessage) {
  start();
  calc("1/0");
  acknowledgeError();
  EXPECT_EQ(window(QStringLiteral("ErrorWindow")), nullptr);
  calc("sqr(-1)");
  EXPECT_EQ(errorText(), "負の平方根は不可です");
  window(QStringLiteral("ErrorWindow"))->close();
  calc("log(-1)");
  EXPECT_EQ(errorText(), "0,負のlogは不可です");
}

TEST_F(GuiTest, ErrorWindowIsNotModal) {
  start();
  calc("1/0");
  QWidget* errors = window(QStringLiteral("ErrorWindow"));
  ASSERT_NE(errors, nullptr);
  EXPECT_FALSE(errors->isModal());
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  // The main window keeps working while the message is shown.
  EXPECT_EQ(calc("2+3"), "5");
}

TEST_F(GuiTest, BadStoreLinesAreReportedAtStartAndTheRestLoads) {
  writeFile("MERIDA.DAT", "sq(x)=x*x\r\nsq(t)=t\r\ncube(x)=x*x*x\r\n");
  start();
  EXPECT_EQ(errorText(), "このユーザ関数は既に登録されています");
  EXPECT_EQ(engine().userFunctionCount(), 2);
  EXPECT_EQ(calc("cube(2)+sq(3)"), "17");
}

}  // namespace
}  // namespace merida::test

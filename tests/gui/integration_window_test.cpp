// The Integration windows through their buttons: the answer lands in the main window.
#include "calculus/integration_window.h"
#include "gui_fixture.h"

namespace merida::test {
namespace {

class IntegrationWindows : public GuiTest {
 protected:
  IntegrationWindow* open(const QString& formula) {
    main().setFormulaText(formula);
    press(7);
    return qobject_cast<IntegrationWindow*>(window(QStringLiteral("IntegrationWindow")));
  }
};

TEST_F(IntegrationWindows, GoWritesTheAnswerAndTheEvenedCount) {
  start();
  IntegrationWindow* w = open("x^2");
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(w->Text3->text(), "50");
  w->Text1->setText("0");
  w->Text2->setText("1");
  w->Text3->setText("7");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(main().answerText(), "0.333333333333333");
  EXPECT_EQ(w->Text3->text(), "8");

  // A reversed range clears the answer and shows nothing else.
  w->Text2->setText("-1");
  QTest::keyClick(w->Text2, Qt::Key_Return);
  EXPECT_EQ(main().answerText(), "");
  EXPECT_EQ(errorText(), "");

  main().setFormulaText("x*y");
  w->Text2->setText("1");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(errorText(), "グラフおよび積分の変数は１個までです");
  EXPECT_EQ(main().answerText(), "");
}

TEST_F(IntegrationWindows, DoubleOpensOnlyForTwoVariables) {
  start();
  IntegrationWindow* w = open("sin(x)");
  ASSERT_NE(w, nullptr);
  QTest::mouseClick(w->Command3, Qt::LeftButton);
  EXPECT_EQ(errorText(), "２重積分の変数は２個です");
  EXPECT_EQ(window(QStringLiteral("DoubleIntegrationWindow")), nullptr);
  acknowledgeError();

  main().setFormulaText("x*y");
  QTest::mouseClick(w->Command3, Qt::LeftButton);
  DoubleIntegrationWindow* d = w->doubleWindow();
  ASSERT_NE(d, nullptr);
  ASSERT_TRUE(d->isVisible());
  EXPECT_FALSE(d->frameGeometry().intersects(w->frameGeometry())) << "opens beside the Integration window";
  EXPECT_EQ(d->Label1->text(), "x");
  EXPECT_EQ(d->Label2->text(), "y");
  EXPECT_EQ(d->Text3->text(), "20");
  EXPECT_EQ(d->Text6->text(), "20");
  d->Text1->setText("0");
  d->Text2->setText("1");
  d->Text3->setText("5");
  d->Text4->setText("0");
  d->Text5->setText("2");
  QTest::mouseClick(d->Command1, Qt::LeftButton);
  EXPECT_EQ(main().answerText(), "1");
  EXPECT_EQ(d->Text3->text(), "5") << "an odd count is used evened, the box keeps it";

  // Close of the Integration window closes both.
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_FALSE(w->isVisible());
  EXPECT_FALSE(d->isVisible());
  EXPECT_EQ(engine().BindToX, -1);
}

TEST_F(IntegrationWindows, CloseDuringALongRunStopsItWithoutAnAnswer) {
  start();
  IntegrationWindow* w = open("x*y");
  ASSERT_NE(w, nullptr);
  QTest::mouseClick(w->Command3, Qt::LeftButton);
  DoubleIntegrationWindow* d = w->doubleWindow();
  ASSERT_NE(d, nullptr);
  for (QLineEdit* box : {d->Text1, d->Text4}) box->setText("0");
  for (QLineEdit* box : {d->Text2, d->Text5}) box->setText("1");
  d->Text3->setText("10000");
  d->Text6->setText("10000");
  main().setAnswerText("old");
  QTimer::singleShot(50, d, [d] { QTest::mouseClick(d->Command2, Qt::LeftButton); });
  QTest::mouseClick(d->Command1, Qt::LeftButton);  // 225 million points unless stopped
  EXPECT_FALSE(d->running());
  EXPECT_FALSE(d->isVisible());
  EXPECT_EQ(main().answerText(), "");
}

}  // namespace
}  // namespace merida::test

// The Integration windows through their buttons: the answer lands in the main window.
#include "calculus/integration_window.h"
#include "gui_fixture.h"

#include <QElapsedTimer>
#include <QProgressBar>

namespace merida::test {
namespace {

class IntegrationWindows : public GuiTest {
 protected:
  IntegrationWindow* open(const QString& formula) {
    main().setFormulaText(formula);
    press(7);
    return qobject_cast<IntegrationWindow*>(window(QStringLiteral("IntegrationWindow")));
  }
  // The run ends on a worker thread; its answer and messages come after.
  static void waitForRun(IntegrationWindow* w) { EXPECT_TRUE(QTest::qWaitFor([w] { return !w->running(); }, 10000)); }
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
  waitForRun(w);
  EXPECT_EQ(main().answerText(), "0.333333333333333");
  EXPECT_EQ(w->Text3->text(), "8");

  // A reversed range clears the answer and shows nothing else.
  w->Text2->setText("-1");
  QTest::keyClick(w->Text2, Qt::Key_Return);
  waitForRun(w);
  EXPECT_EQ(main().answerText(), "");
  EXPECT_EQ(errorText(), "");

  main().setFormulaText("x*y");
  w->Text2->setText("1");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  waitForRun(w);
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
  ASSERT_TRUE(QTest::qWaitFor([d] { return !d->running(); }, 5000));
  EXPECT_EQ(main().answerText(), "1");
  EXPECT_EQ(d->Text3->text(), "5") << "an odd count is used evened, the box keeps it";

  // Close of the Integration window closes both.
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_FALSE(w->isVisible());
  EXPECT_FALSE(d->isVisible());
  EXPECT_EQ(engine().BindToX, -1);
}

class LongDoubleIntegral : public IntegrationWindows {
 protected:
  // The Double Integration window over 0..1 x 0..1 with `num` divisions each way.
  DoubleIntegrationWindow* openDouble(const char* formula, const char* num) {
    start();
    IntegrationWindow* w = open(formula);
    if (!w) return nullptr;
    QTest::mouseClick(w->Command3, Qt::LeftButton);
    DoubleIntegrationWindow* d = w->doubleWindow();
    if (!d) return nullptr;
    for (QLineEdit* box : {d->Text1, d->Text4}) box->setText("0");
    for (QLineEdit* box : {d->Text2, d->Text5}) box->setText("1");
    for (QLineEdit* box : {d->Text3, d->Text6}) box->setText(num);
    return d;
  }
};

// The run has its own engine: a Calc in the main window meanwhile gets its own answer, asks
// nothing of the run, and the run's answer is right when it ends.
TEST_F(LongDoubleIntegral, CalcDuringTheRunLeavesItAlone) {
  DoubleIntegrationWindow* d = openDouble("x*y+1", "2000");
  ASSERT_NE(d, nullptr);
  QTest::mouseClick(d->Command1, Qt::LeftButton);
  EXPECT_TRUE(d->running());
  EXPECT_EQ(d->Command1->text(), "Stop");
  EXPECT_EQ(calc("2+3"), "5");
  ASSERT_TRUE(QTest::qWaitFor([d] { return !d->running(); }, 60000));
  EXPECT_NEAR(main().answerText().toDouble(), 1.25, 1e-12) << main().answerText().toStdString();
  EXPECT_TRUE(prompts_.empty()) << "no input box";
  EXPECT_EQ(d->Command1->text(), "Go");
}

// In Japanese, Go reads 停止 while the run goes on, and the bar counts in seconds (秒).
TEST_F(LongDoubleIntegral, JapaneseStopAndProgress) {
  writeFile("MERIDA.DEF", "Japanese\r\n");
  DoubleIntegrationWindow* d = openDouble("x*y", "10000");
  ASSERT_NE(d, nullptr);
  const QString go = d->Command1->text();
  QTest::mouseClick(d->Command1, Qt::LeftButton);
  EXPECT_EQ(d->Command1->text(), "停止");
  ASSERT_TRUE(QTest::qWaitFor([d] { return d->progressBar() && d->progressBar()->isVisible(); }, 5000));
  EXPECT_TRUE(d->progressBar()->text().endsWith(" 秒")) << d->progressBar()->text().toStdString();
  QTest::mouseClick(d->Command1, Qt::LeftButton);
  EXPECT_EQ(d->Command1->text(), go);
}

// Capped counts show at the start; the bar moves while the run goes on; Go, reading Stop,
// Close and Escape each end the run at once and leave no answer.
TEST_F(LongDoubleIntegral, ProgressShowsAndStopCloseAndEscapeEndTheRun) {
  enum How { kStop, kClose, kEscape };
  for (How how : {kStop, kClose, kEscape}) {
    DoubleIntegrationWindow* d = openDouble("x*y", "30000");  // 225 million points unless stopped
    ASSERT_NE(d, nullptr);
    main().setAnswerText("old");
    QTest::mouseClick(d->Command1, Qt::LeftButton);
    EXPECT_EQ(main().answerText(), "");
    EXPECT_TRUE(QTest::qWaitFor([d] { return d->Text3->text() == "10000" && d->Text6->text() == "10000"; }, 5000))
        << "the capped counts show while the run goes on";
    ASSERT_TRUE(QTest::qWaitFor([d] { return d->progressBar() && d->progressBar()->isVisible(); }, 5000));
    const int first = d->progressBar()->value();
    ASSERT_TRUE(QTest::qWaitFor([&] { return d->progressBar()->value() > first; }, 10000)) << "the bar moves";
    QElapsedTimer stopping;
    stopping.start();
    if (how == kStop) QTest::mouseClick(d->Command1, Qt::LeftButton);
    if (how == kClose) QTest::mouseClick(d->Command2, Qt::LeftButton);
    if (how == kEscape) QTest::keyClick(d, Qt::Key_Escape);
    EXPECT_LT(stopping.elapsed(), 100) << how;
    EXPECT_FALSE(d->running()) << how;
    EXPECT_EQ(d->isVisible(), how == kStop) << how;
    QTest::qWait(20);
    EXPECT_EQ(main().answerText(), "") << how;
    EXPECT_EQ(d->Command1->text(), "Go") << how;
  }
}

}  // namespace
}  // namespace merida::test

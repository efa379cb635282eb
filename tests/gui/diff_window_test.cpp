// The Differential & Differential Equation window through its buttons: chart, record table, modes.
#include "calculus/diff_window.h"
#include "gui_fixture.h"
#include "stats/stat_data_window.h"

namespace merida::test {
namespace {

class DiffWindowTest : public GuiTest {
 protected:
  DiffWindow* open(const QString& formula) {
    main().setFormulaText(formula);
    press(9);
    return qobject_cast<DiffWindow*>(window(QStringLiteral("DiffWindow")));
  }
  static void fill(DiffWindow* w, const char* var, const char* width, const char* min, const char* max,
                   const char* init = "", const char* slope = "") {
    w->Text1->setText(var);
    w->Text2->setText(width);
    w->Text4->setText(min);
    w->Text5->setText(max);
    w->Text3->setText(init);
    w->Text6->setText(slope);
  }
  // On the indicator: a check box or option button takes clicks on its box and caption only.
  // A run button's computation ends on a worker thread; the click waits for it.
  static void clickOn(QAbstractButton* b) {
    QPoint at = qobject_cast<QPushButton*>(b) ? b->rect().center() : QPoint(8, b->height() / 2);
    QTest::mouseClick(b, Qt::LeftButton, {}, at);
    if (auto* w = qobject_cast<DiffWindow*>(b->window())) {
      EXPECT_TRUE(QTest::qWaitFor([w] { return !w->running(); }, 10000));
    }
  }
};

QList<QPointF> Drawn(ChartWidget* chart, int set) {
  QList<QPointF> all;
  for (QLineSeries* s : chart->drawnSeries(set)) all += s->points();
  return all;
}

TEST_F(DiffWindowTest, OneGradeInDiffModePlotsTheCentralDifferences) {
  start();
  DiffWindow* w = open("x^2");
  ASSERT_NE(w, nullptr);
  EXPECT_TRUE(w->Option1->isChecked());
  EXPECT_EQ(w->plane(), -1);
  EXPECT_EQ(state().DiffMode, 1);

  fill(w, "", "1", "0", "3");
  clickOn(w->Command1);
  const QList<QPointF> expected{{1, 2}, {2, 4}, {3, 6}, {4, 8}};
  EXPECT_EQ(w->Graph1->points(1), expected);
  EXPECT_EQ(Drawn(w->Graph1, 1), expected);

  // Data lists the recorded points.
  clickOn(w->Command5);
  StatDataWindow* data = w->statDataWindow();
  ASSERT_TRUE(data->isVisible());
  EXPECT_EQ(data->Grid1->rowCount(), 5);
  EXPECT_EQ(data->Grid1->item(2, 2)->text(), "4");

  // RungeKutta has no effect in Diff mode; Simult does nothing there.
  clickOn(w->Check1);
  EXPECT_FALSE(w->Check1->isChecked());
  EXPECT_EQ(state().DiffMode, 1);
  clickOn(w->Command4);
  EXPECT_EQ(w->Graph1->points(1), expected);
  EXPECT_EQ(errorText(), "");

  // 2 Grade: the second difference.
  main().setFormulaText("x^3");
  w->Text5->setText("2");
  clickOn(w->Command2);
  EXPECT_EQ(w->Graph1->points(1), (QList<QPointF>{{1, 6}, {2, 12}, {3, 18}}));
}

TEST_F(DiffWindowTest, RungeKuttaSolvesYPrimeEqualsY) {
  start();
  DiffWindow* w = open("y");
  ASSERT_NE(w, nullptr);
  clickOn(w->Option2);
  EXPECT_EQ(state().DiffMode, 2);
  clickOn(w->Check1);
  EXPECT_TRUE(w->Check1->isChecked());
  EXPECT_EQ(state().DiffMode, 3);
  fill(w, "y", "0.1", "0", "1", "1");
  clickOn(w->Command1);
  QList<QPointF> p = w->Graph1->points(1);
  ASSERT_EQ(p.size(), 12);
  EXPECT_NEAR(p[10].y(), std::exp(1.0), 3e-6);  // Runge-Kutta's accuracy: the tick reached the solver

  // Unticking returns to the simple method; Option1 clears the box.
  clickOn(w->Check1);
  EXPECT_EQ(state().DiffMode, 2);
  clickOn(w->Check1);
  clickOn(w->Option1);
  EXPECT_FALSE(w->Check1->isChecked());
  EXPECT_EQ(state().DiffMode, 1);
}

TEST_F(DiffWindowTest, SimultDrawsTwoCurvesAndPlaneOne) {
  start();
  DiffWindow* w = open("z");
  ASSERT_NE(w, nullptr);
  clickOn(w->Option2);
  fill(w, "y", "0.1", "0", "2", "0", "1");
  w->Text7->setText("0-y");
  w->Text8->setText("z");
  clickOn(w->Command4);
  EXPECT_TRUE(w->Check1->isChecked()) << "Simult ticks RungeKutta";
  EXPECT_EQ(state().DiffMode, 3);
  EXPECT_EQ(w->Graph1->dataSets(), 2);
  QList<QPointF> y = Drawn(w->Graph1, 1), z = Drawn(w->Graph1, 2);
  ASSERT_EQ(y.size(), 22);
  ASSERT_EQ(z.size(), 22);
  EXPECT_NEAR(z[20].y(), std::cos(2.0), 5e-6);  // the second curve is z, from the second box
  ASSERT_FALSE(w->Graph1->drawnSeries(2).isEmpty());
  EXPECT_EQ(w->Graph1->drawnSeries(2).front()->pen().style(), Qt::DashLine);
  EXPECT_NE(w->Graph1->drawnSeries(2).front()->pen().style(), w->Graph1->drawnSeries(1).front()->pen().style());

  clickOn(w->Check2);
  EXPECT_EQ(w->plane(), 1);
  EXPECT_TRUE(w->Check2->isChecked());
  clickOn(w->Command4);
  EXPECT_EQ(w->Graph1->dataSets(), 1);
  EXPECT_EQ(Drawn(w->Graph1, 1).value(0), QPointF(0, 1));
  EXPECT_TRUE(w->Graph1->drawnSeries(2).isEmpty());
  clickOn(w->Check2);
  EXPECT_EQ(w->plane(), -1);
}

TEST_F(DiffWindowTest, ErrorsAndBadNames) {
  start();
  DiffWindow* w = open("x*t+y");
  ASSERT_NE(w, nullptr);
  clickOn(w->Option2);
  fill(w, "y", "0.1", "0", "1", "1");
  clickOn(w->Command1);
  EXPECT_EQ(errorText(), "微分および微分方程式の変数は１個までです");
  EXPECT_TRUE(w->Graph1->points(1).isEmpty());
  acknowledgeError();

  // A name with a sign does nothing: the previous chart stays.
  main().setFormulaText("x");
  clickOn(w->Command1);
  const QList<QPointF> before = w->Graph1->points(1);
  ASSERT_EQ(before.size(), 12);
  w->Text1->setText("-y");
  main().setFormulaText("x+1");
  clickOn(w->Command1);
  EXPECT_EQ(w->Graph1->points(1), before);
  EXPECT_EQ(errorText(), "");
}

TEST_F(DiffWindowTest, CloseStopsARunningComputation) {
  start();
  DiffWindow* w = open("sgm(sin(k*x),1,2000,k)+y");  // 48 million terms unless stopped
  ASSERT_NE(w, nullptr);
  clickOn(w->Option2);
  clickOn(w->Check1);
  fill(w, "y", "0.0001", "0", "10", "0");
  // Close is pressed while the run goes on: the run ends and what it computed is dropped.
  const int16_t count = state().Records.count;
  QTimer::singleShot(0, w, [w] { QTest::mouseClick(w->Command3, Qt::LeftButton); });
  clickOn(w->Command1);
  EXPECT_FALSE(w->running());
  EXPECT_FALSE(w->isVisible());
  EXPECT_EQ(state().Records.count, count);
  EXPECT_EQ(state().DiffMode, 0);
  EXPECT_EQ(engine().BindToX, -1);
  EXPECT_EQ(engine().StopRequested, 1);

  // Reopened, the window starts afresh in Diff mode.
  press(9);
  auto* again = qobject_cast<DiffWindow*>(window(QStringLiteral("DiffWindow")));
  ASSERT_NE(again, nullptr);
  EXPECT_TRUE(again->Option1->isChecked());
  EXPECT_EQ(state().DiffMode, 1);
  EXPECT_EQ(engine().BindToX, 1);
}

TEST_F(DiffWindowTest, CaptionsInBothLanguages) {
  const std::vector<Caption> captions = {
      {"", "Differential & Differential Equation", "微分・微分方程式"}, {"Command1", "1 Grade", "1階"},
      {"Frame6", "Init Val(1)", "初期値(1階)"}, {"Option2", "Diff Equation", "微分方程式"},
      {"Check1", "RungeKutta", "ﾙﾝｹﾞｸｯﾀ法"}};
  for (bool japanese : {false, true}) {
    writeFile("MERIDA.DEF", japanese ? "Japanese\r\n" : "English\r\n");
    start();
    DiffWindow* w = open("x");
    ASSERT_NE(w, nullptr);
    ExpectCaptions(w, captions, japanese);
  }
}

}  // namespace
}  // namespace merida::test

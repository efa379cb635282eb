// The Graph window and its Parameter window: buttons, chart read back, stopping a plot.
#include "graph/graph_window.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QLogValueAxis>
#include <QTest>
#include <QTimer>
#include <QValueAxis>
#include <cmath>

#include "graph/graph_tools_gui.h"
#include "graph/parameter_window.h"
#include "gui_test_host.h"
#include "stats/stat_data_window.h"

namespace merida {
namespace {

class GraphWindowTest : public test::GraphWindowFixture {};

TEST_F(GraphWindowTest, OpensWithTheGraphDefaults) {
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(window->windowTitle(), "Graph");
  EXPECT_EQ(window->Text3->text(), "50");
  EXPECT_EQ(state.DivisionCount, 50);
  EXPECT_EQ(state.GraphMode, 1);
  EXPECT_EQ(engine.BindToX, 1);
  // Pressing Graph again reuses the window.
  EXPECT_EQ(OpenGraphWindow(owner.get(), engine, state, [] { return QString(); }), window);
}

TEST_F(GraphWindowTest, GoDrawsTheFormulaOnALinearChart) {
  plot(window->Command1, "x^2", "0", "2", "4");
  EXPECT_EQ(drawn(), (QList<QPointF>{{0, 0}, {0.5, 0.25}, {1, 1}, {1.5, 2.25}, {2, 4}}));
  EXPECT_EQ(window->Graph1->graphType(), ChartWidget::Type::kLine);
  auto* y = qobject_cast<QValueAxis*>(window->Graph1->verticalAxis());
  ASSERT_NE(y, nullptr);
  EXPECT_LE(y->min(), 0);
  EXPECT_GE(y->max(), 4);
  EXPECT_TRUE(y->isGridLineVisible());
  EXPECT_EQ(state.Records.count, 5);
}

TEST_F(GraphWindowTest, LogReplotsOnALogarithmicAxisAndLeavesOutValuesBelowZero) {
  plot(window->Command1, "x^3", "-2", "2", "4");
  test::ClickAndWait(window->Command3);
  EXPECT_EQ(window->Graph1->graphType(), ChartWidget::Type::kLogLin);
  auto* y = qobject_cast<QLogValueAxis*>(window->Graph1->verticalAxis());
  ASSERT_NE(y, nullptr);
  EXPECT_TRUE(window->Graph1->drawnSeries(1)[0]->attachedAxes().contains(y));
  QList<QPointF> p = drawn();
  ASSERT_EQ(p.size(), 2);  // x = 1 and 2; -8, -1 and 0 cannot be shown
  EXPECT_EQ(p[0], QPointF(1, 1));
  EXPECT_EQ(p[1], QPointF(2, 8));
  EXPECT_EQ(window->Graph1->points(1).size(), 5);  // the store keeps every point
  // Go returns to the linear axis.
  test::ClickAndWait(window->Command1);
  EXPECT_EQ(window->Graph1->graphType(), ChartWidget::Type::kLine);
  EXPECT_EQ(drawn().size(), 5);
  EXPECT_FALSE(y->isVisible());
  QAbstractAxis* linear = window->Graph1->verticalAxis();
  EXPECT_TRUE(qobject_cast<QValueAxis*>(linear) && linear->isVisible());
  EXPECT_TRUE(window->Graph1->drawnSeries(1)[0]->attachedAxes().contains(linear));
}

TEST_F(GraphWindowTest, FirstParaOnlyOpensTheParameterWindowSecondPlots) {
  plot(window->Command1, "x", "0", "1", "1");
  formula = "   cos(t)";
  window->Text1->setText("0");
  window->Text2->setText("2*PI");
  window->Text3->setText("40");
  test::ClickAndWait(window->Command4);
  ParameterWindow* p = window->parameterWindow();
  ASSERT_TRUE(p->isVisible());
  EXPECT_EQ(p->Text1->text(), "cos(t)");
  EXPECT_EQ(state.GraphMode, 3);
  EXPECT_EQ(state.ActiveParameterBox, 1);
  EXPECT_TRUE(p->Option1->isChecked());
  EXPECT_FALSE(p->Option2->isChecked());
  EXPECT_EQ(p->Frame1->palette().color(QPalette::WindowText), QColor(255, 0, 0));
  EXPECT_EQ(p->Frame2->palette().color(QPalette::WindowText), QColor(0, 255, 0));
  EXPECT_EQ(drawn().size(), 2);  // still the earlier plot

  QTest::keyClicks(p->Text2, "sin(t)");
  test::ClickAndWait(window->Command4);
  QList<QPointF> pts = drawn();
  ASSERT_EQ(pts.size(), 41);
  EXPECT_NEAR(pts[10].y(), 1, 1e-12);  // sin(t) from the second box at t = PI/2
  EXPECT_EQ(window->Graph1->drawnSeries(1)[0]->pen().widthF(), 1.0);  // thin lines
}

TEST_F(GraphWindowTest, TypingInTheSecondBoxMakesItActiveAndClearEmptiesIt) {
  test::ClickAndWait(window->Command4);
  ParameterWindow* p = window->parameterWindow();
  QTest::keyClicks(p->Text2, "t^2");
  EXPECT_EQ(state.ActiveParameterBox, 2);
  EXPECT_TRUE(p->Option2->isChecked());
  EXPECT_FALSE(p->Option1->isChecked());
  EXPECT_EQ(p->Frame2->palette().color(QPalette::WindowText), QColor(255, 0, 0));
  EXPECT_EQ(p->Frame1->palette().color(QPalette::WindowText), QColor(0, 255, 0));
  p->Text1->setText("t");
  QTest::mouseClick(p->Option2, Qt::LeftButton);
  test::ClickAndWait(p->Command2);
  EXPECT_EQ(p->Text2->text(), "");
  EXPECT_EQ(p->Text1->text(), "t");
  // A function chosen in the list goes into the active box.
  p->insertFunction("sq(t)");
  EXPECT_EQ(p->Text2->text(), "sq(t)");
}

TEST_F(GraphWindowTest, ClosingTheParameterWindowReturnsToNormalMode) {
  plot(window->Command1, "x+1", "0", "2", "2");
  test::ClickAndWait(window->Command4);
  ParameterWindow* p = window->parameterWindow();
  test::ClickAndWait(p->Command3);
  EXPECT_FALSE(p->isVisible());
  EXPECT_EQ(state.GraphMode, 1);
  test::ClickAndWait(window->Command3);  // Log replots y = f(x)
  QList<QPointF> pts = drawn();
  ASSERT_EQ(pts.size(), 3);
  EXPECT_EQ(pts[2], QPointF(2, 3));
}

TEST_F(GraphWindowTest, ErrorsLeaveThePreviousPointsAndShowTheMessage) {
  plot(window->Command1, "x", "0", "1", "2");
  plot(window->Command1, "x*y", "0", "1", "2");
  EXPECT_EQ(host.errors, std::vector<int>{24});
  EXPECT_EQ(drawn().size(), 3);
}

TEST_F(GraphWindowTest, DivisionsBoxShowsTheCap) {
  plot(window->Command1, "x", "0", "1", "9000");
  EXPECT_EQ(window->Text3->text(), "6000");
  EXPECT_EQ(drawn().size(), 6000);
  EXPECT_EQ(state.Records.count, 5000);
}

// A plot runs beside the window: its capped count shows at once, Close ends it at once, and
// the chart and the record table keep what the last finished plot left.
TEST_F(GraphWindowTest, CloseStopsARunningPlotAndKeepsThePreviousOne) {
  plot(window->Command1, "x^2", "0", "2", "4");
  const QList<QPointF> before = drawn();
  formula = "sgm(k*x,1,100000,k)";  // 600 million terms unless stopped
  window->Text3->setText("9000");
  QTest::mouseClick(window->Command1, Qt::LeftButton);
  EXPECT_EQ(window->Command1->text(), "Stop");
  EXPECT_TRUE(QTest::qWaitFor([this] { return window->Text3->text() == "6000"; }, 5000))
      << "the capped count shows while the plot runs";
  EXPECT_TRUE(window->plotting());
  QElapsedTimer closing;
  closing.start();
  QTest::mouseClick(window->Command2, Qt::LeftButton);
  EXPECT_LT(closing.elapsed(), 100);
  EXPECT_FALSE(window->isVisible());
  EXPECT_FALSE(window->plotting());
  EXPECT_EQ(state.GraphMode, 0);
  EXPECT_EQ(engine.StopRequested, 1);
  Settle();
  EXPECT_EQ(drawn(), before);
  EXPECT_EQ(state.Records.count, 5);
  EXPECT_EQ(window->Command1->text(), "Go");
}

TEST_F(GraphWindowTest, CloseAlsoClosesTheParameterWindow) {
  test::ClickAndWait(window->Command4);
  ASSERT_TRUE(window->parameterWindow()->isVisible());
  test::ClickAndWait(window->Command2);
  EXPECT_FALSE(window->parameterWindow()->isVisible());
  // Reopening starts afresh.
  window->Text1->setText("5");
  OpenGraphWindow(owner.get(), engine, state, [this] { return formula; });
  EXPECT_EQ(window->Text1->text(), "");
  EXPECT_EQ(state.GraphMode, 1);
}

TEST_F(GraphWindowTest, DataOpensTheStatisticalDataWindowOnTheRecordedPoints) {
  plot(window->Command1, "x^2", "0", "2", "4");
  test::ClickAndWait(window->Command8);
  StatDataWindow* data = window->statDataWindow();
  ASSERT_TRUE(data->isVisible());
  EXPECT_EQ(data->Text1->text(), "2");
  EXPECT_EQ(data->Text3->text(), "5");
  EXPECT_EQ(data->Grid1->rowCount(), 6);
  EXPECT_EQ(data->Grid1->columnCount(), 3);
  EXPECT_EQ(data->Grid1->item(2, 1)->text(), "0.5");
  EXPECT_EQ(data->Grid1->item(2, 2)->text(), "0.25");
}

}  // namespace
}  // namespace merida

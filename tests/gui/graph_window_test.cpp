// The Graph window and its Parameter window: buttons, chart read back, stopping a plot.
#include "graph/graph_window.h"

#include <gtest/gtest.h>

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
  QTest::mouseClick(window->Command3, Qt::LeftButton);
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
  QTest::mouseClick(window->Command1, Qt::LeftButton);
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
  QTest::mouseClick(window->Command4, Qt::LeftButton);
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
  QTest::mouseClick(window->Command4, Qt::LeftButton);
  QList<QPointF> pts = drawn();
  ASSERT_EQ(pts.size(), 41);
  EXPECT_NEAR(pts[10].y(), 1, 1e-12);  // sin(t) from the second box at t = PI/2
  EXPECT_EQ(window->Graph1->drawnSeries(1)[0]->pen().widthF(), 1.0);  // thin lines
}

TEST_F(GraphWindowTest, TypingInTheSecondBoxMakesItActiveAndClearEmptiesIt) {
  QTest::mouseClick(window->Command4, Qt::LeftButton);
  ParameterWindow* p = window->parameterWindow();
  QTest::keyClicks(p->Text2, "t^2");
  EXPECT_EQ(state.ActiveParameterBox, 2);
  EXPECT_TRUE(p->Option2->isChecked());
  EXPECT_FALSE(p->Option1->isChecked());
  EXPECT_EQ(p->Frame2->palette().color(QPalette::WindowText), QColor(255, 0, 0));
  EXPECT_EQ(p->Frame1->palette().color(QPalette::WindowText), QColor(0, 255, 0));
  p->Text1->setText("t");
  QTest::mouseClick(p->Option2, Qt::LeftButton);
  QTest::mouseClick(p->Command2, Qt::LeftButton);
  EXPECT_EQ(p->Text2->text(), "");
  EXPECT_EQ(p->Text1->text(), "t");
  // A function chosen in the list goes into the active box.
  p->insertFunction("sq(t)");
  EXPECT_EQ(p->Text2->text(), "sq(t)");
}

TEST_F(GraphWindowTest, ClosingTheParameterWindowReturnsToNormalMode) {
  plot(window->Command1, "x+1", "0", "2", "2");
  QTest::mouseClick(window->Command4, Qt::LeftButton);
  ParameterWindow* p = window->parameterWindow();
  QTest::mouseClick(p->Command3, Qt::LeftButton);
  EXPECT_FALSE(p->isVisible());
  EXPECT_EQ(state.GraphMode, 1);
  QTest::mouseClick(window->Command3, Qt::LeftButton);  // Log replots y = f(x)
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

TEST_F(GraphWindowTest, CloseStopsARunningPlot) {
  formula = "x";
  window->Text1->setText("0");
  window->Text2->setText("1");
  window->Text3->setText("5999");
  bool wasPlotting = false;
  // The click arrives through the event loop while the plot yields between points.
  QTimer::singleShot(0, window, [&] {
    wasPlotting = window->plotting();
    QTest::mouseClick(window->Command2, Qt::LeftButton);
  });
  QTest::mouseClick(window->Command1, Qt::LeftButton);
  EXPECT_TRUE(wasPlotting);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(state.GraphMode, 0);
  EXPECT_EQ(engine.StopRequested, 1);
  int n = static_cast<int>(drawn().size());
  EXPECT_GE(n, 2);
  EXPECT_LT(n, 6000);
  EXPECT_EQ(state.Records.count, n);
  EXPECT_FALSE(window->plotting());
}

TEST_F(GraphWindowTest, CloseAlsoClosesTheParameterWindow) {
  QTest::mouseClick(window->Command4, Qt::LeftButton);
  ASSERT_TRUE(window->parameterWindow()->isVisible());
  QTest::mouseClick(window->Command2, Qt::LeftButton);
  EXPECT_FALSE(window->parameterWindow()->isVisible());
  // Reopening starts afresh.
  window->Text1->setText("5");
  OpenGraphWindow(owner.get(), engine, state, [this] { return formula; });
  EXPECT_EQ(window->Text1->text(), "");
  EXPECT_EQ(state.GraphMode, 1);
}

TEST_F(GraphWindowTest, DataOpensTheStatisticalDataWindowOnTheRecordedPoints) {
  plot(window->Command1, "x^2", "0", "2", "4");
  QTest::mouseClick(window->Command8, Qt::LeftButton);
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

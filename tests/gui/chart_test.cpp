// The Graph window's chart as a user sees it: round circles in polar and parametric plots, the
// log axis's range and labels, and the colours of a dark theme.
#include <gtest/gtest.h>

#include <QApplication>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QLogValueAxis>
#include <QTest>
#include <QValueAxis>
#include <cmath>
#include <tuple>

#include "dark_palette.h"
#include "graph/graph_tools_gui.h"
#include "graph/graph_window.h"
#include "graph/negative_function_window.h"
#include "graph/parameter_window.h"
#include "gui_test_host.h"

namespace merida {
namespace {

class ChartTest : public test::GraphWindowFixture {
 protected:
  QValueAxis* xAxis() const { return window->Graph1->horizontalAxis(); }
};

// The drawn unit circle's width over its height, in pixels.
double CircleAspect(ChartWidget* chart) {
  QLineSeries* s = chart->drawnSeries(1).value(0);
  if (!s) return 0;
  QChart* c = chart->chart();
  const double w = c->mapToPosition(QPointF(1, 0), s).x() - c->mapToPosition(QPointF(-1, 0), s).x();
  const double h = c->mapToPosition(QPointF(0, -1), s).y() - c->mapToPosition(QPointF(0, 1), s).y();
  return w / h;
}

void ExpectRoundAtEverySize(GraphWindow* window) {
  for (QSize size : {QSize(760, 500), QSize(1250, 520), QSize(700, 950)}) {
    window->resize(size);
    for (int k = 0; k < 5; ++k) QCoreApplication::processEvents();
    EXPECT_NEAR(CircleAspect(window->Graph1), 1.0, 0.01) << size.width() << "x" << size.height();
    // The whole circle stays in view.
    auto* y = qobject_cast<QValueAxis*>(window->Graph1->verticalAxis());
    ASSERT_NE(y, nullptr);
    QValueAxis* x = window->Graph1->horizontalAxis();
    EXPECT_LE(x->min(), -1);
    EXPECT_GE(x->max(), 1);
    EXPECT_LE(y->min(), -1);
    EXPECT_GE(y->max(), 1);
  }
}

TEST_F(ChartTest, PolarAndParametricCirclesAreRound) {
  plot(window->Command5, "1", "0", "2*PI", "72");
  EXPECT_EQ(state.GraphMode, 2);
  ExpectRoundAtEverySize(window);
  plot(window->Command4, "cos(t)", "0", "2*PI", "60");
  window->parameterWindow()->Text2->setText("sin(t)");
  test::ClickAndWait(window->Command4);
  ASSERT_EQ(window->Graph1->drawnSeries(1).value(0)->count(), 61);
  ExpectRoundAtEverySize(window);
}

TEST_F(ChartTest, GoAfterPoleScalesEachAxisToItsData) {
  plot(window->Command5, "1", "0", "2*PI", "72");
  plot(window->Command1, "10*x", "0", "1", "10");
  auto* y = qobject_cast<QValueAxis*>(window->Graph1->verticalAxis());
  ASSERT_NE(y, nullptr);
  EXPECT_GE(xAxis()->min(), -0.5);
  EXPECT_LE(xAxis()->max(), 1.5);
  EXPECT_GE(y->max(), 10);
  EXPECT_LE(y->max(), 15);
}

// Degenerate point sets on an equal-scale chart still give finite axes around the points.
TEST(EqualScaleChart, DegenerateSetsKeepFiniteAxesAroundThePoints) {
  const QList<QList<QPointF>> sets = {
      {QPointF(3, 4)},                                   // one point
      {QPointF(2, -1), QPointF(2, 5)},                   // a vertical line
      {QPointF(-1e308, 0), QPointF(1e308, 1)},           // a span beyond the double range
      {QPointF(1e-300, 1e-300), QPointF(2e-300, 3e-300)}  // a tiny span
  };
  for (const QList<QPointF>& points : sets) {
    ChartWidget chart;
    chart.resize(500, 300);
    chart.show();
    chart.setEqualScale(true);
    chart.setPoints(1, points);
    chart.draw();
    for (int k = 0; k < 5; ++k) QCoreApplication::processEvents();
    auto* y = qobject_cast<QValueAxis*>(chart.verticalAxis());
    ASSERT_NE(y, nullptr);
    for (QValueAxis* axis : {chart.horizontalAxis(), y}) {
      EXPECT_TRUE(std::isfinite(axis->min()) && std::isfinite(axis->max())) << points.first().x();
      EXPECT_LT(axis->min(), axis->max()) << points.first().x();
    }
    for (const QPointF& p : points) {
      EXPECT_LE(chart.horizontalAxis()->min(), p.x());
      EXPECT_GE(chart.horizontalAxis()->max(), p.x());
      EXPECT_LE(y->min(), p.y());
      EXPECT_GE(y->max(), p.y());
    }
  }
}

TEST_F(ChartTest, LogKeepsTheHorizontalAxisOfGo) {
  for (auto [f, start, end] : {std::tuple{"4-x", "-5.5", "5.5"}, std::tuple{"x^3-8", "-6", "6"}}) {
    SCOPED_TRACE(f);
    plot(window->Command1, f, start, end, "48");
    const double min = xAxis()->min(), max = xAxis()->max();
    test::ClickAndWait(window->Command3);
    Settle();
    ASSERT_EQ(window->Graph1->graphType(), ChartWidget::Type::kLogLin);
    EXPECT_EQ(xAxis()->min(), min);
    EXPECT_EQ(xAxis()->max(), max);
  }
}

// The texts of the axis labels the chart shows.
QStringList VisibleLabels(ChartWidget* chart) {
  QStringList labels;
  for (QGraphicsItem* item : chart->scene()->items()) {
    auto* text = dynamic_cast<QGraphicsTextItem*>(item);
    if (text && text->isVisible() && text->opacity() > 0) labels << text->toPlainText();
  }
  return labels;
}

TEST_F(ChartTest, EveryDecadeOfALogAxisHasItsLabel) {
  struct Case {
    const char *formula, *start, *end;
    QStringList decades;
  };
  for (const Case& c : {Case{"10^x", "-2", "1", {"0.01", "0.1", "1", "10"}},
                        Case{"x^2", "1", "30", {"1", "10", "100", "1000"}},
                        Case{"exp(x)", "-3", "3", {"0.01", "0.1", "1", "10", "100"}}}) {
    plot(window->Command1, c.formula, c.start, c.end, "30");
    test::ClickAndWait(window->Command3);
    Settle();
    const QStringList shown = VisibleLabels(window->Graph1);
    for (const QString& decade : c.decades) {
      EXPECT_TRUE(shown.contains(decade)) << c.formula << " " << decade.toStdString();
    }
  }
}

// The colour of the widget's own pixel at `at`, as drawn.
QColor PixelAt(QWidget* w, QPoint at) { return w->grab().toImage().pixelColor(at); }

TEST_F(ChartTest, ChartAndImplicitPlotFollowADarkTheme) {
  const QPalette light = QApplication::palette();
  const QPalette dark = test::DarkPalette();
  plot(window->Command1, "x", "-1", "1", "4");
  NegativeFunctionWindow* nega = window->negativeFunctionWindow();
  nega->show();
  QApplication::setPalette(dark);
  Settle();

  ChartWidget* chart = window->Graph1;
  EXPECT_EQ(PixelAt(chart, QPoint(2, 2)), dark.color(QPalette::Base));
  EXPECT_EQ(PixelAt(nega->Picture1, QPoint(nega->Picture1->width() - 4, 2)), dark.color(QPalette::Base));
  for (QAbstractAxis* axis : {static_cast<QAbstractAxis*>(xAxis()), chart->verticalAxis()}) {
    EXPECT_EQ(axis->labelsColor(), dark.color(QPalette::Text));
    EXPECT_LT(axis->gridLineColor().lightness(), 128) << "grid lines are faint on a dark area";
  }
  EXPECT_EQ(chart->drawnSeries(1).value(0)->pen().color(), QColor(0, 0, 255)) << "the curve keeps its colour";

  QApplication::setPalette(light);
  Settle();
  EXPECT_EQ(PixelAt(chart, QPoint(2, 2)), light.color(QPalette::Base));
  EXPECT_EQ(xAxis()->labelsColor(), light.color(QPalette::Text));
}

}  // namespace
}  // namespace merida

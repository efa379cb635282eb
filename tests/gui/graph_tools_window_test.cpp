// The implicit-curve, colour and statistical data windows, the chart's exports, Japanese captions.
#include <gtest/gtest.h>

#include <QApplication>
#include <QAreaSeries>
#include <QImage>
#include <QScatterSeries>
#include <QTest>
#include <QTranslator>
#include <QValueAxis>
#include <cmath>

#include "engine/atomic_file.h"
#include "graph/color_window.h"
#include "graph/graph_tools_gui.h"
#include "graph/graph_window.h"
#include "graph/negative_function_window.h"
#include "graph/parameter_window.h"
#include "gui_test_host.h"
#include "stats/stat_data_window.h"

namespace merida {
namespace {

class ToolWindowsTest : public test::TempDirTest {
 protected:
  ToolWindowsTest() : engine(host) { engine.ResetEngine(); }
  test::GuiTestHost host;
  Engine engine;
  AppState state;
};

TEST_F(ToolWindowsTest, NegativeFunctionDrawsTheUnitCircle) {
  NegativeFunctionWindow w(engine, state, [] { return QString("x^2+y^2-1"); });
  for (auto [box, text] : {std::pair{w.Text1, "-2"}, {w.Text2, "2"}, {w.Text3, "40"}, {w.Text4, "-2"},
                           {w.Text5, "2"}, {w.Text6, "500"}}) {
    box->setText(text);
  }
  test::ClickAndWait(w.Command1);
  EXPECT_EQ(w.Text6->text(), "100");
  EXPECT_EQ(w.Text3->text(), "40");
  const std::vector<Segment>& s = w.Picture1->segments();
  ASSERT_GE(s.size(), 40u);
  EXPECT_NEAR(std::hypot(s[0].x1, s[0].y1), 1, 0.01);
}

TEST_F(ToolWindowsTest, NegativeFunctionReportsVariableErrors) {
  QString formula = "x+t";
  NegativeFunctionWindow w(engine, state, [&] { return formula; });
  test::ClickAndWait(w.Command1);
  formula = "x*y*z";
  test::ClickAndWait(w.Command1);
  EXPECT_EQ(host.errors, (std::vector<int>{32, 31}));
  EXPECT_TRUE(w.Picture1->segments().empty());
}

TEST_F(ToolWindowsTest, ColorWindowStartsOnGreenAndSetsOneFlag) {
  ColorWindow w(engine, state);
  w.show();
  EXPECT_TRUE(w.Option1->isChecked());
  QTest::mouseClick(w.Option2, Qt::LeftButton);
  EXPECT_EQ(state.Colors.Red, 1);
  EXPECT_EQ(state.Colors.Green, -1);
  QTest::mouseClick(w.Option5, Qt::LeftButton);
  EXPECT_EQ(state.Colors.MultiColor, 1);
  EXPECT_EQ(state.Colors.Red, -1);
  EXPECT_EQ(state.Colors.SkyBlue, -1);
  EXPECT_EQ(state.Colors.Yellow, -1);
  test::ClickAndWait(w.Command1);
  EXPECT_FALSE(w.isVisible());
  ColorWindow again(engine, state);
  again.show();
  EXPECT_TRUE(again.Option5->isChecked());
}

TEST_F(ToolWindowsTest, StatDataWindowEntryMemoryAndFile) {
  StatDataWindow w(engine, state);
  EXPECT_EQ(w.Grid1->columnCount(), 2);
  w.Text1->setText("5");
  QTest::keyClick(w.Text1, Qt::Key_Return);
  test::WaitForJobs();
  EXPECT_EQ(w.Text1->text(), "3");
  EXPECT_EQ(w.Grid1->columnCount(), 4);
  w.Text1->setText("2");
  QTest::keyClick(w.Text1, Qt::Key_Return);
  test::WaitForJobs();
  w.Text3->setText("3");
  QTest::keyClick(w.Text3, Qt::Key_Return);
  test::WaitForJobs();
  EXPECT_EQ(w.Grid1->rowCount(), 4);
  for (const char* v : {"1", "2", "3", "4"}) {
    w.Text2->setText(v);
    QTest::keyClick(w.Text2, Qt::Key_Return);
    test::WaitForJobs();
    EXPECT_EQ(w.Text2->text(), "");
  }
  EXPECT_EQ(w.Grid1->item(1, 2)->text(), "4");
  EXPECT_EQ(w.Grid1->currentRow(), 2);
  EXPECT_EQ(w.Grid1->currentColumn(), 2);
  test::ClickAndWait(w.Command1);
  EXPECT_EQ(state.Records.kind, OrbitaData);
  EXPECT_EQ(state.Records.count, 3);
  EXPECT_EQ(state.Records.values[1][1], 4.0f);
  test::ClickAndWait(w.Command2);
  EXPECT_EQ(test::FileText(dir_ / "ORBITA.ORB"), "ORBITA\r\n2\r\n3\r\n1\r\n2\r\n3\r\n4\r\n\r\n\r\n");
}

TEST_F(ToolWindowsTest, ChartSavesPngSvgAndCsv) {
  ChartWidget chart;
  chart.resize(400, 300);
  chart.setDataSets(2);
  chart.setPoints(1, {QPointF(0, 1), QPointF(0.5, -2.25)});
  chart.setPoints(2, {QPointF(1, 1e-7)});
  chart.draw();
  ASSERT_EQ(chart.drawnSeries(2).size(), 1);
  EXPECT_EQ(chart.drawnSeries(2)[0]->points(), QList<QPointF>{QPointF(1, 1e-7)});

  EXPECT_EQ(chart.csvText(), "x1,y1,x2,y2\n0,1,1,1E-07\n0.5,-2.25,,\n");
  ASSERT_TRUE(chart.saveCsv("points.csv"));
  EXPECT_EQ(*test::FileText(dir_ / "points.csv"), chart.csvText().toStdString());

  ASSERT_TRUE(chart.savePng("chart.png"));
  QImage png("chart.png");
  EXPECT_EQ(png.size(), QSize(400, 300));

  ASSERT_TRUE(chart.saveSvg("chart.svg"));
  EXPECT_NE(test::FileText(dir_ / "chart.svg")->find("</svg>"), std::string::npos);

  EXPECT_FALSE(chart.savePng("missing/dir/chart.png"));
  EXPECT_FALSE(chart.saveCsv("missing/dir/points.csv"));
}

TEST_F(ToolWindowsTest, ChartScalesAConstantAndAnEmptySet) {
  ChartWidget chart;
  chart.setPoints(1, {QPointF(0, 3), QPointF(1, 3)});
  chart.draw();
  auto* y = qobject_cast<QValueAxis*>(chart.verticalAxis());
  ASSERT_NE(y, nullptr);
  EXPECT_LT(y->min(), 3);
  EXPECT_GT(y->max(), 3);
  // Points set one by one from index 1; those not set keep their earlier values.
  chart.setPointCount(3);
  chart.setPoint(1, 1, -1, 5);
  chart.setPoint(1, 3, 2, 7);
  chart.setPoint(1, 4, 9, 9);  // beyond the count: ignored
  chart.draw();
  EXPECT_EQ(chart.drawnSeries(1)[0]->points(), (QList<QPointF>{QPointF(-1, 5), QPointF(1, 3), QPointF(2, 7)}));
  chart.setPoints(1, QList<QPointF>());
  chart.setGraphType(ChartWidget::Type::kLogLin);
  chart.draw();
  EXPECT_TRUE(chart.drawnSeries(1).isEmpty());
}

TEST_F(ToolWindowsTest, ChartDrawsBarsFromZeroAndMarksWithoutLines) {
  const QList<QPointF> points{QPointF(0, 2), QPointF(1, 5), QPointF(2, 1)};
  ChartWidget chart;
  chart.resize(400, 300);
  chart.setPoints(1, points);
  chart.setGraphType(ChartWidget::Type::kLogLin);  // bars and marks ignore the log axis

  chart.setStyle(ChartWidget::Style::kBars);
  chart.draw();
  EXPECT_TRUE(chart.drawnSeries(1).isEmpty());
  ASSERT_EQ(chart.drawnShapes(1).size(), 1);
  auto* bars = qobject_cast<QAreaSeries*>(chart.drawnShapes(1)[0]);
  ASSERT_NE(bars, nullptr);
  // Each bar from its lower bound to the next one; the last as wide as the one before.
  const QList<QPointF> outline = bars->upperSeries()->points();
  ASSERT_EQ(outline.size(), 12);
  EXPECT_EQ(outline[0], QPointF(0, 0));
  EXPECT_EQ(outline[1], QPointF(0, 2));
  EXPECT_EQ(outline[2], QPointF(1, 2));
  EXPECT_EQ(outline[6], QPointF(2, 5));
  EXPECT_EQ(outline[11], QPointF(3, 0));
  auto* y = qobject_cast<QValueAxis*>(chart.verticalAxis());
  ASSERT_NE(y, nullptr);
  EXPECT_LE(y->min(), 0);
  EXPECT_GE(chart.horizontalAxis()->max(), 3);

  chart.setStyle(ChartWidget::Style::kPoints);
  chart.draw();
  EXPECT_TRUE(chart.drawnSeries(1).isEmpty());
  ASSERT_EQ(chart.drawnShapes(1).size(), 1);
  auto* marks = qobject_cast<QScatterSeries*>(chart.drawnShapes(1)[0]);
  ASSERT_NE(marks, nullptr);
  EXPECT_EQ(marks->points(), points);

  chart.setStyle(ChartWidget::Style::kLines);
  chart.draw();
  EXPECT_TRUE(chart.drawnShapes(1).isEmpty());
  EXPECT_FALSE(chart.drawnSeries(1).isEmpty());
}

TEST_F(ToolWindowsTest, JapaneseCaptions) {
  QTranslator translator;
  ASSERT_TRUE(translator.load(":/i18n/merida_ja.qm"));
  QCoreApplication::installTranslator(&translator);
  state.DisplayLanguage = kJapanese;
  QWidget owner;
  GraphWindow* g = OpenGraphWindow(&owner, engine, state, [] { return QString("x"); });
  EXPECT_EQ(g->windowTitle(), "グラフ");
  EXPECT_EQ(g->Command5->text(), "極座");
  EXPECT_EQ(g->Frame3->title(), "分割数");
  EXPECT_EQ(g->parameterWindow()->Frame1->title(), "X軸");
  EXPECT_EQ(g->negativeFunctionWindow()->windowTitle(), "陰関数");
  StatDataWindow* d = g->statDataWindow();
  EXPECT_EQ(d->windowTitle(), "データ");
  EXPECT_EQ(d->Grid1->item(0, 0)->text(), " 次元");
  ColorWindow c(engine, state);
  EXPECT_EQ(c.Option3->text(), "水色");
  QCoreApplication::removeTranslator(&translator);
}

}  // namespace
}  // namespace merida

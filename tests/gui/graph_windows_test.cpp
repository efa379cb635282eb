// The plotting windows: Graph and what it opens (parameter, data) with log axes, parametric
// plots, a plot stopped, the data and the chart written; Contour, Contour Map and Axis Angle
// with the image saved, the angles, and a drawing stopped.
#include <QElapsedTimer>
#include <QImage>
#include <QLogValueAxis>
#include <QToolButton>
#include <QValueAxis>
#include <QWheelEvent>

#include "contour/contour_plot.h"
#include "contour/contour_window.h"
#include "graph/graph_window.h"
#include "graph/parameter_window.h"
#include "gui_fixture.h"
#include "stats/stat_data_window.h"

namespace merida::test {
namespace {

class GraphTest : public GuiTest {
 public:
  void SetUp() override { GuiTest::SetUp(), start(), g = open<GraphWindow>(); }
  // Fills the boxes, presses the button and lets the chart lay itself out.
  void plot(QPushButton* button, const char* formula, const char* min, const char* max, const char* num) {
    fill(g, {{"formula", formula}, {"Text1", min}, {"Text2", max}, {"Text3", num}});
    ClickAndWait(button);
    Settle();
  }
  static void Settle() { for (int k = 0; k < 5; ++k) QCoreApplication::processEvents(); }
  GraphWindow* g = nullptr;
};

TEST_F(GraphTest, GoLogAndDataShowThePointsAndErrorsKeepThem) {
  plot(g->Command1, "x^3", "-2", "2", "4");
  EXPECT_EQ(Drawn(g->Graph1), (QList<QPointF>{{-2, -8}, {-1, -1}, {0, 0}, {1, 1}, {2, 8}}));
  // Log leaves out what a log axis cannot show, and keeps Go's horizontal axis.
  QValueAxis* x = g->Graph1->horizontalAxis();
  const double min = x->min(), max = x->max();
  ClickAndWait(g->Command3);
  auto* log = qobject_cast<QLogValueAxis*>(g->Graph1->verticalAxis());
  ASSERT_NE(log, nullptr);
  EXPECT_EQ(Drawn(g->Graph1), (QList<QPointF>{{1, 1}, {2, 8}}));
  EXPECT_EQ(std::tuple(g->Graph1->points(1).size(), x->min(), x->max()), std::tuple(5, min, max));
  ClickAndWait(g->Command1);  // Go returns to the linear axis
  EXPECT_TRUE(!log->isVisible() && qobject_cast<QValueAxis*>(g->Graph1->verticalAxis()) && Drawn(g->Graph1).size() == 5);
  click(g, "Command8");
  auto* data = qobject_cast<StatDataWindow*>(window("StatDataWindow"));
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(std::pair(data->Grid1->rowCount(), data->Grid1->cellText(2, 2)), std::pair(6, QString("-1")));
  plot(g->Command1, "x*y", "0", "1", "2");
  EXPECT_EQ(errorText() + QString::number(Drawn(g->Graph1).size()), "グラフおよび積分の変数は１個までです5");
}

TEST_F(GraphTest, ParaOpensTheParameterWindowThenPlotsItsBoxes) {
  plot(g->Command1, "x", "0", "1", "1");
  fill(g, {{"formula", "   cos(t)"}, {"Text2", "2*PI"}, {"Text3", "40"}});
  ClickAndWait(g->Command4);
  ParameterWindow* p = g->parameterWindow();
  ASSERT_TRUE(p->isVisible() && p->Text1->text() == "cos(t)");
  EXPECT_EQ(Drawn(g->Graph1).size(), 2) << "still the earlier plot";
  // The active box is ticked and captioned in red, the other in green; typing makes a box active.
  auto red = [](QWidget* frame) { return frame->palette().color(QPalette::WindowText) == QColor(255, 0, 0); };
  EXPECT_TRUE(p->Option1->isChecked() && red(p->Frame1) && !red(p->Frame2));
  QTest::keyClicks(p->Text2, "sin(t)");
  EXPECT_TRUE(p->Option2->isChecked() && red(p->Frame2) && !red(p->Frame1));
  ClickAndWait(g->Command4);
  ASSERT_EQ(Drawn(g->Graph1).size(), 41);
  EXPECT_NEAR(Drawn(g->Graph1)[10].y(), 1, 1e-12);  // sin(t) from the second box at t = PI/2

  ClickAndWait(p->Command2);  // Clear empties the active box only
  EXPECT_EQ(p->Text1->text() + "|" + p->Text2->text(), "cos(t)|");
  ClickAndWait(p->Command3);  // Close: Log plots y = f(x) again
  plot(g->Command3, "x+1", "0", "2", "2");
  EXPECT_EQ(Drawn(g->Graph1).value(2), QPointF(2, 3));

  ClickAndWait(g->Command4);
  click(g, "Command2");  // Close closes the parameter window too; reopening starts afresh
  EXPECT_FALSE(p->isVisible());
  g->Text1->setText("5");
  EXPECT_EQ(open<GraphWindow>(), g);
  EXPECT_EQ(std::pair(g->Text1->text(), state().GraphMode), std::pair(QString(), int16_t{1}));
}

// A plot runs beside the window: its capped count shows at once, Close ends it at once, and
// the chart and the record table keep what the last finished plot left.
TEST_F(GraphTest, CloseStopsARunningPlotAndKeepsThePreviousOne) {
  plot(g->Command1, "x^2", "0", "2", "4");
  const QList<QPointF> before = Drawn(g->Graph1);
  fill(g, {{"formula", "sgm(k*x,1,100000,k)"}, {"Text3", "9000"}});  // 600 million terms unless stopped
  QTest::mouseClick(g->Command1, Qt::LeftButton);
  EXPECT_EQ(g->Command1->text(), "Stop");
  EXPECT_TRUE(QTest::qWaitFor([this] { return g->Text3->text() == "6000"; }, 5000)) << "the cap shows during the run";
  EXPECT_TRUE(g->plotting());
  QElapsedTimer closing;
  closing.start();
  QTest::mouseClick(g->Command2, Qt::LeftButton);
  EXPECT_LT(closing.elapsed(), 100);
  EXPECT_FALSE(g->isVisible() || g->plotting());
  EXPECT_EQ(std::tuple(state().GraphMode, engine().StopRequested, state().Records.count), std::tuple(0, 1, 5));
  Settle();
  EXPECT_EQ(Drawn(g->Graph1), before);
  EXPECT_EQ(g->Command1->text(), "Go");
}

TEST_F(GuiTest, ChartSavesPngSvgAndCsv) {
  ChartWidget chart;
  chart.resize(400, 300);
  chart.setDataSets(2);
  chart.setPoints(1, {QPointF(0, 1), QPointF(0.5, -2.25)});
  chart.setPoints(2, {QPointF(1, 1e-7)});
  chart.draw();
  EXPECT_EQ(chart.csvText(), "x1,y1,x2,y2\n0,1,1,1E-07\n0.5,-2.25,,\n");
  ASSERT_TRUE(chart.saveCsv("points.csv") && chart.savePng("chart.png") && chart.saveSvg("chart.svg"));
  EXPECT_EQ(readFile("points.csv"), chart.csvText().toStdString());
  EXPECT_TRUE(QImage("chart.png").size() == QSize(400, 300) && readFile("chart.svg").ends_with("</svg>\n"));
  EXPECT_FALSE(chart.savePng("missing/dir/chart.png") || chart.saveCsv("missing/dir/points.csv"));
}

// Round ranges with room around the curve; the readout of the point under the cursor; wheel
// zoom and double-click back; the Export button in sight.
TEST_F(GuiTest, ChartRangesReadoutZoomAndExport) {
  ChartWidget chart;
  chart.resize(600, 400);
  chart.setSetNames("y");
  chart.setPoints(1, {QPointF(0, 0), QPointF(5502, 1), QPointF(2000, 0.5)});
  chart.show();
  chart.draw();
  QCoreApplication::processEvents();
  auto* x = chart.horizontalAxis();
  auto* y = qobject_cast<QValueAxis*>(chart.verticalAxis());
  EXPECT_EQ(std::tuple(x->min(), x->max(), y->min(), y->max() > 1), std::tuple(0.0, 6000.0, 0.0, true));
  QStringList said;
  QObject::connect(&chart, &ChartWidget::readout, [&](const QString& t) { said << t; });
  const QPoint at = chart.chart()->mapToPosition(QPointF(2000, 0.5), chart.drawnSeries().front()).toPoint();
  QTest::mouseMove(chart.viewport(), at + QPoint(3, 2));
  EXPECT_EQ(said.value(said.size() - 1), "x = 2000   y = 0.5   (y)");
  QWheelEvent wheel(at, chart.mapToGlobal(at), {}, {0, 240}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(chart.viewport(), &wheel);
  EXPECT_TRUE(chart.zoomed() && x->max() - x->min() < 5000);
  QTest::mouseDClick(chart.viewport(), Qt::LeftButton, {}, at);
  EXPECT_EQ(std::tuple(chart.zoomed(), x->min(), x->max()), std::tuple(false, 0.0, 6000.0));
  EXPECT_TRUE(chart.exportButton()->isVisible() && chart.rect().contains(chart.exportButton()->geometry()));
}

// A run its rules refuse says why and selects the box at fault, ready to be typed over.
TEST_F(GuiTest, RefusedRunsSelectTheBoxAtFault) {
  start();
  for (auto [name, formula, box, text] : {std::tuple{"IntersectionWindow", "x^2-1", "Text1", "5"},
                                          {"ContourWindow", "x*y", "Text6", "0"}, {"FftWindow", "sin(x)", "Text3", "0"}}) {
    auto* w = static_cast<ToolWindow*>(open(name));
    fill(w, {{"formula", formula}, {box, text}});
    click(w, "Command1");
    EXPECT_TRUE(w->focusWidget() == child<QLineEdit>(w, box) && child<QLineEdit>(w, box)->selectedText() == text) << name;
    EXPECT_TRUE(w->statusLine()->text().startsWith("Nothing done: ")) << name;
    auto* busy = w->findChild<QLabel*>("Label3");  // FFT's "Now Calculating" gives way
    EXPECT_NE(busy ? busy->text() : "", "Now Calculating") << name;
  }
}

// The Print check draws black on white; the saved image is the map as shown, at its size. The
// angles decided are clamped, those only typed forgotten on Close, and the next Hide uses them.
// Close while the surface is filled stops it and leaves the map cleared.
TEST_F(GuiTest, ContourMapSavedImageAxisAngleAndStop) {
  start();
  main().setFormulaText("x^2+y^2");
  auto* w = open<ContourWindow>();
  click(w, "Command1");
  fill(w, {{"Text7", "4"}, {"Text8", "1"}});  // levels that draw nothing say why
  click(w, "Command3");
  EXPECT_EQ(w->statusLine()->text(), "Nothing done: the lowest level must be below the highest, once both are rounded to whole numbers");
  fill(w, {{"Text7", "1"}, {"Text8", "4"}});
  click(w, "Command3");
  EXPECT_EQ(w->statusLine()->text(), "");
  ContourMapWindow* map = w->mapWindow();
  ClickBox(w->Check2);
  EXPECT_TRUE(map->Picture1->printMode() && map->Picture1->mapStyle().paper == QColor(Qt::white));
  map->resize(800, 700);
  ASSERT_TRUE(map->saveImage("map.png") && map->saveImage("map.svg"));
  EXPECT_NE(readFile("map.svg").find("<svg"), std::string::npos);
  EXPECT_FALSE(map->saveImage("no/such/dir/map.png"));
  QImage saved("map.png");
  const double ratio = map->Picture1->devicePixelRatioF();
  EXPECT_EQ(saved.width(), static_cast<int>(map->Picture1->width() * ratio));
  const MapScene& s = map->Picture1->scene();
  int blue = 0;  // the level-4 circle touches the middle right of the frame
  for (double dx : {-0.01, 0.0, 0.01}) {
    for (double dy : {-0.01, 0.0, 0.01}) {
      const QColor c =
          saved.pixelColor(QPoint(static_cast<int>((1 + dx - s.left) / (s.right - s.left) * saved.width()),
                                  static_cast<int>((0.5 + dy - s.top) / (s.bottom - s.top) * saved.height())));
      blue += c.blue() > 150 && c.red() < 150;
    }
  }
  EXPECT_GT(blue, 0);
  // Labels that would cover one another are left out: none on a large map, some on a tiny one.
  QImage large(900, 900, QImage::Format_RGB32), tiny(90, 90, QImage::Format_RGB32);
  QPainter onLarge(&large), onTiny(&tiny);
  EXPECT_EQ(PaintMap(onLarge, s, large.rect(), {}), 0);
  EXPECT_GT(PaintMap(onTiny, s, tiny.rect(), {}), 0);

  auto* angle = open<AxisAngleWindow>();  // on x*y
  EXPECT_EQ(angle->Text1->text() + "," + angle->Text2->text(), "20,30");
  // A box that is no number keeps what was typed beside it, is selected, and changes nothing.
  for (auto [a, b, shown] : {std::tuple{"-10", "200", "0,180"}, {"45", "60.5", "45,60.5"}, {"x", "10", "x,10"}}) {
    fill(angle, {{"Text1", a}, {"Text2", b}});
    click(angle, "Command1");
    EXPECT_EQ(angle->Text1->text() + "," + angle->Text2->text(), shown) << a;
  }
  EXPECT_TRUE(angle->Text1->hasSelectedText() && state().ViewAngleX == 45 &&
              angle->statusLine()->text() == "\"x\" is not a number: the angles in force are unchanged.");
  fill(angle, {{"Text1", "5"}, {"Text2", "6"}});
  click(angle, "Command2");
  click(map, "Command2");
  EXPECT_EQ(std::pair(angle->Text1->text(), state().ViewAngleX), std::pair(QString("45"), 45.0));
  click(w, "Command5");
  const MapItem* last = nullptr;
  for (auto item = s.items.begin(); item != s.items.end() && !item->ink; ++item) last = &*item;  // the last cell
  ASSERT_NE(last, nullptr);
  const MapPoint at = Projection(EvaluateGrid(engine(), "x*y", OpeningGridBoxes(), false).grid, {45, 60.5}).at(1, 0);
  EXPECT_EQ(std::pair(s.pointsOf(*last)[0].x, s.pointsOf(*last)[0].y), std::pair(at.x, at.y));
  click(map, "Command1");  // closing the map closes the dialog
  EXPECT_FALSE(angle->isVisible());

  fill(w, {{"Text3", "100"}, {"Text6", "100"}});
  click(w, "Command1");
  QTest::mouseClick(w->Command5, Qt::LeftButton);
  EXPECT_TRUE(w->running());
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_FALSE(w->running() || w->mapWindow()->isVisible());
  EXPECT_EQ(std::pair(w->mapWindow()->Picture1->scene().count(MapItem::kPolygon), engine().StopRequested),
            std::pair(size_t{0}, int16_t{1}));
}

}  // namespace
}  // namespace merida::test

// The Integration, Double Integration, Differential and Delay windows: what their buttons wire
// together, and their runs stopped, shown in progress, waiting for each other.
#include <QElapsedTimer>
#include <QProgressBar>

#include "calculus/delay_window.h"
#include "calculus/diff_window.h"
#include "calculus/integration_window.h"
#include "graph/graph_window.h"
#include "gui_fixture.h"

namespace merida::test {
namespace {

TEST_F(GuiTest, IntegrationEvensTheCountAndOpensDoubleOnlyForTwoVariables) {
  start();
  auto* w = open<IntegrationWindow>();
  fill(w, {{"formula", "x^2"}, {"Text1", "0"}, {"Text2", "1"}, {"Text3", "7"}});
  click(w, "Command1");
  EXPECT_EQ(main().answerText() + " " + w->Text3->text(), "0.333333333333333 8");
  enter(w->Text2, "-1");  // a reversed range clears the answer and says nothing
  EXPECT_EQ(main().answerText() + errorText(), "");
  click(w, "Command3");
  EXPECT_TRUE(errorText() == "２重積分の変数は２個です" && !window("DoubleIntegrationWindow"));

  auto* d = open<DoubleIntegrationWindow>();
  EXPECT_FALSE(d->frameGeometry().intersects(w->frameGeometry())) << "opens beside the Integration window";
  EXPECT_EQ(d->Label1->text() + d->Label2->text(), "xy");
  fill(d, {{"Text1", "0"}, {"Text2", "1"}, {"Text3", "5"}, {"Text4", "0"}, {"Text5", "2"}});
  click(d, "Command1");
  EXPECT_EQ(main().answerText() + " " + d->Text3->text(), "1 5") << "an odd count is used evened, the box keeps it";
  click(w, "Command2");  // Close of the Integration window closes both
  EXPECT_TRUE(!d->isVisible() && engine().BindToX == -1);
  // Reopened, it has the boxes typed before, except the count its opening sets; so has the
  // Double Integration window it opens anew.
  w = open<IntegrationWindow>();
  EXPECT_EQ(w->Text1->text() + "|" + w->Text2->text() + "|" + w->Text3->text(), "0|-1|50");
  d = open<DoubleIntegrationWindow>();
  EXPECT_EQ(d->Text2->text() + "|" + d->Text5->text(), "1|2");
}

// Capped counts show at the start and the bar moves; Go (reading Stop), Close and Escape each
// end the run at once and leave no answer. A Calc meanwhile gets its own answer.
TEST_F(GuiTest, LongDoubleIntegralShowsProgressAndStopsAtOnce) {
  enum How { kStop, kClose, kEscape };
  for (auto [how, language, stop, seconds] : {std::tuple{kStop, "English", "Stop", " s"},
                                              {kClose, "English", "Stop", " s"},
                                              {kEscape, "Japanese", "停止", " 秒"}}) {
    writeFile("MERIDA.DEF", std::string(language) + "\r\n");
    start();
    auto* d = open<DoubleIntegrationWindow>();
    const QString go = d->Command1->text();
    fill(d, {{"Text1", "0"}, {"Text2", "1"}, {"Text3", "30000"}, {"Text4", "0"}, {"Text5", "1"}, {"Text6", "30000"}});
    main().setAnswerText("old");
    QTest::mouseClick(d->Command1, Qt::LeftButton);  // 225 million points unless stopped
    EXPECT_EQ(main().answerText() + d->Command1->text(), QString::fromUtf8(stop));
    EXPECT_TRUE(calc("2+3") == "5" && prompts_.empty()) << "a Calc meanwhile gets its own answer";
    EXPECT_TRUE(QTest::qWaitFor([d] { return d->Text3->text() == "10000" && d->Text6->text() == "10000"; }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([d] { return d->progressBar() && d->progressBar()->isVisible(); }, 5000));
    EXPECT_TRUE(d->progressBar()->text().endsWith(QString::fromUtf8(seconds)))
        << d->progressBar()->text().toStdString();
    const int first = d->progressBar()->value();
    EXPECT_TRUE(QTest::qWaitFor([&] { return d->progressBar()->value() > first; }, 10000)) << "the bar moves";
    QElapsedTimer stopping;
    stopping.start();
    if (how == kStop) QTest::mouseClick(d->Command1, Qt::LeftButton);
    if (how == kClose) QTest::mouseClick(d->Command2, Qt::LeftButton);
    if (how == kEscape) QTest::keyClick(d, Qt::Key_Escape);
    EXPECT_LT(stopping.elapsed(), 100) << how;
    EXPECT_EQ(std::pair(d->running(), d->isVisible()), std::pair(false, how == kStop)) << how;
    QTest::qWait(20);
    EXPECT_EQ(main().answerText() + d->Command1->text(), "5" + go) << how;
  }
}

TEST_F(GuiTest, DiffModesChecksSimultPlaneDataAndClose) {
  start();
  auto* w = open<DiffWindow>();
  EXPECT_EQ(state().DiffMode, 1);
  ClickBox(w->Check1);  // RungeKutta does nothing in Diff mode
  EXPECT_FALSE(w->Check1->isChecked());
  ClickBox(w->Option2);
  ClickBox(w->Check1);
  EXPECT_EQ(state().DiffMode, 3);
  fill(w, {{"formula", "y"}, {"Text1", "y"}, {"Text2", "0.1"}, {"Text4", "0"}, {"Text5", "1"}, {"Text3", "1"}});
  click(w, "Command1");
  ASSERT_EQ(w->Graph1->points(1).size(), 12);
  EXPECT_NEAR(w->Graph1->points(1)[10].y(), std::exp(1.0), 3e-6)
      << "Runge-Kutta's accuracy: the tick reached the solver";
  // A width of 0 ends without a message box; the status line says why, until a run does something.
  fill(w, {{"Text2", "0"}});
  click(w, "Command1");
  EXPECT_TRUE(w->statusLine()->text().startsWith("Nothing done: the width must step")) << w->statusLine()->text().toStdString();
  EXPECT_TRUE(w->focusWidget() == w->Text2 && w->Text2->selectedText() == "0") << "the box at fault is selected";
  EXPECT_NE(w->Graph1->graphicsEffect(), nullptr) << "the chart of the run before is greyed";
  fill(w, {{"Text2", "0.1"}});
  click(w, "Command1");
  EXPECT_EQ(w->statusLine()->text(), "");
  click(w, "Command5");  // Data
  ASSERT_NE(window("StatDataWindow"), nullptr);
  EXPECT_EQ(child<QTableWidget>(window("StatDataWindow"), "Grid1")->rowCount(), 13);

  // Simult draws y and, dashed, z from the second function; Plane draws z against y.
  ClickBox(w->Check1);
  fill(w, {{"formula", "z"}, {"Text5", "2"}, {"Text3", "0"}, {"Text6", "1"}, {"Text7", "0-y"}, {"Text8", "z"}});
  click(w, "Command4");
  EXPECT_TRUE(w->Check1->isChecked() && w->Graph1->dataSets() == 2) << "Simult ticks RungeKutta";
  EXPECT_EQ(w->Graph1->drawnSeries(2).front()->name() + w->Graph1->drawnSeries(1).front()->name(), "zy") << "the legend";
  ASSERT_EQ(Drawn(w->Graph1, 2).size(), 22);
  EXPECT_NEAR(Drawn(w->Graph1, 2)[20].y(), std::cos(2.0), 5e-6);
  EXPECT_EQ(w->Graph1->drawnSeries(2).front()->pen().style(), Qt::DashLine);
  EXPECT_NE(w->Graph1->drawnSeries(1).front()->pen().style(), Qt::DashLine);
  ClickBox(w->Check2);  // Plane draws z against y
  click(w, "Command4");
  EXPECT_EQ(std::pair(w->Graph1->dataSets(), Drawn(w->Graph1).value(0)), std::pair(1, QPointF(0, 1)));
  ClickBox(w->Option1);
  EXPECT_TRUE(!w->Check1->isChecked() && state().DiffMode == 1);

  // Close while a run goes on stops it and drops what it computed; the window reopens afresh.
  ClickBox(w->Option2);
  ClickBox(w->Check1);
  fill(w, {{"formula", "sgm(sin(k*x),1,2000,k)+y"}, {"Text2", "0.0001"}, {"Text5", "10"}});  // 48 million terms
  const int16_t count = state().Records.count;
  QTimer::singleShot(0, w, [w] { QTest::mouseClick(w->Command3, Qt::LeftButton); });
  click(w, "Command1");
  EXPECT_FALSE(w->running() || w->isVisible());
  EXPECT_EQ(std::tuple(state().Records.count, state().DiffMode, engine().StopRequested), std::tuple(count, 0, 1));
  w = open<DiffWindow>();
  EXPECT_TRUE(w->Option1->isChecked() && state().DiffMode == 1);
}

// Two runs that write the record table take turns: Go in Delay while a Graph plot runs waits,
// saying for whom; its Stop ends only itself; when the plot ends it starts from the table the
// plot left. Quitting with one running and one waiting stops both at once.
TEST_F(GuiTest, DelayWaitsForAPlotThatWritesTheRecordTable) {
  for (bool quit : {false, true}) {
    start();
    auto* graph = open<GraphWindow>();
    fill(graph, {{"formula", "sgm(k*x,1,100000,k)"}, {"Text1", "0"}, {"Text2", "1"}, {"Text3", "5999"}});
    QTest::mouseClick(graph->Command1, Qt::LeftButton);  // 600 million terms unless stopped
    ASSERT_TRUE(graph->plotting());
    auto* w = open<DelayWindow>();
    w->Grid1->setCellText(1, 1, "1");
    fill(w, {{"formula", "timestep(1)+1"}, {"Text1", "3"}});
    QTest::mouseClick(w->Command1, Qt::LeftButton);
    ASSERT_TRUE(w->running() && w->progressBar());
    EXPECT_EQ(w->progressBar()->text(), "Waiting for Graph to end");
    if (quit) {
      QElapsedTimer quitting;
      quitting.start();
      app_.reset();
      EXPECT_LT(quitting.elapsed(), 500);
      continue;
    }
    QTest::mouseClick(w->Command1, Qt::LeftButton);
    EXPECT_FALSE(w->running());
    EXPECT_TRUE(graph->plotting()) << "a waiting run's Stop ends only itself";
    QTest::mouseClick(w->Command1, Qt::LeftButton);
    QTest::qWait(50);
    EXPECT_TRUE(w->running());
    EXPECT_EQ(state().Records.count, 0) << "nothing written while both wait or run";
    QTest::mouseClick(graph->Command1, Qt::LeftButton);  // Stop
    WaitForJobs();
    EXPECT_EQ(w->Graph1->points(1), (QList<QPointF>{{1, 1}, {2, 2}, {3, 3}, {4, 4}}));
  }
}

}  // namespace
}  // namespace merida::test

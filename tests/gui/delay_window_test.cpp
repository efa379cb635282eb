// The Delay Calculate window through its controls: grid, Init Value, Step, Go, chart, record table.
#include "calculus/delay_window.h"
#include "graph/graph_window.h"
#include "gui_fixture.h"

#include <QElapsedTimer>
#include <QProgressBar>

namespace merida::test {
namespace {

class DelayWindowTest : public GuiTest {
 protected:
  DelayWindow* open(const QString& formula) {
    main().setFormulaText(formula);
    press(14);
    return qobject_cast<DelayWindow*>(window(QStringLiteral("DelayWindow")));
  }
  // The run ends on a worker thread; its chart and messages come after.
  static void waitForRun(DelayWindow* w) { EXPECT_TRUE(QTest::qWaitFor([w] { return !w->running(); }, 10000)); }
  static std::vector<double> chartValues(DelayWindow* w) {
    std::vector<double> out;
    for (const QPointF& p : w->Graph1->points(1)) out.push_back(p.y());
    return out;
  }
};

TEST_F(DelayWindowTest, InitValueBoxFillsTheColumnAndGoPlotsAndRecords) {
  start();
  DelayWindow* w = open("timestep(1)+timestep(2)");
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(w->Grid1->cellText(0, 1), "Init");
  for (const char* v : {"1", "1"}) {
    w->Text2->setText(v);
    QTest::keyClick(w->Text2, Qt::Key_Return);
  }
  EXPECT_EQ(w->Grid1->cellText(1, 1), "1");
  EXPECT_EQ(w->Grid1->cellText(2, 1), "1");
  EXPECT_EQ(w->Grid1->currentRow(), 3);
  w->Text1->setText("7");
  QTest::keyClick(w->Text1, Qt::Key_Return);
  waitForRun(w);
  EXPECT_EQ(chartValues(w), (std::vector<double>{1, 1, 2, 3, 5, 8, 13, 21}));
  EXPECT_EQ(state().Records.count, 8);
  EXPECT_EQ(state().Records.values[8][1], 21.0f);
  EXPECT_EQ(state().Records.kind, ComputedData);
}

// Two runs that write the record table take turns: Go in Delay while a Graph plot runs waits,
// saying for whom, and starts from the table the plot left; Stop while waiting leaves the line.
TEST_F(DelayWindowTest, WaitsForARunningPlotThatWritesTheRecordTable) {
  start();
  main().setFormulaText("sgm(k*x,1,100000,k)");  // 600 million terms unless stopped
  press(2);
  auto* graph = qobject_cast<GraphWindow*>(window(QStringLiteral("GraphWindow")));
  ASSERT_NE(graph, nullptr);
  graph->Text1->setText("0");
  graph->Text2->setText("1");
  graph->Text3->setText("5999");
  QTest::mouseClick(graph->Command1, Qt::LeftButton);
  ASSERT_TRUE(graph->plotting());

  DelayWindow* w = open("timestep(1)+1");
  ASSERT_NE(w, nullptr);
  w->Grid1->setCellText(1, 1, "1");
  w->Text1->setText("3");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_TRUE(w->running());
  EXPECT_EQ(w->Command1->text(), "Stop");
  ASSERT_NE(w->progressBar(), nullptr);
  EXPECT_TRUE(w->progressBar()->isVisible());
  EXPECT_EQ(w->progressBar()->text(), "Waiting for Graph to end");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_FALSE(w->running());
  EXPECT_TRUE(graph->plotting()) << "a waiting run's Stop ends only itself";

  QTest::mouseClick(w->Command1, Qt::LeftButton);
  QTest::qWait(50);
  EXPECT_TRUE(w->running());
  EXPECT_EQ(state().Records.count, 0) << "nothing written while both wait or run";
  QTest::mouseClick(graph->Command1, Qt::LeftButton);  // Stop
  EXPECT_FALSE(graph->plotting());
  waitForRun(w);
  EXPECT_EQ(chartValues(w), (std::vector<double>{1, 2, 3, 4}));
  EXPECT_EQ(state().Records.count, 4);
  EXPECT_EQ(state().Records.values[4][1], 4.0f);
}

// Quitting with one run going and another waiting for it stops both at once; the waiting one
// never starts.
TEST_F(DelayWindowTest, QuittingStopsRunningAndWaitingRuns) {
  start();
  main().setFormulaText("sgm(k*x,1,100000,k)");
  press(2);
  auto* graph = qobject_cast<GraphWindow*>(window(QStringLiteral("GraphWindow")));
  ASSERT_NE(graph, nullptr);
  graph->Text3->setText("5999");
  graph->Text2->setText("1");
  QTest::mouseClick(graph->Command1, Qt::LeftButton);
  DelayWindow* w = open("timestep(1)+1");
  ASSERT_NE(w, nullptr);
  w->Grid1->setCellText(1, 1, "1");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  ASSERT_TRUE(graph->plotting());
  ASSERT_TRUE(w->running());
  QElapsedTimer quitting;
  quitting.start();
  app_.reset();
  EXPECT_LT(quitting.elapsed(), 500);
}

TEST_F(DelayWindowTest, ErrorsAndTheCapShowInTheWindows) {
  start();
  DelayWindow* w = open("x*timestep(1)");
  ASSERT_NE(w, nullptr);
  w->Grid1->setCellText(1, 1, "1");
  w->Text1->setText("10000");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  waitForRun(w);
  EXPECT_EQ(errorText(), "遅延演算で変数は使えません");
  acknowledgeError();
  main().setFormulaText("timestep(1)*1");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  waitForRun(w);
  EXPECT_EQ(w->Text1->text(), "6000");
  EXPECT_EQ(w->Graph1->points(1).size(), 6000);
}

TEST_F(DelayWindowTest, JapaneseCaptions) {
  writeFile("MERIDA.DEF", "Japanese\r\n");
  start();
  DelayWindow* w = open("timestep(1)");
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(w->windowTitle(), "遅延関数");
  EXPECT_EQ(w->Frame1->title(), "ｽﾃｯﾌﾟ");
  EXPECT_EQ(w->Frame2->title(), "初期値");
  EXPECT_EQ(w->Command4->text(), "ﾃﾞｰﾀ");
}

}  // namespace
}  // namespace merida::test

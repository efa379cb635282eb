// The Intersection Point, Simultaneous Linear Equation and Prime windows: where their results
// go (list, chart, boxes, the main formula box), boxes they rewrite, stopping their runs; the
// grid's cells shown whole and typed into.
#include <QElapsedTimer>
#include <QListWidget>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyle>

#include "algebra/prime_window.h"
#include "algebra/root_window.h"
#include "algebra/roots.h"
#include "algebra/simult_window.h"
#include "gui_fixture.h"
#include "stats/stat_data_window.h"

namespace merida::test {
namespace {

TEST_F(GuiTest, IntersectionListChartBoxesAndStop) {
  start();
  auto* w = open<IntersectionWindow>();
  fill(w, {{"formula", "x^2-4"}, {"Text1", "-3"}, {"Text2", "3"}, {"Text3", "50"}});
  click(w, "Command1");
  EXPECT_TRUE(w->Graph1->points(1).isEmpty()) << "no chart while Graph is off";
  ASSERT_EQ(w->rootX().size(), 2u);
  // A double click writes the root without its blank, with all its digits or, Integer on, in hundredths.
  auto doubleClick = [w](int row) {
    QCoreApplication::processEvents();
    const QPoint at = w->List1->visualItemRect(w->List1->item(row)).center();
    QTest::mouseClick(w->List1->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(w->List1->viewport(), Qt::LeftButton, {}, at);
  };
  doubleClick(1);
  EXPECT_EQ(w->Text6->text().toStdString(), PolynomialBoxText(w->rootX()[1], false));
  ClickBox(w->Check2);
  doubleClick(0);
  EXPECT_EQ(w->Text6->text(), "-2");
  ClickBox(w->Check1);  // Graph: Go charts its samples, Inter both curves
  click(w, "Command1");
  EXPECT_EQ(w->Graph1->points(1).size(), 51);
  fill(w, {{"formula", "x^2"}, {"Text5", "x"}, {"Text1", "-1"}, {"Text2", "2"}, {"Text3", "10000"}});
  enter(w->Text5, "x");  // Enter in the second function's box is Inter
  EXPECT_EQ(Lines(w->List1), (QStringList{"x= 0  y= 0", "x= 1  y= 1"}));
  EXPECT_EQ(w->Text3->text(), "3000") << "the capped count";
  EXPECT_EQ(std::pair(w->Graph1->dataSets(), w->Graph1->points(2).back()), std::pair(2, QPointF(2, 2)));
  // Close during a scan stops it and keeps the list.
  fill(w, {{"formula", "sin(x)+sgm(k*x,1,100000,k)"}, {"Text1", "0"}, {"Text2", "1000"}, {"Text3", "5999"}});
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_TRUE(w->running());
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_FALSE(w->running());
  EXPECT_EQ(Lines(w->List1), (QStringList{"x= 0  y= 0", "x= 1  y= 1"}));
  EXPECT_EQ(w->List1->graphicsEffect(), nullptr) << "a stopped run greys nothing";
  // A run that cannot start keeps the list, as its rule has it, greyed.
  for (auto [formula, greyed] : {std::pair{"(x", true}, {"x^2-1", false}}) {
    fill(w, {{"formula", formula}, {"Text1", "-2"}, {"Text2", "2"}, {"Text3", "4"}});
    click(w, "Command1");
    EXPECT_EQ(std::tuple(Lines(w->List1).size(), w->List1->graphicsEffect() != nullptr, w->Graph1->graphicsEffect() != nullptr),
              std::tuple(2, greyed, greyed)) << formula;
    if (greyed) acknowledgeError();
  }

  // The polynomial buttons write the second function's box, the list and, by Copy, the main box.
  w = open<IntersectionWindow>();
  struct Row {
    const char *button, *formula, *polynomial, *text5;
    QStringList lines;
  };
  for (const Row& r : {Row{"Command7", "(x+1)^2*(x-3)", "", "x^3-x^2-5*x-3", {}},  // Expand
                       Row{"Command4", "x^2-2*x+1", "", "(x^2-2*x+1)", {"x= 1 重根", "x= 1 重根"}},
                       Row{"Command5", "x^2-3*x+2", "", "x^2-3*x+2", {}},
                       Row{"Command6", "x^2-3*x+2", "2", "(x-2)*(x-1)", {}}}) {  // Factor
    w->List1->clear();
    fill(w, {{"formula", r.formula}, {"Text6", r.polynomial}});
    click(w, r.button);
    EXPECT_EQ(w->Text5->text().toStdString(), r.text5) << r.button;
    EXPECT_EQ(Lines(w->List1), r.lines) << r.button;
  }
  click(w, "Command8");  // Copy
  EXPECT_EQ(main().formulaText(), "(x-2)*(x-1)");
  // A Seek that cannot converge (a judge value no step reaches) says so and changes nothing.
  fill(w, {{"formula", "x"}, {"Text1", "0"}, {"Text2", "1"}, {"Text3", "10"}, {"Text4", "-1"}});
  click(w, "Command1");
  fill(w, {{"formula", "x^3-6*x^2+11*x-6"}, {"Text5", "kept"}});
  QStringList box;
  AnswerNextBox(QMessageBox::Ok, &box);
  click(w, "Command4");
  EXPECT_EQ(box.value(1), "Seek found no factor: the method did not converge.");
  EXPECT_EQ(w->Text5->text(), "kept");
}

TEST_F(GuiTest, SimultModesEntryMessagesAndResults) {
  start();
  auto* w = open<SimultWindow>();
  EXPECT_TRUE(w->Command1->isEnabled() && w->Label1->isVisible() && w->windowTitle() == "Simultaneous Linear Equation");
  enter(w->Text1, "2");
  for (const char* v : {"1", "1", "2", "1", "-1", "0"}) enter(w->Text2, v);
  click(w, "Command1");
  EXPECT_EQ(Lines(w->List1), (QStringList{" X1 =  1", " X2 =  1"}));
  // A message of several lines, an empty cell ending silently, an error pointing at its cell.
  EXPECT_EQ(w->statusLine() ? w->statusLine()->text() : QString(), "");
  // A matrix too ill-conditioned for single precision: the answer with a warning.
  for (int i = 1; i <= 2; ++i) {
    for (int j = 1; j <= 2; ++j) w->Grid1->setCellText(i, j, "1");
  }
  w->Grid1->setCellText(2, 2, "1.0000002384185791015625");  // 1 + 2^-22, exact in single precision
  click(w, "Command5");
  EXPECT_TRUE(w->statusLine()->text().startsWith("Ill-conditioned (condition number about ")) << w->statusLine()->text().toStdString();
  w->Grid1->setCellText(1, 1, "0");
  click(w, "Command1");
  const QStringList zeroPivot = {"対角要素が０になり", "計算できません", "係数の行または列を", "交換してください"};
  EXPECT_EQ(Lines(w->List1), zeroPivot);
  w->Grid1->setCellText(2, 2, "");
  click(w, "Command5");
  EXPECT_EQ(Lines(w->List1), zeroPivot);
  w->Grid1->setCellText(2, 2, "x2");
  click(w, "Command1");
  EXPECT_TRUE(errorText() == "入力ﾃﾞｰﾀがおかしい" && w->currentCell() == (CellPosition{2, 2}));

  EXPECT_TRUE(open("MatrixWindow") == w && w->windowTitle() == "Determinant & Inverse Matrix");
  EXPECT_FALSE(w->Command1->isEnabled() || w->Command5->isEnabled() || w->Label1->isVisible());
  enter(w->Text1, "2");
  for (const char* v : {"4", "7", "2", "6"}) enter(w->Text2, v);
  click(w, "Command4");  // Inverse writes the grid back
  click(w, "Command3");
  EXPECT_EQ(std::pair(w->Grid1->cellText(1, 2), Lines(w->List1)), std::pair(QString("-0.7"), QStringList{" .1"}));
  click(w, "Command2");
  EXPECT_TRUE(open<SimultWindow>() == w && w->Text1->text() == "3") << "reopened afresh";
}

// Ten to the eighth lists without keeping the event loop waiting, down to its count line.
TEST_F(GuiTest, PrimeListingStaysResponsiveAndStopsAtOnce) {
  start();
  auto* w = open<PrimeWindow>();
  QSignalSpy ended(w, &PrimeWindow::listingEnded);
  QTimer probe;
  QElapsedTimer sinceTick;
  qint64 longestWait = 0;
  QObject::connect(&probe, &QTimer::timeout, [&] { longestWait = std::max(longestWait, sinceTick.restart()); });
  fill(w, {{"Text1", "100000000"}});
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  sinceTick.start();
  probe.start(10);
  ASSERT_TRUE(ended.wait(60000));
  QTRY_VERIFY_WITH_TIMEOUT(w->List1->verticalScrollBar()->maximum() > 5700000, 30000);
  probe.stop();
  EXPECT_TRUE(ended.at(0).at(0).toBool() && w->model()->line(5761455) == " 5761455 個ある");
  EXPECT_LT(longestWait, 250) << "the event loop waited " << longestWait << " ms";

  // Close stops a listing at once, without its count; a stop from elsewhere ends it too.
  for (bool close : {true, false}) {
    w = open<PrimeWindow>();
    ended.clear();
    fill(w, {{"Text1", "2000000000"}});
    QTest::mouseClick(w->Command2, Qt::LeftButton);
    QTest::qWait(50);
    ASSERT_TRUE(w->listing());
    if (close) QTest::mouseClick(w->Command3, Qt::LeftButton);
    if (!close) engine().StopRequested = 1;
    ASSERT_TRUE(close || ended.wait(5000));
    EXPECT_EQ(w->isHidden(), close);
    const int rows = w->model()->rowCount();
    EXPECT_TRUE(rows > 0 && w->model()->line(rows - 1).find("個ある") == std::string::npos);
    QTest::qWait(30);
    EXPECT_EQ(w->model()->rowCount(), rows);
  }
}

// The cell shows its text whole on one line: the delegate's margins and the grid line leave room.
::testing::AssertionResult ShowsWhole(const GridWidget* g, int i, int j) {
  const QString text = g->cellText(i, j);
  const int margin = g->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, g) + 1;
  const int room = g->columnWidth(j) - 2 * margin - 1, need = g->fontMetrics().horizontalAdvance(text);
  if (need <= room) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "cell (" << i << ", " << j << ") \"" << text.toStdString() << "\" needs "
                                       << need << " px and has " << room;
}

// Types into the cell as a user does: the first key opens the cell's editor, Enter ends.
void TypeIntoCell(GridWidget* g, int row, int column, const QString& text) {
  g->setCurrentCell(row, column);
  QTest::keyClicks(g, text.left(1));
  auto* editor = qobject_cast<QLineEdit*>(g->indexWidget(g->currentIndex()));
  ASSERT_NE(editor, nullptr) << "typing did not open the cell";
  QTest::keyClicks(editor, text.mid(1));
  QTest::keyClick(editor, Qt::Key_Return);
  QCoreApplication::processEvents();  // the editor hands its text over from the event loop
}

TEST_F(GuiTest, CellsTakeTypingAndTheEntryBoxFollowsTheLastCell) {
  start();
  auto* w = qobject_cast<SimultWindow*>(open("MatrixWindow"));
  const char* values[3][3] = {{"4", "7", "2"}, {"3", "6", "1"}, {"2", "5", "3"}};
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) TypeIntoCell(w->Grid1, i, j, values[i - 1][j - 1]);
  }
  click(w, "Command3");
  EXPECT_EQ(Lines(w->List1), QStringList{" 9"});
  click(w, "Command4");  // the inverse's long numbers show whole
  ASSERT_EQ(w->Grid1->cellText(1, 3), "-0.5555556");
  for (int i = 0; i <= 3; ++i) {
    for (int j = 0; j <= 3; ++j) EXPECT_TRUE(ShowsWhole(w->Grid1, i, j));
  }
  TypeIntoCell(w->Grid1, 3, 3, "5");
  enter(w->Text2, "8");  // into the cell last typed in
  EXPECT_EQ(w->Grid1->cellText(3, 3), "8");
  w->Grid1->setCurrentCell(0, 1);
  QTest::keyClicks(w->Grid1, "9");
  EXPECT_EQ(w->Grid1->cellText(0, 1), " a1") << "headings take no typing";

  // Statistical data: at most three dimensions; typed cells and the entry box (on from the
  // cell last typed in, down the column) reach the record table by Memory and ORBITA.ORB by File.
  auto* data = open<StatDataWindow>();
  enter(data->Text1, "5");
  EXPECT_EQ(std::pair(data->Text1->text(), data->Grid1->columnCount()), std::pair(QString("3"), 4));
  enter(data->Text1, "2");
  enter(data->Text3, "2");
  TypeIntoCell(data->Grid1, 1, 1, "1.5");
  TypeIntoCell(data->Grid1, 2, 1, "-2");
  TypeIntoCell(data->Grid1, 1, 2, "3E2");
  for (const char* v : {"4", "5"}) enter(data->Text2, v);
  click(data, "Command1");
  const RecordFunctionTable& t = state().Records;
  EXPECT_EQ(std::tuple(t.kind, t.count, t.values[1][0], t.values[2][0], t.values[1][1], t.values[2][1]),
            std::tuple(int16_t{OrbitaData}, int16_t{2}, 1.5f, -2.0f, 4.0f, 5.0f));
  click(data, "Command2");
  EXPECT_EQ(readFile("ORBITA.ORB"), "ORBITA\r\n2\r\n2\r\n1.5\r\n-2\r\n4\r\n5\r\n");
}

}  // namespace
}  // namespace merida::test

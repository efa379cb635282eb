// The Simultaneous Linear Equation window in both modes and the Prime window, driven as a user would.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>

#include "algebra/prime_window.h"
#include "algebra/simult_window.h"
#include "test_support.h"

namespace merida {
namespace {

class AlgebraWindowTest : public ::testing::Test {
 protected:
  void useJapanese() {
    state.DisplayLanguage = kJapanese;
    ASSERT_TRUE(translator.load(":/i18n/merida_ja.qm"));
    QCoreApplication::installTranslator(&translator);
  }
  void TearDown() override { QCoreApplication::removeTranslator(&translator); }

  test::RecordingHost host;
  Engine engine{host};
  AppState state;
  QWidget owner;
  QTranslator translator;
};

using Lines = std::vector<std::string>;

Lines ListLines(const QListWidget* list) {
  Lines lines;
  for (int i = 0; i < list->count(); ++i) lines.push_back(list->item(i)->text().toStdString());
  return lines;
}

std::string Cell(const SimultWindow* w, int row, int column) {
  return w->Grid1->item(row, column)->text().toStdString();
}

// Types each text into the entry box followed by Enter.
void Enter(SimultWindow* w, const std::vector<const char*>& texts) {
  for (const char* t : texts) {
    QTest::keyClicks(w->Text2, t);
    QTest::keyClick(w->Text2, Qt::Key_Return);
  }
}

void SetDimension(SimultWindow* w, const char* n) {
  w->Text1->clear();
  QTest::keyClicks(w->Text1, n);
  QTest::keyClick(w->Text1, Qt::Key_Return);
}

TEST_F(AlgebraWindowTest, EquationsModeLayout) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  EXPECT_EQ(w->windowTitle(), "Simultaneous Linear Equation");
  EXPECT_EQ(w->Text1->text(), "3");
  ASSERT_EQ(w->Grid1->rowCount(), 4);
  ASSERT_EQ(w->Grid1->columnCount(), 5);
  EXPECT_EQ(Cell(w, 0, 0), "Coeff");
  EXPECT_EQ(Cell(w, 0, 4), " c");
  EXPECT_EQ(Cell(w, 3, 0), "3");
  EXPECT_TRUE(w->Command1->isEnabled());
  EXPECT_TRUE(w->Label1->isVisible());
}

TEST_F(AlgebraWindowTest, MatrixModeLayout) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kMatrixMode);
  EXPECT_EQ(state.MatrixWindowMode, 1);
  EXPECT_EQ(w->windowTitle(), "Determinant & Inverse Matrix");
  EXPECT_EQ(w->Grid1->columnCount(), 4);
  EXPECT_EQ(Cell(w, 0, 3), " a3");
  EXPECT_FALSE(w->Command1->isEnabled());
  EXPECT_FALSE(w->Command5->isEnabled());
  EXPECT_TRUE(w->Command3->isEnabled());
  EXPECT_TRUE(w->Command4->isEnabled());
  EXPECT_FALSE(w->Label1->isVisible());
  // The Simult button on the open window switches it back to equations.
  EXPECT_EQ(ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode), w);
  EXPECT_EQ(w->Grid1->columnCount(), 5);
  EXPECT_TRUE(w->Command1->isEnabled());
}

TEST_F(AlgebraWindowTest, JapaneseCaptions) {
  useJapanese();
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  EXPECT_EQ(w->windowTitle(), "連立一次方程式");
  EXPECT_EQ(Cell(w, 0, 0), "係数");
  EXPECT_EQ(w->Label2->text(), "次元");
  EXPECT_EQ(w->Command4->text(), "逆行列");
  ShowSimultWindow(&owner, engine, state, SimultWindow::kMatrixMode);
  EXPECT_EQ(w->windowTitle(), "行列式・逆行列");
}

TEST_F(AlgebraWindowTest, EntryBoxFillsTheGridAndGoSolves) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  SetDimension(w, "2");
  ASSERT_EQ(w->Grid1->rowCount(), 3);
  ASSERT_EQ(w->Grid1->columnCount(), 4);
  Enter(w, {"2", "1", "3"});
  EXPECT_EQ(w->currentCell(), (CellPosition{2, 1}));
  Enter(w, {"1", "-1", "0"});
  EXPECT_EQ(w->currentCell(), (CellPosition{1, 1}));
  EXPECT_EQ(Cell(w, 1, 3), "3");
  EXPECT_EQ(Cell(w, 2, 2), "-1");
  EXPECT_TRUE(w->Text2->text().isEmpty());
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(ListLines(w->List1), (Lines{" X1 =  1", " X2 =  1"}));
  QTest::mouseClick(w->Command5, Qt::LeftButton);
  EXPECT_EQ(ListLines(w->List1), (Lines{" X1 =  1", " X2 =  1"}));
}

TEST_F(AlgebraWindowTest, KeysAreTakenInUpperCase) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  QTest::keyClicks(w->Text2, "1e-3");
  EXPECT_EQ(w->Text2->text(), "1E-3");
  QTest::keyClick(w->Text2, Qt::Key_Return);
  EXPECT_EQ(Cell(w, 1, 1), "1E-3");
}

TEST_F(AlgebraWindowTest, DimensionAboveTenBecomesTen) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  Enter(w, {"5"});
  SetDimension(w, "15");
  EXPECT_EQ(w->Text1->text(), "10");
  EXPECT_EQ(w->systemOrder(), 10);
  EXPECT_EQ(w->Grid1->rowCount(), 11);
  EXPECT_EQ(w->Grid1->columnCount(), 12);
  EXPECT_EQ(Cell(w, 1, 1), "");  // cleared to the new size
  SetDimension(w, "zero");
  EXPECT_EQ(w->systemOrder(), 10);
}

TEST_F(AlgebraWindowTest, MessagesAndSilentEnds) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  SetDimension(w, "2");
  Enter(w, {"0", "1", "1", "1", "0", "2"});
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  const Lines zeroPivot = {"対角要素が０になり", "計算できません", "係数の行または列を", "交換してください"};
  EXPECT_EQ(ListLines(w->List1), zeroPivot);

  w->Grid1->item(2, 2)->setText("");
  QTest::mouseClick(w->Command5, Qt::LeftButton);
  EXPECT_EQ(ListLines(w->List1), zeroPivot);  // an empty cell changes nothing
  EXPECT_TRUE(host.errors.empty());

  w->Grid1->item(2, 2)->setText("x2");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(host.errors, std::vector<int>{46});
  EXPECT_EQ(ListLines(w->List1), zeroPivot);
  EXPECT_EQ(w->currentCell(), (CellPosition{2, 2}));
}

TEST_F(AlgebraWindowTest, OverflowEndsWithoutAMessage) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  SetDimension(w, "1");
  Enter(w, {"0", "1"});
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(w->List1->count(), 0);
  EXPECT_TRUE(host.errors.empty());
  EXPECT_EQ(engine.BindToX, -1);
  EXPECT_EQ(engine.StopRequested, 1);
}

TEST_F(AlgebraWindowTest, InverseWritesBackAndDeterminantLists) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kMatrixMode);
  SetDimension(w, "2");
  Enter(w, {"4", "7"});
  EXPECT_EQ(w->currentCell(), (CellPosition{2, 1}));
  Enter(w, {"2", "6"});
  QTest::mouseClick(w->Command3, Qt::LeftButton);
  EXPECT_EQ(ListLines(w->List1), Lines{" 10"});
  QTest::mouseClick(w->Command4, Qt::LeftButton);
  EXPECT_EQ(w->List1->count(), 0);
  EXPECT_EQ(Cell(w, 1, 2), "-0.7");
  QTest::mouseClick(w->Command3, Qt::LeftButton);
  EXPECT_EQ(ListLines(w->List1), Lines{" .1"});
}

TEST_F(AlgebraWindowTest, ClickingACellMakesItCurrent) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  QRect cell = w->Grid1->visualItemRect(w->Grid1->item(2, 3));
  QTest::mouseClick(w->Grid1->viewport(), Qt::LeftButton, {}, cell.center());
  EXPECT_EQ(w->currentCell(), (CellPosition{2, 3}));
  Enter(w, {"7"});
  EXPECT_EQ(Cell(w, 2, 3), "7");
  EXPECT_EQ(w->currentCell(), (CellPosition{2, 4}));
  QRect header = w->Grid1->visualItemRect(w->Grid1->item(0, 2));
  QTest::mouseClick(w->Grid1->viewport(), Qt::LeftButton, {}, header.center());
  EXPECT_EQ(w->currentCell(), (CellPosition{2, 4}));  // headers are not cells
}

TEST_F(AlgebraWindowTest, CloseHidesAndReopensAfresh) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  SetDimension(w, "5");
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_TRUE(w->isHidden());
  EXPECT_EQ(ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode), w);
  EXPECT_EQ(w->systemOrder(), 3);
  EXPECT_EQ(w->Text1->text(), "3");
}

Lines ModelLines(const PrimeWindow* w) {
  Lines lines;
  for (int i = 0; i < w->model()->rowCount(); ++i) lines.push_back(w->model()->line(i));
  return lines;
}

void Type(QLineEdit* box, const char* text) {
  box->clear();
  QTest::keyClicks(box, text);
}

TEST_F(AlgebraWindowTest, PrimeWindowCaptionsInBothLanguages) {
  PrimeWindow* w = ShowPrimeWindow(&owner, engine, state);
  EXPECT_EQ(w->windowTitle(), "Prime");
  EXPECT_EQ(w->Command4->text(), "G.C.M.");
  EXPECT_TRUE(w->Option1->isChecked());
  w->close();
  useJapanese();
  w = ShowPrimeWindow(&owner, engine, state);
  EXPECT_EQ(w->windowTitle(), "素数");
  EXPECT_EQ(w->Command1->text(), "素因数");
  Type(w->Text1, "12");
  Type(w->Text2, "18");
  QTest::mouseClick(w->Command4, Qt::LeftButton);
  EXPECT_EQ(ModelLines(w), (Lines{"最大公約数.", " 6", "最小公倍数.", " 36"}));
}

TEST_F(AlgebraWindowTest, FactorReadsTheSelectedBox) {
  PrimeWindow* w = ShowPrimeWindow(&owner, engine, state);
  Type(w->Text1, "360");
  Type(w->Text2, "97");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(ModelLines(w), (Lines{" 2＾ 3", " 3＾ 2", " 5"}));
  QTest::mouseClick(w->Option2, Qt::LeftButton);
  ASSERT_TRUE(w->Option2->isChecked());
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(ModelLines(w), Lines{" 97"});
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_EQ(ModelLines(w).back(), " 25 個ある");
}

TEST_F(AlgebraWindowTest, GcmLinesAndOverflow) {
  PrimeWindow* w = ShowPrimeWindow(&owner, engine, state);
  Type(w->Text1, "12");
  Type(w->Text2, "18");
  QTest::mouseClick(w->Command4, Qt::LeftButton);
  EXPECT_EQ(ModelLines(w), (Lines{"G.C.M.", " 6", "L.C.M.", " 36"}));
  Type(w->Text1, "100000");
  Type(w->Text2, "99999");
  QTest::mouseClick(w->Command4, Qt::LeftButton);  // an overflowing L.C.M. must not sit beside old figures
  EXPECT_TRUE(ModelLines(w).empty());
}

TEST_F(AlgebraWindowTest, ListsToTenToTheEightWhileStayingResponsive) {
  PrimeWindow* w = ShowPrimeWindow(&owner, engine, state);
  QSignalSpy ended(w, &PrimeWindow::listingEnded);
  // A timer that should fire every 10 ms measures how long the event loop is kept waiting.
  QTimer probe;
  QElapsedTimer sinceTick;
  qint64 longestWait = 0;
  QObject::connect(&probe, &QTimer::timeout, [&] {
    longestWait = std::max(longestWait, sinceTick.restart());
  });
  Type(w->Text1, "100000000");
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  sinceTick.start();
  probe.start(10);
  ASSERT_TRUE(ended.wait(60000));
  // The view's own layout of the rows must not hold the loop either; the scroll range shows it done.
  QTRY_VERIFY_WITH_TIMEOUT(w->List1->verticalScrollBar()->maximum() > 5700000, 30000);
  probe.stop();
  EXPECT_TRUE(ended.at(0).at(0).toBool());
  EXPECT_EQ(w->model()->rowCount(), 5761456);
  EXPECT_EQ(w->model()->line(5761455), " 5761455 個ある");
  EXPECT_LT(longestWait, 250) << "the event loop waited " << longestWait << " ms";
  w->List1->scrollToBottom();
  QCoreApplication::processEvents();
  QRect last = w->List1->visualRect(w->model()->index(5761455));
  EXPECT_TRUE(w->List1->viewport()->rect().intersects(last)) << last.y();
  EXPECT_GT(w->List1->indexAt(QPoint(4, 4)).row(), 5761400);
}

TEST_F(AlgebraWindowTest, CloseStopsAListingAtOnce) {
  PrimeWindow* w = ShowPrimeWindow(&owner, engine, state);
  Type(w->Text1, "2000000000");
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  QTest::qWait(50);
  ASSERT_TRUE(w->listing());
  QTest::mouseClick(w->Command3, Qt::LeftButton);
  EXPECT_FALSE(w->listing());
  EXPECT_TRUE(w->isHidden());
  EXPECT_EQ(engine.StopRequested, 1);
  int rows = w->model()->rowCount();
  EXPECT_GT(rows, 0);
  EXPECT_EQ(w->model()->line(rows - 1).find("個ある"), std::string::npos);
  QTest::qWait(30);
  EXPECT_EQ(w->model()->rowCount(), rows);
  // Opening again starts afresh and works.
  EXPECT_EQ(ShowPrimeWindow(&owner, engine, state), w);
  EXPECT_EQ(w->model()->rowCount(), 0);
  Type(w->Text1, "3");
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_EQ(ModelLines(w), (Lines{" 2", " 3", " 2 個ある"}));
}

TEST_F(AlgebraWindowTest, AStopRequestFromElsewhereEndsTheListingWithoutTheCount) {
  PrimeWindow* w = ShowPrimeWindow(&owner, engine, state);
  QSignalSpy ended(w, &PrimeWindow::listingEnded);
  Type(w->Text1, "2000000000");
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  engine.StopRequested = 1;
  ASSERT_TRUE(ended.wait(5000));
  EXPECT_FALSE(ended.at(0).at(0).toBool());
  EXPECT_FALSE(w->isHidden());
  EXPECT_EQ(w->model()->line(w->model()->rowCount() - 1).find("個ある"), std::string::npos);
}

}  // namespace
}  // namespace merida

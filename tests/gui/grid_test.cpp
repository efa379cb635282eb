// The grids of the statistical data and linear equation windows: whole numbers in every cell,
// columns that grow with the window, and cells that take typing.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QStyle>
#include <QTest>
#include <functional>
#include <numeric>

#include "algebra/simult_window.h"
#include "gui_test_host.h"
#include "stats/stat_data_window.h"

namespace merida {
namespace {

class GridTest : public test::TempDirTest {
 public:  // the window makers of the growth cases use them
  GridTest() : engine(host) { engine.ResetEngine(); }
  test::GuiTestHost host;
  Engine engine;
  AppState state;
  QWidget owner;
};

// The cell shows its text whole on one line: the delegate's margins and the grid line leave room.
::testing::AssertionResult ShowsWhole(const GridWidget* g, int i, int j) {
  const QString text = g->cellText(i, j);
  const int margin = g->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, g) + 1;
  const int room = g->columnWidth(j) - 2 * margin - 1;
  const int need = g->fontMetrics().horizontalAdvance(text);
  if (need <= room) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "cell (" << i << ", " << j << ") \"" << text.toStdString() << "\" needs "
                                       << need << " px and has " << room;
}

int ColumnsWidth(const GridWidget* g) {
  int total = 0;
  for (int j = 0; j < g->columnCount(); ++j) total += g->columnWidth(j);
  return total;
}

// Every cell whole, and the columns as wide as the view at least.
void ExpectFits(const GridWidget* g) {
  QCoreApplication::processEvents();
  for (int i = 0; i < g->rowCount(); ++i) {
    for (int j = 0; j < g->columnCount(); ++j) EXPECT_TRUE(ShowsWhole(g, i, j));
  }
  EXPECT_GE(ColumnsWidth(g), g->viewport()->width());
}

void Enter(QLineEdit* box, const std::vector<const char*>& texts) {
  for (const char* t : texts) {
    box->setText(QString::fromUtf8(t));
    QTest::keyClick(box, Qt::Key_Return);
  }
}

void SetBox(QLineEdit* box, const char* text) {
  box->setText(QString::fromUtf8(text));
  QTest::keyClick(box, Qt::Key_Return);
}

// Types into the grid's cell as a user does: the first key opens the cell's editor, Enter ends.
void TypeIntoCell(GridWidget* g, int row, int column, const QString& text) {
  g->setCurrentCell(row, column);
  QTest::keyClicks(g, text.left(1));
  auto* editor = qobject_cast<QLineEdit*>(g->indexWidget(g->currentIndex()));
  if (!editor) editor = g->viewport()->findChild<QLineEdit*>();
  ASSERT_NE(editor, nullptr) << "typing did not open the cell";
  QTest::keyClicks(editor, text.mid(1));
  QTest::keyClick(editor, Qt::Key_Return);
  QCoreApplication::processEvents();  // the editor hands its text over from the event loop
}

TEST_F(GridTest, InverseResultsShowWholeInTheirColumns) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kMatrixMode);
  Enter(w->Text2, {"4", "7", "2", "3", "6", "1", "2", "5", "3"});
  QTest::mouseClick(w->Command4, Qt::LeftButton);
  ASSERT_EQ(w->Grid1->cellText(1, 3), "-0.5555556");
  ExpectFits(w->Grid1);
  // A narrower result later narrows the column again, down to what it holds.
  const int wide = w->Grid1->neededWidth(3);
  Enter(w->Text1, {"1"});
  Enter(w->Text2, {"2"});
  QTest::mouseClick(w->Command4, Qt::LeftButton);
  EXPECT_EQ(w->Grid1->cellText(1, 1), "0.5");
  QCoreApplication::processEvents();
  EXPECT_LT(w->Grid1->neededWidth(1), wide);
}

TEST_F(GridTest, LongNumbersTypedIntoEveryWindowShowWhole) {
  const std::vector<const char*> values = {"-1.222222E-05", "1234567890.123", "0.3333333", "-0.5555556",
                                           "7",             "1E+30",          "-.25",      "444444.444444"};
  SimultWindow* simult = ShowSimultWindow(&owner, engine, state, SimultWindow::kEquationsMode);
  Enter(simult->Text2, values);
  ExpectFits(simult->Grid1);

  StatDataWindow data(engine, state);
  data.show();
  SetBox(data.Text1, "3");
  Enter(data.Text2, values);
  ExpectFits(data.Grid1);
  EXPECT_EQ(data.Grid1->cellText(2, 2), "-.25");
}

TEST_F(GridTest, ALongNumberFarDownAFullColumnWidensIt) {
  StatDataWindow w(engine, state);
  w.show();
  SetBox(w.Text1, "3");
  SetBox(w.Text3, "5000");
  ASSERT_EQ(w.Grid1->rowCount(), 5001);
  w.Grid1->setCurrentCell(4990, 2);
  Enter(w.Text2, {"-1.234567E-30"});
  QCoreApplication::processEvents();
  EXPECT_TRUE(ShowsWhole(w.Grid1, 4990, 2));
  EXPECT_TRUE(ShowsWhole(w.Grid1, 5000, 0));
  EXPECT_GT(w.Grid1->columnWidth(2), w.Grid1->columnWidth(1));
}

struct GrowCase {
  const char* name;
  std::function<QWidget*(GridTest&)> open;
};

class GridGrowth : public GridTest, public ::testing::WithParamInterface<GrowCase> {};

TEST_P(GridGrowth, ColumnsWidenWithTheWindow) {
  QWidget* w = GetParam().open(*this);
  auto* grid = w->findChild<GridWidget*>("Grid1");
  ASSERT_NE(grid, nullptr);
  w->resize(640, 400);
  QCoreApplication::processEvents();
  const int gridBefore = grid->width();
  std::vector<int> before;
  for (int j = 0; j < grid->columnCount(); ++j) before.push_back(grid->columnWidth(j));
  EXPECT_GE(ColumnsWidth(grid), grid->viewport()->width());

  w->resize(1100, 600);
  QCoreApplication::processEvents();
  EXPECT_GT(grid->width(), gridBefore + 200);
  EXPECT_GE(ColumnsWidth(grid), grid->viewport()->width());
  for (int j = 1; j < grid->columnCount(); ++j) EXPECT_GT(grid->columnWidth(j), before[static_cast<size_t>(j)]) << j;
  ExpectFits(grid);
}

INSTANTIATE_TEST_SUITE_P(
    Windows, GridGrowth,
    ::testing::Values(GrowCase{"Equations",
                               [](GridTest& fixture) -> QWidget* {
                                 return ShowSimultWindow(&fixture.owner, fixture.engine, fixture.state, SimultWindow::kEquationsMode);
                               }},
                      GrowCase{"StatisticalData",
                               [](GridTest& fixture) -> QWidget* {
                                 auto* w = new StatDataWindow(fixture.engine, fixture.state, &fixture.owner);
                                 w->show();
                                 SetBox(w->Text1, "2");
                                 return w;
                               }}),
    [](const auto& p) { return std::string(p.param.name); });

TEST_F(GridTest, MatrixTypedStraightIntoTheCells) {
  SimultWindow* w = ShowSimultWindow(&owner, engine, state, SimultWindow::kMatrixMode);
  const char* values[3][3] = {{"4", "7", "2"}, {"3", "6", "1"}, {"2", "5", "3"}};
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) TypeIntoCell(w->Grid1, i, j, values[i - 1][j - 1]);
  }
  EXPECT_EQ(w->Grid1->cellText(3, 2), "5");
  QTest::mouseClick(w->Command3, Qt::LeftButton);
  ASSERT_EQ(w->List1->count(), 1);
  EXPECT_EQ(w->List1->item(0)->text(), " 9");
  // The entry box still writes into the cell the user last moved to.
  EXPECT_EQ(w->currentCell(), (CellPosition{3, 3}));
  Enter(w->Text2, {"8"});
  EXPECT_EQ(w->Grid1->cellText(3, 3), "8");
  // Headings take no typing.
  w->Grid1->setCurrentCell(0, 1);
  QTest::keyClicks(w->Grid1, "9");
  EXPECT_EQ(w->Grid1->cellText(0, 1), " a1");
}

TEST_F(GridTest, StatisticalDataTypedStraightIntoTheCellsIsStored) {
  StatDataWindow w(engine, state);
  w.show();
  SetBox(w.Text1, "2");
  SetBox(w.Text3, "2");
  TypeIntoCell(w.Grid1, 1, 1, "1.5");
  TypeIntoCell(w.Grid1, 2, 1, "-2");
  TypeIntoCell(w.Grid1, 1, 2, "3E2");
  Enter(w.Text2, {"4"});  // into the cell last typed in, then down the column
  QTest::mouseClick(w.Command1, Qt::LeftButton);
  EXPECT_EQ(state.Records.values[1][0], 1.5f);
  EXPECT_EQ(state.Records.values[2][0], -2.0f);
  EXPECT_EQ(state.Records.values[1][1], 4.0f);
  EXPECT_EQ(w.Grid1->cellText(1, 2), "4");
}

}  // namespace
}  // namespace merida

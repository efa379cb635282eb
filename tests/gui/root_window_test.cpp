// The Intersection Point window through its controls: Go, Inter, the polynomial tools, the list.
#include "algebra/root_window.h"
#include "gui_fixture.h"
#include "gui_test_host.h"

namespace merida::test {
namespace {

QStringList Lines(const QListWidget* list) {
  QStringList out;
  for (int i = 0; i < list->count(); ++i) out << list->item(i)->text();
  return out;
}

// On the indicator: a check box takes clicks on its box and caption only.
void ClickOn(QAbstractButton* b) {
  QPoint at = qobject_cast<QPushButton*>(b) ? b->rect().center() : QPoint(8, b->height() / 2);
  QTest::mouseClick(b, Qt::LeftButton, {}, at);
  test::WaitForJobs();
}

// A press, then the double click on the same row, as a mouse gives them.
void DoubleClickRow(QListWidget* list, int row) {
  QCoreApplication::processEvents();  // the list lays its rows out later
  const QPoint at = list->visualItemRect(list->item(row)).center();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

// The window on its own, with the main window's formula box played by `formula`.
class RootWindowTest : public TempDirTest {
 protected:
  RootWindowTest() : engine(host) { engine.ResetEngine(); }

  void SetUp() override {
    TempDirTest::SetUp();
    w = std::make_unique<IntersectionWindow>(
        engine, state, [this] { return formula; }, [this](const QString& text) { copied = text; });
    w->show();
  }
  void TearDown() override {
    w.reset();
    TempDirTest::TearDown();
  }

  void range(const char* min, const char* max, const char* num, const char* judge = "1E-07") {
    w->Text1->setText(min);
    w->Text2->setText(max);
    w->Text3->setText(num);
    w->Text4->setText(judge);
  }
  QStringList go(const QString& f) {
    formula = f;
    ClickOn(w->Command1);
    return Lines(w->List1);
  }
  void press(QPushButton* button, const QString& f) {
    formula = f;
    ClickOn(button);
  }

  GuiTestHost host;
  Engine engine;
  AppState state;
  QString formula, copied;
  std::unique_ptr<IntersectionWindow> w;
};

TEST_F(RootWindowTest, OpensWithItsDefaults) {
  EXPECT_EQ(w->Text3->text(), "50");
  EXPECT_EQ(w->Text4->text(), "1E-07");
  EXPECT_EQ(w->Text7->text(), "1E-05");
  EXPECT_EQ(state.DivisionCount, 50);
  EXPECT_EQ(engine.UnboundPolicy, -1);
  EXPECT_EQ(w->judgeValue(), 1e-7);
  EXPECT_EQ(w->Graph1->dataSets(), 1);
  EXPECT_TRUE(w->Graph1->gridBothWays());
  EXPECT_EQ(w->List1->count(), 0);
}

TEST_F(RootWindowTest, EachCheckClickNegatesItsValue) {
  struct Row {
    QCheckBox* box;
    int16_t (IntersectionWindow::*value)() const;
  };
  for (Row r : {Row{w->Check1, &IntersectionWindow::graphOn}, Row{w->Check2, &IntersectionWindow::roundOn},
                Row{w->Check3, &IntersectionWindow::coefficientOn}}) {
    for (int16_t expected : {1, -1}) {
      ClickOn(r.box);
      EXPECT_EQ(((*w).*r.value)(), expected) << r.box->objectName().toStdString();
    }
  }
}

struct GoCase {
  const char* name;
  const char* formula;
  const char *min, *max, *num;
  bool integer;
  QStringList lines;
};

void PrintTo(const GoCase& c, std::ostream* out) { *out << c.name; }

class GoLists : public RootWindowTest, public ::testing::WithParamInterface<GoCase> {};

TEST_P(GoLists, ListsTheRootsFound) {
  const GoCase& c = GetParam();
  if (c.integer) ClickOn(w->Check2);
  w->List1->addItem("before");
  range(c.min, c.max, c.num);
  EXPECT_EQ(go(c.formula), c.lines);
  EXPECT_TRUE(host.errors.empty());
  EXPECT_EQ(engine.BindToX, -1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GoLists,
    ::testing::Values(GoCase{"RootsAtSamples", "x^2-1", "-2", "2", "4", false, {"x=-1", "x= 1"}},
                      GoCase{"IntegerRoundsToHundredths", "x^2-2", "0", "2", "50", true, {"x= 1.41"}},
                      // 1/x overflows next to 0: a fault, which keeps the previous list.
                      GoCase{"PoleAtZeroFaults", "1/x", "-1", "1", "3", false, {"before"}}),

    [](const auto& p) { return std::string(p.param.name); });

TEST_F(RootWindowTest, GoBisectsEachSignChangeAndKeepsTheRootsForTheList) {
  range("-3", "3", "50");
  QStringList lines = go("x^2-4");
  ASSERT_EQ(lines.size(), 2);
  ASSERT_EQ(w->rootX().size(), 2u);

  // The double click writes the root without its blank, with all its digits or in hundredths.
  DoubleClickRow(w->List1, 1);
  EXPECT_EQ(w->Text6->text().toStdString(), PolynomialBoxText(w->rootX()[1], false));
  ClickOn(w->Check2);
  DoubleClickRow(w->List1, 0);
  EXPECT_EQ(w->Text6->text(), "-2");
}

TEST_F(RootWindowTest, GraphPlotsTheSamplesOfGoAndBothCurvesOfInter) {
  range("-3", "3", "50");
  go("x^2-4");
  EXPECT_TRUE(w->Graph1->points(1).isEmpty()) << "no chart while Graph is off";
  ClickOn(w->Check1);
  go("x^2-4");
  QList<QPointF> p = w->Graph1->points(1);
  ASSERT_EQ(p.size(), 51);
  EXPECT_EQ(p.front(), QPointF(-3, 5));
  EXPECT_EQ(p.back(), QPointF(3, 5));
  EXPECT_FALSE(w->Graph1->drawnSeries(1).isEmpty());

  formula = "x^2";
  w->Text5->setText("x");
  range("-1", "2", "30");
  ClickOn(w->Command3);
  EXPECT_EQ(w->Graph1->dataSets(), 2);
  ASSERT_EQ(w->Graph1->points(2).size(), 31);
  EXPECT_EQ(w->Graph1->points(1).back(), QPointF(2, 4));
  EXPECT_EQ(w->Graph1->points(2).back(), QPointF(2, 2));
  EXPECT_FALSE(w->Graph1->drawnSeries(2).isEmpty());

  // Go returns to one data set.
  go("x");
  EXPECT_EQ(w->Graph1->dataSets(), 1);
}

TEST_F(RootWindowTest, InterListsRoundedPointsWhateverIntegerSays) {
  w->Text5->setText("x");
  range("-1", "2", "50");
  press(w->Command3, "x^2");
  const QStringList expected{"x= 0  y= 0", "x= 1  y= 1"};
  EXPECT_EQ(Lines(w->List1), expected);
  ClickOn(w->Check2);
  press(w->Command3, "x^2");
  EXPECT_EQ(Lines(w->List1), expected);
  // Enter in the second-function box runs Inter.
  w->List1->clear();
  QTest::keyClick(w->Text5, Qt::Key_Return);
  test::WaitForJobs();
  EXPECT_EQ(Lines(w->List1), expected);
}

TEST_F(RootWindowTest, CountsAtTheCapRewriteTheNumBox) {
  struct Row {
    QPushButton* button;
    const char* shown;
    int points;
  };
  ClickOn(w->Check1);
  w->Text5->setText("0");
  for (Row r : {Row{w->Command1, "6000", 6000}, Row{w->Command3, "3000", 3000}}) {
    range("-1", "1", "10000", "1E-08");
    press(r.button, "x");
    EXPECT_EQ(w->Text3->text(), r.shown);
    EXPECT_EQ(w->Graph1->points(1).size(), r.points);
    EXPECT_EQ(w->List1->count(), 1) << r.shown;
  }
}

TEST_F(RootWindowTest, ErrorsAndUnusableBoxesKeepThePreviousList) {
  range("-2", "2", "4");
  const QStringList before = go("x^2-1");
  ASSERT_EQ(before.size(), 2);

  struct Row {
    const char *name, *formula, *min, *max, *num, *judge;
    int error;  // 0: silent
  };
  for (Row r : {Row{"JudgeAboveTheStep", "x", "0", "1", "10", "0.11", 29},
                Row{"MinEqualsMax", "x", "1", "1", "10", "1E-07", 0},
                Row{"NumZero", "x", "0", "1", "0", "1E-07", 0}}) {
    host.errors.clear();
    range(r.min, r.max, r.num, r.judge);
    EXPECT_EQ(go(r.formula), before) << r.name;
    EXPECT_EQ(host.errors, r.error ? std::vector<int>{r.error} : std::vector<int>{}) << r.name;
    EXPECT_EQ(engine.BindToX, -1) << r.name;
  }
}

TEST_F(RootWindowTest, CloseDuringAScanStopsItWithoutAListing) {
  range("-2", "2", "4");
  const QStringList before = go("x^2-1");
  range("0", "1000", "5999");
  formula = "sin(x)+sgm(k*x,1,100000,k)";  // 600 million terms unless stopped
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_TRUE(w->running());
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_FALSE(w->isVisible());
  EXPECT_FALSE(w->running());
  EXPECT_EQ(Lines(w->List1), before);
  EXPECT_EQ(engine.StopRequested, 1);
  EXPECT_EQ(engine.BindToX, -1);
  EXPECT_EQ(engine.UnboundPolicy, -1);
}

struct PolyCase {
  const char* name;
  QPushButton* IntersectionWindow::*button;
  const char* formula;
  const char* text5;  // the second-function box afterwards
  QStringList lines;  // the list afterwards
};

void PrintTo(const PolyCase& c, std::ostream* out) { *out << c.name; }

class PolynomialTool : public RootWindowTest, public ::testing::WithParamInterface<PolyCase> {};

TEST_P(PolynomialTool, WritesTheSecondFunctionAndTheList) {
  const PolyCase& c = GetParam();
  w->Text5->setText("before");
  w->List1->addItem("before");
  press((*w).*c.button, c.formula);
  EXPECT_EQ(w->Text5->text().toStdString(), c.text5);
  EXPECT_EQ(Lines(w->List1), c.lines);
  EXPECT_TRUE(host.errors.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PolynomialTool,
    ::testing::Values(
        PolyCase{"ExpandProduct", &IntersectionWindow::Command7, "(x+1)^2*(x-3)", "x^3-x^2-5*x-3", {"before"}},
        PolyCase{"ArrangeWritesZeros", &IntersectionWindow::Command5, "x^3+1", "x^3+0*x^2+0*x+1", {"before"}},
        PolyCase{"SeekDoubleRoot", &IntersectionWindow::Command4, "x^2-2*x+1", "(x^2-2*x+1)",
                 {"x= 1 重根", "x= 1 重根"}}),
    [](const auto& p) { return std::string(p.param.name); });

TEST_F(RootWindowTest, PolynomialErrorsChangeNothing) {
  struct Row {
    const char* name;
    QPushButton* button;
    const char* formula;
    int error;
  };
  for (Row r : {Row{"ExpandWithoutBrackets", w->Command7, "x^2+1", 22},
                Row{"ArrangeTwoVariables", w->Command5, "x^2+y", 52}}) {
    host.errors.clear();
    w->Text5->setText("kept");
    press(r.button, r.formula);
    EXPECT_EQ(w->Text5->text(), "kept") << r.name;
    EXPECT_EQ(host.errors, std::vector<int>{r.error}) << r.name;
  }
}

TEST_F(RootWindowTest, SeekWithIntegerOnSnapsTheRoots) {
  ClickOn(w->Check2);
  press(w->Command4, "x^3-6*x^2+11*x-6");
  QStringList lines = Lines(w->List1);
  lines.sort();
  EXPECT_EQ(lines, (QStringList{"x= 1", "x= 2", "x= 3"}));
}

TEST_F(RootWindowTest, FactorPeelsOneRootPerPressUntilClose) {
  press(w->Command5, "x^2-3*x+2");
  w->Text6->setText("2");
  press(w->Command6, "x^2-3*x+2");
  EXPECT_EQ(w->Text5->text().toStdString(), "(x-2)*(x-1)");
  EXPECT_TRUE(host.errors.empty());

  // A value that is not a root: error 53, the box stays.
  press(w->Command5, "x^3-6*x^2+11*x-6");
  w->Text6->setText("5");
  ClickOn(w->Command6);
  EXPECT_EQ(host.errors, std::vector<int>{53});
  EXPECT_EQ(w->Text5->text().toStdString(), "x^3-6*x^2+11*x-6");
  w->Text6->setText("1");
  ClickOn(w->Command6);
  EXPECT_EQ(w->Text5->text().toStdString(), "(x-1)*(x^2-5*x+6)");
  // Close drops the factors taken off so far; the next press starts its own product.
  w->close();
  w->show();
  w->Text6->setText("2");
  ClickOn(w->Command6);
  EXPECT_EQ(w->Text5->text().toStdString(), "(x-2)*(x-3)");
}

TEST_F(RootWindowTest, CoeffTakesTheMultiplierOfTheLeadingCoefficient) {
  ClickOn(w->Check3);
  press(w->Command5, "2*x^2-3*x+1");
  w->Text6->setText("0.5");
  QTest::keyClick(w->Text6, Qt::Key_Return);  // Enter in the Polynomial box is Factor
  test::WaitForJobs();
  EXPECT_EQ(w->Text5->text(), "(2*x-1)*(x-1)");
}

TEST_F(RootWindowTest, SeekThatCannotConvergeSaysSoAndChangesNothing) {
  // A negative judge value is never reached by a step, so Bairstow runs out of starts.
  range("0", "1", "10", "-1");
  go("x");
  EXPECT_EQ(w->judgeValue(), -1);
  w->Text5->setText("kept");
  w->List1->clear();
  w->List1->addItem("kept");
  QString text;
  OnNextModal<QMessageBox>([&](QMessageBox* box) {
    text = box->text();
    box->accept();
  });
  press(w->Command4, "x^3-6*x^2+11*x-6");
  EXPECT_EQ(text, "Seek found no factor: the method did not converge.");
  EXPECT_EQ(w->Text5->text(), "kept");
  EXPECT_EQ(Lines(w->List1), QStringList{"kept"});
}

// Through the main window: the Inter button, the captions in both languages, Copy.
const std::vector<Caption> kCaptions = {
    {"", "Intersection Point", "根"},   {"Frame1", "Min", "始点"},
    {"Frame2", "Max", "終点"},          {"Frame3", "Num", "分割数"},
    {"Frame4", "Jugde Val", "判定値"},  {"Frame5", "Second Function", "第2関数"},
    {"Frame6", "Polynomial", "多項式"}, {"Command1", "Go", "開始"},
    {"Command2", "Close", "中止"},      {"Command3", "Inter", "交点"},
    {"Command4", "Seek", "求根"},       {"Command5", "Arrange", "整理"},
    {"Command6", "Factor", "因数"},     {"Command7", "Expand", "展開"},
    {"Command8", "Copy", "ｺﾋﾟｰ"},       {"Command9", "Print", "印刷"},
    {"Check1", "Graph", "ｸﾞﾗﾌ"},        {"Check2", "Integer", "整数化"},
    {"Check3", "Coeff", "係数"},
};

class IntersectionFromMain : public GuiTest, public ::testing::WithParamInterface<bool> {};

TEST_P(IntersectionFromMain, InterOpensTheWindowInTheDisplayLanguage) {
  const bool japanese = GetParam();
  writeFile("MERIDA.DEF", japanese ? "Japanese\r\n" : "English\r\n");
  start();
  main().setFormulaText("(x+1)^2*(x-3)");
  press(10);
  auto* w = qobject_cast<IntersectionWindow*>(window(QStringLiteral("IntersectionWindow")));
  ASSERT_NE(w, nullptr);
  ExpectCaptions(w, kCaptions, japanese);

  // Expand, then Copy writes the result into the main formula box.
  ClickAndWait(w->Command7);
  QTest::mouseClick(w->Command8, Qt::LeftButton);
  EXPECT_EQ(main().formulaText(), "x^3-x^2-5*x-3");

  // The judge value error reaches the Error Message window.
  main().setFormulaText("x");
  w->Text1->setText("0");
  w->Text2->setText("1");
  w->Text3->setText("10");
  w->Text4->setText("1");
  ClickAndWait(w->Command1);
  EXPECT_EQ(errorText(), "判定値が大きすぎます");
}

INSTANTIATE_TEST_SUITE_P(Languages, IntersectionFromMain, ::testing::Bool(),
                         [](const auto& p) { return std::string(p.param ? "Japanese" : "English"); });

}  // namespace
}  // namespace merida::test

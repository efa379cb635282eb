// What a new user meets first: the fault box, where errors appear, the main window's room,
// recalling formulas, and the keyboard in every window.
#include <QGroupBox>
#include <QListView>

#include "gui_fixture.h"
#include "main/error_window.h"

namespace merida::test {
namespace {

class FirstHour : public GuiTest {
 protected:
  // Every tool window the main window can open, each shown once.
  std::vector<QWidget*> openEveryWindow() {
    std::vector<QWidget*> windows{&main()};
    for (int n = 2; n <= 20; ++n) {
      if (n == 4 || n == 5 || n == 6) continue;
      auto* button = child<QPushButton>(&main(), ("Command" + std::to_string(n)).c_str());
      if (!button || !button->isEnabled()) continue;
      QTest::mouseClick(button, Qt::LeftButton);
    }
    // The Test window needs no data to open, only the Stat window's button.
    if (QWidget* stat = window(QStringLiteral("StatWindow"))) click(stat, "Command6");
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (w->isVisible() && w != &main() && !qobject_cast<ErrorWindow*>(w)) windows.push_back(w);
    }
    return windows;
  }
};

TEST_F(FirstHour, FaultBoxSpeaksTheDisplayLanguageAndShowsItsTitle) {
  for (const char* language : {"English", "Japanese"}) {
    writeFile("MERIDA.DEF", std::string(language) + "\r\n");
    start();
    app_->host().setFaultFunction({});  // the real box
    QString text, title;
    int width = 0, titleWidth = 0;
    OnNextModal<QMessageBox>([&](QMessageBox* box) {
      text = box->text();
      title = box->windowTitle();
      width = box->width();
      titleWidth = box->fontMetrics().horizontalAdvance(title);
      box->accept();
    });
    EXPECT_EQ(calc("13!"), "");
    EXPECT_EQ(title, main().windowTitle()) << language;
    EXPECT_EQ(text, std::string(language) == "Japanese" ? QStringLiteral("オーバーフローしました") : QStringLiteral("Overflow"));
    // Room for the title beside the window's own buttons.
    EXPECT_GE(width, titleWidth + 120) << language;
    EXPECT_GE(width, 300) << language;
  }
}

struct Placement {
  const char* name;
  QRect anchor;
  QSize size;
  QPoint expect;
};

class PlaceBesideTest : public ::testing::TestWithParam<Placement> {};

TEST_P(PlaceBesideTest, BesideNotOver) {
  const Placement& c = GetParam();
  const QRect screen(0, 0, 1280, 1024);
  QPoint p = PlaceBeside(c.anchor, c.size, screen);
  EXPECT_EQ(p, c.expect);
  EXPECT_TRUE(screen.contains(QRect(p, c.size)));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PlaceBesideTest,
    ::testing::Values(Placement{"Right", {100, 100, 400, 300}, {200, 100}, {508, 100}},
                      Placement{"LeftAtTheRightEdge", {900, 100, 370, 300}, {200, 100}, {692, 100}},
                      Placement{"BelowWhenTheSidesAreFull", {0, 100, 1280, 300}, {200, 100}, {0, 408}},
                      Placement{"AboveWhenOnlyTheTopIsFree", {0, 500, 1280, 524}, {200, 100}, {0, 392}},
                      Placement{"CoversTheLeastWhenNothingFits", {0, 0, 1280, 1024}, {200, 100}, {1080, 0}}),
    [](const ::testing::TestParamInfo<Placement>& p) { return std::string(p.param.name); });

TEST_F(FirstHour, ErrorWindowOpensBesideTheRaisingWindowNotOverTheAnswer) {
  start();
  // Where beside is PlaceBeside's business (above); here the error window must use it.
  main().move(40, 40);
  calc("1/0");
  QWidget* errors = window(QStringLiteral("ErrorWindow"));
  ASSERT_NE(errors, nullptr);
  EXPECT_FALSE(errors->frameGeometry().intersects(main().frameGeometry()));
  acknowledgeError();

  // Raised by the graph window: beside that window.
  main().setFormulaText("x*y");  // one variable only
  press(2);
  QWidget* graph = window(QStringLiteral("GraphWindow"));
  ASSERT_NE(graph, nullptr);
  graph->move(300, 300);
  QApplication::setActiveWindow(graph);
  click(graph, "Command1");
  errors = window(QStringLiteral("ErrorWindow"));
  ASSERT_NE(errors, nullptr);
  EXPECT_FALSE(errors->frameGeometry().intersects(graph->frameGeometry()));
}

TEST_F(FirstHour, EnlargedMainWindowGivesItsRoomToTheButtons) {
  start();
  auto* formula = child<QGroupBox>(&main(), "Frame1");
  auto* answer = child<QGroupBox>(&main(), "Frame2");
  QApplication::processEvents();
  int formulaHeight = formula->height(), answerHeight = answer->height();
  main().resize(main().width() * 2, main().height() * 3);
  QApplication::processEvents();
  EXPECT_EQ(formula->height(), formulaHeight);
  EXPECT_EQ(answer->height(), answerHeight);
  auto* calcButton = child<QPushButton>(&main(), "Command1");
  EXPECT_LE(calcButton->height(), 2 * calcButton->sizeHint().height());
  EXPECT_GT(child<QLineEdit>(&main(), "Text1")->width(), 500) << "the formula box widens";
}

TEST_F(FirstHour, UpAndDownRecallCalculatedFormulas) {
  start();
  calc("1+2");
  calc("2^10");
  auto* box = child<QLineEdit>(&main(), "Text1");
  box->setText("sin(");
  box->setFocus();
  QTest::keyClick(box, Qt::Key_Up);
  EXPECT_EQ(box->text(), "2^10");
  QTest::keyClick(box, Qt::Key_Up);
  EXPECT_EQ(box->text(), "1+2");
  QTest::keyClick(box, Qt::Key_Down);
  QTest::keyClick(box, Qt::Key_Down);
  EXPECT_EQ(box->text(), "sin(");
  QTest::keyClick(box, Qt::Key_Up);
  QTest::keyClick(box, Qt::Key_Return);
  EXPECT_EQ(child<QLabel>(&main(), "Label1")->text(), "1024");
}

TEST_F(FirstHour, EscapeClosesToolWindowsButNotTheProgram) {
  start();
  std::vector<QWidget*> windows = openEveryWindow();
  ASSERT_GT(windows.size(), 5u);
  for (QWidget* w : windows) {
    if (w == &main()) continue;
    QTest::keyClick(w, Qt::Key_Escape);
    EXPECT_FALSE(w->isVisible()) << w->objectName().toStdString();
  }
  QTest::keyClick(&main(), Qt::Key_Escape);
  EXPECT_TRUE(main().isVisible());
}

TEST_F(FirstHour, ToolWindowsOpenWithTheCursorInTheirFirstBoxAndEnterActsOnIt) {
  start();
  main().setFormulaText("x");
  press(7);
  QWidget* integration = window(QStringLiteral("IntegrationWindow"));
  ASSERT_NE(integration, nullptr);
  EXPECT_EQ(integration->focusWidget(), child<QLineEdit>(integration, "Text1"));
  press(20);
  QWidget* prime = window(QStringLiteral("PrimeWindow"));
  ASSERT_NE(prime, nullptr);
  auto* text1 = child<QLineEdit>(prime, "Text1");
  auto* text2 = child<QLineEdit>(prime, "Text2");
  EXPECT_EQ(prime->focusWidget(), text1);
  auto lines = [&] {
    QStringList out;
    auto* model = child<QListView>(prime, "List1")->model();
    for (int r = 0; r < model->rowCount(); ++r) out << model->index(r, 0).data().toString();
    return out;
  };
  // Enter in a number box factors that box.
  text1->setText("360");
  text2->setText("97");
  QTest::keyClick(text2, Qt::Key_Return);
  EXPECT_EQ(lines(), QStringList{" 97"});
  QTest::keyClick(text1, Qt::Key_Enter);
  EXPECT_EQ(lines(), (QStringList{" 2＾ 3", " 3＾ 2", " 5"}));
}

// Tab never jumps back up and to the left: it reads each window as it is laid out.
TEST_F(FirstHour, TabOrderFollowsTheLayout) {
  for (const char* language : {"English", "Japanese"}) {
    writeFile("MERIDA.DEF", std::string(language) + "\r\n");
    start();
    for (QWidget* w : openEveryWindow()) {
      QApplication::processEvents();
      std::vector<QWidget*> chain;
      for (QWidget* f = w->nextInFocusChain(); f != w; f = f->nextInFocusChain()) {
        if (f->isVisibleTo(w) && f->isEnabled() && (f->focusPolicy() & Qt::TabFocus) && f->window() == w) {
          chain.push_back(f);
        }
      }
      // The chain is a ring: its one way back up is from the last control to the first.
      int backwards = 0;
      std::string where;
      for (std::size_t i = 0; i < chain.size(); ++i) {
        QWidget* from = chain[i];
        QWidget* to = chain[(i + 1) % chain.size()];
        QRect a(from->mapTo(w, QPoint(0, 0)), from->size());
        QRect b(to->mapTo(w, QPoint(0, 0)), to->size());
        if (!(b.top() >= a.top() - 4 || b.left() >= a.right())) {
          ++backwards;
          where += " " + from->objectName().toStdString() + "->" + to->objectName().toStdString();
        }
      }
      EXPECT_LE(backwards, 1) << language << " " << w->objectName().toStdString() << ":" << where;
    }
    app_.reset();
  }
}

}  // namespace
}  // namespace merida::test

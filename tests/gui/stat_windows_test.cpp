// The Statistical Analysis, Multiple Regression and Test windows through their controls, from
// data typed into the Statistical Data window: the statistics are the logic's tests' business.
#include <QAreaSeries>
#include <QGuiApplication>
#include <QScatterSeries>

#include "gui_fixture.h"
#include "stats/multreg_window.h"
#include "stats/stat_data_window.h"
#include "stats/stat_window.h"
#include "stats/test_window.h"

namespace merida::test {
namespace {

class StatWindowsTest : public GuiTest {
 protected:
  StatWindow* open() {
    press(19);
    return qobject_cast<StatWindow*>(window(QStringLiteral("StatWindow")));
  }
  static void enter(QLineEdit* box, const QString& text) {
    box->setText(text);
    QTest::keyClick(box, Qt::Key_Return);
  }
  // Types `columns` (each of the same length) into the Data window and presses Memory.
  static void store(StatWindow* w, const std::vector<std::vector<const char*>>& columns) {
    QTest::mouseClick(w->Command4, Qt::LeftButton);
    StatDataWindow* d = w->statDataWindow();
    ASSERT_TRUE(d->isVisible());
    enter(d->Text1, QString::number(columns.size()));
    enter(d->Text3, QString::number(columns[0].size()));
    for (const auto& column : columns) {
      for (const char* v : column) enter(d->Text2, QString::fromLatin1(v));
    }
    QTest::mouseClick(d->Command1, Qt::LeftButton);
  }
};

TEST_F(StatWindowsTest, StatusFollowsTheKindOnOpeningAndAfterMemory) {
  struct Case {
    int16_t kind;
    const char* status;
    QString dimension, count;
  };
  const Case cases[] = {
      {NoData, "ﾃﾞｰﾀが記録関数に読み込まれていません", "", ""},
      {WaveData, "WAVE形式のﾃﾞｰﾀです", "1", "7"},
      {ComputedData, "ﾃﾞｰﾀの形式が違います", "", ""},
  };
  start();
  for (const Case& c : cases) {
    state().Records.kind = c.kind;
    state().Records.dimension = 1;
    state().Records.count = 7;
    StatWindow* w = open();
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w->windowTitle(), "Statiistical Analysis");
    EXPECT_EQ(w->Label14->text(), QString::fromUtf8(c.status)) << c.kind;
    EXPECT_EQ(w->Label3->text(), c.dimension) << c.kind;
    EXPECT_EQ(w->Label4->text(), c.count) << c.kind;
    EXPECT_EQ(w->Text1->text(), "1");
    w->close();
  }
  state().Records.kind = ComputedData;
  StatWindow* w = open();
  ASSERT_NE(w, nullptr);
  store(w, {{"1", "2"}, {"3", "4"}, {"5", "6"}});
  EXPECT_EQ(w->Label14->text(), "ORBITA形式のﾃﾞｰﾀです");
  EXPECT_EQ(w->Label3->text(), "3");
  EXPECT_EQ(w->Label4->text(), "2");
  // Data loaded elsewhere while the window is open shows when the user comes back to it.
  state().Records.kind = WaveData;
  state().Records.dimension = 1;
  QEvent activate(QEvent::WindowActivate);
  QCoreApplication::sendEvent(w, &activate);
  EXPECT_EQ(w->Label14->text(), "WAVE形式のﾃﾞｰﾀです");
  EXPECT_EQ(w->Label3->text(), "1");
}

TEST_F(StatWindowsTest, FreqAveAndRegresFillTheirBoxesAndTheChart) {
  start();
  StatWindow* w = open();
  ASSERT_NE(w, nullptr);
  store(w, {{"1", "2", "3", "4"}, {"3", "5", "7", "9"}});
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr) << "the busy cursor must end with Freq";
  EXPECT_EQ(w->Text2->text(), "2.5");
  EXPECT_EQ(w->Graph1->style(), ChartWidget::Style::kBars);
  EXPECT_EQ(w->Graph1->pointCount(), 100);
  EXPECT_EQ(w->Graph1->points().front().x(), 1.0) << "labelled by the lower bounds";
  ASSERT_EQ(w->Graph1->drawnShapes().size(), 1);
  EXPECT_NE(qobject_cast<QAreaSeries*>(w->Graph1->drawnShapes()[0]), nullptr);

  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_EQ(w->Text4->text(), "2.5");
  EXPECT_EQ(w->Text5->text(), "1.25");
  EXPECT_EQ(w->Text6->text(), "1.11803");

  // Column 1 against column 2: y = 2x + 1.
  QTest::mouseClick(w->Command3, Qt::LeftButton);
  EXPECT_EQ(w->Text7->text(), "2.");
  EXPECT_EQ(w->Text8->text(), "1.");
  EXPECT_EQ(w->Text9->text(), "1.");
  EXPECT_EQ(w->Graph1->style(), ChartWidget::Style::kPoints);
  ASSERT_EQ(w->Graph1->drawnShapes().size(), 1);
  auto* marks = qobject_cast<QScatterSeries*>(w->Graph1->drawnShapes()[0]);
  ASSERT_NE(marks, nullptr);
  EXPECT_EQ(marks->count(), 4);
  EXPECT_EQ(marks->at(3), QPointF(4, 9));

  // The second column is analysed when Text1 says so.
  w->Text1->setText("2");
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_EQ(w->Text4->text(), "6.");
  EXPECT_EQ(errorText(), "");
}

TEST_F(StatWindowsTest, ErrorsGoThroughTheHostAndLeaveTheBoxes) {
  struct Case {
    const char* column;
    QPushButton* StatWindow::*button;
    const char* message;
  };
  const Case cases[] = {
      {"1", &StatWindow::Command3, "回帰分析は２次元ﾃﾞｰﾀです"},
      {"2", &StatWindow::Command2, "次元の数が多すぎます"},
      {"4", &StatWindow::Command1, "次元の数が多すぎます"},
      {"1", &StatWindow::Command5, "重回帰は３次元ﾃﾞｰﾀです"},
  };
  start();
  StatWindow* w = open();
  ASSERT_NE(w, nullptr);
  store(w, {{"1", "2", "3", "4"}});
  for (const Case& c : cases) {
    for (QLineEdit* box : {w->Text2, w->Text4, w->Text7}) box->setText("kept");
    w->Text1->setText(c.column);
    QTest::mouseClick(w->*c.button, Qt::LeftButton);
    EXPECT_EQ(errorText(), QString::fromUtf8(c.message)) << c.column;
    for (QLineEdit* box : {w->Text2, w->Text4, w->Text7}) EXPECT_EQ(box->text(), "kept");
    acknowledgeError();
  }
  EXPECT_EQ(w->multRegWindow()->isVisible(), false);
}

TEST_F(StatWindowsTest, MultRegOpensItsWindowWithThePlane) {
  start();
  StatWindow* w = open();
  ASSERT_NE(w, nullptr);
  store(w, {{"0", "1", "0", "1"}, {"0", "0", "1", "1"}, {"1", "3", "4", "6"}});
  QTest::mouseClick(w->Command5, Qt::LeftButton);
  MultRegWindow* m = w->multRegWindow();
  ASSERT_TRUE(m->isVisible());
  EXPECT_EQ(m->windowTitle(), "Multiple Regression Analysis");
  struct Box {
    const char* name;
    QString text;
  };
  for (const Box& b : {Box{"Text1", ".5"}, Box{"Text3", "3.5"}, Box{"Text16", "1."}, Box{"Text17", "2."},
                       Box{"Text18", "3."}, Box{"Text19", "1."}}) {
    EXPECT_EQ(child<QLineEdit>(m, b.name)->text(), b.text) << b.name;
  }
}

class TestWindowTest : public StatWindowsTest {
 protected:
  TestWindow* openTest(StatWindow* w) {
    QTest::mouseClick(w->Command6, Qt::LeftButton);
    TestWindow* t = w->testWindow();
    EXPECT_TRUE(t->isVisible());
    return t;
  }
  static void fill(TestWindow* t, const std::array<const char*, 6>& boxes) {
    QLineEdit* const targets[] = {t->Text1, t->Text2, t->Text3, t->Text4, t->Text5, t->Text6};
    for (int k = 0; k < 6; ++k) targets[k]->setText(QString::fromLatin1(boxes[k]));
  }
};

TEST_F(TestWindowTest, MeanTestAtEitherLevelAndFromTheRecordTable) {
  start();
  StatWindow* w = open();
  ASSERT_NE(w, nullptr);
  store(w, {{"9", "9", "9", "9"}, {"1", "2", "3", "4"}});
  TestWindow* t = openTest(w);
  EXPECT_EQ(t->windowTitle(), "Test");
  EXPECT_TRUE(t->Option1->isChecked());
  EXPECT_FALSE(t->Check1->isChecked());
  EXPECT_EQ(t->Text9->text(), "1");

  fill(t, {"0", "-1", "", "1", "2", "10"});
  QTest::mouseClick(t->Command1, Qt::LeftButton);
  EXPECT_EQ(t->Text7->text(), "1.5");
  EXPECT_EQ(t->Text8->text(), "2.262");
  EXPECT_EQ(t->Label8->text(), "標本の平均値は、母集団と異なるとは言えない");
  QTest::mouseClick(t->Option2, Qt::LeftButton);
  QTest::mouseClick(t->Command1, Qt::LeftButton);
  EXPECT_EQ(t->Text8->text(), "3.25");

  // The record option reads the column Text9 names and shows what it computed.
  QTest::mouseClick(t->Option1, Qt::LeftButton);
  QTest::mouseClick(t->Check1, Qt::LeftButton);
  ASSERT_TRUE(t->Text9->isEnabled());
  t->Text9->setText("2");
  t->Text1->setText("0");
  QTest::mouseClick(t->Command1, Qt::LeftButton);
  EXPECT_EQ(t->Text4->text(), "2.5");
  EXPECT_EQ(t->Text5->text(), "1.11803");
  EXPECT_EQ(t->Text6->text(), "4");
  EXPECT_EQ(t->Label8->text(), "標本の平均値は、母集団と異なる");
  EXPECT_EQ(errorText(), "");
  t->Text9->setText("4");
  QTest::mouseClick(t->Command1, Qt::LeftButton);
  EXPECT_EQ(errorText(), "次元の数が多すぎます");
  EXPECT_EQ(t->Text6->text(), "4");
}

TEST_F(TestWindowTest, VarianceAndChiSquareTests) {
  start();
  StatWindow* w = open();
  ASSERT_NE(w, nullptr);
  TestWindow* t = openTest(w);
  // No record table yet: the chi-square test refuses.
  fill(t, {"", "", "3", "", "", "0"});
  QTest::mouseClick(t->Command3, Qt::LeftButton);
  EXPECT_EQ(errorText(), "記録関数の形式が違います");
  acknowledgeError();

  fill(t, {"", "2", "11", "", "1", "21"});
  QTest::mouseClick(t->Command2, Qt::LeftButton);
  EXPECT_EQ(t->Text7->text(), "4.19048");
  EXPECT_EQ(t->Text8->text(), "2.365");  // between the columns 8 and 12 of row 20
  EXPECT_EQ(t->Label8->text(), "２標本の分散は異なる");

  // Observed and expected frequencies.
  store(w, {{"10", "20", "30"}, {"12", "18", "30"}});
  fill(t, {"", "", "0", "", "", "0"});
  QTest::mouseClick(t->Command3, Qt::LeftButton);
  EXPECT_EQ(errorText(), "自由度がありません");
  acknowledgeError();
  t->Text3->setText("3");
  QTest::mouseClick(t->Command3, Qt::LeftButton);
  EXPECT_EQ(t->Text7->text(), ".55556");
  EXPECT_EQ(t->Text8->text(), "5.99");
  EXPECT_EQ(t->Label8->text(), "適合すると言える");
  EXPECT_EQ(errorText(), "");
}

TEST_F(StatWindowsTest, JapaneseCaptions) {
  writeFile("MERIDA.DEF", "Japanese\r\n");
  start();
  StatWindow* w = open();
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(w->windowTitle(), "統計解析");
  EXPECT_EQ(w->Frame2->title(), "度数分布");
  EXPECT_EQ(w->Command4->text(), "ﾃﾞｰﾀ");
  MultRegWindow* m = w->multRegWindow();
  EXPECT_EQ(m->windowTitle(), "重回帰分析");
  EXPECT_EQ(m->Label1->text(), "説明変数");
  TestWindow* t = w->testWindow();
  EXPECT_EQ(t->windowTitle(), "検定");
  EXPECT_EQ(t->Label3->text(), "  標準       偏差");
  EXPECT_EQ(t->Command3->text(), "ｶｲ二乗");
  EXPECT_EQ(t->Label9->text(), "次元");
}

}  // namespace
}  // namespace merida::test

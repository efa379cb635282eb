// The FFT window through its controls: the numerics are the logic's tests' business.
#include <algorithm>
#include <cmath>

#include "gui_fixture.h"
#include "signal/fft_window.h"

namespace merida::test {
namespace {

class FftWindowTest : public GuiTest {
 protected:
  FftWindow* open(const QString& formula = QStringLiteral("sin(2*PI*5*x)")) {
    main().setFormulaText(formula);
    press(17);
    return qobject_cast<FftWindow*>(window(QStringLiteral("FftWindow")));
  }
  // `count` samples of a 1 kHz sine, loaded as WAVE data at 11025 Hz.
  void recordWave(int count) {
    RecordFunctionTable& t = state().Records;
    for (int i = 1; i <= count; ++i) t.values[i][0] = static_cast<float>(std::sin(2 * M_PI * 1000 * i / 11025.0));
    t.count = static_cast<int16_t>(count);
    t.sampleRate = 11025;
    t.kind = WaveData;
  }
};

struct CaptionCase {
  const char* settings;
  QString num, go, average, finished;
};

TEST_F(FftWindowTest, OpensWithItsDefaultsInEitherLanguage) {
  const CaptionCase cases[] = {
      {"English\r\n", "Num", "Go", "Average", "Calculation Finished"},
      {"Japanese\r\n", "分割", "開始", "平均", "計算終了"},
  };
  for (const CaptionCase& c : cases) {
    writeFile("MERIDA.DEF", c.settings);
    start();
    FftWindow* w = open();
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w->windowTitle(), "ＦＦＴ");
    EXPECT_EQ(w->Label2->text(), c.num);
    EXPECT_EQ(w->Command1->text(), c.go);
    EXPECT_EQ(w->Check3->text(), c.average);
    EXPECT_EQ(w->Text1->text(), "0");
    EXPECT_EQ(w->Text2->text(), "1");
    EXPECT_EQ(w->Text3->text(), "128");
    for (QCheckBox* b : {w->Check1, w->Check2, w->Check3, w->Check4}) EXPECT_FALSE(b->isChecked());
    EXPECT_FALSE(w->Check3->isVisible());
    EXPECT_FALSE(w->Check4->isVisible());
    EXPECT_FALSE(w->Command7->isVisible());
    EXPECT_EQ(w->Label3->text(), "");
    click(w, "Command1");
    EXPECT_EQ(w->Label3->text(), c.finished);
  }
}

TEST_F(FftWindowTest, CheckBoxesWorkInPairs) {
  start();
  FftWindow* w = open();
  ASSERT_NE(w, nullptr);
  struct Step {
    QCheckBox* FftWindow::*box;
    const char* ticked;  // Check1..Check4 after the click
    bool modesShown;
    FftSource source;
    FftMode mode;
  };
  const Step steps[] = {
      {&FftWindow::Check1, "1000", true, FftSource::kWave, FftMode::kOneFrame},
      {&FftWindow::Check2, "0100", true, FftSource::kMerida, FftMode::kOneFrame},
      {&FftWindow::Check3, "0110", true, FftSource::kMerida, FftMode::kAverage},
      {&FftWindow::Check4, "0101", true, FftSource::kMerida, FftMode::kContinue},
      {&FftWindow::Check1, "1001", true, FftSource::kWave, FftMode::kContinue},
      {&FftWindow::Check4, "1000", true, FftSource::kWave, FftMode::kOneFrame},
      {&FftWindow::Check3, "1010", true, FftSource::kWave, FftMode::kAverage},
      {&FftWindow::Check1, "0000", false, FftSource::kFormula, FftMode::kOneFrame},
  };
  for (const Step& s : steps) {
    (w->*s.box)->click();
    QCheckBox* boxes[] = {w->Check1, w->Check2, w->Check3, w->Check4};
    QString ticked;
    for (QCheckBox* b : boxes) ticked += b->isChecked() ? '1' : '0';
    EXPECT_EQ(ticked, s.ticked);
    EXPECT_EQ(w->Check3->isVisible(), s.modesShown) << s.ticked;
    EXPECT_EQ(w->Check4->isVisible(), s.modesShown) << s.ticked;
    EXPECT_EQ(w->source(), s.source) << s.ticked;
    EXPECT_EQ(w->mode(), s.mode) << s.ticked;
  }
}

TEST_F(FftWindowTest, GoThenPowerFourierAndSelfCorrFillTheChartAndStatus) {
  start();
  FftWindow* w = open();
  ASSERT_NE(w, nullptr);
  w->Text3->setText("100");
  click(w, "Command1");
  EXPECT_EQ(w->Text3->text(), "128");
  EXPECT_EQ(w->Label3->text(), "Calculation Finished");

  click(w, "Command4");
  EXPECT_EQ(w->Label3->text(), "Power Spectrum");
  const QList<QPointF> power = w->Graph1->points(1);
  ASSERT_EQ(power.size(), 64);
  auto peak = std::max_element(power.begin(), power.end(), [](QPointF a, QPointF b) { return a.y() < b.y(); });
  EXPECT_EQ(peak->x(), 5);
  EXPECT_EQ(state().Records.count, 64);
  EXPECT_EQ(state().Records.kind, ComputedData);

  click(w, "Command3");
  EXPECT_EQ(w->Label3->text(), "Fourier Coefficient (Real)");
  const QList<QPointF> real = w->Graph1->points(1);
  click(w, "Command3");
  EXPECT_EQ(w->Label3->text(), "Fourier Coefficient (Imaginary)");
  EXPECT_NE(w->Graph1->points(1), real);
  click(w, "Command3");
  EXPECT_EQ(w->Graph1->points(1), real);

  click(w, "Command5");
  EXPECT_EQ(w->Label3->text(), "Self Correlation Function");
  EXPECT_EQ(w->Graph1->points(1).size(), 128);
  EXPECT_FALSE(w->Command7->isVisible());
  EXPECT_EQ(errorText(), "");
}

TEST_F(FftWindowTest, DisplayBeforeGoReportsError50) {
  start();
  FftWindow* w = open();
  ASSERT_NE(w, nullptr);
  click(w, "Command4");
  EXPECT_EQ(errorText(), "先に計算を実行して下さい");
  EXPECT_EQ(w->Graph1->points(1).size(), 0);
  EXPECT_EQ(w->Label3->text(), "");
}

TEST_F(FftWindowTest, PowerInContinueModeShowsThe3DButtonAndOtherDisplaysHideIt) {
  start();
  recordWave(4096);
  FftWindow* w = open();
  ASSERT_NE(w, nullptr);
  w->Check1->click();
  w->Check4->click();
  w->Text3->setText("1024");
  click(w, "Command1");
  ASSERT_EQ(w->Label3->text(), "Calculation Finished");
  click(w, "Command4");
  EXPECT_TRUE(w->Command7->isVisible());
  EXPECT_TRUE(w->Command7->isEnabled());
  EXPECT_EQ(w->Graph1->points(1).size(), 512);

  click(w, "Command7");
  EXPECT_NE(window(QStringLiteral("SpectrumWindow")), nullptr);

  click(w, "Command5");
  EXPECT_FALSE(w->Command7->isVisible());
  EXPECT_FALSE(w->Command7->isEnabled());
}

TEST_F(FftWindowTest, CloseDuringAContinueDisplayStopsIt) {
  start();
  recordWave(5000);
  FftWindow* w = open();
  ASSERT_NE(w, nullptr);
  w->Check1->click();
  w->Check4->click();
  w->Text3->setText("8");
  click(w, "Command1");
  ASSERT_EQ(w->Label3->text(), "Calculation Finished");
  // 625 frames; Close comes before the window sees the run end.
  QTest::mouseClick(w->Command4, Qt::LeftButton);
  EXPECT_EQ(w->Command4->text(), "Stop");
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_FALSE(w->isVisible());
  EXPECT_FALSE(w->running());
  EXPECT_FALSE(w->Command7->isVisible());
  EXPECT_EQ(w->Label3->text(), "Calculation Finished");
}

}  // namespace
}  // namespace merida::test

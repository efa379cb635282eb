// The Time Continuous Spectrum window opened from the FFT window, and the matrix it draws.
#include <QtDataVisualization/QSurfaceDataProxy>
#include <cmath>
#include <iostream>
#include <memory>

#include "gui_fixture.h"
#include "signal/fft_window.h"
#include "signal/spectrum3d_window.h"

namespace merida::test {
namespace {

TEST(SurfaceRowsTest, OneRowPerFrameOneItemPerPointHeightIsThePercent) {
  const std::vector<std::vector<float>> matrix = {
      {0.0f, 12.5f, 90.9f, 3.0f},
      {1.0f, 2.0f, 4.0f, 8.0f},
      {50.0f, 0.25f, 7.0f, 66.0f},
  };
  std::unique_ptr<QSurfaceDataArray> rows(SurfaceRows(matrix));
  ASSERT_EQ(rows->size(), 3);
  for (qsizetype f = 0; f < rows->size(); ++f) {
    const QSurfaceDataRow& row = *rows->at(f);
    ASSERT_EQ(row.size(), 4) << "frame " << f;
    for (qsizetype p = 0; p < row.size(); ++p) {
      const QVector3D at = row.at(p).position();
      EXPECT_FLOAT_EQ(at.x(), static_cast<float>(p)) << f << "," << p;
      EXPECT_FLOAT_EQ(at.y(), matrix[static_cast<size_t>(f)][static_cast<size_t>(p)]) << f << "," << p;
      EXPECT_FLOAT_EQ(at.z(), static_cast<float>(f)) << f << "," << p;
    }
  }
  qDeleteAll(*rows);
}

TEST(SurfaceRowsTest, NoFramesNoRows) {
  std::unique_ptr<QSurfaceDataArray> rows(SurfaceRows({}));
  EXPECT_EQ(rows->size(), 0);
}

class SpectrumWindowTest : public GuiTest {
 protected:
  // Power in Continue mode over 4096 samples of WAVE data with N = 1024: four frames of 512 points.
  FftWindow* powerInContinueMode() {
    RecordFunctionTable& t = state().Records;
    for (int i = 1; i <= 4096; ++i) t.values[i][0] = static_cast<float>(std::sin(2 * M_PI * 1000 * i / 11025.0));
    t.count = 4096;
    t.sampleRate = 11025;
    t.kind = WaveData;
    main().setFormulaText(QStringLiteral("x"));
    press(17);
    auto* w = qobject_cast<FftWindow*>(window(QStringLiteral("FftWindow")));
    if (!w) return nullptr;
    w->Check1->click();
    w->Check4->click();
    w->Text3->setText("1024");
    click(w, "Command1");
    click(w, "Command4");
    return w;
  }
};

struct LanguageCase {
  const char* settings;
  QString caption, print, close, noGraphics;
};

TEST_F(SpectrumWindowTest, The3DButtonOpensItWithItsCaptionsAndTheMatrix) {
  const LanguageCase cases[] = {
      {"English\r\n", "Time Continuous Spectrum", "Print", "Close",
       "The surface cannot be drawn: OpenGL is not available here."},
      {"Japanese\r\n", "周波数分析", "印刷", "中止", "OpenGL が使えないため、曲面を表示できません。"},
  };
  const bool gl = OpenGlAvailable();
  if (!gl) std::cout << "[ INFO     ] no OpenGL context here: the window is checked without its surface\n";
  for (const LanguageCase& c : cases) {
    writeFile("MERIDA.DEF", c.settings);
    start();
    FftWindow* fft = powerInContinueMode();
    ASSERT_NE(fft, nullptr);
    ASSERT_TRUE(fft->Command7->isVisible());
    EXPECT_EQ(window(QStringLiteral("SpectrumWindow")), nullptr);
    click(fft, "Command7");
    auto* w = qobject_cast<SpectrumWindow*>(window(QStringLiteral("SpectrumWindow")));
    ASSERT_NE(w, nullptr);
    EXPECT_FALSE(w->isModal());
    EXPECT_EQ(w->windowTitle(), c.caption);
    EXPECT_EQ(w->Command1->text(), c.print);
    EXPECT_EQ(w->Command2->text(), c.close);
    EXPECT_EQ(w->frames(), 4);
    EXPECT_EQ(w->points(), 512);
    if (gl) {
      ASSERT_NE(w->Container, nullptr);
      EXPECT_EQ(w->NoGraphics, nullptr);
      EXPECT_TRUE(w->Container->isVisible());
      ASSERT_NE(w->series(), nullptr);
      EXPECT_EQ(w->series()->dataProxy()->rowCount(), 4);
      EXPECT_EQ(w->series()->dataProxy()->columnCount(), 512);
    } else {
      EXPECT_EQ(w->Container, nullptr);
      ASSERT_NE(w->NoGraphics, nullptr);
      EXPECT_TRUE(w->NoGraphics->isVisible());
      EXPECT_EQ(w->NoGraphics->text(), c.noGraphics);
    }
  }
}

TEST_F(SpectrumWindowTest, CloseHidesItAnd3DShowsItAgain) {
  start();
  FftWindow* fft = powerInContinueMode();
  ASSERT_NE(fft, nullptr);
  click(fft, "Command7");
  auto* w = qobject_cast<SpectrumWindow*>(window(QStringLiteral("SpectrumWindow")));
  ASSERT_NE(w, nullptr);
  click(w, "Command2");
  EXPECT_EQ(window(QStringLiteral("SpectrumWindow")), nullptr);
  click(fft, "Command7");
  EXPECT_EQ(window(QStringLiteral("SpectrumWindow")), w);
  // The FFT window stays usable beside it.
  click(fft, "Command5");
  EXPECT_FALSE(fft->Command7->isVisible());
  EXPECT_EQ(window(QStringLiteral("SpectrumWindow")), w);
}

}  // namespace
}  // namespace merida::test

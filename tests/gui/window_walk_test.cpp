// Every window the program opens, in both languages and in a dark theme, with something in it:
// no button's caption is wider than the button. With MERIDA_SCREENSHOT_DIR set, each window is
// also saved there as a PNG, for a person to look at.
#include <QDir>
#include <QStyle>
#include <QStyleOptionButton>
#include <map>

#include "dark_palette.h"
#include "graph/color_window.h"
#include "graph/graph_tools_gui.h"
#include "gui_fixture.h"

namespace merida::test {
namespace {

::testing::AssertionResult CaptionFits(const QPushButton* b) {
  QStyleOptionButton option;
  option.initFrom(b);
  option.text = b->text();
  if (b->autoDefault()) option.features |= QStyleOptionButton::AutoDefaultButton;
  const QRect contents = b->style()->subElementRect(QStyle::SE_PushButtonContents, &option, b);
  // Half a character clear on each side, or a caption that ends at the edge reads as cut off.
  const int need = b->fontMetrics().horizontalAdvance(b->text()) + b->fontMetrics().averageCharWidth();
  if (need <= contents.width()) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << b->window()->objectName().toStdString() << " "
                                       << b->objectName().toStdString() << " \"" << b->text().toStdString()
                                       << "\" needs " << need << " px and has " << contents.width();
}

struct WalkCase {
  const char* name;
  const char* settings;  // MERIDA.DEF
  bool dark;
};

void PrintTo(const WalkCase& c, std::ostream* out) { *out << c.name; }

class EveryWindow : public GuiTest, public ::testing::WithParamInterface<WalkCase> {
 protected:
  void TearDown() override {
    GuiTest::TearDown();
    QApplication::setPalette(saved_);
  }

  // Checks the buttons of every window open now; saves each window the first time it is seen
  // with its title.
  void checkOpenWindows() {
    WaitForJobs();
    QCoreApplication::processEvents();
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (!w->isVisible()) continue;
      for (const QPushButton* b : w->findChildren<QPushButton*>()) {
        if (b->isVisible()) {
          EXPECT_TRUE(CaptionFits(b));
        }
      }
      ++seen_;
      save(w);
    }
  }

  void save(QWidget* w) {
    const QString dir = qEnvironmentVariable("MERIDA_SCREENSHOT_DIR");
    if (dir.isEmpty()) return;
    QString& title = saved_titles_[w->objectName()];
    if (title == w->windowTitle()) return;
    const QString suffix = title.isEmpty() ? QString() : QStringLiteral("-2");
    title = w->windowTitle();
    QDir().mkpath(dir);
    w->grab().save(QStringLiteral("%1/%2%3-%4.png").arg(dir, w->objectName(), suffix, GetParam().name));
  }

  void type(QWidget* window, const char* box, const std::vector<const char*>& texts) {
    auto* edit = child<QLineEdit>(window, box);
    if (!edit) return;
    for (const char* t : texts) {
      edit->setText(QString::fromUtf8(t));
      QTest::keyClick(edit, Qt::Key_Return);
    }
  }

  QPalette saved_ = QApplication::palette();
  std::map<QString, QString> saved_titles_;
  int seen_ = 0;
};

TEST_P(EveryWindow, EveryCaptionFitsItsButton) {
  if (GetParam().dark) QApplication::setPalette(DarkPalette());
  writeFile("MERIDA.DEF", GetParam().settings);
  start();

  // The graph family, each with something drawn.
  main().setFormulaText("x^2+y^2-1");
  press(2);
  QWidget* graph = window(QStringLiteral("GraphWindow"));
  ASSERT_NE(graph, nullptr);
  click(graph, "Command6");
  QWidget* nega = window(QStringLiteral("NegativeFunctionWindow"));
  ASSERT_NE(nega, nullptr);
  for (const char* box : {"Text1", "Text4"}) child<QLineEdit>(nega, box)->setText("-2");
  for (const char* box : {"Text2", "Text5"}) child<QLineEdit>(nega, box)->setText("2");
  click(nega, "Command1");
  main().setFormulaText("1");
  child<QLineEdit>(graph, "Text1")->setText("0");
  child<QLineEdit>(graph, "Text2")->setText("2*PI");
  child<QLineEdit>(graph, "Text3")->setText("72");
  click(graph, "Command5");
  click(graph, "Command8");
  click(graph, "Command4");
  OpenColorWindow(&main(), engine(), state());

  // Every other window the main window opens.
  for (int n : {3, 7, 8, 9, 10, 11, 12, 14, 15, 17, 18, 19, 20}) {
    QPushButton* button = child<QPushButton>(&main(), ("Command" + std::to_string(n)).c_str());
    if (button && button->isEnabled()) press(n);
  }
  // The signal windows with numbers in their boxes and a chart drawn from the record table.
  if (QWidget* wave = window(QStringLiteral("WaveWindow"))) {
    child<QLineEdit>(wave, "Text1")->setText("0");
    child<QLineEdit>(wave, "Text2")->setText("0.25");
    child<QLineEdit>(wave, "Text3")->setText("mrdsound.wav");
  }
  if (QWidget* load = window(QStringLiteral("LoadWindow"))) {
    RecordFunctionTable& t = state().Records;
    for (int i = 1; i <= 100; ++i) t.values[i][0] = static_cast<float>(i % 10);
    t.count = 100;
    t.rangeStart = 0;
    t.rangeEnd = 2;
    t.kind = MeridaTextData;
    for (const char* box : {"Text2", "Text3", "Text4"}) child<QLineEdit>(load, box)->setText("100");
    click(load, "Command3");
    if (QWidget* display = window(QStringLiteral("FileDisplayWindow"))) click(display, "Command1");
  }
  // The FFT window with a power spectrum drawn and its mode boxes shown.
  if (QWidget* fft = window(QStringLiteral("FftWindow"))) {
    main().setFormulaText("sin(2*PI*5*x)");
    click(fft, "Command1");
    click(fft, "Command4");
    if (auto* wave = child<QAbstractButton>(fft, "Check1")) wave->click();
  }
  // The Intersection Point window with a chart and a list.
  main().setFormulaText("x^2-4");
  QWidget* inter = window(QStringLiteral("IntersectionWindow"));
  ASSERT_NE(inter, nullptr);
  child<QLineEdit>(inter, "Text1")->setText("-3");
  child<QLineEdit>(inter, "Text2")->setText("3");
  if (auto* graphCheck = child<QAbstractButton>(inter, "Check1")) graphCheck->click();
  click(inter, "Command1");
  checkOpenWindows();

  press(13);
  QWidget* simult = window(QStringLiteral("SimultWindow"));
  ASSERT_NE(simult, nullptr);
  type(simult, "Text2", {"4", "7", "2", "24", "3", "6", "1", "18", "2", "5", "3", "21.5"});
  click(simult, "Command5");
  checkOpenWindows();
  press(16);
  type(simult, "Text2", {"4", "7", "2", "3", "6", "1", "2", "5", "3"});
  click(simult, "Command4");
  checkOpenWindows();

  calc("1/0");
  ASSERT_NE(window(QStringLiteral("ErrorWindow")), nullptr);
  checkOpenWindows();
  EXPECT_GE(seen_, 10);
}

INSTANTIATE_TEST_SUITE_P(Looks, EveryWindow,
                         ::testing::Values(WalkCase{"English", "English\r\n", false},
                                           WalkCase{"Japanese", "Japanese\r\n", false},
                                           WalkCase{"EnglishDark", "English\r\n", true},
                                           WalkCase{"JapaneseDark", "Japanese\r\n", true}),
                         [](const auto& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace merida::test

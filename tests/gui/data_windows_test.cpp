// The windows of data files and the record table: Load, File Display, WAVE File Make, FFT,
// Time Continuous Spectrum, and the statistics windows (on data typed into the Data window).
#include <QAreaSeries>
#include <QFileSystemModel>
#include <QGuiApplication>
#include <QScatterSeries>
#include <QtDataVisualization/QSurfaceDataProxy>
#include <filesystem>
#include <iostream>

#include "gui_fixture.h"
#include "signal/data_files.h"
#include "signal/fft_window.h"
#include "signal/file_display_window.h"
#include "signal/load_window.h"
#include "signal/spectrum3d_window.h"
#include "signal/wave_window.h"
#include "stats/multreg_window.h"
#include "stats/stat_data_window.h"
#include "stats/stat_window.h"
#include "stats/test_window.h"

namespace merida::test {
namespace {

// A canonical 8-bit mono WAVE file of `n` samples 128 + k.
std::string WaveFile(uint32_t n) {
  std::vector<uint8_t> samples(n);
  for (uint32_t k = 0; k < n; ++k) samples[k] = static_cast<uint8_t>(128 + k);
  return WaveFileBytes(samples);
}

class LoadTest : public GuiTest {
 public:
  LoadWindow* w = nullptr;
  void openLoad() {
    start();
    for (int i = 1; i <= 10; ++i) state().Records.values[i] = {7, 7, 7};  // rows a load leaves alone show
    state().Records.count = 10;
    state().Records.kind = WaveData;
    w = open<LoadWindow>();
  }
  // Clicks the file in File1 as a user would, once the list shows it.
  void choose(const QString& name) {
    const QModelIndex at = qobject_cast<QFileSystemModel*>(w->File1->model())->index(w->dirPath() + "/" + name);
    ASSERT_TRUE(QTest::qWaitFor([&] { return w->File1->visualRect(at).isValid(); }, 5000)) << name.toStdString();
    QTest::mouseClick(w->File1->viewport(), Qt::LeftButton, {}, w->File1->visualRect(at).center());
  }
  void load(const std::string& name, const std::string& contents) {
    if (!contents.empty()) writeFile(name, contents);
    choose(QString::fromStdString(name));
    click(w, "Command1");
  }
  QString boxes() {
    return QStringList{w->Text1->text(), w->Text2->text(), w->Text3->text(), w->Text4->text()}.join('|');
  }
};

TEST_F(LoadTest, LoadShowsTheFileInItsBoxesAndTheTableAndRefusesBadFiles) {
  writeFile("s.mrd", "MERIDA\r\n3\r\n 1\r\n 4\r\n .5\r\n-1\r\n 2\r\n");
  openLoad();
  const RecordFunctionTable& t = state().Records;
  EXPECT_EQ(std::pair(t.kind, t.count), std::pair(int16_t{NoData}, int16_t{10})) << "opening clears the kind only";
  choose("s.mrd");
  EXPECT_EQ(boxes() + QString::number(t.kind), "s.mrd|||-1") << "a click only chooses";
  click(w, "Command1");
  EXPECT_EQ(boxes(), "s.mrd|3|1|4");
  EXPECT_EQ(std::tuple(t.kind, t.count, t.values[3][0], t.values[4][0]),
            std::tuple(int16_t{MeridaTextData}, int16_t{3}, 2.0f, 7.0f));

  // Graph opens File Display, whose Display charts column 1 against the range.
  click(w, "Command3");
  ASSERT_NE(w->fileDisplayWindow(), nullptr);
  click(w->fileDisplayWindow(), "Command1");
  EXPECT_EQ(Drawn(w->fileDisplayWindow()->Graph1), (QList<QPointF>{{1, .5}, {2, -1}, {3, 2}}));

  load("t.wav", WaveFile(4));
  EXPECT_EQ(boxes(), QDir::currentPath() + "/t.wav|11025|0|4");
  EXPECT_EQ(std::pair(t.kind, t.values[4][0]), std::pair(int16_t{WaveData}, 3.0f));
  // A header field that fails shows in the name box, bytes that are no text one character each;
  // a wrong tag is error 39; a file that cannot be read says why. Nothing is loaded.
  std::string badChannels = WaveFile(4), badTag = WaveFile(4);
  badChannels.replace(22, 1, "\x02");
  badTag.replace(36, 4, "\xe9\x01z\xff");
  std::filesystem::create_symlink("/proc/self/mem", dir_ / "mem.mrd");
  for (auto [name, contents, shown, error, box] :
       {std::tuple{"c.wav", badChannels, QString("2"), "", ""},
        {"d.wav", badTag, QString::fromLatin1("\xe9\x01z\xff", 4), "", ""},
        {"DATA.Wav", WaveFile(4), QString("DATA.Wav"), "ﾌｧｲﾙの形式が違います", ""},
        {"mem.mrd", std::string(), QString("mem.mrd"), "", "cannot read mem.mrd: Input/output error"}}) {
    state().Records.values[1][0] = 7;
    QStringList seen;
    if (*box) AnswerNextBox(QMessageBox::Ok, &seen);
    load(name, contents);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !*box || !seen.isEmpty(); }, 5000));
    EXPECT_EQ(std::tuple(w->Text1->text(), t.kind, t.values[1][0], errorText().toStdString(), seen.value(1).toStdString()),
              std::tuple(shown, int16_t{NoData}, 7.0f, std::string(error), std::string(box))) << name;
    // No number of an earlier load stays to suggest that data are loaded.
    EXPECT_TRUE(w->statusLine()->text().startsWith("Not loaded") && w->Text4->text().isEmpty()) << name;
    if (*error) acknowledgeError();
  }
  // Close during a load stops it: what the load read is never applied.
  std::string big = "ORBITA\r\n1\r\n1000\r\n";
  for (int i = 0; i < 1000; ++i) big += "1\r\n";
  writeFile("big.orb", big);
  choose("big.orb");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_EQ(w->Command1->text(), "Stop");
  click(w, "Command2");
  QTest::qWait(50);
  EXPECT_EQ(std::pair(t.kind, t.values[1][0]), std::pair(int16_t{NoData}, 7.0f));
}

// The tree, its current directory among sixty others in view, opens a directory on a click;
// a drive that cannot be read warns and goes back.
TEST_F(LoadTest, DirectoriesAndDrivesMoveTheLists) {
  for (int i = 0; i < 60; ++i) std::filesystem::create_directories(dir_ / "many" / ("d" + std::to_string(i)));
  std::filesystem::create_directories(dir_ / "many/zz/sub");
  writeFile("many/zz/sub/in.mrd", "x");
  QDir::setCurrent(QString::fromStdString((dir_ / "many/zz").string()));
  openLoad();
  auto row = [&](const QString& path) {  // looked up afresh: the model's indexes move as it loads
    return w->Dir1->visualRect(qobject_cast<QFileSystemModel*>(w->Dir1->model())->index(QDir::currentPath() + path));
  };
  QRect sub;  // once the tree has loaded and laid out the branch
  ASSERT_TRUE(QTest::qWaitFor([&] { return std::exchange(sub, row("/sub")) == sub && sub.isValid(); }, 5000));
  EXPECT_TRUE(row("").isValid() && row("").top() >= 0 && row("").bottom() < w->Dir1->viewport()->height())
      << "row at " << row("").y() << " in a view " << w->Dir1->viewport()->height() << " high";
  w->Dir1->scrollTo(qobject_cast<QFileSystemModel*>(w->Dir1->model())->index(QDir::currentPath() + "/sub"));
  QTest::mouseClick(w->Dir1->viewport(), Qt::LeftButton, {}, row("/sub").center());  // as the user scrolls and clicks
  choose("in.mrd");
  EXPECT_EQ(w->chosenPath(), QDir::currentPath() + "/sub/in.mrd");
  const QString path = w->dirPath();
  w->Drive1->addItem("gone", QDir::currentPath() + "/missing");
  QStringList box;
  AnswerNextBox(QMessageBox::Ok, &box);
  w->Drive1->setCurrentIndex(w->Drive1->count() - 1);
  EXPECT_EQ(box, (QStringList{"エラー", "ﾄﾞﾗｲﾌﾞが用意されていません"}));
  EXPECT_EQ(std::pair(w->Drive1->currentIndex() == w->Drive1->count() - 1, w->dirPath()), std::pair(false, path));
}

// The name box reads 作成中 while the file is made, then the name written (the typed one, the
// default, or mrdsound.mrd with the MERIDA check), or the typed one back when nothing was.
TEST_F(GuiTest, WaveGoWritesTheFileNamedInItsBox) {
  start();
  auto* w = open<WaveWindow>();
  QStringList shown;
  QObject::connect(w->Text3, &QLineEdit::textChanged, w, [&](const QString& t) { shown << t; });
  for (auto [formula, typed, file] : {std::tuple{"sin(2*PI*440*x)", "", "mrdsound.wav"},
                                      {"sin(2*PI*440*x)", "tone.wav", "tone.wav"},
                                      {"1", "mine.wav", ""}}) {  // a constant cannot be scaled
    fill(w, {{"formula", formula}, {"Text1", "0"}, {"Text2", "0.2"}, {"Text3", typed}});
    shown.clear();
    click(w, "Command1");
    EXPECT_EQ(shown, (QStringList{"作成中", *file ? file : typed})) << formula;
    EXPECT_EQ(readFile(*file ? file : typed).substr(0, 4), *file ? "RIFF" : "") << formula;
    EXPECT_EQ(w->lastWritten().endsWith(QString("/") + file), *file != 0) << formula;
  }
  EXPECT_TRUE(faults_.empty() && errorText().isEmpty());
  ClickBox(w->Check1);
  fill(w, {{"formula", "x"}, {"Text2", "0.6"}, {"Text3", "ignored.wav"}});
  click(w, "Command1");
  EXPECT_EQ(w->Text3->text(), "mrdsound.mrd");
  EXPECT_EQ(readFile("mrdsound.mrd").substr(0, 19) + readFile("ignored.wav"), "MERIDA\r\n 5000\r\n 0\r\n");

  // Close while the file is made stops it: no file, and the box empty.
  std::filesystem::remove("mrdsound.mrd");
  fill(w, {{"formula", "sgm(sin(k*x)/k,1,5000,k)"}, {"Text2", "1"}, {"Text3", ""}});  // 55 million terms unless stopped
  QObject::connect(w->Text3, &QLineEdit::textChanged, w, [w](const QString& t) {
    if (t == "作成中") QTimer::singleShot(0, w->Command2, &QPushButton::click);
  });
  click(w, "Command1");
  EXPECT_TRUE(QTest::qWaitFor([w] { return !w->isVisible() && !w->running(); }, 5000));
  EXPECT_EQ(readFile("mrdsound.mrd") + w->Text3->text().toStdString(), "");
}

// The displays fill the chart and the status line, 3D shows after Power in Continue mode
// only, and Close stops a long display.
TEST_F(GuiTest, FftDisplaysAndStop) {
  start();
  auto* w = open<FftWindow>();
  click(w, "Command4");
  EXPECT_EQ(errorText(), "先に計算を実行して下さい");
  fill(w, {{"formula", "sin(2*PI*5*x)"}, {"Text3", "100"}});
  click(w, "Command1");
  EXPECT_EQ(w->Text3->text() + " " + w->Label3->text(), "128 Calculation Finished");
  click(w, "Command4");
  const QList<QPointF> power = w->Graph1->points(1);
  EXPECT_EQ(std::max_element(power.begin(), power.end(), [](QPointF a, QPointF b) { return a.y() < b.y(); })->x(), 5);
  QList<QPointF> before;
  for (auto [button, status, points] : {std::tuple{"Command4", "Power Spectrum", 64},
                                        {"Command3", "Fourier Coefficient (Real)", 64},
                                        {"Command3", "Fourier Coefficient (Imaginary)", 64},
                                        {"Command5", "Self Correlation Function", 128}}) {
    click(w, button);
    EXPECT_EQ(w->Label3->text(), status);
    EXPECT_EQ(w->Graph1->points(1).size(), points) << status;
    EXPECT_NE(w->Graph1->points(1), before) << status;
    before = w->Graph1->points(1);
  }
  EXPECT_EQ(state().Records.kind, ComputedData);

  recordWave(5000);
  ClickBox(w->Check1);
  ClickBox(w->Check4);
  fill(w, {{"Text3", "1024"}});
  click(w, "Command1");
  click(w, "Command4");
  EXPECT_TRUE(w->Command7->isVisible() && w->Command7->isEnabled());
  click(w, "Command5");
  EXPECT_FALSE(w->Command7->isVisible() || w->Command7->isEnabled());
  recordWave(5000);  // a second Go needs the data loaded again
  fill(w, {{"Text3", "8"}});
  click(w, "Command1");
  QTest::mouseClick(w->Command4, Qt::LeftButton);  // 625 frames
  EXPECT_EQ(w->Command4->text(), "Stop");
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_FALSE(w->running() || w->Command7->isVisible());
  EXPECT_EQ(w->Label3->text(), "Calculation Finished");
}

class SpectrumWindowTest : public GuiTest {};

// Four frames of 512 points reach the surface where OpenGL is, and a notice where it is not.
TEST_F(SpectrumWindowTest, The3DButtonShowsTheMatrixAndReopensTheWindow) {
  if (!OpenGlAvailable())
    std::cout << "[ INFO     ] no OpenGL context here: the window is checked without its surface\n";
  for (bool japanese : {false, true}) {
    writeFile("MERIDA.DEF", japanese ? "Japanese\r\n" : "English\r\n");
    start();
    auto* w = open<SpectrumWindow>();
    EXPECT_EQ(std::tuple(w->isModal(), w->frames(), w->points()), std::tuple(false, 4, 512));
    if (OpenGlAvailable()) {
      ASSERT_NE(w->series(), nullptr);
      EXPECT_TRUE(w->Container->isVisible());
      EXPECT_EQ(std::pair(w->series()->dataProxy()->rowCount(), w->series()->dataProxy()->columnCount()),
                std::pair(4, 512));
    } else {
      EXPECT_EQ(w->Container, nullptr);
      ASSERT_NE(w->NoGraphics, nullptr);
      EXPECT_EQ(w->NoGraphics->text(), japanese ? "OpenGL が使えないため、曲面を表示できません。"
                                                : "The surface cannot be drawn: OpenGL is not available here.");
    }
    click(w, "Command2");
    click(window("FftWindow"), "Command7");
    click(window("FftWindow"), "Command5");  // the FFT window stays usable beside it
    EXPECT_EQ(window("SpectrumWindow"), w);
  }
}

class StatTest : public GuiTest {
 public:
  // Types `columns` into the Data window and presses Memory.
  void store(const std::vector<std::vector<const char*>>& columns) {
    auto* d = open<StatDataWindow>();
    enter(d->Text1, QString::number(columns.size()));
    enter(d->Text3, QString::number(columns[0].size()));
    for (const auto& column : columns) {
      for (const char* v : column) enter(d->Text2, QString::fromLatin1(v));
    }
    click(d, "Command1");
  }
};

TEST_F(StatTest, FreqAveRegresMultRegAndTestFillTheirBoxesAndTheChart) {
  start();
  auto* w = open<StatWindow>();
  store({{"1", "2", "3", "4"}, {"3", "5", "7", "9"}});
  click(w, "Command1");
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr) << "the busy cursor ends with Freq";
  EXPECT_EQ(w->Text2->text(), "2.5");
  EXPECT_NE(qobject_cast<QAreaSeries*>(w->Graph1->drawnShapes().value(0)), nullptr) << "bars";
  EXPECT_EQ(w->Graph1->points().front().x(), 1.0) << "labelled by the lower bounds";
  click(w, "Command2");
  EXPECT_EQ(w->Text4->text() + " " + w->Text5->text() + " " + w->Text6->text(), "2.5 1.25 1.11803");
  click(w, "Command3");  // y = 2x + 1
  EXPECT_EQ(w->Text7->text() + " " + w->Text8->text() + " " + w->Text9->text(), "2. 1. 1.");
  auto* marks = qobject_cast<QScatterSeries*>(w->Graph1->drawnShapes().value(0));
  EXPECT_TRUE(marks && marks->at(3) == QPointF(4, 9));
  fill(w, {{"Text1", "2"}});  // the column Text1 names
  click(w, "Command2");
  EXPECT_EQ(w->Text4->text(), "6.");
  fill(w, {{"Text1", "3"}, {"Text4", "kept"}});
  click(w, "Command2");
  EXPECT_EQ(errorText() + w->Text4->text(), "次元の数が多すぎますkept");

  auto* m = open<MultRegWindow>();  // on z = 2x + 3y + 1
  QStringList plane;
  for (const char* box : {"Text1", "Text3", "Text16", "Text17", "Text18", "Text19"})
    plane << child<QLineEdit>(m, box)->text();
  EXPECT_EQ(plane, (QStringList{".5", "3.5", "1.", "2.", "3.", "1."}));

  auto* t = open<TestWindow>();  // the t test at 5 % and 1 %
  fill(t, {{"Text1", "0"}, {"Text2", "-1"}, {"Text4", "1"}, {"Text5", "2"}, {"Text6", "10"}});
  click(t, "Command1");
  EXPECT_EQ(t->Text7->text() + " " + t->Text8->text() + " " + t->Label8->text(),
            "1.5 2.262 標本の平均値は、母集団と異なるとは言えない");
  // Beside the table: the exact values; in English mode the conclusion's English.
  EXPECT_EQ(t->ExactLabel->text(), "Exact: p-value 0.167851, critical value 2.26216 (two-sided)");
  const QString english = "The sample mean cannot be said to differ from the population's";
  EXPECT_EQ(t->Label8->toolTip() + "|" + t->statusLine()->text(), english + "|" + english);
  ClickBox(t->Option2);
  click(t, "Command1");
  EXPECT_EQ(t->Text8->text() + " " + t->ExactLabel->text(), "3.25 Exact: p-value 0.167851, critical value 3.24984 (two-sided)");
}

}  // namespace
}  // namespace merida::test

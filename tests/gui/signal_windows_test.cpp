// The Load, WAVE File Make and File Display windows through their controls, on real files.
#include <QFileSystemModel>
#include <QMessageBox>
#include <algorithm>
#include <filesystem>

#include "gui_fixture.h"
#include "signal/data_files.h"
#include "signal/file_display_window.h"
#include "signal/load_window.h"
#include "signal/wave_window.h"

namespace merida::test {
namespace {

// A canonical 8-bit mono header promising `n` data bytes, then `n` bytes of 128 + k.
std::string WaveFile(uint32_t n) {
  std::vector<uint8_t> samples(n);
  for (uint32_t k = 0; k < n; ++k) samples[k] = static_cast<uint8_t>(128 + k);
  return WaveFileBytes(samples);
}

QStringList Sorted(QStringList list) {
  list.sort();
  return list;
}

class SignalWindowsTest : public GuiTest {
 protected:
  LoadWindow* openLoad() {
    press(18);
    return qobject_cast<LoadWindow*>(window(QStringLiteral("LoadWindow")));
  }
  WaveWindow* openWave(const QString& formula) {
    main().setFormulaText(formula);
    press(15);
    return qobject_cast<WaveWindow*>(window(QStringLiteral("WaveWindow")));
  }
  // Go, then the run to its end (it samples on a worker thread).
  void go(WaveWindow* w) {
    click(w, "Command1");
    EXPECT_TRUE(QTest::qWaitFor([w] { return !w->running(); }, 10000));
    QCoreApplication::processEvents();
  }

  // The names File1 lists, once the file system model has read them.
  static QStringList listed(LoadWindow* w) {
    QStringList names;
    const QAbstractItemModel* model = w->File1->model();
    const QModelIndex root = w->File1->rootIndex();
    for (int row = 0; row < model->rowCount(root); ++row) names << model->index(row, 0, root).data().toString();
    return names;
  }
  static bool waitForListing(LoadWindow* w, const QStringList& names) {
    return QTest::qWaitFor([&] { return Sorted(listed(w)) == Sorted(names); }, 5000);
  }

  // Clicks the file in File1 as a user would.
  void chooseFile(LoadWindow* w, const QString& name) {
    QModelIndex at;
    ASSERT_TRUE(QTest::qWaitFor([&] {
      const QModelIndex root = w->File1->rootIndex();
      for (int row = 0; row < w->File1->model()->rowCount(root); ++row) {
        QModelIndex i = w->File1->model()->index(row, 0, root);
        if (i.data().toString() == name) at = i;
      }
      return at.isValid();
    }, 5000)) << name.toStdString();
    w->File1->scrollTo(at);
    QTest::mouseClick(w->File1->viewport(), Qt::LeftButton, {}, w->File1->visualRect(at).center());
  }

  LoadWindow* loadFile(const std::string& name, const std::string& contents) {
    writeFile(name, contents);
    LoadWindow* w = openLoad();
    if (!w) return nullptr;
    chooseFile(w, QString::fromStdString(name));
    click(w, "Command1");
    EXPECT_TRUE(QTest::qWaitFor([w] { return !w->loading(); }, 5000));
    return w;
  }

  // Rows 1..10 hold 7, so rows a load leaves alone are seen.
  void fillRows() {
    for (int i = 1; i <= 10; ++i) state().Records.values[i] = {7, 7, 7};
    state().Records.count = 10;
  }
};

TEST_F(SignalWindowsTest, OpeningLoadClearsTheKindOnlyAndAClickOnlyChoosesAFile) {
  writeFile("s.mrd", "MERIDA\r\n1\r\n0\r\n1\r\n 3\r\n");
  start();
  fillRows();
  state().Records.kind = WaveData;
  state().Records.rangeEnd = 10;
  LoadWindow* w = openLoad();
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(state().Records.kind, NoData);
  EXPECT_EQ(state().Records.count, 10);
  EXPECT_EQ(state().Records.rangeEnd, 10.0f);
  EXPECT_EQ(state().Records.values[3][0], 7.0f);
  EXPECT_FALSE(w->Check1->isChecked());
  EXPECT_EQ(w->select(), -1);
  EXPECT_EQ(w->Drive1->itemData(0).toString(), QDir::homePath());
  EXPECT_EQ(w->dirPath(), QDir::currentPath());
  // Graph with no data and Load with no file chosen do nothing.
  click(w, "Command3");
  EXPECT_EQ(w->fileDisplayWindow(), nullptr);
  click(w, "Command1");
  EXPECT_EQ(state().Records.kind, NoData);
  EXPECT_EQ(errorText(), "");
  EXPECT_EQ(w->Text2->text(), "");

  chooseFile(w, "s.mrd");
  EXPECT_EQ(w->Text1->text(), "s.mrd");
  EXPECT_EQ(w->chosenPath(), QDir::currentPath() + "/s.mrd");
  EXPECT_EQ(state().Records.kind, NoData);
  EXPECT_EQ(w->Text2->text(), "");
}

TEST_F(SignalWindowsTest, LoadOfAMeridaFileShowsCountAndRangeAndKeepsRowsAboveTheCount) {
  start();
  fillRows();
  LoadWindow* w = loadFile("s.mrd", "MERIDA\r\n3\r\n 1\r\n 4\r\n .5\r\n-1\r\n 2\r\n");
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(w->Text1->text(), "s.mrd");
  EXPECT_EQ(w->Text2->text(), "3");
  EXPECT_EQ(w->Text3->text(), "1");
  EXPECT_EQ(w->Text4->text(), "4");
  const RecordFunctionTable& t = state().Records;
  EXPECT_EQ(t.kind, MeridaTextData);
  EXPECT_EQ(t.count, 3);
  EXPECT_EQ(t.values[3][0], 2.0f);
  EXPECT_EQ(t.values[4][0], 7.0f);
  EXPECT_EQ(errorText(), "");
}

// A file that cannot be read is a refused load: the window says why and the rows stay.
TEST_F(SignalWindowsTest, LoadOfAFileThatCannotBeReadShowsWhyAndKeepsTheRows) {
  std::filesystem::create_symlink("/proc/self/mem", dir_ / "mem.mrd");
  start();
  fillRows();
  QString text;
  OnNextModal<QMessageBox>([&](QMessageBox* box) {
    text = box->text();
    box->accept();
  });
  LoadWindow* w = loadFile("ok.mrd", "MERIDA\r\n1\r\n0\r\n1\r\n 3\r\n");
  ASSERT_NE(w, nullptr);
  ASSERT_EQ(state().Records.values[1][0], 3.0f);
  state().Records.values[1][0] = 7;
  chooseFile(w, "mem.mrd");
  click(w, "Command1");
  ASSERT_TRUE(QTest::qWaitFor([&] { return !text.isEmpty(); }, 5000));
  EXPECT_EQ(text, "cannot read mem.mrd: Input/output error");
  EXPECT_EQ(state().Records.kind, NoData);
  EXPECT_EQ(state().Records.values[1][0], 7.0f);
  EXPECT_EQ(errorText(), "") << "no format error for a file that was not read";
}

// Close during a load stops it: the window closes and what the load read is never applied.
TEST_F(SignalWindowsTest, CloseStopsALoad) {
  std::string text = "ORBITA\r\n1\r\n1000\r\n";
  for (int i = 0; i < 1000; ++i) text += "1\r\n";
  start();
  fillRows();
  writeFile("big.orb", text);
  LoadWindow* w = openLoad();
  ASSERT_NE(w, nullptr);
  chooseFile(w, "big.orb");
  QTest::mouseClick(w->Command1, Qt::LeftButton);
  EXPECT_TRUE(w->loading());
  EXPECT_EQ(w->Command1->text(), "Stop");
  click(w, "Command2");
  EXPECT_FALSE(w->isVisible());
  EXPECT_FALSE(w->loading());
  QTest::qWait(50);
  EXPECT_EQ(state().Records.kind, NoData);
  EXPECT_EQ(state().Records.values[1][0], 7.0f);
}

TEST_F(SignalWindowsTest, LoadOfAWaveFileShowsPathRateAndRange) {
  start();
  LoadWindow* w = loadFile("t.wav", WaveFile(4));
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(w->Text1->text(), QDir::currentPath() + "/t.wav");
  EXPECT_EQ(w->Text2->text(), "11025");
  EXPECT_EQ(w->Text3->text(), "0");
  EXPECT_EQ(w->Text4->text(), "4");
  EXPECT_EQ(state().Records.kind, WaveData);
  EXPECT_EQ(state().Records.values[4][0], 3.0f);
}

TEST_F(SignalWindowsTest, RefusedWaveHeaderShowsTheFieldThatFailed) {
  struct Case {
    int offset;
    std::string bytes;
    QString text1;
  };
  const Case cases[] = {
      {22, "\x02", "2"},
      // Bytes that are no text are shown one character each.
      {36, "\xe9\x01z\xff", QString::fromLatin1("\xe9\x01z\xff", 4)},
  };
  start();
  for (const Case& c : cases) {
    fillRows();
    std::string file = WaveFile(4);
    file.replace(static_cast<size_t>(c.offset), c.bytes.size(), c.bytes);
    LoadWindow* w = loadFile("bad.wav", file);
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w->Text1->text(), c.text1) << c.offset;
    EXPECT_EQ(state().Records.kind, NoData);
    EXPECT_EQ(state().Records.values[1][0], 7.0f);
    EXPECT_EQ(errorText(), "");
    w->close();
  }
}

TEST_F(SignalWindowsTest, WrongTagShowsError39AndLeavesNoData) {
  start();
  fillRows();
  LoadWindow* w = loadFile("DATA.Wav", WaveFile(4));
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(errorText(), "ﾌｧｲﾙの形式が違います");
  EXPECT_EQ(state().Records.kind, NoData);
  EXPECT_EQ(state().Records.values[1][0], 7.0f);
}

TEST_F(SignalWindowsTest, GraphOpensFileDisplayWhoseDisplayChartsColumnOneAgainstTheRange) {
  start();
  LoadWindow* w = loadFile("r.mrd", "MERIDA\r\n4\r\n 0\r\n 2\r\n 5\r\n 6\r\n-7\r\n 8\r\n");
  ASSERT_NE(w, nullptr);
  click(w, "Command3");
  FileDisplayWindow* d = w->fileDisplayWindow();
  ASSERT_NE(d, nullptr);
  EXPECT_TRUE(d->isVisible());
  EXPECT_FALSE(d->isModal());
  EXPECT_TRUE(d->Graph1->points(1).isEmpty());  // nothing drawn before Display
  click(d, "Command1");
  const QList<QPointF> expected{{0, 5}, {0.5, 6}, {1, -7}, {1.5, 8}};
  EXPECT_EQ(d->Graph1->points(1), expected);
  QList<QPointF> drawn;
  for (QLineSeries* s : d->Graph1->drawnSeries(1)) drawn += s->points();
  EXPECT_EQ(drawn, expected);
  click(d, "Command2");
  EXPECT_FALSE(d->isVisible());
}

TEST_F(SignalWindowsTest, SelectShowsOnlyTheDataFilesExtensions) {
  for (const char* name : {"a.wav", "b.mrd", "c.orb", "D.WAV", "e.txt", "NOEXT"}) writeFile(name, "x");
  start();
  LoadWindow* w = openLoad();
  ASSERT_NE(w, nullptr);
  const QStringList all{"a.wav", "b.mrd", "c.orb", "D.WAV", "e.txt", "NOEXT"};
  EXPECT_TRUE(waitForListing(w, all)) << Sorted(listed(w)).join(' ').toStdString();
  QTest::mouseClick(w->Check1, Qt::LeftButton, {}, QPoint(8, w->Check1->height() / 2));
  EXPECT_EQ(w->select(), 1);
  EXPECT_TRUE(w->Check1->isChecked());
  const QStringList data{"a.wav", "b.mrd", "c.orb", "D.WAV"};
  EXPECT_TRUE(waitForListing(w, data)) << Sorted(listed(w)).join(' ').toStdString();
  QTest::mouseClick(w->Check1, Qt::LeftButton, {}, QPoint(8, w->Check1->height() / 2));
  EXPECT_EQ(w->select(), -1);
  EXPECT_TRUE(waitForListing(w, all)) << Sorted(listed(w)).join(' ').toStdString();
}

TEST_F(SignalWindowsTest, ClickOnADirectoryOpensIt) {
  std::filesystem::create_directory(dir_ / "sub");
  writeFile("sub/in.mrd", "MERIDA\r\n1\r\n0\r\n1\r\n 3\r\n");
  start();
  LoadWindow* w = openLoad();
  ASSERT_NE(w, nullptr);
  auto* dirs = qobject_cast<QFileSystemModel*>(w->Dir1->model());
  ASSERT_NE(dirs, nullptr);
  const QModelIndex sub = dirs->index(QDir::currentPath() + "/sub");
  ASSERT_TRUE(QTest::qWaitFor([&] { return w->Dir1->visualRect(sub).isValid(); }, 5000));
  QTest::mouseClick(w->Dir1->viewport(), Qt::LeftButton, {}, w->Dir1->visualRect(sub).center());
  EXPECT_EQ(w->dirPath(), QDir::currentPath() + "/sub");
  EXPECT_TRUE(waitForListing(w, {"in.mrd"}));
  chooseFile(w, "in.mrd");
  EXPECT_EQ(w->chosenPath(), QDir::currentPath() + "/sub/in.mrd");
}

TEST_F(SignalWindowsTest, DriveThatCannotBeReadWarnsAndGoesBack) {
  start();
  LoadWindow* w = openLoad();
  ASSERT_NE(w, nullptr);
  const int before = w->Drive1->currentIndex();
  const QString path = w->dirPath();
  w->Drive1->addItem("gone", QDir::currentPath() + "/missing");
  QString text, title;
  QMessageBox::Icon icon = QMessageBox::NoIcon;
  OnNextModal<QMessageBox>([&](QMessageBox* box) {
    text = box->text();
    title = box->windowTitle();
    icon = box->icon();
    box->accept();
  });
  w->Drive1->setCurrentIndex(w->Drive1->count() - 1);
  EXPECT_EQ(text, "ﾄﾞﾗｲﾌﾞが用意されていません");
  EXPECT_EQ(title, "エラー");
  EXPECT_EQ(icon, QMessageBox::Warning);
  EXPECT_EQ(w->Drive1->currentIndex(), before);
  EXPECT_EQ(w->dirPath(), path);

  // A readable one moves the lists there.
  std::filesystem::create_directory(dir_ / "vol");
  writeFile("vol/v.orb", "x");
  w->Drive1->addItem("vol", QDir::currentPath() + "/vol");
  w->Drive1->setCurrentIndex(w->Drive1->count() - 1);
  EXPECT_EQ(w->dirPath(), QDir::currentPath() + "/vol");
  EXPECT_TRUE(waitForListing(w, {"v.orb"}));
}

TEST_F(SignalWindowsTest, GoWritesTheDefaultWaveFileAndShowsItsName) {
  start();
  WaveWindow* w = openWave("sin(2*PI*440*x)");
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(w->format(), -1);
  QStringList shown;
  QObject::connect(w->Text3, &QLineEdit::textChanged, w, [&](const QString& t) { shown << t; });
  w->Text1->setText("0");
  w->Text2->setText("1");
  go(w);
  EXPECT_EQ(shown, (QStringList{"作成中", "mrdsound.wav"}));
  EXPECT_EQ(readFile("mrdsound.wav").substr(0, 4), "RIFF");
  EXPECT_EQ(w->lastWritten(), QDir::currentPath() + "/mrdsound.wav");
  EXPECT_EQ(errorText(), "");

  // A typed name is used as it stands.
  w->Text3->setText("tone.wav");
  w->Text2->setText("0.2");
  go(w);
  EXPECT_EQ(w->Text3->text(), "tone.wav");
  EXPECT_EQ(readFile("tone.wav").substr(0, 4), "RIFF");
  EXPECT_EQ(w->lastWritten(), QDir::currentPath() + "/tone.wav");
}

TEST_F(SignalWindowsTest, MeridaCheckWritesTheTextFileCappedAt5000Samples) {
  start();
  WaveWindow* w = openWave("x");
  ASSERT_NE(w, nullptr);
  QTest::mouseClick(w->Check1, Qt::LeftButton, {}, QPoint(8, w->Check1->height() / 2));
  EXPECT_EQ(w->format(), 1);
  EXPECT_TRUE(w->Check1->isChecked());
  w->Text1->setText("0");
  w->Text2->setText("0.6");
  w->Text3->setText("ignored.wav");
  go(w);
  EXPECT_EQ(w->Text3->text(), "mrdsound.mrd");
  EXPECT_EQ(readFile("mrdsound.mrd").substr(0, 19), "MERIDA\r\n 5000\r\n 0\r\n");
  EXPECT_EQ(readFile("ignored.wav"), "");
  EXPECT_EQ(w->lastWritten(), QDir::currentPath() + "/mrdsound.mrd");
}

TEST_F(SignalWindowsTest, GoThatFailsAfterSamplingStartsGivesTheTypedNameBack) {
  start();
  WaveWindow* w = openWave("1");  // a constant cannot be scaled: no WAVE file
  ASSERT_NE(w, nullptr);
  QStringList shown;
  QObject::connect(w->Text3, &QLineEdit::textChanged, w, [&](const QString& t) { shown << t; });
  w->Text1->setText("0");
  w->Text2->setText("0.01");
  w->Text3->setText("mine.wav");
  shown.clear();
  go(w);
  EXPECT_EQ(shown, (QStringList{"作成中", "mine.wav"}));
  EXPECT_EQ(readFile("mine.wav"), "");
  EXPECT_EQ(w->lastWritten(), "");
  EXPECT_EQ(errorText(), "");
  EXPECT_TRUE(faults_.empty());

  // Two variables: error 24 before sampling; the box is never touched.
  main().setFormulaText("x+y");
  shown.clear();
  go(w);
  EXPECT_TRUE(shown.isEmpty());
  EXPECT_EQ(errorText(), "グラフおよび積分の変数は１個までです");
}

TEST_F(SignalWindowsTest, CloseDuringGoStopsIt) {
  start();
  WaveWindow* w = openWave("sgm(sin(k*x)/k,1,5000,k)");  // 55 million terms unless stopped
  ASSERT_NE(w, nullptr);
  w->Text1->setText("0");
  w->Text2->setText("1");
  QObject::connect(w->Text3, &QLineEdit::textChanged, w, [w](const QString& t) {
    if (t == "作成中") QTimer::singleShot(0, w->Command2, &QPushButton::click);
  });
  click(w, "Command1");
  EXPECT_TRUE(QTest::qWaitFor([w] { return !w->isVisible(); }, 5000));
  EXPECT_FALSE(w->running());
  EXPECT_TRUE(readFile("mrdsound.wav").empty());
  EXPECT_EQ(w->Text3->text(), "");
}

TEST_F(SignalWindowsTest, TestWithoutASoundDeviceDoesNothingVisible) {
  start();
  WaveWindow* w = openWave("sin(2*PI*440*x)");
  ASSERT_NE(w, nullptr);
  click(w, "Command3");  // nothing written yet
  w->Text1->setText("0");
  w->Text2->setText("0.1");
  go(w);
  ASSERT_FALSE(w->lastWritten().isEmpty());
  click(w, "Command3");
  QTest::qWait(50);
  EXPECT_EQ(errorText(), "");
  EXPECT_TRUE(faults_.empty());
  EXPECT_TRUE(w->isVisible());
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

class SignalCaptions : public SignalWindowsTest, public ::testing::WithParamInterface<bool> {};

TEST_P(SignalCaptions, EveryCaptionInTheDisplayLanguage) {
  const bool japanese = GetParam();
  writeFile("MERIDA.DEF", japanese ? "Japanese\r\n" : "English\r\n");
  start();
  const std::vector<Caption> load{{"", "Load", "ファイル"},      {"Check1", "Select", "選択"},
                                  {"Command1", "Load", "ﾛｰﾄﾞ"},   {"Command2", "Close", "中止"},
                                  {"Command3", "Graph", "ｸﾞﾗﾌ"},  {"Label1", "～", "～"}};
  const std::vector<Caption> wave{{"", "WAVE File Make", "音作成"}, {"Frame1", "Time", "時間"},
                                  {"Label2", "sec", "秒"},          {"Frame2", "File Name", "ﾌｧｲﾙ名"},
                                  {"Check1", "MERIDA", "MERIDA"},   {"Command1", "Go", "開始"},
                                  {"Command3", "Test", "ﾃｽﾄ"},       {"Command2", "Close", "中止"}};
  const std::vector<Caption> display{{"", "File Display", "表示"}, {"Command1", "Display", "表示"},
                                     {"Command3", "Print", "印刷"},  {"Command2", "Close", "中止"}};
  LoadWindow* l = loadFile("c.mrd", "MERIDA\r\n1\r\n0\r\n1\r\n 3\r\n");
  ASSERT_NE(l, nullptr);
  click(l, "Command3");
  WaveWindow* w = openWave("x");
  ASSERT_NE(w, nullptr);
  ExpectCaptions(l, load, japanese);
  ExpectCaptions(w, wave, japanese);
  ExpectCaptions(l->fileDisplayWindow(), display, japanese);
}

INSTANTIATE_TEST_SUITE_P(Languages, SignalCaptions, ::testing::Bool(),
                         [](const auto& p) { return p.param ? "Japanese" : "English"; });

}  // namespace
}  // namespace merida::test

// The fixture's program answers input boxes from replies_ and records faults instead of showing them.
#include "gui_fixture.h"

#include <QLineSeries>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "main/tool_window.h"

namespace merida::test {

void WaitForJobs() {
  auto running = [] {
    for (QWidget* w : QApplication::allWidgets()) {
      if (auto* tool = qobject_cast<ToolWindow*>(w); tool && tool->jobRunning()) return true;
    }
    return false;
  };
  EXPECT_TRUE(QTest::qWaitFor([&] { return !running(); }, 30000)) << "a job still runs";
}

void ClickAndWait(QWidget* button) {
  QTest::mouseClick(button, Qt::LeftButton);
  if (auto* tool = qobject_cast<ToolWindow*>(button->window())) {
    EXPECT_TRUE(QTest::qWaitFor([tool] { return !tool->jobRunning(); }, 30000)) << "a job still runs";
  }
}

void ClickBox(QAbstractButton* box) {
  QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
  WaitForJobs();
}

QPalette DarkPalette() {
  QPalette p;
  for (auto role : {QPalette::Window, QPalette::AlternateBase, QPalette::Button}) p.setColor(role, QColor(53, 53, 53));
  for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    p.setColor(role, QColor(230, 230, 230));
  p.setColor(QPalette::Base, QColor(35, 35, 35));
  p.setColor(QPalette::Highlight, QColor(42, 130, 218));
  p.setColor(QPalette::HighlightedText, Qt::black);
  p.setColor(QPalette::Mid, QColor(80, 80, 80));
  return p;
}

QStringList Lines(const QAbstractItemView* list) {
  QStringList out;
  const QAbstractItemModel* model = list->model();
  for (int r = 0; model && r < model->rowCount(list->rootIndex()); ++r) {
    out << model->index(r, 0, list->rootIndex()).data().toString();
  }
  return out;
}

QList<QPointF> Drawn(const ChartWidget* chart, int set) {
  QList<QPointF> all;
  for (QLineSeries* s : chart->drawnSeries(set)) all += s->points();
  return all;
}

void GuiTest::TearDown() {
  app_.reset();  // the windows before the directory
  TempDirTest::TearDown();
}

void GuiTest::writeFile(const std::string& name, const std::string& contents) const {
  std::ofstream(dir_ / name, std::ios::binary) << contents;
}

std::string GuiTest::readFile(const std::string& name) const {
  std::ostringstream text;
  text << std::ifstream(dir_ / name, std::ios::binary).rdbuf();
  return text.str();
}

void GuiTest::start() {
  app_.reset();
  app_ = std::make_unique<Application>(dir_);
  app_->host().setAnswerFunction([this](const std::string& prompt) -> std::optional<std::string> {
    prompts_.push_back(prompt);
    if (replies_.empty()) ADD_FAILURE() << "unexpected input box for " << prompt;
    const std::string reply = replies_.empty() ? std::string() : replies_.front();
    if (!replies_.empty()) replies_.pop_front();
    return reply.empty() ? std::nullopt : std::optional(reply);
  });
  app_->host().setFaultFunction([this](const std::string& description) { faults_.push_back(description); });
  main().show();
}

QString GuiTest::calc(const QString& formula) {
  main().setFormulaText(formula);
  click(&main(), "Command1");
  return main().answerText();
}

void GuiTest::rec(const QString& formula) {
  main().setFormulaText(formula);
  click(&main(), "Command4");
}

void GuiTest::press(int commandNumber) { click(&main(), ("Command" + QByteArray::number(commandNumber)).constData()); }

QWidget* GuiTest::open(const QString& name) {
  QWidget* w = opened(name);
  if (!w) throw std::runtime_error("the window did not open: " + name.toStdString());
  return w;
}

QWidget* GuiTest::opened(const QString& name) {
  static const std::map<QString, int> buttons = {
      {"GraphWindow", 2},   {"FunctionListWindow", 3},  {"IntegrationWindow", 7}, {"HelpWindow", 8},
      {"DiffWindow", 9},    {"IntersectionWindow", 10}, {"ContourWindow", 11},    {"PadWindow", 12},
      {"SimultWindow", 13}, {"MatrixWindow", 16},       {"DelayWindow", 14},      {"WaveWindow", 15},
      {"FftWindow", 17},    {"LoadWindow", 18},         {"StatWindow", 19},       {"PrimeWindow", 20}};
  if (auto b = buttons.find(name); b != buttons.end()) {
    press(b->second);
    return window(b->second == 16 ? QStringLiteral("SimultWindow") : name);
  }
  if (name == "MainWindow") return &main();
  if (name == "ErrorWindow") {
    calc("1/0");
    return window(name);
  }
  // The window that opens it, its button, and the data it needs to open.
  const std::map<QString, std::tuple<const char*, const char*, std::function<void(QWidget*)>>> via = {
      {"NegativeFunctionWindow", {"GraphWindow", "Command6", {}}},
      {"ParameterWindow", {"GraphWindow", "Command4", {}}},
      {"StatDataWindow", {"StatWindow", "Command4", {}}},
      {"ColorWindow", {"ContourWindow", "Command6", {}}},
      {"DoubleIntegrationWindow",
       {"IntegrationWindow", "Command3", [this](QWidget*) { main().setFormulaText("x*y"); }}},
      {"ContourMapWindow",
       {"ContourWindow", "Command3",
        [this](QWidget* contour) {
          main().setFormulaText("x*y");
          click(contour, "Command1");
        }}},
      {"AxisAngleWindow", {"ContourMapWindow", "Command2", {}}},
      {"SpectrumWindow",
       {"FftWindow", "Command7",
        [this](QWidget* fft) {
          recordWave(4096);  // Power in Continue mode: four frames of 512 points
          child<QCheckBox>(fft, "Check1")->click();
          child<QCheckBox>(fft, "Check4")->click();
          fill(fft, {{"Text3", "1024"}});
          click(fft, "Command1");
          click(fft, "Command4");
        }}},
      {"FileDisplayWindow", {"LoadWindow", "Command3", [this](QWidget*) { recordWave(100); }}},
      {"MultRegWindow",
       {"StatWindow", "Command5",
        [this](QWidget*) {
          recordRows({{0, 0, 1}, {1, 0, 3}, {0, 1, 4}, {1, 1, 6}});  // z = 2x + 3y + 1
        }}},
      {"TestWindow", {"StatWindow", "Command6", {}}},
  };
  auto v = via.find(name);
  QWidget* from = v == via.end() ? nullptr : open(QString::fromLatin1(std::get<0>(v->second)));
  if (!from) return nullptr;
  if (std::get<2>(v->second)) std::get<2>(v->second)(from);
  click(from, std::get<1>(v->second));
  return window(name);
}

QWidget* GuiTest::window(const QString& objectName) const {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == objectName && w->isVisible()) return w;
  }
  return nullptr;
}

QString GuiTest::errorText() const {
  QWidget* errors = window(QStringLiteral("ErrorWindow"));
  return errors ? errors->findChild<QLabel*>(QStringLiteral("Label1"))->text() : QString();
}

void GuiTest::acknowledgeError() { click(window(QStringLiteral("ErrorWindow")), "Command1"); }

void GuiTest::fill(QWidget* w, std::initializer_list<std::pair<const char*, const char*>> boxes) {
  for (auto [name, text] : boxes) {
    QLineEdit* box = std::string_view(name) == "formula" ? main().Text1 : child<QLineEdit>(w, name);
    if (box) box->setText(QString::fromUtf8(text));
  }
}

void GuiTest::enter(QLineEdit* box, const QString& text) {
  box->setText(text);
  QTest::keyClick(box, Qt::Key_Return);
  WaitForJobs();
}

void GuiTest::recordWave(int count) {
  RecordFunctionTable& t = state().Records;
  for (int i = 1; i <= count; ++i) t.values[i][0] = static_cast<float>(std::sin(2 * M_PI * 1000 * i / 11025.0));
  t.count = static_cast<int16_t>(count);
  t.sampleRate = 11025;
  t.rangeStart = 0;  // as loading a WAVE file sets it: sample numbers
  t.rangeEnd = static_cast<float>(count);
  t.kind = WaveData;
}

void GuiTest::recordRows(const std::vector<std::vector<float>>& rows) {
  RecordFunctionTable& t = state().Records;
  for (size_t i = 0; i < rows.size(); ++i) std::copy(rows[i].begin(), rows[i].end(), t.values[i + 1].begin());
  t.count = static_cast<int16_t>(rows.size());
  t.dimension = static_cast<int16_t>(rows[0].size());
  t.kind = OrbitaData;
}

void GuiTest::click(QWidget* parent, const char* name) {
  auto* button = child<QPushButton>(parent, name);
  if (!button) return;
  ASSERT_TRUE(button->isEnabled()) << name << " is disabled";
  ClickAndWait(button);
}

}  // namespace merida::test

// The fixture's program answers input boxes from replies_ and records faults instead of showing them.
#include "gui_fixture.h"

#include <QGroupBox>
#include <fstream>
#include <sstream>

namespace merida::test {

QString CaptionOf(QWidget* window, const char* control) {
  if (!*control) return window->windowTitle();
  QWidget* w = window->findChild<QWidget*>(QString::fromLatin1(control));
  if (auto* frame = qobject_cast<QGroupBox*>(w)) return frame->title();
  if (auto* button = qobject_cast<QAbstractButton*>(w)) return button->text();
  if (auto* label = qobject_cast<QLabel*>(w)) return label->text();
  return QStringLiteral("<no caption %1>").arg(QString::fromLatin1(control));
}

void ExpectCaptions(QWidget* window, const std::vector<Caption>& table, bool japanese) {
  ASSERT_NE(window, nullptr);
  for (const Caption& c : table) {
    EXPECT_EQ(CaptionOf(window, c.control), QString::fromUtf8(japanese ? c.japanese : c.english))
        << window->objectName().toStdString() << " " << c.control;
  }
}

void GuiTest::TearDown() {
  app_.reset();
  TempDirTest::TearDown();
}

void GuiTest::writeFile(const std::string& name, const std::string& contents) const {
  std::ofstream out(dir_ / name, std::ios::binary);
  out << contents;
}

std::string GuiTest::readFile(const std::string& name) const {
  std::ifstream in(dir_ / name, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void GuiTest::start() {
  app_.reset();
  app_ = std::make_unique<Application>(dir_);
  app_->host().setAnswerFunction([this](const std::string& prompt) -> std::optional<std::string> {
    prompts_.push_back(prompt);
    if (replies_.empty()) {
      ADD_FAILURE() << "unexpected input box for " << prompt;
      return std::nullopt;
    }
    std::string reply = replies_.front();
    replies_.pop_front();
    if (reply.empty()) return std::nullopt;
    return reply;
  });
  app_->host().setFaultFunction([this](const std::string& description) { faults_.push_back(description); });
  main().show();
}

QString GuiTest::calc(const QString& formula) {
  child<QLineEdit>(&main(), "Text1")->setText(formula);
  click(&main(), "Command1");
  return child<QLabel>(&main(), "Label1")->text();
}

void GuiTest::rec(const QString& formula) {
  child<QLineEdit>(&main(), "Text1")->setText(formula);
  click(&main(), "Command4");
}

void GuiTest::press(int commandNumber) {
  QByteArray name = "Command" + QByteArray::number(commandNumber);
  click(&main(), name.constData());
}

QWidget* GuiTest::window(const QString& objectName) const {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == objectName && w->isVisible()) return w;
  }
  return nullptr;
}

QString GuiTest::errorText() const {
  QWidget* errors = window(QStringLiteral("ErrorWindow"));
  if (!errors) return {};
  return errors->findChild<QLabel*>(QStringLiteral("Label1"))->text();
}

void GuiTest::acknowledgeError() { click(window(QStringLiteral("ErrorWindow")), "Command1"); }

void GuiTest::click(QWidget* parent, const char* name) {
  auto* button = child<QPushButton>(parent, name);
  if (!button) return;
  ASSERT_TRUE(button->isEnabled()) << name << " is disabled";
  ClickAndWait(button);
}

}  // namespace merida::test

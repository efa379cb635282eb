// The main window only wires its controls; Calc and Rec belong to the engine.
#include "main/main_window.h"

#include <QCloseEvent>
#include <QKeyEvent>

#include "main/calculator.h"

namespace merida {
namespace {

// The buttons that act on the main window itself and are always enabled.
bool IsOwnAction(int n) { return n == 1 || n == 4 || n == 5 || n == 6; }

// Runs an action once; a second press while it waits in an input box is ignored.
class RunGuard {
 public:
  explicit RunGuard(bool& flag) : flag_(flag), entered_(!flag) { flag_ = true; }
  ~RunGuard() {
    if (entered_) flag_ = false;
  }
  RunGuard(const RunGuard&) = delete;
  RunGuard& operator=(const RunGuard&) = delete;
  bool entered() const { return entered_; }

 private:
  bool& flag_;
  bool entered_;
};

}  // namespace

MainWindow::MainWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setupUi(this);
  // Heights from the font in use: the answer as tall as the formula box, and the buttons measured
  // empty, so that the captions' language leaves them alone.
  Label1->setMinimumHeight(Text1->sizeHint().height());
  const int buttonHeight = QPushButton(this).sizeHint().height();
  QPushButton* members[] = {Command1,  Command2,  Command3,  Command4,  Command5,  Command6,  Command7,
                            Command8,  Command9,  Command10, Command11, Command12, Command13, Command14,
                            Command15, Command16, Command17, Command18, Command19, Command20};
  for (int n = 1; n <= 20; ++n) {
    QPushButton* button = members[n - 1];
    button->setMinimumHeight(buttonHeight);
    button->setMaximumHeight(2 * buttonHeight);
    buttons_[n] = button;
  }

  connect(Text1, &QLineEdit::returnPressed, this, &MainWindow::calc);
  Text1->installEventFilter(this);

  connect(Command1, &QPushButton::clicked, this, &MainWindow::calc);
  connect(Command4, &QPushButton::clicked, this, &MainWindow::rec);
  connect(Command5, &QPushButton::clicked, this, &MainWindow::clear);
  connect(Command6, &QPushButton::clicked, this, &QWidget::close);
  for (int n = 1; n <= 20; ++n) {
    if (IsOwnAction(n)) continue;
    connect(command(n), &QPushButton::clicked, this, [this, n] {
      if (openers_[n]) openers_[n]();
    });
  }

  retranslate();
  Text1->setFocus();
}

QPushButton* MainWindow::command(int n) const { return buttons_.at(n); }

void MainWindow::retranslate() {
  retranslateUi(this);
  for (int n = 1; n <= 20; ++n) {
    QPushButton* button = command(n);
    bool unavailable = !IsOwnAction(n) && !openers_[n];
    button->setToolTip(unavailable ? tr("This window is not available yet.") : QString());
  }
}

void MainWindow::setToolOpener(int commandNumber, std::function<void()> open) {
  if (commandNumber < 1 || commandNumber > 20 || IsOwnAction(commandNumber)) return;
  openers_[commandNumber] = std::move(open);
  QPushButton* button = command(commandNumber);
  bool available = static_cast<bool>(openers_[commandNumber]);
  button->setEnabled(available);
  button->setToolTip(available ? QString() : tr("This window is not available yet."));
}

QString MainWindow::formulaText() const { return Text1->text(); }

void MainWindow::setFormulaText(const QString& text) { Text1->setText(text); }

QString MainWindow::answerText() const { return Label1->text(); }

void MainWindow::setAnswerText(const QString& text) { Label1->setText(text); }

void MainWindow::keepHistoryIn(const std::filesystem::path& dir) {
  // A history that cannot be read is not written over either: this run keeps its own in memory.
  if (history_.load(dir).empty()) historyDir_ = dir;
}

void MainWindow::calc() {
  RunGuard guard(running_);
  if (!guard.entered()) return;
  Label1->clear();
  history_.add(Text1->text().toStdString());
  // Kept at once: a crash or a kill later loses nothing typed before it.
  if (historyDir_) history_.save(*historyDir_);
  auto answer = Calc(engine_, Text1->text().toStdString());
  if (answer) Label1->setText(QString::fromStdString(*answer));
  Text1->setFocus();
}

void MainWindow::rec() {
  RunGuard guard(running_);
  if (!guard.entered()) return;
  engine_.RegisterFormula(Text1->text().toStdString());
  Text1->setFocus();
}

void MainWindow::clear() {
  Text1->clear();
  Text1->setFocus();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == Text1 && event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->modifiers() == Qt::NoModifier && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
      auto text = key->key() == Qt::Key_Up ? history_.older(Text1->text().toStdString()) : history_.newer();
      if (text) Text1->setText(QString::fromStdString(*text));
      return true;
    }
  }
  return ToolWindow::eventFilter(watched, event);
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
  // Escape closes a tool window; here it would end the program.
  if (event->key() == Qt::Key_Escape) {
    event->accept();
    return;
  }
  ToolWindow::keyPressEvent(event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  ToolWindow::closeEvent(event);
  emit closed();
}

}  // namespace merida

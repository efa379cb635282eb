// The whole desktop program in a temporary directory, with scripted input boxes.
#pragma once

#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/application_gui.h"
#include "main/function_list_window.h"
#include "jobs.h"
#include "test_support.h"

// Readable failure messages for Qt texts.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QStringList& lines, std::ostream* out) {
  *out << "{";
  for (const QString& line : lines) *out << " \"" << line.toStdString() << "\"";
  *out << " }";
}

namespace merida::test {

class GuiTest : public TempDirTest {
 protected:
  void TearDown() override;

  // Writes `contents` to `name` in the test's directory.
  void writeFile(const std::string& name, const std::string& contents) const;
  // The whole file, or "" when it does not exist.
  std::string readFile(const std::string& name) const;

  // Starts the program here (reading MERIDA.DEF and MERIDA.DAT) and shows the main window.
  void start();

  MainWindow& main() { return app_->mainWindow(); }
  Engine& engine() { return app_->engine(); }
  AppState& state() { return app_->state(); }

  // Types the formula and presses Calc; returns the answer label.
  QString calc(const QString& formula);
  // Types the formula and presses Rec.
  void rec(const QString& formula);
  // Presses a button of the main window by number.
  void press(int commandNumber);
  // The open top-level window with this object name, or nullptr.
  QWidget* window(const QString& objectName) const;
  // The Error Message window's text, or "" when it is not open.
  QString errorText() const;
  // Presses OK in the Error Message window.
  void acknowledgeError();

  template <class T>
  static T* child(QWidget* parent, const char* name) {
    T* found = parent ? parent->findChild<T*>(QString::fromLatin1(name)) : nullptr;
    if (!found) ADD_FAILURE() << "no control " << name;
    return found;
  }
  static void click(QWidget* parent, const char* name);

  std::unique_ptr<Application> app_;
  std::deque<std::string> replies_;   // input box answers; "" at the end means Cancel
  std::vector<std::string> prompts_;  // what the input boxes asked
  std::vector<std::string> faults_;   // fault boxes shown
};

// A control's caption in each language; control "" names the window itself.
struct Caption {
  const char* control;
  const char* english;
  const char* japanese;
};
// The window's title, or the control's title, text or label text.
QString CaptionOf(QWidget* window, const char* control);
void ExpectCaptions(QWidget* window, const std::vector<Caption>& table, bool japanese);

// Handles the next modal dialog of type D once it is on screen: `handle` reads it and closes it.
template <class D>
void OnNextModal(std::function<void(D*)> handle) {
  auto* timer = new QTimer;
  auto attempts = std::make_shared<int>(0);
  QObject::connect(timer, &QTimer::timeout, [timer, attempts, handle] {
    auto* dialog = qobject_cast<D*>(QApplication::activeModalWidget());
    if (!dialog && ++*attempts < 500) return;
    timer->stop();
    timer->deleteLater();
    if (dialog) {
      handle(dialog);
    } else {
      ADD_FAILURE() << "no modal dialog appeared";
    }
  });
  timer->start(10);
}

}  // namespace merida::test

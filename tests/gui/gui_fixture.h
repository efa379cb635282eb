// The whole desktop program in a temporary directory, with scripted input boxes.
#pragma once

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>

#include "app/application_gui.h"
#include "controls/chart_widget.h"
#include "test_support.h"

// Readable failure messages for Qt texts.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QStringList& lines, std::ostream* out) {
  *out << "{\"" << lines.join("\", \"").toStdString() << "\"}";
}

namespace merida::test {

// Windows run their long work as jobs: a click starts one, and its results arrive later.
void WaitForJobs();
void ClickAndWait(QWidget* button);   // and waits for the job it starts in its window
void ClickBox(QAbstractButton* box);  // on its indicator, as a mouse does
QPalette DarkPalette();               // as a dark desktop theme hands it to the program
QStringList Lines(const QAbstractItemView* list);
QList<QPointF> Drawn(const ChartWidget* chart, int set = 1);  // across the series the chart used

class GuiTest : public TempDirTest {
 public:
  void TearDown() override;

  void writeFile(const std::string& name, const std::string& contents) const;
  std::string readFile(const std::string& name) const;  // "" when there is none

  // Starts the program here (reading MERIDA.DEF and MERIDA.DAT) and shows the main window.
  void start();
  MainWindow& main() { return app_->mainWindow(); }
  Engine& engine() { return app_->engine(); }
  AppState& state() { return app_->state(); }

  // Types the formula and presses Calc (returning the answer label) or Rec.
  QString calc(const QString& formula);
  void rec(const QString& formula);
  void press(int commandNumber);  // a main-window button
  // Opens the window of this object name as a user does (its main-window button, or the button
  // of the window that opens it, with the data it needs; "MatrixWindow" is Simult's matrix
  // mode), or throws.
  QWidget* open(const QString& name);
  QWidget* opened(const QString& name);  // the same, nullptr when it did not open
  template <class W>
  W* open() {
    return qobject_cast<W*>(open(QString::fromLatin1(W::staticMetaObject.className()).section("::", -1)));
  }
  QWidget* window(const QString& objectName) const;  // open, or nullptr
  QString errorText() const;                         // of the Error Message window, "" when closed
  void acknowledgeError();                           // its OK
  // Sets boxes of `w` by name; "formula" is the main window's formula box.
  void fill(QWidget* w, std::initializer_list<std::pair<const char*, const char*>> boxes);
  static void enter(QLineEdit* box, const QString& text);  // then Return, and waits for the job
  void recordWave(int count);                              // a 1 kHz sine as WAVE data at 11025 Hz, in the record table
  void recordRows(const std::vector<std::vector<float>>& rows);  // as ORBITA data

  // The control of this name in `parent`'s own window (not in a window it owns).
  template <class T>
  static T* child(QWidget* parent, const char* name) {
    if (parent) {
      for (T* c : parent->findChildren<T*>(QString::fromLatin1(name))) {
        if (c->window() == parent->window()) return c;
      }
    }
    ADD_FAILURE() << "no control " << name;
    return nullptr;
  }
  static void click(QWidget* parent, const char* name);

  std::unique_ptr<Application> app_;
  std::deque<std::string> replies_;   // input box answers; "" at the end means Cancel
  std::vector<std::string> prompts_;  // what the input boxes asked
  std::vector<std::string> faults_;   // fault boxes shown
};

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
    if (!dialog) ADD_FAILURE() << "no modal dialog appeared";
    if (dialog) handle(dialog);
  });
  timer->start(10);
}

// Answers the next message box by pressing `answer`; returns its title and text through `seen`.
inline void AnswerNextBox(QMessageBox::StandardButton answer, QStringList* seen = nullptr) {
  OnNextModal<QMessageBox>([answer, seen](QMessageBox* box) {
    if (seen) *seen = {box->windowTitle(), box->text()};
    box->button(answer)->click();
  });
}

}  // namespace merida::test

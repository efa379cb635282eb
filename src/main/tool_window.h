// The base of every window: captions in the display language, printing, stopping a run.
#pragma once

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QWidget>
#include <functional>
#include <initializer_list>
#include <utility>

#include "engine/engine.h"
#include "main/app_state.h"

namespace merida {

class ToolWindow : public QWidget {
  Q_OBJECT

 public:
  ToolWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  // Sets every caption for the current display language (tr() with the installed translator).
  virtual void retranslate() = 0;

 protected:
  bool japanese() const { return state_.japanese(); }
  // Prints the window as shown: the default printer, or a PDF the user names when none is set up.
  void printWindow();
  // The same printer choice, with `paint` filling the page (in the printer's own resolution).
  void printPage(const std::function<void(QPainter&, const QRect& page)>& paint);
  // A push button named (and objectName'd) as the code refers to it; Enter never presses it.
  QPushButton* makeButton(const char* name);
  // Closing stops a running computation.
  void closeEvent(QCloseEvent* event) override;
  // Escape closes the window, as its Close button does.
  void keyPressEvent(QKeyEvent* event) override;
  // Tab order follows the layout (rows of a grid, then columns), not the order of creation.
  void showEvent(QShowEvent* event) override;
  // A captioned frame holding one text box, both named as the code refers to them.
  static QGroupBox* makeBoxFrame(const char* frameName, QLineEdit*& box, const char* boxName);
  // A captioned frame of rows, each a caption and its text box.
  static QGroupBox* makeFieldsFrame(const char* frameName,
                                    std::initializer_list<std::pair<QLabel*, QLineEdit*>> rows);
  // A named label; `framed` sinks it like a box, for values the window only shows.
  static QLabel* makeLabel(const char* name, bool framed = false);
  // `buttons` in reading order, `columns` to a row.
  static QGridLayout* makeButtonGrid(std::initializer_list<QPushButton*> buttons, int columns);
  // A named text box showing `text`, narrow enough for a number.
  static QLineEdit* makeBox(const char* name, const char* text = "");
  // A box the window writes its results to and the user only reads (and copies).
  static QLineEdit* makeResultBox(const char* name);
  // A captioned frame with "min ～ max" on its first row and a captioned count box below.
  static QGroupBox* makeRangeFrame(const char* frameName, QLineEdit* min, QLineEdit* max, QLabel* countLabel,
                                   QLineEdit* count);
  // Enter in any of `boxes` presses `button`: the window's main action for those boxes.
  void pressOnEnter(std::initializer_list<QLineEdit*> boxes, QPushButton* button);

  Engine& engine_;
  AppState& state_;
};

}  // namespace merida

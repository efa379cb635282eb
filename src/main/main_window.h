// The main calculator window: formula box, answer, Calc, Rec, Clear, End and the tool buttons.
#pragma once

#include <array>
#include <functional>

#include "main/formula_history.h"
#include "main/tool_window.h"

class QGroupBox;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QPushButton;

namespace merida {

class MainWindow : public ToolWindow {
  Q_OBJECT

 public:
  MainWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;

  // Enables button `commandNumber` (2, 3, 7..20) to open its window; buttons without an
  // opener stay disabled.
  void setToolOpener(int commandNumber, std::function<void()> open);

  // The formula box (`Text1`) and the answer label (`Label1`), for the tool windows.
  QString formulaText() const;
  void setFormulaText(const QString& text);
  QString answerText() const;
  // The tools that answer in the main window (the integrals) write the label here.
  void setAnswerText(const QString& text);

 signals:
  // The window was closed (End or the title bar): the program ends.
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void calc();
  void rec();
  void clear();
  QPushButton* command(int n) const;

  QGroupBox* Frame1;
  QLineEdit* Text1;
  QGroupBox* Frame2;
  QLabel* Label1;
  QPushButton *Command1, *Command2, *Command3, *Command4, *Command5, *Command6, *Command7, *Command8,
      *Command9, *Command10, *Command11, *Command12, *Command13, *Command14, *Command15, *Command16,
      *Command17, *Command18, *Command19, *Command20;
  std::array<QPushButton*, 21> buttons_{};         // Command1..Command20 by number
  std::array<std::function<void()>, 21> openers_;  // by command number
  bool running_ = false;                           // Calc or Rec in progress
  FormulaHistory history_;
};

}  // namespace merida

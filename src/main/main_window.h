// The main calculator window: formula box, answer, Calc, Rec, Clear, End and the tool buttons.
#pragma once

#include <filesystem>
#include <optional>

#include <array>
#include <functional>

#include "main/formula_history.h"
#include "main/tool_window.h"
#include "ui_main_window.h"

class QKeyEvent;

namespace merida {

class MainWindow : public ToolWindow, public Ui::MainWindow {
  Q_OBJECT

 public:
  MainWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;

  // Keeps the formula history in MERIDA.HIS in `dir` from now on, starting from what it holds.
  void keepHistoryIn(const std::filesystem::path& dir);

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

  std::array<QPushButton*, 21> buttons_{};         // Command1..Command20 by number
  std::array<std::function<void()>, 21> openers_;  // by command number
  bool running_ = false;                           // Calc or Rec in progress
  FormulaHistory history_;
  std::optional<std::filesystem::path> historyDir_;
};

}  // namespace merida

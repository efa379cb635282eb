// The Differential & Differential Equation window: derivatives and initial-value problems.
#pragma once

#include <QPointer>
#include <functional>

#include "calculus/differential.h"
#include "controls/chart_widget.h"
#include "main/tool_window.h"
#include "ui_diff_window.h"

namespace merida {

class StatDataWindow;

class DiffWindow : public ToolWindow, public Ui::DiffWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box each time a computation starts.
  DiffWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent = nullptr);

  void retranslate() override;
  bool running() const;
  // The phase-plane field: 1 on, -1 off.
  int16_t plane() const { return plane_; }
  StatDataWindow* statDataWindow();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  DiffBoxes boxes() const;
  // Runs one computation at a time, then has the chart draw.
  void run(QPushButton* button, std::function<DiffResult(Engine&, AppState&)> compute);
  void display(const DiffResult& r);
  void syncRungeKutta();

  std::function<QString()> formula_;
  int16_t plane_ = -1;
  QPointer<StatDataWindow> data_;
};

}  // namespace merida

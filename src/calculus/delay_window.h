// The Delay Calculate window: initial values in a grid, the recurrence on a chart.
#pragma once

#include <QPointer>
#include <functional>

#include "calculus/delay.h"
#include "controls/chart_widget.h"
#include "controls/grid_widget.h"
#include "main/tool_window.h"
#include "ui_delay_window.h"

namespace merida {

class StatDataWindow;

class DelayWindow : public ToolWindow, public Ui::DelayWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box each time Go is pressed.
  DelayWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent = nullptr);

  void retranslate() override;
  bool running() const;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void go();
  void storeInitValue();

  std::function<QString()> formula_;
  QPointer<StatDataWindow> data_;
};

}  // namespace merida

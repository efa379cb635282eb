// The Delay Calculate window: initial values in a grid, the recurrence on a chart.
#pragma once

#include <QGroupBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <functional>

#include "calculus/delay.h"
#include "controls/chart_widget.h"
#include "controls/grid_widget.h"
#include "main/tool_window.h"

namespace merida {

class StatDataWindow;

class DelayWindow : public ToolWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box each time Go is pressed.
  DelayWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent = nullptr);

  void retranslate() override;
  bool running() const;

  QPushButton *Command1, *Command2, *Command3, *Command4;
  QGroupBox *Frame1, *Frame2;
  QLineEdit *Text1, *Text2;
  GridWidget* Grid1;
  ChartWidget* Graph1;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void go();
  void storeInitValue();

  std::function<QString()> formula_;
  QPointer<StatDataWindow> data_;
};

}  // namespace merida

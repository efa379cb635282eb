// The calculator pad: one memory for the whole run, fed from the main window's answer.
#pragma once

#include "main/tool_window.h"
#include "ui_pad_window.h"

namespace merida {

class MainWindow;

class PadWindow : public ToolWindow, public Ui::PadWindow {
  Q_OBJECT

 public:
  PadWindow(Engine& engine, AppState& state, MainWindow& main, QWidget* parent = nullptr);

  void retranslate() override;

 private:
  void add(int sign);
  void clearMemory();
  void recall();

  MainWindow& main_;
};

}  // namespace merida

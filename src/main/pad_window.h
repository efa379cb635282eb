// The calculator pad: one memory for the whole run, fed from the main window's answer.
#pragma once

#include "main/tool_window.h"

class QGroupBox;
class QLabel;
class QPushButton;

namespace merida {

class MainWindow;

class PadWindow : public ToolWindow {
  Q_OBJECT

 public:
  PadWindow(Engine& engine, AppState& state, MainWindow& main, QWidget* parent = nullptr);

  void retranslate() override;

 private:
  void add(int sign);
  void clearMemory();
  void recall();

  MainWindow& main_;
  QGroupBox* Frame1;
  QLabel* Label1;
  QPushButton* Command1;
  QPushButton* Command2;
  QPushButton* Command3;
  QPushButton* Command5;
  QPushButton* Command4;
};

}  // namespace merida

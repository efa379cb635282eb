// The File Display window: the first column of the record table charted against its range.
#pragma once

#include <QPushButton>

#include "controls/chart_widget.h"
#include "main/tool_window.h"

namespace merida {

class FileDisplayWindow : public ToolWindow {
  Q_OBJECT

 public:
  FileDisplayWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;

  QPushButton *Command1, *Command2, *Command3;
  ChartWidget* Graph1;

 private:
  void display();
};

}  // namespace merida

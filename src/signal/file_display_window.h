// The File Display window: the first column of the record table charted against its range.
#pragma once

#include "controls/chart_widget.h"
#include "main/tool_window.h"
#include "ui_file_display_window.h"

namespace merida {

class FileDisplayWindow : public ToolWindow, public Ui::FileDisplayWindow {
  Q_OBJECT

 public:
  FileDisplayWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;

 private:
  void display();
  void titleAxes();
};

}  // namespace merida

// The Statistical Data window: typing up to three columns of values, Memory and File.
#pragma once

#include <memory>

#include "controls/grid_widget.h"
#include "main/tool_window.h"
#include "stats/stat_data.h"
#include "ui_stat_data_window.h"

namespace merida {

class StatDataWindow : public ToolWindow, public Ui::StatDataWindow {
  Q_OBJECT

 public:
  StatDataWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // Opening: the grid from the record function table (or one empty column of five rows).
  void load();
  // A tool's Data button: the grid afresh from the table, the window shown and raised.
  void open();
  const StatData& data() const { return *data_; }

 signals:
  // Memory has put the grid into the record function table.
  void stored();

 private:
  void rebuildGrid();
  void followCurrentCell();

  std::unique_ptr<StatData> data_;
};

}  // namespace merida

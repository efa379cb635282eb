// The Statistical Data window: typing up to three columns of values, Memory and File.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <memory>

#include "controls/grid_widget.h"
#include "main/tool_window.h"
#include "stats/stat_data.h"

namespace merida {

class StatDataWindow : public ToolWindow {
  Q_OBJECT

 public:
  StatDataWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // Opening: the grid from the record function table (or one empty column of five rows).
  void load();
  // A tool's Data button: the grid afresh from the table, the window shown and raised.
  void open();
  const StatData& data() const { return *data_; }

  QLabel *Label1, *Label2, *Label3;
  QLineEdit *Text1, *Text2, *Text3;
  GridWidget* Grid1;
  QPushButton *Command1, *Command2, *Command3;

 signals:
  // Memory has put the grid into the record function table.
  void stored();

 private:
  void rebuildGrid();
  void followCurrentCell();

  std::unique_ptr<StatData> data_;
};

}  // namespace merida

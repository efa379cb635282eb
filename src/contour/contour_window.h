// The Contour window: the grid of the main window's formula and its three drawings.
#pragma once

#include <QPointer>
#include <functional>
#include <optional>

#include "contour/contour_grid.h"
#include "contour/contour_map_window.h"
#include "contour/contour_scene.h"
#include "main/tool_window.h"
#include "ui_contour_window.h"

namespace merida {

class ContourWindow : public ToolWindow, public Ui::ContourWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box each time Calc is pressed. Opening sets
  // colour mode off, the Green scheme and the angles 20 and 30.
  ContourWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent = nullptr);

  void retranslate() override;
  bool running() const { return jobRunning(); }
  bool hasGrid() const { return grid_.has_value(); }
  // The Contour Map window, once a drawing button has opened it.
  ContourMapWindow* mapWindow() const { return map_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void calc();
  void draw(QPushButton* button, MapDrawing drawing);

  std::function<QString()> formula_;
  std::optional<ContourGrid> grid_;
  QPointer<ContourMapWindow> map_;
};

}  // namespace merida

// The Contour window: the grid of the main window's formula and its three drawings.
#pragma once

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <functional>
#include <optional>

#include "contour/contour_grid.h"
#include "contour/contour_map_window.h"
#include "contour/contour_scene.h"
#include "main/tool_window.h"

namespace merida {

class ContourWindow : public ToolWindow {
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

  QPushButton *Command1, *Command2, *Command3, *Command4, *Command5, *Command6;
  QCheckBox *Check1, *Check2;
  QGroupBox *Frame1, *Frame2, *Frame3, *Frame4;
  QLineEdit *Text1, *Text2, *Text3, *Text4, *Text5, *Text6, *Text7, *Text8, *Text9;
  QLabel *Label1, *Label2, *Label3, *Label5;

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

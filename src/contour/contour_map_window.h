// The Contour Map window, its drawing surface and the Axis Angle dialog.
#pragma once

#include <QPointer>
#include <QWidget>

#include "contour/contour_paint.h"
#include "contour/contour_scene.h"
#include "main/tool_window.h"

namespace merida {

// The drawing surface: the scene stretched over the widget, painted afresh at every size.
class ContourMapWidget : public QWidget {
  Q_OBJECT

 public:
  explicit ContourMapWidget(QWidget* parent = nullptr);

  void setScene(MapScene scene);
  const MapScene& scene() const { return scene_; }
  // The drawing meant for paper: white, black and heavier lines.
  void setPrintMode(bool on);
  bool printMode() const { return print_; }
  MapStyle mapStyle() const;
  // What the widget shows, at the screen's pixel ratio.
  QImage image() const;

 signals:
  void saveRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  MapScene scene_;
  bool print_ = false;
};

}  // namespace merida

// After ContourMapWidget, which the map's form constructs.
#include "ui_axis_angle_window.h"
#include "ui_contour_map_window.h"

namespace merida {

class AxisAngleWindow : public ToolWindow, public Ui::AxisAngleWindow {
  Q_OBJECT

 public:
  AxisAngleWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // The boxes show the angles in force.
  void load();

 protected:
  // Closing forgets what was typed and leaves a running drawing alone.
  void closeEvent(QCloseEvent* event) override;

 private:
  void decide();
};

class ContourMapWindow : public ToolWindow, public Ui::ContourMapWindow {
  Q_OBJECT

 public:
  ContourMapWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // The Print check of the Contour window: the paper drawing on screen, and Print sends the
  // drawing itself to the printer at the printer's resolution instead of the window's image.
  void setPrintSetting(bool on);
  AxisAngleWindow* angleWindow() const { return angle_; }
  // PNG, or SVG by the name's extension, of the drawing as shown; false when not written.
  FileResult saveImage(const QString& path) const;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void openAngle();
  void print();
  void askAndSave();

  QPointer<AxisAngleWindow> angle_;
};

}  // namespace merida

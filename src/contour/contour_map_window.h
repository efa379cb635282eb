// The Contour Map window, its drawing surface and the Axis Angle dialog.
#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

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

class AxisAngleWindow : public ToolWindow {
  Q_OBJECT

 public:
  AxisAngleWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // The boxes show the angles in force.
  void load();

  QGroupBox* Frame1;
  QLabel *Label1, *Label2, *Label3;
  QLineEdit *Text1, *Text2;
  QPushButton *Command1, *Command2;

 protected:
  // Closing forgets what was typed and leaves a running drawing alone.
  void closeEvent(QCloseEvent* event) override;

 private:
  void decide();
};

class ContourMapWindow : public ToolWindow {
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

  ContourMapWidget* Picture1;
  QPushButton *Command1, *Command2, *Command3;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void openAngle();
  void print();
  void askAndSave();

  QPointer<AxisAngleWindow> angle_;
};

}  // namespace merida

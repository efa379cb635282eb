// The Time Continuous Spectrum window: the power of successive frames as a surface.
#pragma once

#include <QLabel>
#include <QtDataVisualization/Q3DSurface>
#include <QtDataVisualization/QSurfaceDataArray>
#include <vector>

#include "main/tool_window.h"
#include "ui_spectrum3d_window.h"

namespace merida {

// One surface row per frame, one item per frequency point: x the point, y the percent, z the frame.
// The caller owns the array (or hands it to a QSurfaceDataProxy, which takes it).
// x is the point's frequency and z the frame's start when `perPoint` and `perFrame` give them.
QSurfaceDataArray* SurfaceRows(const std::vector<std::vector<float>>& matrix, double perPoint = 1, double perFrame = 1);

// Whether this session can draw with OpenGL at all; a surface without a context would crash.
bool OpenGlAvailable();

class SpectrumWindow : public ToolWindow, public Ui::SpectrumWindow {
  Q_OBJECT

 public:
  SpectrumWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // Rows are frames, columns frequency points, values in percent. Frames are `frameDuration`
  // long, in seconds when `seconds` (recorded sound), else in units of the formula's variable.
  void setMatrix(const std::vector<std::vector<float>>& matrix, double frameDuration = 1, bool seconds = false);

  // Made in code: which of the two the window has depends on OpenGL at run time.
  QLabel* NoGraphics = nullptr;       // shown instead of the surface when there is no OpenGL
  QWidget* Container = nullptr;       // holds the surface when there is
  QSurface3DSeries* series() const { return series_; }
  // The size of the matrix last handed over, drawn or not.
  int frames() const { return frames_; }
  int points() const { return points_; }

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void print();
  // The scene's paper, ink and grid from the window's palette, so a dark theme gets a dark scene.
  void followPalette();

  Q3DSurface* graph_ = nullptr;
  QSurface3DSeries* series_ = nullptr;
  int frames_ = 0, points_ = 0;
  bool hertz_ = false;
};

}  // namespace merida

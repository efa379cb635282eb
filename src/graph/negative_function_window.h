// The Negative Function window: the implicit curve f(x, y) = 0 of the main window's formula.
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "contour/contour_grid.h"
#include "main/tool_window.h"

namespace merida {

// The drawing area: segments in x-y coordinates over a rectangle, with the axes through 0.
class SegmentPicture : public QWidget {
  Q_OBJECT

 public:
  explicit SegmentPicture(QWidget* parent = nullptr);

  void setCurve(std::vector<Segment> segments, double xMin, double xMax, double yMin, double yMax);
  const std::vector<Segment>& segments() const { return segments_; }
  // Black, thicker lines and no grey axes: a drawing meant for paper.
  void setPrintMode(bool on);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<Segment> segments_;
  double xMin_ = -1, xMax_ = 1, yMin_ = -1, yMax_ = 1;
  bool print_ = false;
};

}  // namespace merida

// After SegmentPicture, which the form's code constructs.
#include "ui_negative_function_window.h"

namespace merida {

class NegativeFunctionWindow : public ToolWindow, public Ui::NegativeFunctionWindow {
  Q_OBJECT

 public:
  NegativeFunctionWindow(Engine& engine, AppState& state, std::function<QString()> formula,
                         QWidget* parent = nullptr);

  void retranslate() override;
  // Go: the grid, then the level-0 curve on Picture1.
  void plot();

 private:
  std::function<QString()> formula_;
};

}  // namespace merida

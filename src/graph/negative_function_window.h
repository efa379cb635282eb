// The Negative Function window: the implicit curve f(x, y) = 0 of the main window's formula.
#pragma once

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
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

class NegativeFunctionWindow : public ToolWindow {
  Q_OBJECT

 public:
  NegativeFunctionWindow(Engine& engine, AppState& state, std::function<QString()> formula,
                         QWidget* parent = nullptr);

  void retranslate() override;
  // Go: the grid, then the level-0 curve on Picture1.
  void plot();

  SegmentPicture* Picture1;
  QGroupBox* Frame1;
  QGroupBox* Frame2;
  QLineEdit *Text1, *Text2, *Text3, *Text4, *Text5, *Text6;
  QLabel* Label3;
  QLabel* Label6;
  QPushButton* Command1;
  QPushButton* Command2;
  QPushButton* Command3;
  QCheckBox* Check1;

 private:
  std::function<QString()> formula_;
};

}  // namespace merida

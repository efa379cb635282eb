// The chart control: line and log/lin graphs of one or two data sets, histograms and scatter
// charts, saved as PNG, SVG or CSV.
#pragma once

#include <QAbstractSeries>
#include <QChartView>
#include <QLineSeries>
#include <QList>
#include <QLogValueAxis>
#include <QPointF>
#include <QValueAxis>
#include <array>
#include <optional>
#include <vector>

#include "engine/atomic_file.h"
#include "graph/graph_plot.h"

class QToolButton;

namespace merida {

class ChartWidget : public QChartView {
  Q_OBJECT

 public:
  enum class Type { kLine, kLogLin };  // log/lin: logarithmic vertical, linear horizontal axis
  // How the points are drawn: joined by lines; as bars from zero, each from its x to the next
  // point's x (a histogram labelled by the classes' lower bounds); as marks without lines.
  enum class Style { kLines, kBars, kPoints };

  explicit ChartWidget(QWidget* parent = nullptr);

  // Settings; none of them redraws until draw().
  void setGraphType(Type type) { type_ = type; }
  Type graphType() const { return type_; }
  void setGridBothWays(bool on) { grid_ = on; }
  bool gridBothWays() const { return grid_; }
  void setStyle(Style style) { style_ = style; }
  Style style() const { return style_; }
  void setDataSets(int count);  // 1 or 2
  int dataSets() const { return sets_; }
  void setThinLines(bool thin) { thin_ = thin; }
  // One scale on both axes (polar and parametric plots), so that a circle is drawn round;
  // kept as the chart is resized. Linear type only.
  void setEqualScale(bool on) { equal_ = on; }
  bool equalScale() const { return equal_; }
  // The line style of a data set (solid by default): a second curve stays told apart in print.
  void setLineStyle(int set, Qt::PenStyle style) {
    if (set >= 1 && set <= 2) styles_[set - 1] = style;
  }
  Qt::PenStyle lineStyle(int set) const { return set >= 1 && set <= 2 ? styles_[set - 1] : Qt::SolidLine; }

  // The stored points: a count per set, values from index 1 (the first point).
  void setPointCount(int count);
  int pointCount(int set = 1) const;
  void setPoint(int set, int index, double x, double y);
  void setPoints(int set, QList<QPointF> points);
  // The points a tool's logic computed.
  void setPoints(int set, const std::vector<ChartPoint>& points);
  QList<QPointF> points(int set = 1) const;

  // Axis titles, with their units; "" leaves an axis untitled.
  void setAxisTitles(const QString& x, const QString& y);
  // The data sets' names: the legend shows them when two sets are drawn, and the readout names
  // the set a point belongs to.
  void setSetNames(const QString& first, const QString& second = QString());
  // A straight line from `from` to `to` drawn over the points (a regression line), or none.
  void setFitLine(std::optional<std::pair<QPointF, QPointF>> line, const QString& name = QString());

  // Redraws the whole graph from the stored points. Both axes scale to the data with a little
  // room, on steps of 1, 2 or 5 times a power of ten, with as many ticks as the size can label.
  void draw();

  // The colour data set `set` is drawn in: readable on the palette's background.
  QColor setColor(int set) const;

  // Exploring: the wheel zooms about the cursor, a drag pans, a double-click (or resetView)
  // returns to the data's range. A new draw also returns to it.
  bool zoomed() const { return view_.has_value(); }
  void zoomBy(double factor, QPointF centre);
  void resetView();
  // The chart as an image on the clipboard (Ctrl+C on the chart).
  void copyImage();
  // The save dialog for PNG, SVG or CSV (Ctrl+S in the window, or the Export button).
  void exportChart();
  QToolButton* exportButton() const { return exportButton_; }

  // The line series last drawn for a data set (a log axis breaks the line at values <= 0).
  QList<QLineSeries*> drawnSeries(int set = 1) const;
  // The bars (one area series) or marks (one scatter series) last drawn for a data set.
  QList<QAbstractSeries*> drawnShapes(int set = 1) const;

  // The axes the last draw used (the vertical one is logarithmic for the log/lin type).
  // Background, axes, labels and grid take the palette's colours; the curves keep theirs.
  QValueAxis* horizontalAxis() const { return xAxis_; }
  QAbstractAxis* verticalAxis() const;

  // The exports of the context menu, written atomically.
  FileResult savePng(const QString& path);
  FileResult saveSvg(const QString& path);
  FileResult saveCsv(const QString& path) const;
  // The stored points as CSV: "x,y" per line, or "x1,y1,x2,y2" with two data sets.
  QString csvText() const;

 signals:
  // The point nearest the cursor, "x = 1.5   y = 2.25   (name)", or the cursor's own
  // coordinates when no point is near; "" when the cursor leaves the chart.
  void readout(const QString& text);

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  void exportAs(const QString& suffix);
  void applyPalette();
  // Sets both axes from the data (or the zoomed view) for the chart's present size.
  void applyRanges();
  void showReadout(QPointF pos);
  // The range the axes show now, in values (top is the lower value).
  QRectF shownRange() const;
  void placeExportButton();
  // Widens one axis's range so that a unit spans as many pixels across as up.
  void fitEqualScale();
  // The bars or marks of one data set, on the linear axes.
  void drawShapes(int set, const QColor& color);

  Type type_ = Type::kLine;
  Style style_ = Style::kLines;
  bool grid_ = true;
  bool thin_ = false;
  bool equal_ = false;
  bool fitting_ = false;
  int refits_ = 0;  // plot-area changes answered since the last draw or resize
  bool hasData_ = false;
  QRectF dataBounds_;  // the drawn points' extent, for the equal-scale fit
  std::optional<QRectF> view_;  // the zoomed or panned range, in values
  std::optional<QPoint> dragFrom_;
  QString names_[2];
  QString fitName_;
  std::optional<std::pair<QPointF, QPointF>> fitLine_;
  QToolButton* exportButton_ = nullptr;
  int sets_ = 1;
  std::array<QList<QPointF>, 2> points_;
  std::array<Qt::PenStyle, 2> styles_{Qt::SolidLine, Qt::SolidLine};
  std::array<QList<QLineSeries*>, 2> drawn_;
  std::array<QList<QAbstractSeries*>, 2> shapes_;
  QValueAxis* xAxis_;
  QValueAxis* yLinear_;
  QLogValueAxis* yLog_;
};

}  // namespace merida

// The chart control on QtCharts.
#include "controls/chart_widget.h"

#include <QAreaSeries>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QLogValueAxis>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QBuffer>
#include <QFile>
#include <QScatterSeries>
#include <QSvgGenerator>
#include <QValueAxis>
#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/atomic_file.h"
#include "engine/number_text.h"

namespace merida {
namespace {

const QColor kSetColors[2] = {QColor(0, 0, 255), QColor(255, 0, 0)};

struct Span {
  double lo = std::numeric_limits<double>::infinity();
  double hi = -std::numeric_limits<double>::infinity();
  void add(double v) {
    if (!std::isfinite(v)) return;
    lo = std::min(lo, v);
    hi = std::max(hi, v);
  }
  bool empty() const { return lo > hi; }
};

// A span that can be drawn: some width, even for a single value.
Span Drawable(Span s) {
  if (s.empty()) return {0, 1};
  if (s.lo == s.hi) {
    double pad = s.lo == 0 ? 1 : std::fabs(s.lo) * 0.1;
    return {s.lo - pad, s.hi + pad};
  }
  return s;
}

void ScaleLinear(QValueAxis* axis, Span s) {
  s = Drawable(s);
  axis->setTickType(QValueAxis::TicksFixed);
  axis->setRange(s.lo, s.hi);
  // Nice numbers need a finite span; a span of a few ulps would give a useless tick search.
  if (std::isfinite(s.hi - s.lo) && s.hi - s.lo > 1e-9 * std::max(std::fabs(s.lo), std::fabs(s.hi))) {
    axis->applyNiceNumbers();
  }
}

// 1, 2 or 5 times a power of ten, at least `raw`.
double NiceStep(double raw) {
  double decade = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 5.0}) {
    if (m * decade >= raw) return m * decade;
  }
  return 10 * decade;
}

QColor Mix(const QColor& a, const QColor& b, double t) {
  return QColor::fromRgbF(static_cast<float>(a.redF() + (b.redF() - a.redF()) * t),
                          static_cast<float>(a.greenF() + (b.greenF() - a.greenF()) * t),
                          static_cast<float>(a.blueF() + (b.blueF() - a.blueF()) * t));
}

void ScaleLog(QLogValueAxis* axis, Span s) {
  if (s.empty()) s = {1, 10};
  double lo = std::pow(10.0, std::floor(std::log10(s.lo)));
  double hi = std::pow(10.0, std::ceil(std::log10(s.hi)));
  if (!(hi > lo)) hi = lo * 10;
  // The axis puts its first label at the power of ten above log(min), and log(0.01) comes out a
  // hair above -2: start a hair below the decade so that its label is drawn.
  axis->setRange(lo * (1 - 1e-9), hi);
}

}  // namespace

ChartWidget::ChartWidget(QWidget* parent) : QChartView(parent) {
  setRenderHint(QPainter::Antialiasing);
  chart()->legend()->hide();
  chart()->setMargins(QMargins(4, 4, 4, 4));
  chart()->setBackgroundRoundness(0);
  xAxis_ = new QValueAxis(this);
  xAxis_->setLabelFormat("%g");
  yLinear_ = new QValueAxis(this);
  yLinear_->setLabelFormat("%g");
  yLog_ = new QLogValueAxis(this);
  yLog_->setBase(10);
  yLog_->setLabelFormat("%g");
  yLog_->setMinorTickCount(8);
  chart()->addAxis(xAxis_, Qt::AlignBottom);
  chart()->addAxis(yLinear_, Qt::AlignLeft);
  chart()->addAxis(yLog_, Qt::AlignLeft);
  yLog_->setVisible(false);
  applyPalette();
  // A refit changes the labels, which can move the plot area again: a few rounds settle it, and
  // a cap keeps two label widths from trading places forever.
  connect(chart(), &QChart::plotAreaChanged, this, [this] {
    if (refits_ < 4) {
      ++refits_;
      fitEqualScale();
    }
  });
}

void ChartWidget::applyPalette() {
  const QPalette p = palette();
  const QColor base = p.color(QPalette::Base), text = p.color(QPalette::Text);
  setBackgroundBrush(p.base());
  chart()->setBackgroundBrush(base);
  chart()->setBackgroundPen(Qt::NoPen);
  chart()->setPlotAreaBackgroundVisible(false);
  for (QAbstractAxis* axis : {static_cast<QAbstractAxis*>(xAxis_), static_cast<QAbstractAxis*>(yLinear_),
                              static_cast<QAbstractAxis*>(yLog_)}) {
    axis->setLabelsColor(text);
    axis->setLinePenColor(text);
    axis->setGridLineColor(Mix(base, text, 0.3));
    axis->setMinorGridLineColor(Mix(base, text, 0.15));
  }
}

void ChartWidget::resizeEvent(QResizeEvent* event) {
  refits_ = 0;
  QChartView::resizeEvent(event);
}

void ChartWidget::changeEvent(QEvent* event) {
  QChartView::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) applyPalette();
}

void ChartWidget::fitEqualScale() {
  if (!equal_ || type_ != Type::kLine || fitting_ || !hasData_) return;
  const QRectF area = chart()->plotArea();
  if (area.width() < 1 || area.height() < 1) return;
  double w = dataBounds_.width(), h = dataBounds_.height();
  if (w == 0 && h == 0) w = h = 2;
  // 5% room around the curve, then the larger of the two scales for both axes.
  const double unit = 1.05 * std::max(w / area.width(), h / area.height());
  if (!std::isfinite(unit * std::max(area.width(), area.height()))) return;  // spans near the double range
  fitting_ = true;
  const double halfX = unit * area.width() / 2, halfY = unit * area.height() / 2;
  const QPointF centre = dataBounds_.center();
  const double step = NiceStep(std::max(halfX, halfY) / 4);
  for (QValueAxis* axis : {xAxis_, yLinear_}) {
    axis->setTickType(QValueAxis::TicksDynamic);
    axis->setTickAnchor(0);
    axis->setTickInterval(step);
  }
  xAxis_->setRange(centre.x() - halfX, centre.x() + halfX);
  yLinear_->setRange(centre.y() - halfY, centre.y() + halfY);
  fitting_ = false;
}

void ChartWidget::setDataSets(int count) { sets_ = std::clamp(count, 1, 2); }

void ChartWidget::setPointCount(int count) {
  for (QList<QPointF>& p : points_) p.resize(std::max(count, 0));
}

int ChartWidget::pointCount(int set) const {
  return set >= 1 && set <= 2 ? static_cast<int>(points_[set - 1].size()) : 0;
}

void ChartWidget::setPoint(int set, int index, double x, double y) {
  if (set < 1 || set > 2 || index < 1 || index > points_[set - 1].size()) return;
  points_[set - 1][index - 1] = QPointF(x, y);
}

void ChartWidget::setPoints(int set, const std::vector<ChartPoint>& points) {
  QList<QPointF> list;
  list.reserve(static_cast<qsizetype>(points.size()));
  for (const ChartPoint& p : points) list.append(QPointF(p.x, p.y));
  setPoints(set, std::move(list));
}

void ChartWidget::setPoints(int set, QList<QPointF> points) {
  if (set < 1 || set > 2) return;
  points_[set - 1] = std::move(points);
}

QList<QPointF> ChartWidget::points(int set) const {
  return set >= 1 && set <= 2 ? points_[set - 1] : QList<QPointF>();
}

QList<QLineSeries*> ChartWidget::drawnSeries(int set) const {
  return set >= 1 && set <= 2 ? drawn_[set - 1] : QList<QLineSeries*>();
}

QList<QAbstractSeries*> ChartWidget::drawnShapes(int set) const {
  return set >= 1 && set <= 2 ? shapes_[set - 1] : QList<QAbstractSeries*>();
}

namespace {

// The width of bar k: up to the next point, the last one as wide as the one before it.
double BarWidth(const QList<QPointF>& p, qsizetype k) {
  if (p.size() < 2) return 1;
  return k + 1 < p.size() ? p[k + 1].x() - p[k].x() : p[k].x() - p[k - 1].x();
}

}  // namespace

void ChartWidget::drawShapes(int set, const QColor& color) {
  const QList<QPointF>& p = points_[set];
  if (p.isEmpty()) return;
  QAbstractSeries* shape;
  if (style_ == Style::kPoints) {
    auto* marks = new QScatterSeries;
    marks->replace(p);
    marks->setMarkerSize(7);
    marks->setColor(color);
    marks->setBorderColor(color);
    shape = marks;
  } else {
    // One outline up and down every bar, closed along zero: a single series however many classes.
    auto* upper = new QLineSeries;
    QList<QPointF> outline;
    outline.reserve(4 * p.size());
    for (qsizetype k = 0; k < p.size(); ++k) {
      const double x0 = p[k].x(), x1 = x0 + BarWidth(p, k);
      outline << QPointF(x0, 0) << QPointF(x0, p[k].y()) << QPointF(x1, p[k].y()) << QPointF(x1, 0);
    }
    upper->replace(outline);
    auto* lower = new QLineSeries;
    lower->append(outline.front());
    lower->append(outline.back());
    auto* area = new QAreaSeries(upper, lower);
    upper->setParent(area);
    lower->setParent(area);
    QColor fill = color;
    fill.setAlpha(110);
    area->setBrush(fill);
    area->setPen(QPen(color, 1));
    shape = area;
  }
  chart()->addSeries(shape);
  shape->attachAxis(xAxis_);
  shape->attachAxis(yLinear_);
  shapes_[set].append(shape);
}

QAbstractAxis* ChartWidget::verticalAxis() const {
  return yLog_->isVisible() ? static_cast<QAbstractAxis*>(yLog_) : yLinear_;
}

void ChartWidget::draw() {
  QChart* c = chart();
  c->removeAllSeries();
  drawn_ = {};
  shapes_ = {};
  const bool log = type_ == Type::kLogLin && style_ == Style::kLines;

  Span xs, ys;
  // Runs of drawable points per set: a log axis cannot show values of zero or below. The
  // horizontal axis still spans every point, so Log keeps the range Go showed.
  std::array<QList<QList<QPointF>>, 2> runs;
  for (int s = 0; s < sets_; ++s) {
    QList<QPointF> run;
    for (const QPointF& p : points_[s]) {
      xs.add(p.x());
      if (log && !(p.y() > 0)) {
        if (!run.isEmpty()) runs[s].append(std::move(run));
        run = {};
        continue;
      }
      ys.add(p.y());
      run.append(p);
    }
    if (!run.isEmpty()) runs[s].append(std::move(run));
    // Bars stand on zero and reach past their lower bounds.
    if (style_ == Style::kBars && !points_[s].isEmpty()) {
      ys.add(0);
      xs.add(points_[s].back().x() + BarWidth(points_[s], points_[s].size() - 1));
    }
  }

  // Marks are drawn whole, and the tallest bar stays clear of the top edge.
  if (style_ != Style::kLines && !xs.empty() && !ys.empty()) {
    const double dx = xs.hi - xs.lo, dy = ys.hi - ys.lo;
    if (style_ == Style::kPoints) {
      xs.add(xs.lo - 0.04 * dx);
      xs.add(xs.hi + 0.04 * dx);
      ys.add(ys.lo - 0.04 * dy);
    }
    ys.add(ys.hi + (style_ == Style::kPoints ? 0.04 : 0.08) * dy);
  }

  // Both vertical axes stay in the chart (a removed axis leaves its labels behind); the one
  // the type does not use is hidden.
  QAbstractAxis* yAxis = log ? static_cast<QAbstractAxis*>(yLog_) : yLinear_;
  yLinear_->setVisible(!log);
  yLog_->setVisible(log);
  ScaleLinear(xAxis_, xs);
  if (log) {
    ScaleLog(yLog_, ys);
    yLog_->setMinorGridLineVisible(grid_);
  } else {
    ScaleLinear(yLinear_, ys);
  }
  xAxis_->setGridLineVisible(grid_);
  yAxis->setGridLineVisible(grid_);
  refits_ = 0;
  hasData_ = !xs.empty() && !ys.empty();
  if (hasData_) dataBounds_ = QRectF(QPointF(xs.lo, ys.lo), QPointF(xs.hi, ys.hi));
  fitEqualScale();

  for (int s = 0; s < sets_; ++s) {
    if (style_ != Style::kLines) {
      drawShapes(s, kSetColors[s]);
      continue;
    }
    QPen pen(kSetColors[s]);
    pen.setWidthF(thin_ ? 1.0 : 2.0);
    pen.setStyle(styles_[s]);
    for (QList<QPointF>& run : runs[s]) {
      auto* series = new QLineSeries;
      series->replace(run);
      series->setPen(pen);
      c->addSeries(series);
      series->attachAxis(xAxis_);
      series->attachAxis(yAxis);
      drawn_[s].append(series);
    }
  }
}

QString ChartWidget::csvText() const {
  QString text = sets_ == 2 ? "x1,y1,x2,y2\n" : "x,y\n";
  auto num = [](double v) { return QString::fromStdString(PlainText(v)); };
  const qsizetype rows = sets_ == 2 ? std::max(points_[0].size(), points_[1].size()) : points_[0].size();
  for (qsizetype i = 0; i < rows; ++i) {
    for (int s = 0; s < sets_; ++s) {
      if (s > 0) text += ',';
      if (i < points_[s].size()) text += num(points_[s][i].x()) + ',' + num(points_[s][i].y());
      else text += ',';
    }
    text += '\n';
  }
  return text;
}

namespace {

// Every file goes through the one atomic writer, with its rules on links and modes.
FileResult WriteBytes(const QString& path, const QByteArray& bytes) {
  return WriteFileAtomically(QFile::encodeName(path).toStdString(), std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())));
}

}  // namespace

FileResult ChartWidget::savePng(const QString& path) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  if (!grab().save(&buffer, "PNG")) return {"the image could not be encoded"};
  return WriteBytes(path, bytes);
}

FileResult ChartWidget::saveSvg(const QString& path) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QSvgGenerator svg;
  svg.setOutputDevice(&buffer);
  svg.setSize(size());
  svg.setViewBox(QRect(QPoint(0, 0), size()));
  QPainter painter;
  if (!painter.begin(&svg)) return {"the image could not be encoded"};
  render(&painter);
  painter.end();
  return WriteBytes(path, bytes);
}

FileResult ChartWidget::saveCsv(const QString& path) const { return WriteBytes(path, csvText().toUtf8()); }

void ChartWidget::exportAs(const QString& suffix) {
  const QString filter = suffix.toUpper() + " (*." + suffix + ")";
  QString path = QFileDialog::getSaveFileName(this, tr("Save Chart"), "graph." + suffix, filter);
  if (path.isEmpty()) return;
  const FileResult r = suffix == "png" ? savePng(path) : suffix == "svg" ? saveSvg(path) : saveCsv(path);
  // A failed write leaves any older file whole; the user only needs to know why.
  if (!r) QMessageBox::warning(this, tr("Save Chart"), tr("The file could not be written: %1").arg(QString::fromStdString(r.error)));
}

void ChartWidget::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  QAction* png = menu.addAction(tr("Save as PNG..."));
  QAction* svg = menu.addAction(tr("Save as SVG..."));
  QAction* csv = menu.addAction(tr("Save as CSV..."));
  QAction* chosen = menu.exec(event->globalPos());
  if (chosen == png) exportAs("png");
  else if (chosen == svg) exportAs("svg");
  else if (chosen == csv) exportAs("csv");
}

}  // namespace merida

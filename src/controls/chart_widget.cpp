// The chart control on QtCharts.
#include "controls/chart_widget.h"

#include <QAction>
#include <QAreaSeries>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QLegendMarker>
#include <QMouseEvent>
#include <QToolButton>
#include <QWheelEvent>
#include <QFileDialog>
#include <QLogValueAxis>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QScatterSeries>
#include <QSvgGenerator>
#include <QValueAxis>
#include <algorithm>
#include <cmath>
#include <limits>

#include "controls/axis_scale.h"
#include "engine/atomic_file.h"
#include "engine/number_text.h"

namespace merida {
namespace {

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

// Pixels a labelled tick needs along each axis: numbers are wider than they are tall.
constexpr double kPixelsPerXTick = 90, kPixelsPerYTick = 42;

void ScaleLinear(QValueAxis* axis, Span s, double pixels, double perTick) {
  const AxisScale a = s.empty() ? AxisScale{} : NiceScale(s.lo, s.hi, TickBudget(pixels, perTick));
  axis->setTickType(QValueAxis::TicksFixed);
  axis->setRange(a.lo, a.hi);
  axis->setTickCount(std::clamp(a.ticks, 2, 13));
}

// A zoomed range keeps its edges where the user put them; ticks fall on round values inside it.
void ScaleView(QValueAxis* axis, double lo, double hi, double pixels, double perTick) {
  const AxisScale a = NiceScale(lo, hi, TickBudget(pixels, perTick), 0);
  axis->setRange(lo, hi);
  if (a.step > 0 && std::isfinite(a.step)) {
    axis->setTickType(QValueAxis::TicksDynamic);
    axis->setTickAnchor(0);
    axis->setTickInterval(a.step);
  }
}

QColor ToQColor(Rgb c) { return QColor(c.r, c.g, c.b); }

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
      applyRanges();
    }
  });
  setMouseTracking(true);
  setFocusPolicy(Qt::ClickFocus);
  setRubberBand(QChartView::NoRubberBand);

  exportButton_ = new QToolButton(this);
  exportButton_->setObjectName(QStringLiteral("ExportButton"));
  exportButton_->setText(tr("Export"));
  exportButton_->setToolTip(tr("Save the chart as PNG, SVG or CSV (Ctrl+S); Ctrl+C copies it"));
  exportButton_->setAutoRaise(true);
  exportButton_->setFocusPolicy(Qt::NoFocus);
  connect(exportButton_, &QToolButton::clicked, this, &ChartWidget::exportChart);
  auto* save = new QAction(this);
  save->setShortcut(QKeySequence::Save);
  save->setShortcutContext(Qt::WindowShortcut);
  connect(save, &QAction::triggered, this, [this] {
    if (isVisible()) exportChart();
  });
  addAction(save);
  auto* copy = new QAction(this);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, &ChartWidget::copyImage);
  addAction(copy);
}

void ChartWidget::placeExportButton() {
  exportButton_->adjustSize();
  // A chart too small for it keeps Ctrl+S and the context menu.
  exportButton_->setVisible(width() >= 3 * exportButton_->width());
  exportButton_->move(std::max(0, width() - exportButton_->width() - 2), 2);
  exportButton_->raise();
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
    axis->setTitleBrush(text);
  }
  chart()->legend()->setLabelColor(text);
  // The curves take colours that read on this background.
  for (int s = 0; s < 2; ++s) {
    const QColor color = setColor(s + 1);
    for (QLineSeries* series : drawn_[s]) {
      QPen pen = series->pen();
      pen.setColor(color);
      series->setPen(pen);
    }
    for (QAbstractSeries* shape : shapes_[s]) {
      if (auto* marks = qobject_cast<QScatterSeries*>(shape)) {
        marks->setColor(color);
        marks->setBorderColor(color);
      } else if (auto* area = qobject_cast<QAreaSeries*>(shape)) {
        QColor fill = color;
        fill.setAlpha(110);
        area->setBrush(fill);
        area->setPen(QPen(color, 1));
      }
    }
  }
}

QColor ChartWidget::setColor(int set) const {
  const QColor base = palette().color(QPalette::Base);
  return ToQColor(SeriesColor(set, Rgb{static_cast<std::uint8_t>(base.red()), static_cast<std::uint8_t>(base.green()),
                                       static_cast<std::uint8_t>(base.blue())}));
}

void ChartWidget::setAxisTitles(const QString& x, const QString& y) {
  xAxis_->setTitleText(x);
  yLinear_->setTitleText(y);
  yLog_->setTitleText(y);
  for (QAbstractAxis* axis : {static_cast<QAbstractAxis*>(xAxis_), static_cast<QAbstractAxis*>(yLinear_),
                              static_cast<QAbstractAxis*>(yLog_)}) {
    axis->setTitleVisible(!axis->titleText().isEmpty());
    QFont f = axis->titleFont();
    f.setPointSizeF(font().pointSizeF());
    f.setBold(false);
    axis->setTitleFont(f);
  }
}

void ChartWidget::setSetNames(const QString& first, const QString& second) {
  names_[0] = first;
  names_[1] = second;
}

void ChartWidget::setFitLine(std::optional<std::pair<QPointF, QPointF>> line, const QString& name) {
  fitLine_ = std::move(line);
  fitName_ = name;
}

void ChartWidget::resizeEvent(QResizeEvent* event) {
  refits_ = 0;
  QChartView::resizeEvent(event);
  placeExportButton();
  applyRanges();
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
  shape->setName(names_[set]);
  chart()->addSeries(shape);
  shape->attachAxis(xAxis_);
  shape->attachAxis(yLinear_);
  for (QLegendMarker* m : chart()->legend()->markers(shape)) m->setVisible(!names_[set].isEmpty());
  shapes_[set].append(shape);
}

QAbstractAxis* ChartWidget::verticalAxis() const {
  return yLog_->isVisible() ? static_cast<QAbstractAxis*>(yLog_) : yLinear_;
}

void ChartWidget::applyRanges() {
  if (fitting_) return;
  const bool log = yLog_->isVisible();
  const QRectF area = chart()->plotArea();
  const double w = area.width() > 20 ? area.width() : width() - 80.0;
  const double h = area.height() > 20 ? area.height() : height() - 60.0;
  if (view_) {
    ScaleView(xAxis_, view_->left(), view_->right(), w, kPixelsPerXTick);
    if (log) {
      yLog_->setRange(view_->top(), view_->bottom());
    } else {
      ScaleView(yLinear_, view_->top(), view_->bottom(), h, kPixelsPerYTick);
    }
    return;
  }
  Span xs, ys;
  if (hasData_) {
    xs.add(dataBounds_.left());
    xs.add(dataBounds_.right());
    ys.add(dataBounds_.top());
    ys.add(dataBounds_.bottom());
  }
  ScaleLinear(xAxis_, xs, w, kPixelsPerXTick);
  if (log) {
    ScaleLog(yLog_, ys);
  } else {
    ScaleLinear(yLinear_, ys, h, kPixelsPerYTick);
  }
  fitEqualScale();
}

void ChartWidget::draw() {
  setGraphicsEffect(nullptr);  // what it draws now is current: a window's greying ends
  QChart* c = chart();
  c->removeAllSeries();
  drawn_ = {};
  shapes_ = {};
  view_.reset();
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
  if (fitLine_ && !log) {
    for (const QPointF& p : {fitLine_->first, fitLine_->second}) {
      xs.add(p.x());
      ys.add(p.y());
    }
  }

  // Both vertical axes stay in the chart (a removed axis leaves its labels behind); the one
  // the type does not use is hidden.
  QAbstractAxis* yAxis = log ? static_cast<QAbstractAxis*>(yLog_) : yLinear_;
  yLinear_->setVisible(!log);
  yLog_->setVisible(log);
  if (log) yLog_->setMinorGridLineVisible(grid_);
  xAxis_->setGridLineVisible(grid_);
  yAxis->setGridLineVisible(grid_);
  refits_ = 0;
  hasData_ = !xs.empty() && !ys.empty();
  if (hasData_) dataBounds_ = QRectF(QPointF(xs.lo, ys.lo), QPointF(xs.hi, ys.hi));
  applyRanges();

  bool named = false;
  for (int s = 0; s < sets_; ++s) {
    if (style_ != Style::kLines) {
      drawShapes(s, setColor(s + 1));
      continue;
    }
    QPen pen(setColor(s + 1));
    pen.setWidthF(thin_ ? 1.0 : 2.0);
    pen.setStyle(styles_[s]);
    for (QList<QPointF>& run : runs[s]) {
      auto* series = new QLineSeries;
      series->replace(run);
      series->setPen(pen);
      series->setName(names_[s]);
      c->addSeries(series);
      series->attachAxis(xAxis_);
      series->attachAxis(yAxis);
      // One legend entry per set, however many runs a log axis broke it into.
      for (QLegendMarker* m : c->legend()->markers(series)) m->setVisible(drawn_[s].isEmpty() && !names_[s].isEmpty());
      drawn_[s].append(series);
    }
    named = named || !names_[s].isEmpty();
  }
  if (fitLine_ && !log) {
    auto* line = new QLineSeries;
    line->append(fitLine_->first);
    line->append(fitLine_->second);
    QPen pen(setColor(2));
    pen.setWidthF(1.5);
    line->setPen(pen);
    line->setName(fitName_);
    c->addSeries(line);
    line->attachAxis(xAxis_);
    line->attachAxis(yLinear_);
    for (QLegendMarker* m : c->legend()->markers(line)) m->setVisible(!fitName_.isEmpty());
    named = named || !fitName_.isEmpty();
  }
  // A legend only where there is something to tell apart.
  const bool legend = named && (sets_ == 2 || (fitLine_ && !log));
  c->legend()->setVisible(legend);
  if (legend) c->legend()->setAlignment(Qt::AlignTop);
}

QRectF ChartWidget::shownRange() const {
  const bool log = yLog_->isVisible();
  return QRectF(QPointF(xAxis_->min(), log ? yLog_->min() : yLinear_->min()),
                QPointF(xAxis_->max(), log ? yLog_->max() : yLinear_->max()));
}

void ChartWidget::zoomBy(double factor, QPointF centre) {
  if (!hasData_ || !(factor > 0)) return;
  const bool log = yLog_->isVisible();
  const QRectF v = shownRange();
  const double l = centre.x() - (centre.x() - v.left()) * factor, r = centre.x() + (v.right() - centre.x()) * factor;
  double t = v.top(), b = v.bottom();
  if (!log) {
    t = centre.y() - (centre.y() - v.top()) * factor;
    b = centre.y() + (v.bottom() - centre.y()) * factor;
  }
  // Stop before the range is too narrow to label or too wide to hold.
  if (!(r - l > 1e-12 * std::max(std::fabs(l), 1.0)) || !std::isfinite(r - l) || !(b - t > 0) || !std::isfinite(b - t)) return;
  view_ = QRectF(QPointF(l, t), QPointF(r, b));
  applyRanges();
}

void ChartWidget::resetView() {
  view_.reset();
  refits_ = 0;
  applyRanges();
}

void ChartWidget::wheelEvent(QWheelEvent* event) {
  const QPointF at = chart()->mapToValue(event->position(), nullptr);
  if (!chart()->plotArea().contains(event->position())) {
    QChartView::wheelEvent(event);
    return;
  }
  zoomBy(std::pow(0.999, event->angleDelta().y()), at);
  event->accept();
}

void ChartWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && chart()->plotArea().contains(event->position())) {
    dragFrom_ = event->position().toPoint();
    setCursor(Qt::ClosedHandCursor);
    event->accept();
    return;
  }
  QChartView::mousePressEvent(event);
}

void ChartWidget::mouseMoveEvent(QMouseEvent* event) {
  if (dragFrom_ && hasData_) {
    const QPoint now = event->position().toPoint();
    const QPointF from = chart()->mapToValue(*dragFrom_), to = chart()->mapToValue(now);
    const bool log = yLog_->isVisible();
    QRectF v = shownRange();
    v.translate(from.x() - to.x(), log ? 0 : from.y() - to.y());
    view_ = v;
    dragFrom_ = now;
    applyRanges();
  }
  showReadout(event->position());
  QChartView::mouseMoveEvent(event);
}

void ChartWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (dragFrom_) {
    dragFrom_.reset();
    unsetCursor();
    event->accept();
    return;
  }
  QChartView::mouseReleaseEvent(event);
}

void ChartWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  resetView();
  event->accept();
}

void ChartWidget::leaveEvent(QEvent* event) {
  emit readout(QString());
  QChartView::leaveEvent(event);
}

void ChartWidget::showReadout(QPointF pos) {
  if (!hasData_ || !chart()->plotArea().contains(pos)) {
    emit readout(QString());
    return;
  }
  auto num = [](double v) { return QString::fromStdString(PlainText(v)); };
  // The nearest stored point within a few pixels, else the cursor's own place.
  double best = 12 * 12;
  int bestSet = -1;
  QPointF bestPoint;
  for (int s = 0; s < sets_; ++s) {
    QAbstractSeries* on = !drawn_[s].isEmpty() ? static_cast<QAbstractSeries*>(drawn_[s].front())
                          : !shapes_[s].isEmpty() ? shapes_[s].front() : nullptr;
    if (!on) continue;
    for (const QPointF& p : points_[s]) {
      const QPointF at = chart()->mapToPosition(p, on);
      const double d = (at.x() - pos.x()) * (at.x() - pos.x()) + (at.y() - pos.y()) * (at.y() - pos.y());
      if (d < best) {
        best = d;
        bestSet = s;
        bestPoint = p;
      }
    }
  }
  if (bestSet >= 0) {
    QString text = QStringLiteral("x = %1   y = %2").arg(num(bestPoint.x()), num(bestPoint.y()));
    if (!names_[bestSet].isEmpty()) text += QStringLiteral("   (%1)").arg(names_[bestSet]);
    emit readout(text);
    return;
  }
  QAbstractSeries* any = nullptr;
  for (int s = 0; s < sets_ && !any; ++s) {
    if (!drawn_[s].isEmpty()) any = drawn_[s].front();
    else if (!shapes_[s].isEmpty()) any = shapes_[s].front();
  }
  if (!any) {
    emit readout(QString());
    return;
  }
  const QPointF v = chart()->mapToValue(pos, any);
  emit readout(QStringLiteral("x = %1   y = %2").arg(num(v.x()), num(v.y())));
}

void ChartWidget::copyImage() { QGuiApplication::clipboard()->setPixmap(grab()); }

void ChartWidget::exportChart() {
  const QString png = tr("PNG image (*.png)"), svg = tr("SVG drawing (*.svg)"), csv = tr("CSV points (*.csv)");
  QString filter = png;
  QString path = QFileDialog::getSaveFileName(this, tr("Save Chart"), QStringLiteral("graph.png"),
                                              png + ";;" + svg + ";;" + csv, &filter);
  if (path.isEmpty()) return;
  QString suffix = QFileInfo(path).suffix().toLower();
  if (suffix != "png" && suffix != "svg" && suffix != "csv") {
    suffix = filter == svg ? "svg" : filter == csv ? "csv" : "png";
    path += '.' + suffix;
  }
  const FileResult r = suffix == "png" ? savePng(path) : suffix == "svg" ? saveSvg(path) : saveCsv(path);
  if (!r) QMessageBox::warning(this, tr("Save Chart"), tr("The file could not be written: %1").arg(QString::fromStdString(r.error)));
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
  menu.addSeparator();
  QAction* copy = menu.addAction(tr("Copy Image"));
  QAction* reset = menu.addAction(tr("Reset Zoom"));
  reset->setEnabled(zoomed());
  QAction* chosen = menu.exec(event->globalPos());
  if (chosen == copy) copyImage();
  else if (chosen == reset) resetView();
  else if (chosen == png) exportAs("png");
  else if (chosen == svg) exportAs("svg");
  else if (chosen == csv) exportAs("csv");
}

}  // namespace merida

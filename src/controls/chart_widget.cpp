// The chart control on QtCharts.
#include "controls/chart_widget.h"

#include <QContextMenuEvent>
#include <QFileDialog>
#include <QLogValueAxis>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QSaveFile>
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
    lo = std::min(lo, v);
    hi = std::max(hi, v);
  }
  bool empty() const { return lo > hi; }
};

void ScaleLinear(QValueAxis* axis, Span s) {
  if (s.empty()) s = {0, 1};
  if (s.lo == s.hi) {
    double pad = s.lo == 0 ? 1 : std::fabs(s.lo) * 0.1;
    s = {s.lo - pad, s.hi + pad};
  }
  axis->setRange(s.lo, s.hi);
  // Nice numbers need a finite span; a span of a few ulps would give a useless tick search.
  if (std::isfinite(s.hi - s.lo) && s.hi - s.lo > 1e-9 * std::max(std::fabs(s.lo), std::fabs(s.hi))) {
    axis->applyNiceNumbers();
  }
}

void ScaleLog(QLogValueAxis* axis, Span s) {
  if (s.empty()) s = {1, 10};
  double lo = std::pow(10.0, std::floor(std::log10(s.lo)));
  double hi = std::pow(10.0, std::ceil(std::log10(s.hi)));
  if (!(hi > lo)) hi = lo * 10;
  axis->setRange(lo, hi);
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

QAbstractAxis* ChartWidget::verticalAxis() const {
  return yLog_->isVisible() ? static_cast<QAbstractAxis*>(yLog_) : yLinear_;
}

void ChartWidget::draw() {
  QChart* c = chart();
  c->removeAllSeries();
  drawn_ = {};
  const bool log = type_ == Type::kLogLin;

  Span xs, ys;
  // Runs of drawable points per set: a log axis cannot show values of zero or below.
  std::array<QList<QList<QPointF>>, 2> runs;
  for (int s = 0; s < sets_; ++s) {
    QList<QPointF> run;
    for (const QPointF& p : points_[s]) {
      if (log && !(p.y() > 0)) {
        if (!run.isEmpty()) runs[s].append(std::move(run));
        run = {};
        continue;
      }
      xs.add(p.x());
      ys.add(p.y());
      run.append(p);
    }
    if (!run.isEmpty()) runs[s].append(std::move(run));
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

  for (int s = 0; s < sets_; ++s) {
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

bool ChartWidget::savePng(const QString& path) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return false;
  return grab().save(&file, "PNG") && file.commit();
}

bool ChartWidget::saveSvg(const QString& path) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return false;
  QSvgGenerator svg;
  svg.setOutputDevice(&file);
  svg.setSize(size());
  svg.setViewBox(QRect(QPoint(0, 0), size()));
  QPainter painter;
  if (!painter.begin(&svg)) return false;
  render(&painter);
  painter.end();
  return file.commit();
}

bool ChartWidget::saveCsv(const QString& path) const {
  return WriteFileAtomically(path.toStdString(), csvText().toStdString());
}

void ChartWidget::exportAs(const QString& suffix) {
  const QString filter = suffix.toUpper() + " (*." + suffix + ")";
  QString path = QFileDialog::getSaveFileName(this, tr("Save Chart"), "graph." + suffix, filter);
  if (path.isEmpty()) return;
  bool ok = suffix == "png" ? savePng(path) : suffix == "svg" ? saveSvg(path) : saveCsv(path);
  // A failed write leaves any older file whole; the user only needs to know.
  if (!ok) QMessageBox::warning(this, tr("Save Chart"), tr("The file could not be written."));
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

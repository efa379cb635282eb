// The Negative Function window.
#include "graph/negative_function_window.h"

#include <QPainter>
#include <memory>

#include "controls/axis_scale.h"
#include "engine/number_text.h"

namespace merida {

SegmentPicture::SegmentPicture(QWidget* parent) : QWidget(parent) {
  setMinimumSize(360, 360);
}

void SegmentPicture::setCurve(std::vector<Segment> segments, double xMin, double xMax, double yMin,
                              double yMax) {
  segments_ = std::move(segments);
  xMin_ = xMin;
  xMax_ = xMax;
  yMin_ = yMin;
  yMax_ = yMax;
  update();
}

void SegmentPicture::setPrintMode(bool on) {
  print_ = on;
  update();
}

void SegmentPicture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const int margin = 28;
  const QRectF area(margin, 8, width() - margin - 8, height() - margin - 8);
  auto map = [&](double x, double y) {
    return QPointF(area.left() + (x - xMin_) / (xMax_ - xMin_) * area.width(),
                   area.bottom() - (y - yMin_) / (yMax_ - yMin_) * area.height());
  };
  // The screen drawing follows the palette (a dark theme gets a dark area); the one meant for
  // paper stays black on white.
  const QColor paper = print_ ? QColor(Qt::white) : palette().color(QPalette::Base);
  const QColor ink = print_ ? QColor(Qt::black) : palette().color(QPalette::Text);
  painter.fillRect(rect(), paper);
  painter.setPen(QPen(ink, 1));
  painter.drawRect(area);

  if (!print_) {
    const QColor axes = QColor::fromRgbF((paper.redF() + ink.redF()) / 2, (paper.greenF() + ink.greenF()) / 2,
                                         (paper.blueF() + ink.blueF()) / 2);
    painter.setPen(QPen(axes, 1, Qt::DashLine));
    if (xMin_ < 0 && xMax_ > 0) painter.drawLine(map(0, yMin_), map(0, yMax_));
    if (yMin_ < 0 && yMax_ > 0) painter.drawLine(map(xMin_, 0), map(xMax_, 0));
  }
  painter.setPen(ink);
  auto label = [](double v) { return QString::fromStdString(PlainText(Round15(v))); };
  const QFontMetrics fm = painter.fontMetrics();
  painter.drawText(QPointF(area.left(), area.bottom() + fm.height()), label(xMin_));
  QString xMax = label(xMax_);
  painter.drawText(QPointF(area.right() - fm.horizontalAdvance(xMax), area.bottom() + fm.height()), xMax);
  painter.save();
  painter.translate(area.left() - 6, area.bottom());
  painter.rotate(-90);
  painter.drawText(QPointF(0, 0), label(yMin_));
  QString yMax = label(yMax_);
  painter.drawText(QPointF(area.height() - fm.horizontalAdvance(yMax), 0), yMax);
  painter.restore();

  painter.setClipRect(area);
  // Blue, lightened where the theme's paper is too dark for it.
  const Rgb blue = SeriesColor(1, {static_cast<std::uint8_t>(paper.red()), static_cast<std::uint8_t>(paper.green()),
                                   static_cast<std::uint8_t>(paper.blue())});
  painter.setPen(print_ ? QPen(Qt::black, 2) : QPen(QColor(blue.r, blue.g, blue.b), 1.5));
  for (const Segment& s : segments_) painter.drawLine(map(s.x1, s.y1), map(s.x2, s.y2));
}

NegativeFunctionWindow::NegativeFunctionWindow(Engine& engine, AppState& state,
                                               std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setupUi(this);

  connect(Command1, &QPushButton::clicked, this, &NegativeFunctionWindow::plot);
  pressOnEnter({Text1, Text2, Text3, Text4, Text5, Text6}, Command1);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Command3, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Check1, &QCheckBox::toggled, Picture1, &SegmentPicture::setPrintMode);
}

void NegativeFunctionWindow::retranslate() { retranslateUi(this); }

void NegativeFunctionWindow::plot() {
  if (jobRunning()) {
    stopJob();  // Go reads "Stop" while the grid is computed
    return;
  }
  GridBoxes boxes{Text1->text().toStdString(), Text2->text().toStdString(), Text3->text().toStdString(),
                  Text4->text().toStdString(), Text5->text().toStdString(), Text6->text().toStdString()};
  auto result = std::make_shared<GridResult>();
  auto curve = std::make_shared<std::vector<Segment>>();
  startJob(
      Command1,
      [result, curve, boxes, formula = formula_().toStdString()](ToolRun& run) {
        *result = EvaluateGrid(run.engine, formula, boxes);
        if (result->end == GridEnd::kCompleted) *curve = TraceLevel(result->grid, 0, &run.engine);
      },
      [this, result, curve](ToolRun&) {
        const GridResult& r = *result;
        if (r.xDivisionsBox) Text3->setText(QString::fromStdString(*r.xDivisionsBox));
        if (r.yDivisionsBox) Text6->setText(QString::fromStdString(*r.yDivisionsBox));
        if (r.end != GridEnd::kCompleted) return;
        const ContourGrid& g = r.grid;
        Picture1->setCurve(std::move(*curve), g.xMin, g.xMax, g.yMin, g.yMax);
      });
}

}  // namespace merida

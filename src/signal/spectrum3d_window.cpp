// The Time Continuous Spectrum window: the matrix comes from the FFT window's 3D button.
#include "signal/spectrum3d_window.h"

#include <QEvent>
#include <QLinearGradient>
#include <QOffscreenSurface>
#include <cmath>
#include <QOpenGLContext>
#include <QtDataVisualization/Q3DCamera>
#include <QtDataVisualization/Q3DScene>
#include <QtDataVisualization/Q3DTheme>
#include <QtDataVisualization/QSurfaceDataProxy>
#include <QtDataVisualization/QValue3DAxis>

namespace merida {

QSurfaceDataArray* SurfaceRows(const std::vector<std::vector<float>>& matrix, double perPoint, double perFrame) {
  auto* rows = new QSurfaceDataArray;
  rows->reserve(static_cast<qsizetype>(matrix.size()));
  for (size_t f = 0; f < matrix.size(); ++f) {
    auto* row = new QSurfaceDataRow(static_cast<qsizetype>(matrix[f].size()));
    for (size_t p = 0; p < matrix[f].size(); ++p) {
      (*row)[static_cast<qsizetype>(p)].setPosition(
          QVector3D(static_cast<float>(static_cast<double>(p) * perPoint), matrix[f][p],
                    static_cast<float>(static_cast<double>(f) * perFrame)));
    }
    rows->append(row);
  }
  return rows;
}

bool OpenGlAvailable() {
  QOpenGLContext context;
  if (!context.create()) return false;
  // A context that cannot be made current on a surface draws nothing either.
  QOffscreenSurface surface;
  surface.setFormat(context.format());
  surface.create();
  if (!surface.isValid()) return false;
  const bool current = context.makeCurrent(&surface);
  if (current) context.doneCurrent();
  return current;
}

SpectrumWindow::SpectrumWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setupUi(this);
  if (OpenGlAvailable()) {
    graph_ = new Q3DSurface;
    if (graph_->hasContext()) {
      series_ = new QSurface3DSeries;
      series_->setDrawMode(QSurface3DSeries::DrawSurface);
      series_->setFlatShadingEnabled(false);
      QLinearGradient gradient;
      gradient.setColorAt(0.0, Qt::darkBlue);
      gradient.setColorAt(0.3, Qt::cyan);
      gradient.setColorAt(0.6, Qt::yellow);
      gradient.setColorAt(1.0, Qt::red);
      series_->setBaseGradient(gradient);
      series_->setColorStyle(Q3DTheme::ColorStyleRangeGradient);
      graph_->addSeries(series_);
      graph_->axisY()->setRange(0, 100);
      // By default the floor takes the shape of the axis ranges: a few frames by 512 points is a sliver.
      graph_->setHorizontalAspectRatio(1.0);
      graph_->axisX()->setTitleVisible(true);
      graph_->axisY()->setTitleVisible(true);
      graph_->axisZ()->setTitleVisible(true);
      graph_->scene()->activeCamera()->setCameraPreset(Q3DCamera::CameraPresetIsometricLeftHigh);
      graph_->scene()->activeCamera()->setZoomLevel(72);  // the near corner's labels stay in view
      // The theme's labels are sized for a full-screen scene: at the window's size they would be
      // a few pixels high.
      QFont labels = graph_->activeTheme()->font();
      labels.setPointSizeF(labels.pointSizeF() * 3);
      graph_->activeTheme()->setFont(labels);
      for (QValue3DAxis* axis : {graph_->axisX(), graph_->axisY(), graph_->axisZ()}) axis->setLabelFormat("%.4g");
      graph_->axisY()->setSegmentCount(4);
      followPalette();
      Container = QWidget::createWindowContainer(graph_, this);
      Container->setObjectName("Container");
    } else {
      delete graph_;
      graph_ = nullptr;
    }
  }
  if (!Container) {
    NoGraphics = new QLabel(this);
    NoGraphics->setObjectName("NoGraphics");
    NoGraphics->setAlignment(Qt::AlignCenter);
    NoGraphics->setWordWrap(true);
    NoGraphics->setMinimumSize(480, 320);
    windowLayout->insertWidget(0, NoGraphics, 1);
  } else {
    Container->setMinimumSize(480, 320);
    windowLayout->insertWidget(0, Container, 1);
  }

  connect(Command1, &QPushButton::clicked, this, &SpectrumWindow::print);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  retranslate();
}

void SpectrumWindow::retranslate() {
  retranslateUi(this);
  if (NoGraphics) NoGraphics->setText(tr("The surface cannot be drawn: OpenGL is not available here."));
  if (graph_) {
    graph_->axisX()->setTitle(hertz_ ? tr("Frequency (Hz)") : tr("Frequency (cycles per unit of x)"));
    graph_->axisY()->setTitle(tr("Percent"));
    graph_->axisZ()->setTitle(hertz_ ? tr("Time (s)") : tr("Time (units of x)"));
  }
}

void SpectrumWindow::setMatrix(const std::vector<std::vector<float>>& matrix, double frameDuration, bool seconds) {
  frames_ = static_cast<int>(matrix.size());
  points_ = matrix.empty() ? 0 : static_cast<int>(matrix.front().size());
  hertz_ = seconds;
  retranslate();
  if (!series_) return;
  // Point k of a frame T long is k / T cycles per unit; frame f starts f T after the first.
  const double t = frameDuration > 0 && std::isfinite(frameDuration) ? frameDuration : 1;
  series_->dataProxy()->resetArray(SurfaceRows(matrix, 1 / t, t));
}

void SpectrumWindow::print() {
  if (!graph_) {
    printWindow();
    return;
  }
  // A window container grabs as an empty rectangle: the surface renders itself for the page.
  printPage([this](QPainter& painter, const QRect& page) {
    QImage image = graph_->renderToImage(0, Container->size().expandedTo(QSize(1, 1)) * 2);
    const QSize shown = image.size().scaled(page.size(), Qt::KeepAspectRatio);
    painter.drawImage(QRect(page.topLeft(), shown), image);
  });
}

void SpectrumWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) followPalette();
  ToolWindow::changeEvent(event);
}

void SpectrumWindow::followPalette() {
  if (!graph_) return;
  Q3DTheme* theme = graph_->activeTheme();
  const QPalette& p = palette();
  theme->setWindowColor(p.color(QPalette::Window));
  theme->setBackgroundColor(p.color(QPalette::Base));
  theme->setLabelBackgroundColor(p.color(QPalette::Base));
  theme->setLabelTextColor(p.color(QPalette::Text));
  theme->setGridLineColor(p.color(QPalette::Mid));
}

}  // namespace merida

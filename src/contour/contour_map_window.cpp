// The Contour Map window and the Axis Angle dialog.
#include "contour/contour_map_window.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMenu>
#include <QMessageBox>
#include <QShortcut>
#include <QVBoxLayout>

#include "engine/number_text.h"

namespace merida {

ContourMapWidget::ContourMapWidget(QWidget* parent) : QWidget(parent) {
  setMinimumSize(240, 240);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void ContourMapWidget::setScene(MapScene scene) {
  scene_ = std::move(scene);
  update();
}

void ContourMapWidget::setPrintMode(bool on) {
  print_ = on;
  update();
}

MapStyle ContourMapWidget::mapStyle() const {
  // On screen the frame and labels follow the palette, so a dark theme gets a dark map.
  if (print_) return MapStyle{Qt::white, Qt::black, true};
  return MapStyle{palette().color(QPalette::Base), palette().color(QPalette::Text), false};
}

QImage ContourMapWidget::image() const { return RenderMap(scene_, size(), mapStyle(), devicePixelRatioF()); }

void ContourMapWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setFont(font());
  PaintMap(painter, scene_, QRectF(rect()), mapStyle());
}

void ContourMapWidget::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  menu.addAction(tr("Save Image..."), this, &ContourMapWidget::saveRequested);
  menu.exec(event->globalPos());
}

AxisAngleWindow::AxisAngleWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setObjectName("AxisAngleWindow");
  Frame1 = new QGroupBox;
  Frame1->setObjectName("Frame1");
  Text1 = makeBox("Text1");
  Text2 = makeBox("Text2");
  QLabel** labels[] = {&Label1, &Label2, &Label3};
  for (int k = 0; k < 3; ++k) {
    *labels[k] = new QLabel;
    (*labels[k])->setObjectName(QStringLiteral("Label%1").arg(k + 1));
  }
  auto* grid = new QGridLayout(Frame1);
  grid->addWidget(Label1, 0, 0);
  grid->addWidget(Text1, 0, 1);
  grid->addWidget(Label2, 1, 0);
  grid->addWidget(Text2, 1, 1);
  grid->addWidget(Label3, 0, 2, 2, 1);
  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(Command1);
  buttons->addWidget(Command2);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Frame1);
  layout->addLayout(buttons);

  connect(Command1, &QPushButton::clicked, this, &AxisAngleWindow::decide);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  pressOnEnter({Text1, Text2}, Command1);
  retranslate();
  load();
}

void AxisAngleWindow::retranslate() {
  setWindowTitle(tr("Axis Angle"));
  Frame1->setTitle(tr("Angle"));
  Label1->setText(tr("Xaxis"));
  Label2->setText(tr("Yaxis"));
  Label3->setText(tr("Deg"));
  Command1->setText(tr("Decide"));
  Command2->setText(tr("Close"));
}

void AxisAngleWindow::load() {
  Text1->setText(QString::fromStdString(PlainText(state_.ViewAngleX)));
  Text2->setText(QString::fromStdString(PlainText(state_.ViewAngleY)));
}

void AxisAngleWindow::decide() {
  std::optional<ViewAngles> v = DecideAngles(Text1->text().toStdString(), Text2->text().toStdString());
  if (v) {
    state_.ViewAngleX = v->x;
    state_.ViewAngleY = v->y;
  }
  load();
}

void AxisAngleWindow::closeEvent(QCloseEvent* event) {
  load();
  QWidget::closeEvent(event);
}

ContourMapWindow::ContourMapWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setObjectName("ContourMapWindow");
  Picture1 = new ContourMapWidget;
  Picture1->setObjectName("Picture1");
  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");
  Command3 = makeButton("Command3");
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  for (QPushButton* b : {Command3, Command2, Command1}) buttons->addWidget(b);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Picture1, 1);
  layout->addLayout(buttons);
  resize(560, 600);

  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
  connect(Command2, &QPushButton::clicked, this, &ContourMapWindow::openAngle);
  connect(Command3, &QPushButton::clicked, this, &ContourMapWindow::print);
  connect(Picture1, &ContourMapWidget::saveRequested, this, &ContourMapWindow::askAndSave);
  connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, this, &ContourMapWindow::askAndSave);
  retranslate();
}

void ContourMapWindow::retranslate() {
  setWindowTitle(tr("Contour Map"));
  Command1->setText(tr("Close"));
  Command2->setText(tr("Angle"));
  Command3->setText(tr("Print"));
  if (angle_) angle_->retranslate();
}

void ContourMapWindow::setPrintSetting(bool on) { Picture1->setPrintMode(on); }

FileResult ContourMapWindow::saveImage(const QString& path) const {
  return SaveMap(Picture1->scene(), path, Picture1->size(), Picture1->mapStyle(), Picture1->devicePixelRatioF());
}

void ContourMapWindow::openAngle() {
  if (!angle_) angle_ = new AxisAngleWindow(engine_, state_, this);
  angle_->load();
  angle_->show();
  angle_->raise();
  angle_->activateWindow();
}

void ContourMapWindow::print() {
  if (!Picture1->printMode()) {
    printWindow();
    return;
  }
  printPage([this](QPainter& painter, const QRect& page) {
    // The window's proportions, as large as the page allows.
    QSize size = Picture1->size().scaled(page.size(), Qt::KeepAspectRatio);
    PaintMap(painter, Picture1->scene(), QRectF(page.topLeft(), QSizeF(size)), Picture1->mapStyle());
  });
}

void ContourMapWindow::askAndSave() {
  QString path = QFileDialog::getSaveFileName(this, windowTitle(), QStringLiteral("contour.png"),
                                              QStringLiteral("PNG (*.png);;SVG (*.svg)"));
  if (path.isEmpty()) return;
  if (!path.endsWith(QLatin1String(".png"), Qt::CaseInsensitive) && !path.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive)) {
    path += QStringLiteral(".png");
  }
  if (const FileResult r = saveImage(path); !r) {
    QMessageBox::warning(this, windowTitle(), tr("The file could not be written: %1").arg(QString::fromStdString(r.error)));
  }
}

void ContourMapWindow::closeEvent(QCloseEvent* event) {
  if (angle_) angle_->close();
  ToolWindow::closeEvent(event);
}

}  // namespace merida

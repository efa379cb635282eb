// The Contour Map window and the Axis Angle dialog.
#include "contour/contour_map_window.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QShortcut>

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
  setupUi(this);

  connect(Command1, &QPushButton::clicked, this, &AxisAngleWindow::decide);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  pressOnEnter({Text1, Text2}, Command1);
  load();
}

void AxisAngleWindow::retranslate() { retranslateUi(this); }

void AxisAngleWindow::load() {
  Text1->setText(QString::fromStdString(PlainText(state_.ViewAngleX)));
  Text2->setText(QString::fromStdString(PlainText(state_.ViewAngleY)));
}

void AxisAngleWindow::decide() {
  std::optional<ViewAngles> v = DecideAngles(Text1->text().toStdString(), Text2->text().toStdString());
  if (!v) {
    // Both angles are decided together: the boxes stay as typed, the one at fault is selected,
    // and the angles in force are unchanged.
    QLineEdit* bad = ReadNumber(Text1->text().toStdString()) ? Text2 : Text1;
    bad->setFocus();
    bad->selectAll();
    showStatus(tr("\"%1\" is not a number: the angles in force are unchanged.").arg(bad->text()));
    return;
  }
  state_.ViewAngleX = v->x;
  state_.ViewAngleY = v->y;
  showStatus(QString());
  load();
}

void AxisAngleWindow::closeEvent(QCloseEvent* event) {
  load();
  QWidget::closeEvent(event);
}

ContourMapWindow::ContourMapWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setupUi(this);

  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
  connect(Command2, &QPushButton::clicked, this, &ContourMapWindow::openAngle);
  connect(Command3, &QPushButton::clicked, this, &ContourMapWindow::print);
  connect(Picture1, &ContourMapWidget::saveRequested, this, &ContourMapWindow::askAndSave);
  connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, this, &ContourMapWindow::askAndSave);
}

void ContourMapWindow::retranslate() {
  retranslateUi(this);
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

// Shared window behaviour.
#include "main/tool_window.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>

namespace merida {

ToolWindow::ToolWindow(Engine& engine, AppState& state, QWidget* parent)
    : QWidget(parent, Qt::Window), engine_(engine), state_(state) {
  setAttribute(Qt::WA_DeleteOnClose, false);
}

void ToolWindow::printWindow() {
  QPrinter printer(QPrinter::HighResolution);
  if (QPrinterInfo::defaultPrinter().isNull()) {
    QString file = QFileDialog::getSaveFileName(this, windowTitle(), windowTitle() + ".pdf", "PDF (*.pdf)");
    if (file.isEmpty()) return;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
  }
  QPainter painter(&printer);
  if (!painter.isActive()) return;
  QPixmap image = grab();
  QRect page = painter.viewport();
  QSize size = image.size().scaled(page.size(), Qt::KeepAspectRatio);
  painter.drawPixmap(QRect(page.topLeft(), size), image);
}

QPushButton* ToolWindow::makeButton(const char* name) {
  auto* button = new QPushButton(this);
  button->setObjectName(QString::fromLatin1(name));
  button->setAutoDefault(false);
  return button;
}

void ToolWindow::closeEvent(QCloseEvent* event) {
  engine_.StopRequested = 1;
  QWidget::closeEvent(event);
}

}  // namespace merida

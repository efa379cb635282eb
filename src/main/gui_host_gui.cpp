// The input box's title is Japanese in both display languages, like the error messages.
#include "main/gui_host_gui.h"

#include <QCoreApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>

namespace merida {

GuiHost::GuiHost() = default;

GuiHost::~GuiHost() {
  // A window without a parent is ours; one parented to the main window went with it.
  if (errors_ && !errors_->parent()) delete errors_.data();
}

void GuiHost::setWindow(QWidget* window) { window_ = window; }

std::optional<std::string> GuiHost::askValue(const std::string& prompt) {
  if (answer_) return answer_(prompt);
  QInputDialog box(window_);
  box.setWindowTitle(QStringLiteral("データ入力"));
  box.setLabelText(QString::fromStdString(prompt));
  box.setTextValue(QStringLiteral("0"));
  // Room for the title and a long expression.
  if (auto* edit = box.findChild<QLineEdit*>()) edit->setMinimumWidth(260);
  if (box.exec() != QDialog::Accepted) return std::nullopt;
  QString reply = box.textValue();
  return reply.toStdString();
}

void GuiHost::showError(int /*code*/, const std::string& message) {
  if (!errors_) errors_ = new ErrorWindow(window_);
  errors_->showMessage(QString::fromStdString(message));
}

void GuiHost::showFault(const std::string& description) {
  if (fault_) {
    fault_(description);
    return;
  }
  QString title = window_ ? window_->windowTitle() : QCoreApplication::applicationName();
  QMessageBox::warning(window_, title, QString::fromStdString(description));
}

void GuiHost::processEvents() { QCoreApplication::processEvents(); }

}  // namespace merida

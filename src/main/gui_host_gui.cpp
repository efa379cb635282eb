// The input box's title is Japanese in both display languages, like the error messages.
#include "main/gui_host_gui.h"

#include "engine/english.h"

#include <QApplication>
#include <QCoreApplication>
#include <QGridLayout>
#include <QInputDialog>
#include <QLineEdit>
#include <QSpacerItem>

namespace merida {

namespace {

// The engine describes faults in English; these are the descriptions it can give.
[[maybe_unused]] constexpr const char* kFaultTexts[] = {
    QT_TRANSLATE_NOOP("merida::GuiHost", "Overflow"),
    QT_TRANSLATE_NOOP("merida::GuiHost", "Division by zero"),
};

// The window whose button raised the error: the active one of ours, else the main window.
QWidget* RaisingWindow(QWidget* fallback) {
  QWidget* active = QApplication::activeWindow();
  if (active && !qobject_cast<ErrorWindow*>(active) && fallback &&
      (active == fallback || fallback->isAncestorOf(active))) {
    return active;
  }
  return fallback;
}

}  // namespace

std::unique_ptr<QMessageBox> MakeFaultBox(QWidget* parent, const std::string& description) {
  QString title = parent ? parent->window()->windowTitle() : QCoreApplication::applicationName();
  auto box = std::make_unique<QMessageBox>(QMessageBox::Warning, title,
                                           QCoreApplication::translate("merida::GuiHost", description.c_str()),
                                           QMessageBox::Ok, parent);
  box->setObjectName(QStringLiteral("FaultBox"));
  box->setInformativeText(QCoreApplication::translate("merida::GuiHost", "The calculation ended without an answer."));
  // A message box sizes itself to its text alone; a short text left the title cut to "...".
  if (auto* grid = qobject_cast<QGridLayout*>(box->layout())) {
    int width = std::max(320, box->fontMetrics().horizontalAdvance(title) + 160);
    grid->addItem(new QSpacerItem(width, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), grid->rowCount(), 0, 1,
                  grid->columnCount());
  }
  return box;
}

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
  QString english;
  if (english_ && english_()) {
    const std::string_view e = EnglishOf(message);
    english = QString::fromUtf8(e.data(), static_cast<qsizetype>(e.size()));
  }
  errors_->showMessage(QString::fromStdString(message), RaisingWindow(window_), english);
}

void GuiHost::showFault(const std::string& description) {
  if (fault_) {
    fault_(description);
    return;
  }
  MakeFaultBox(RaisingWindow(window_), description)->exec();
}


}  // namespace merida

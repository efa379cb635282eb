// The caption is set whenever the window is loaded, so a language switch reaches the next error.
// A dialog only for Esc and the default button: it is always shown without a modal loop.
#include "main/error_window.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace merida {

ErrorWindow::ErrorWindow(QWidget* parent) : QDialog(parent) {
  setModal(false);
  setObjectName(QStringLiteral("ErrorWindow"));
  Label1 = new QLabel(this);
  Label1->setObjectName(QStringLiteral("Label1"));
  Label1->setTextFormat(Qt::PlainText);
  Label1->setWordWrap(true);
  Label1->setMinimumWidth(280);
  Label1->setAlignment(Qt::AlignCenter);
  Label1->setTextInteractionFlags(Qt::TextSelectableByMouse);
  Command1 = new QPushButton(this);
  Command1->setObjectName(QStringLiteral("Command1"));
  Command1->setDefault(true);
  Command1->setAutoDefault(true);
  connect(Command1, &QPushButton::clicked, this, &QDialog::accept);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(Command1);
  buttons->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Label1, 1);
  layout->addLayout(buttons);
  retranslate();
}

void ErrorWindow::retranslate() {
  setWindowTitle(tr("Error Message"));
  Command1->setText(tr("OK"));
}

void ErrorWindow::showMessage(const QString& message) {
  if (!isVisible()) {
    retranslate();
    Label1->setText(message);
    adjustSize();
    show();
    Command1->setFocus();
  }
  raise();
  activateWindow();
}

}  // namespace merida

// The memory lives in AppState, so closing the pad loses nothing.
#include "main/pad_window.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "engine/number_text.h"
#include "main/main_window.h"
#include "main/memory_pad.h"

namespace merida {

PadWindow::PadWindow(Engine& engine, AppState& state, MainWindow& main, QWidget* parent)
    : ToolWindow(engine, state, parent), main_(main) {
  setObjectName(QStringLiteral("PadWindow"));
  Frame1 = new QGroupBox(this);
  Frame1->setObjectName(QStringLiteral("Frame1"));
  Label1 = new QLabel(Frame1);
  Label1->setObjectName(QStringLiteral("Label1"));
  Label1->setTextFormat(Qt::PlainText);
  Label1->setFrameShape(QFrame::StyledPanel);
  Label1->setFrameShadow(QFrame::Sunken);
  Label1->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  Label1->setMinimumWidth(200);
  Label1->setMinimumHeight(Label1->fontMetrics().height() + 8);
  Label1->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  (new QVBoxLayout(Frame1))->addWidget(Label1);

  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");
  Command3 = makeButton("Command3");
  Command5 = makeButton("Command5");
  Command4 = makeButton("Command4");

  auto* buttons = new QGridLayout;
  buttons->addWidget(Command1, 0, 0);
  buttons->addWidget(Command2, 0, 1);
  buttons->addWidget(Command3, 0, 2);
  buttons->addWidget(Command5, 1, 0);
  buttons->addWidget(Command4, 1, 2);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Frame1);
  layout->addLayout(buttons);

  connect(Command1, &QPushButton::clicked, this, [this] { add(1); });
  connect(Command2, &QPushButton::clicked, this, [this] { add(-1); });
  connect(Command3, &QPushButton::clicked, this, &PadWindow::clearMemory);
  connect(Command5, &QPushButton::clicked, this, &PadWindow::recall);
  connect(Command4, &QPushButton::clicked, this, &QWidget::close);

  retranslate();
  Label1->setText(QString::fromStdString(MemoryDisplayOnOpen(state_.MemoryValue)));
}

void PadWindow::retranslate() {
  setWindowTitle(tr("Edit"));
  Command1->setText(tr("M+"));
  Command2->setText(tr("M-"));
  Command3->setText(tr("MC"));
  Command5->setText(tr("MR"));
  Command4->setText(tr("Close"));
}

void PadWindow::add(int sign) {
  auto memory = AddAnswerToMemory(state_.MemoryValue, main_.answerText().toStdString(), sign);
  if (!memory) return;
  state_.MemoryValue = *memory;
  Label1->setText(QString::fromStdString(PlainText(*memory)));
}

void PadWindow::clearMemory() {
  state_.MemoryValue = 0;
  Label1->setText(QStringLiteral("0"));
}

void PadWindow::recall() {
  auto text = RecallMemory(Label1->text().toStdString());
  if (text) main_.setFormulaText(QString::fromStdString(*text));
}

}  // namespace merida

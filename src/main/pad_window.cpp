// The memory lives in AppState, so closing the pad loses nothing.
#include "main/pad_window.h"

#include "engine/number_text.h"
#include "main/main_window.h"
#include "main/memory_pad.h"

namespace merida {

PadWindow::PadWindow(Engine& engine, AppState& state, MainWindow& main, QWidget* parent)
    : ToolWindow(engine, state, parent), main_(main) {
  setupUi(this);
  // Room for a line of the font in use, whatever it is.
  Label1->setMinimumHeight(Label1->fontMetrics().height() + 8);

  connect(Command1, &QPushButton::clicked, this, [this] { add(1); });
  connect(Command2, &QPushButton::clicked, this, [this] { add(-1); });
  connect(Command3, &QPushButton::clicked, this, &PadWindow::clearMemory);
  connect(Command5, &QPushButton::clicked, this, &PadWindow::recall);
  connect(Command4, &QPushButton::clicked, this, &QWidget::close);

  Label1->setText(QString::fromStdString(MemoryDisplayOnOpen(state_.MemoryValue)));
}

void PadWindow::retranslate() { retranslateUi(this); }

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

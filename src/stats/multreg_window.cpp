// The Multiple Regression Analysis window: nineteen boxes under their headings.
#include "stats/multreg_window.h"

namespace merida {

MultRegWindow::MultRegWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setupUi(this);
  connect(Command2, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
}

void MultRegWindow::retranslate() { retranslateUi(this); }

void MultRegWindow::setResult(const MultipleRegressionResult& result) {
  QLineEdit* const boxes[] = {Text1,  Text2,  Text3,  Text4,  Text5,  Text6,  Text7,  Text8,  Text9, Text10,
                              Text11, Text12, Text13, Text14, Text15, Text16, Text17, Text18, Text19};
  for (int k = 0; k < 19; ++k) boxes[k]->setText(QString::fromStdString(result.boxes[k]));
}

}  // namespace merida

// The Test window: the boxes go to stats/hypothesis_test and its answer comes back to them.
#include "stats/test_window.h"

namespace merida {

TestWindow::TestWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setupUi(this);
  connect(Command1, &QPushButton::clicked, this, [this] { run(TestKind::kMean); });
  connect(Command2, &QPushButton::clicked, this, [this] { run(TestKind::kVariance); });
  connect(Command3, &QPushButton::clicked, this, [this] { run(TestKind::kChiSquare); });
  connect(Command4, &QPushButton::clicked, this, &QWidget::close);
  // The column box only matters to the record option.
  connect(Check1, &QCheckBox::toggled, Text9, &QWidget::setEnabled);
}

void TestWindow::retranslate() {
  retranslateUi(this);
  if (last_) showExact(last_->first, last_->second);
}

void TestWindow::run(TestKind kind) {
  QLineEdit* const boxes[] = {Text1, Text2, Text3, Text4, Text5, Text6};
  TestInput input;
  for (int k = 0; k < 6; ++k) input.boxes[k] = boxes[k]->text().toStdString();
  input.level = level();
  input.record = Check1->isChecked();
  input.column = Text9->text().toStdString();
  const std::optional<TestResult> r = RunTest(engine_, state_.Records, kind, input);
  if (!r) return;
  for (int k = 0; k < 6; ++k) {
    if (r->boxes[k]) boxes[k]->setText(QString::fromStdString(*r->boxes[k]));
  }
  Text7->setText(QString::fromStdString(r->statisticBox));
  Text8->setText(QString::fromStdString(r->criticalBox));
  Label8->setText(QString::fromStdString(r->conclusion));
  explainJapanese(Label8);
  showExact(kind, *r);
}

void TestWindow::showExact(TestKind kind, const TestResult& r) {
  last_.emplace(kind, r);
  if (!r.pValue || !r.exactCritical) {
    ExactLabel->clear();
    return;
  }
  const QString tail = kind == TestKind::kMean ? tr("two-sided") : tr("upper tail");
  QString text = tr("Exact: p-value %1, critical value %2 (%3)")
                     .arg(QString::number(*r.pValue, 'g', 6), QString::number(*r.exactCritical, 'g', 6), tail);
  // The table's interpolation can fall on the other side of the statistic.
  if (r.decisionDiffers) text += '\n' + tr("The exact critical value gives the other conclusion.");
  ExactLabel->setText(text);
}

}  // namespace merida

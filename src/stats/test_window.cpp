// The Test window: the boxes go to stats/hypothesis_test and its answer comes back to them.
#include "stats/test_window.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace merida {

TestWindow::TestWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setObjectName("TestWindow");
  Label1 = makeLabel("Label1");
  Label2 = makeLabel("Label2");
  Label3 = makeLabel("Label3");
  Label4 = makeLabel("Label4");
  Label5 = makeLabel("Label5");
  Label6 = makeLabel("Label6");
  Label7 = makeLabel("Label7");
  Label8 = makeLabel("Label8", true);
  Label8->setMinimumHeight(28);
  Label9 = makeLabel("Label9");
  for (QLabel* heading : {Label2, Label3, Label4}) {
    heading->setAlignment(Qt::AlignCenter);
    heading->setWordWrap(true);  // the Japanese deviation heading breaks at its blanks
  }
  Text1 = makeBox("Text1");
  Text2 = makeBox("Text2");
  Text3 = makeBox("Text3");
  Text4 = makeBox("Text4");
  Text5 = makeBox("Text5");
  Text6 = makeBox("Text6");
  Text7 = makeResultBox("Text7");
  Text8 = makeResultBox("Text8");
  Text9 = makeBox("Text9", "1");
  Option1 = new QRadioButton;
  Option1->setObjectName("Option1");
  Option2 = new QRadioButton;
  Option2->setObjectName("Option2");
  Option1->setChecked(true);
  Frame1 = new QGroupBox;
  Frame1->setObjectName("Frame1");
  auto* levels = new QHBoxLayout(Frame1);
  levels->addWidget(Option1);
  levels->addWidget(Option2);
  Check1 = new QCheckBox;
  Check1->setObjectName("Check1");
  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");
  Command3 = makeButton("Command3");
  Command4 = makeButton("Command4");

  auto* groups = new QGridLayout;
  groups->addWidget(Label2, 0, 1);
  groups->addWidget(Label3, 0, 2);
  groups->addWidget(Label4, 0, 3);
  groups->addWidget(Label1, 1, 0);
  groups->addWidget(Text1, 1, 1);
  groups->addWidget(Text2, 1, 2);
  groups->addWidget(Text3, 1, 3);
  groups->addWidget(Label5, 2, 0);
  groups->addWidget(Text4, 2, 1);
  groups->addWidget(Text5, 2, 2);
  groups->addWidget(Text6, 2, 3);
  auto* results = new QGridLayout;
  results->addWidget(Label6, 0, 0);
  results->addWidget(Text7, 0, 1);
  results->addWidget(Label7, 1, 0);
  results->addWidget(Text8, 1, 1);
  results->setColumnStretch(2, 1);
  auto* record = new QHBoxLayout;
  record->addWidget(Check1);
  record->addSpacing(12);
  record->addWidget(Label9);
  record->addWidget(Text9);
  record->addStretch(1);
  auto* left = new QVBoxLayout;
  left->addLayout(groups);
  left->addLayout(record);
  left->addLayout(results);
  left->addWidget(Label8);
  left->addStretch(1);
  auto* side = new QVBoxLayout;
  side->addWidget(Frame1);
  side->addWidget(Command1);
  side->addWidget(Command2);
  side->addWidget(Command3);
  side->addStretch(1);
  side->addWidget(Command4);
  auto* layout = new QHBoxLayout(this);
  layout->addLayout(left, 1);
  layout->addLayout(side);

  connect(Command1, &QPushButton::clicked, this, [this] { run(TestKind::kMean); });
  connect(Command2, &QPushButton::clicked, this, [this] { run(TestKind::kVariance); });
  connect(Command3, &QPushButton::clicked, this, [this] { run(TestKind::kChiSquare); });
  connect(Command4, &QPushButton::clicked, this, &QWidget::close);
  // The column box only matters to the record option.
  connect(Check1, &QCheckBox::toggled, Text9, &QWidget::setEnabled);
  Text9->setEnabled(false);
  retranslate();
}

void TestWindow::retranslate() {
  setWindowTitle(tr("Test"));
  Label1->setText(tr("Population"));
  Label5->setText(tr("Sample"));
  Label2->setText(tr("Average"));
  Label3->setText(tr("Standard deviation"));
  Label4->setText(tr("Count"));
  Label6->setText(tr("Computing Value"));
  Label7->setText(tr("Theoretical Value"));
  Label9->setText(tr("Dimension"));
  Frame1->setTitle(tr("Danger Rate"));
  Option1->setText(QStringLiteral("5 %"));
  Option2->setText(QStringLiteral("1 %"));
  Check1->setText(tr("Record Function"));
  Command1->setText(tr("t"));
  Command2->setText(tr("F"));
  Command3->setText(tr("Kai"));
  Command4->setText(tr("Close"));
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
}

}  // namespace merida

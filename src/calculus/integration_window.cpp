// The windows only read their boxes, run the rule and show what it answers.
#include "calculus/integration_window.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QScreen>
#include <QVBoxLayout>

#include "engine/number_text.h"
#include "main/error_window.h"

namespace merida {
namespace {

QGroupBox* LabelFrame(const char* frameName, QLabel*& label, const char* labelName) {
  auto* frame = new QGroupBox;
  frame->setObjectName(frameName);
  label = new QLabel;
  label->setObjectName(labelName);
  label->setTextFormat(Qt::PlainText);
  label->setMinimumWidth(60);
  auto* layout = new QVBoxLayout(frame);
  layout->setContentsMargins(6, 2, 6, 4);
  layout->addWidget(label);
  return frame;
}

std::string Text(const QLineEdit* box) { return box->text().toStdString(); }

}  // namespace

IntegrationWindow::IntegrationWindow(Engine& engine, AppState& state, MainFormula main, QWidget* parent)
    : ToolWindow(engine, state, parent), main_(std::move(main)) {
  setObjectName("IntegrationWindow");
  Frame1 = makeBoxFrame("Frame1", Text1, "Text1");
  Frame2 = makeBoxFrame("Frame2", Text2, "Text2");
  Frame3 = makeBoxFrame("Frame3", Text3, "Text3");
  Command1 = makeButton("Command1");
  Command3 = makeButton("Command3");
  Command2 = makeButton("Command2");
  Text3->setText("50");

  auto* boxes = new QHBoxLayout;
  for (QGroupBox* f : {Frame1, Frame2, Frame3}) boxes->addWidget(f);
  auto* buttons = new QHBoxLayout;
  for (QPushButton* b : {Command1, Command3, Command2}) buttons->addWidget(b);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(boxes);
  layout->addLayout(buttons);
  layout->addStretch(1);

  connect(Command1, &QPushButton::clicked, this, &IntegrationWindow::go);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Command3, &QPushButton::clicked, this, &IntegrationWindow::openDouble);
  pressOnEnter({Text1, Text2, Text3}, Command1);
  retranslate();
}

void IntegrationWindow::retranslate() {
  setWindowTitle(tr("Integration"));
  Command1->setText(tr("Go"));
  Command2->setText(tr("Close"));
  Command3->setText(tr("Double"));
  Frame1->setTitle(tr("Min"));
  Frame2->setTitle(tr("Max"));
  Frame3->setTitle(tr("Num"));
}

void IntegrationWindow::go() {
  if (jobRunning()) {
    stopJob();  // Go reads "Stop" while the integral runs
    return;
  }
  main_.answer(QString());
  const std::string formula = main_.formula().toStdString();
  const RangeBoxes boxes{Text(Text1), Text(Text2), Text(Text3)};
  auto result = std::make_shared<IntegrationResult>();
  startJob(
      Command1, [result, formula, boxes](ToolRun& run) { *result = IntegrateSingle(run.engine, run.state, formula, boxes); },
      [this, result](ToolRun&) {
        if (result->value) main_.answer(QString::fromStdString(PlainText(*result->value)));
      });
}

bool IntegrationWindow::running() const { return jobRunning(); }

void IntegrationWindow::openDouble() {
  if (jobRunning()) return;
  auto names = PrepareDoubleIntegral(engine_, main_.formula().toStdString());
  if (!names) return;
  if (!double_) {
    double_ = new DoubleIntegrationWindow(engine_, state_, main_, this);
    // Beside this window, not over the main window's answer where the result appears.
    double_->adjustSize();
    double_->move(PlaceBeside(frameGeometry(), double_->size(), screen()->availableGeometry()));
  }
  if (double_->isHidden()) double_->load(QString::fromStdString(names->first), QString::fromStdString(names->second));
  double_->show();
  double_->raise();
  double_->activateWindow();
}

void IntegrationWindow::closeEvent(QCloseEvent* event) {
  engine_.BindToX = -1;
  if (double_) double_->close();
  ToolWindow::closeEvent(event);
}

DoubleIntegrationWindow::DoubleIntegrationWindow(Engine& engine, AppState& state, MainFormula main, QWidget* parent)
    : ToolWindow(engine, state, parent), main_(std::move(main)) {
  setObjectName("DoubleIntegrationWindow");
  Frame1 = LabelFrame("Frame1", Label1, "Label1");
  Frame2 = makeBoxFrame("Frame2", Text1, "Text1");
  Frame3 = makeBoxFrame("Frame3", Text2, "Text2");
  Frame4 = makeBoxFrame("Frame4", Text3, "Text3");
  Frame5 = LabelFrame("Frame5", Label2, "Label2");
  Frame6 = makeBoxFrame("Frame6", Text4, "Text4");
  Frame7 = makeBoxFrame("Frame7", Text5, "Text5");
  Frame8 = makeBoxFrame("Frame8", Text6, "Text6");
  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");

  auto* grid = new QGridLayout;
  QGroupBox* rows[2][4] = {{Frame1, Frame2, Frame3, Frame4}, {Frame5, Frame6, Frame7, Frame8}};
  for (int r = 0; r < 2; ++r) {
    for (int c = 0; c < 4; ++c) grid->addWidget(rows[r][c], r, c);
  }
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(Command1);
  buttons->addWidget(Command2);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(grid);
  layout->addLayout(buttons);
  layout->addStretch(1);

  connect(Command1, &QPushButton::clicked, this, &DoubleIntegrationWindow::go);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  pressOnEnter({Text1, Text2, Text3, Text4, Text5, Text6}, Command1);
  retranslate();
}

void DoubleIntegrationWindow::retranslate() {
  setWindowTitle(tr("Double Integration"));
  Command1->setText(tr("Go"));
  Command2->setText(tr("Close"));
  for (QGroupBox* f : {Frame1, Frame5}) f->setTitle(tr("Var"));
  for (QGroupBox* f : {Frame2, Frame6}) f->setTitle(tr("Min"));
  for (QGroupBox* f : {Frame3, Frame7}) f->setTitle(tr("Max"));
  for (QGroupBox* f : {Frame4, Frame8}) f->setTitle(tr("Num"));
}

void DoubleIntegrationWindow::load(const QString& first, const QString& second) {
  Label1->setText(first);
  Label2->setText(second);
  Text3->setText("20");
  Text6->setText("20");
  retranslate();
}

void DoubleIntegrationWindow::go() {
  if (jobRunning()) {
    stopJob();  // Go reads "Stop" while the integral runs
    return;
  }
  main_.answer(QString());
  const std::string formula = main_.formula().toStdString();
  const RangeBoxes first{Text(Text1), Text(Text2), Text(Text3)}, second{Text(Text4), Text(Text5), Text(Text6)};
  auto result = std::make_shared<IntegrationResult>();
  startJob(
      Command1,
      [result, formula, first, second](ToolRun& run) {
        *result = IntegrateDouble(run.engine, run.state, formula, first, second);
      },
      [this, result](ToolRun&) {
        if (result->value) main_.answer(QString::fromStdString(PlainText(*result->value)));
      });
}

void DoubleIntegrationWindow::closeEvent(QCloseEvent* event) {
  engine_.BindToX = -1;
  ToolWindow::closeEvent(event);
}

bool DoubleIntegrationWindow::running() const { return jobRunning(); }

}  // namespace merida

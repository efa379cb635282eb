// The windows only read their boxes, run the rule and show what it answers.
#include "calculus/integration_window.h"

#include <QCloseEvent>
#include <QScreen>

#include "engine/number_text.h"
#include "main/error_window.h"

namespace merida {
namespace {

std::string Text(const QLineEdit* box) { return box->text().toStdString(); }

}  // namespace

IntegrationWindow::IntegrationWindow(Engine& engine, AppState& state, MainFormula main, QWidget* parent)
    : ToolWindow(engine, state, parent), main_(std::move(main)) {
  setupUi(this);

  connect(Command1, &QPushButton::clicked, this, &IntegrationWindow::go);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Command3, &QPushButton::clicked, this, &IntegrationWindow::openDouble);
  pressOnEnter({Text1, Text2, Text3}, Command1);
}

void IntegrationWindow::retranslate() { retranslateUi(this); }

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
  setupUi(this);

  connect(Command1, &QPushButton::clicked, this, &DoubleIntegrationWindow::go);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  pressOnEnter({Text1, Text2, Text3, Text4, Text5, Text6}, Command1);
}

void DoubleIntegrationWindow::retranslate() { retranslateUi(this); }

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

// The Graph window.
#include "graph/graph_window.h"

#include <QCloseEvent>

#include "graph/negative_function_window.h"
#include "graph/parameter_window.h"
#include "stats/stat_data_window.h"

namespace merida {
namespace {

ChartWidget::Type ChartTypeOf(ChartType t) {
  return t == ChartType::kLogLin ? ChartWidget::Type::kLogLin : ChartWidget::Type::kLine;
}

}  // namespace

GraphWindow::GraphWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setupUi(this);
  remembersBoxes_ = false;  // its opening empties the range boxes

  connect(Command1, &QPushButton::clicked, this, &GraphWindow::go);
  pressOnEnter({Text1, Text2, Text3}, Command1);
  connect(Command2, &QPushButton::clicked, this, &GraphWindow::close);
  connect(Command3, &QPushButton::clicked, this, &GraphWindow::log);
  connect(Command4, &QPushButton::clicked, this, &GraphWindow::para);
  connect(Command5, &QPushButton::clicked, this, &GraphWindow::pole);
  connect(Command6, &QPushButton::clicked, this, [this] {
    NegativeFunctionWindow* w = negativeFunctionWindow();
    w->show();
    w->raise();
  });
  connect(Command7, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Command8, &QPushButton::clicked, this, [this] { statDataWindow()->open(); });

  Graph1->setGraphType(ChartWidget::Type::kLine);
  Graph1->setGridBothWays(true);
  Graph1->setDataSets(1);
  Graph1->draw();
  prepare();
}

void GraphWindow::retranslate() { retranslateUi(this); }

void GraphWindow::prepare() {
  if (isHidden()) {
    Text1->clear();
    Text2->clear();
    state_.GraphMode = 1;
    Graph1->setGraphType(ChartWidget::Type::kLine);
    Graph1->setThinLines(false);
    Graph1->setEqualScale(false);
    Graph1->setPoints(1, QList<QPointF>());
    Graph1->draw();
  }
  Text3->setText(QString::number(state_.DivisionCount));
}

ParameterWindow* GraphWindow::parameterWindow() {
  if (!parameter_) parameter_ = new ParameterWindow(engine_, state_, this);
  return parameter_;
}

NegativeFunctionWindow* GraphWindow::negativeFunctionWindow() {
  if (!negative_) negative_ = new NegativeFunctionWindow(engine_, state_, formula_, this);
  return negative_;
}

StatDataWindow* GraphWindow::statDataWindow() {
  if (!data_) data_ = new StatDataWindow(engine_, state_, this);
  return data_;
}

GraphBoxes GraphWindow::boxes() const {
  return {Text1->text().toStdString(), Text2->text().toStdString(), Text3->text().toStdString()};
}

std::string GraphWindow::formulaText() const { return formula_ ? formula_().toStdString() : std::string(); }

void GraphWindow::run(QPushButton* button, std::function<PlotResult(Engine&, AppState&)> plot) {
  if (jobRunning()) {
    stopJob();  // the running button reads "Stop"; any plot button ends the plot
    return;
  }
  auto result = std::make_shared<PlotResult>();
  startJob(
      button, [result, plot = std::move(plot)](ToolRun& run) { *result = plot(run.engine, run.state); },
      [this, result](ToolRun&) { display(*result); }, {}, JobWrites::kRecordTable);
}

void GraphWindow::display(const PlotResult& r) {
  if (r.divisionsBox) Text3->setText(QString::fromStdString(*r.divisionsBox));
  Graph1->setGraphType(ChartTypeOf(r.chartType));
  Graph1->setThinLines(r.thinLines);
  Graph1->setEqualScale(r.equalScale);
  Graph1->setDataSets(1);
  // A plot that started shows exactly the points it computed; one that never started (formula
  // error, unusable range, Log with nothing to replot) leaves the previous points to redraw.
  if (r.pointCount > 0) {
    Graph1->setPoints(1, r.points);
  }
  Graph1->draw();
}

void GraphWindow::go() {
  run(Command1, [formula = formulaText(), boxes = boxes()](Engine& e, AppState& s) {
    return PlotGo(e, s, formula, boxes);
  });
}

void GraphWindow::pole() {
  run(Command5, [formula = formulaText(), boxes = boxes()](Engine& e, AppState& s) {
    return PlotPole(e, s, formula, boxes);
  });
}

void GraphWindow::log() {
  std::string first, second;
  if (parameter_) {
    first = parameter_->firstFormula().toStdString();
    second = parameter_->secondFormula().toStdString();
  }
  run(Command3, [formula = formulaText(), first, second, boxes = boxes()](Engine& e, AppState& s) {
    return PlotLog(e, s, formula, first, second, boxes);
  });
}

void GraphWindow::para() {
  if (jobRunning()) {
    stopJob();
    return;
  }
  ParameterWindow* w = parameterWindow();
  w->show();
  w->raise();
  if (state_.GraphMode != 3) {
    state_.GraphMode = 3;
    w->startParametric(QString::fromStdString(formulaText()));
    return;
  }
  run(Command4, [first = w->firstFormula().toStdString(), second = w->secondFormula().toStdString(),
                 boxes = boxes()](Engine& e, AppState& s) { return PlotPara(e, s, first, second, boxes); });
}

void GraphWindow::closeAll() {
  stopJob();
  state_.GraphMode = 0;
  engine_.StopRequested = 1;
  if (parameter_) parameter_->close();
  if (negative_) negative_->close();
}

void GraphWindow::closeEvent(QCloseEvent* event) {
  closeAll();
  ToolWindow::closeEvent(event);
}

}  // namespace merida

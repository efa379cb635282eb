// The window reads the grid's column and the Step box, runs the recurrence and draws it once.
#include "calculus/delay_window.h"

#include <QCloseEvent>

#include "stats/stat_data_window.h"

namespace merida {

DelayWindow::DelayWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setupUi(this);
  Grid1->reset(kMaxDelay + 1, 2);
  for (int row = 1; row <= kMaxDelay; ++row) Grid1->setCellText(row, 0, QString::number(row));

  connect(Command1, &QPushButton::clicked, this, &DelayWindow::go);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Command3, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Command4, &QPushButton::clicked, this, [this] {
    if (!data_) data_ = new StatDataWindow(engine_, state_, this);
    data_->open();
  });
  pressOnEnter({Text1}, Command1);
  // Enter in Init Value stores it in the selected cell and moves down, for typing a column.
  connect(Text2, &QLineEdit::returnPressed, this, &DelayWindow::storeInitValue);
  Grid1->setCurrentCell(1, 1);

  retranslate();
  Graph1->setGraphType(ChartWidget::Type::kLine);
  Graph1->setGridBothWays(true);
  Graph1->setDataSets(1);
  Graph1->draw();
}

void DelayWindow::retranslate() {
  retranslateUi(this);
  Grid1->setCellText(0, 1, tr("Init"));
  Grid1->fitColumns();
  Graph1->setAxisTitles(tr("Step"), tr("Value"));
}

void DelayWindow::storeInitValue() {
  int row = Grid1->currentRow(), column = Grid1->currentColumn();
  if (row < 1 || column < 1) return;
  Grid1->setCellText(row, column, Text2->text());
  Text2->clear();
  if (row < kMaxDelay) Grid1->setCurrentCell(row + 1, column);
}

void DelayWindow::go() {
  if (jobRunning()) {
    stopJob();  // Go reads "Stop" while the recurrence runs
    return;
  }
  std::vector<std::string> cells;
  for (int row = 1; row <= kMaxDelay; ++row) cells.push_back(Grid1->cellText(row, 1).toStdString());
  const std::string formula = formula_ ? formula_().toStdString() : std::string();
  const std::string steps = Text1->text().toStdString();
  auto result = std::make_shared<DelayResult>();
  startJob(
      Command1,
      [result, formula, steps, cells](ToolRun& run) { *result = RunDelay(run.engine, run.state, formula, steps, cells); },
      [this, result](ToolRun&) {
        // A run that read its initial values shows what it computed, up to an error.
        if (result->largestDelay > 0 && !result->points.empty()) Graph1->setPoints(1, result->points);
        Graph1->draw();
      },
      {}, JobWrites::kRecordTable);
}

bool DelayWindow::running() const { return jobRunning(); }

void DelayWindow::closeEvent(QCloseEvent* event) {
  engine_.BindToX = -1;
  if (data_) data_->close();
  ToolWindow::closeEvent(event);
}

}  // namespace merida

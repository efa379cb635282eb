// The Differential & Differential Equation window: controls wired to calculus/differential.
#include "calculus/diff_window.h"

#include <QCloseEvent>
#include <QSignalBlocker>

#include "stats/stat_data_window.h"

namespace merida {

DiffWindow::DiffWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setupUi(this);

  // Each run reads the formula and the boxes now, and computes on its own engine.
  auto grade = [this](int g) {
    return [this, g, formula = formula_().toStdString(), b = boxes(), plane = plane_ == 1](Engine& e, AppState& s) {
      return RunGrade(e, s, formula, b, g, plane);
    };
  };
  connect(Command1, &QPushButton::clicked, this, [this, grade] { run(Command1, grade(1)); });
  connect(Command2, &QPushButton::clicked, this, [this, grade] { run(Command2, grade(2)); });
  connect(Command4, &QPushButton::clicked, this, [this] {
    run(Command4, [formula = formula_().toStdString(), b = boxes(), plane = plane_ == 1](Engine& e, AppState& s) {
      return RunSimult(e, s, formula, b, plane);
    });
  });
  connect(Command3, &QPushButton::clicked, this, &QWidget::close);
  connect(Command5, &QPushButton::clicked, this, [this] { statDataWindow()->open(); });
  connect(Command6, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Option1, &QRadioButton::clicked, this, [this] {
    SelectDiffOption(state_);
    syncRungeKutta();
  });
  connect(Option2, &QRadioButton::clicked, this, [this] {
    SelectDiffEquationOption(state_);
    syncRungeKutta();
  });
  connect(Check1, &QCheckBox::clicked, this, [this](bool ticked) {
    ClickRungeKutta(state_, ticked);
    syncRungeKutta();
  });
  connect(Check2, &QCheckBox::clicked, this, [this] {
    plane_ = static_cast<int16_t>(-plane_);
    QSignalBlocker block(Check2);
    Check2->setChecked(plane_ == 1);
  });
  pressOnEnter({Text1, Text2, Text3, Text4, Text5, Text6}, Command1);

  OpenDiffWindow(engine_, state_);
  Option1->setChecked(true);
  syncRungeKutta();
  Graph1->setGraphType(ChartWidget::Type::kLine);
  Graph1->setGridBothWays(true);
  Graph1->setDataSets(1);
  // Simult's z curve: the second set's colour and a dashed line.
  Graph1->setLineStyle(2, Qt::DashLine);
  Graph1->draw();
}

void DiffWindow::retranslate() { retranslateUi(this); }

StatDataWindow* DiffWindow::statDataWindow() {
  if (!data_) data_ = new StatDataWindow(engine_, state_, this);
  return data_;
}

void DiffWindow::syncRungeKutta() {
  QSignalBlocker block(Check1);
  Check1->setChecked(state_.DiffMode == kDiffRungeKutta);
}

DiffBoxes DiffWindow::boxes() const {
  auto t = [](const QLineEdit* box) { return box->text().toStdString(); };
  return {t(Text1), t(Text2), t(Text3), t(Text4), t(Text5), t(Text6), t(Text7), t(Text8)};
}

void DiffWindow::run(QPushButton* button, std::function<DiffResult(Engine&, AppState&)> compute) {
  if (jobRunning()) {
    stopJob();  // the running button reads "Stop"; any run button ends the run
    return;
  }
  auto result = std::make_shared<DiffResult>();
  startJob(
      button, [result, compute = std::move(compute)](ToolRun& run) { *result = compute(run.engine, run.state); },
      [this, result](ToolRun&) {
        syncRungeKutta();  // Simult ticks RungeKutta
        if (result->end != DiffEnd::kNothing) display(*result);
      },
      {}, JobWrites::kRecordTable);
}

bool DiffWindow::running() const { return jobRunning(); }

void DiffWindow::display(const DiffResult& r) {
  // A computation that began shows exactly the points it reached; one that never began
  // (a bad name or step, a formula error) redraws the previous points.
  if (r.started) {
    Graph1->setDataSets(r.dataSets);
    // Simult draws both unknowns: the legend names them as the boxes do.
    if (r.dataSets == 2) Graph1->setSetNames(Text1->text().trimmed(), Text8->text().trimmed());
    else Graph1->setSetNames(QString());
    Graph1->setPoints(1, r.points);
    Graph1->setPoints(2, r.points2);
  }
  Graph1->draw();
}

void DiffWindow::closeEvent(QCloseEvent* event) {
  CloseDiffWindow(engine_, state_);
  ToolWindow::closeEvent(event);
}

}  // namespace merida

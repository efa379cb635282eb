// The Differential & Differential Equation window: controls wired to calculus/differential.
#include "calculus/diff_window.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "stats/stat_data_window.h"

namespace merida {

DiffWindow::DiffWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setObjectName("DiffWindow");
  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");
  Command3 = makeButton("Command3");
  Command4 = makeButton("Command4");
  Command5 = makeButton("Command5");
  Command6 = makeButton("Command6");
  Frame1 = makeBoxFrame("Frame1", Text1, "Text1");
  Frame2 = makeBoxFrame("Frame2", Text2, "Text2");
  Frame3 = makeBoxFrame("Frame3", Text3, "Text3");
  Frame4 = makeBoxFrame("Frame4", Text4, "Text4");
  Frame5 = makeBoxFrame("Frame5", Text5, "Text5");
  Frame6 = makeBoxFrame("Frame6", Text6, "Text6");
  Frame7 = makeBoxFrame("Frame7", Text7, "Text7");
  Frame8 = makeBoxFrame("Frame8", Text8, "Text8");
  Text7->setMaximumWidth(QWIDGETSIZE_MAX);  // a formula, not a number
  Option1 = new QRadioButton(this);
  Option1->setObjectName("Option1");
  Option2 = new QRadioButton(this);
  Option2->setObjectName("Option2");
  Check1 = new QCheckBox(this);
  Check1->setObjectName("Check1");
  Check2 = new QCheckBox(this);
  Check2->setObjectName("Check2");
  Graph1 = new ChartWidget;
  Graph1->setObjectName("Graph1");
  Graph1->setMinimumSize(440, 360);

  // Range and step, the initial values, then what only Simult reads.
  auto* fields = new QGridLayout;
  fields->addWidget(Frame4, 0, 0);
  fields->addWidget(Frame5, 0, 1);
  fields->addWidget(Frame2, 1, 0);
  fields->addWidget(Frame1, 1, 1);
  fields->addWidget(Frame3, 2, 0);
  fields->addWidget(Frame6, 2, 1);
  fields->addWidget(Frame7, 3, 0, 1, 2);
  fields->addWidget(Frame8, 4, 1);
  auto* modes = new QGridLayout;
  modes->addWidget(Option1, 0, 0);
  modes->addWidget(Option2, 1, 0);
  modes->addWidget(Check1, 0, 1);
  modes->addWidget(Check2, 1, 1);
  auto* buttons = new QGridLayout;
  QPushButton* order[] = {Command1, Command2, Command4, Command5, Command6, Command3};
  for (int k = 0; k < 6; ++k) buttons->addWidget(order[k], k / 2, k % 2);
  auto* side = new QVBoxLayout;
  side->addLayout(fields);
  side->addLayout(modes);
  side->addSpacing(6);
  side->addLayout(buttons);
  side->addStretch(1);
  auto* layout = new QHBoxLayout(this);
  layout->addWidget(Graph1, 1);
  layout->addLayout(side);
  resize(820, 540);

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

  retranslate();
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

void DiffWindow::retranslate() {
  setWindowTitle(tr("Differential & Differential Equation"));
  Command1->setText(tr("1 Grade"));
  Command2->setText(tr("2 Grade"));
  Command3->setText(tr("Close"));
  Command4->setText(tr("Simult"));
  Command5->setText(tr("Data"));
  Command6->setText(tr("Print"));
  Frame1->setTitle(tr("Diff Var"));
  Frame2->setTitle(tr("Width"));
  Frame3->setTitle(tr("Init Val"));
  Frame4->setTitle(tr("Min"));
  Frame5->setTitle(tr("Max"));
  Frame6->setTitle(tr("Init Val(1)"));
  Frame7->setTitle(tr("Second Function"));
  Frame8->setTitle(tr("Diff Var2"));
  Option1->setText(tr("Diff"));
  Option2->setText(tr("Diff Equation"));
  Check1->setText(tr("RungeKutta"));
  Check2->setText(tr("Plane"));
}

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

// The Intersection Point window: controls wired to algebra/roots and algebra/polynomial.
#include "algebra/root_window.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QSignalBlocker>

#include "engine/number_text.h"

namespace merida {
namespace {

std::string Text(const QLineEdit* box) { return box->text().toStdString(); }

}  // namespace

IntersectionWindow::IntersectionWindow(Engine& engine, AppState& state, std::function<QString()> formula,
                                       std::function<void(const QString&)> setFormula, QWidget* parent)
    : ToolWindow(engine, state, parent),
      formula_(std::move(formula)),
      setFormula_(std::move(setFormula)),
      tools_(engine) {
  setupUi(this);

  connect(Command1, &QPushButton::clicked, this, &IntersectionWindow::go);
  connect(Command3, &QPushButton::clicked, this, &IntersectionWindow::inter);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Command7, &QPushButton::clicked, this, [this] {
    runPolynomial(Command7, [f = formula_().toStdString()](PolynomialTools& t) { return t.expand(f); });
  });
  connect(Command5, &QPushButton::clicked, this, [this] {
    runPolynomial(Command5, [f = formula_().toStdString()](PolynomialTools& t) { return t.arrange(f); });
  });
  connect(Command4, &QPushButton::clicked, this, [this] {
    runPolynomial(Command4, [f = formula_().toStdString(), tolerance = Text(Text7), judge = judgeValue_,
                             on = roundOn_ > 0](PolynomialTools& t) { return t.seek(f, tolerance, judge, on); });
  });
  connect(Command6, &QPushButton::clicked, this, [this] {
    runPolynomial(Command6, [p = Text(Text6), tolerance = Text(Text7), judge = judgeValue_,
                             on = coefficientOn_ > 0](PolynomialTools& t) { return t.factor(p, tolerance, judge, on); });
  });
  connect(Command8, &QPushButton::clicked, this, [this] { setFormula_(Text5->text()); });
  connect(Command9, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(List1, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) { copyRoot(List1->row(item)); });
  connectToggle(Check1, graphOn_);
  connectToggle(Check2, roundOn_);
  connectToggle(Check3, coefficientOn_);
  pressOnEnter({Text1, Text2, Text3, Text4}, Command1);
  pressOnEnter({Text5}, Command3);
  pressOnEnter({Text6}, Command6);

  engine_.UnboundPolicy = -1;
  state_.DivisionCount = 50;
  Text3->setText(QString::number(state_.DivisionCount));
  Text4->setText(QString::fromStdString(PlainText(judgeValue_)));
  Text7->setText(QString::fromStdString(PlainText(tools_.integerTolerance())));
  Graph1->setGraphType(ChartWidget::Type::kLine);
  Graph1->setGridBothWays(true);
  Graph1->setDataSets(1);
  // Inter's second function stays told apart in print.
  Graph1->setLineStyle(2, Qt::DashLine);
  Graph1->draw();
}

void IntersectionWindow::retranslate() {
  retranslateUi(this);
  Graph1->setAxisTitles(QStringLiteral("x"), QString());
  Graph1->setSetNames(tr("Formula"), tr("Second function"));
}

void IntersectionWindow::connectToggle(QCheckBox* box, int16_t& value) {
  connect(box, &QCheckBox::clicked, this, [box, &value] {
    value = static_cast<int16_t>(-value);
    QSignalBlocker block(box);
    box->setChecked(value == 1);
  });
}

RootBoxes IntersectionWindow::boxes() const { return {Text(Text1), Text(Text2), Text(Text3), Text(Text4)}; }

void IntersectionWindow::go() {
  search(Command1, [f = formula_().toStdString(), boxes = boxes(), graph = graphOn_ > 0, round = roundOn_ > 0](
                       ToolRun& run) { return SearchRoots(run.engine, run.state, f, boxes, graph, round); });
}

void IntersectionWindow::inter() {
  search(Command3, [f = formula_().toStdString(), second = Text(Text5), boxes = boxes(), graph = graphOn_ > 0](
                       ToolRun& run) { return SearchIntersections(run.engine, run.state, f, second, boxes, graph); });
}

void IntersectionWindow::search(QPushButton* button, std::function<RootResult(ToolRun&)> scan) {
  if (jobRunning()) {
    stopJob();  // the running button reads "Stop"; any of them ends the run
    return;
  }
  auto result = std::make_shared<RootResult>();
  startJob(
      button, [result, scan = std::move(scan)](ToolRun& run) { *result = scan(run); },
      [this, result, sets = button == Command3 && graphOn_ > 0 ? 2 : 1](ToolRun&) {
        if (result->end == RootEnd::kStopped) return;
        Graph1->setDataSets(sets);
        showSearch(*result);
      });
}

void IntersectionWindow::showSearch(const RootResult& r) {
  if (r.judge) judgeValue_ = *r.judge;
  if (r.numBox) Text3->setText(QString::fromStdString(*r.numBox));
  if (r.end != RootEnd::kListed) {
    // The rule keeps the old list (and its chart) on screen: greyed, it is not taken for the
    // answer to the boxes as they now stand.
    if (List1->count() > 0 && r.end != RootEnd::kStopped) {
      markStale({List1, Graph1}, true);
      showStatus(tr("The greyed list and chart are from an earlier run: this one listed nothing."));
    }
    return;
  }
  markStale({List1}, false);  // the chart clears its grey when it draws
  rootX_ = r.rootX;
  setLines(r.lines);
  if (r.unresolved.empty()) {
    showStatus(QString());
  } else {
    showStatus(tr("The sign change near x = %1 never came within the judge value; it is not listed as a root.")
                   .arg(QString::fromStdString(PlainText(r.unresolved.front()))));
  }
  if (graphOn_ > 0) {
    Graph1->setPoints(1, r.curve1);
    Graph1->setPoints(2, r.curve2);
    Graph1->draw();
  }
}

void IntersectionWindow::runPolynomial(QPushButton* button, std::function<PolyResult(PolynomialTools&)> tool) {
  if (jobRunning()) {
    stopJob();
    return;
  }
  // The job works on a copy of the tools; the copy replaces them only when it ends.
  auto tools = std::make_shared<PolynomialTools>(tools_);
  auto result = std::make_shared<PolyResult>();
  startJob(
      button,
      [tools, result, tool = std::move(tool)](ToolRun& run) {
        tools->bind(run.engine);
        *result = tool(*tools);
      },
      [this, tools, result](ToolRun&) {
        tools_ = *tools;
        tools_.bind(engine_);
        showPolynomial(*result);
      });
}

void IntersectionWindow::showPolynomial(const PolyResult& r) {
  if (r.end == PolyEnd::kNoConvergence) {
    QMessageBox::warning(this, windowTitle(), tr("Seek found no factor: the method did not converge."));
    return;
  }
  if (r.end != PolyEnd::kDone) return;
  if (r.secondFunction) Text5->setText(QString::fromStdString(*r.secondFunction));
  if (r.lines) {
    rootX_ = r.rootX;
    setLines(*r.lines);
  }
}

void IntersectionWindow::copyRoot(int row) {
  if (row < 0 || static_cast<size_t>(row) >= rootX_.size()) return;
  Text6->setText(QString::fromStdString(PolynomialBoxText(rootX_[static_cast<size_t>(row)], roundOn_ > 0)));
}

void IntersectionWindow::setLines(const std::vector<std::string>& lines) {
  List1->clear();
  for (const std::string& line : lines) List1->addItem(QString::fromStdString(line));
  explainJapanese(List1);
}

void IntersectionWindow::closeEvent(QCloseEvent* event) {
  engine_.BindToX = -1;
  engine_.UnboundPolicy = -1;
  tools_.close();
  ToolWindow::closeEvent(event);
}

}  // namespace merida

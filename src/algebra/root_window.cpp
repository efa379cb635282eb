// The Intersection Point window: controls wired to algebra/roots and algebra/polynomial.
#include "algebra/root_window.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

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
  setObjectName("IntersectionWindow");
  Frame1 = makeBoxFrame("Frame1", Text1, "Text1");
  Frame2 = makeBoxFrame("Frame2", Text2, "Text2");
  Frame3 = makeBoxFrame("Frame3", Text3, "Text3");
  Frame4 = makeBoxFrame("Frame4", Text4, "Text4");
  Frame5 = makeBoxFrame("Frame5", Text5, "Text5");
  Frame6 = makeBoxFrame("Frame6", Text6, "Text6");
  Text5->setMaximumWidth(QWIDGETSIZE_MAX);  // a formula, not a number
  // The integer tolerance belongs to the polynomial frame, beside the root box.
  Text7 = new QLineEdit;
  Text7->setObjectName("Text7");
  Text7->setMaximumWidth(110);
  if (auto* row = qobject_cast<QBoxLayout*>(Frame6->layout())) {
    row->setDirection(QBoxLayout::LeftToRight);
    row->addWidget(Text7);
    row->addStretch(1);
  }
  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");
  Command3 = makeButton("Command3");
  Command4 = makeButton("Command4");
  Command5 = makeButton("Command5");
  Command6 = makeButton("Command6");
  Command7 = makeButton("Command7");
  Command8 = makeButton("Command8");
  Command9 = makeButton("Command9");
  Check1 = new QCheckBox(this);
  Check1->setObjectName("Check1");
  Check2 = new QCheckBox(this);
  Check2->setObjectName("Check2");
  Check3 = new QCheckBox(this);
  Check3->setObjectName("Check3");
  List1 = new QListWidget(this);
  List1->setObjectName("List1");
  Graph1 = new ChartWidget;
  Graph1->setObjectName("Graph1");
  Graph1->setMinimumSize(420, 340);

  // The interval, the second function, then the polynomial frame.
  auto* fields = new QGridLayout;
  fields->addWidget(Frame1, 0, 0);
  fields->addWidget(Frame2, 0, 1);
  fields->addWidget(Frame3, 1, 0);
  fields->addWidget(Frame4, 1, 1);
  fields->addWidget(Frame5, 2, 0, 1, 2);
  fields->addWidget(Frame6, 3, 0, 1, 2);
  auto* checks = new QHBoxLayout;
  for (QCheckBox* c : {Check1, Check2, Check3}) checks->addWidget(c);
  checks->addStretch(1);
  // The searches, then the polynomial tools, then what every window has.
  auto* buttons = new QGridLayout;
  QPushButton* order[] = {Command1, Command3, Command2, Command7, Command5, Command4, Command6, Command8, Command9};
  for (int k = 0; k < 9; ++k) buttons->addWidget(order[k], k / 3, k % 3);
  auto* side = new QVBoxLayout;
  side->addLayout(fields);
  side->addLayout(checks);
  side->addLayout(buttons);
  side->addWidget(List1, 1);
  auto* layout = new QHBoxLayout(this);
  layout->addWidget(Graph1, 1);
  layout->addLayout(side);
  resize(860, 560);

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

  retranslate();
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
  setWindowTitle(tr("Intersection Point"));
  Frame1->setTitle(tr("Min"));
  Frame2->setTitle(tr("Max"));
  Frame3->setTitle(tr("Num"));
  Frame4->setTitle(tr("Jugde Val"));
  Frame5->setTitle(tr("Second Function"));
  Frame6->setTitle(tr("Polynomial"));
  Text7->setToolTip(tr("Integer tolerance"));
  Command1->setText(tr("Go"));
  Command2->setText(tr("Close"));
  Command3->setText(tr("Inter"));
  Command4->setText(tr("Seek"));
  Command5->setText(tr("Arrange"));
  Command6->setText(tr("Factor"));
  Command7->setText(tr("Expand"));
  Command8->setText(tr("Copy"));
  Command9->setText(tr("Print"));
  Check1->setText(tr("Graph"));
  Check2->setText(tr("Integer"));
  Check3->setText(tr("Coeff"));
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
  if (r.end != RootEnd::kListed) return;
  rootX_ = r.rootX;
  setLines(r.lines);
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
}

void IntersectionWindow::closeEvent(QCloseEvent* event) {
  engine_.BindToX = -1;
  engine_.UnboundPolicy = -1;
  tools_.close();
  ToolWindow::closeEvent(event);
}

}  // namespace merida

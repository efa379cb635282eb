// The Statistical Analysis window: every number comes from stats/statistics.
#include "stats/stat_window.h"

#include <QEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "stats/multreg_window.h"
#include "stats/stat_data_window.h"
#include "stats/statistics.h"
#include "stats/test_window.h"

namespace merida {
namespace {

QString Box(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

StatWindow::StatWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setObjectName("StatWindow");
  Label1 = makeLabel("Label1");
  Label2 = makeLabel("Label2");
  Label3 = makeLabel("Label3", true);
  Label4 = makeLabel("Label4", true);
  Label14 = makeLabel("Label14", true);
  Label14->setWordWrap(true);
  Frame1 = makeBoxFrame("Frame1", Text1, "Text1");
  Text1->setText("1");
  Label5 = makeLabel("Label5");
  Label6 = makeLabel("Label6");
  Text2 = makeResultBox("Text2");
  Text3 = makeResultBox("Text3");
  Frame2 = makeFieldsFrame("Frame2", {{Label5, Text2}, {Label6, Text3}});
  Label7 = makeLabel("Label7");
  Label8 = makeLabel("Label8");
  Label9 = makeLabel("Label9");
  Text4 = makeResultBox("Text4");
  Text5 = makeResultBox("Text5");
  Text6 = makeResultBox("Text6");
  Frame3 = makeFieldsFrame("Frame3", {{Label7, Text4}, {Label8, Text5}, {Label9, Text6}});
  Label10 = makeLabel("Label10");
  Label11 = makeLabel("Label11");
  Label13 = makeLabel("Label13");
  Text7 = makeResultBox("Text7");
  Text8 = makeResultBox("Text8");
  Text9 = makeResultBox("Text9");
  // The line reads as its equation, y = a [ ] x + b [ ], with the correlation below.
  Frame4 = makeFieldsFrame("Frame4", {{Label10, Text7}, {Label13, Text9}});
  auto* line = static_cast<QGridLayout*>(Frame4->layout());
  line->addWidget(Label11, 0, 2);
  line->addWidget(Text8, 0, 3);
  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");
  Command3 = makeButton("Command3");
  Command4 = makeButton("Command4");
  Command5 = makeButton("Command5");
  Command6 = makeButton("Command6");
  Command7 = makeButton("Command7");
  Command8 = makeButton("Command8");
  Graph1 = new ChartWidget;
  Graph1->setObjectName("Graph1");
  Graph1->setMinimumSize(420, 320);

  auto* table = new QGridLayout;
  table->addWidget(Label1, 0, 0);
  table->addWidget(Label3, 0, 1);
  table->addWidget(Label2, 1, 0);
  table->addWidget(Label4, 1, 1);
  table->setColumnStretch(1, 1);
  auto* frames = new QGridLayout;
  frames->addWidget(Frame1, 0, 0, Qt::AlignTop);
  frames->addWidget(Frame2, 0, 1);
  frames->addWidget(Frame3, 1, 0, 1, 2);
  frames->addWidget(Frame4, 2, 0, 1, 2);
  auto* side = new QVBoxLayout;
  side->addLayout(table);
  side->addLayout(frames);
  side->addStretch(1);
  side->addLayout(makeButtonGrid({Command1, Command2, Command3, Command4, Command5, Command6, Command7, Command8}, 3));
  auto* chart = new QVBoxLayout;
  chart->addWidget(Graph1, 1);
  chart->addWidget(Label14);
  auto* layout = new QHBoxLayout(this);
  layout->addLayout(chart, 1);
  layout->addLayout(side);
  resize(900, 500);

  connect(Command1, &QPushButton::clicked, this, &StatWindow::frequency);
  connect(Command2, &QPushButton::clicked, this, &StatWindow::basic);
  connect(Command3, &QPushButton::clicked, this, &StatWindow::regression);
  connect(Command4, &QPushButton::clicked, this, [this] { statDataWindow()->open(); });
  connect(Command5, &QPushButton::clicked, this, &StatWindow::multipleRegression);
  connect(Command6, &QPushButton::clicked, this, [this] {
    TestWindow* w = testWindow();
    w->show();
    w->raise();
  });
  connect(Command7, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Command8, &QPushButton::clicked, this, &QWidget::close);

  retranslate();
  showTableStatus();
  Graph1->setDataSets(1);
  Graph1->draw();
}

void StatWindow::retranslate() {
  setWindowTitle(tr("Statiistical Analysis"));
  Label1->setText(tr("Dim Num"));
  Label2->setText(tr("Count"));
  Frame1->setTitle(tr("Dimension"));
  Frame2->setTitle(tr("Frequency Distribution"));
  Label5->setText(tr("Median"));
  Label6->setText(tr("Max Freq"));
  Frame3->setTitle(tr("Basic Statistic"));
  Label7->setText(tr("Average"));
  Label8->setText(tr("Variance"));
  Label9->setText(tr("Standard deviation"));
  Frame4->setTitle(tr("Regression"));
  Label10->setText(QStringLiteral("y = a"));
  Label11->setText(QStringLiteral("x + b"));
  Label13->setText(tr("Corre"));
  Command1->setText(tr("Freq"));
  Command2->setText(tr("Ave"));
  Command3->setText(tr("Regres"));
  Command4->setText(tr("Data"));
  Command5->setText(tr("MultReg"));
  Command6->setText(tr("Test"));
  Command7->setText(tr("Print"));
  Command8->setText(tr("Close"));
}

void StatWindow::showTableStatus() {
  const RecordFunctionTable& t = state_.Records;
  Label14->setText(QString::fromUtf8(RecordKindText(t.kind)));
  const bool known = t.kind >= WaveData && t.kind <= OrbitaData;
  Label3->setText(known ? QString::number(t.dimension) : QString());
  Label4->setText(known ? QString::number(t.count) : QString());
}

bool StatWindow::event(QEvent* e) {
  if (e->type() == QEvent::WindowActivate) showTableStatus();
  return ToolWindow::event(e);
}

StatDataWindow* StatWindow::statDataWindow() {
  if (!data_) {
    data_ = new StatDataWindow(engine_, state_, this);
    connect(data_, &StatDataWindow::stored, this, &StatWindow::showTableStatus);
  }
  return data_;
}

MultRegWindow* StatWindow::multRegWindow() {
  if (!multReg_) multReg_ = new MultRegWindow(engine_, state_, this);
  return multReg_;
}

TestWindow* StatWindow::testWindow() {
  if (!test_) test_ = new TestWindow(engine_, state_, this);
  return test_;
}

void StatWindow::drawChart(ChartWidget::Style style, const std::vector<ChartPoint>& points) {
  Graph1->setStyle(style);
  Graph1->setPoints(1, points);
  Graph1->draw();
}

void StatWindow::frequency() {
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  const std::optional<FrequencyResult> r = FrequencyDistribution(engine_, state_.Records, Text1->text().toStdString());
  QGuiApplication::restoreOverrideCursor();
  if (!r) return;
  Text2->setText(Box(r->medianBox));
  Text3->setText(Box(r->modeBox));
  drawChart(ChartWidget::Style::kBars, r->chart);
}

void StatWindow::basic() {
  const std::optional<BasicResult> r = BasicStatistics(engine_, state_.Records, Text1->text().toStdString());
  if (!r) return;
  Text4->setText(Box(r->meanBox));
  Text5->setText(Box(r->varianceBox));
  Text6->setText(Box(r->deviationBox));
}

void StatWindow::regression() {
  const std::optional<RegressionResult> r = RegressionLine(engine_, state_.Records, Text1->text().toStdString());
  if (!r) return;
  Text7->setText(Box(r->aBox));
  Text8->setText(Box(r->bBox));
  Text9->setText(Box(r->rBox));
  drawChart(ChartWidget::Style::kPoints, r->chart);
}

void StatWindow::multipleRegression() {
  const std::optional<MultipleRegressionResult> r = MultipleRegression(engine_, state_.Records);
  if (!r) return;
  MultRegWindow* w = multRegWindow();
  w->setResult(*r);
  w->show();
  w->raise();
}

}  // namespace merida

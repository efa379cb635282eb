// The Statistical Analysis window: every number comes from stats/statistics.
#include "stats/stat_window.h"

#include <algorithm>

#include <QEvent>
#include <QGuiApplication>

#include "stats/multreg_window.h"
#include "stats/stat_data_window.h"
#include "stats/statistics.h"
#include "stats/test_window.h"

namespace merida {
namespace {

QString Box(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

StatWindow::StatWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setupUi(this);
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

  showTableStatus();
  Graph1->setDataSets(1);
  Graph1->draw();
}

void StatWindow::retranslate() { retranslateUi(this); }

void StatWindow::showTableStatus() {
  const RecordFunctionTable& t = state_.Records;
  Label14->setText(QString::fromUtf8(RecordKindText(t.kind)));
  explainJapanese(Label14);
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

void StatWindow::drawChart(ChartWidget::Style style, const std::vector<ChartPoint>& points,
                           std::optional<std::pair<QPointF, QPointF>> fit) {
  Graph1->setStyle(style);
  Graph1->setFitLine(fit, tr("Regression line"));
  if (style == ChartWidget::Style::kBars) Graph1->setAxisTitles(tr("Class"), tr("Frequency"));
  else Graph1->setAxisTitles(QStringLiteral("x"), QStringLiteral("y"));
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
  // y = a x + b across the points' x range.
  std::optional<std::pair<QPointF, QPointF>> fit;
  if (r->a && r->b && !r->chart.empty()) {
    const auto [lo, hi] = std::minmax_element(r->chart.begin(), r->chart.end(),
                                              [](const ChartPoint& p, const ChartPoint& q) { return p.x < q.x; });
    const double a = *r->a, b = *r->b;
    fit = std::make_pair(QPointF(lo->x, a * lo->x + b), QPointF(hi->x, a * hi->x + b));
  }
  drawChart(ChartWidget::Style::kPoints, r->chart, fit);
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

// The FFT window: controls wired to signal/frequency; Continue plays its frames on the chart.
#include "signal/fft_window.h"

#include <QSignalBlocker>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "signal/spectrum3d_window.h"
#include "stats/stat_data_window.h"

namespace merida {

FftWindow::FftWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)), analysis_(engine, state) {
  setupUi(this);
  connect(Command1, &QPushButton::clicked, this, &FftWindow::go);
  connect(Command3, &QPushButton::clicked, this, [this] { display(Command3, FftShow::kFourier); });
  connect(Command4, &QPushButton::clicked, this, [this] { display(Command4, FftShow::kPower); });
  connect(Command5, &QPushButton::clicked, this, [this] { display(Command5, FftShow::kCorrelation); });
  connect(Command7, &QPushButton::clicked, this, [this] {
    SpectrumWindow* w = spectrumWindow();
    w->setMatrix(analysis_.continuousMatrix(), analysis_.frameDuration(), analysis_.source() == FftSource::kWave);
    w->show();
    w->raise();
  });
  connect(Command6, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Command8, &QPushButton::clicked, this, [this] { statDataWindow()->open(); });
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Check1, &QCheckBox::clicked, this, [this] { tickSource(Check1, Check2); });
  connect(Check2, &QCheckBox::clicked, this, [this] { tickSource(Check2, Check1); });
  connect(Check3, &QCheckBox::clicked, this, [this] { tickMode(Check3, Check4); });
  connect(Check4, &QCheckBox::clicked, this, [this] { tickMode(Check4, Check3); });
  pressOnEnter({Text1, Text2, Text3}, Command1);

  tickSource(Check1, Check2);
  // 3D is last in its grid: while hidden it leaves no gap between the others.
  Command7->hide();
  Command7->setEnabled(false);
  Graph1->setGraphType(ChartWidget::Type::kLine);
  Graph1->setGridBothWays(true);
  Graph1->setDataSets(1);
  Graph1->draw();
}

void FftWindow::retranslate() {
  retranslateUi(this);
  titleChart();
}

void FftWindow::titleChart() {
  // Sound is sampled in seconds, so its frequencies are in hertz.
  const QString x = shown_ == FftShow::kCorrelation   ? tr("Lag (samples)")
                    : analysis_.source() == FftSource::kWave ? tr("Frequency (Hz)")
                                                        : tr("Frequency (cycles per unit of x)");
  const QString y = shown_ == FftShow::kFourier ? tr("Coefficient")
                    : shown_ == FftShow::kPower ? tr("Power")
                                                : tr("Autocorrelation");
  Graph1->setAxisTitles(x, y);
}

FftSource FftWindow::source() const {
  return Check1->isChecked() ? FftSource::kWave : Check2->isChecked() ? FftSource::kMerida : FftSource::kFormula;
}

FftMode FftWindow::mode() const {
  return Check3->isChecked() ? FftMode::kAverage : Check4->isChecked() ? FftMode::kContinue : FftMode::kOneFrame;
}

SpectrumWindow* FftWindow::spectrumWindow() {
  if (!spectrum_) spectrum_ = new SpectrumWindow(engine_, state_, this);
  return spectrum_;
}

StatDataWindow* FftWindow::statDataWindow() {
  if (!data_) data_ = new StatDataWindow(engine_, state_, this);
  return data_;
}

void FftWindow::tickSource(QCheckBox* ticked, QCheckBox* other) {
  if (ticked->isChecked()) other->setChecked(false);
  const bool recorded = source() != FftSource::kFormula;
  for (QCheckBox* modeBox : {Check3, Check4}) {
    if (!recorded) modeBox->setChecked(false);
    modeBox->setVisible(recorded);
  }
}

void FftWindow::tickMode(QCheckBox* ticked, QCheckBox* other) {
  if (ticked->isChecked()) other->setChecked(false);
}

void FftWindow::setStatus(FftStatus status) { Label3->setText(QString::fromUtf8(FftStatusText(status, japanese()))); }

void FftWindow::drawPoints(const std::vector<ChartPoint>& points) {
  QList<QPointF> list;
  list.reserve(static_cast<qsizetype>(points.size()));
  for (const ChartPoint& p : points) list.append(QPointF(p.x, p.y));
  Graph1->setPoints(1, list);
  Graph1->draw();
}

void FftWindow::go() {
  if (jobRunning()) {
    stopJob();  // the running button reads "Stop"
    return;
  }
  const FftBoxes boxes{Text1->text().toStdString(), Text2->text().toStdString(), Text3->text().toStdString()};
  auto job = std::make_shared<std::unique_ptr<FrequencyAnalysis>>();
  auto result = std::make_shared<FftGoResult>();
  const QString status = Label3->text();
  setStatus(FftStatus::kCalculating);
  startJob(
      Command1,
      [this, job, result, boxes, formula = formula_().toStdString(), source = source()](ToolRun& run) {
        *job = std::make_unique<FrequencyAnalysis>(run.engine, run.state, analysis_);
        *result = (*job)->go(formula, boxes, source);
      },
      [this, job, result, status](ToolRun&) {
        analysis_.takeResultsFrom(**job);
        if (result->numBox) Text3->setText(QString::fromStdString(*result->numBox));
        // A refused run calculated nothing: "Now Calculating" would stay on as a falsehood.
        if (result->end == FftEnd::kDone) setStatus(FftStatus::kFinished);
        else Label3->setText(status);
      },
      [this, status] { Label3->setText(status); }, JobWrites::kRecordTable);
}

void FftWindow::display(QPushButton* button, FftShow what) {
  if (jobRunning()) {
    stopJob();
    return;
  }
  shown_ = what;
  titleChart();
  auto job = std::make_shared<std::unique_ptr<FrequencyAnalysis>>();
  auto result = std::make_shared<FftDisplayResult>();
  // Continue shows its frames as they come; a frame still waiting to be drawn gives way to a newer one.
  auto latest = std::make_shared<std::pair<std::mutex, std::optional<std::vector<ChartPoint>>>>();
  auto frame = [this, latest](const std::vector<ChartPoint>& points) {
    std::lock_guard lock(latest->first);
    const bool posted = latest->second.has_value();
    latest->second = points;
    if (posted) return;
    postWhileRunning([this, latest] {
      std::optional<std::vector<ChartPoint>> shown;
      {
        std::lock_guard taking(latest->first);
        shown.swap(latest->second);
      }
      if (shown) drawPoints(*shown);
    });
  };
  startJob(
      button,
      [this, job, result, what, mode = mode(), frame](ToolRun& run) {
        *job = std::make_unique<FrequencyAnalysis>(run.engine, run.state, analysis_);
        *result = (*job)->display(what, mode, frame);
      },
      [this, job, result](ToolRun&) {
        analysis_.takeResultsFrom(**job);
        const FftDisplayResult& r = *result;
        if (r.end == FftEnd::kError) return;
        Command7->setVisible(r.show3D);
        Command7->setEnabled(r.show3D);
        if (r.end != FftEnd::kDone) return;
        drawPoints(r.points);
        setStatus(r.status);
      },
      [this, shown = Graph1->points(1)] {
        // Frames of a stopped Continue may have been drawn: the chart goes back to what it showed.
        Graph1->setPoints(1, shown);
        Graph1->draw();
      },
      JobWrites::kRecordTable);
}

}  // namespace merida

// The FFT window: a formula or the recorded data as Fourier coefficients, power or autocorrelation.
#pragma once

#include <QPointer>
#include <functional>

#include "controls/chart_widget.h"
#include "main/tool_window.h"
#include "signal/frequency.h"
#include "ui_fft_window.h"

namespace merida {

class SpectrumWindow;
class StatDataWindow;

class FftWindow : public ToolWindow, public Ui::FftWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box when Go starts.
  FftWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent = nullptr);

  void retranslate() override;
  FftSource source() const;
  FftMode mode() const;
  bool running() const { return jobRunning(); }
  StatDataWindow* statDataWindow();
  SpectrumWindow* spectrumWindow();

 private:
  void titleChart();
  void go();
  void display(QPushButton* button, FftShow what);
  // Ticking one box of a pair clears the other; Average and Continue only exist for recorded data.
  void tickSource(QCheckBox* ticked, QCheckBox* other);
  void tickMode(QCheckBox* ticked, QCheckBox* other);
  void setStatus(FftStatus status);
  void drawPoints(const std::vector<ChartPoint>& points);

  std::function<QString()> formula_;
  FrequencyAnalysis analysis_;
  FftShow shown_ = FftShow::kPower;  // what the chart's axes are titled for
  QPointer<StatDataWindow> data_;
  QPointer<SpectrumWindow> spectrum_;
};

}  // namespace merida

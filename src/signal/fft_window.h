// The FFT window: a formula or the recorded data as Fourier coefficients, power or autocorrelation.
#pragma once

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <functional>

#include "controls/chart_widget.h"
#include "main/tool_window.h"
#include "signal/frequency.h"

namespace merida {

class SpectrumWindow;
class StatDataWindow;

class FftWindow : public ToolWindow {
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

  QGroupBox* Frame1;
  QLineEdit *Text1, *Text2, *Text3;
  QLabel *Label2, *Label3;
  QCheckBox *Check1, *Check2, *Check3, *Check4;
  QPushButton *Command1, *Command2, *Command3, *Command4, *Command5, *Command6, *Command7, *Command8;
  ChartWidget* Graph1;

 private:
  void go();
  void display(QPushButton* button, FftShow what);
  // Ticking one box of a pair clears the other; Average and Continue only exist for recorded data.
  void tickSource(QCheckBox* ticked, QCheckBox* other);
  void tickMode(QCheckBox* ticked, QCheckBox* other);
  void setStatus(FftStatus status);
  void drawPoints(const std::vector<ChartPoint>& points);

  std::function<QString()> formula_;
  FrequencyAnalysis analysis_;
  QPointer<StatDataWindow> data_;
  QPointer<SpectrumWindow> spectrum_;
};

}  // namespace merida

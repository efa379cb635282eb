// The Differential & Differential Equation window: derivatives and initial-value problems.
#pragma once

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <functional>

#include "calculus/differential.h"
#include "controls/chart_widget.h"
#include "main/tool_window.h"

namespace merida {

class StatDataWindow;

class DiffWindow : public ToolWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box each time a computation starts.
  DiffWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent = nullptr);

  void retranslate() override;
  bool running() const;
  // The phase-plane field: 1 on, -1 off.
  int16_t plane() const { return plane_; }
  StatDataWindow* statDataWindow();

  QPushButton *Command1, *Command2, *Command3, *Command4, *Command5, *Command6;
  QGroupBox *Frame1, *Frame2, *Frame3, *Frame4, *Frame5, *Frame6, *Frame7, *Frame8;
  QLineEdit *Text1, *Text2, *Text3, *Text4, *Text5, *Text6, *Text7, *Text8;
  QRadioButton *Option1, *Option2;
  QCheckBox *Check1, *Check2;
  ChartWidget* Graph1;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  DiffBoxes boxes() const;
  // Runs one computation at a time, then has the chart draw.
  void run(QPushButton* button, std::function<DiffResult(Engine&, AppState&)> compute);
  void display(const DiffResult& r);
  void syncRungeKutta();

  std::function<QString()> formula_;
  int16_t plane_ = -1;
  QPointer<StatDataWindow> data_;
};

}  // namespace merida

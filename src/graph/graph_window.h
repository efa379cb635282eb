// The Graph window: plots the main window's formula in normal, polar and parametric modes.
#pragma once

#include <QPointer>
#include <functional>

#include "controls/chart_widget.h"
#include "graph/graph_plot.h"
#include "main/tool_window.h"
#include "ui_graph_window.h"

namespace merida {

class NegativeFunctionWindow;
class ParameterWindow;
class StatDataWindow;

class GraphWindow : public ToolWindow, public Ui::GraphWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box each time a plot starts.
  GraphWindow(Engine& engine, AppState& state, std::function<QString()> formula,
              QWidget* parent = nullptr);

  void retranslate() override;
  // What the main window's Graph button does after setting the defaults: a window that was
  // closed starts afresh (empty range boxes), the divisions box shows DivisionCount.
  void prepare();
  // True while a plot runs inside a button handler.
  bool plotting() const { return jobRunning(); }

  ParameterWindow* parameterWindow();
  NegativeFunctionWindow* negativeFunctionWindow();
  StatDataWindow* statDataWindow();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void go();
  void pole();
  void log();
  void para();
  void closeAll();
  GraphBoxes boxes() const;
  std::string formulaText() const;
  // Runs one plot (at most one at a time) and has the chart draw afterwards.
  void run(QPushButton* button, std::function<PlotResult(Engine&, AppState&)> plot);
  void display(const PlotResult& result);

  std::function<QString()> formula_;
  QPointer<ParameterWindow> parameter_;
  QPointer<NegativeFunctionWindow> negative_;
  QPointer<StatDataWindow> data_;
};

}  // namespace merida

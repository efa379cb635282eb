// The Parameter window: the two formulas of a parametric plot.
#pragma once

#include <functional>

#include "main/tool_window.h"
#include "ui_parameter_window.h"

namespace merida {

class ParameterWindow : public ToolWindow, public Ui::ParameterWindow {
  Q_OBJECT

 public:
  ParameterWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;

  // The first press of Para: the main window's formula goes into the first box, which is active.
  void startParametric(const QString& formula);
  QString firstFormula() const { return Text1->text(); }
  QString secondFormula() const { return Text2->text(); }

  // A function chosen in the function list window goes into the active box (parametric mode only).
  void insertFunction(const QString& text);
  // What List opens; the application supplies its function list window.
  void setFunctionListOpener(std::function<void()> open) { openList_ = std::move(open); }

 private:
  void activate(int box);

  std::function<void()> openList_;
};

}  // namespace merida

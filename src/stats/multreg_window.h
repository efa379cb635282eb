// The Multiple Regression Analysis window: the plane z = a x + b y + c and its moments, shown.
#pragma once

#include "main/tool_window.h"
#include "stats/statistics.h"
#include "ui_multreg_window.h"

namespace merida {

class MultRegWindow : public ToolWindow, public Ui::MultRegWindow {
  Q_OBJECT

 public:
  MultRegWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // Text1..Text19 from a computed fit.
  void setResult(const MultipleRegressionResult& result);
};

}  // namespace merida

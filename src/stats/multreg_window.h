// The Multiple Regression Analysis window: the plane z = a x + b y + c and its moments, shown.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <array>

#include "main/tool_window.h"
#include "stats/statistics.h"

namespace merida {

class MultRegWindow : public ToolWindow {
  Q_OBJECT

 public:
  MultRegWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // Text1..Text19 from a computed fit.
  void setResult(const MultipleRegressionResult& result);

  std::array<QLineEdit*, 19> Text;  // Text1..Text19 (objectName "Text1"...)
  QLabel *Label1, *Label2, *Label3, *Label4, *Label5, *Label6, *Label7, *Label8;  // headings that translate
  QPushButton *Command1, *Command2;
};

}  // namespace merida

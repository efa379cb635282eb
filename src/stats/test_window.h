// The Test window: t (or normal), F and chi-square tests against tables of critical values.
#pragma once

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "main/tool_window.h"
#include "stats/hypothesis_test.h"

namespace merida {

class TestWindow : public ToolWindow {
  Q_OBJECT

 public:
  TestWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  int level() const { return Option2->isChecked() ? 1 : 5; }

  QLabel *Label1, *Label2, *Label3, *Label4, *Label5, *Label6, *Label7, *Label8, *Label9;
  QLineEdit *Text1, *Text2, *Text3, *Text4, *Text5, *Text6, *Text7, *Text8, *Text9;
  QGroupBox* Frame1;
  QRadioButton *Option1, *Option2;
  QCheckBox* Check1;
  QPushButton *Command1, *Command2, *Command3, *Command4;

 private:
  void run(TestKind kind);
};

}  // namespace merida

// The Parameter window: the two formulas of a parametric plot.
#pragma once

#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <functional>

#include "main/tool_window.h"

namespace merida {

class ParameterWindow : public ToolWindow {
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

  QGroupBox* Frame1;
  QGroupBox* Frame2;
  QLineEdit* Text1;
  QLineEdit* Text2;
  QRadioButton* Option1;
  QRadioButton* Option2;
  QPushButton* Command1;
  QPushButton* Command2;
  QPushButton* Command3;

 private:
  void activate(int box);

  std::function<void()> openList_;
};

}  // namespace merida

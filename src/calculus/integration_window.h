// The Integration window and its Double Integration window; answers go to the main window.
#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <functional>

#include "calculus/integration.h"
#include "main/tool_window.h"

namespace merida {

// How a window reaches the main window: its formula box and its answer label.
struct MainFormula {
  std::function<QString()> formula;
  std::function<void(const QString&)> answer;
};

class DoubleIntegrationWindow : public ToolWindow {
  Q_OBJECT

 public:
  DoubleIntegrationWindow(Engine& engine, AppState& state, MainFormula main, QWidget* parent = nullptr);

  void retranslate() override;
  // Loading: the variable names, and 20 divisions each way.
  void load(const QString& first, const QString& second);
  bool running() const;

  QPushButton *Command1, *Command2;
  QGroupBox *Frame1, *Frame2, *Frame3, *Frame4, *Frame5, *Frame6, *Frame7, *Frame8;
  QLabel *Label1, *Label2;
  QLineEdit *Text1, *Text2, *Text3, *Text4, *Text5, *Text6;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void go();

  MainFormula main_;
};

class IntegrationWindow : public ToolWindow {
  Q_OBJECT

 public:
  IntegrationWindow(Engine& engine, AppState& state, MainFormula main, QWidget* parent = nullptr);

  void retranslate() override;
  bool running() const;
  // The Double Integration window, once Double has opened it.
  DoubleIntegrationWindow* doubleWindow() const { return double_; }

  QPushButton *Command1, *Command2, *Command3;
  QGroupBox *Frame1, *Frame2, *Frame3;
  QLineEdit *Text1, *Text2, *Text3;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void go();
  void openDouble();

  MainFormula main_;
  QPointer<DoubleIntegrationWindow> double_;
};

}  // namespace merida

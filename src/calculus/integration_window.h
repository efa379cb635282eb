// The Integration window and its Double Integration window; answers go to the main window.
#pragma once

#include <QPointer>
#include <functional>

#include "calculus/integration.h"
#include "main/tool_window.h"
#include "ui_double_integration_window.h"
#include "ui_integration_window.h"

namespace merida {

// How a window reaches the main window: its formula box and its answer label.
struct MainFormula {
  std::function<QString()> formula;
  std::function<void(const QString&)> answer;
};

class DoubleIntegrationWindow : public ToolWindow, public Ui::DoubleIntegrationWindow {
  Q_OBJECT

 public:
  DoubleIntegrationWindow(Engine& engine, AppState& state, MainFormula main, QWidget* parent = nullptr);

  void retranslate() override;
  // Loading: the variable names, and 20 divisions each way.
  void load(const QString& first, const QString& second);
  bool running() const;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void go();

  MainFormula main_;
};

class IntegrationWindow : public ToolWindow, public Ui::IntegrationWindow {
  Q_OBJECT

 public:
  IntegrationWindow(Engine& engine, AppState& state, MainFormula main, QWidget* parent = nullptr);

  void retranslate() override;
  bool running() const;
  // The Double Integration window, once Double has opened it.
  DoubleIntegrationWindow* doubleWindow() const { return double_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void go();
  void openDouble();

  MainFormula main_;
  QPointer<DoubleIntegrationWindow> double_;
};

}  // namespace merida

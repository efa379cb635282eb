// The Function List window: the registered user functions, select, delete and save.
#pragma once

#include <functional>

#include "main/tool_window.h"
#include "ui_function_list_window.h"

namespace merida {

class MainWindow;

class FunctionListWindow : public ToolWindow, public Ui::FunctionListWindow {
  Q_OBJECT

 public:
  FunctionListWindow(Engine& engine, AppState& state, MainWindow& main, QWidget* parent = nullptr);

  void retranslate() override;

  // Where Selct puts the line while the graph is parametric (GraphMode 3): the parameter
  // window's active box. The target returns false when it cannot take the line, which then
  // goes to the main window's formula box.
  void setParameterTarget(std::function<bool(const QString&)> target);

 private:
  void fill();
  void select();
  void remove();
  void save();

  MainWindow& main_;
  std::function<bool(const QString&)> parameterTarget_;
};

}  // namespace merida

// The Help window: operator and function lists, version box, language switch and manual.
#pragma once

#include "main/tool_window.h"
#include "ui_help_window.h"

namespace merida {

class MainWindow;
class Translations;

class HelpWindow : public ToolWindow, public Ui::HelpWindow {
  Q_OBJECT

 public:
  HelpWindow(Engine& engine, AppState& state, Translations& translations, MainWindow& main,
             QWidget* parent = nullptr);

  // Captions and both lists for the current display language.
  void retranslate() override;

 private:
  void showVersion();
  void switchLanguage();
  void openManual();

  Translations& translations_;
  MainWindow& main_;
};

}  // namespace merida

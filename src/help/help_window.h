// The Help window: operator and function lists, version box, language switch and manual.
#pragma once

#include "main/tool_window.h"

class QGroupBox;
class QListWidget;
class QPushButton;

namespace merida {

class MainWindow;
class Translations;

class HelpWindow : public ToolWindow {
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
  QGroupBox* Frame1;
  QListWidget* List1;
  QGroupBox* Frame2;
  QListWidget* List2;
  QPushButton* Command3;
  QPushButton* Command4;
  QPushButton* Command5;
  QPushButton* Command2;
};

}  // namespace merida

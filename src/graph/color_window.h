// The Color Situation window: the colour scheme of the contour and surface drawings.
#pragma once

#include "main/tool_window.h"
#include "ui_color_window.h"

namespace merida {

class ColorWindow : public ToolWindow, public Ui::ColorWindow {
  Q_OBJECT

 public:
  ColorWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // Selects the option whose flag is 1 (called whenever the window is shown).
  void load();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  // The flags in option order: Green, Red, SkyBlue, Yellow, MultiColor.
  int16_t* flag(int option);
  void choose(int option);
};

}  // namespace merida

// The Color Situation window.
#include "graph/color_window.h"

namespace merida {

ColorWindow::ColorWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setupUi(this);
  QRadioButton* options[] = {Option1, Option2, Option3, Option4, Option5};
  for (int k = 1; k <= 5; ++k) connect(options[k - 1], &QRadioButton::clicked, this, [this, k] { choose(k); });
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
  load();
}

void ColorWindow::retranslate() { retranslateUi(this); }

int16_t* ColorWindow::flag(int option) {
  ColorScheme& c = state_.Colors;
  int16_t* flags[] = {&c.Green, &c.Red, &c.SkyBlue, &c.Yellow, &c.MultiColor};
  return flags[option - 1];
}

void ColorWindow::load() {
  QRadioButton* options[] = {Option1, Option2, Option3, Option4, Option5};
  for (int k = 1; k <= 5; ++k) {
    if (*flag(k) == 1) options[k - 1]->setChecked(true);
  }
}

void ColorWindow::choose(int option) {
  for (int k = 1; k <= 5; ++k) *flag(k) = k == option ? 1 : -1;
}

void ColorWindow::showEvent(QShowEvent* event) {
  load();
  ToolWindow::showEvent(event);
}

}  // namespace merida

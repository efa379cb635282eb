// The Color Situation window.
#include "graph/color_window.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace merida {

ColorWindow::ColorWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setObjectName("ColorWindow");
  Frame1 = new QGroupBox;
  Frame1->setObjectName("Frame1");
  auto* options = new QVBoxLayout(Frame1);
  QRadioButton** all[] = {&Option1, &Option2, &Option3, &Option4, &Option5};
  for (int k = 1; k <= 5; ++k) {
    QRadioButton* b = new QRadioButton;
    b->setObjectName(QString("Option%1").arg(k));
    options->addWidget(b);
    connect(b, &QRadioButton::clicked, this, [this, k] { choose(k); });
    *all[k - 1] = b;
  }
  Command1 = new QPushButton;
  Command1->setObjectName("Command1");
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Frame1);
  layout->addWidget(Command1);
  retranslate();
  load();
}

void ColorWindow::retranslate() {
  setWindowTitle(tr("Color Situation"));
  Frame1->setTitle(tr("Color"));
  Option1->setText(tr("Green"));
  Option2->setText(tr("Red"));
  Option3->setText(tr("SkyBlue"));
  Option4->setText(tr("Yellow"));
  Option5->setText(tr("MultiColor"));
  Command1->setText(tr("Close"));
}

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

// The Parameter window.
#include "graph/parameter_window.h"

namespace merida {
namespace {

// The active box's frame caption is red, the other green.
void SetCaptionColor(QGroupBox* frame, const QColor& color) {
  QPalette p = frame->palette();
  p.setColor(QPalette::WindowText, color);
  frame->setPalette(p);
  frame->setStyleSheet(QString("QGroupBox#%1 { color: %2; }").arg(frame->objectName(), color.name()));
}

}  // namespace

ParameterWindow::ParameterWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setupUi(this);

  // The options sit in different frames and are not auto-exclusive: activate() keeps one set.
  connect(Option1, &QRadioButton::clicked, this, [this] { activate(1); });
  connect(Option2, &QRadioButton::clicked, this, [this] { activate(2); });
  connect(Text1, &QLineEdit::textChanged, this, [this] { activate(1); });
  connect(Text2, &QLineEdit::textChanged, this, [this] { activate(2); });
  connect(Command1, &QPushButton::clicked, this, [this] {
    if (openList_) openList_();
  });
  connect(Command2, &QPushButton::clicked, this, [this] {
    if (Option1->isChecked()) Text1->clear();
    else if (Option2->isChecked()) Text2->clear();
  });
  connect(Command3, &QPushButton::clicked, this, [this] {
    state_.GraphMode = 1;
    close();
  });
}

void ParameterWindow::retranslate() { retranslateUi(this); }

void ParameterWindow::activate(int box) {
  state_.ActiveParameterBox = static_cast<int16_t>(box);
  Option1->setChecked(box == 1);
  Option2->setChecked(box == 2);
  SetCaptionColor(box == 1 ? Frame1 : Frame2, QColor(255, 0, 0));
  SetCaptionColor(box == 1 ? Frame2 : Frame1, QColor(0, 255, 0));
}

void ParameterWindow::startParametric(const QString& formula) {
  qsizetype blanks = 0;
  while (blanks < formula.size() && formula[blanks] == ' ') ++blanks;
  Text1->setText(formula.mid(blanks));
  activate(1);
}

void ParameterWindow::insertFunction(const QString& text) {
  if (state_.GraphMode != 3) return;
  (state_.ActiveParameterBox == 2 ? Text2 : Text1)->setText(text);
}

}  // namespace merida

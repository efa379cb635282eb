// The Parameter window.
#include "graph/parameter_window.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace merida {
namespace {

// The active box's frame caption is red, the other green.
void SetCaptionColor(QGroupBox* frame, const QColor& color) {
  QPalette p = frame->palette();
  p.setColor(QPalette::WindowText, color);
  frame->setPalette(p);
  frame->setStyleSheet(QString("QGroupBox#%1 { color: %2; }").arg(frame->objectName(), color.name()));
}

QGroupBox* FormulaFrame(const char* name, QRadioButton*& option, QLineEdit*& text, const char* optionName,
                        const char* textName) {
  auto* frame = new QGroupBox;
  frame->setObjectName(name);
  option = new QRadioButton;
  option->setObjectName(optionName);
  // The two options sit in different frames; the window keeps exactly one of them set.
  option->setAutoExclusive(false);
  text = new QLineEdit;
  text->setObjectName(textName);
  text->setMinimumWidth(320);
  auto* row = new QHBoxLayout(frame);
  row->addWidget(option);
  row->addWidget(text, 1);
  return frame;
}

}  // namespace

ParameterWindow::ParameterWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setObjectName("ParameterWindow");
  Frame1 = FormulaFrame("Frame1", Option1, Text1, "Option1", "Text1");
  Frame2 = FormulaFrame("Frame2", Option2, Text2, "Option2", "Text2");
  Command1 = new QPushButton;
  Command1->setObjectName("Command1");
  Command2 = new QPushButton;
  Command2->setObjectName("Command2");
  Command3 = new QPushButton;
  Command3->setObjectName("Command3");

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(Command1);
  buttons->addWidget(Command2);
  buttons->addWidget(Command3);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Frame1);
  layout->addWidget(Frame2);
  layout->addLayout(buttons);

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
  retranslate();
}

void ParameterWindow::retranslate() {
  setWindowTitle(tr("Parameter"));
  Frame1->setTitle(tr("w Axis"));
  Frame2->setTitle(tr("x Axis"));
  Command1->setText(tr("List"));
  Command2->setText(tr("Clear"));
  Command3->setText(tr("Close"));
}

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

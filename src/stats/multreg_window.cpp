// The Multiple Regression Analysis window: nineteen boxes under their headings.
#include "stats/multreg_window.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <string>

namespace merida {
namespace {

QLabel* Heading(const QString& text) {
  auto* label = new QLabel(text);
  label->setAlignment(Qt::AlignCenter);
  return label;
}

}  // namespace

MultRegWindow::MultRegWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setObjectName("MultRegWindow");
  for (int k = 0; k < 19; ++k) {
    const std::string name = "Text" + std::to_string(k + 1);
    Text[k] = makeResultBox(name.c_str());
    Text[k]->setMaximumWidth(110);
  }
  Label1 = makeLabel("Label1");  // over x and y
  Label2 = makeLabel("Label2");  // over z
  Label1->setAlignment(Qt::AlignCenter);
  Label2->setAlignment(Qt::AlignCenter);
  Label3 = makeLabel("Label3");
  Label4 = makeLabel("Label4");
  Label5 = makeLabel("Label5");
  Label6 = makeLabel("Label6");
  Label7 = makeLabel("Label7");
  Label8 = makeLabel("Label8");
  Command2 = makeButton("Command2");
  Command1 = makeButton("Command1");

  // Rows of three boxes under x, y, z, the covariances under their own headings.
  auto* grid = new QGridLayout;
  grid->addWidget(Label1, 0, 1, 1, 2);
  grid->addWidget(Label2, 0, 3);
  const char* variables[] = {"ｘ", "ｙ", "ｚ"};
  const char* covariances[] = {"Sxy", "Sxz", "Syz"};
  for (int j = 0; j < 3; ++j) {
    grid->addWidget(Heading(QString::fromUtf8(variables[j])), 1, j + 1);
    grid->addWidget(Heading(QString::fromLatin1(covariances[j])), 4, j + 1);
  }
  struct Row {
    int gridRow;
    QLabel* heading;
    int first, count;  // boxes Text[first] .. Text[first + count - 1]
  };
  auto* plane = new QLabel(QStringLiteral("ｚ = ａ･ｘ + ｂ･ｙ + ｃ"));
  const Row rows[] = {{2, Label3, 0, 3}, {3, Label4, 3, 3}, {5, Label5, 6, 3},  {6, Label6, 9, 3},
                      {7, Label7, 12, 3}, {8, Label8, 15, 1}, {9, plane, 16, 3}};
  for (const Row& r : rows) {
    grid->addWidget(r.heading, r.gridRow, 0);
    for (int j = 0; j < r.count; ++j) grid->addWidget(Text[r.first + j], r.gridRow, j + 1);
  }
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(Command2);
  buttons->addWidget(Command1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(grid);
  layout->addStretch(1);
  layout->addLayout(buttons);

  connect(Command2, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
  retranslate();
}

void MultRegWindow::retranslate() {
  setWindowTitle(tr("Multiple Regression Analysis"));
  Label1->setText(tr("Expeositive Var"));
  Label2->setText(tr("Objective Var"));
  Label3->setText(tr("Average"));
  Label4->setText(tr("Variance"));
  Label5->setText(tr("Covariance"));
  Label6->setText(tr("SimpleCorre"));
  Label7->setText(tr("PartialCorre"));
  Label8->setText(tr("MultipleCorre"));
  Command2->setText(tr("Print"));
  Command1->setText(tr("Close"));
}

void MultRegWindow::setResult(const MultipleRegressionResult& result) {
  for (int k = 0; k < 19; ++k) Text[k]->setText(QString::fromStdString(result.boxes[k]));
}

}  // namespace merida

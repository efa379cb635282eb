// The File Display window: Display charts what the table holds at the moment it is pressed.
#include "signal/file_display_window.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "signal/data_files.h"

namespace merida {

FileDisplayWindow::FileDisplayWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setObjectName("FileDisplayWindow");
  Command1 = makeButton("Command1");
  Command3 = makeButton("Command3");
  Command2 = makeButton("Command2");
  Graph1 = new ChartWidget;
  Graph1->setObjectName("Graph1");
  Graph1->setMinimumSize(480, 320);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  for (QPushButton* b : {Command1, Command3, Command2}) buttons->addWidget(b);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Graph1, 1);
  layout->addLayout(buttons);
  resize(640, 440);

  connect(Command1, &QPushButton::clicked, this, &FileDisplayWindow::display);
  connect(Command3, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);

  retranslate();
  Graph1->setGraphType(ChartWidget::Type::kLine);
  Graph1->setDataSets(1);
  Graph1->draw();
}

void FileDisplayWindow::retranslate() {
  setWindowTitle(tr("File Display"));
  Command1->setText(tr("Display"));
  Command3->setText(tr("Print"));
  Command2->setText(tr("Close"));
}

void FileDisplayWindow::display() {
  Graph1->setPoints(1, FileDisplayPoints(state_.Records));
  Graph1->draw();
}

}  // namespace merida

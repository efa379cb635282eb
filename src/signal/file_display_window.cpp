// The File Display window: Display charts what the table holds at the moment it is pressed.
#include "signal/file_display_window.h"

#include "signal/data_files.h"

namespace merida {

FileDisplayWindow::FileDisplayWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setupUi(this);
  connect(Command1, &QPushButton::clicked, this, &FileDisplayWindow::display);
  connect(Command3, &QPushButton::clicked, this, [this] { printWindow(); });
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);

  Graph1->setGraphType(ChartWidget::Type::kLine);
  Graph1->setDataSets(1);
  Graph1->draw();
}

void FileDisplayWindow::retranslate() {
  retranslateUi(this);
  titleAxes();
}

void FileDisplayWindow::titleAxes() {
  // Sound runs over its sample numbers; other data over the range its file gave.
  if (state_.Records.kind == WaveData) Graph1->setAxisTitles(tr("Sample"), tr("Amplitude"));
  else Graph1->setAxisTitles(QStringLiteral("x"), tr("Value"));
}

void FileDisplayWindow::display() {
  titleAxes();
  Graph1->setPoints(1, FileDisplayPoints(state_.Records));
  Graph1->draw();
}

}  // namespace merida

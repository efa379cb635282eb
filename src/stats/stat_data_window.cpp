// The Statistical Data window.
#include "stats/stat_data_window.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <filesystem>
#include <system_error>

namespace merida {

StatDataWindow::StatDataWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setObjectName("StatDataWindow");
  auto box = [](const char* name) {
    auto* b = new QLineEdit;
    b->setObjectName(name);
    return b;
  };
  Label1 = makeLabel("Label1");
  Label2 = makeLabel("Label2");
  Label3 = makeLabel("Label3");
  Text1 = box("Text1");
  Text2 = box("Text2");
  Text3 = box("Text3");
  Command1 = makeButton("Command1");
  Command2 = makeButton("Command2");
  Command3 = makeButton("Command3");
  Grid1 = new GridWidget;
  Grid1->setObjectName("Grid1");

  auto* boxes = new QGridLayout;
  boxes->addWidget(Label1, 0, 0);
  boxes->addWidget(Text1, 0, 1);
  boxes->addWidget(Label3, 1, 0);
  boxes->addWidget(Text3, 1, 1);
  boxes->addWidget(Label2, 2, 0);
  boxes->addWidget(Text2, 2, 1);
  auto* side = new QVBoxLayout;
  side->addLayout(boxes);
  side->addStretch(1);
  side->addWidget(Command1);
  side->addWidget(Command2);
  side->addWidget(Command3);
  auto* layout = new QHBoxLayout(this);
  layout->addWidget(Grid1, 1);
  layout->addLayout(side);
  resize(560, 380);

  connect(Text1, &QLineEdit::returnPressed, this, [this] {
    Text1->setText(QString::fromStdString(data_->enterDimension(Text1->text().toStdString())));
    rebuildGrid();
  });
  connect(Text3, &QLineEdit::returnPressed, this, [this] {
    Text3->setText(QString::fromStdString(data_->enterCount(Text3->text().toStdString())));
    rebuildGrid();
  });
  connect(Text2, &QLineEdit::returnPressed, this, [this] {
    const int i = data_->row(), j = data_->column();
    data_->enterValue(Text2->text().toStdString());
    Grid1->setCellText(i, j, QString::fromStdString(data_->cell(i, j)));
    Text2->clear();
    followCurrentCell();
  });
  connect(Grid1, &QTableWidget::cellClicked, this, [this](int i, int j) {
    data_->select(i, j);
    followCurrentCell();
  });
  connect(Grid1, &QTableWidget::currentCellChanged, this, [this](int i, int j) { data_->select(i, j); });
  connect(Grid1, &GridWidget::cellEdited, this,
          [this](int i, int j, const QString& text) { data_->setCell(i, j, text.toStdString()); });
  connect(Command1, &QPushButton::clicked, this, [this] {
    data_->storeInto(state_.Records);
    emit stored();
  });
  connect(Command2, &QPushButton::clicked, this, [this] {
    std::error_code ec;
    std::filesystem::path dir = std::filesystem::current_path(ec);
    if (!ec) data_->writeFile(dir);  // a failed write ends without a message
  });
  connect(Command3, &QPushButton::clicked, this, &QWidget::close);
  retranslate();
  load();
}

void StatDataWindow::retranslate() {
  setWindowTitle(tr("Statistical Data"));
  // The dimension box has no English caption; the grid's corner says " Dim".
  Label1->setText(japanese() ? QStringLiteral("次元") : QString());
  Label2->setText(tr("Input"));
  Label3->setText(tr("Data Num"));
  Command1->setText(tr("Memory"));
  Command2->setText(tr("File"));
  Command3->setText(tr("Close"));
  if (data_) Grid1->setCellText(0, 0, QString::fromStdString(data_->cell(0, 0)));
}

void StatDataWindow::load() {
  data_ = std::make_unique<StatData>(state_.Records, japanese());
  Text1->setText(QString::number(data_->dimension()));
  Text3->setText(QString::number(data_->count()));
  Text2->clear();
  rebuildGrid();
}

void StatDataWindow::open() {
  load();
  show();
  raise();
}

void StatDataWindow::rebuildGrid() {
  const int rows = data_->count() + 1, columns = data_->dimension() + 1;
  Grid1->setUpdatesEnabled(false);
  Grid1->reset(rows, columns);
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < columns; ++j) Grid1->setCellText(i, j, QString::fromStdString(data_->cell(i, j)));
  }
  Grid1->setUpdatesEnabled(true);
  followCurrentCell();
}

void StatDataWindow::followCurrentCell() {
  Grid1->setCurrentCell(data_->row(), data_->column());
}

}  // namespace merida

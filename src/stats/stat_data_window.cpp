// The Statistical Data window.
#include "stats/stat_data_window.h"

#include <filesystem>
#include <system_error>

namespace merida {

StatDataWindow::StatDataWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent) {
  setupUi(this);
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
  retranslateUi(this);
  // The dimension box has no English caption; the grid's corner says " Dim".
  Label1->setText(japanese() ? QStringLiteral("次元") : QString());
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

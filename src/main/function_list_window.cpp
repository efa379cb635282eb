// The list mirrors the engine's slots: line i (from 0) is user function i + 1.
#include "main/function_list_window.h"

#include <QMessageBox>
#include <filesystem>

#include "main/main_window.h"
#include "main/settings.h"

namespace merida {

FunctionListWindow::FunctionListWindow(Engine& engine, AppState& state, MainWindow& main, QWidget* parent)
    : ToolWindow(engine, state, parent), main_(main) {
  setupUi(this);

  connect(Command3, &QPushButton::clicked, this, &FunctionListWindow::select);
  connect(List1, &QListWidget::itemDoubleClicked, this, &FunctionListWindow::select);
  connect(Command2, &QPushButton::clicked, this, &FunctionListWindow::remove);
  connect(Command4, &QPushButton::clicked, this, &FunctionListWindow::save);
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);

  fill();
}

void FunctionListWindow::retranslate() { retranslateUi(this); }

void FunctionListWindow::setParameterTarget(std::function<bool(const QString&)> target) {
  parameterTarget_ = std::move(target);
}

void FunctionListWindow::fill() {
  List1->clear();
  for (int k = 1; k <= engine_.userFunctionCount(); ++k) {
    List1->addItem(QString::fromStdString(engine_.FunctionListLine(k)));
  }
}

void FunctionListWindow::select() {
  QListWidgetItem* item = List1->currentItem();
  if (!item || !item->isSelected()) return;
  QString line = item->text();
  bool taken = state_.GraphMode == 3 && parameterTarget_ && parameterTarget_(line);
  if (!taken) main_.setFormulaText(line);
  close();
}

void FunctionListWindow::remove() {
  int row = List1->currentRow();
  if (row < 0 || !List1->item(row)->isSelected()) return;
  if (!engine_.DeleteFunction(row + 1)) return;
  delete List1->takeItem(row);
  // The next Del needs a new choice, not the neighbour that moved up.
  List1->setCurrentRow(-1);
  List1->clearSelection();
}

void FunctionListWindow::save() {
  std::error_code error;
  std::filesystem::path dir = std::filesystem::current_path(error);
  const FileResult r = error ? FileResult{error.message()} : SaveUserFunctions(engine_, dir);
  if (r) {
    fill();  // the save may have merged in functions another program saved meanwhile
    return;
  }
  QMessageBox::warning(this, windowTitle(), tr("MERIDA.DAT was not written: %1").arg(QString::fromStdString(r.error)));
}

}  // namespace merida

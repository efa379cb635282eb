// The Simultaneous Linear Equation window: the grid, the entry box and the five buttons.
#include "algebra/simult_window.h"

namespace merida {
namespace {

constexpr int kInputDataError = 46;

// Keys are taken in upper case ("1e5" becomes "1E5"), keeping the cursor where it was.
void UpperCaseAsTyped(QLineEdit* box) {
  QObject::connect(box, &QLineEdit::textEdited, box, [box](const QString& text) {
    QString upper = text.toUpper();
    if (upper == text) return;
    int cursor = box->cursorPosition();
    box->setText(upper);
    box->setCursorPosition(cursor);
  });
}

}  // namespace

SimultWindow::SimultWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setupUi(this);

  UpperCaseAsTyped(Text1);
  UpperCaseAsTyped(Text2);
  connect(Text1, &QLineEdit::returnPressed, this, &SimultWindow::applyDimension);
  connect(Text2, &QLineEdit::returnPressed, this, &SimultWindow::enterCell);
  auto follow = [this](int row, int column) {
    if (row >= 1 && column >= 1) current_ = {row, column};
  };
  connect(Grid1, &QTableWidget::cellClicked, this, follow);
  connect(Grid1, &QTableWidget::currentCellChanged, this, follow);
  connect(Command1, &QPushButton::clicked, this, [this] { run(SolveByElimination); });
  connect(Command5, &QPushButton::clicked, this, [this] { run(SolveByMatrix); });
  connect(Command3, &QPushButton::clicked, this, [this] { run(Determinant); });
  connect(Command4, &QPushButton::clicked, this, [this] { run(Inverse); });
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);

  openInMode(state.MatrixWindowMode);
}

QString SimultWindow::caption(const char* english) const {
  return japanese() ? tr(english) : QString::fromUtf8(english);
}

void SimultWindow::openInMode(int16_t mode) {
  mode_ = mode == kMatrixMode ? kMatrixMode : kEquationsMode;
  Label1->setVisible(!matrixMode());
  Command1->setEnabled(!matrixMode());
  Command5->setEnabled(!matrixMode());
  systemOrder_ = 3;
  Text1->setText("3");
  Text2->clear();
  List1->clear();
  layoutGrid();
  retranslate();
}

void SimultWindow::retranslate() {
  retranslateUi(this);
  setWindowTitle(matrixMode() ? caption(QT_TR_NOOP("Determinant & Inverse Matrix"))
                              : caption(QT_TR_NOOP("Simultaneous Linear Equation")));
  Grid1->setCellText(0, 0, caption(QT_TR_NOOP("Coeff")));
  // "Simult" stays Latin among Japanese captions: keep the buttons one height. The longest
  // caption gets a character's room besides, so that it does not run into the button's edge.
  int height = 0, width = 0;
  for (QPushButton* b : {Command1, Command5, Command3, Command4, Command2}) {
    b->setMinimumSize(0, 0);
    height = std::max(height, b->sizeHint().height());
    width = std::max(width, b->sizeHint().width() + 2 * b->fontMetrics().averageCharWidth());
  }
  for (QPushButton* b : {Command1, Command5, Command3, Command4, Command2}) b->setMinimumSize(width, height);
}

void SimultWindow::layoutGrid() {
  const int n = systemOrder_;
  Grid1->reset(n + 1, matrixMode() ? n + 1 : n + 2);
  Grid1->setCellText(0, 0, caption(QT_TR_NOOP("Coeff")));
  const auto columns = ColumnHeaders(n, matrixMode());
  for (size_t j = 0; j < columns.size(); ++j) {
    Grid1->setCellText(0, static_cast<int>(j) + 1, QString::fromStdString(columns[j]));
  }
  const auto rows = RowHeaders(n);
  for (size_t i = 0; i < rows.size(); ++i) {
    Grid1->setCellText(static_cast<int>(i) + 1, 0, QString::fromStdString(rows[i]));
  }
  setCurrent({1, 1});
}

void SimultWindow::setCurrent(CellPosition at) {
  current_ = at;
  Grid1->setCurrentCell(at.row, at.column);
}

void SimultWindow::applyDimension() {
  auto n = DimensionFromText(Text1->text().toStdString());
  if (!n) return;
  if (*n == kMaxSystemOrder) Text1->setText("10");
  systemOrder_ = *n;
  layoutGrid();
}

void SimultWindow::enterCell() {
  Grid1->setCellText(current_.row, current_.column, Text2->text());
  Text2->clear();
  setCurrent(NextCell(current_, systemOrder_, matrixMode()));
}

CellTexts SimultWindow::gridTexts() const {
  CellTexts grid;
  const int columns = matrixMode() ? systemOrder_ : systemOrder_ + 1;
  for (int i = 1; i <= systemOrder_; ++i) {
    auto& row = grid.emplace_back();
    for (int j = 1; j <= columns; ++j) row.push_back(Grid1->cellText(i, j).toStdString());
  }
  return grid;
}

void SimultWindow::run(LinearResult (*operation)(const CellTexts&)) {
  LinearResult r = operation(gridTexts());
  switch (r.outcome) {
    case LinearOutcome::Listed:
    case LinearOutcome::Refused:
      // A new answer replaces the last one's warning.
      showStatus(r.warning.empty() ? QString()
                                   : tr("Ill-conditioned (condition number about %1): the answer may have no correct digits")
                                         .arg(QString::number(r.condition, 'E', 1)));
      if (statusLine()) statusLine()->setStyleSheet(r.warning.empty() ? QString() : QStringLiteral("color: #c00000"));
      List1->clear();
      for (const std::string& line : r.lines) List1->addItem(QString::fromStdString(line));
      explainJapanese(List1);
      for (size_t i = 0; i < r.cells.size(); ++i) {
        for (size_t j = 0; j < r.cells[i].size(); ++j) {
          Grid1->setCellText(static_cast<int>(i) + 1, static_cast<int>(j) + 1, QString::fromStdString(r.cells[i][j]));
        }
      }
      break;
    case LinearOutcome::NotNumeric:
      setCurrent({r.badRow, r.badColumn});
      engine_.Fail(kInputDataError);
      break;
    case LinearOutcome::Fault:
      engine_.BindToX = -1;
      engine_.StopRequested = 1;
      break;
    case LinearOutcome::Silent:
      break;
  }
}

SimultWindow* ShowSimultWindow(QWidget* owner, Engine& engine, AppState& state, int16_t mode) {
  state.MatrixWindowMode = mode;
  auto* window = owner->findChild<SimultWindow*>(QString(), Qt::FindDirectChildrenOnly);
  if (!window) {
    window = new SimultWindow(engine, state, owner);
  } else if (window->isHidden() || window->matrixMode() != (mode == SimultWindow::kMatrixMode)) {
    window->openInMode(mode);
  }
  window->show();
  window->raise();
  window->activateWindow();
  return window;
}

}  // namespace merida

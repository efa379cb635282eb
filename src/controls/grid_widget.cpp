// The grid control on QTableWidget.
#include "controls/grid_widget.h"

#include <QEvent>
#include <QHeaderView>
#include <QStyle>
#include <QTimer>
#include <algorithm>
#include <numeric>

namespace merida {

GridWidget::GridWidget(QWidget* parent) : QTableWidget(parent) {
  horizontalHeader()->hide();
  verticalHeader()->hide();
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                  QAbstractItemView::AnyKeyPressed);
  // A number broken over two lines or cut to "..." reads as another number.
  setWordWrap(false);
  setTextElideMode(Qt::ElideNone);
  horizontalHeader()->setMinimumSectionSize(1);
  // Tab moves on to the window's next control; arrows and Enter move between cells.
  setTabKeyNavigation(false);
  connect(this, &QTableWidget::itemChanged, this, &GridWidget::markChanged);
}

void GridWidget::reset(int rows, int columns) {
  programmatic_ = true;
  setUpdatesEnabled(false);
  clear();
  setRowCount(rows);
  setColumnCount(columns);
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < columns; ++j) {
      auto* item = new QTableWidgetItem;
      if (i == 0 || j == 0) {
        item->setFlags(Qt::ItemIsEnabled);
        paintHeading(item);
      }
      setItem(i, j, item);
    }
  }
  setUpdatesEnabled(true);
  programmatic_ = false;
  needed_.assign(static_cast<size_t>(columns), 0);
  remeasure_.assign(static_cast<size_t>(columns), true);
  scheduleFit();
}

void GridWidget::setCellText(int row, int column, const QString& text) {
  QTableWidgetItem* cell = item(row, column);
  if (!cell) return;
  programmatic_ = true;
  cell->setText(text);
  programmatic_ = false;
}

QString GridWidget::cellText(int row, int column) const {
  const QTableWidgetItem* cell = item(row, column);
  return cell ? cell->text() : QString();
}

void GridWidget::markChanged(QTableWidgetItem* cell) {
  const int column = cell->column();
  if (column >= 0 && column < static_cast<int>(remeasure_.size())) remeasure_[static_cast<size_t>(column)] = true;
  scheduleFit();
  if (!programmatic_ && cell->row() >= 1 && column >= 1) emit cellEdited(cell->row(), column, cell->text());
}

void GridWidget::scheduleFit() {
  if (fitPending_) return;
  fitPending_ = true;
  QTimer::singleShot(0, this, [this] {
    fitPending_ = false;
    fitColumns();
  });
}

int GridWidget::measure(int column) const {
  const QFontMetrics fm = fontMetrics();
  int widest = 0;
  for (int i = 0; i < rowCount(); ++i) {
    if (const QTableWidgetItem* cell = item(i, column)) widest = std::max(widest, fm.horizontalAdvance(cell->text()));
  }
  // The delegate keeps a margin on each side of the text; the grid line takes one pixel more.
  const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
  return widest + 2 * margin + 1 + fm.averageCharWidth();
}

int GridWidget::neededWidth(int column) const {
  if (column < 0 || column >= static_cast<int>(needed_.size())) return 0;
  return remeasure_[static_cast<size_t>(column)] ? measure(column) : needed_[static_cast<size_t>(column)];
}

void GridWidget::fitColumns() {
  const int columns = columnCount();
  needed_.resize(static_cast<size_t>(columns), 0);
  remeasure_.resize(static_cast<size_t>(columns), true);
  for (int j = 0; j < columns; ++j) {
    if (!remeasure_[static_cast<size_t>(j)]) continue;
    needed_[static_cast<size_t>(j)] = measure(j);
    remeasure_[static_cast<size_t>(j)] = false;
  }
  if (columns == 0) return;
  // Width left over goes to the data columns alike; the heading column keeps what it needs.
  const int total = std::accumulate(needed_.begin(), needed_.end(), 0);
  const int spare = std::max(0, viewport()->width() - total);
  const int sharing = columns > 1 ? columns - 1 : 1;
  const int first = columns > 1 ? 1 : 0;
  for (int j = 0; j < columns; ++j) {
    int width = needed_[static_cast<size_t>(j)];
    if (j >= first) width += spare / sharing + (j - first < spare % sharing ? 1 : 0);
    setColumnWidth(j, width);
  }
}

void GridWidget::resizeEvent(QResizeEvent* event) {
  QTableWidget::resizeEvent(event);
  fitColumns();
}

void GridWidget::changeEvent(QEvent* event) {
  QTableWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) {
    for (int i = 0; i < rowCount(); ++i) {
      for (int j = 0; j < columnCount(); ++j) {
        if (i == 0 || j == 0) paintHeading(item(i, j));
      }
    }
  } else if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    std::fill(remeasure_.begin(), remeasure_.end(), true);
    scheduleFit();
  }
}

void GridWidget::paintHeading(QTableWidgetItem* cell) {
  if (!cell) return;
  const bool was = programmatic_;
  programmatic_ = true;
  cell->setBackground(palette().button());
  cell->setForeground(palette().buttonText());
  programmatic_ = was;
}

}  // namespace merida

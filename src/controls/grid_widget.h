// The grid control: headings in row 0 and column 0, columns that fit what they hold and share
// out the width the window gives them, data cells that take typing as well as program text.
#pragma once

#include <QTableWidget>
#include <vector>

namespace merida {

class GridWidget : public QTableWidget {
  Q_OBJECT

 public:
  explicit GridWidget(QWidget* parent = nullptr);

  // Empties the grid to `rows` x `columns`, headings included: row 0 and column 0 become
  // heading cells (read-only, in the palette's button colours), the others empty data cells.
  void reset(int rows, int columns);
  // Sets any cell's text without reporting it as typed.
  void setCellText(int row, int column, const QString& text);
  QString cellText(int row, int column) const;

  // Sizes the columns now: each at least as wide as its widest text, and together as wide as
  // the view when they need less. Changes are otherwise fitted on the next pass of the event loop.
  void fitColumns();
  // The width a column needs to show its widest text whole.
  int neededWidth(int column) const;

 signals:
  // The user typed `text` into the data cell (row, column).
  void cellEdited(int row, int column, const QString& text);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void markChanged(QTableWidgetItem* item);
  void scheduleFit();
  void paintHeading(QTableWidgetItem* item);
  int measure(int column) const;

  bool programmatic_ = false;
  bool fitPending_ = false;
  std::vector<int> needed_;       // per column, from the last measure
  std::vector<bool> remeasure_;   // per column, text changed since
};

}  // namespace merida

// The non-modal Error Message window that shows the engine's numbered messages.
#pragma once

#include <QDialog>

#include "ui_error_window.h"

namespace merida {

// Where a window of `size` goes beside `anchor` on `screen`: right of it, else left, below or
// above; when none fits, the place that covers the least of the anchor.
QPoint PlaceBeside(const QRect& anchor, const QSize& size, const QRect& screen);

class ErrorWindow : public QDialog, public Ui::ErrorWindow {
  Q_OBJECT

 public:
  explicit ErrorWindow(QWidget* parent = nullptr);

  // Loads the window with the message, beside `raisedBy` so that it covers none of that
  // window; while it is open it is only brought to the front and keeps the message it has.
  // `english`, when not empty, is shown on a second line (the English of the Japanese message).
  void showMessage(const QString& message, QWidget* raisedBy = nullptr, const QString& english = QString());

 private:
  void retranslate();
};

}  // namespace merida

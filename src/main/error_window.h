// The non-modal Error Message window that shows the engine's numbered messages.
#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace merida {

class ErrorWindow : public QDialog {
  Q_OBJECT

 public:
  explicit ErrorWindow(QWidget* parent = nullptr);

  // Loads the window with the message; while it is open it is only brought to the front and
  // keeps the message it has.
  void showMessage(const QString& message);

 private:
  void retranslate();

  QLabel* Label1;
  QPushButton* Command1;
};

}  // namespace merida

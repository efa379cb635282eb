// The desktop calculator: one application object, one event loop.
#include <QApplication>
#include <QIcon>
#include <QMessageBox>
#include <filesystem>

#include "app/application_gui.h"

int main(int argc, char** argv) {
  QApplication qt(argc, argv);
  QApplication::setApplicationName(QStringLiteral("MERIDA"));
  QApplication::setApplicationVersion(QStringLiteral(MERIDA_VERSION));
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/io.github.merida.Merida.svg")));
  // Wayland and the desktop entry match windows to the entry by this name.
  QGuiApplication::setDesktopFileName(QStringLiteral("io.github.merida.Merida"));

  std::error_code error;
  std::filesystem::path dir = std::filesystem::current_path(error);
  merida::Application application(error ? std::filesystem::path(".") : dir);
  // Closing the main window ends the run even while tool windows are still open.
  QObject::connect(&application.mainWindow(), &merida::MainWindow::closed, &qt, &QCoreApplication::quit,
                   Qt::QueuedConnection);
  application.mainWindow().show();
  if (!application.storeNotice().empty()) {
    QMessageBox::warning(&application.mainWindow(), QStringLiteral("MERIDA"),
                         QString::fromStdString(application.storeNotice()));
  }
  return QApplication::exec();
}

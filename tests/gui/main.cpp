// The GUI tests run offscreen inside one QApplication.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // Test discovery runs the program outside ctest's environment, without a display.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

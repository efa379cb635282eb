// The window tests run inside one QApplication, offscreen unless a platform is chosen.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // Test discovery at build time runs this program without the test environment.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

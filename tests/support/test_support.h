// Helpers shared by the test programs.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>

namespace merida::test {

// Runs each test in a fresh temporary directory (ctest runs test programs in parallel).
class TempDir : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  std::filesystem::path dir_;

 private:
  std::filesystem::path previous_;
};

}  // namespace merida::test

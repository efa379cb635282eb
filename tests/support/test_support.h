// Helpers shared by the test programs.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>

namespace merida::test {

// Runs each test in a fresh temporary directory (ctest runs tests in parallel) and goes back after.
class TempDir : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  const std::filesystem::path& dir() const { return dir_; }

 private:
  std::filesystem::path dir_;
  std::filesystem::path previous_;
};

}  // namespace merida::test

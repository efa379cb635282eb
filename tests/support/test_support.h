// Helpers shared by the test programs.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace merida::test {

// A fresh temporary directory that is the current directory for the test's lifetime.
class TempDir : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Writes `contents` to `name` inside the directory.
  void writeFile(const std::string& name, const std::string& contents) const;
  // The whole file, or "" when it does not exist.
  std::string readFile(const std::string& name) const;

  std::filesystem::path dir_;

 private:
  std::filesystem::path previous_;
};

}  // namespace merida::test

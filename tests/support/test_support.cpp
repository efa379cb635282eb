// Temporary working directories for tests that touch files.
#include "test_support.h"

#include <cstdlib>
#include <string>

namespace merida::test {

void TempDir::SetUp() {
  previous_ = std::filesystem::current_path();
  std::string pattern = (std::filesystem::temp_directory_path() / "merida-test-XXXXXX").string();
  char* made = mkdtemp(pattern.data());
  ASSERT_NE(made, nullptr);
  dir_ = made;
  std::filesystem::current_path(dir_);
}

void TempDir::TearDown() {
  std::filesystem::current_path(previous_);
  std::error_code ec;
  std::filesystem::remove_all(dir_, ec);
}

}  // namespace merida::test

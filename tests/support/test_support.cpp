// Each test gets its own directory: ctest runs test programs in parallel.
#include "test_support.h"

#include <fstream>
#include <random>
#include <sstream>

namespace merida::test {

void TempDir::SetUp() {
  previous_ = std::filesystem::current_path();
  std::random_device random;
  const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string("merida-") + (info ? info->name() : "test") + "-" + std::to_string(random());
  for (char& c : name) {
    if (c == '/') c = '_';  // parameterised tests are named "Case/0"
  }
  dir_ = std::filesystem::temp_directory_path() / name;
  std::filesystem::create_directories(dir_);
  std::filesystem::current_path(dir_);
}

void TempDir::TearDown() {
  std::filesystem::current_path(previous_);
  std::error_code ignored;
  std::filesystem::remove_all(dir_, ignored);
}

void TempDir::writeFile(const std::string& name, const std::string& contents) const {
  std::ofstream out(dir_ / name, std::ios::binary);
  out << contents;
}

std::string TempDir::readFile(const std::string& name) const {
  std::ifstream in(dir_ / name, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace merida::test

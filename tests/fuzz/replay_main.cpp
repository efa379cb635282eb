// Replays fuzz inputs without libFuzzer: every file named, or found in a directory named,
// goes once through LLVMFuzzerTestOneInput. A crash or abort fails the test.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

int Replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    std::filesystem::path p(argv[i]);
    if (std::filesystem::is_directory(p)) {
      std::vector<std::filesystem::path> files;
      for (const auto& entry : std::filesystem::directory_iterator(p)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
      }
      for (const auto& f : files) count += Replay(f);
    } else if (std::filesystem::is_regular_file(p)) {
      count += Replay(p);
    } else {
      std::fprintf(stderr, "replay: no such input %s\n", argv[i]);
      return 2;
    }
  }
  std::printf("replayed %d inputs\n", count);
  return count > 0 ? 0 : 2;
}

// Runs a fuzz target over files and directories of inputs, for the builds
// without libFuzzer: the checked-in corpus becomes a regression test.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size);

namespace {

bool runFile(std::filesystem::path const& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    return false;
  }
  std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  // An exact copy, so that the sanitizers see any overrun.
  std::vector<uint8_t> data(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(data.data(), data.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  int files = 0;
  for (int i = 1; i < argc; ++i) {
    std::filesystem::path const arg(argv[i]);
    if (std::filesystem::is_directory(arg)) {
      for (auto const& entry : std::filesystem::directory_iterator(arg)) {
        if (!entry.is_regular_file()) continue;
        if (!runFile(entry.path())) return 1;
        ++files;
      }
    } else {
      if (!runFile(arg)) return 1;
      ++files;
    }
  }
  std::printf("%d inputs ran\n", files);
  return files > 0 ? 0 : 1;
}

// The main of a fuzz target outside libFuzzer: runs every file below the given paths through the target once.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool runFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (file.bad() || !file.is_open()) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    return false;
  }
  // The block has exactly the input's size, so that a sanitizer sees the first byte read beyond it.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::size_t runs = 0;
  for (int i = 1; i < argc; ++i) {
    std::error_code error;
    std::vector<fs::path> files;
    if (fs::is_regular_file(argv[i], error)) files.emplace_back(argv[i]);
    for (fs::recursive_directory_iterator entry(argv[i], error), end; !error && entry != end;
         entry.increment(error)) {
      if (entry->is_regular_file()) files.push_back(entry->path());
    }
    for (const fs::path& file : files) {
      if (!runFile(file)) return 1;
      ++runs;
    }
  }
  std::fprintf(stderr, "%zu inputs\n", runs);
  // A target without seeds tests nothing, which must not look like success.
  return runs == 0 ? 1 : 0;
}

#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zqxml {

/// A new empty folder, removed with all that is in it at the end.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zqxml-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no scratch folder");
    path_ = pattern;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  /// The path of a file in the folder, which need not exist.
  std::string path(std::string_view name) const { return (path_ / name).string(); }
  /// The path of the folder.
  std::string path() const { return path_.string(); }

  /// Makes or replaces a file, and gives its path.
  std::string write(std::string_view name, std::string_view bytes) const {
    std::ofstream file(path(name), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("cannot write a scratch file");
    return path(name);
  }
  /// The bytes of a file; empty when there is none.
  std::string read(std::string_view name) const {
    std::ifstream file(path(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }
  /// How many files and folders are in the folder.
  std::size_t size() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  std::filesystem::path path_;
};

}  // namespace zqxml

#include "output_files.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

namespace zqxml::zqcatc {

namespace fs = std::filesystem;

namespace {

bool hasContent(const fs::path& path, const std::string& text) {
  std::error_code error;
  if (fs::file_size(path, error) != text.size() || error) return false;
  std::ifstream file(path, std::ios::binary);
  const std::string present((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  return file.is_open() && present == text;
}

/// Files that are written and not yet renamed; removed again unless they are.
class Pending {
 public:
  Pending() = default;
  Pending(const Pending&) = delete;
  Pending& operator=(const Pending&) = delete;
  ~Pending() {
    std::error_code ignored;
    for (const Rename& rename : renames_) fs::remove(rename.from, ignored);
  }

  bool write(const fs::path& target, const std::string& text, std::string& error) {
    const fs::path beside = target.string() + ".tmp" + std::to_string(getpid());
    renames_.push_back({beside, target});
    std::ofstream file(beside, std::ios::binary);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (file.fail())
      error = cat("cannot write ", beside.string(), "; is there room, and may you write there?");
    return !file.fail();
  }

  bool renameAll(std::string& error) {
    for (const Rename& rename : renames_) {
      std::error_code code;
      fs::rename(rename.from, rename.to, code);
      if (code) error = cat("cannot replace ", rename.to.string(), ": ", code.message());
      if (code) return false;
    }
    renames_.clear();
    return true;
  }

 private:
  struct Rename {
    fs::path from;
    fs::path to;
  };
  std::vector<Rename> renames_;
};

}  // namespace

bool writeFiles(const fs::path& folder, std::span<const OutputFile> files, std::string& error) {
  Pending pending;
  for (const OutputFile& file : files) {
    const fs::path target = folder / file.path;
    std::error_code code;
    fs::create_directories(target.parent_path(), code);
    if (code) error = cat("cannot make folder ", target.parent_path().string(), ": ", code.message());
    if (code) return false;
    if (!hasContent(target, file.text) && !pending.write(target, file.text, error)) return false;
  }
  return pending.renameAll(error);
}

}  // namespace zqxml::zqcatc

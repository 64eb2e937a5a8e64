#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zqxml/platform/internal/key_file.h>

#include <algorithm>
#include <cstddef>

namespace zqxml::internal {
namespace {

int digitOf(unsigned char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Closes the descriptor and overwrites the area at the end of the block.
struct Source {
  int descriptor = -1;
  std::array<unsigned char, 68> area{};
  std::size_t size = 0;

  ~Source() {
    if (descriptor >= 0) ::close(descriptor);
    cleanse(area.data(), area.size());
  }

  void readAll() {
    while (size < area.size()) {
      const ssize_t count = ::read(descriptor, area.data() + size, area.size() - size);
      if (count <= 0) return;
      size += static_cast<std::size_t>(count);
    }
  }
};

}  // namespace

const char* KeyFile::read(const std::string& path) noexcept {
  if (path.empty()) return "No key file is configured";
  Source source;
  source.descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat state = {};
  if (source.descriptor < 0 || fstat(source.descriptor, &state) != 0 || !S_ISREG(state.st_mode)) {
    return "The key file cannot be read";
  }
  if ((state.st_mode & S_IRWXO) != 0) return "The key file is open to others than its owner and group";
  source.readAll();
  const unsigned char* const area = source.area.data();
  if (source.size == bytes_.size()) {
    std::copy(area, area + bytes_.size(), bytes_.begin());
    return nullptr;
  }
  constexpr const char* kNoKey = "The key file does not hold 32 bytes or 64 hexadecimal digits";
  std::size_t digits = source.size;
  if (digits > 0 && area[digits - 1] == '\n') --digits;
  if (digits > 0 && area[digits - 1] == '\r') --digits;
  if (digits != 2 * bytes_.size()) return kNoKey;
  for (std::size_t i = 0; i < bytes_.size(); ++i) {
    const int high = digitOf(area[2 * i]);
    const int low = digitOf(area[2 * i + 1]);
    if (high < 0 || low < 0) return kNoKey;
    bytes_[i] = static_cast<unsigned char>(high * 16 + low);
  }
  return nullptr;
}

}  // namespace zqxml::internal

#include <fcntl.h>
#include <ini.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <zqxml/platform/platform_info.h>

#include <cctype>
#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <tuple>

namespace zqxml {
namespace {

using Values = std::map<std::pair<std::string, std::string>, std::string, std::less<>>;

// What tells one state of a file from another.
struct FileState {
  std::string path;
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = -1;  // there is no file
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;

  friend bool operator==(const FileState&, const FileState&) = default;

  void take(const struct stat& state) {
    device = state.st_dev;
    inode = state.st_ino;
    size = state.st_size;
    seconds = state.st_mtim.tv_sec;
    nanoseconds = state.st_mtim.tv_nsec;
  }
};

int addValue(void* values, const char* section, const char* key, const char* value) {
  try {
    if (key != nullptr) (*static_cast<Values*>(values))[{section, key}] = value == nullptr ? "" : value;
    return 1;
  } catch (...) {
    return 0;
  }
}

struct Configuration {
  std::mutex mutex;
  std::shared_ptr<const ZQPlatformInfo::Source> source;
  FileState file;
  Values values;

  Configuration() {
    pthread_atfork([] { get().mutex.lock(); }, [] { get().mutex.unlock(); }, [] { get().mutex.unlock(); });
  }

  static Configuration& get() {
    static Configuration* const configuration = new Configuration;
    return *configuration;
  }

  // Brings `values` to the file's present state.
  void refresh() {
    const char* named = secure_getenv("ZQXML_CONFIG");
    FileState now;
    now.path = named != nullptr && *named != '\0' ? named : "/etc/zqxml.ini";
    struct stat state = {};
    if (stat(now.path.c_str(), &state) == 0) now.take(state);
    if (now == file) return;
    Values fresh;
    if (const std::unique_ptr<FILE, int (*)(FILE*)> opened(fopen(now.path.c_str(), "re"), &fclose); opened) {
      // The state of what is read, should the file have been replaced since.
      if (fstat(fileno(opened.get()), &state) == 0) now.take(state);
      // Lines that are no setting are passed over; their number is the result.
      ini_parse_file(opened.get(), &addValue, &fresh);
    }
    values.swap(fresh);
    file = std::move(now);
  }

  std::optional<std::string> find(const std::string& section, std::string_view key) const {
    const auto found = values.find(std::pair<std::string, std::string>(section, key));
    if (found == values.end()) return std::nullopt;
    return found->second;
  }
};

std::optional<std::string> lookUp(const std::string& focus, std::string_view section, std::string_view key) {
  Configuration& configuration = Configuration::get();
  std::unique_lock<std::mutex> lock(configuration.mutex);
  if (const auto source = configuration.source) {
    lock.unlock();
    return (*source)(focus, section, key);
  }
  configuration.refresh();
  const std::string general(section);
  if (!focus.empty()) {
    if (auto found = configuration.find(general + "." + focus, key)) return found;
  }
  return configuration.find(general, key);
}

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// strtoll's numbers, decimal or hexadecimal, and nothing else around them but blanks. Saturates.
std::optional<std::int64_t> parseNumber(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  std::string_view digits = text;
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) digits.remove_prefix(1);
  const bool hexadecimal = digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
  if (hexadecimal) digits.remove_prefix(2);
  if (digits.empty()) return std::nullopt;
  for (const char c : digits) {
    const auto byte = static_cast<unsigned char>(c);
    if (hexadecimal ? std::isxdigit(byte) == 0 : std::isdigit(byte) == 0) return std::nullopt;
  }
  return strtoll(std::string(text).c_str(), nullptr, hexadecimal ? 16 : 10);
}

// Set when the name of this thread is no more: at the end of the process the destructors of static objects
// run behind those of the main thread, and some log.
thread_local bool focusIsGone = false;

struct Focus {
  std::string name;
  ~Focus() { focusIsGone = true; }
};
thread_local Focus focusOfThread;

}  // namespace

void ZQPlatformInfo::setSource(Source source) noexcept try {
  auto shared = source ? std::make_shared<const Source>(std::move(source)) : nullptr;
  Configuration& configuration = Configuration::get();
  const std::lock_guard<std::mutex> lock(configuration.mutex);
  configuration.source.swap(shared);
} catch (...) {
  // Only memory can have run out; the source stays as it was.
}

bool ZQPlatformInfo::getText(std::string_view section, std::string_view key,
                             std::string& value) const noexcept try {
  std::optional<std::string> found = lookUp(focus_, section, key);
  if (!found) return false;
  value = std::move(*found);
  return true;
} catch (...) {
  return false;
}

std::optional<std::int64_t> ZQPlatformInfo::findNumber(std::string_view section,
                                                       std::string_view key) const noexcept try {
  const std::optional<std::string> found = lookUp(focus_, section, key);
  return found ? parseNumber(*found) : std::nullopt;
} catch (...) {
  return std::nullopt;
}

const char* ZQPI_Focus::getFocus() noexcept {
  return focusIsGone ? "" : focusOfThread.name.c_str();
}

void ZQPI_Focus::setFocus(const char* name, int, bool) noexcept try {
  if (focusIsGone) return;
  // The name may be the one that getFocus gave.
  focusOfThread.name = std::string(name == nullptr ? "" : name);
} catch (...) {
  // Only memory can have run out; the name stays as it was.
}

}  // namespace zqxml

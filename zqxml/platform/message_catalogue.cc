#include <dlfcn.h>
#include <link.h>
#include <unistd.h>
#include <zqxml/platform/file.h>
#include <zqxml/platform/internal/message_catalogue.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <filesystem>

namespace zqxml::internal {
namespace {

constexpr std::uint32_t kMagic = 0x950412de;
constexpr std::uint32_t kSwappedMagic = 0xde120495;
constexpr std::size_t kRowBytes = 8;

/// The whole file, or nothing.
std::optional<std::string> contentOf(const std::string& path) {
  // To open a pipe would wait for its writer.
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return std::nullopt;
  CUlFile file(path);
  std::uint64_t size = 0;
  if (!file.IsValid() || file.Size(size).IsError() || size > MessageCatalogue::kMostBytes)
    return std::nullopt;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  unsigned read = 0;
  if (file.Read(bytes.data(), static_cast<unsigned>(bytes.size()), &read).IsError()) return std::nullopt;
  bytes.resize(read);
  return bytes;
}

bool isLanguageName(std::string_view name) {
  const auto fits = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '@';
  };
  return !name.empty() && std::all_of(name.begin(), name.end(), fits);
}

/// Appends the names that a locale's name asks for.
void addNames(std::vector<std::string>& names, std::string_view locale) {
  const std::size_t at = std::min(locale.find('@'), locale.size());
  const std::string_view modifier = locale.substr(at);
  std::string_view region = locale.substr(0, at);
  region = region.substr(0, region.find('.'));
  const std::string_view language = region.substr(0, region.find('_'));
  for (const std::string_view part : {region, language}) {
    if (!modifier.empty()) names.push_back(std::string(part).append(modifier));
    names.emplace_back(part);
    if (language == region) break;
  }
}

/// The file that this code was loaded from; empty when it cannot be told.
std::string ownFile() {
  Dl_info info = {};
  link_map* map = nullptr;
  if (dladdr1(reinterpret_cast<void*>(&addNames), &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) !=
          0 &&
      map != nullptr && map->l_name != nullptr && *map->l_name != '\0')
    return map->l_name;
  // The program itself has no name there.
  std::array<char, PATH_MAX> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  return length <= 0 ? std::string() : std::string(path.data(), static_cast<std::size_t>(length));
}

}  // namespace

MessageCatalogue::MessageCatalogue(std::string bytes) : bytes_(std::move(bytes)) {
  const std::optional<std::uint32_t> magic = word(0);
  if (!magic || (*magic != kMagic && *magic != kSwappedMagic)) return;
  swapped_ = *magic == kSwappedMagic;
  const std::optional<std::uint32_t> count = word(8);
  const std::optional<std::uint32_t> keys = word(12);
  const std::optional<std::uint32_t> texts = word(16);
  if (!count || !keys || !texts || *count > bytes_.size() / kRowBytes) return;
  count_ = *count;
  keys_ = *keys;
  texts_ = *texts;
}

std::optional<std::uint32_t> MessageCatalogue::word(std::size_t offset) const {
  std::uint32_t value = 0;
  if (offset > bytes_.size() || bytes_.size() - offset < sizeof value) return std::nullopt;
  std::memcpy(&value, bytes_.data() + offset, sizeof value);
  return swapped_ ? __builtin_bswap32(value) : value;
}

std::optional<std::string_view> MessageCatalogue::string(std::size_t table, std::size_t row) const {
  const std::optional<std::uint32_t> length = word(table + row * kRowBytes);
  const std::optional<std::uint32_t> offset = word(table + row * kRowBytes + 4);
  if (!length || !offset || *offset > bytes_.size() || *length > bytes_.size() - *offset) return std::nullopt;
  return std::string_view(bytes_).substr(*offset, *length);
}

std::string_view MessageCatalogue::text(std::string_view key) const {
  std::size_t low = 0;
  std::size_t high = count_;
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    const std::optional<std::string_view> found = string(keys_, middle);
    if (!found) return {};
    if (*found == key) return string(texts_, middle).value_or(std::string_view());
    if (*found < key) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return {};
}

std::optional<MessageCatalogue> MessageCatalogue::load(const std::vector<std::string>& folders,
                                                       const std::vector<std::string>& languages) {
  for (const std::string& language : languages) {
    if (!isLanguageName(language)) continue;
    for (const std::string& folder : folders) {
      std::optional<std::string> bytes = contentOf(folder + "/" + language + "/LC_MESSAGES/zqxml.mo");
      if (bytes) return MessageCatalogue(std::move(*bytes));
    }
  }
  return std::nullopt;
}

std::vector<std::string> languagesOf(const char* language, const char* locale) {
  std::vector<std::string> names;
  const std::string_view own = locale == nullptr ? "" : locale;
  const std::string_view plain = own.substr(0, own.find('.'));
  if (plain.empty() || plain == "C" || plain == "POSIX") return names;
  for (std::string_view rest = language == nullptr ? "" : language; !rest.empty();) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    if (end != 0) addNames(names, rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  addNames(names, own);
  return names;
}

std::vector<std::string> catalogueFolders(const char* given) {
  if (given != nullptr && *given != '\0') return {given};
  const std::string file = ownFile();
  const std::string folder = file.substr(0, file.rfind('/') + 1);
  if (folder.empty()) return {};
  // As installed; and as in a build tree, or for a program that has the library in itself.
  return {folder + ZQXML_LOCALE_FROM_LIBRARY, folder + "../share/locale"};
}

}  // namespace zqxml::internal

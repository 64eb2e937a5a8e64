#include <stdlib.h>
#include <zqxml/platform/internal/message_catalogue.h>
#include <zqxml/platform/loc_text.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <memory>

namespace zqxml {
namespace {

using internal::MessageCatalogue;

/// A language identifier and the name of its catalogue.
struct Language {
  unsigned id;
  const char* name;
};

/// From the table of [MS-LCID]: languages of ten bits, and the regions whose text is not that of the
/// language.
constexpr Language kLanguages[] = {
    {0x01, "ar"}, {0x04, "zh"},      {0x05, "cs"},      {0x06, "da"},      {0x07, "de"}, {0x08, "el"},
    {0x09, "en"}, {0x0a, "es"},      {0x0b, "fi"},      {0x0c, "fr"},      {0x0d, "he"}, {0x0e, "hu"},
    {0x10, "it"}, {0x11, "ja"},      {0x12, "ko"},      {0x13, "nl"},      {0x14, "nb"}, {0x15, "pl"},
    {0x16, "pt"}, {0x19, "ru"},      {0x1b, "sk"},      {0x1d, "sv"},      {0x1e, "th"}, {0x1f, "tr"},
    {0x22, "uk"}, {0x0404, "zh_TW"}, {0x0804, "zh_CN"}, {0x0416, "pt_BR"},
};
constexpr unsigned kLanguageBits = 0x3ff;

/// A catalogue that is read when it is first asked for, and then stays.
class LazyCatalogue {
 public:
  /// Null when there is none. `languages` gives the names to look for.
  template <class Languages>
  const MessageCatalogue* get(Languages languages) {
    const Loaded* loaded = loaded_.load(std::memory_order_acquire);
    if (loaded == nullptr) {
      auto fresh = std::make_unique<const Loaded>(
          MessageCatalogue::load(internal::catalogueFolders(secure_getenv("ZQXML_LOCALE_DIR")), languages()));
      // Of threads that come at once, one is kept.
      if (loaded_.compare_exchange_strong(loaded, fresh.get(), std::memory_order_acq_rel))
        loaded = fresh.release();
    }
    return loaded->has_value() ? &**loaded : nullptr;
  }

 private:
  using Loaded = std::optional<MessageCatalogue>;
  std::atomic<const Loaded*> loaded_{nullptr};
};

std::vector<std::string> processLanguages() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* locale = getenv(variable);
    if (locale != nullptr && *locale != '\0') return internal::languagesOf(getenv("LANGUAGE"), locale);
  }
  return {};
}

const MessageCatalogue* processCatalogue() {
  static constinit LazyCatalogue own;
  return own.get(processLanguages);
}

/// The catalogue of exactly this identifier.
const MessageCatalogue* catalogueOf(unsigned id) {
  static constinit std::array<LazyCatalogue, std::size(kLanguages)> catalogues;
  const auto* found = std::find_if(std::begin(kLanguages), std::end(kLanguages),
                                   [id](const Language& language) { return language.id == id; });
  if (found == std::end(kLanguages)) return nullptr;
  return catalogues[static_cast<std::size_t>(found - std::begin(kLanguages))].get(
      [found] { return std::vector<std::string>{found->name}; });
}

const MessageCatalogue* findCatalogue(int localeId) {
  const unsigned id = static_cast<unsigned>(localeId) & 0xffff;
  const unsigned language = id & kLanguageBits;
  if (language == 0) return processCatalogue();
  const MessageCatalogue* catalogue = id == language ? nullptr : catalogueOf(id);
  return catalogue != nullptr ? catalogue : catalogueOf(language);
}

/// As many bytes of `text` as fit, without half a character at the end.
std::size_t fittingBytes(std::string_view text, std::size_t room) {
  if (text.size() <= room) return text.size();
  while (room > 0 && (static_cast<unsigned char>(text[room]) & 0xc0) == 0x80) --room;
  return room;
}

}  // namespace

bool EvGetLocText(std::uint32_t messageId, int localeId, char* buffer, std::size_t size) noexcept {
  if (buffer == nullptr || size == 0) return false;
  *buffer = '\0';
  try {
    const MessageCatalogue* catalogue = findCatalogue(localeId);
    if (catalogue == nullptr) return false;
    std::array<char, sizeof "0x00000000"> key;
    std::snprintf(key.data(), key.size(), "0x%08x", messageId);
    const std::string_view text = catalogue->text(key.data());
    const std::size_t length = fittingBytes(text, size - 1);
    text.copy(buffer, length);
    buffer[length] = '\0';
    return !text.empty();
  } catch (...) {
    // No memory for a catalogue: its texts are not there now, and may be at the next look-up.
    return false;
  }
}

}  // namespace zqxml

// MessageCatalogue: a file of texts in the form of GNU gettext. Not installed.
//
// Byte order: that of the machine the file was made on, told by its first word. All numbers have 32 bits:
//
//   0  0x950412de           8  count of texts            16  offset of the table of translations
//   4  revision, 0 or 1    12  offset of the table of keys   (then a hash table, which is not read)
//
// A table has one row per text: length and offset of a string that ends with a NUL. The keys ascend byte by
// byte. (The GNU gettext manual, "The Format of GNU MO Files".)
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqxml::internal {

/// The texts of one language; constant, so that any thread may read.
class MessageCatalogue {
 public:
  /// Larger files are no catalogue.
  static constexpr std::size_t kMostBytes = std::size_t{16} << 20;

  /// The catalogue in these bytes. Damage shows itself as texts that are not there.
  explicit MessageCatalogue(std::string bytes);

  /// The first of LANGUAGE for which a folder has a file; nothing when none has one. Names with other
  /// characters than letters, digits, '_', '-' and '@' are passed over.
  static std::optional<MessageCatalogue> load(const std::vector<std::string>& folders,
                                              const std::vector<std::string>& languages);

  /// The text of a key; empty when there is none.
  std::string_view text(std::string_view key) const;

 private:
  std::optional<std::uint32_t> word(std::size_t offset) const;
  /// The string of a row; nothing when it does not lie in the file.
  std::optional<std::string_view> string(std::size_t table, std::size_t row) const;

  std::string bytes_;
  bool swapped_ = false;
  std::size_t count_ = 0;
  std::size_t keys_ = 0;
  std::size_t texts_ = 0;
};

/// The names of catalogues to look for, best first, for `$LANGUAGE` and the name of a locale, each of which
/// may be null: "de_AT.UTF-8@euro" asks for "de_AT@euro", "de_AT", "de@euro" and "de". None for the locales
/// "C" and "POSIX", whatever their coding.
std::vector<std::string> languagesOf(const char* language, const char* locale);

/// The folders that hold catalogues: the one given, or when that is null or empty those beside the library or
/// program that holds this code.
std::vector<std::string> catalogueFolders(const char* given);

}  // namespace zqxml::internal

#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml::tool {

/// The forms that a message can be read from and written to.
enum class Form {
  kXml,      ///< one message as XML text, UTF-8 unless its declaration says otherwise
  kXml16,    ///< one message as XML text in UTF-16
  kBinary,   ///< one message in the binary form
  kObjects,  ///< any number of messages: binary forms, each behind its length; in one of two formats
  // Only written:
  kText,  ///< one message as a line of text
  kHtml,  ///< one message as an outline, a fragment of HTML
  kPage,  ///< one message as a page of HTML
};

inline constexpr std::array<std::string_view, 7> kFormNames{"xml",  "xml16", "binary", "objects",
                                                            "text", "html",  "page"};
/// The first forms can be read too; the others are for people.
inline constexpr std::size_t kReadableForms = 4;

constexpr std::string_view formName(Form form) {
  return kFormNames[static_cast<std::size_t>(form)];
}
std::optional<Form> formByName(std::string_view name);
/// The names of the first `count` forms, for the command line.
std::vector<std::string> formNames(std::size_t count);

/// Bytes of an input's start that are enough for detectForm.
inline constexpr std::size_t kDetectionBytes = 4096;

/// The form of an input that starts with `head`, which is kDetectionBytes long unless the input is shorter.
/// XML by its first characters; the others by a tag id of the catalogue at its place in the header.
std::optional<Form> detectForm(std::string_view head);

/// Whether an input that starts with `head` can be in this form at all.
bool mayBe(Form form, std::string_view head);

/// UTF-16 code units of `text` as the bytes of a file: a byte order mark, then little-endian units.
std::string fileBytes(std::u16string_view text);

}  // namespace zqxml::tool

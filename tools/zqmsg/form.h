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
  kJson,     ///< one message as a JSON document
  kJsonl,    ///< any number of messages: JSON documents, each on a line of its own
  // Only written:
  kText,  ///< one message as a line of text
  kHtml,  ///< one message as an outline, a fragment of HTML
  kPage,  ///< one message as a page of HTML
};

inline constexpr std::array<std::string_view, 9> kFormNames{"xml",   "xml16", "binary", "objects", "json",
                                                            "jsonl", "text",  "html",   "page"};
/// The first forms can be read too; the others are for people.
inline constexpr std::size_t kReadableForms = 6;

constexpr bool isReadable(Form form) {
  return static_cast<std::size_t>(form) < kReadableForms;
}
/// Whether an input of this form may hold any number of messages.
constexpr bool isStream(Form form) {
  return form == Form::kObjects || form == Form::kJsonl;
}
constexpr bool isJson(Form form) {
  return form == Form::kJson || form == Form::kJsonl;
}
constexpr bool isXml(Form form) {
  return form == Form::kXml || form == Form::kXml16;
}

constexpr std::string_view formName(Form form) {
  return kFormNames[static_cast<std::size_t>(form)];
}
std::optional<Form> formByName(std::string_view name);
/// The names of the first `count` forms, for the command line.
std::vector<std::string> formNames(std::size_t count);

/// Bytes of an input's start that are enough for detectForm.
inline constexpr std::size_t kDetectionBytes = 4096;

/// Of these, what each form shows itself by when an input comes bit by bit.
inline constexpr std::size_t kLeastDetectionBytes = 12;

/// The form of an input that starts with `head`, which is kDetectionBytes long unless the input is shorter.
/// XML and JSON by their first characters; the others by a tag id of the catalogue at its place in the
/// header. JSON whose first line ends inside the document is one document, other JSON one of each line.
std::optional<Form> detectForm(std::string_view head);

/// Whether a longer head could be of another form than this one: its end is needed to tell.
bool mayChange(Form form, std::string_view head);

/// Whether an input that starts with `head` can be in this form at all.
bool mayBe(Form form, std::string_view head);

/// UTF-16 code units of `text` as the bytes of a file: a byte order mark, then little-endian units.
std::string fileBytes(std::u16string_view text);

}  // namespace zqxml::tool

#include "tools/zqmsg/form.h"

#include <zqxml/catalogue/lookup.h>

#include <algorithm>
#include <cstdint>

#include "tools/zqmsg/object_stream.h"

namespace zqxml::tool {
namespace {

std::uint32_t littleEndian32(std::string_view bytes) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i)
    value = value << 8 | static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
  return value;
}

bool isTagAt(std::string_view head, std::size_t position) {
  if (head.size() < position + 4) return false;
  short subsystem = 0;
  int classIndex = 0;
  return catalogue::indicesFromTag(littleEndian32(head.substr(position)), subsystem, classIndex);
}

// Objects stand behind their length, in format B behind a version field too.
bool startsLikeObjects(std::string_view head) {
  const std::size_t header = recordFormatOf(head) == RecordFormat::kB ? kRecordField : 0;
  return head.size() == header || isTagAt(head, header + 8);
}

/// Behind a byte order mark and white space.
std::string_view textOf(std::string_view head) {
  if (head.starts_with("\xef\xbb\xbf")) head.remove_prefix(3);
  return head.substr(std::min(head.find_first_not_of(" \t\r\n"), head.size()));
}

bool startsLikeXml(std::string_view head) {
  return textOf(head).starts_with('<');
}

/// Nothing but an object is a message: a brace, then a name or the other brace.
bool startsLikeJson(std::string_view head) {
  std::string_view text = textOf(head);
  if (!text.starts_with('{')) return false;
  text = textOf(text.substr(1));
  return text.empty() || text.front() == '"' || text.front() == '}';
}

/// Whether the first line of a JSON text is seen to its end, and ends inside an object.
bool endsInsideObject(std::string_view head) {
  const std::string_view text = textOf(head);
  const std::string_view line = text.substr(0, text.find('\n'));
  int open = 0;
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') quoted = !quoted;
    if (quoted && line[i] == '\\') ++i;
    if (!quoted && line[i] == '{') ++open;
    if (!quoted && line[i] == '}') --open;
  }
  return line.size() < text.size() && open > 0;
}

bool startsLikeXml16(std::string_view head) {
  using namespace std::string_view_literals;
  return head.starts_with("\xff\xfe"sv) || head.starts_with("\xfe\xff"sv) || head.starts_with("<\0"sv) ||
         head.starts_with("\0<"sv);
}

}  // namespace

std::optional<Form> formByName(std::string_view name) {
  const auto found = std::find(kFormNames.begin(), kFormNames.end(), name);
  if (found == kFormNames.end()) return std::nullopt;
  return static_cast<Form>(found - kFormNames.begin());
}

std::vector<std::string> formNames(std::size_t count) {
  return {kFormNames.begin(), kFormNames.begin() + count};
}

bool mayBe(Form form, std::string_view head) {
  if (form == Form::kXml16) return startsLikeXml16(head);
  if (form == Form::kXml) return startsLikeXml(head) && !startsLikeXml16(head);
  if (isJson(form)) return startsLikeJson(head);
  return form == Form::kBinary ? isTagAt(head, 4) : startsLikeObjects(head);
}

std::optional<Form> detectForm(std::string_view head) {
  if (head.empty()) return std::nullopt;
  // Texts first: their first characters as a version or a length would be very large numbers.
  if (mayBe(Form::kJson, head)) return endsInsideObject(head) ? Form::kJson : Form::kJsonl;
  for (Form form : {Form::kXml16, Form::kXml, Form::kBinary, Form::kObjects})
    if (mayBe(form, head)) return form;
  return std::nullopt;
}

bool mayChange(Form form, std::string_view head) {
  return form == Form::kJsonl && textOf(head).find('\n') == std::string_view::npos;
}

std::string fileBytes(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(2 * text.size() + 2);
  bytes += "\xff\xfe";
  for (char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xff);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

}  // namespace zqxml::tool

#include "tools/zqmsg/path_line.h"

#include <charconv>

#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

/// Takes the escape behind a backslash off the text.
std::optional<char> takeEscape(std::string_view& text) {
  if (text.empty()) return std::nullopt;
  const char kind = text.front();
  text.remove_prefix(1);
  if (kind == '\\') return '\\';
  if (kind == 'n') return '\n';
  if (kind == 't') return '\t';
  if (kind == 'r') return '\r';
  if (kind != 'x' || text.size() < 2) return std::nullopt;
  unsigned char byte = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + 2, byte, 16);
  if (error != std::errc() || end != text.data() + 2) return std::nullopt;
  text.remove_prefix(2);
  return static_cast<char>(byte);
}

}  // namespace

std::string pathLine(std::string_view path, std::string_view value) {
  std::string line(path);
  line += '=';
  line += escapedText(value, '\\');
  return line += '\n';
}

std::optional<PathLine> readPathLine(std::string_view line) {
  const std::size_t split = line.find('=');
  if (split == std::string_view::npos) return std::nullopt;
  PathLine read{line.substr(0, split), {}};
  std::string_view rest = line.substr(split + 1);
  while (!rest.empty()) {
    const std::size_t plain = rest.find('\\');
    read.value += rest.substr(0, plain);
    if (plain == std::string_view::npos) break;
    rest.remove_prefix(plain + 1);
    const std::optional<char> byte = takeEscape(rest);
    if (!byte) return std::nullopt;
    read.value += *byte;
  }
  return read;
}

}  // namespace zqxml::tool

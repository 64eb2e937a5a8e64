#include "tools/zqmsg/page/markup.h"

#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

std::string_view entity(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

}  // namespace

std::string htmlText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\n\t"), text.size());
    for (const char c : escapedText(text.substr(0, end), '\0')) {
      const std::string_view reference = entity(c);
      if (reference.empty()) {
        out += c;
      } else {
        out += reference;
      }
    }
    if (end < text.size()) out += text[end];
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return out;
}

}  // namespace zqxml::tool

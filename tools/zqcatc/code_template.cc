#include "code_template.h"

#include <algorithm>

namespace zqxml::zqcatc {

std::string expand(std::string_view text, std::span<const TemplateValue> values) {
  std::string result;
  for (std::size_t gap = text.find('@'); gap != std::string_view::npos; gap = text.find('@')) {
    const std::size_t end = std::min(text.find('@', gap + 1), text.size());
    const std::string_view name = text.substr(gap + 1, end - gap - 1);
    const auto value =
        std::find_if(values.begin(), values.end(), [&](const TemplateValue& v) { return v.name == name; });
    const bool isName = value != values.end() && end != text.size();
    result += text.substr(0, isName ? gap : gap + 1);
    if (isName) result += value->text;
    text.remove_prefix(isName ? end + 1 : gap + 1);
  }
  return result += text;
}

std::string indented(std::string_view text, std::string_view indent) {
  std::string result;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    if (text.front() != '\n') result += indent;
    result += text.substr(0, end);
    text.remove_prefix(end);
  }
  return result;
}

}  // namespace zqxml::zqcatc

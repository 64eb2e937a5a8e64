// C++ text with gaps: "@name@" stands for a value.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zqxml::zqcatc {

struct TemplateValue {
  std::string_view name;
  std::string text;
};

/// `text` with every "@name@" replaced that has a value, of which the first of its name counts. An "@" that
/// begins no such name stays as it stands; values are not looked through.
std::string expand(std::string_view text, std::span<const TemplateValue> values);

/// The lines of `text`, each with `indent` before it; empty lines stay empty.
std::string indented(std::string_view text, std::string_view indent);

}  // namespace zqxml::zqcatc

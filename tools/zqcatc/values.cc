#include "values.h"

#include <charconv>
#include <limits>

namespace zqxml::zqcatc {

std::optional<std::int64_t> parseNumber(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  std::uint64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, hexadecimal ? 16 : 10);
  if (error != std::errc() || stop != end) return std::nullopt;
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (value > (negative ? kMax + 1 : kMax)) return std::nullopt;
  return static_cast<std::int64_t>(negative ? 0 - value : value);
}

std::optional<std::int64_t> numberAttribute(const Element& element, std::string_view attribute,
                                            std::int64_t low, std::int64_t high, std::string_view what,
                                            Diagnostics& diagnostics) {
  const std::optional<std::int64_t> number = parseNumber(element.value(attribute));
  if (number.has_value() && *number >= low && *number <= high) return number;
  diagnostics.error(element.at(attribute),
                    cat(what, " is '", element.value(attribute), "'; write a number from ", low, " to ", high,
                        ", decimal or 0x..."));
  return std::nullopt;
}

bool flagAttribute(const Element& element, std::string_view attribute) {
  const std::string& value = element.value(attribute);
  return value == "true" || value == "1";
}

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

std::string typeName(FieldDataType type) {
  constexpr std::string_view kPrefix = "FDT_";
  return lower(std::string_view(fieldTypeFacts(type).name).substr(kPrefix.size()));
}

std::optional<FieldDataType> typeFromName(std::string_view name) {
  for (unsigned i = 0; i < kFieldTypeCount; ++i) {
    const auto type = static_cast<FieldDataType>(i);
    if (typeName(type) == name) return type;
  }
  return std::nullopt;
}

std::string fieldTypeNames() {
  std::string names;
  for (unsigned i = 0; i < kFieldTypeCount; ++i) {
    const auto type = static_cast<FieldDataType>(i);
    if (isFieldType(type)) names += cat(names.empty() ? "" : ", ", typeName(type));
  }
  return names;
}

}  // namespace zqxml::zqcatc

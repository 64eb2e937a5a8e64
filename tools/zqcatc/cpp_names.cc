#include "cpp_names.h"

#include <algorithm>
#include <array>
#include <map>

namespace zqxml::zqcatc {

namespace {

// Keywords of C++20, names of macros that common headers define or compilers do without -std=c++20, and what
// the written headers use unqualified.
// clang-format off
constexpr auto kTakenNames = std::to_array<std::string_view>({
    "AnnotationBase", "EOF", "FieldNumber", "NULL", "ObjectMapView", "ObjectView", "RegisterSubsystem", "XNMessageBase",
    "alignas", "alignof",
    "and", "and_eq", "asm", "auto", "bitand", "bitor", "bool", "break", "bstring", "case", "catch",
    "char", "char16_t", "char32_t", "char8_t", "class", "co_await", "co_return", "co_yield", "compl",
    "concept", "const", "const_cast", "consteval", "constexpr", "constinit", "continue", "decltype",
    "default", "delete", "do", "double", "dynamic_cast", "else", "enum", "errno", "explicit", "export",
    "extern", "false", "float", "for", "friend", "from", "goto", "if", "inline", "int", "kClassIndex",
    "kSubsystem", "kTagId", "linux", "long", "major", "minor",
    "mutable", "namespace", "new", "noexcept", "not", "not_eq", "nullptr", "operator", "or", "or_eq",
    "private", "protected", "pstring", "public", "register", "reinterpret_cast", "requires", "return",
    "short", "signed", "sizeof", "static", "static_assert", "static_cast", "std", "stderr", "stdin",
    "stdout", "struct", "switch", "template", "this", "thread_local", "throw", "true", "try", "typed",
    "typedef", "typeid", "typename", "union", "unix", "unsigned", "using", "virtual", "void", "volatile",
    "wchar_t", "while", "xor", "xor_eq", "zqxml"});
// clang-format on
static_assert(std::is_sorted(kTakenNames.begin(), kTakenNames.end()));

bool isIdentifierByte(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

std::string withUnderscores(std::string_view name) {
  std::string result(name);
  std::replace_if(
      result.begin(), result.end(), [](char c) { return !isIdentifierByte(c); }, '_');
  return result;
}

/// What already has a C++ name.
struct Holder {
  std::string_view name;
  const Position* position;
};

/// Equal names are an error of their own and not repeated here. False when the name was taken.
bool checkUnique(std::map<std::string, Holder>& taken, std::string cppName, std::string_view kind,
                 const Holder& holder, std::string_view instead, Diagnostics& diagnostics) {
  const auto [entry, isNew] = taken.try_emplace(std::move(cppName), holder);
  const Holder& first = entry->second;
  if (isNew) return true;
  if (first.name == holder.name) return false;
  diagnostics.error(*holder.position,
                    cat(kind, " '", holder.name, "' would have the C++ name '", entry->first, "', like '",
                        first.name, "' at ", first.position->file, ":", first.position->line, "; ", instead));
  return false;
}

/// The names that a field gives its class; writeAccessors() writes them.
std::vector<std::string> accessorNames(const Field& field) {
  const std::string stem = accessorStem(field);
  std::vector<std::string> names{"get" + stem, "set" + stem, "is" + stem + "Set", "unset" + stem};
  if (!kNumberTypes.contains(field.type)) names.push_back("mutable" + stem);
  if (field.type == FDT_LIST_OBJECT) names.push_back("mutable" + stem + "Vector");
  if (field.type == FDT_LIST_OBJECT || kMapTypes.contains(field.type)) names.push_back("addTo" + stem);
  if (kMapTypes.contains(field.type)) {
    names.push_back("findIn" + stem);
    names.push_back("mutable" + stem + "Map");
  }
  return names;
}

/// The fields of a message class: stems that differ can still meet in an accessor, or in the class's name.
void checkAccessors(const Class& record, Diagnostics& diagnostics) {
  constexpr std::string_view kInstead = "give one a name with cpp=\"...\"";
  std::map<std::string, Holder> stems;
  std::map<std::string, Holder> accessors;
  accessors.try_emplace(cppIdentifier(record.name), Holder{record.name, &record.position});
  for (const Field& field : record.fields) {
    const Holder holder{field.name, &field.position};
    if (field.isSelf || !checkUnique(stems, accessorStem(field), "field", holder, kInstead, diagnostics))
      continue;
    for (std::string& name : accessorNames(field))
      if (!checkUnique(accessors, std::move(name), "field", holder, kInstead, diagnostics)) break;
  }
}

}  // namespace

std::string cppIdentifier(std::string_view name) {
  std::string result = withUnderscores(name);
  if (std::binary_search(kTakenNames.begin(), kTakenNames.end(), result)) result += '_';
  return result;
}

std::string accessorStem(const Field& field) {
  std::string stem = withUnderscores(field.cppName.empty() ? field.name : field.cppName);
  if (stem[0] >= 'a' && stem[0] <= 'z') stem[0] = static_cast<char>(stem[0] - 'a' + 'A');
  return stem;
}

std::string stringLiteral(std::string_view bytes) {
  std::string literal = "\"";
  for (char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    if (byte == '"' || byte == '\\' || byte == '?') {
      literal += '\\';
      literal += byte;
    } else if (value >= 0x20 && value < 0x7f) {
      literal += byte;
    } else {
      // Three octal digits end by themselves, whatever follows.
      literal += '\\';
      for (int shift = 6; shift >= 0; shift -= 3) literal += static_cast<char>('0' + ((value >> shift) & 7));
    }
  }
  return literal + '"';
}

std::string hexNumber(std::uint32_t value) {
  std::string digits;
  do digits.insert(digits.begin(), "0123456789abcdef"[value & 15]);
  while ((value >>= 4) != 0);
  return "0x" + digits;
}

std::string docComment(std::string_view text, std::string_view indent) {
  std::string comment;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t begin = line.find_first_not_of(" \t\r");
    line.remove_prefix(std::min(begin, line.size()));
    // A backslash at its end would draw the next line into the comment.
    while (!line.empty() &&
           (line.back() == '\\' || line.back() == ' ' || line.back() == '\t' || line.back() == '\r'))
      line.remove_suffix(1);
    comment += cat(indent, "///", line.empty() ? "" : " ", line, "\n");
  }
  return comment;
}

void checkCppNames(const Catalogue& catalogue, Diagnostics& diagnostics) {
  for (const auto& subsystem : catalogue.subsystems) {
    std::map<std::string, Holder> classes;
    for (const auto& record : subsystem->classes) {
      checkUnique(classes, cppIdentifier(record->name), record->isEnumeration ? "enumeration" : "class",
                  {record->name, &record->position}, "rename one", diagnostics);
      if (!record->isEnumeration) {
        checkAccessors(*record, diagnostics);
        continue;
      }
      std::map<std::string, Holder> enumerators;
      for (const Field& field : record->fields)
        checkUnique(enumerators, cppIdentifier(field.name), "enumerator", {field.name, &field.position},
                    "rename one", diagnostics);
    }
  }
}

}  // namespace zqxml::zqcatc

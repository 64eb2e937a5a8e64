#include "doc_comments.h"

#include <algorithm>

#include "cpp_names.h"
#include "values.h"

namespace zqxml::zqcatc {

namespace {

/// In quotes, on one line.
std::string inQuotes(std::string_view text) {
  std::string result(text);
  std::replace_if(
      result.begin(), result.end(), [](unsigned char c) { return c < 0x20; }, ' ');
  return cat("\"", result, "\"");
}

const Element* annotationOf(const Field& field, std::string_view name) {
  const auto found = std::find_if(field.annotationElements.begin(), field.annotationElements.end(),
                                  [&](const Element& element) { return element.name == name; });
  return found == field.annotationElements.end() ? nullptr : &*found;
}

/// What people are shown for a field or an enumerator, as a sentence; "" when the schema does not say.
std::string shownAs(const Field& field) {
  const Element* text = annotationOf(field, "Text");
  if (text == nullptr || text->value("text").empty()) return {};
  return cat("Shown as ", inQuotes(text->value("text")), ".");
}

/// The default as the type shows it: an enumerator by its name, a text in quotes, anything else as it stands.
std::string defaultOf(const Field& field) {
  const std::string& text = field.defaultText->value;
  if (kEnumTypes.contains(field.type)) {
    const std::optional<std::int64_t> number = parseNumber(text);
    for (const Field& enumerator : field.references.front().target->fields)
      if (number && static_cast<std::int32_t>(enumerator.hash) == static_cast<std::int32_t>(*number))
        return cat(enumerator.name, " (", text, ")");
  }
  return kNumberTypes.contains(field.type) ? text : inQuotes(text);
}

void addSentence(std::string& text, const std::string& sentence) {
  if (sentence.empty()) return;
  if (!text.empty()) text += ' ';
  text += sentence;
}

}  // namespace

std::string classComment(const Class& record) {
  if (!record.doc.empty()) return docComment(record.doc, "");
  return docComment(cat(record.isEnumeration ? "Enumeration " : "Message ", record.subsystem->name,
                        record.isEnumeration ? "." : "_", record.name, "."),
                    "");
}

std::string enumeratorComment(const Field& enumerator) {
  return docComment(enumerator.doc.empty() ? shownAs(enumerator) : enumerator.doc, "  ");
}

std::string fieldComment(const Field& field) {
  std::string text = cat(field.name, ": ", typeName(field.type));
  for (const Reference& reference : field.references) text += " " + reference.text;
  text += ".\n";
  if (!field.doc.empty()) text += field.doc + "\n";
  std::string facts;
  if (field.defaultText) addSentence(facts, cat("Default ", defaultOf(field), "."));
  addSentence(facts, shownAs(field));
  if (field.label != 0)
    addSentence(facts, cat("Label ", hexNumber(static_cast<std::uint32_t>(field.label)), "."));
  if (annotationOf(field, "Sensitive") != nullptr) addSentence(facts, "Sensitive: logs hide it.");
  return docComment(text + facts, "  ");
}

}  // namespace zqxml::zqcatc

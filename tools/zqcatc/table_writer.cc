#include "table_writer.h"

#include <zqxml/catalogue/class_ref.h>
#include <zqxml/catalogue/records.h>

#include <algorithm>

#include "cpp_names.h"

namespace zqxml::zqcatc {

namespace {

/// Namespace of a subsystem's tables; hidden from the users of the library.
std::string tablesNamespace(const Subsystem& subsystem) {
  return "zqxml::catalogue::tables::" + subsystem.name;
}

/// The four bytes of a ClassRef.
std::string classRefBytes(const Class& target) {
  std::string bytes;
  bytes += static_cast<char>(target.subsystem->slot);
  for (int shift = 16; shift >= 0; shift -= 8) bytes += static_cast<char>((target.index >> shift) & 0xff);
  return bytes;
}

std::string fieldRow(const Field& field) {
  std::string prefix;
  for (const Reference& reference : field.references) prefix += classRefBytes(*reference.target);
  return cat("    {", prefix.empty() ? "" : stringLiteral(prefix) + " ", stringLiteral(field.name), ", ",
             field.annotation.has_value() ? stringLiteral(*field.annotation) : "nullptr", ", ",
             hexNumber(field.hash), ", ", field.label, ", ", field.memNum, ", ", field.index, ", ",
             fieldTypeFacts(field.type).name, "},\n");
}

std::string fieldsName(const Class& record) {
  return "k" + cppIdentifier(record.name) + "Fields";
}

std::string classRow(const Class& record) {
  return cat("    /* ", record.index, " */ {", stringLiteral(record.name), ", ",
             record.fields.empty() ? "nullptr" : fieldsName(record), ", ", hexNumber(record.id), ", ",
             record.defaultsStart, ", ", record.fields.size(), ", ", record.elements, "},\n");
}

/// Records that the schema does not describe, many to a line.
std::string emptyRows(int count) {
  std::string rows;
  for (int i = 0; i < count; ++i)
    rows += cat(i % 24 == 0 ? "    {}" : " {}", i % 24 == 23 || i + 1 == count ? ",\n" : ",");
  return rows;
}

std::string classTable(const Subsystem& subsystem) {
  std::string text = cat("extern const _ClassDef kClasses[", subsystem.records,
                         "];\nconstexpr _ClassDef kClasses[", subsystem.records, "] = {\n");
  int next = 0;
  for (const auto& record : subsystem.classes) {
    text += emptyRows(record->index - next) + classRow(*record);
    next = record->index + 1;
  }
  return text + emptyRows(subsystem.records - next) + "};\n\n";
}

std::string idIndex(const Subsystem& subsystem) {
  std::vector<const Class*> byId;
  for (const auto& record : subsystem.classes)
    if (record->id != 0) byId.push_back(record.get());
  std::sort(byId.begin(), byId.end(), [](const Class* a, const Class* b) { return a->id < b->id; });
  std::string text = cat("extern const ClassIdIndexEntry kIds[", subsystem.records,
                         "];\nconstexpr ClassIdIndexEntry kIds[", subsystem.records, "] = {\n");
  // Every record has an entry; that of a record without an id leads to the first record.
  text += emptyRows(subsystem.records - static_cast<int>(byId.size()));
  for (const Class* record : byId) text += cat("    {", hexNumber(record->id), ", ", record->index, "},\n");
  return text + "};\n\n";
}

std::size_t defaultsCount(const Subsystem& subsystem) {
  std::size_t count = 0;
  for (const auto& record : subsystem.classes) {
    const auto run = std::count_if(record->fields.begin(), record->fields.end(),
                                   [](const Field& field) { return field.defaultText.has_value(); });
    if (run != 0) count += static_cast<std::size_t>(run) + 1;
  }
  return count;
}

std::string defaultsTable(const Subsystem& subsystem) {
  const std::size_t count = defaultsCount(subsystem);
  if (count == 0) return {};
  std::string text = cat("extern const FieldDefaultEntry kDefaults[", count,
                         "];\nconstexpr FieldDefaultEntry kDefaults[", count, "] = {\n");
  for (const auto& record : subsystem.classes) {
    if (record->defaultsStart < 0) continue;
    text += cat("    /* ", record->defaultsStart, ": ", record->name, " */\n");
    for (const Field& field : record->fields) {
      if (field.defaultText.has_value())
        text += cat("    {", field.memNum, ", ", stringLiteral(field.defaultText->value), "},\n");
    }
    text += "    {-1, nullptr},\n";
  }
  return text + "};\n\n";
}

}  // namespace

std::string writeSubsystemTables(const Subsystem& subsystem, std::string_view firstLine) {
  std::string text = cat(firstLine, "#include <zqxml/catalogue/records.h>\n\nnamespace ",
                         tablesNamespace(subsystem), " {\n\n");
  for (const auto& record : subsystem.classes) {
    if (record->fields.empty()) continue;
    text += cat("static constexpr FieldDef ", fieldsName(*record), "[] = {\n");
    for (const Field& field : record->fields) text += fieldRow(field);
    text += "};\n";
  }
  text += "\n";
  if (subsystem.records != 0) text += classTable(subsystem) + idIndex(subsystem);
  text += defaultsTable(subsystem);
  text += cat(
      "}  // namespace ", tablesNamespace(subsystem), "\n\nnamespace zqxml::", subsystem.name,
      " {\n\nZQXML_EXPORT void RegisterSubsystem();\nvoid RegisterSubsystem() {}\n\n}  // namespace zqxml::",
      subsystem.name, "\n");
  return text;
}

std::string writeSubsystemTable(const Catalogue& catalogue, std::string_view firstLine) {
  std::string text = cat(firstLine, "#include <zqxml/catalogue/records.h>\n\n");
  for (const auto& subsystem : catalogue.subsystems) {
    if (subsystem->records == 0) continue;
    text += cat("namespace ", tablesNamespace(*subsystem), " {\nextern const _ClassDef kClasses[",
                subsystem->records, "];\nextern const ClassIdIndexEntry kIds[", subsystem->records, "];\n");
    if (const std::size_t count = defaultsCount(*subsystem); count != 0)
      text += cat("extern const FieldDefaultEntry kDefaults[", count, "];\n");
    text += "}\n";
  }
  text +=
      "\nnamespace zqxml {\n\n// Weak: the table of a program takes the place of the library's.\n"
      "extern __attribute__((weak)) const SubsystemDef gSubsystemTable[kSubsystemCount + 1];\n"
      "constexpr SubsystemDef gSubsystemTable[kSubsystemCount + 1] = {\n";
  int next = 0;
  for (const auto& subsystem : catalogue.subsystems) {
    text += emptyRows(subsystem->slot - next);
    const std::string tables = "catalogue::tables::" + subsystem->name + "::";
    const bool empty = subsystem->records == 0;
    text += cat("    /* ", subsystem->slot, " */ {", stringLiteral(subsystem->name), ", ",
                empty ? "nullptr" : tables + "kClasses", ", ", empty ? "nullptr" : tables + "kIds", ", ",
                defaultsCount(*subsystem) == 0 ? "nullptr" : tables + "kDefaults", ", ", subsystem->records,
                ", ", subsystem->old ? "true" : "false", "},\n");
    next = subsystem->slot + 1;
  }
  return text + emptyRows(kSubsystemCount + 1 - next) + "};\n\n}  // namespace zqxml\n";
}

}  // namespace zqxml::zqcatc

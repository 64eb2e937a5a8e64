#include "table_writer.h"

#include <zqxml/catalogue/class_ref.h>
#include <zqxml/catalogue/internal/class_buckets.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/catalogue/records.h>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

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

/// The one number that C++ cannot write with a minus in front is a path's id too.
std::string numberLiteral(std::int32_t number) {
  return number == std::numeric_limits<std::int32_t>::min() ? "-0x7fffffff - 1" : std::to_string(number);
}

/// Records that the schema does not describe, many to a line.
std::string emptyRows(int count) {
  std::string rows;
  for (int i = 0; i < count; ++i)
    rows += cat(i % 24 == 0 ? "    {}" : " {}", i % 24 == 23 || i + 1 == count ? ",\n" : ",");
  return rows;
}

/// Declaration and start of a table with external linkage, which a constant would not have by itself.
std::string tableStart(std::string_view type, std::string_view name, std::size_t count) {
  const std::string declaration = cat(type, " ", name, "[", count, "]");
  return cat("extern const ", declaration, ";\nconstexpr ", declaration, " = {\n");
}

std::string classTable(const Subsystem& subsystem) {
  std::string text = tableStart("_ClassDef", "kClasses", static_cast<std::size_t>(subsystem.records));
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
  std::string text = tableStart("ClassIdIndexEntry", "kIds", static_cast<std::size_t>(subsystem.records));
  // Every record has an entry; that of a record without an id leads to the first record.
  text += emptyRows(subsystem.records - static_cast<int>(byId.size()));
  for (const Class* record : byId) text += cat("    {", hexNumber(record->id), ", ", record->index, "},\n");
  return text + "};\n\n";
}

unsigned bucketBits(const Subsystem& subsystem) {
  return catalogue::bucketBitsFor(subsystem.classes.size());
}

/// The classes by id, and behind them by name.
std::string bucketTable(const Subsystem& subsystem) {
  const unsigned bits = bucketBits(subsystem);
  const std::size_t size = std::size_t{1} << bits;
  std::vector<std::int16_t> buckets(2 * size, catalogue::kFreeBucket);
  const auto add = [&](std::int16_t* table, std::uint32_t key, int index) {
    table[catalogue::searchBuckets(table, bits, key, [](int) { return false; })] =
        static_cast<std::int16_t>(index);
  };
  for (const auto& record : subsystem.classes) {
    if (record->id != 0) add(buckets.data(), record->id, record->index);
    add(buckets.data() + size, nameHash(record->name), record->index);
  }
  std::string text = tableStart("std::int16_t", "kBuckets", buckets.size());
  for (std::size_t i = 0; i < buckets.size(); ++i)
    text +=
        cat(i % 16 == 0 ? "   " : "", " ", buckets[i], i % 16 == 15 || i + 1 == buckets.size() ? ",\n" : ",");
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
  std::string text = tableStart("FieldDefaultEntry", "kDefaults", count);
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

/// The tables of the subsystem's paths, each with one entry behind the last path.
std::string pathTables(const Subsystem& subsystem) {
  const std::vector<FieldPath>& paths = subsystem.paths;
  if (paths.empty()) return {};
  std::string members = "static constexpr short kPathMembers[] = {\n";
  std::string fields = tableStart("XPathFieldsInfo", "kPathFields", paths.size() + 1);
  std::string texts = tableStart("XPathEntry", "kPaths", paths.size() + 1);
  std::vector<std::pair<std::int32_t, std::size_t>> ids;
  std::size_t memberCount = 0;
  for (const FieldPath& path : paths) {
    members += "   ";
    for (const std::int16_t member : path.members) members += cat(" ", member, ",");
    members += "\n";
    fields += cat("    {kPathMembers + ", memberCount, ", ", path.members.size(), "},\n");
    texts += cat("    {", numberLiteral(path.id), ", ", stringLiteral(path.text), "},\n");
    ids.emplace_back(path.id, ids.size());
    memberCount += path.members.size();
  }
  std::sort(ids.begin(), ids.end());
  std::string helper = tableStart("XPathIDHelper", "kPathIds", paths.size() + 1);
  for (const auto& [id, place] : ids) helper += cat("    {", numberLiteral(id), ", ", place, "},\n");
  return cat(members, "};\n", fields, "    {},\n};\n", helper, "    {-1, -1},\n};\n", texts,
             "    {},\n};\n\n");
}

/// Source text of gXPathTable.
std::string pathTable(const Catalogue& catalogue) {
  std::string rows;
  std::size_t count = 1;
  for (const auto& subsystem : catalogue.subsystems) {
    if (subsystem->paths.empty()) continue;
    const std::string tables = "catalogue::tables::" + subsystem->name + "::";
    rows += cat("    {", subsystem->slot, ", ", tables, "kPathFields, ", tables, "kPathIds, ", tables,
                "kPaths, ", subsystem->paths.size(), "},\n");
    ++count;
  }
  return cat("\nextern __attribute__((weak)) const XPathData gXPathTable[", count,
             "];\nconstexpr XPathData gXPathTable[", count, "] = {\n", rows, "    {},\n};\n");
}

std::string includes(bool withPaths) {
  return cat("#include <zqxml/catalogue/records.h>\n",
             withPaths ? "#include <zqxml/catalogue/xpath_data.h>\n" : "", "\n");
}

}  // namespace

std::string writeSubsystemTables(const Subsystem& subsystem, std::string_view firstLine) {
  std::string text =
      cat(firstLine, includes(!subsystem.paths.empty()), "namespace ", tablesNamespace(subsystem), " {\n\n");
  for (const auto& record : subsystem.classes) {
    if (record->fields.empty()) continue;
    text += cat("static constexpr FieldDef ", fieldsName(*record), "[] = {\n");
    for (const Field& field : record->fields) text += fieldRow(field);
    text += "};\n";
  }
  text += "\n";
  if (subsystem.records != 0) text += classTable(subsystem) + idIndex(subsystem) + bucketTable(subsystem);
  text += defaultsTable(subsystem);
  text += pathTables(subsystem);
  text += cat(
      "}  // namespace ", tablesNamespace(subsystem), "\n\nnamespace zqxml::", subsystem.name,
      " {\n\nZQXML_EXPORT void RegisterSubsystem();\nvoid RegisterSubsystem() {}\n\n}  // namespace zqxml::",
      subsystem.name, "\n");
  return text;
}

std::string writeSubsystemTable(const Catalogue& catalogue, std::string_view firstLine) {
  std::string text = cat(firstLine, includes(true));
  for (const auto& subsystem : catalogue.subsystems) {
    if (subsystem->records == 0) continue;
    text += cat("namespace ", tablesNamespace(*subsystem), " {\nextern const _ClassDef kClasses[",
                subsystem->records, "];\nextern const ClassIdIndexEntry kIds[", subsystem->records,
                "];\nextern const std::int16_t kBuckets[", std::size_t{2} << bucketBits(*subsystem), "];\n");
    if (const std::size_t count = defaultsCount(*subsystem); count != 0)
      text += cat("extern const FieldDefaultEntry kDefaults[", count, "];\n");
    if (const std::size_t count = subsystem->paths.size() + 1; count != 1)
      text +=
          cat("extern const XPathFieldsInfo kPathFields[", count, "];\nextern const XPathIDHelper kPathIds[",
              count, "];\nextern const XPathEntry kPaths[", count, "];\n");
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
                ", ", subsystem->old ? "true" : "false", ", ", empty ? 0 : bucketBits(*subsystem), ", ",
                empty ? "nullptr" : tables + "kBuckets", "},\n");
    next = subsystem->slot + 1;
  }
  return cat(text, emptyRows(kSubsystemCount + 1 - next), "};\n", pathTable(catalogue),
             "\n}  // namespace zqxml\n");
}

}  // namespace zqxml::zqcatc

#include "tools/zqmsg/catalogue_json.h"

#include <zqxml/catalogue/records.h>

#include <algorithm>
#include <cstdint>

#include "tools/zqmsg/json/json_text.h"

namespace zqxml::tool {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

void appendHex(std::string& out, unsigned byte) {
  out += kHexDigits[byte >> 4 & 15];
  out += kHexDigits[byte & 15];
}

// Puts a comma before every element but the first.
class Separator {
 public:
  explicit Separator(std::string_view text) : text_(text) {}
  void put(std::string& out) {
    if (!first_) out += text_;
    first_ = false;
  }

 private:
  std::string_view text_;
  bool first_ = true;
};

void appendNumber(std::string& out, std::string_view key, std::int64_t value) {
  out += '"';
  out += key;
  out += "\":";
  out += std::to_string(value);
}

void appendRefs(std::string& out, const FieldDef& field) {
  out += ",\"refs\":[";
  Separator comma(",");
  for (unsigned at = 0; at < field.classRefBytes(); at += ClassRef::kSize) {
    const ClassRef ref = ClassRef::read(field.namePointer() + at);
    comma.put(out);
    out += '[' + std::to_string(ref.subsystem) + ',' + std::to_string(ref.classIndex) + ']';
  }
  out += ']';
}

// A record begins with its length in two bytes, big-endian; a length below two counts these two alone.
void appendAnnotation(std::string& out, const char* record) {
  out += ",\"annotation\":";
  if (record == nullptr) {
    out += "null";
    return;
  }
  const auto byte = [record](std::size_t i) { return static_cast<unsigned char>(record[i]); };
  const std::size_t length = std::max<std::size_t>(2, static_cast<std::size_t>(byte(0) << 8 | byte(1)));
  out += '"';
  for (std::size_t i = 0; i < length; ++i) appendHex(out, byte(i));
  out += '"';
}

void appendField(std::string& out, const FieldDef& field) {
  out += "{\"name\":";
  appendJsonString(out, field.getName() == nullptr ? "" : field.getName());
  out += ',';
  appendNumber(out, "type", field.getType());
  out += ',';
  appendNumber(out, "hash", field.getFieldHashId());
  out += ',';
  appendNumber(out, "memNum", field.getMemNum());
  out += ',';
  appendNumber(out, "index", field.getIndex());
  out += ',';
  appendNumber(out, "locz", field.getLoczId());
  appendRefs(out, field);
  appendAnnotation(out, field.getAnnotationFlags());
  out += '}';
}

void appendDefaults(std::string& out, const SubsystemDef& row, const _ClassDef& record) {
  out += "\"defaults\":[";
  Separator comma(",");
  if (record.defaultsStart() >= 0 && row.defaults != nullptr) {
    for (const FieldDefaultEntry* entry = row.defaults + record.defaultsStart(); entry->memNum != -1;
         ++entry) {
      comma.put(out);
      out += '[' + std::to_string(entry->memNum) + ',';
      appendJsonString(out, entry->text);
      out += ']';
    }
  }
  out += ']';
}

void appendClass(std::string& out, const SubsystemDef& row, int index) {
  const _ClassDef& record = row.classDefs[index];
  out += '{';
  appendNumber(out, "index", index);
  out += ",\"name\":";
  appendJsonString(out, record.getName());
  out += ',';
  appendNumber(out, "id", record.getClassId());
  out += ',';
  appendNumber(out, "elements", record.getNumberOfElements());
  out += record.isEnumeration() ? ",\"enum\":true,\n \"fields\":[" : ",\"enum\":false,\n \"fields\":[";
  Separator comma(",\n  ");
  for (const FieldDef& field : record) {
    comma.put(out);
    appendField(out, field);
  }
  out += "],\n ";
  appendDefaults(out, row, record);
  out += '}';
}

}  // namespace

void writeCatalogueJson(const std::function<void(std::string_view)>& write) {
  std::string out = "{\"subsystems\":[";
  Separator betweenRows(",");
  for (int slot = 0; slot < kSubsystemCount; ++slot) {
    const SubsystemDef& row = gSubsystemTable[slot];
    if (row.name == nullptr) continue;
    betweenRows.put(out);
    out += "\n{";
    appendNumber(out, "slot", slot);
    out += ",\"name\":";
    appendJsonString(out, row.name);
    out += row.oldWay ? ",\"old\":true," : ",\"old\":false,";
    appendNumber(out, "records", row.recordCount);
    out += ",\"classes\":[";
    Separator betweenClasses(",");
    for (int index = 0; index < row.recordCount; ++index) {
      if (row.classDefs[index].getName() == nullptr) continue;
      betweenClasses.put(out);
      out += "\n";
      appendClass(out, row, index);
      write(out);
      out.clear();
    }
    out += "]}";
  }
  out += "]}\n";
  write(out);
}

}  // namespace zqxml::tool

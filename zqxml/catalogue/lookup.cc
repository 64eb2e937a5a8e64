#include <zqxml/catalogue/internal/class_buckets.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/catalogue/old_way.h>
#include <zqxml/logging/xml_log_context.h>

#include <cstring>

namespace zqxml::catalogue {
namespace {

bool isSlot(int subsystem) {
  return subsystem >= 0 && subsystem < kSubsystemCount;
}

/// Class index of an id by the subsystem's ids in order, -1 when there is none.
int bisectIds(const SubsystemDef& row, std::uint32_t classId) {
  int low = 0;
  int high = row.recordCount - 1;
  while (low <= high) {
    const int middle = (low + high) / 2;
    const ClassIdIndexEntry& entry = row.idIndex[middle];
    if (entry.classId == classId) return entry.classIndex;
    if (classId < entry.classId)
      high = middle - 1;
    else
      low = middle + 1;
  }
  return -1;
}

/// Class index of a name by the subsystem's records in order, -1 when there is none.
int walkNames(const SubsystemDef& row, const char* name) {
  for (int index = 0; index < row.recordCount; ++index) {
    const char* candidate = row.classDefs[index].getName();
    if (candidate != nullptr && std::strcmp(candidate, name) == 0) return index;
  }
  return -1;
}

/// Both searches by the tables of buckets, the second of which is that of names.
int indexOfId(const SubsystemDef& row, std::uint32_t classId) {
  // Id 0 stands for the first record, whatever the id of that one is, and so in no bucket.
  if (row.buckets == nullptr || classId == 0) return bisectIds(row, classId);
  return row.buckets[searchBuckets(row.buckets, row.bucketBits, classId,
                                   [&](int index) { return row.classDefs[index].getClassId() == classId; })];
}

int indexOfName(const SubsystemDef& row, const char* name) {
  if (row.buckets == nullptr) return walkNames(row, name);
  const std::int16_t* buckets = row.buckets + (std::size_t{1} << row.bucketBits);
  return buckets[searchBuckets(buckets, row.bucketBits, nameHash(name), [&](int index) {
    return std::strcmp(row.classDefs[index].getName(), name) == 0;
  })];
}

/// Follows a ClassRef; `text` is the log line for a subsystem beyond the table.
const _ClassDef* follow(ClassRef ref, const char* text) {
  if (isSlot(ref.subsystem)) return classAt(ref.subsystem, ref.classIndex);
  logError("XNMessageBase::GetClassDefFromPtrToClassID", text, ref.subsystem, ref.classIndex,
           kSubsystemCount);
  return nullptr;
}

void appendColumn(std::string& out, std::string_view text, std::size_t width) {
  out += text;
  if (text.size() < width) out.append(width - text.size(), ' ');
}

void appendLabelled(std::string& out, const char* label, std::string_view value) {
  out += label;
  appendColumn(out, value, 30);
  out += '\n';
}

std::string_view orEmpty(const char* text) {
  return text == nullptr ? std::string_view() : text;
}

void appendField(std::string& out, const FieldDef& field, bool details) {
  appendColumn(out, field.getFieldTypeName(), 30);
  out += '\t';
  appendColumn(out, orEmpty(field.getName()), 30);
  if (details) {
    out += '\t';
    appendColumn(out, std::to_string(field.getFieldHashId()), 10);
    out += '\t';
    appendColumn(out, std::to_string(field.getMemNum()), 5);
    out += '\t';
    appendColumn(out, std::to_string(field.getIndex()), 5);
  }
  out += '\n';
}

}  // namespace

bool indicesFromTag(std::uint32_t tagId, short& subsystem, int& classIndex) {
  subsystem = static_cast<short>(subsystemOfTag(tagId));
  if (subsystem < 1 || subsystem >= kSubsystemCount) return false;
  const int index = indexOfId(gSubsystemTable[subsystem], tagId & 0xffffff);
  if (index < 0) return false;
  classIndex = index;
  return true;
}

bool tagFromIndices(short subsystem, int classIndex, std::uint32_t& tagId) {
  // QUIRK: slot 207, one past the table, is let through; it reads as a class of id 0.
  if (subsystem < 0 || subsystem > kSubsystemCount || classIndex < 0) return false;
  const _ClassDef* record = classAt(subsystem, classIndex);
  tagId = makeTagId(subsystem, record == nullptr ? 0 : record->getClassId());
  return true;
}

const _ClassDef* classDef(short subsystem, int classIndex) {
  if (subsystem > 0 && subsystem < kSubsystemCount && classIndex >= 0) return classAt(subsystem, classIndex);
  logError("XNMessageBase::GetClassDef",
           "Unable to retrieve metadata for message with msgSysIndex : [%d], msgIndex : [%d]", subsystem,
           classIndex);
  return nullptr;
}

const _ClassDef* classDef(std::uint32_t tagId) {
  short subsystem = 0;
  int classIndex = 0;
  return indicesFromTag(tagId, subsystem, classIndex) ? classAt(subsystem, classIndex) : nullptr;
}

const _ClassDef* classOfField(const FieldDef& field) {
  if (field.namePointer() == nullptr || field.classRefBytes() == 0) return nullptr;
  return follow(
      ClassRef::read(field.namePointer()),
      "Error retrieving metadata with msgSysIndex : [%d], msgIndex : [%d]. Total_subsystems : [%d]");
}

const _ClassDef* classOfRef(const void* classRef) {
  if (classRef == nullptr) return nullptr;
  return follow(
      ClassRef::read(static_cast<const char*>(classRef)),
      "Error retrieving metadata with msgSysIndex : [%d], msgIndex : [%d]. Total_Subsystems : [%d]");
}

const _ClassDef* mapValueClass(const FieldDef& field) {
  const unsigned refBytes = field.classRefBytes();
  if (field.namePointer() == nullptr || refBytes == 0) return nullptr;
  return classOfRef(field.namePointer() + refBytes - ClassRef::kSize);
}

bool subsystemFromName(const char* name, short& subsystem) {
  if (name == nullptr) return false;
  for (short slot = 0; slot < kSubsystemCount; ++slot) {
    const char* candidate = gSubsystemTable[slot].name;
    if (candidate == nullptr || std::strcmp(candidate, name) != 0) continue;
    subsystem = slot;
    return true;
  }
  return false;
}

bool classIndexFromName(const char* name, short subsystem, int& classIndex) {
  if (name == nullptr || !isSlot(subsystem)) return false;
  const int index = indexOfName(gSubsystemTable[subsystem], name);
  if (index < 0) return false;
  classIndex = index;
  return true;
}

int fieldPosition(const _ClassDef* classDef, std::string_view name) {
  if (classDef == nullptr || classDef->getFields() == nullptr) return -1;
  if (!classDef->isEnumeration()) {
    const std::uint32_t hash = nameHash(name);
    return hash == 0 ? -1 : fieldPositionByHash(*classDef, hash);
  }
  for (int position = 0; position < classDef->getNumberOfFields(); ++position) {
    if (orEmpty(classDef->getFields()[position].getName()) == name) return position;
  }
  return -1;
}

int fieldPositionByHash(const _ClassDef& classDef, std::uint32_t hash) {
  const FieldDef* fields = classDef.getFields();
  for (int position = 0; fields != nullptr && position < classDef.getNumberOfFields(); ++position) {
    if (fields[position].getFieldHashId() == hash) return position;
  }
  return -1;
}

const char* enumeratorName(const _ClassDef& enumeration, std::int32_t value) {
  for (const FieldDef& enumerator : enumeration) {
    if (static_cast<std::int32_t>(enumerator.getFieldHashId()) == value) return enumerator.getName();
  }
  return nullptr;
}

const char* enumString(short subsystem, const char* enumName, int value) {
  if (!isSlot(subsystem)) {
    logError("XNMessageBase::getEnumString", "Subsystem : [%d] does not exist", subsystem);
    return "";
  }
  int index = -1;
  if (classIndexFromName(enumName, subsystem, index)) {
    if (const char* name = enumeratorName(*classAt(subsystem, index), value)) return name;
  }
  logError("XNMessageBase::getEnumString",
           "Subsystem : [%d] :: Enum : [%s] does not have a member with value : [%d]", subsystem, enumName,
           value);
  return "";
}

bool isOldWay(std::uint32_t tagId) {
  return kOldWaySlots[tagId >> 24];
}

bool schemaText(std::string& text, short subsystem, int classIndex, bool allFields, bool details) {
  const _ClassDef* record = classDef(subsystem, classIndex);
  if (record == nullptr) return false;
  text.clear();
  appendLabelled(text, "Subsystem Name : ", orEmpty(gSubsystemTable[subsystem].name));
  appendLabelled(text, "Subsystem Id : ", std::to_string(subsystem));
  appendLabelled(text, "Message Name : ", orEmpty(record->getName()));
  appendLabelled(text, "Message Id : ", std::to_string(record->getClassId()));
  text += '\n';
  appendColumn(text, "FIELD TYPE", 30);
  text += '\t';
  appendColumn(text, "FIELD NAME", 30);
  if (details) {
    text += '\t';
    appendColumn(text, "HASH", 10);
    text += '\t';
    appendColumn(text, "ID", 5);
    text += '\t';
    appendColumn(text, "INDEX", 5);
  }
  text += '\n';
  for (const FieldDef& field : *record) {
    if (allFields || field.getFieldHashId() != 0) appendField(text, field, details);
  }
  return true;
}

}  // namespace zqxml::catalogue

namespace zqxml {

int getSizeOfField(const FieldDef& field) {
  const int size = visitStorage(
      field.getType(),
      Overloaded{[](Scalar<element::Int32>) { return 4; }, [](Scalar<element::UInt32>) { return 4; },
                 [](Scalar<element::Float>) { return 4; }, [](Scalar<element::Int64>) { return 8; },
                 [](Scalar<element::Double>) { return 8; }, [](Scalar<element::Bool>) { return 1; },
                 [](auto) { return 0; }});
  if (size == 0) {
    logError("createElementOfType", "Unknown Type for Computing size. Type:[%d] Field:[%s].", field.getType(),
             field.getName());
  }
  return size;
}

}  // namespace zqxml

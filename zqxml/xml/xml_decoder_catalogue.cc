// XMLDecoder: look-ups in the catalogue.
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/xml_decoder.h>

#include <cstring>

namespace zqxml {
namespace {

constexpr char kEnumString[] = "XMLDecoder::GetEnumString";

}  // namespace

const _ClassDef* XMLDecoder::GetClassDef(std::uint32_t tagId) {
  return XNMessageBase::GetClassDef(tagId);
}

const _ClassDef* XMLDecoder::GetClassDef(std::uint32_t high, std::uint32_t low) {
  return XNMessageBase::GetClassDef(high | low);
}

const _ClassDef* XMLDecoder::GetClassDef(const XNMessageBase* msg) {
  return XNMessageBase::GetClassDef(msg);
}

const char* XMLDecoder::GetEnumString(const FieldDef& field, int value) {
  const _ClassDef* enumeration = catalogue::classOfField(field);
  if (enumeration == nullptr) {
    logError(kEnumString, "Error retrieving metadata for given Field with field id : [%u]",
             field.getFieldHashId());
    return "";
  }
  if (const char* name = catalogue::enumeratorName(*enumeration, value)) return name;
  logError(kEnumString, "Given field with id : [%u] does not contain enum with value : [%d]",
           field.getFieldHashId(), value);
  return "";
}

const char* XMLDecoder::GetEnumString(std::uint32_t tagId, int value) {
  const _ClassDef* enumeration = GetClassDef(tagId);
  if (enumeration == nullptr) {
    logError(kEnumString, "Error retrieving metadata for given tag id : [%lu]", tagId);
    return "";
  }
  if (const char* name = catalogue::enumeratorName(*enumeration, value)) return name;
  logError(kEnumString, "Enum with tag id : [%lu] does not contain member with value : [%d]", tagId, value);
  return "";
}

const char* XMLDecoder::GetEnumString(const XNMessageBase* msg, const char* enumName, int value) {
  const _ClassDef* classDef = GetClassDef(msg);
  if (classDef == nullptr) {
    logError(kEnumString, "Error retrieving metadata for given Message");
    return "";
  }
  for (const FieldDef& field : *classDef) {
    if (field.getFieldHashId() == 0 || field.getType() != FDT_ENUM) continue;
    const _ClassDef* enumeration = catalogue::classOfField(field);
    if (enumeration == nullptr) {
      logError(kEnumString, "Error retrieving metadata for message");
      continue;
    }
    if (enumName != nullptr && enumeration->getName() != nullptr &&
        std::strcmp(enumeration->getName(), enumName) == 0)
      return getEnumString(*enumeration, value);
  }
  return "";
}

const char* XMLDecoder::getEnumString(const _ClassDef& classDef, int value) {
  const char* name = catalogue::enumeratorName(classDef, value);
  return name == nullptr ? "" : name;
}

}  // namespace zqxml

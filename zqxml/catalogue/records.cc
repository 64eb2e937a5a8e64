#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/logging/xml_log_context.h>

namespace zqxml {
namespace {

/// Type texts that are built around a class name.
struct ClassTypeText {
  FieldDataType type;
  const char* before;
  const char* after;
  const char* withoutClass;
};
constexpr ClassTypeText kClassTypeTexts[] = {
    {FDT_ENUM, "", "", "Invalid enum type"},
    {FDT_LIST_ENUM, "list<", ">", "Invalid list<enum> type"},
    {FDT_LIST_OBJECT, "list<", ">", "Invalid list<object> type"},
    {FDT_OBJECT, "", "", "Invalid complex object type"},
    {FDT_MAP_INT64_OBJECT, "map<longlong,", ">", "Invalid map<longlong, object>"},
    {FDT_MAP_STRING_OBJECT, "map<string,", ">", "Invalid map<string, object>"},
};

const char* nameOf(const _ClassDef* classDef) {
  return classDef == nullptr ? nullptr : classDef->getName();
}

std::string objectMapText(const FieldDef& field) {
  const char* key = nameOf(catalogue::classOfField(field));
  if (key == nullptr) return "Invalid map<Object, Object>";
  const char* value = nameOf(catalogue::mapValueClass(field));
  if (value == nullptr) return std::string("Invalid map<") + key + ",object>";
  return std::string("map<") + key + "," + value + ">";
}

template <class Element>
constexpr FieldDataType typeOfMapSide() {
  if constexpr (std::same_as<Element, element::Int64>)
    return FDT_INT64;
  else if constexpr (std::same_as<Element, element::Str>)
    return FDT_STRING;
  else
    return FDT_OBJECT;
}

struct MapKeyType {
  template <class K, class V>
  constexpr FieldDataType operator()(Map<K, V>) const {
    return typeOfMapSide<K>();
  }
  template <class Storage>
  constexpr FieldDataType operator()(Storage) const {
    return FDT_NONE;
  }
};
struct MapValueType {
  template <class K, class V>
  constexpr FieldDataType operator()(Map<K, V>) const {
    return typeOfMapSide<V>();
  }
  template <class Storage>
  constexpr FieldDataType operator()(Storage) const {
    return FDT_NONE;
  }
};

}  // namespace

std::string FieldDef::getFieldTypeName() const {
  if (const char* text = fieldTypeFacts(type_).text) return text;
  if (type_ == FDT_MAP_OBJECT_OBJECT) return objectMapText(*this);
  for (const ClassTypeText& row : kClassTypeTexts) {
    if (row.type != type_) continue;
    const char* name = nameOf(catalogue::classOfField(*this));
    return name == nullptr ? row.withoutClass : std::string(row.before) + name + row.after;
  }
  // QUIRK: the type byte goes in as one character, unreadable as that is; readers of the message know it so.
  return std::string("Unknown type ") + static_cast<char>(type_);
}

FieldDataType FieldDef::getMapKeyType(unsigned type) {
  return visitStorage(type, MapKeyType{});
}
FieldDataType FieldDef::getMapValueType(unsigned type) {
  return visitStorage(type, MapValueType{});
}

bool FieldDef::isValidEnumValue(const FieldDef& field, int value) {
  if (!kEnumTypes.contains(field.getType())) return false;
  const _ClassDef* enumeration = catalogue::classOfField(field);
  if (enumeration == nullptr) {
    logError("FieldDef::isValidEnumValue", "Error identifying [%s]:[%d] as an enum ", field.getName(), value);
    return false;
  }
  return catalogue::enumeratorName(*enumeration, value) != nullptr;
}

}  // namespace zqxml

// The catalogue as the schema files describe it, and the numbers that the compiler works out.
#pragma once

#include <zqxml/catalogue/field_types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "diagnostics.h"
#include "xml_tree.h"

namespace zqxml::zqcatc {

struct Class;
struct Subsystem;

/// A reference by name from a field to a class or enumeration.
struct Reference {
  std::string text;  ///< "Class" or "Subsystem.Class"
  Position position;
  const Class* target = nullptr;  ///< filled by resolve()
};

/// One record of a class's field table: a field, an enumerator or the trailing self record.
struct Field {
  std::string name;
  Position position;
  std::string doc;
  std::string cppName;  ///< C++ name stem that the file gives, or ""
  FieldDataType type = FDT_NONE;
  std::vector<Reference> references;  ///< as many as the type asks for: class, or key and value
  std::int32_t label = 0;
  bool hashless = false;
  std::optional<Attribute> defaultText;
  std::vector<Element> annotationElements;
  bool isSelf = false;
  bool negative = false;  ///< the enumerator was written with a minus

  // Worked out by resolve() and assignNumbers().
  std::uint32_t hash = 0;  ///< of the name, or 0; value of an enumerator
  std::int16_t memNum = 0;
  std::int16_t index = 0;
  std::optional<std::string> annotation;  ///< the packed record
};

/// A message class or an enumeration.
struct Class {
  std::string name;
  Position position;
  std::string doc;
  bool isEnumeration = false;
  bool isPathRoot = false;
  int index = 0;
  std::uint32_t id = 0;
  std::vector<Field> fields;
  Subsystem* subsystem = nullptr;

  int elements = 0;
  int defaultsStart = -1;
};

/// The name of a value below a root (catalogue/xpath_data.h).
struct FieldPath {
  std::string text;
  std::int32_t id = 0;
  std::vector<std::int16_t> members;  ///< member numbers from the root's field to the value's
};

struct Subsystem {
  std::string name;
  Position position;
  std::string doc;
  int slot = 0;
  int records = 0;
  bool old = false;
  bool annotations = false;
  std::vector<std::unique_ptr<Class>> classes;  ///< ascending by index
  std::unordered_map<std::string_view, const Class*> byName;
  std::vector<FieldPath> paths;  ///< ascending by text; filled by findPaths()

  /// The first class or enumeration of the name; null when there is none.
  const Class* find(std::string_view className) const;
};

/// The subsystems, ascending by slot.
struct Catalogue {
  std::vector<std::unique_ptr<Subsystem>> subsystems;

  Subsystem* find(std::string_view name) const;
  /// The subsystem whose classes are the annotations; null when the catalogue has none.
  const Subsystem* annotations() const;
};

/// Schema limits, all given by the width of a record's members.
inline constexpr int kMaxRecords = 32767;
inline constexpr int kMaxFields = 32767;
inline constexpr int kMaxElements = 32767;
inline constexpr std::uint32_t kMaxClassId = 0xffffff;
inline constexpr std::size_t kMaxAnnotationBytes = 65535;

}  // namespace zqxml::zqcatc

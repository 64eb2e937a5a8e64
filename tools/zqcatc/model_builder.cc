#include "model_builder.h"

#include <zqxml/catalogue/name_hash.h>
#include <zqxml/catalogue/old_way.h>
#include <zqxml/catalogue/records.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "cpp_names.h"
#include "values.h"

namespace zqxml::zqcatc {

namespace {

/// Text of the <doc> child without blanks at its ends.
std::string docOf(const Element& element) {
  const Element* doc = element.child("doc");
  if (doc == nullptr) return {};
  const std::size_t begin = doc->text.find_first_not_of(" \t\n");
  if (begin == std::string::npos) return {};
  return doc->text.substr(begin, doc->text.find_last_not_of(" \t\n") + 1 - begin);
}

std::vector<Element> annotationsOf(const Element& element) {
  std::vector<Element> annotations;
  for (const Element& child : element.children)
    if (child.name != "doc") annotations.push_back(child);
  return annotations;
}

class Builder {
 public:
  explicit Builder(Diagnostics& diagnostics) : diagnostics_(diagnostics) {}

  Catalogue build(std::span<const Element> roots) {
    for (const Element& root : roots)
      if (root.name == "subsystem") addSubsystem(root);
    for (const Element& root : roots)
      if (root.name == "extension") extend(root);
    for (const auto& subsystem : catalogue_.subsystems) {
      std::stable_sort(subsystem->classes.begin(), subsystem->classes.end(),
                       [](const auto& a, const auto& b) { return a->index < b->index; });
      for (const auto& record : subsystem->classes) subsystem->byName.emplace(record->name, record.get());
    }
    std::stable_sort(catalogue_.subsystems.begin(), catalogue_.subsystems.end(),
                     [](const auto& a, const auto& b) { return a->slot < b->slot; });
    return std::move(catalogue_);
  }

 private:
  void addSubsystem(const Element& root);
  void checkSubsystem(const Subsystem& subsystem, const Element& root);
  void extend(const Element& root);
  void addRecords(const Element& root, Subsystem& subsystem);
  void addField(const Element& element, Class& owner);
  void readType(const Element& element, const Class& owner, Field& field);
  void readReferences(const Element& element, const std::string& where, Field& field);
  void addEnumerator(const Element& element, Class& owner);
  void addSelf(const Element& element, Class& owner);

  Diagnostics& diagnostics_;
  Catalogue catalogue_;
};

void Builder::addSubsystem(const Element& root) {
  auto subsystem = std::make_unique<Subsystem>();
  subsystem->name = root.value("name");
  subsystem->position = root.at("name");
  subsystem->doc = docOf(root);
  subsystem->old = flagAttribute(root, "old");
  subsystem->annotations = flagAttribute(root, "annotations");
  const std::string where = cat("subsystem '", subsystem->name, "'");
  const auto slot = numberAttribute(root, "slot", 1, kSubsystemCount - 1, "slot of " + where, diagnostics_);
  const auto records =
      numberAttribute(root, "records", 0, kMaxRecords, "record count of " + where, diagnostics_);
  if (!slot.has_value() || !records.has_value()) return;
  subsystem->slot = static_cast<int>(*slot);
  subsystem->records = static_cast<int>(*records);
  checkSubsystem(*subsystem, root);
  addRecords(root, *subsystem);
  catalogue_.subsystems.push_back(std::move(subsystem));
}

void Builder::checkSubsystem(const Subsystem& subsystem, const Element& root) {
  if (subsystem.name.find('_') != std::string::npos || cppIdentifier(subsystem.name) != subsystem.name) {
    diagnostics_.error(subsystem.position,
                       cat("subsystem name '", subsystem.name,
                           "' must be a C++ name without '_': a message's root "
                           "element is the subsystem's name, '_' and the class's name; choose another name"));
  }
  if (subsystem.old != isOldWaySlot(subsystem.slot)) {
    diagnostics_.error(root.at("old"), cat("slot ", subsystem.slot, " of subsystem '", subsystem.name,
                                           "' is ", subsystem.old ? "not " : "",
                                           "one of the old-way slots that the runtime "
                                           "knows; write old=\"",
                                           subsystem.old ? "false" : "true", "\" or another slot"));
  }
  for (const auto& other : catalogue_.subsystems) {
    if (other->name == subsystem.name) {
      diagnostics_.error(subsystem.position, cat("subsystem '", subsystem.name, "' is already described in ",
                                                 other->position.file,
                                                 "; give it another name, or make this file an <extension>"));
    } else if (other->slot == subsystem.slot) {
      diagnostics_.error(root.at("slot"),
                         cat("slot ", subsystem.slot, " is already that of subsystem '", other->name, "' in ",
                             other->position.file, "; choose a free slot"));
    } else if (other->annotations && subsystem.annotations) {
      diagnostics_.error(root.at("annotations"), cat("subsystem '", other->name,
                                                     "' is already that of the "
                                                     "annotations; remove annotations=\"true\" here"));
    }
  }
}

void Builder::extend(const Element& root) {
  Subsystem* subsystem = catalogue_.find(root.value("subsystem"));
  if (subsystem == nullptr) {
    diagnostics_.error(root.at("subsystem"), cat("there is no subsystem '", root.value("subsystem"),
                                                 "' to extend; add its file, or correct the name"));
    return;
  }
  if (root.find("records") != nullptr) {
    const auto records =
        numberAttribute(root, "records", subsystem->records, kMaxRecords,
                        cat("record count of the extension of '", subsystem->name, "'"), diagnostics_);
    if (records.has_value()) subsystem->records = static_cast<int>(*records);
  }
  addRecords(root, *subsystem);
}

void Builder::addRecords(const Element& root, Subsystem& subsystem) {
  for (const Element& element : root.children) {
    if (element.name == "doc") continue;
    auto record = std::make_unique<Class>();
    record->name = element.value("name");
    record->position = element.at("name");
    record->doc = docOf(element);
    record->isEnumeration = element.name == "enum";
    record->isPathRoot = flagAttribute(element, "paths");
    record->subsystem = &subsystem;
    const std::string where = cat(record->isEnumeration ? "enumeration '" : "class '", record->name, "'");
    const auto index =
        numberAttribute(element, "index", 0, kMaxRecords - 1, "index of " + where, diagnostics_);
    if (index.has_value()) record->index = static_cast<int>(*index);
    record->id = nameHash(record->name);
    if (element.find("id") != nullptr) {
      const auto id = numberAttribute(element, "id", 0, kMaxClassId, "id of " + where, diagnostics_);
      if (id.has_value()) record->id = static_cast<std::uint32_t>(*id);
    } else if (record->id == 0) {
      diagnostics_.error(record->position, cat("the name of ", where, " has the hash 0; give it an id"));
    }
    for (const Element& child : element.children) {
      if (child.name == "field") addField(child, *record);
      if (child.name == "value") addEnumerator(child, *record);
      if (child.name == "self") addSelf(child, *record);
    }
    if (index.has_value()) subsystem.classes.push_back(std::move(record));
  }
}

void Builder::addField(const Element& element, Class& owner) {
  Field field;
  field.name = element.value("name");
  field.position = element.at("name");
  field.doc = docOf(element);
  field.annotationElements = annotationsOf(element);
  field.cppName = element.value("cpp");
  const std::string where = cat("field '", field.name, "' of class '", owner.name, "'");
  readType(element, owner, field);
  readReferences(element, where, field);
  if (element.find("label") != nullptr) {
    const auto label =
        numberAttribute(element, "label", std::numeric_limits<std::int32_t>::min(),
                        std::numeric_limits<std::uint32_t>::max(), "label of " + where, diagnostics_);
    if (label.has_value()) field.label = static_cast<std::int32_t>(static_cast<std::uint32_t>(*label));
  }
  if (element.find("hash") != nullptr) {
    field.hashless = numberAttribute(element, "hash", 0, 0, "hash of " + where, diagnostics_).has_value();
    if (field.hashless && field.label != 0) {
      diagnostics_.error(element.at("label"), cat(where, " has hash 0 and so no label; remove the label"));
    }
  }
  field.hash = field.hashless ? 0 : nameHash(field.name);
  if (const Attribute* text = element.find("default")) field.defaultText = *text;
  owner.fields.push_back(std::move(field));
}

void Builder::readType(const Element& element, const Class& owner, Field& field) {
  const std::optional<FieldDataType> type = typeFromName(element.value("type"));
  if (type.has_value() && isFieldType(*type)) {
    field.type = *type;
    return;
  }
  const std::string_view why =
      type.has_value() ? "' stores nothing and cannot be a field" : "' does not exist";
  diagnostics_.error(element.at("type"),
                     cat("type '", element.value("type"), why, " (field '", field.name, "' of class '",
                         owner.name, "'); write one of ", fieldTypeNames()));
}

void Builder::readReferences(const Element& element, const std::string& where, Field& field) {
  const bool two = kTwoClassRefTypes.contains(field.type);
  const bool one = kOneClassRefTypes.contains(field.type);
  for (const char* name : {"class", "key", "value"}) {
    const bool wanted = std::string_view(name) == "class" ? one : two;
    const Attribute* attribute = element.find(name);
    if (wanted && attribute == nullptr) {
      diagnostics_.error(element.position, cat(where, " is of type '", typeName(field.type), "' and needs ",
                                               name, "=\"...\" with the name of its class; add it"));
    } else if (!wanted && attribute != nullptr && field.type != FDT_NONE) {
      diagnostics_.error(attribute->position, cat(where, " is of type '", typeName(field.type),
                                                  "', which takes no ", name, "=\"...\"; remove it"));
    } else if (wanted) {
      field.references.push_back({attribute->value, attribute->position, nullptr});
    }
  }
}

void Builder::addEnumerator(const Element& element, Class& owner) {
  Field field;
  field.name = element.value("name");
  field.position = element.at("name");
  field.doc = docOf(element);
  field.type = FDT_ENUM_VALUE;
  field.annotationElements = annotationsOf(element);
  const auto value = numberAttribute(
      element, "value", std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::uint32_t>::max(),
      cat("value of enumerator '", field.name, "' of '", owner.name, "'"), diagnostics_);
  if (value.has_value()) field.hash = static_cast<std::uint32_t>(*value);
  field.negative = value.has_value() && *value < 0;
  owner.fields.push_back(std::move(field));
}

void Builder::addSelf(const Element& element, Class& owner) {
  Field field;
  field.name = owner.name;
  field.hash = nameHash(owner.name);
  field.position = element.position;
  field.isSelf = true;
  field.annotationElements = annotationsOf(element);
  owner.fields.push_back(std::move(field));
}

}  // namespace

Catalogue buildCatalogue(std::span<const Element> roots, Diagnostics& diagnostics) {
  return Builder(diagnostics).build(roots);
}

}  // namespace zqxml::zqcatc

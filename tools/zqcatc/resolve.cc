#include "resolve.h"

#include "annotation_packer.h"
#include "values.h"

namespace zqxml::zqcatc {

namespace {

const Class* findTarget(const Catalogue& catalogue, const Subsystem& home, const std::string& text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string::npos) return home.find(text);
  const Subsystem* subsystem = catalogue.find(std::string_view(text).substr(0, dot));
  return subsystem == nullptr ? nullptr : subsystem->find(std::string_view(text).substr(dot + 1));
}

void follow(const Catalogue& catalogue, const Class& owner, Field& field, Diagnostics& diagnostics) {
  const bool wantsEnumeration = kEnumTypes.contains(field.type);
  for (Reference& reference : field.references) {
    const Class* target = findTarget(catalogue, *owner.subsystem, reference.text);
    const std::string where = cat("field '", field.name, "' of class '", owner.name, "'");
    if (target == nullptr) {
      diagnostics.error(reference.position, cat("there is no class '", reference.text, "' (", where,
                                                "); describe it, or write Subsystem.Class"));
    } else if (target->isEnumeration != wantsEnumeration) {
      diagnostics.error(
          reference.position,
          cat("'", reference.text, "' is ", wantsEnumeration ? "a class" : "an enumeration", ", and ", where,
              " of type '", typeName(field.type), "' needs ", wantsEnumeration ? "an enumeration" : "a class",
              "; change the type or the name"));
    } else {
      reference.target = target;
    }
  }
}

/// Places the fields of a message class in the slot store; enumerators keep member number and slot 0.
void placeFields(Class& record, Diagnostics& diagnostics) {
  int position = 0;
  int slot = 0;
  for (Field& field : record.fields) {
    if (!field.isSelf && !record.isEnumeration) {
      field.memNum = static_cast<std::int16_t>(position);
      field.index = static_cast<std::int16_t>(slot);
      slot += fieldTypeFacts(field.type).slots;
    }
    if (++position > kMaxFields || slot > kMaxElements) {
      diagnostics.error(record.position,
                        cat("'", record.name, "' has more than ", kMaxFields,
                            record.isEnumeration ? " values" : " fields or slots", "; split it"));
      return;
    }
  }
  record.elements = slot;
}

}  // namespace

void followReferences(Catalogue& catalogue, Diagnostics& diagnostics) {
  for (const auto& subsystem : catalogue.subsystems)
    for (const auto& record : subsystem->classes)
      for (Field& field : record->fields) follow(catalogue, *record, field, diagnostics);
}

void assignNumbers(Catalogue& catalogue, Diagnostics& diagnostics) {
  const AnnotationPacker packer(catalogue, diagnostics);
  for (const auto& subsystem : catalogue.subsystems) {
    int defaults = 0;
    for (const auto& record : subsystem->classes) {
      placeFields(*record, diagnostics);
      int run = 0;
      for (Field& field : record->fields) {
        if (field.type != FDT_NONE || field.isSelf) field.annotation = packer.pack(*record, field);
        if (field.defaultText.has_value()) ++run;
      }
      if (run == 0) continue;
      record->defaultsStart = defaults;
      defaults += run + 1;  // and the entry that ends the run
    }
  }
}

}  // namespace zqxml::zqcatc

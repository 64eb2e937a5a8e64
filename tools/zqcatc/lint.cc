#include "lint.h"

#include <zqxml/annotation/annotation_record.h>

#include <algorithm>
#include <array>
#include <tuple>

#include "field_forms.h"
#include "name_typos.h"
#include "traps.h"

namespace zqxml::zqcatc {

namespace {

constexpr std::array<std::string_view, 6> kRules{"sensitive-in-clear", "password-without-annotation",
                                                 "lost-in-binary",     "map-in-sub-object",
                                                 "closes-sub-object",  "names-one-typo-apart"};

/// Maps with a side that is a number or a text.
constexpr FieldTypeSet kMapsOfValues = FieldTypeSet::ofStorage(
    Overloaded{[](Map<element::Obj, element::Obj>) { return false; },
               []<class K, class V>(Map<K, V>) { return true; }, [](auto) { return false; }});

std::string nameOf(const Member& member) {
  return cat(member.owner->isEnumeration ? "enumerator '" : "field '", member.field->name, "' of ",
             member.owner->fullName);
}

class Linter {
 public:
  explicit Linter(const Snapshot& catalogue) : catalogue_(catalogue), held_(heldClasses(catalogue)) {}

  std::vector<Finding> run() {
    for (const SubsystemShot& subsystem : catalogue_.subsystems) {
      for (const ClassShot& record : subsystem.classes) {
        for (const FieldShot& field : record.fields) {
          if (!record.isEnumeration) checkField({&record, &field});
        }
        checkNames(record);
      }
    }
    for (const EarlyEnd& end : earlyEnds(catalogue_)) {
      report("closes-sub-object", end.inner,
             cat(nameOf(end.inner), " has the name of the object ", nameOf(end.around),
                 ", which holds the class: in XML its end tag closes the sub-object, and the rest of it is "
                 "lost; rename one of them"));
    }
    std::stable_sort(findings_.begin(), findings_.end(), [](const Finding& a, const Finding& b) {
      const auto key = [](const Position& at) { return std::tie(at.file, at.line, at.column); };
      return key(a.position) < key(b.position);
    });
    return std::move(findings_);
  }

 private:
  void report(std::string_view code, const Member& member, std::string text) {
    findings_.push_back({member.field->position, "warning", std::string(code), std::move(text), {}, false});
  }

  void checkField(const Member& member) {
    const FieldShot& field = *member.field;
    const AnnotationRecord record(field.annotation.has_value() ? std::string_view(*field.annotation)
                                                               : std::string_view());
    if (record.isSensitive() && !kPrimitiveTypes.contains(field.type)) {
      report("sensitive-in-clear", member,
             cat(nameOf(member), " is marked as sensitive, and of type '", typeText(field.type),
                 "': masked texts show it in clear, since single values alone are masked; mark the fields of "
                 "its class, or keep it out of what is logged"));
    }
    if (isPassword(field.type) && record.passwordType() == 0) checkPassword(member);
    if (isLostInBinary(field.type)) {
      report(
          "lost-in-binary", member,
          cat(nameOf(member), " is of type '", typeText(field.type),
              "', which no reader of the binary form finds again, and which may cost what follows it; write '",
              field.type == FDT_ULONGLONG ? "longlong" : "list_longlong", "'"));
    }
    const auto holder = held_.find(member.owner);
    if (kMapsOfValues.contains(field.type) && holder != held_.end()) {
      report(
          "map-in-sub-object", member,
          cat(nameOf(member), " is a map, and ", nameOf(holder->second),
              " holds the class: its pairs are lost in XML with attributes, the default; write such messages "
              "with elements, or use a list of objects"));
    }
  }

  void checkPassword(const Member& member) {
    std::string why =
        cat(nameOf(member), " is a password without a Password annotation: XML leaves it out, and ");
    why += member.field->annotation.has_value() ? "the binary form holds it as plain text"
                                                : "in the binary form it breaks the message at its reader";
    report("password-without-annotation", member, why + "; add <Password encType=\"...\"/>");
  }

  void checkNames(const ClassShot& record) {
    std::vector<std::string> names;
    for (const FieldShot& field : record.fields) names.push_back(field.name);
    for (const auto& [later, earlier] : findNameTypos(names)) {
      const Member member{&record, &record.fields[later]};
      std::string where;
      if (record.fields[earlier].position.line != 0)
        where = cat(" at line ", record.fields[earlier].position.line);
      report("names-one-typo-apart", member,
             cat(nameOf(member), " is one typing error away from '", names[earlier], "'", where,
                 ": in a message that was written by hand the one may stand for the other, and nothing says "
                 "so; give one a clearer name"));
    }
  }

  const Snapshot& catalogue_;
  std::unordered_map<const ClassShot*, Member> held_;
  std::vector<Finding> findings_;
};

}  // namespace

std::span<const std::string_view> lintRules() {
  return kRules;
}

std::vector<Finding> lintCatalogue(const Snapshot& catalogue) {
  return Linter(catalogue).run();
}

}  // namespace zqxml::zqcatc

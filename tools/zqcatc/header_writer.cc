#include "header_writer.h"

#include <zqxml/catalogue/class_ref.h>

#include <algorithm>
#include <map>
#include <set>

#include "accessor_writer.h"
#include "code_template.h"
#include "cpp_names.h"
#include "doc_comments.h"
#include "values.h"

namespace zqxml::zqcatc {

namespace {

std::string includeOf(const Subsystem& enumerations) {
  return cat("#include <", kIncludeFolder, enumerations.name, "_enums.h>\n");
}

bool fitsSigned(const Class& enumeration) {
  return std::none_of(enumeration.fields.begin(), enumeration.fields.end(),
                      [](const Field& value) { return !value.negative && value.hash > 0x7fffffff; });
}

std::string enumeratorValue(const Field& value) {
  return value.negative ? std::to_string(static_cast<std::int32_t>(value.hash)) : hexNumber(value.hash);
}

std::string writeEnumeration(const Class& record) {
  std::string text = classComment(record);
  text += cat("enum class ", cppIdentifier(record.name), " : ",
              fitsSigned(record) ? "std::int32_t" : "std::uint32_t", " {\n");
  for (const Field& value : record.fields) {
    text += enumeratorComment(value);
    text += cat("  ", cppIdentifier(value.name), " = ", enumeratorValue(value), ",\n");
  }
  return text + "};\n\n";
}

/// The one field whose accessors the base class has itself: the first one, where it is a
/// ProcessingInstructionInfo.
bool belongsToBase(const Class& record, const Field& field) {
  if (&field != &record.fields.front() || field.type != FDT_OBJECT) return false;
  const Class& target = *field.references.front().target;
  return field.name == "processinginstructioninfo" && target.subsystem->slot == 18 && target.index == 74;
}

struct BySlot {
  bool operator()(const Subsystem* a, const Subsystem* b) const { return a->slot < b->slot; }
};
struct ByIndex {
  bool operator()(const Class* a, const Class* b) const { return a->index < b->index; }
};

/// Writes the classes of one subsystem.
class ClassHeaderWriter {
 public:
  ClassHeaderWriter(const Catalogue& catalogue, const Subsystem& subsystem) : subsystem_(subsystem) {
    base_ = subsystem.annotations ? "AnnotationBase" : "XNMessageBase";
    const Subsystem* annotations = catalogue.annotations();
    passwordEnum_ = annotations == nullptr ? nullptr : annotations->find("PasswordEncryptType");
    if (passwordEnum_ != nullptr && !passwordEnum_->isEnumeration) passwordEnum_ = nullptr;
    for (const auto& record : subsystem.classes)
      if (!record->isEnumeration) note(*record);
  }

  std::string text(std::string_view firstLine) const {
    std::string enumHeaders = includeOf(subsystem_);
    for (const Subsystem* other : enumsOf_) enumHeaders += includeOf(*other);
    std::string foreign;
    for (const auto& [other, classes] : foreign_) {
      foreign += cat("namespace zqxml::", other->name, " {\n");
      for (const Class* record : classes) foreign += cat("class ", cppIdentifier(record->name), ";\n");
      foreign += "}\n";
    }
    std::string declarations, classes;
    for (const auto& record : subsystem_.classes) {
      if (record->isEnumeration) continue;
      declarations += cat("class ", cppIdentifier(record->name), ";\n");
      classes += writeClass(*record);
    }
    const TemplateValue values[] = {
        {"firstLine", std::string(firstLine)},
        {"baseHeader", subsystem_.annotations ? "annotation/annotation_base.h" : "message/xn_message_base.h"},
        {"enumHeaders", std::move(enumHeaders)},
        {"foreign", std::move(foreign)},
        {"doc", docComment(subsystem_.doc, "")},
        {"subsystem", subsystem_.name},
        {"declarations", std::move(declarations)},
        {"classes", std::move(classes)}};
    return expand(R"(@firstLine@#pragma once

#include <zqxml/@baseHeader@>
#include <zqxml/message/typed_fields.h>
#include <zqxml/platform/export.h>

@enumHeaders@
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

@foreign@
@doc@namespace zqxml::@subsystem@ {

/// Does nothing: the catalogue is constant and needs no registration.
ZQXML_EXPORT void RegisterSubsystem();

@declarations@
@classes@}  // namespace zqxml::@subsystem@
)",
                  values);
  }

 private:
  /// Notes what the class needs from other subsystems.
  void note(const Class& record) {
    for (const Field& field : record.fields) {
      if (field.type == FDT_PSTRING && passwordEnum_ != nullptr && passwordEnum_->subsystem != &subsystem_)
        enumsOf_.insert(passwordEnum_->subsystem);
      for (const Reference& reference : field.references) {
        const Class& target = *reference.target;
        if (target.subsystem == &subsystem_ || belongsToBase(record, field)) continue;
        if (target.isEnumeration) {
          enumsOf_.insert(target.subsystem);
        } else {
          foreign_[target.subsystem].insert(&target);
        }
      }
    }
  }

  std::string writeClass(const Class& record) const {
    std::string accessors;
    for (const Field& field : record.fields) {
      if (field.isSelf || belongsToBase(record, field)) continue;
      accessors += cat("\n  /// @{\n", fieldComment(field), writeAccessors(field, record, passwordType()),
                       "  /// @}\n");
    }
    const TemplateValue values[] = {{"doc", classComment(record)},
                                    {"class", cppIdentifier(record.name)},
                                    {"base", std::string(base_)},
                                    {"slot", std::to_string(subsystem_.slot)},
                                    {"index", std::to_string(record.index)},
                                    {"tag", hexNumber(makeTagId(subsystem_.slot, record.id))},
                                    {"numbers", fieldNumbers(record)},
                                    {"open", "/// @{"},
                                    {"close", "/// @}"},
                                    {"accessors", std::move(accessors)}};
    return expand(R"(@doc@class @class@ : public @base@ {
 public:
  @open@
  /// Slot of the subsystem, index in it, and tag id.
  static constexpr int kSubsystem = @slot@;
  static constexpr int kClassIndex = @index@;
  static constexpr std::uint32_t kTagId = @tag@;
  @close@
@numbers@
  /// A fresh object, with the defaults of the schema.
  @class@() : @base@(kSubsystem, kClassIndex) {}
  /// In the caller's block of `blockSize` bytes, which must outlive it (see XNMessageBase).
  @class@(std::int64_t* block, int blockSize) : @base@(kSubsystem, kClassIndex, block, blockSize) {}
  @open@
  /// `message` as an object of this class; null when it is null or of another class.
  static @class@* from(XNMessageBase* message) {
    return typed::isOf(message, kSubsystem, kClassIndex) ? static_cast<@class@*>(message) : nullptr;
  }
  static const @class@* from(const XNMessageBase* message) {
    return typed::isOf(message, kSubsystem, kClassIndex) ? static_cast<const @class@*>(message) : nullptr;
  }
  @close@
@accessors@};
static_assert(sizeof(@class@) == sizeof(XNMessageBase));

)",
                  values);
  }

  static std::string fieldNumbers(const Class& record) {
    std::string numbers;
    for (const Field& field : record.fields) {
      if (!field.isSelf)
        numbers += cat("    static constexpr short k", accessorStem(field), " = ", field.memNum, ";\n");
    }
    if (numbers.empty()) return {};
    return "\n  /// Positions of the fields, which are also the numbers of their set bits.\n  struct "
           "FieldNumber {\n" +
           numbers + "  };\n";
  }

  std::string passwordType() const {
    return passwordEnum_ == nullptr ? "int" : cppClassName(*passwordEnum_, subsystem_);
  }

  const Subsystem& subsystem_;
  std::string_view base_;
  const Class* passwordEnum_ = nullptr;
  std::set<const Subsystem*, BySlot> enumsOf_;
  std::map<const Subsystem*, std::set<const Class*, ByIndex>, BySlot> foreign_;
};

}  // namespace

std::string writeEnumHeader(const Subsystem& subsystem, std::string_view firstLine) {
  std::string text =
      cat(firstLine, "#pragma once\n\n#include <cstdint>\n\nnamespace zqxml::", subsystem.name, " {\n\n");
  for (const auto& record : subsystem.classes)
    if (record->isEnumeration) text += writeEnumeration(*record);
  return text + cat("}  // namespace zqxml::", subsystem.name, "\n");
}

std::string writeClassHeader(const Catalogue& catalogue, const Subsystem& subsystem,
                             std::string_view firstLine) {
  return ClassHeaderWriter(catalogue, subsystem).text(firstLine);
}

std::string writeCatalogueHeader(const Catalogue& catalogue, std::string_view firstLine) {
  std::string text = cat(firstLine, "#pragma once\n\n");
  for (const auto& subsystem : catalogue.subsystems)
    text += cat("#include <", kIncludeFolder, subsystem->name, ".h>\n");
  return text;
}

}  // namespace zqxml::zqcatc

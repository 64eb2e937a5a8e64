#include "header_writer.h"

#include <algorithm>
#include <map>
#include <set>

#include "accessor_writer.h"
#include "cpp_names.h"
#include "values.h"

namespace zqxml::zqcatc {

namespace {

std::string enumHeaderOf(const Subsystem& subsystem) {
  return cat(kIncludeFolder, subsystem.name, "_enums.h");
}

bool fitsSigned(const Class& enumeration) {
  return std::none_of(enumeration.fields.begin(), enumeration.fields.end(),
                      [](const Field& value) { return !value.negative && value.hash > 0x7fffffff; });
}

std::string enumeratorValue(const Field& value) {
  return value.negative ? std::to_string(static_cast<std::int32_t>(value.hash)) : hexNumber(value.hash);
}

std::string writeEnumeration(const Class& record) {
  std::string text = docComment(record.doc, "");
  text += cat("enum class ", cppIdentifier(record.name), " : ",
              fitsSigned(record) ? "std::int32_t" : "std::uint32_t", " {\n");
  for (const Field& value : record.fields) {
    text += docComment(value.doc, "  ");
    text += cat("  ", cppIdentifier(value.name), " = ", enumeratorValue(value), ",\n");
  }
  return text + "};\n\n";
}

std::string describe(const Field& field) {
  std::string text = typeName(field.type);
  for (const Reference& reference : field.references) text += " " + reference.text;
  return text;
}

/// The accessors that the base class has itself.
bool isProcessingInstruction(const Class& record, const Field& field) {
  return &field == &record.fields.front() && field.name == "processinginstructioninfo" &&
         field.type == FDT_OBJECT;
}

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
    std::string text =
        cat(firstLine, "#pragma once\n\n#include <",
            subsystem_.annotations ? "zqxml/annotation/annotation_base.h" : "zqxml/message/xn_message_base.h",
            ">\n#include <zqxml/message/typed_fields.h>\n#include <zqxml/platform/export.h>\n\n");
    text += cat("#include <", enumHeaderOf(subsystem_), ">\n");
    for (const Subsystem* other : enumsOf_) text += cat("#include <", enumHeaderOf(*other), ">\n");
    text +=
        "\n#include <cstdint>\n#include <map>\n#include <string>\n#include <string_view>\n#include "
        "<vector>\n\n";
    for (const auto& [other, classes] : foreign_) {
      text += cat("namespace zqxml::", other->name, " {\n");
      for (const Class* record : classes) text += cat("class ", cppIdentifier(record->name), ";\n");
      text += "}\n";
    }
    text += "\n" + docComment(subsystem_.doc, "") + cat("namespace zqxml::", subsystem_.name, " {\n\n");
    text +=
        "/// Does nothing: the catalogue is constant and needs no registration.\n"
        "ZQXML_EXPORT void RegisterSubsystem();\n\n";
    for (const auto& record : subsystem_.classes)
      if (!record->isEnumeration) text += cat("class ", cppIdentifier(record->name), ";\n");
    text += "\n";
    for (const auto& record : subsystem_.classes)
      if (!record->isEnumeration) text += writeClass(*record);
    return text + cat("}  // namespace zqxml::", subsystem_.name, "\n");
  }

 private:
  using ByPlace = decltype([](const auto* a, const auto* b) {
    const auto key = [](const auto* x) {
      if constexpr (requires { x->slot; })
        return x->slot;
      else
        return x->index;
    };
    return key(a) < key(b);
  });

  /// Notes what the class needs from other subsystems.
  void note(const Class& record) {
    for (const Field& field : record.fields) {
      if (field.type == FDT_PSTRING && passwordEnum_ != nullptr && passwordEnum_->subsystem != &subsystem_)
        enumsOf_.insert(passwordEnum_->subsystem);
      for (const Reference& reference : field.references) {
        const Class& target = *reference.target;
        if (target.subsystem == &subsystem_ || isProcessingInstruction(record, field)) continue;
        if (target.isEnumeration) {
          enumsOf_.insert(target.subsystem);
        } else {
          foreign_[target.subsystem].insert(&target);
        }
      }
    }
  }

  std::string writeClass(const Class& record) const {
    const std::string name = cppIdentifier(record.name);
    const std::uint32_t tag = (static_cast<std::uint32_t>(subsystem_.slot) << 24) | record.id;
    std::string text = docComment(record.doc, "");
    text += cat("class ", name, " : public ", base_,
                " {\n public:\n  static constexpr int kSubsystem = ", subsystem_.slot,
                ";\n  static constexpr int kClassIndex = ", record.index,
                ";\n  static constexpr std::uint32_t kTagId = ", hexNumber(tag), ";\n");
    text += fieldNumbers(record);
    text += cat("\n  ", name, "() : ", base_, "(kSubsystem, kClassIndex) {}\n  ", name,
                "(std::int64_t* block, int blockSize) : ", base_,
                "(kSubsystem, kClassIndex, block, blockSize) {}\n");
    text += cat(
        "  /// `message` as an object of this class; null when it is null or of another class.\n  static ",
        name, "* from(XNMessageBase* message) {\n    return typed::hasTag(message, kTagId) ? static_cast<",
        name, "*>(message) : nullptr;\n  }\n  static const ", name,
        "* from(const XNMessageBase* message) {\n    return typed::hasTag(message, kTagId) ? "
        "static_cast<const ",
        name, "*>(message) : nullptr;\n  }\n");
    for (const Field& field : record.fields) {
      if (field.isSelf || isProcessingInstruction(record, field)) continue;
      text += cat("\n  // ", field.name, ": ", describe(field), "\n", docComment(field.doc, "  "),
                  writeAccessors(field, record, passwordType()));
    }
    return text + cat("};\nstatic_assert(sizeof(", name, ") == sizeof(XNMessageBase));\n\n");
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
  std::set<const Subsystem*, ByPlace> enumsOf_;
  std::map<const Subsystem*, std::set<const Class*, ByPlace>, ByPlace> foreign_;
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

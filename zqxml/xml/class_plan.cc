#include <zqxml/annotation/annotation_record.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/internal/class_plan.h>
#include <zqxml/xml/internal/per_class.h>
#include <zqxml/xml/internal/root_element_name.h>
#include <zqxml/xml/internal/xml_characters.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace zqxml {
namespace {

/// Types whose value is an attribute, unless it goes into a CDATA section.
constexpr FieldTypeSet kAttributeTypes = FieldTypeSet::ofStorage(
    Overloaded{[]<class E>(Scalar<E>) { return true; }, []<class E>(InPlace<E>) { return true; },
               []<class E>(Owned<E>) { return true; }, [](auto) { return false; }});

bool isCdata(const FieldDef& field) {
  return AnnotationRecord(field).isCdata() && !kNeverCdataTypes.contains(field.getType());
}

bool isAttribute(const FieldDef& field) {
  return kAttributeTypes.contains(field.getType()) && !isCdata(field);
}

PlannedValue valueOf(const FieldDef& field) {
  if (!isAttribute(field)) return PlannedValue::other;
  return visitStorage(field.getType(),
                      Overloaded{[]<element::Integer E>(Scalar<E>) { return PlannedValue::number; },
                                 [](Scalar<element::Double>) { return PlannedValue::floating; },
                                 [](InPlace<element::Str>) { return PlannedValue::text; },
                                 [](auto) { return PlannedValue::other; }});
}

std::string_view textOf(PlannedName name) {
  return {name.text(), name.length};
}

/// Whether the field is found by its name, and in the class that the tag id leads to: what the look-up of an
/// annotation goes through.
bool isFoundByName(const XNMessageBase& message, const _ClassDef& classDef, const FieldDef& field) {
  return catalogue::classDef(message.getTagID()) == &classDef &&
         catalogue::fieldPosition(&classDef, field.getName()) == &field - classDef.getFields();
}

constinit PerClass<ClassPlan> plans;

}  // namespace

ClassPlan::ClassPlan(const XNMessageBase& message, const _ClassDef& classDef) {
  std::vector<const FieldDef*> fields;
  for (const FieldDef& field : classDef)
    if (field.getType() != FDT_NONE && field.getFieldHashId() != 0 && field.getName() != nullptr)
      fields.push_back(&field);

  const std::string root = rootElementName(message);
  const auto keep = [this](std::string_view name) {
    names_.append(1, ' ').append(name).append("=\"");
    return PlannedName{nullptr, static_cast<std::uint32_t>(name.size())};
  };
  rootName = keep(root);
  for (const FieldDef* field : fields) declared.push_back({field, keep(field->getName()), valueOf(*field)});
  names_.append(PlannedName::kBlock, ' ');
  const char* next = names_.data();
  const auto place = [&next](PlannedName& name) {
    name.attribute = next;
    next += name.attributeLength();
  };
  place(rootName);
  for (PlannedField& item : declared) place(item.name);

  attributesFirst = declared;
  const auto elements =
      std::stable_partition(attributesFirst.begin(), attributesFirst.end(),
                            [](const PlannedField& item) { return isAttribute(*item.field); });
  const auto name = [](const PlannedField& item) { return textOf(item.name); };
  std::ranges::sort(attributesFirst.begin(), elements, {}, name);
  certain = isPlainName(root) &&
            std::ranges::all_of(declared,
                                [](const PlannedField& item) { return isPlainName(textOf(item.name)); }) &&
            std::ranges::adjacent_find(attributesFirst.begin(), elements, {}, name) == elements;
  masksCertain = certain && std::ranges::all_of(fields, [&](const FieldDef* field) {
                   const AnnotationRecord record(*field);
                   if (!record.isSensitive() || !FieldDef::isPrimitiveType(field->getType())) return true;
                   return !isCdata(*field) && isFoundByName(message, classDef, *field);
                 });
}

void ClassPlan::noteLength(std::size_t length) const {
  // What writers ask room for goes beyond what they write.
  constexpr std::size_t kRoom = 1024;
  const std::size_t expected = expectedLength();
  if (length + kRoom > expected || length < expected / 2)
    expectedLength_.store(length + length / 8 + kRoom, std::memory_order_relaxed);
}

const ClassPlan* ClassPlan::of(const XNMessageBase& message) {
  const _ClassDef* classDef = MessageAccess::classDef(message);
  const int subsystem = message.getSubsysID();
  const int index = message.getMessageIndex();
  if (subsystem < 0 || subsystem >= kSubsystemCount || index < 0) return nullptr;
  const SubsystemDef& row = gSubsystemTable[subsystem];
  if (index >= row.recordCount || classDef != row.classDefs + index) return nullptr;
  return plans.of(subsystem, index, [=, &message] {
    return std::unique_ptr<const ClassPlan>(new ClassPlan(message, *classDef));
  });
}

}  // namespace zqxml

#include <zqxml/annotation/annotation_base.h>
#include <zqxml/annotation/annotation_record.h>
#include <zqxml/annotation/internal/annotation_sections.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_decoder.h>

#include <optional>

namespace zqxml {
namespace {

/// Values of an annotation whose flag is set: nothing when the record ends before them.
using Values = std::optional<AnnotationValues>;
using ReadValues = Values (*)(const AnnotationRecord& record);

/// One annotation class: the flag that says "present", and how its values are had.
struct AnnotationKind {
  std::uint32_t tagId;
  unsigned flagByte;
  unsigned mask;
  ReadValues values;
  /// Values that the record does not reach count as absent, without a line.
  bool valuesMayLack = false;
};

Values noValues(const AnnotationRecord&) {
  return AnnotationValues();
}

Values oneValue(std::string_view field, std::uint32_t value) {
  AnnotationValues values;
  values.add(field, value);
  return values;
}

Values passwordValues(const AnnotationRecord& record) {
  return oneValue("encType", static_cast<std::uint32_t>(record.passwordType()));
}
Values dateValues(const AnnotationRecord& record) {
  return oneValue("type", record.dateType());
}
Values indexValues(const AnnotationRecord& record) {
  if (!record.hasFlags(2)) return std::nullopt;
  return oneValue("indexedMetadata", std::uint32_t{record.indexedMetadata()});
}

/// The sections in the order of the record: the bit of flag byte 1 that each has, and its reader.
struct Section {
  unsigned mask;
  AnnotationValues (*read)(AnnotationCursor& cursor);
};
constexpr Section kSections[] = {
    {0x08, getTextAnnotation},
    {0x10, getCommandParamAnnotation},
    {0x04, getSearchCriteriaDefAnnotation},
    {0x02, getStoredProcedure},
};

/// The values of the section with this bit, past the sections before it.
template <unsigned kMask>
Values sectionValues(const AnnotationRecord& record) {
  AnnotationCursor cursor(record);
  for (const Section& section : kSections) {
    if ((record.flags(1) & section.mask) == 0) continue;
    const AnnotationValues values = section.read(cursor);
    if (section.mask == kMask && !cursor.failed()) return values;
  }
  return std::nullopt;
}

/// In the order in which FillAnnotationIds lists them.
constexpr AnnotationKind kKinds[] = {
    {Annotation::Password::kTagId, 0, 0xf0, passwordValues},
    {Annotation::ZQTime::kTagId, 0, 0x08, noValues},
    {Annotation::Suppress::kTagId, 0, 0x04, noValues},
    {Annotation::XDate::kTagId, 0, 0x03, dateValues},
    {Annotation::GenPath::kTagId, 1, 0x80, noValues},
    {Annotation::HideInReports::kTagId, 1, 0x40, noValues},
    {Annotation::SingleInstanced::kTagId, 1, 0x20, noValues},
    {Annotation::CommandParam::kTagId, 1, 0x10, sectionValues<0x10>},
    {Annotation::Text::kTagId, 1, 0x08, sectionValues<0x08>},
    {Annotation::SearchCriteriaDef::kTagId, 1, 0x04, sectionValues<0x04>},
    {Annotation::StoredProcedure::kTagId, 1, 0x02, sectionValues<0x02>},
    {Annotation::IndexAttr::kTagId, 1, 0x01, indexValues, true},
    {Annotation::MarkAsCDATA::kTagId, 2, 0x80, noValues},
    {Annotation::Sensitive::kTagId, 2, 0x40, noValues},
};

bool isPresent(const AnnotationKind& kind, const AnnotationRecord& record) {
  return (record.flags(kind.flagByte) & kind.mask) != 0;
}

/// Sets the field of the value's name, when the annotation has one that can hold it.
void store(const AnnotationValue& value, AnnotationBase& out) {
  const _ClassDef& classDef = *MessageAccess::classDef(out);
  const int position = catalogue::fieldPositionByHash(classDef, nameHash(value.field));
  if (position < 0) return;
  const FieldDef& field = classDef.getFields()[position];
  visitStorage(field.getType(), Overloaded{[&](InPlace<element::Str>) {
                                             MessageAccess::inPlace<std::string>(out, field) = value.text;
                                             MessageAccess::mark(out, field.getMemNum());
                                           },
                                           [&]<element::Integer E>(Scalar<E>) {
                                             MessageAccess::setInteger(out, field, value.number);
                                           },
                                           [](auto) {}});
}

}  // namespace

bool XMLDecoder::FillAnnotation(const XNMessageBase* msg, AnnotationBase& out, const std::string& fieldName) {
  const _ClassDef* classDef = XNMessageBase::GetClassDef(msg);
  if (classDef == nullptr) {
    logError("XMLDecoder::FillAnnotation", "Unable to obtain metadata of received object");
    return false;
  }
  return FillAnnotation(classDef, out, fieldName);
}

bool XMLDecoder::FillAnnotation(const _ClassDef* classDef, AnnotationBase& out,
                                const std::string& fieldName) {
  if (classDef == nullptr) {
    logError("XMLDecoder::FillAnnotation", "Received NULL ClassDef");
    return false;
  }
  const int position = catalogue::fieldPosition(classDef, fieldName);
  if (position < 0) {
    if (classDef->getName() != nullptr && fieldName == classDef->getName()) {
      logDebug("XMLDecoder::FillAnnotation", 10, "No class level annotation found for [%s]", fieldName);
    } else {
      logDebug("XMLDecoder::FillAnnotation", 10, "Couldn't find field [%s] in the object [%s]", fieldName,
               classDef->getName());
    }
    return false;
  }
  const AnnotationRecord record(classDef->getFields()[position]);
  for (const AnnotationKind& kind : kKinds) {
    if (kind.tagId != out.getTagID()) continue;
    if (!isPresent(kind, record)) return false;
    const Values values = kind.values(record);
    if (!values.has_value()) {
      if (!kind.valuesMayLack) {
        logError("XMLDecoder::FillAnnotation", "Failed to parse the annotation [%s] to fill the field [%s]",
                 MessageAccess::classDef(out)->getName(), fieldName);
      }
      return false;
    }
    for (const AnnotationValue& value : *values) store(value, out);
    return true;
  }
  return false;
}

bool XMLDecoder::FillAnnotationIds(const FieldDef& field, std::vector<std::uint32_t>& ids) {
  const AnnotationRecord record(field);
  if (!record.exists()) return false;
  for (const AnnotationKind& kind : kKinds)
    if (isPresent(kind, record)) ids.push_back(kind.tagId);
  return true;
}

}  // namespace zqxml

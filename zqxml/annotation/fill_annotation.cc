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
  AnnotationFlag flag;
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

/// The sections in the order of the record: the flag that each has, and its reader.
struct Section {
  AnnotationFlag flag;
  AnnotationValues (*read)(AnnotationCursor& cursor);
};
constexpr Section kSections[] = {
    {annotation_flag::kText, getTextAnnotation},
    {annotation_flag::kCommandParam, getCommandParamAnnotation},
    {annotation_flag::kSearchCriteriaDef, getSearchCriteriaDefAnnotation},
    {annotation_flag::kStoredProcedure, getStoredProcedure},
};

/// The values of the section with this flag, past the sections before it.
template <const AnnotationFlag& kFlag>
Values sectionValues(const AnnotationRecord& record) {
  AnnotationCursor cursor(record);
  for (const Section& section : kSections) {
    if (!record.has(section.flag)) continue;
    const AnnotationValues values = section.read(cursor);
    if (section.flag.mask == kFlag.mask && !cursor.failed()) return values;
  }
  return std::nullopt;
}

/// In the order in which FillAnnotationIds lists them.
constexpr AnnotationKind kKinds[] = {
    {Annotation::Password::kTagId, annotation_flag::kPassword, passwordValues},
    {Annotation::ZQTime::kTagId, annotation_flag::kZQTime, noValues},
    {Annotation::Suppress::kTagId, annotation_flag::kSuppress, noValues},
    {Annotation::XDate::kTagId, annotation_flag::kXDate, dateValues},
    {Annotation::GenPath::kTagId, annotation_flag::kGenPath, noValues},
    {Annotation::HideInReports::kTagId, annotation_flag::kHideInReports, noValues},
    {Annotation::SingleInstanced::kTagId, annotation_flag::kSingleInstanced, noValues},
    {Annotation::CommandParam::kTagId, annotation_flag::kCommandParam,
     sectionValues<annotation_flag::kCommandParam>},
    {Annotation::Text::kTagId, annotation_flag::kText, sectionValues<annotation_flag::kText>},
    {Annotation::SearchCriteriaDef::kTagId, annotation_flag::kSearchCriteriaDef,
     sectionValues<annotation_flag::kSearchCriteriaDef>},
    {Annotation::StoredProcedure::kTagId, annotation_flag::kStoredProcedure,
     sectionValues<annotation_flag::kStoredProcedure>},
    {Annotation::IndexAttr::kTagId, annotation_flag::kIndexAttr, indexValues, true},
    {Annotation::MarkAsCDATA::kTagId, annotation_flag::kMarkAsCDATA, noValues},
    {Annotation::Sensitive::kTagId, annotation_flag::kSensitive, noValues},
};

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
    if (!record.has(kind.flag)) return false;
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
    if (record.has(kind.flag)) ids.push_back(kind.tagId);
  return true;
}

}  // namespace zqxml

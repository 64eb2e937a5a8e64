#pragma once

#include <zqxml/annotation/annotation_base.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_decoder.h>

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace zqxml {

/// Slot of subsystem Annotation, and the class indices of the annotations that records can hold.
inline constexpr int kAnnotationSlot = 27;
enum AnnotationIndex : int {
  kXDateIndex = 4,
  kSuppressIndex = 8,
  kPasswordIndex = 11,
  kSingleInstancedIndex = 12,
  kSummaryHeaderIndex = 17,
  kZQTimeIndex = 18,
  kGenPathIndex = 19,
  kIndexAttrIndex = 23,
  kCommandParamIndex = 25,
  kHideInReportsIndex = 26,
  kSearchCriteriaDefIndex = 28,
  kTextIndex = 33,
  kStoredProcedureIndex = 40,
  kMarkAsCDATAIndex = 60,
  kSensitiveIndex = 64,
};

/// Two bytes, the first on top.
inline std::string packLength(std::size_t length) {
  return {static_cast<char>(length >> 8), static_cast<char>(length)};
}

/// A string as sections hold it.
inline std::string packText(const std::string& text) {
  return packLength(text.size()) + text;
}

/// Bytes by number.
inline std::string packBytes(std::initializer_list<unsigned> bytes) {
  std::string packed;
  for (const unsigned byte : bytes) packed += static_cast<char>(byte);
  return packed;
}

/// A record of these bytes behind its length word.
inline std::string packRecord(const std::string& body) {
  return packLength(body.size() + 2) + body;
}

/// A class that the tests make up, with fields and their records.
class AnnotatedClass {
 public:
  explicit AnnotatedClass(const char* name = "MadeUp") : name_(name) {}

  /// A field with this record.
  AnnotatedClass& add(const char* field, const std::string& record, FieldDataType type = FDT_INT) {
    return add(field, records_.emplace_back(record).data(), type);
  }
  /// A field with this record or, for null, without one.
  AnnotatedClass& add(const char* field, const char* record, FieldDataType type = FDT_INT) {
    const auto memNum = static_cast<std::int16_t>(fields_.size());
    fields_.emplace_back(field, record, nameHash(field), 0, memNum, memNum, type);
    return *this;
  }
  /// The record of the class itself.
  AnnotatedClass& annotate(const std::string& record) { return add(name_, record, FDT_NONE); }

  const _ClassDef* def() {
    def_ =
        _ClassDef(name_, fields_.data(), nameHash(name_), -1, static_cast<std::int16_t>(fields_.size()), 0);
    return &def_;
  }
  const FieldDef& field(std::size_t position) const { return fields_[position]; }

 private:
  const char* name_;
  std::deque<std::string> records_;
  std::vector<FieldDef> fields_;
  _ClassDef def_;
};

/// The set fields of a message with scalar and string fields: name and value.
using SetFields = std::map<std::string, std::string>;
inline SetFields setFieldsOf(const XNMessageBase& message) {
  SetFields fields;
  for (const FieldDef& field : *MessageAccess::classDef(message)) {
    if (field.getType() == FDT_NONE || !MessageAccess::isSet(message, field.getMemNum())) continue;
    fields[field.getName()] = field.getType() == FDT_STRING
                                  ? MessageAccess::inPlace<std::string>(message, field)
                                  : std::to_string(MessageAccess::slot(message, field));
  }
  return fields;
}

inline AnnotationBase annotation(AnnotationIndex index) {
  return AnnotationBase(kAnnotationSlot, index);
}

/// Whether a field with this record has the annotation.
inline bool has(AnnotationIndex index, const std::string& record) {
  AnnotationBase out = annotation(index);
  return XMLDecoder::FillAnnotation(AnnotatedClass().add("field", record).def(), out, "field");
}

/// What the annotation takes from a field with this record; one entry "absent" when it is not there.
inline SetFields filled(AnnotationIndex index, const std::string& record) {
  AnnotationBase out = annotation(index);
  if (!XMLDecoder::FillAnnotation(AnnotatedClass().add("field", record).def(), out, "field"))
    return {{"absent", setFieldsOf(out).empty() ? "" : "but not empty"}};
  return setFieldsOf(out);
}
inline const SetFields kAbsent{{"absent", ""}};

/// 26 bytes: `text` "Schedule Type" and `name` "st".
inline std::string sampleRecord() {
  return packBytes({0x00, 0x1a, 0x00, 0x18, 0x00, 0x80, 0x00, 0x0d}) + "Schedule Type" +
         packBytes({0x80, 0x00, 0x02}) + "st";
}

}  // namespace zqxml

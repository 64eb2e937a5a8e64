#include "annotation_packer.h"

#include <zqxml/annotation/annotation_record.h>
#include <zqxml/annotation/internal/annotation_sections.h>

#include <algorithm>
#include <array>
#include <limits>

#include "values.h"

namespace zqxml::zqcatc {

namespace {

/// An annotation without a section.
struct Mark {
  std::string_view name;
  AnnotationFlag flag;
};

constexpr std::array<Mark, 8> kMarks{{
    {"ZQTime", annotation_flag::kZQTime},
    {"Suppress", annotation_flag::kSuppress},
    {"GenPath", annotation_flag::kGenPath},
    {"HideInReports", annotation_flag::kHideInReports},
    {"SingleInstanced", annotation_flag::kSingleInstanced},
    {"IndexAttr", annotation_flag::kIndexAttr},
    {"MarkAsCDATA", annotation_flag::kMarkAsCDATA},
    {"Sensitive", annotation_flag::kSensitive},
}};

/// Fields on which an annotation has an effect; those not listed take it anywhere.
constexpr FieldTypeSet kDateTypes{FDT_INT,      FDT_UINT,      FDT_LONG,   FDT_ULONG,
                                  FDT_LONGLONG, FDT_ULONGLONG, FDT_TIME32, FDT_TIME64};

bool hasEffect(std::string_view annotation, FieldDataType type) {
  if (annotation == "Password") return type == FDT_PSTRING;
  if (annotation == "XDate" || annotation == "ZQTime") return kDateTypes.contains(type);
  if (annotation == "MarkAsCDATA") return !kNeverCdataTypes.contains(type);
  return true;
}

void setBits(std::string& bytes, std::size_t at, unsigned bits) {
  bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) | bits);
}

void setFlag(std::string& flagBytes, AnnotationFlag flag) {
  setBits(flagBytes, flag.byte, flag.mask);
}

/// Sets a bit of the three bytes at the start, by its number from the low end of the third one.
void setBitOfThree(std::string& bytes, unsigned number) {
  setBits(bytes, 2 - number / 8, 1u << number % 8);
}

void appendNumber(std::string& bytes, std::uint32_t value, int width) {
  for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
    bytes += static_cast<char>((value >> shift) & 0xff);
}

/// Packs the annotations of one field.
class RecordWriter {
 public:
  RecordWriter(const Subsystem* annotations, std::string where, FieldDataType type, Diagnostics& diagnostics)
      : annotations_(annotations), where_(std::move(where)), type_(type), diagnostics_(diagnostics) {}

  void add(const Element& element);
  std::string finish(const Position& position);

 private:
  void addText(const Element& element);
  void addCommandParam(const Element& element);
  void addSearchCriteria(const Element& element);
  void checkEffect(const Element& element);
  /// Value of an attribute as a number: a number, or the name of an enumerator of the annotation's field.
  std::optional<std::uint32_t> number(const Element& element, std::string_view attribute, std::uint32_t low,
                                      std::uint32_t high);
  std::optional<std::int64_t> enumerator(std::string_view annotation, std::string_view field,
                                         std::string_view name) const;
  void appendString(std::string& bytes, const Attribute& attribute);

  const Subsystem* annotations_;
  std::string where_;
  FieldDataType type_;
  Diagnostics& diagnostics_;
  std::string flags_ = std::string(3, '\0');
  std::string text_, commandParam_, searchCriteria_, storedProcedure_;
};

void RecordWriter::add(const Element& element) {
  checkEffect(element);
  const auto mark =
      std::find_if(kMarks.begin(), kMarks.end(), [&](const Mark& m) { return m.name == element.name; });
  if (mark != kMarks.end()) setFlag(flags_, mark->flag);
  if (element.name == "Password") {
    setBits(flags_, annotation_flag::kPassword.byte, number(element, "encType", 1, 15).value_or(0) << 4);
  } else if (element.name == "XDate") {
    setBits(flags_, annotation_flag::kXDate.byte, number(element, "type", 1, 3).value_or(0));
  } else if (element.name == "IndexAttr") {
    if (flagAttribute(element, "indexedMetadata")) setFlag(flags_, annotation_flag::kIndexedMetadata);
  } else if (element.name == "Text") {
    addText(element);
  } else if (element.name == "CommandParam") {
    addCommandParam(element);
  } else if (element.name == "SearchCriteriaDef") {
    addSearchCriteria(element);
  } else if (element.name == "StoredProcedure") {
    setFlag(flags_, annotation_flag::kStoredProcedure);
    appendString(storedProcedure_, *element.find("name"));
  }
}

void RecordWriter::checkEffect(const Element& element) {
  if (hasEffect(element.name, type_) || flagAttribute(element, "force")) return;
  diagnostics_.error(element.position,
                     cat("annotation '", element.name, "' has no effect on ", where_, ", of type '",
                         typeName(type_), "'; remove it, or write force=\"true\" to keep it"));
}

void RecordWriter::addText(const Element& element) {
  setFlag(flags_, annotation_flag::kText);
  text_.assign(1, '\0');
  unsigned bit = 0x80;
  for (const char* name : {"text", "comment", "falseText"}) {
    if (const Attribute* attribute = element.find(name)) {
      setBits(text_, 0, bit);
      appendString(text_, *attribute);
    }
    bit >>= 1;
  }
  if (element.find("commentID") != nullptr) {
    setBits(text_, 0, 0x10);
    appendNumber(text_,
                 number(element, "commentID", 0, std::numeric_limits<std::uint32_t>::max()).value_or(0), 4);
  }
  if (element.find("localise") != nullptr)
    setBits(text_, 0, flagAttribute(element, "localise") ? 0x0c : 0x08);
}

void RecordWriter::addCommandParam(const Element& element) {
  setFlag(flags_, annotation_flag::kCommandParam);
  commandParam_.assign(1, '\0');
  if (const Attribute* name = element.find("name")) {
    setBits(commandParam_, 0, 0x80);
    appendString(commandParam_, *name);
  }
  if (element.find("useDefault") != nullptr)
    setBits(commandParam_, 0, flagAttribute(element, "useDefault") ? 0x50 : 0x40);
  if (element.find("ignoreReplace") != nullptr)
    setBits(commandParam_, 0, flagAttribute(element, "ignoreReplace") ? 0x0c : 0x04);
}

void RecordWriter::addSearchCriteria(const Element& element) {
  setFlag(flags_, annotation_flag::kSearchCriteriaDef);
  std::string head(4, '\0');
  std::string text;
  std::string values(3, '\0');
  for (const SearchCriterion& criterion : kSearchCriteria) {
    if (element.find(criterion.field) == nullptr) continue;
    setBitOfThree(head, criterion.presence);
    if (flagAttribute(element, criterion.field)) setBitOfThree(values, criterion.value);
  }
  const auto field = [&](std::string_view name, std::size_t byte, unsigned bit, std::string& target,
                         std::size_t at, unsigned shift, std::uint32_t high) {
    if (element.find(name) == nullptr) return;
    setBits(head, byte, bit);
    setBits(target, at, number(element, name, 0, high).value_or(0) << shift);
  };
  field("type", 0, 0x20, head, 3, 4, 15);
  field("searchGroupType", 2, 0x80, head, 3, 0, 15);
  field("filteredSearchGroup", 2, 0x40, values, 0, 3, 31);
  field("searchType", 2, 0x20, head, 2, 0, 7);
  field("filterSupportedVersion", 2, 0x10, values, 1, 3, 31);
  if (const Attribute* attribute = element.find("text")) {
    setBits(head, 2, 0x08);
    appendString(text, *attribute);
  }
  searchCriteria_ = head + text + values;
}

std::optional<std::uint32_t> RecordWriter::number(const Element& element, std::string_view attribute,
                                                  std::uint32_t low, std::uint32_t high) {
  const std::string& text = element.value(attribute);
  std::optional<std::int64_t> value = parseNumber(text);
  if (!value.has_value()) value = enumerator(element.name, attribute, text);
  if (value.has_value() && *value >= low && *value <= high) return static_cast<std::uint32_t>(*value);
  diagnostics_.error(element.at(attribute),
                     cat("'", text, "' is no value of ", attribute, " of annotation '", element.name, "' (",
                         where_, "); write a number from ", low, " to ", high,
                         ", or an enumerator of that field's enumeration with such a value"));
  return std::nullopt;
}

std::optional<std::int64_t> RecordWriter::enumerator(std::string_view annotation, std::string_view field,
                                                     std::string_view name) const {
  const Class* record = annotations_ == nullptr ? nullptr : annotations_->find(annotation);
  if (record == nullptr) return std::nullopt;
  for (const Field& candidate : record->fields) {
    if (candidate.name != field || candidate.references.empty()) continue;
    const Class* enumeration = candidate.references[0].target;
    if (enumeration == nullptr) continue;
    for (const Field& value : enumeration->fields)
      if (value.name == name) return value.hash;
  }
  return std::nullopt;
}

void RecordWriter::appendString(std::string& bytes, const Attribute& attribute) {
  if (attribute.value.size() > std::numeric_limits<std::uint16_t>::max()) {
    diagnostics_.error(attribute.position,
                       cat("text of ", attribute.name, " on ", where_, " has ", attribute.value.size(),
                           " bytes; shorten it to at most 65535"));
    return;
  }
  appendNumber(bytes, static_cast<std::uint32_t>(attribute.value.size()), 2);
  bytes += attribute.value;
}

std::string RecordWriter::finish(const Position& position) {
  if (!commandParam_.empty() && !(searchCriteria_.empty() && storedProcedure_.empty())) {
    diagnostics_.error(position,
                       cat("annotation 'CommandParam' of ", where_,
                           " cannot stand with 'SearchCriteriaDef' "
                           "or 'StoredProcedure': a record reader could not find the latter; remove one"));
  }
  const bool hasSections =
      !(text_.empty() && commandParam_.empty() && searchCriteria_.empty() && storedProcedure_.empty());
  std::string body = flags_ + text_ + commandParam_ + searchCriteria_ + storedProcedure_;
  // A value of IndexAttr is only found when its byte is there, even where it is 0.
  const auto indexFlags = static_cast<unsigned char>(flags_[annotation_flag::kIndexAttr.byte]);
  const bool needsAllFlags = hasSections || (indexFlags & annotation_flag::kIndexAttr.mask) != 0;
  if (!needsAllFlags) {
    while (!body.empty() && body.back() == '\0') body.pop_back();
  }
  const std::size_t length = body.size() + 2;
  if (length > kMaxAnnotationBytes) {
    diagnostics_.error(position,
                       cat("the annotations of ", where_, " take ", length,
                           " bytes; shorten their texts to at most ", kMaxAnnotationBytes, " in all"));
    return {};
  }
  std::string record;
  appendNumber(record, body.empty() ? 0 : static_cast<std::uint32_t>(length), 2);
  return record + body;
}

}  // namespace

std::optional<std::string> AnnotationPacker::pack(const Class& owner, const Field& field) const {
  if (field.annotationElements.empty() && !field.isSelf) return std::nullopt;
  const std::string where = field.isSelf ? cat("class '", owner.name, "' itself")
                                         : cat(owner.isEnumeration ? "enumerator '" : "field '", field.name,
                                               "' of '", owner.name, "'");
  RecordWriter writer(annotations_, where, field.type, diagnostics_);
  for (const Element& element : field.annotationElements) writer.add(element);
  return writer.finish(field.position);
}

}  // namespace zqxml::zqcatc

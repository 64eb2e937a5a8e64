#include <zqxml/annotation/annotation_record.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/render/internal/rendered_field.h>
#include <zqxml/render/xml_utils.h>
#include <zqxml/xml/internal/date_forms.h>
#include <zqxml/xml/value_text.h>
#include <zqxml/xml/xml_decoder.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace zqxml {
namespace {

constexpr DateForms kDateForms{"%d day(s)", "%d hour(s)", "%u"};

/// Lists of which only the brackets are shown.
constexpr FieldTypeSet kListsWithoutTexts{FDT_LIST_ENUM, FDT_LIST_OBJECT};

/// Lists are read by name: another name would give elements of another type.
bool haveOneName(const FieldDef& one, const FieldDef& other) {
  const char* name = one.getName();
  const char* otherName = other.getName();
  return name == otherName || (name != nullptr && otherName != nullptr && std::strcmp(name, otherName) == 0);
}

/// The event's message when it has the field, so that its slots may be read.
const XNMessageBase* ownerOf(const MsgFieldContext& context) {
  const XNMessageBase* message = context.getMsgObj();
  const FieldDef& field = context.getField();
  const _ClassDef* classDef = XNMessageBase::GetClassDef(message);
  if (classDef == nullptr || field.getMemNum() < 0 || field.getMemNum() >= classDef->getNumberOfFields())
    return nullptr;
  const FieldDef& own = classDef->getFields()[field.getMemNum()];
  const bool same = own.getType() == field.getType() && own.getIndex() == field.getIndex() &&
                    own.getFieldHashId() == field.getFieldHashId() && haveOneName(own, field);
  return same ? message : nullptr;
}

}  // namespace

RenderedField::RenderedField(const MsgFieldContext& context)
    : context_(context), field_(context.getField()), message_(ownerOf(context)) {}

std::string RenderedField::name() const {
  const char* name = field_.getName();
  return name == nullptr ? "" : name;
}

std::string RenderedField::label(int localeId) const {
  std::string text;
  if (field_.getLoczId() != 0)
    XmlUtils::getLocalizedMessage(static_cast<std::uint32_t>(field_.getLoczId()), localeId, text);
  return text.empty() ? name() : text;
}

bool RenderedField::isSet() const {
  return message_ != nullptr && MessageAccess::isSet(*message_, field_.getMemNum());
}

bool RenderedField::isHidden() const {
  const AnnotationRecord record(field_);
  return record.isSuppressed() || record.isHiddenInReports();
}

bool RenderedField::isWithheld() const {
  return isHidden() || AnnotationRecord(field_).passwordType() != 0;
}

bool RenderedField::isSingleValue() const {
  return !isList() && !isEnum() && kXmlPrimitiveTypes.contains(field_.getType());
}

std::string RenderedField::enumeratorName() const {
  if (message_ == nullptr || !isEnum()) return {};
  return XMLDecoder::GetEnumString(field_, MessageAccess::scalar<std::int32_t>(*message_, field_));
}

std::string RenderedField::enumeratorText() const {
  std::string name = enumeratorName();
  const _ClassDef* enumeration = isEnum() ? catalogue::classOfField(field_) : nullptr;
  Annotation::Text annotation;
  if (enumeration != nullptr && !name.empty() && XMLDecoder::FillAnnotation(enumeration, annotation, name) &&
      !annotation.getText().empty())
    return annotation.getText();
  return name;
}

ListText RenderedField::listText(char open, char close) const {
  std::vector<void*> elements;
  if (message_ != nullptr && isList()) context_.readListValue(&elements);
  ListText list{std::string(1, open), !elements.empty()};
  if (!kListsWithoutTexts.contains(field_.getType())) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
      if (i != 0) list.text += ',';
      list.text += getStringFromFld(field_.getType(), elements[i]);
    }
  }
  list.text += close;
  return list;
}

const XNMessageBase* RenderedField::firstObject() const {
  if (message_ == nullptr) return nullptr;
  return visitStorage(
      field_.getType(),
      Overloaded{[this](Object) { return MessageAccess::owned<XNMessageBase>(*message_, field_); },
                 [this](List<element::Obj>) -> const XNMessageBase* {
                   const auto* list = MessageAccess::owned<std::vector<XNMessageBase>>(*message_, field_);
                   return list == nullptr || list->empty() ? nullptr : &list->front();
                 },
                 [](auto) -> const XNMessageBase* { return nullptr; }});
}

bool RenderedField::readDate(std::string& text) const {
  const unsigned dateType = AnnotationRecord(field_).dateType();
  if (message_ == nullptr || dateType == 0) return false;
  const std::int64_t seconds = visitStorage(
      field_.getType(), Overloaded{[this]<element::Integer E>(Scalar<E>) {
                                     return static_cast<std::int64_t>(
                                         MessageAccess::scalar<typename E::Value>(*message_, field_));
                                   },
                                   [](auto) { return std::int64_t{0}; }});
  if (seconds == 0) return false;
  std::array<char, kDateRoom> form{};
  formatDate(seconds, dateType, kDateForms, form);
  text = form.data();
  return true;
}

}  // namespace zqxml

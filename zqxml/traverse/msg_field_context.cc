#include <zqxml/annotation/annotation_base.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/message/internal/field_resolution.h>
#include <zqxml/traverse/msg_field_context.h>
#include <zqxml/xml/xml_decoder.h>

#include <memory>
#include <type_traits>
#include <utility>

namespace zqxml {
namespace {

/// List types that take a value of an overload.
template <class Value>
constexpr FieldTypeSet kListsTaking{};
template <>
constexpr FieldTypeSet kListsTaking<int>{FDT_LIST_INT, FDT_LIST_ENUM};
template <>
constexpr FieldTypeSet kListsTaking<unsigned int>{FDT_LIST_UINT, FDT_LIST_ENUM};
template <>
constexpr FieldTypeSet kListsTaking<long>{FDT_LIST_LONG};
template <>
constexpr FieldTypeSet kListsTaking<unsigned long>{FDT_LIST_ULONG};
template <>
constexpr FieldTypeSet kListsTaking<long long>{FDT_LIST_LONGLONG};
template <>
constexpr FieldTypeSet kListsTaking<float>{FDT_LIST_FLOAT};
template <>
constexpr FieldTypeSet kListsTaking<double>{FDT_LIST_DOUBLE};
template <>
constexpr FieldTypeSet kListsTaking<std::string>{FDT_LIST_STRING};
template <>
constexpr FieldTypeSet kListsTaking<std::u16string>{FDT_LIST_WSTRING};
template <>
constexpr FieldTypeSet kListsTaking<bstring>{FDT_LIST_BSTRING};

/// Whether a list of T can hold the value of an overload at all.
template <class Value, class T>
constexpr bool kHolds = std::is_same_v<Value, T> || (std::is_arithmetic_v<Value> && std::is_arithmetic_v<T>);

/// Stores a value where it fits. A field whose content always exists is marked in any case.
template <class Value>
struct Replacer {
  XNMessageBase& message;
  const FieldDef& field;
  const Value& value;

  template <element::Integer E>
  void operator()(Scalar<E>) const {
    if constexpr (std::is_integral_v<Value>)
      MessageAccess::slot(message, field) = static_cast<std::int64_t>(value);
    mark();
  }
  void operator()(Scalar<element::Double>) const {
    if constexpr (std::is_same_v<Value, double>) MessageAccess::setDouble(message, field, value);
    mark();
  }
  void operator()(Scalar<element::Float>) const {
    if constexpr (std::is_same_v<Value, float>) MessageAccess::setFloat(message, field, value);
    mark();
  }
  template <class E>
  void operator()(InPlace<E>) const {
    if constexpr (std::is_same_v<Value, typename E::Value>)
      MessageAccess::inPlace<Value>(message, field) = value;
    mark();
  }
  template <class E>
  void operator()(Owned<E>) const {
    if constexpr (std::is_same_v<Value, typename E::Value>)
      MessageAccess::make<Value>(message, field, true) = value;
    mark();
  }
  template <class E>
  void operator()(List<E>) const {
    if constexpr (kHolds<Value, typename E::Value>) {
      if (kListsTaking<Value>.contains(field.getType()))
        MessageAccess::make<typename List<E>::Value>(message, field, true)
            .push_back(static_cast<typename E::Value>(value));
    }
  }
  template <class Storage>
  void operator()(Storage) const {}

 private:
  void mark() const { MessageAccess::mark(message, field.getMemNum()); }
};

/// Takes a copy of an object. The object may be a part of the message.
template <>
struct Replacer<XNMessageBase> {
  XNMessageBase& message;
  const FieldDef& field;
  const XNMessageBase& value;

  void operator()(List<element::Obj>) const {
    XNMessageBase copy(value);
    MessageAccess::make<std::vector<XNMessageBase>>(message, field, true).push_back(std::move(copy));
  }
  void operator()(Object) const {
    XNMessageBase*& slot = MessageAccess::owned<XNMessageBase>(message, field);
    // Assignment between classes throws; an object of another class takes the place of the old one.
    if (slot != nullptr && MessageAccess::isSet(message, field.getMemNum()) &&
        MessageAccess::classDef(*slot) == MessageAccess::classDef(value)) {
      *slot = value;
      return;
    }
    const std::unique_ptr<XNMessageBase> old(std::exchange(slot, new XNMessageBase(value)));
    MessageAccess::mark(message, field.getMemNum());
  }
  template <class Storage>
  void operator()(Storage) const {}
};

}  // namespace

const FieldDef* MsgFieldContext::ownField(const char* function) const {
  if (msgObj_ == nullptr || MessageAccess::classDef(*msgObj_) == nullptr) return nullptr;
  if (field_.getType() == FDT_NONE || field_.getType() >= kFieldTypeCount) return nullptr;
  return resolveField(*msgObj_, function, {field_.getType()},
                      {field_.getMemNum(), field_.getIndex(), msgObj_->getTagID(), field_.getFieldHashId()});
}

template <class Value>
void MsgFieldContext::replace(const Value& value) {
  replaced_ = true;
  const FieldDef* field = ownField("MsgFieldContext::replaceValue");
  if (field != nullptr) visitStorage(field->getType(), Replacer<Value>{*msgObj_, *field, value});
}

void MsgFieldContext::replaceValue(int value) {
  replace(value);
}
void MsgFieldContext::replaceValue(unsigned int value) {
  replace(value);
}
void MsgFieldContext::replaceValue(long value) {
  replace(value);
}
void MsgFieldContext::replaceValue(unsigned long value) {
  replace(value);
}
void MsgFieldContext::replaceValue(long long value) {
  replace(value);
}
void MsgFieldContext::replaceValue(bool value) {
  replace(value);
}
void MsgFieldContext::replaceValue(float value) {
  replace(value);
}
void MsgFieldContext::replaceValue(double value) {
  replace(value);
}
void MsgFieldContext::replaceValue(const std::string& value) {
  replace(value);
}
void MsgFieldContext::replaceValue(const std::u16string& value) {
  replace(value);
}
void MsgFieldContext::replaceValue(const bstring& value, bool) {
  replace(value);
}
void MsgFieldContext::replaceValue(const pstring& value) {
  replace(value);
}
void MsgFieldContext::replaceValue(const XNMessageBase* object) {
  if (object != nullptr) replace(*object);
}

void MsgFieldContext::EnableField() {
  const FieldDef* field = ownField("MsgFieldContext::EnableField");
  if (field == nullptr || MessageAccess::isSet(*msgObj_, field->getMemNum())) return;
  Annotation::CommandParam command;
  // QUIRK: what counts is that the annotation says something of useDefault, not what.
  if (getAnnotation(command) && command.isUseDefaultSet())
    MessageAccess::setDefaults(*msgObj_, field->getMemNum());
}

void MsgFieldContext::clearList() {
  const FieldDef* field = ownField("MsgFieldContext::clearList");
  // QUIRK: type 6 passes for a list; types 18 and 30 are lists and do not pass.
  if (field == nullptr || !XMLDecoder::isListType(field->getType()) ||
      !MessageAccess::isSet(*msgObj_, field->getMemNum()))
    return;
  MessageAccess::deleteMember(*msgObj_, field->getMemNum());
  MessageAccess::unmark(*msgObj_, field->getMemNum());
}

bool MsgFieldContext::getAnnotation(AnnotationBase& out) const {
  const char* name = field_.getName();
  return name != nullptr && XMLDecoder::FillAnnotation(msgObj_, out, name);
}

void MsgFieldContext::readListValue(std::vector<void*>* out) const {
  if (out == nullptr) return;
  std::vector<const void*> elements;
  const char* name = field_.getName();
  XMLDecoder::ReadFromList(msgObj_, name == nullptr ? "" : name, elements);
  out->clear();
  out->reserve(elements.size());
  for (const void* element : elements) out->push_back(const_cast<void*>(element));
}

void MsgFieldContext::readEnumValue(std::string&, int) const {}

void MsgFieldContext::replaceFieldValue() {}

}  // namespace zqxml

// What the value of a message is: copy, assignment, equality. Only set fields with a name hash take part.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/kept_texts.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/exception.h>

#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

/// Copies one set field; a set bit over an empty slot copies nothing.
struct FieldCopier {
  XNMessageBase& to;
  const XNMessageBase& from;
  const FieldDef& field;

  void operator()(Nothing) const {}

  template <class E>
  void operator()(Scalar<E>) const {
    MessageAccess::setInteger(to, field, MessageAccess::slot(from, field));
  }

  template <class E>
  void operator()(InPlace<E>) const {
    MessageAccess::inPlace<typename E::Value>(to, field) =
        MessageAccess::inPlace<typename E::Value>(from, field);
    mark();
  }

  // Texts and, for a password, its encryption type.
  template <class E>
  void operator()(Owned<E>) const {
    using Text = typename E::Value;
    const Text* source = MessageAccess::owned<Text>(from, field);
    if (source == nullptr) return;
    MessageAccess::make<Text>(to, field, true) = *source;
  }

  void operator()(Object) const {
    const XNMessageBase* source = MessageAccess::owned<XNMessageBase>(from, field);
    if (source == nullptr) return;
    XNMessageBase*& target = MessageAccess::owned<XNMessageBase>(to, field);
    // An object that was built with its owner is assigned, and so refuses one of another class.
    if (target == nullptr)
      target = new XNMessageBase(*source);
    else
      *target = *source;
    mark();
  }

  template <class Collection>
  void operator()(Collection) const {
    using Value = typename Collection::Value;
    const Value* source = MessageAccess::owned<Value>(from, field);
    if (source == nullptr) return;
    Value copy(*source);
    copy.swap(MessageAccess::make<Value>(to, field, true));
  }

 private:
  void mark() const { MessageAccess::mark(to, field.getMemNum()); }
};

/// Takes over one set field of an object that is about to end.
struct FieldTaker {
  XNMessageBase& to;
  XNMessageBase& from;
  const FieldDef& field;

  void operator()(Nothing) const {}

  template <class E>
  void operator()(Scalar<E>) const {
    MessageAccess::setInteger(to, field, MessageAccess::slot(from, field));
  }

  template <class E>
  void operator()(InPlace<E>) const {
    MessageAccess::inPlace<typename E::Value>(to, field).swap(
        MessageAccess::inPlace<typename E::Value>(from, field));
    MessageAccess::mark(to, field.getMemNum());
  }

  template <class Storage>
  void operator()(Storage) const {
    std::swap(MessageAccess::slot(to, field), MessageAccess::slot(from, field));
    if (MessageAccess::slot(to, field) != 0) MessageAccess::mark(to, field.getMemNum());
  }
};

/// Calls handle(field) for every field of the class that takes part in copies and is set in `source`.
template <class Handle>
void forEachSetField(const XNMessageBase& source, Handle handle) {
  const _ClassDef* classDef = MessageAccess::classDef(source);
  if (classDef == nullptr) return;
  for (const FieldDef& field : *classDef) {
    if (field.getType() != FDT_NONE && field.getFieldHashId() != 0 &&
        MessageAccess::isSet(source, field.getMemNum()))
      handle(field);
  }
}

template <class T>
bool pointeesEqual(const T* a, const T* b) {
  return a == nullptr || b == nullptr ? a == b : *a == *b;
}

/// A list of numbers is its own equal even when one of them is no number.
template <class Number>
requires std::is_arithmetic_v<Number>
bool pointeesEqual(const std::vector<Number>* a, const std::vector<Number>* b) {
  return a == b || (a != nullptr && b != nullptr && *a == *b);
}

/// Compares the values of a field that is set in both objects.
struct FieldComparer {
  const XNMessageBase& a;
  const XNMessageBase& b;
  const FieldDef& field;

  // QUIRK: a set field without storage (24, 29, 32, 40) makes two objects differ, even an object and itself.
  bool operator()(Nothing) const { return false; }

  // The slots as bits: 0.0 and -0.0 differ.
  template <class E>
  bool operator()(Scalar<E>) const {
    return MessageAccess::slot(a, field) == MessageAccess::slot(b, field);
  }

  template <class E>
  bool operator()(InPlace<E>) const {
    return MessageAccess::inPlace<typename E::Value>(a, field) ==
           MessageAccess::inPlace<typename E::Value>(b, field);
  }

  // QUIRK: a map is compared with itself, so that any two maps are equal here.
  template <class K, class V>
  bool operator()(Map<K, V>) const {
    return true;
  }

  template <class Storage>
  bool operator()(Storage) const {
    using Value = typename Storage::Value;
    return pointeesEqual(MessageAccess::owned<Value>(a, field), MessageAccess::owned<Value>(b, field));
  }
};

/// Gives `target` what `source` holds; without a source it keeps its own.
template <class T>
void copyText(std::unique_ptr<T>& target, const std::unique_ptr<T>& source) {
  if (source == nullptr) return;
  if (target == nullptr)
    target = std::make_unique<T>(*source);
  else
    *target = *source;
}

}  // namespace

XNMessageBase::XNMessageBase(const XNMessageBase& other) : XNMessageBase() {
  if (other.classDef_ == nullptr) return;
  initialize(other.msgSysIndex_, other.msgIndex_);
  wipeBitset();
  copyTexts(other);
  copyFields(other);
}

void XNMessageBase::operator=(const XNMessageBase& other) {
  if (this == &other) return;
  if (isMovedFrom()) return becomeOf(XNMessageBase(other));
  requireSameClass(other);
  copyTexts(other);
  XNMessageBase copy(other);  // made first: `other` may be a part of this object, which reset ends
  reset();
  wipeBitset();
  takeFields(copy);
}

// NOLINTNEXTLINE(performance-noexcept-move-constructor): throws between classes
void XNMessageBase::operator=(XNMessageBase&& other) {
  if (this == &other) return;
  if (isMovedFrom()) {
    // What lies in a caller's block is cloned: the block need not outlive this object.
    const bool inBlock = other.classDef_ != nullptr && other.buffer_.usesCallerBlock();
    return becomeOf(inBlock ? XNMessageBase(other) : std::move(other));
  }
  requireSameClass(other);
  XNMessageBase taken(std::move(other));  // `other` may be a part of this object
  copyTexts(taken);
  reset();
  wipeBitset();
  takeFields(taken);
}

void XNMessageBase::becomeOf(XNMessageBase&& other) noexcept {
  this->~XNMessageBase();
  ::new (this) XNMessageBase(std::move(other));
}

void XNMessageBase::requireSameClass(const XNMessageBase& other) const {
  if (classDef_ == other.classDef_) return;
  const std::string text = "You cannot assign object of type : [" + other.getTagName() +
                           "] to object with type : [" + getTagName() + "]";
  logError("XNMessageBase assignment operator", "[%s]", text);
  throw ZqException("XNMessageBase::operator=", text, "", -1, -1);
}

void XNMessageBase::copyTexts(const XNMessageBase& other) {
  if (other.texts_ == nullptr) {
    if (texts_ != nullptr) texts_->cdataBuffer.reset();
    return;
  }
  KeptTexts& texts = madeTexts();
  copyText(texts.cdataBuffer, other.texts_->cdataBuffer);
  if (other.texts_->cdataBuffer == nullptr)
    texts.cdataBuffer.reset();
  else
    texts.cdataBuffer->set_ = other.texts_->cdataBuffer->set_;
  // QUIRK: a text of the target survives when the source has none.
  copyText(texts.serializedXml, other.texts_->serializedXml);
  if (other.texts_->serializedXml != nullptr && other.serialized_) serialized_ = true;
  copyText(texts.lastSerializedXml, other.texts_->lastSerializedXml);
  copyText(texts.serializedXmlUtf16, other.texts_->serializedXmlUtf16);
  copyText(texts.lastError, other.texts_->lastError);
}

void XNMessageBase::copyFields(const XNMessageBase& other) {
  forEachSetField(other, [&](const FieldDef& field) {
    visitStorage(field.getType(), FieldCopier{*this, other, field});
  });
}

void XNMessageBase::takeFields(XNMessageBase& other) {
  forEachSetField(other, [&](const FieldDef& field) {
    visitStorage(field.getType(), FieldTaker{*this, other, field});
  });
}

bool XNMessageBase::operator==(const XNMessageBase& other) const {
  if (classDef_ == nullptr || classDef_ != other.classDef_) return false;
  for (const FieldDef& field : *classDef_) {
    if (field.getType() == FDT_NONE || field.getFieldHashId() == 0) continue;
    const bool set = MessageAccess::isSet(*this, field.getMemNum());
    if (set != MessageAccess::isSet(other, field.getMemNum())) return false;
    if (set && !visitStorage(field.getType(), FieldComparer{*this, other, field})) return false;
  }
  return true;
}

bool XNMessageBase::operator<(const XNMessageBase&) const {
  return false;
}

}  // namespace zqxml

// Clearing: one member, a whole object, its set bits; and the defaults of the catalogue.
#include <strings.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/field_resolution.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/platform/text.h>

#include <cstring>

namespace zqxml {
namespace {

/// Clears one member of a live object, or ends it for good.
struct MemberClearer {
  XNMessageBase& message;
  const FieldDef& field;
  bool destroy;

  void operator()(Nothing) const {}

  template <class E>
  void operator()(Scalar<E>) const {
    if (slotIsZero()) return;
    MessageAccess::slot(message, field) = 0;
    unmark();
  }

  template <class E>
  void operator()(InPlace<E>) const {
    auto& text = MessageAccess::inPlace<typename E::Value>(message, field);
    if (destroy)
      std::destroy_at(&text);
    else
      text.clear();
    unmark();
  }

  template <class E>
  void operator()(Owned<E>) const {
    using Text = typename E::Value;
    Text*& text = MessageAccess::owned<Text>(message, field);
    if (destroy) {
      delete text;
      text = nullptr;
    } else if (text != nullptr) {
      *text = std::string();  // for a password also type 1
    }
    unmark();
  }

  // QUIRK: where there is nothing to free the bit stays as it was, here and for a number of value 0.
  template <class Storage>
  void operator()(Storage) const {
    if (slotIsZero()) return;
    auto*& content = MessageAccess::owned<typename Storage::Value>(message, field);
    delete content;
    content = nullptr;
    unmark();
  }

 private:
  bool slotIsZero() const { return MessageAccess::slot(message, field) == 0; }
  void unmark() const { MessageAccess::unmark(message, field.getMemNum()); }
};

/// Stores a default, which is always a text, and marks the bit.
struct DefaultWriter {
  XNMessageBase& message;
  const FieldDef& field;
  const char* text;

  template <element::Integer E>
  void operator()(Scalar<E>) const {
    MessageAccess::setInteger(message, field, parseInt64(text));
  }
  void operator()(Scalar<element::Bool>) const {
    MessageAccess::setInteger(message, field, ::strcasecmp(text, "true") == 0 ? 1 : 0);
  }
  void operator()(Scalar<element::Double>) const {
    MessageAccess::setDouble(message, field, parseDouble(text));
  }
  void operator()(Scalar<element::Float>) const {
    MessageAccess::setFloat(message, field, static_cast<float>(parseDouble(text)));
  }
  void operator()(InPlace<element::Str>) const {
    MessageAccess::inPlace<std::string>(message, field) = text;
    MessageAccess::mark(message, field.getMemNum());
  }
  void operator()(InPlace<element::WStr>) const {
    MessageAccess::inPlace<std::u16string>(message, field) = toUtf16(text);
    MessageAccess::mark(message, field.getMemNum());
  }
  void operator()(Owned<element::BStr>) const {
    MessageAccess::make<bstring>(message, field, true) = std::string(text);
  }
  template <class Storage>
  void operator()(Storage) const {}
};

}  // namespace

void XNMessageBase::deleteMember(short memNum, std::uint32_t msgTag, std::uint32_t fieldHash, bool destroy) {
  const int position = resolvePosition(*this, "XNMessageBase::deleteMember", memNum, msgTag, fieldHash);
  if (position < 0) return;
  const FieldDef& field = classDef_->getFields()[position];
  visitStorage(field.getType(), MemberClearer{*this, field, destroy});
}

void XNMessageBase::reset() {
  if (classDef_ == nullptr) return;
  for (const FieldDef& field : *classDef_) visitStorage(field.getType(), MemberClearer{*this, field, false});
  setDefaults(-1);
  if (isOldWay(tagId_)) {
    constructSubObjects();
    setEveryPrimitiveBitset(true);
  } else {
    // QUIRK: clears the bits that the defaults just raised, so a reset object has its defaults present and
    // not set, where a fresh one has them set.
    setEveryPrimitiveBitset(false);
  }
}

void XNMessageBase::resetAndWipe() {
  if (classDef_ == nullptr) return;
  for (const FieldDef& field : *classDef_) {
    if (kNumberTypes.contains(field.getType()))
      MessageAccess::slot(*this, field) = 0;
    else
      visitStorage(field.getType(), MemberClearer{*this, field, false});
  }
  setDefaults(-1);
  if (isOldWay(tagId_)) {
    constructSubObjects();
    setEveryPrimitiveBitset(true);
  } else if (classDef_->defaultsStart() != -1) {
    setEveryPrimitiveBitset(false);  // for what it does to default texts
  }
  wipeBitset();
}

void XNMessageBase::setDefaults(short position) {
  if (classDef_->defaultsStart() == -1) return;
  const FieldDefaultEntry* entry = gSubsystemTable[msgSysIndex_].defaults + classDef_->defaultsStart();
  for (short i = 0; i < classDef_->getNumberOfFields() && entry->memNum != -1; ++i) {
    const FieldDef& field = classDef_->getFields()[i];
    if (field.getType() == FDT_NONE || field.getMemNum() != entry->memNum) continue;
    const char* text = entry->text;
    ++entry;
    if (field.getFieldHashId() == 0 || (position != -1 && position != i) || text == nullptr) continue;
    visitStorage(field.getType(), DefaultWriter{*this, field, text});
  }
}

void XNMessageBase::wipeBitset() {
  if (buffer_.getIsSet() != nullptr)
    std::memset(buffer_.getIsSet(), 0, XNMessageBuffer::bitBytes(buffer_.fieldCount()));
}

void XNMessageBase::setEveryPrimitiveBitset(bool on) {
  for (const FieldDef& field : *classDef_) {
    if (field.getFieldHashId() == 0) continue;
    if (kValueInSlotTypes.contains(field.getType())) {
      if (on)
        MessageAccess::mark(*this, field.getMemNum());
      else
        MessageAccess::unmark(*this, field.getMemNum());
      continue;
    }
    visitStorage(field.getType(), Overloaded{[&]<class E>(Owned<E>) {
                                               // An empty text takes the place of any default, set or not.
                                               MemberClearer{*this, field, false}(Owned<E>{});
                                               if (on) MessageAccess::mark(*this, field.getMemNum());
                                             },
                                             [](auto) {}});
  }
}

}  // namespace zqxml

// RenderedField: what every render context asks about a field: its label, whether it may be shown, and its
// value as text. Written once for all of them. Not installed.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/traverse/msg_field_context.h>

#include <string>

namespace zqxml {

/// The elements of a list between two brackets.
struct ListText {
  std::string text;
  bool hasElements = false;
};

/// A view of an event's field; the event must outlive it. A field that the event's message does not have, and
/// one without a message, is not set and has no value.
class RenderedField {
 public:
  explicit RenderedField(const MsgFieldContext& context);

  std::string name() const;
  /// The localised text of the field, or its name when there is none.
  std::string label(int localeId) const;

  /// Whether the message has the field set, now.
  bool isSet() const;
  /// Whether there is a value at all, set or not: false for what is owned and does not exist.
  bool hasValue() const { return message_ != nullptr && field_.getFieldAddrResolved(message_) != nullptr; }
  /// Whether the catalogue keeps it from reports: Suppress or HideInReports.
  bool isHidden() const;
  /// Whether it is hidden or a password.
  bool isWithheld() const;
  /// A single enumeration.
  bool isEnum() const { return field_.getType() == FDT_ENUM; }
  bool isList() const { return kListTypes.contains(field_.getType()); }
  /// Primitive, neither a list nor an enumeration.
  bool isSingleValue() const;

  /// Calls `write` with the value as the type that the contexts' writeAttribute knows for it, or not at all:
  /// for types without one (ulonglong, passwords, lists, maps, objects), and without a value.
  template <class Write>
  void visitValue(Write write) const {
    if (message_ != nullptr) visitStorage(field_.getType(), ValueVisit<Write>{*message_, field_, write});
  }

  /// The enumerator's name, "" when the value has none (logged by XMLDecoder::GetEnumString); of a single
  /// enumeration only.
  std::string enumeratorName() const;
  /// The enumerator's Text annotation, or its name when that is empty.
  std::string enumeratorText() const;
  /// The elements in the form of getStringFromFld. QUIRK: elements of enumerations and objects have no text,
  /// but count.
  ListText listText(char open, char close) const;
  /// The sub-object, or the first element of a list of them; null when there is none.
  const XNMessageBase* firstObject() const;
  /// Whether the field is an integer other than 0 that is annotated as a date. `text` is then its form: a
  /// date, or an interval in words when the time lies before 1991; empty when it has no local time.
  bool readDate(std::string& text) const;

 private:
  template <class Write>
  struct ValueVisit {
    const XNMessageBase& message;
    const FieldDef& field;
    Write& write;

    template <element::Number E>
    void operator()(Scalar<E>) const {
      write(MessageAccess::scalar<typename E::Value>(message, field));
    }
    void operator()(Scalar<element::Int64>) const {
      write(static_cast<long long>(MessageAccess::slot(message, field)));
    }
    void operator()(Scalar<element::Bool>) const { write(MessageAccess::slot(message, field) != 0); }
    // QUIRK: an unsigned longlong has no form: its type counts as a list.
    void operator()(Scalar<element::UInt64>) const {}
    template <class E>
    void operator()(InPlace<E>) const {
      write(MessageAccess::inPlace<typename E::Value>(message, field));
    }
    void operator()(Owned<element::BStr>) const {
      const bstring* value = MessageAccess::owned<bstring>(message, field);
      if (value != nullptr) write(*value);
    }
    template <class Storage>
    void operator()(Storage) const {}
  };

  const MsgFieldContext& context_;
  const FieldDef& field_;
  const XNMessageBase* message_;
};

}  // namespace zqxml

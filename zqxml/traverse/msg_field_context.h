// MsgFieldContext: one field of one message, as a visitor sees it.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/message/bstring.h>
#include <zqxml/message/pstring.h>
#include <zqxml/platform/export.h>

#include <concepts>
#include <cstddef>
#include <string>
#include <vector>

namespace zqxml {

class AnnotationBase;
class XNMessageBase;

/// A field and the way to it from the root of the walk. Lives on the walk's stack.
struct FieldDefTraverseInfo : FieldDef {
  /// @{
  /// A field, and the one through which its object was reached, which is borrowed and may be null.
  FieldDefTraverseInfo() = default;
  explicit FieldDefTraverseInfo(const FieldDef& field, const FieldDefTraverseInfo* reachedThrough = nullptr)
      : FieldDef(field), parent(reachedThrough) {}
  /// @}

  /// The field through which the object of this field was reached; null in the root.
  const FieldDefTraverseInfo* parent = nullptr;
};

/// One field of one message, as a visitor sees it: what the catalogue says about the field, whether it is
/// set, and ways to read and change its value without knowing the class.
///
/// The message is borrowed. A context is valid as long as the message, and one that a walk hands out during
/// the call only. Threads: as the message. Nothing throws; a null message, a message without a class and a
/// field that the message does not have are left alone (the last with the log line of the accessors, under
/// the name of the operation).
class ZQXML_EXPORT MsgFieldContext {
 public:
  /// @{
  /// A field of a message, with or without a way to it. `msgObj` is borrowed and may be null.
  MsgFieldContext(const FieldDef& field, XNMessageBase* msgObj) : field_(field), msgObj_(msgObj) {}
  MsgFieldContext(const FieldDefTraverseInfo& field, XNMessageBase* msgObj)
      : field_(field), msgObj_(msgObj) {}
  /// @}

  /// A copy of the field's record, as the context was made with.
  const FieldDefTraverseInfo& getField() const { return field_; }
  /// The field through which the object was reached; null in the root.
  const FieldDefTraverseInfo* getTRParent() const { return field_.parent; }
  /// The message that holds the field.
  XNMessageBase* getMsgObj() const { return msgObj_; }
  /// @{
  /// Whether the field was set when the walk came to it; false in a context that no walk has made, unless
  /// setValueState says otherwise. Changing the value does not change it.
  bool isValueSet() const { return valueSet_; }
  void setValueState(bool isSet) { valueSet_ = isSet; }
  /// @}
  /// Whether a replaceValue ran.
  bool isReplaced() const { return replaced_; }

  /// @name replaceValue
  /// Stores a value of its kind and marks the field as set.
  ///
  /// A scalar field takes it when the kinds match: whole numbers and bool go into numbers, bool, enumerations
  /// and times (the low 32 bits are the value of a 32-bit field), a double into double, a float into float,
  /// each text into fields of its own type. Into a field of another kind nothing is stored, but a field whose
  /// content always exists (numbers, texts, byte strings, passwords) is marked as set all the same.
  /// A list takes the value as its new last element, when it is of the one type that the overload names, and
  /// is marked; any other list, and a map, is left alone.
  /// In the end isReplaced() is true, whether anything was stored or not.
  /// @{

  /// Appends to list<int> and to lists of an enumeration.
  void replaceValue(int value);
  /// Appends to list<uint> and to lists of an enumeration.
  void replaceValue(unsigned int value);
  /// Appends to list<long>, the low 32 bits.
  void replaceValue(long value);
  /// Appends to list<ulong>, the low 32 bits.
  void replaceValue(unsigned long value);
  /// Appends to list<longlong>.
  void replaceValue(long long value);
  /// Appends to no list.
  void replaceValue(bool value);
  /// Appends to list<float>.
  void replaceValue(float value);
  /// Appends to list<double>.
  void replaceValue(double value);
  /// Appends to list<string>.
  void replaceValue(const std::string& value);
  /// Appends to list<wstring>.
  void replaceValue(const std::u16string& value);
  /// Appends to lists of byte strings. The flag has no effect.
  void replaceValue(const bstring& value, bool flag);
  /// Appends to no list. A password takes the text and the encryption type.
  void replaceValue(const pstring& value);
  /// Takes a copy of the object: a list of objects as its last element; an object field in place of the
  /// object that it has, which is overwritten when the field is set and of the same class, else freed. Other
  /// fields are left alone. Null does nothing, and isReplaced() stays as it was.
  void replaceValue(const XNMessageBase* object);
  /// A text without its type would be taken for a bool.
  template <class Char>
  requires std::same_as<Char, char> || std::same_as<Char, char16_t>
  void replaceValue(const Char* text) = delete;
  /// @}

  /// Gives the field its default when it is not set and its CommandParam annotation says anything of
  /// useDefault. QUIRK: also when that says false; visitors look at the value before they call this.
  void EnableField();
  /// Empties a list that is set, and clears its bit. QUIRK: a ulonglong counts as a list here, and lists of
  /// ulonglong and of byte strings do not.
  void clearList();
  /// XMLDecoder::FillAnnotation for this field: true when the field has the annotation that the class of
  /// `out` asks for.
  bool getAnnotation(AnnotationBase& out) const;
  /// XMLDecoder::ReadFromList for this field: one pointer per element; see there for what it points to, how
  /// long, and what is logged. Null does nothing.
  void readListValue(std::vector<void*>* out) const;
  /// Does nothing; the text stays as it is.
  void readEnumValue(std::string& text, int value) const;
  /// Does nothing.
  void replaceFieldValue();

 private:
  template <class Mode>
  friend class ObjectWalk;

  MsgFieldContext(const FieldDef& field, const FieldDefTraverseInfo* parent, XNMessageBase& msgObj)
      : field_(field, parent), msgObj_(&msgObj) {}
  /// The record of the message's own class that the context's field is; null when it has none.
  const FieldDef* ownField(const char* function) const;
  template <class Value>
  void replace(const Value& value);
  /// The message has moved, or is gone (null).
  void moveTo(XNMessageBase* msgObj) { msgObj_ = msgObj; }

  FieldDefTraverseInfo field_;
  XNMessageBase* msgObj_ = nullptr;
  bool valueSet_ = false;
  bool replaced_ = false;
};

}  // namespace zqxml

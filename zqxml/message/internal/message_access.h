// MessageAccess: the one friend of XNMessageBase. Codecs, walkers and renderers reach slots and bits through
// it.
//
// Everything here is unchecked: the field must be a record of the message's own class, and the C++ type that
// of the field's storage (visitStorage gives both). In return an access costs one indexed load. Not
// installed.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/message/xn_message_base.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

namespace zqxml {

class MessageAccess {
 public:
  // --- The object
  static const _ClassDef* classDef(const XNMessageBase& message) { return message.classDef_; }
  /// Another record over the same storage, for tests: it must describe the slots as they are, and the
  /// object's own record must be back before the object ends.
  static void setClassDef(XNMessageBase& message, const _ClassDef* classDef) { message.classDef_ = classDef; }
  /// New object; the caller owns it. Without a class when there is no such record.
  static XNMessageBase* create(int subsystem, int classIndex) {
    return new XNMessageBase(subsystem, classIndex);
  }
  static XNMessageBase make(int subsystem, int classIndex) { return XNMessageBase(subsystem, classIndex); }
  /// Gives a default-constructed message its class (elements of a list are made in place).
  static void initialize(XNMessageBase& message, int subsystem, int classIndex) {
    message.initialize(subsystem, classIndex);
  }
  static void initialize(XNMessageBase& message, ClassRef ref) {
    initialize(message, ref.subsystem, ref.classIndex);
  }
  static void reset(XNMessageBase& message) { message.reset(); }
  /// What the readers do first: back to the freshly built state, with no field set.
  static void resetAndWipe(XNMessageBase& message) { message.resetAndWipe(); }
  static void wipeBitset(XNMessageBase& message) { message.wipeBitset(); }
  /// Gives the member at the position its default, where the class has one for it.
  static void setDefaults(XNMessageBase& message, short position) { message.setDefaults(position); }
  static XNMessageBuffer& buffer(XNMessageBase& message) { return message.buffer_; }
  static short slotCount(const XNMessageBase& message) { return message.buffer_.slotCount(); }

  // --- Set bits
  static bool isSet(const XNMessageBase& message, int memNum) {
    return (message.buffer_.isSet_[byteOf(memNum)] & bitOf(memNum)) != 0;
  }
  static void mark(XNMessageBase& message, int memNum) { message.buffer_.mark(memNum); }
  static void unmark(XNMessageBase& message, int memNum) {
    message.buffer_.isSet_[byteOf(memNum)] &= static_cast<unsigned char>(~bitOf(memNum));
  }

  // --- Slots
  static std::int64_t& slot(XNMessageBase& message, const FieldDef& field) {
    return message.buffer_[field.getIndex()];
  }
  static std::int64_t slot(const XNMessageBase& message, const FieldDef& field) {
    return message.buffer_[field.getIndex()];
  }
  static const std::int64_t& slotRef(const XNMessageBase& message, const FieldDef& field) {
    return message.buffer_.at_ref_const(field.getIndex());
  }
  /// A scalar as its element's C++ type: the low bits of the slot.
  template <class T>
  static T scalar(const XNMessageBase& message, const FieldDef& field) {
    T value;
    std::memcpy(&value, &message.buffer_.at_ref_const(field.getIndex()), sizeof value);
    return value;
  }
  /// Stores an integer, boolean or enumeration and marks the bit.
  static void setInteger(XNMessageBase& message, const FieldDef& field, std::int64_t value) {
    slot(message, field) = value;
    mark(message, field.getMemNum());
  }
  static void setDouble(XNMessageBase& message, const FieldDef& field, double value) {
    setInteger(message, field, std::bit_cast<std::int64_t>(value));
  }
  /// The slot's upper half is cleared.
  static void setFloat(XNMessageBase& message, const FieldDef& field, float value) {
    setInteger(message, field, static_cast<std::int64_t>(std::bit_cast<std::uint32_t>(value)));
  }
  /// The string of an in-place field.
  template <class T>
  static T& inPlace(XNMessageBase& message, const FieldDef& field) {
    return *reinterpret_cast<T*>(&slot(message, field));
  }
  template <class T>
  static const T& inPlace(const XNMessageBase& message, const FieldDef& field) {
    return *reinterpret_cast<const T*>(&message.buffer_.at_ref_const(field.getIndex()));
  }
  /// The pointer in an owning slot (bstring, pstring, vector, map, object); may be null.
  template <class T>
  static T*& owned(XNMessageBase& message, const FieldDef& field) {
    return *reinterpret_cast<T**>(&slot(message, field));
  }
  template <class T>
  static const T* owned(const XNMessageBase& message, const FieldDef& field) {
    return *reinterpret_cast<T* const*>(&message.buffer_.at_ref_const(field.getIndex()));
  }
  /// The list or map of a field, made when there is none; the bit is marked when markSet.
  template <class T>
  static T& make(XNMessageBase& message, const FieldDef& field, bool markSet) {
    T*& content = owned<T>(message, field);
    if (content == nullptr) content = new T;
    if (markSet) mark(message, field.getMemNum());
    return *content;
  }

  // --- Members by their accessors (guarded, logged)
  static void deleteMember(XNMessageBase& message, short memNum, bool destroy = false) {
    message.deleteMember(memNum, message.getTagID(), 0, destroy);
  }
  static void deleteMember(XNMessageBase& message, short memNum, std::uint32_t msgTag,
                           std::uint32_t fieldHash) {
    message.deleteMember(memNum, msgTag, fieldHash, false);
  }
  static void setCdata(XNMessageBase& message, const FieldDef& field, const cdata& value) {
    message.setcdataobject(field.getMemNum(), field.getIndex(), value, message.getTagID(), 0);
  }

 private:
  static constexpr unsigned byteOf(int memNum) { return static_cast<unsigned>(memNum) / 8; }
  static constexpr unsigned char bitOf(int memNum) {
    return static_cast<unsigned char>(1u << static_cast<unsigned>(memNum) % 8);
  }
};

}  // namespace zqxml

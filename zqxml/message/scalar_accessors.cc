// Accessors of numbers: one 64-bit slot each.
#include <zqxml/message/internal/field_resolution.h>
#include <zqxml/message/xn_message_base.h>

#include <bit>

namespace zqxml {
namespace {

constexpr FieldTypeSet kIntegerTypes = FieldTypeSet::ofStorage(
    Overloaded{[]<element::Integer E>(Scalar<E>) { return true; }, [](auto) { return false; }});
constexpr FieldTypeSet kDoubleTypes{FDT_DOUBLE};
constexpr FieldTypeSet kFloatTypes{FDT_FLOAT};

/// The slot of a scalar read; null after the log line. On the fast path the index is all there is to check.
const std::int64_t* readSlot(const XNMessageBase& message, const XNMessageBuffer& buffer,
                             const char* function, FieldTypeSet fits, short index, std::uint32_t msgTag,
                             std::uint32_t fieldHash) {
  if (index < 0 || index >= buffer.slotCount()) {
    logInvalidIndex(message, function, index);
    return nullptr;
  }
  if (message.getTagID() == msgTag) return &buffer.at_ref_const(index);
  const FieldDef* field = findFieldByHash(message, function, fits, msgTag, fieldHash);
  return field == nullptr ? nullptr : &buffer.at_ref_const(field->getIndex());
}

}  // namespace

std::int64_t XNMessageBase::getint64(short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  const std::int64_t* slot =
      readSlot(*this, buffer_, "XNMessageBase::getint64", kIntegerTypes, index, msgTag, fieldHash);
  return slot == nullptr ? 0 : *slot;
}

double XNMessageBase::getdouble(short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  const std::int64_t* slot =
      readSlot(*this, buffer_, "XNMessageBase::getdouble", kDoubleTypes, index, msgTag, fieldHash);
  return slot == nullptr ? 0 : std::bit_cast<double>(*slot);
}

float XNMessageBase::getfloat(short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  const std::int64_t* slot =
      readSlot(*this, buffer_, "XNMessageBase::getfloat", kFloatTypes, index, msgTag, fieldHash);
  return slot == nullptr ? 0 : std::bit_cast<float>(static_cast<std::uint32_t>(*slot));
}

void XNMessageBase::setint64(short memNum, short index, std::int64_t value, std::uint32_t msgTag,
                             std::uint32_t fieldHash) {
  if (const FieldDef* field =
          resolveField(*this, "XNMessageBase::setint64", kIntegerTypes, {memNum, index, msgTag, fieldHash}))
    MessageAccess::setInteger(*this, *field, value);
}

void XNMessageBase::setdouble(short memNum, short index, double value, std::uint32_t msgTag,
                              std::uint32_t fieldHash) {
  if (const FieldDef* field =
          resolveField(*this, "XNMessageBase::setdouble", kDoubleTypes, {memNum, index, msgTag, fieldHash}))
    MessageAccess::setDouble(*this, *field, value);
}

void XNMessageBase::setfloat(short memNum, short index, float value, std::uint32_t msgTag,
                             std::uint32_t fieldHash) {
  if (const FieldDef* field =
          resolveField(*this, "XNMessageBase::setfloat", kFloatTypes, {memNum, index, msgTag, fieldHash}))
    MessageAccess::setFloat(*this, *field, value);
}

std::int64_t& XNMessageBase::getint64ByRef(short memNum, short index, std::uint32_t msgTag,
                                           std::uint32_t fieldHash) {
  const FieldDef* field =
      resolveField(*this, "XNMessageBase::getint64ByRef", kIntegerTypes, {memNum, index, msgTag, fieldHash});
  if (field == nullptr) return emptiedFallback<std::int64_t>();
  MessageAccess::mark(*this, field->getMemNum());
  return MessageAccess::slot(*this, *field);
}

}  // namespace zqxml

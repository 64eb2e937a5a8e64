#include <zqxml/message/xn_message_buffer.h>

#include <cstring>
#include <functional>

namespace zqxml {
namespace {

constexpr std::size_t kSlotBytes = sizeof(std::int64_t);

std::size_t slotsFor(std::size_t bytes) {
  return (bytes + kSlotBytes - 1) / kSlotBytes;
}

}  // namespace

XNMessageBuffer::XNMessageBuffer(XNMessageBuffer&& other) noexcept
    : external_(other.external_),
      isSet_(other.isSet_),
      inlineCount_(other.inlineCount_),
      slotCount_(other.slotCount_),
      fieldCount_(other.fieldCount_),
      callerBlock_(other.callerBlock_) {
  std::memcpy(inlineArea_, other.inlineArea_, other.inlineBytes());
  if (other.bitsAreInline()) isSet_ = inlineArea_ + (other.isSet_ - other.inlineArea_);
  other.external_ = nullptr;
  other.release();
}

void XNMessageBuffer::release() {
  if (callerBlock_ == 0) delete[] external_;
  external_ = nullptr;
  isSet_ = nullptr;
  inlineCount_ = slotCount_ = fieldCount_ = 0;
  callerBlock_ = 1;
}

bool XNMessageBuffer::bitsAreInline() const {
  return isSet_ != nullptr && !std::less<const unsigned char*>()(isSet_, inlineArea_) &&
         std::less<const unsigned char*>()(isSet_, inlineArea_ + kInlineBytes);
}

std::size_t XNMessageBuffer::inlineBytes() const {
  return static_cast<std::size_t>(inlineCount_) * kSlotBytes + (bitsAreInline() ? bitBytes(fieldCount_) : 0);
}

void XNMessageBuffer::init(short inlineCount, short slotCount, short fieldCount) {
  inlineCount_ = inlineCount;
  slotCount_ = slotCount;
  fieldCount_ = fieldCount;
  callerBlock_ = 0;
  const std::size_t slotBytes = static_cast<std::size_t>(inlineCount) * kSlotBytes;
  const std::size_t externalSlots =
      slotCount > inlineCount ? static_cast<std::size_t>(slotCount - inlineCount) : 0;
  if (externalSlots == 0 && slotBytes + bitBytes(fieldCount) <= kInlineBytes) {
    external_ = nullptr;
    isSet_ = inlineArea_ + slotBytes;
    std::memset(inlineArea_, 0, slotBytes + bitBytes(fieldCount));
    return;
  }
  std::memset(inlineArea_, 0, slotBytes);
  external_ = new std::int64_t[externalSlots + slotsFor(bitBytes(fieldCount))]();
  isSet_ = reinterpret_cast<unsigned char*>(external_ + externalSlots);
}

void XNMessageBuffer::init(std::int64_t* block, int blockSize, short slotCount, short fieldCount) {
  inlineCount_ = 0;
  slotCount_ = slotCount;
  fieldCount_ = fieldCount;
  callerBlock_ = 1;
  external_ = block;
  isSet_ = reinterpret_cast<unsigned char*>(block + slotCount);
  std::memset(block, 0, static_cast<std::size_t>(blockSize));
}

void XNMessageBuffer::reset(short fieldCount) {
  std::memset(inlineArea_, 0, kInlineBytes);
  if (external_ == nullptr) return;
  const std::size_t externalSlots =
      slotCount_ > inlineCount_ ? static_cast<std::size_t>(slotCount_ - inlineCount_) : 0;
  std::memset(external_, 0, bitBytes(fieldCount) + externalSlots * kSlotBytes);
}

XNMessageBuffer& XNMessageBuffer::operator=(const XNMessageBuffer& other) {
  if (this == &other) return *this;
  release();
  if (other.callerBlock_ != 0) {
    external_ = other.external_;
    isSet_ = other.isSet_;
    slotCount_ = other.slotCount_;
    fieldCount_ = other.fieldCount_;
    return *this;
  }
  init(other.inlineCount_, other.slotCount_, other.fieldCount_);
  return *this;
}

}  // namespace zqxml

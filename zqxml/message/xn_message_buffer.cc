#include <zqxml/message/xn_message_buffer.h>

#include <cstring>

namespace zqxml {
namespace {

constexpr std::size_t kSlotBytes = sizeof(std::int64_t);

std::size_t slotsFor(std::size_t bytes) {
  return (bytes + kSlotBytes - 1) / kSlotBytes;
}

}  // namespace

XNMessageBuffer::XNMessageBuffer(XNMessageBuffer&& other) noexcept
    : isSet_(other.isSet_),
      inlineCount_(other.inlineCount_),
      slotCount_(other.slotCount_),
      fieldCount_(other.fieldCount_),
      place_(other.place_) {
  std::memcpy(inlineArea_, other.inlineArea_, other.inlineBytes());
  if (place_ == Place::kInside) isSet_ = inlineArea_ + (other.isSet_ - other.inlineArea_);
  other.place_ = Place::kInside;  // the block is not its own any more
  other.release();
}

void XNMessageBuffer::release() {
  if (hasExternalBlock()) delete[] block();
  isSet_ = nullptr;
  inlineCount_ = slotCount_ = fieldCount_ = 0;
  place_ = Place::kCallersBlock;
}

std::size_t XNMessageBuffer::inlineBytes() const {
  return static_cast<std::size_t>(inlineCount_) * kSlotBytes +
         (place_ == Place::kInside ? bitBytes(fieldCount_) : 0);
}

void XNMessageBuffer::init(short inlineCount, short slotCount, short fieldCount) {
  inlineCount_ = inlineCount;
  slotCount_ = slotCount;
  fieldCount_ = fieldCount;
  const std::size_t slotBytes = static_cast<std::size_t>(inlineCount) * kSlotBytes;
  const std::size_t outside = externalSlots();
  if (outside == 0 && slotBytes + bitBytes(fieldCount) <= kInlineBytes) {
    place_ = Place::kInside;
    isSet_ = inlineArea_ + slotBytes;
    std::memset(inlineArea_, 0, slotBytes + bitBytes(fieldCount));
    return;
  }
  std::memset(inlineArea_, 0, slotBytes);
  std::int64_t* const slots = new std::int64_t[outside + slotsFor(bitBytes(fieldCount))]();
  isSet_ = reinterpret_cast<unsigned char*>(slots + outside);
  place_ = Place::kOwnBlock;
}

void XNMessageBuffer::init(std::int64_t* block, int blockSize, short slotCount, short fieldCount) {
  inlineCount_ = 0;
  slotCount_ = slotCount;
  fieldCount_ = fieldCount;
  place_ = Place::kCallersBlock;
  isSet_ = reinterpret_cast<unsigned char*>(block + slotCount);
  std::memset(block, 0, static_cast<std::size_t>(blockSize));
}

void XNMessageBuffer::reset(short fieldCount) {
  std::memset(inlineArea_, 0, kInlineBytes);
  if (place_ == Place::kInside || isSet_ == nullptr) return;
  std::memset(block(), 0, bitBytes(fieldCount) + externalSlots() * kSlotBytes);
}

XNMessageBuffer& XNMessageBuffer::operator=(const XNMessageBuffer& other) {
  if (this == &other) return *this;
  release();
  if (!other.usesCallerBlock()) {
    init(other.inlineCount_, other.slotCount_, other.fieldCount_);
    return *this;
  }
  isSet_ = other.isSet_;
  slotCount_ = other.slotCount_;
  fieldCount_ = other.fieldCount_;
  return *this;
}

}  // namespace zqxml

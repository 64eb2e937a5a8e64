// XNMessageBuffer: the slot store of a message. 8-byte slots addressed by a field's index, and one set bit
// per field, numbered by the field's memNum: byte memNum/8, bit memNum%8, fieldCount/8+1 bytes in all.
#pragma once

#include <zqxml/platform/export.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zqxml {

/// The slots and set bits of a message. The store knows nothing of types: what a slot holds is constructed
/// and destroyed by the message. Up to 24 slots lie inside the object, further ones in one external block of
/// the C++ heap, or all of them in a caller's block. Belongs to one thread at a time.
class ZQXML_EXPORT XNMessageBuffer {
 public:
  /// Most slots inside the object.
  static constexpr short kMaxInlineSlots = 24;
  /// Bytes inside the object for them and the set bits.
  static constexpr std::size_t kInlineBytes = 204;

  /// No storage.
  // NOLINTNEXTLINE(modernize-use-equals-default): a message made with () shall not zero the inline area
  XNMessageBuffer() {}
  /// Frees the external block unless it is the caller's.
  ~XNMessageBuffer() {
    if (hasExternalBlock()) delete[] block();
  }
  /// Takes over the external block and the bytes of the inline area; `other` is left empty. In-place strings
  /// are the message's business: their bytes must not be used as they come.
  XNMessageBuffer(XNMessageBuffer&& other) noexcept;
  /// A message is moved, never its store alone.
  XNMessageBuffer& operator=(XNMessageBuffer&&) = delete;

  /// Owned storage, zeroed: the first `inlineCount` slots inline, the rest external. The set bits follow the
  /// last slot, and move to external storage when the inline area has no room for them. REQUIRES: no storage
  /// held yet.
  void init(short inlineCount, short slotCount, short fieldCount);
  /// The same where all slots lie inside: most messages are such, and a few stores do.
  void init(short slotCount, short fieldCount) {
    const std::size_t slotBytes = static_cast<std::size_t>(slotCount) * sizeof(std::int64_t);
    const std::size_t bytes = slotBytes + bitBytes(fieldCount);
    if (bytes > kInlineBytes) [[unlikely]]
      return init(slotCount, slotCount, fieldCount);
    inlineCount_ = slotCount_ = slotCount;
    fieldCount_ = fieldCount;
    place_ = Place::kInside;
    isSet_ = inlineArea_ + slotBytes;
    zeroInline(bytes);
  }
  /// The caller's block holds all slots and, behind them, the set bits; `blockSize` bytes of it are zeroed.
  /// The block stays the caller's and must outlive the message.
  void init(std::int64_t* block, int blockSize, short slotCount, short fieldCount);

  /// @{
  /// Slot `index`, from 0; not checked.
  std::int64_t& operator[](short index) {
    return index >= inlineCount_ ? behindSlots()[index - slotCount_] : inlineSlots()[index];
  }
  std::int64_t operator[](short index) const { return at_ref_const(index); }
  const std::int64_t& at_ref_const(short index) const {
    return index >= inlineCount_ ? behindSlots()[index - slotCount_] : inlineSlots()[index];
  }
  /// @}

  /// @{
  /// The set bits; null for a store that was not initialised.
  unsigned char* getIsSet() { return isSet_; }
  const unsigned char* getIsSet() const { return isSet_; }
  /// @}
  /// Sets the bit of a member; not checked.
  void mark(int memNum) {
    isSet_[static_cast<unsigned>(memNum) / 8] |=
        static_cast<unsigned char>(1u << static_cast<unsigned>(memNum) % 8);
  }

  /// Zeroes all slots and the bits of `fieldCount` fields. REQUIRES: no live content in the slots.
  void reset(short fieldCount);

  /// @{
  /// Slots in all, those of them that lie inside the object, and fields. 0 without storage.
  short slotCount() const { return slotCount_; }
  short inlineCount() const { return inlineCount_; }
  short fieldCount() const { return fieldCount_; }
  /// @}
  /// Whether the caller gave the block. QUIRK: true without storage too.
  bool usesCallerBlock() const { return place_ == Place::kCallersBlock; }
  /// Whether a block of its own lies outside the object.
  bool hasExternalBlock() const { return place_ == Place::kOwnBlock; }
  /// Bytes that the set bits of a class take.
  static constexpr std::size_t bitBytes(short fieldCount) {
    return static_cast<std::size_t>(fieldCount) / 8 + 1;
  }

 private:
  friend class MessageAccess;
  friend class XNMessageBase;

  /// Where the set bits lie, and the slots before them that are not inline. A store without storage counts as
  /// one in a caller's block: there is nothing of its own to free.
  enum class Place : unsigned char { kInside, kOwnBlock, kCallersBlock };

  // A store is never copied with its contents: these give equal storage, zeroed, or share the caller's block.
  XNMessageBuffer(const XNMessageBuffer& other) { *this = other; }
  XNMessageBuffer& operator=(const XNMessageBuffer& other);

  std::int64_t* inlineSlots() { return reinterpret_cast<std::int64_t*>(inlineArea_); }
  const std::int64_t* inlineSlots() const { return reinterpret_cast<const std::int64_t*>(inlineArea_); }
  /// The end of the slots, where the set bits begin: slots outside the object are counted back from there,
  /// which takes no second pointer.
  std::int64_t* behindSlots() { return reinterpret_cast<std::int64_t*>(isSet_); }
  const std::int64_t* behindSlots() const { return reinterpret_cast<const std::int64_t*>(isSet_); }
  std::size_t externalSlots() const {
    return slotCount_ > inlineCount_ ? static_cast<std::size_t>(slotCount_ - inlineCount_) : 0;
  }
  /// The first slot outside the object. REQUIRES: a block.
  std::int64_t* block() { return behindSlots() - externalSlots(); }
  void release();
  /// Zeroes at least `bytes` of the inline area. In steps of fixed length: they need no call.
  void zeroInline(std::size_t bytes) {
    constexpr std::size_t kFew = 64, kMore = 144;
    std::memset(inlineArea_, 0, kFew);
    if (bytes > kFew) std::memset(inlineArea_ + kFew, 0, kMore - kFew);
    if (bytes > kMore) std::memset(inlineArea_ + kMore, 0, kInlineBytes - kMore);
  }

  /// Bytes of the inline area that slots and set bits take.
  std::size_t inlineBytes() const;

  unsigned char* isSet_ = nullptr;
  short inlineCount_ = 0;
  short slotCount_ = 0;
  short fieldCount_ = 0;
  Place place_ = Place::kCallersBlock;
  // Last, so that what a message uses is together: most use little, and lists make messages by the thousand.
  // Zeroed by init, as far as it is used.
  alignas(std::int64_t) unsigned char inlineArea_[kInlineBytes];
};

}  // namespace zqxml

// BinaryBuffer: the byte area that holds one message in binary form.
#pragma once

#include <zqxml/platform/export.h>

#include <cstddef>
#include <cstdint>

namespace zqxml {

/// The byte area that holds one message in binary form.
///
/// It owns its memory, or borrows it from the caller. Owned memory comes from the C heap (malloc, realloc,
/// free), so that a caller can hand such a block over, or take one, without knowing this class. Sizes are
/// bytes. Nothing logs or throws: an operation that fails says so by its result or leaves the buffer not set.
/// One thread at a time.
class ZQXML_EXPORT BinaryBuffer {
 public:
  /// Empty: no memory, sizes 0, not external.
  BinaryBuffer() = default;
  /// Borrows `size` bytes at `buffer` to write into; no content yet.
  BinaryBuffer(char* buffer, std::size_t size) : buffer_(buffer), bufferSize_(size), external_(true) {}
  /// Frees the memory unless it is external.
  ~BinaryBuffer() { release(); }

  // The three setters first release owned memory, with the old mark deciding; a block that the buffer is
  // given back is kept. `external` is stored as given: true means that the memory belongs to the caller, is
  // never freed or resized here and must outlive its use; false hands over a block of the C heap.

  /// Takes `size` bytes at `data` that all count as content.
  void SetReadBuffer(const char* data, std::size_t size, bool external);
  /// Takes `size` bytes at `data` that do not count as content.
  void SetWriteBuffer(char* data, std::size_t size, bool external);
  /// Takes a new block of size + 1 bytes with a copy of `data`, all of it content. `data` may lie in the
  /// buffer's own block; null counts as no bytes. When there is no memory for it the buffer is empty. With
  /// `external` true nobody frees the block.
  void deepCopyBuffer(const char* data, std::size_t size, bool external);

  /// Makes the content exactly `newSize` bytes; the memory grows to no more than that and never shrinks. New
  /// bytes are undefined. False, with nothing changed, for an external buffer. False without memory: the
  /// block is then freed, the pointer null and the buffer not set, while the sizes stay as they were. A
  /// later call within that capacity is true and still without memory: look at isSet().
  bool resizeBuffer(std::size_t newSize);

  /// The memory, null when there is none. It stays the buffer's, or the caller's if it is external.
  char* getBuffer() const { return buffer_; }
  /// Capacity.
  std::uint64_t getBufferSize() const { return bufferSize_; }
  /// Bytes that count as content.
  std::uint64_t getDataSize() const { return dataSize_; }
  /// Not checked against the capacity; Status() tells.
  void setDataSize(std::size_t size) { dataSize_ = size; }
  /// Whether the memory is borrowed.
  bool HasExternalBuffer() const { return external_; }
  /// True with memory and a capacity above 0.
  bool isSet() const { return buffer_ != nullptr && bufferSize_ != 0; }
  /// True while the content fits the capacity.
  bool Status() const { return dataSize_ <= bufferSize_; }

  /// No copies by the way: deepCopyBuffer makes one.
  BinaryBuffer(const BinaryBuffer&) = delete;
  BinaryBuffer& operator=(const BinaryBuffer&) = delete;

 private:
  void release();
  void take(char* data, std::size_t size, std::size_t content, bool external);

  char* buffer_ = nullptr;
  std::uint64_t bufferSize_ = 0;
  std::uint64_t dataSize_ = 0;
  bool external_ = false;
};

}  // namespace zqxml

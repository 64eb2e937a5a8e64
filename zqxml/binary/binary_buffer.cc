#include <zqxml/binary/binary_buffer.h>

#include <cstdlib>
#include <cstring>
#include <limits>

namespace zqxml {

void BinaryBuffer::release() {
  if (!external_) std::free(buffer_);
  buffer_ = nullptr;
}

void BinaryBuffer::take(char* data, std::size_t size, std::size_t content, bool external) {
  if (data != buffer_) release();
  buffer_ = data;
  bufferSize_ = size;
  dataSize_ = content;
  external_ = external;
}

void BinaryBuffer::SetReadBuffer(const char* data, std::size_t size, bool external) {
  take(const_cast<char*>(data), size, size, external);  // one member serves both directions; never written to
}

void BinaryBuffer::SetWriteBuffer(char* data, std::size_t size, bool external) {
  take(data, size, 0, external);
}

void BinaryBuffer::deepCopyBuffer(const char* data, std::size_t size, bool external) {
  if (data == nullptr) size = 0;
  // The copy is made before the old block goes, since `data` may be a part of it.
  const bool possible = size < std::numeric_limits<std::size_t>::max();
  char* copy = possible ? static_cast<char*>(std::malloc(size + 1)) : nullptr;
  if (copy == nullptr) {
    size = 0;
  } else if (size != 0) {
    std::memcpy(copy, data, size);
  }
  take(copy, size, size, external);
}

bool BinaryBuffer::resizeBuffer(std::size_t newSize) {
  if (external_) return false;
  if (newSize <= bufferSize_) {
    dataSize_ = newSize;
    return true;
  }
  void* block = buffer_ == nullptr ? std::malloc(newSize) : std::realloc(buffer_, newSize);
  char* resized = static_cast<char*>(block);
  if (resized == nullptr) {
    release();  // the sizes stay; the null pointer is what tells
    return false;
  }
  buffer_ = resized;
  bufferSize_ = newSize;
  dataSize_ = newSize;
  return true;
}

}  // namespace zqxml

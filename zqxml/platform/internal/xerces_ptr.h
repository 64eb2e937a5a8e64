#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XercesDefs.hpp>

namespace zqxml::internal {

/// Owner of what Xerces-C wants back through `release()`: documents, serializers, inputs and outputs.
struct XercesRelease {
  template <typename T>
  void operator()(T* object) const {
    object->release();
  }
};
template <typename T>
using XercesPtr = std::unique_ptr<T, XercesRelease>;

/// Owner of a block that Xerces-C has taken from a memory manager: texts, decoded bytes.
struct XercesDeallocate {
  xercesc::MemoryManager* manager = xercesc::XMLPlatformUtils::fgMemoryManager;

  template <typename T>
  void operator()(T* block) const {
    manager->deallocate(const_cast<std::remove_const_t<T>*>(block));
  }
};
template <typename T>
using XercesBlock = std::unique_ptr<T, XercesDeallocate>;

/// A text of Xerces-C, which may be null, without a copy.
inline std::u16string_view viewOf(const XMLCh* text) {
  return text == nullptr ? std::u16string_view() : std::u16string_view(text);
}

/// A text of Xerces-C, which may be null, as UTF-8.
std::string utf8Of(const XMLCh* text);

/// Xerces-C's own memory manager, which passes requests on to operator new and delete, in a copy that never
/// ends: what is from there may be given back after Xerces-C was terminated. Any thread.
xercesc::MemoryManager& lastingMemory();

/// Whether the platform's memory manager is Xerces-C's own, and not one of the host program's, so that
/// lastingMemory() may stand for it. REQUIRES: Xerces-C runs.
bool platformMemoryIsLasting();

/// Passes requests on to the platform's memory manager until the blocks that are in use together are larger
/// than the limit, or all that were ever asked for larger than kTurnover limits: then it throws
/// xercesc::OutOfMemoryException, as the parser expects of a full memory. An input can so take no more than a
/// fixed multiple of its size, whatever it declares, and no more time than it takes to use that memory a few
/// times: a nest of entities makes a new reader of some 200 KB for each reference, and gives it back again.
///
/// It must outlive the parser, and belongs to one thread at a time. Where the platform's manager is
/// Xerces-C's own it may also outlive a termination of Xerces-C.
class LimitedMemoryManager final : public xercesc::MemoryManager {
 public:
  static constexpr std::size_t kBase = std::size_t{64} << 20;
  static constexpr std::size_t kFactor = 64;
  /// How many times the limit may be asked for in all.
  static constexpr std::size_t kTurnover = 16;

  /// For an input of so many bytes: 64 MiB and 64 times the input.
  explicit LimitedMemoryManager(std::size_t inputSize);
  ~LimitedMemoryManager() override;
  LimitedMemoryManager(const LimitedMemoryManager&) = delete;
  LimitedMemoryManager& operator=(const LimitedMemoryManager&) = delete;

  void* allocate(XMLSize_t size) override;
  void deallocate(void* block) override;
  /// Exceptions outlive the parse, so they are not counted.
  xercesc::MemoryManager* getExceptionMemoryManager() override;

  /// Counts bytes that others take on behalf of the parse as in use from now on, and throws likewise.
  void charge(std::size_t size);
  /// Starts to count for another parse, with an input of so many bytes. What is still in use goes on
  /// counting.
  void startAgain(std::size_t inputSize);

  std::size_t limit() const { return limit_; }
  /// Bytes in use now.
  std::size_t inUse() const { return inUse_; }

 private:
  xercesc::MemoryManager& upstream_;
  std::size_t limit_;
  std::size_t inUse_ = 0;
  /// What may still be asked for.
  std::size_t turnover_;
};

}  // namespace zqxml::internal

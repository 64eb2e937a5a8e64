#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/platform/text.h>

#include <cstring>
#include <limits>
#include <typeinfo>
#include <xercesc/internal/MemoryManagerImpl.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

namespace zqxml::internal {
namespace {

// Before each block stands its size. The room for it keeps the block aligned for every type.
constexpr std::size_t kHeader = alignof(std::max_align_t);
static_assert(kHeader >= sizeof(std::size_t));

std::size_t limitFor(std::size_t inputSize) {
  constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
  if (inputSize > (kMost - LimitedMemoryManager::kBase) / LimitedMemoryManager::kFactor) return kMost;
  return LimitedMemoryManager::kBase + LimitedMemoryManager::kFactor * inputSize;
}

std::size_t turnoverFor(std::size_t limit) {
  constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
  return limit > kMost / LimitedMemoryManager::kTurnover ? kMost : limit * LimitedMemoryManager::kTurnover;
}

}  // namespace

std::string utf8Of(const XMLCh* text) {
  return toUtf8(viewOf(text));
}

xercesc::MemoryManager& lastingMemory() {
  static auto& manager = *new xercesc::MemoryManagerImpl;
  return manager;
}

bool platformMemoryIsLasting() {
  return typeid(*xercesc::XMLPlatformUtils::fgMemoryManager) == typeid(xercesc::MemoryManagerImpl);
}

LimitedMemoryManager::LimitedMemoryManager(std::size_t inputSize)
    : upstream_(platformMemoryIsLasting() ? lastingMemory() : *xercesc::XMLPlatformUtils::fgMemoryManager),
      limit_(limitFor(inputSize)),
      turnover_(turnoverFor(limit_)) {}

LimitedMemoryManager::~LimitedMemoryManager() = default;

void LimitedMemoryManager::startAgain(std::size_t inputSize) {
  limit_ = limitFor(inputSize);
  turnover_ = turnoverFor(limit_);
}

void* LimitedMemoryManager::allocate(XMLSize_t size) {
  if (inUse_ > limit_ || size > limit_ - inUse_ || size > turnover_ ||
      size > std::numeric_limits<std::size_t>::max() - kHeader) {
    throw xercesc::OutOfMemoryException();
  }
  void* const start = upstream_.allocate(size + kHeader);
  std::memcpy(start, &size, sizeof size);
  inUse_ += size;
  turnover_ -= size;
  return static_cast<char*>(start) + kHeader;
}

void LimitedMemoryManager::charge(std::size_t size) {
  if (inUse_ > limit_ || size > limit_ - inUse_) throw xercesc::OutOfMemoryException();
  inUse_ += size;
}

void LimitedMemoryManager::deallocate(void* block) {
  if (block == nullptr) return;
  void* const start = static_cast<char*>(block) - kHeader;
  XMLSize_t size = 0;
  std::memcpy(&size, start, sizeof size);
  inUse_ -= size;
  upstream_.deallocate(start);
}

xercesc::MemoryManager* LimitedMemoryManager::getExceptionMemoryManager() {
  return xercesc::XMLPlatformUtils::fgMemoryManager;
}

}  // namespace zqxml::internal

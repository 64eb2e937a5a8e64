// The memory of one parse. Not installed.
#pragma once

#include <zqxml/platform/internal/xerces_ptr.h>

#include <array>
#include <cstddef>
#include <xercesc/framework/MemoryManager.hpp>

namespace zqxml {

/// Gives a parser its memory from a few large blocks, within a limit that follows from the size of the input.
///
/// A parser makes hundreds of small blocks for each text. Here one costs a few instructions, a small block
/// that was given back serves again for one of its size, and whatever is left goes with the arena: also what
/// the parser does not give back after it ran out of memory. Beyond the limit allocate throws
/// xercesc::OutOfMemoryException. Belongs to one thread at a time, and outlives the parser.
class ParseArena final : public xercesc::MemoryManager {
 public:
  explicit ParseArena(std::size_t inputSize) : upstream_(inputSize) {}
  ~ParseArena() override;
  ParseArena(const ParseArena&) = delete;
  ParseArena& operator=(const ParseArena&) = delete;

  void* allocate(XMLSize_t size) override;
  void deallocate(void* block) override;
  /// Exceptions outlive the parse, so their memory is not from here.
  xercesc::MemoryManager* getExceptionMemoryManager() override {
    return upstream_.getExceptionMemoryManager();
  }

  /// Starts to count for another parse, with an input of so many bytes. What was taken goes on counting.
  void startAgain(std::size_t inputSize) { upstream_.startAgain(inputSize); }

  /// Counts bytes that the message takes for what stands in no place of the text, to the end of the arena.
  void charge(std::size_t size) { upstream_.charge(size); }

  /// Bytes taken from the platform now, and charged.
  std::size_t inUse() const { return upstream_.inUse(); }

 private:
  /// Stands before each block and keeps it aligned for every type.
  struct alignas(std::max_align_t) Header {
    /// Of a small block: its number of grains. Of a large one: 0.
    std::size_t grains;
  };
  /// Stands before the Header of a large block, or at the start of a chunk.
  struct Link {
    Link* previous;
    Link* next;
  };
  static_assert(sizeof(Link) % alignof(std::max_align_t) == 0);

  static constexpr std::size_t kGrain = sizeof(Header);
  static constexpr std::size_t kSmallest = 2 * kGrain;  // room for the pointer of a free list
  static constexpr std::size_t kLargestSmall = 4096;
  static constexpr std::size_t kFirstChunk = std::size_t{32} << 10;
  static constexpr std::size_t kLargestChunk = std::size_t{1} << 20;

  Header* takeSmall(std::size_t grains);
  Header* takeLarge(std::size_t size);
  void giveLarge(Header* header);
  void addChunk();
  void* takeLinked(std::size_t size);

  internal::LimitedMemoryManager upstream_;
  /// Chunks and large blocks, in a ring.
  Link blocks_{&blocks_, &blocks_};
  char* free_ = nullptr;
  char* end_ = nullptr;
  std::size_t nextChunk_ = kFirstChunk;
  /// Small blocks that were given back, by their number of grains.
  std::array<Header*, kLargestSmall / kGrain + 2> given_{};
};

}  // namespace zqxml

#include <zqxml/xml/internal/parse_arena.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <xercesc/util/OutOfMemoryException.hpp>

namespace zqxml {

ParseArena::~ParseArena() {
  for (Link* block = blocks_.next; block != &blocks_;) {
    Link* next = block->next;
    upstream_.deallocate(block);
    block = next;
  }
}

void* ParseArena::allocate(XMLSize_t size) {
  const bool isSmall = size <= kLargestSmall;
  const std::size_t grains = 1 + (size + kGrain - 1) / kGrain;
  return (isSmall ? takeSmall(std::max<std::size_t>(grains, 2)) : takeLarge(size)) + 1;
}

void ParseArena::deallocate(void* block) {
  if (block == nullptr) return;
  Header* header = static_cast<Header*>(block) - 1;
  if (header->grains == 0) return giveLarge(header);
  // The list goes through the blocks themselves.
  Header*& first = given_[header->grains];
  std::memcpy(block, &first, sizeof(void*));
  first = header;
}

ParseArena::Header* ParseArena::takeSmall(std::size_t grains) {
  Header*& given = given_[grains];
  if (given != nullptr) {
    Header* header = given;
    std::memcpy(&given, header + 1, sizeof(void*));
    return header;
  }
  const std::size_t size = grains * kGrain;
  if (static_cast<std::size_t>(end_ - free_) < size) addChunk();
  auto* header = new (free_) Header{grains};
  free_ += size;
  return header;
}

ParseArena::Header* ParseArena::takeLarge(std::size_t size) {
  if (size > std::numeric_limits<std::size_t>::max() - sizeof(Link) - sizeof(Header))
    throw xercesc::OutOfMemoryException();
  return new (takeLinked(sizeof(Header) + size)) Header{0};
}

void ParseArena::giveLarge(Header* header) {
  Link* link = reinterpret_cast<Link*>(header) - 1;
  link->previous->next = link->next;
  link->next->previous = link->previous;
  upstream_.deallocate(link);
}

/// What is left of the chunk before stays unused: it is smaller than a small block.
void ParseArena::addChunk() {
  free_ = static_cast<char*>(takeLinked(nextChunk_));
  end_ = free_ + nextChunk_;
  nextChunk_ = std::min(nextChunk_ * 2, kLargestChunk);
}

/// A block of the platform's, in the ring, of which the first `size` bytes behind its link are free.
void* ParseArena::takeLinked(std::size_t size) {
  auto* link = new (upstream_.allocate(sizeof(Link) + size)) Link{&blocks_, blocks_.next};
  link->next->previous = link;
  blocks_.next = link;
  return link + 1;
}

}  // namespace zqxml

// The classes of a subsystem by id and by name: two hash tables of class indices, which zqcatc writes and the
// look-ups search (SubsystemDef::buckets).
//
// A table is a power of two of buckets. A class stands in the bucket of its key, or in the next free one
// behind it, round the end; a search goes on to the first free bucket. A third of the buckets is free at
// least, so searches are short, and those for what is not there end.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace zqxml::catalogue {

/// Stands in a free bucket.
inline constexpr std::int16_t kFreeBucket = -1;

/// Power of two that gives the number of buckets for `count` classes.
constexpr unsigned bucketBitsFor(std::size_t count) {
  return static_cast<unsigned>(std::bit_width(count + count / 2));
}

/// Where the search for a key begins. Keys are ids and hashes of names, neither of them spread evenly.
constexpr std::uint32_t firstBucket(std::uint32_t key, unsigned bits) {
  return bits == 0 ? 0 : key * 0x9e3779b9u >> (32 - bits);
}

/// The first bucket, from that of the key on, that is free or holds a class for which `isIt(classIndex)` says
/// so.
template <class IsIt>
constexpr std::uint32_t searchBuckets(const std::int16_t* buckets, unsigned bits, std::uint32_t key,
                                      IsIt isIt) {
  const std::uint32_t mask = (1u << bits) - 1;
  std::uint32_t at = firstBucket(key, bits);
  while (buckets[at] != kFreeBucket && !isIt(buckets[at])) at = (at + 1) & mask;
  return at;
}

}  // namespace zqxml::catalogue

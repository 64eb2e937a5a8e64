// Which texts an XML writer may copy as they stand. Not installed.
#pragma once

#include <zqxml/platform/internal/load_word.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zqxml {

namespace internal {
/// Sixteen bytes side by side, and the same as two words.
using Bytes16 __attribute__((vector_size(16))) = signed char;
using Words2 __attribute__((vector_size(16))) = std::uint64_t;
inline constexpr std::size_t kTextBlock = sizeof(Bytes16);
static_assert(sizeof(std::string) == 32, "a short string stands in sixteen bytes of its own");

/// The place of the first byte that is below 0x20, from 0x80 up, or one of `"&<>`; `size` when none of so
/// many is.
[[gnu::always_inline]] inline std::size_t firstUnusual(Bytes16 bytes, std::size_t size) {
  // Signed, what is from 0x80 up is below 0x20 too. '"' and '&' differ in one bit, and so do '<' and '>'.
  const auto unusual =
      static_cast<Bytes16>((bytes < 0x20) | ((bytes | 0x04) == '&') | ((bytes | 0x02) == '>'));
#ifdef __SSE2__
  const auto places = static_cast<unsigned>(_mm_movemask_epi8(std::bit_cast<__m128i>(unusual)));
  return static_cast<std::size_t>(std::countr_zero(places | 1u << size));
#else
  const auto words = std::bit_cast<Words2>(unusual);
  const auto place = [](std::uint64_t word) {
    return static_cast<std::size_t>(std::endian::native == std::endian::little ? std::countr_zero(word)
                                                                               : std::countl_zero(word)) /
           8;
  };
  return std::min(size, words[0] != 0 ? place(words[0]) : sizeof words[0] + place(words[1]));
#endif
}

inline void storeBlock(char* to, Bytes16 block) {
  std::memcpy(to, &block, sizeof block);
}
/// Widened. What is beyond ASCII counts for nothing.
inline void storeBlock(char16_t* to, Bytes16 block) {
  for (std::size_t i = 0; i < kTextBlock; ++i) to[i] = static_cast<unsigned char>(block[i]);
}
}  // namespace internal

/// Behind any part of a text that is copied in blocks, so many units may be touched.
inline constexpr std::size_t kCopyRoom = internal::kTextBlock;

/// Copies the beginning of a text, up to the first character that is not from 0x20 to 0x7f, or that XML
/// escapes; how much that is. REQUIRES: room for the whole text and kCopyRoom units. Where a text
/// `inString`, a std::string, begins, a whole block can be read, however short it is.
template <class Char>
[[gnu::always_inline]] inline std::size_t copyUsual(Char* to, std::string_view text, bool inString) {
  using internal::Bytes16, internal::kTextBlock;
  const char* const from = text.data();
  const std::size_t size = text.size();
  const auto copy = [&](std::size_t position, std::size_t most) __attribute__((always_inline)) {
    const auto block = internal::loadWord<Bytes16>(from + position);
    internal::storeBlock(to + position, block);
    return internal::firstUnusual(block, most);
  };
  if (size < kTextBlock) {
    if (inString) [[likely]]
      return copy(0, size);
    Bytes16 block{};
    if (size != 0) std::memcpy(&block, from, size);
    internal::storeBlock(to, block);
    return internal::firstUnusual(block, size);
  }
  for (std::size_t i = 0; i + kTextBlock < size; i += kTextBlock)
    if (const std::size_t usual = copy(i, kTextBlock); usual != kTextBlock) return i + usual;
  return size - kTextBlock + copy(size - kTextBlock, kTextBlock);
}

/// Bytes of the UTF-8 character at the start of a text, of those that XML can hold in one UTF-16 unit, and
/// which are not ASCII; 0 for anything else.
inline std::size_t wideCharacter(std::string_view text) {
  const auto at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto follows = [&](std::size_t i) { return (at(i) & 0xc0) == 0x80; };
  if (text.empty()) return 0;
  const unsigned first = at(0);
  if (first >= 0xc2 && first <= 0xdf) return text.size() >= 2 && follows(1) ? 2 : 0;
  if ((first & 0xf0) != 0xe0 || text.size() < 3 || !follows(1) || !follows(2)) return 0;
  const unsigned unit = (first & 0x0fu) << 12 | (at(1) & 0x3fu) << 6 | (at(2) & 0x3fu);
  return unit >= 0x800 && (unit < 0xd800 || unit > 0xdfff) && unit < 0xfffe ? 3 : 0;
}

/// Whether two texts, which are short as a rule, have the same bytes.
inline bool equalBytes(const void* left, const void* right, std::size_t size) {
  const auto* a = static_cast<const char*>(left);
  const auto* b = static_cast<const char*>(right);
  const auto equalAt = [a, b]<class Word>(std::size_t i, Word) {
    return internal::loadWord<Word>(a + i) == internal::loadWord<Word>(b + i);
  };
  if (size >= 8) {
    for (std::size_t i = 0; i + 8 < size; i += 8)
      if (!equalAt(i, std::uint64_t{})) return false;
    return equalAt(size - 8, std::uint64_t{});
  }
  if (size >= 4) return equalAt(0, std::uint32_t{}) && equalAt(size - 4, std::uint32_t{});
  for (std::size_t i = 0; i < size; ++i)
    if (a[i] != b[i]) return false;
  return true;
}

/// Copies a text of any length; most are short, which a call of memcpy would take more time for.
inline char* copyText(char* to, std::string_view text) {
  const char* const from = text.data();
  const std::size_t size = text.size();
  if (size > 16) {
    std::memcpy(to, from, size);
  } else if (size >= 8) {
    const auto low = internal::loadWord<std::uint64_t>(from);
    const auto high = internal::loadWord<std::uint64_t>(from + size - 8);
    std::memcpy(to, &low, 8);
    std::memcpy(to + size - 8, &high, 8);
  } else if (size >= 4) {
    const auto low = internal::loadWord<std::uint32_t>(from);
    const auto high = internal::loadWord<std::uint32_t>(from + size - 4);
    std::memcpy(to, &low, 4);
    std::memcpy(to + size - 4, &high, 4);
  } else {
    for (std::size_t i = 0; i < size; ++i) to[i] = from[i];
  }
  return to + size;
}

/// The same, widened.
inline char16_t* copyText(char16_t* to, std::string_view ascii) {
  for (const char byte : ascii) *to++ = static_cast<unsigned char>(byte);
  return to;
}

}  // namespace zqxml

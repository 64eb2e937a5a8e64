// Which texts an XML writer may copy as they stand. Not installed.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zqxml {

namespace internal {
template <class Word>
Word loadWord(const char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

/// Eight bytes at once: a bit is set when any of them is below 0x20, from 0x80 up, or one of `"&<>`.
constexpr std::uint64_t unusualBytes(std::uint64_t word) {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  constexpr std::uint64_t kHighs = 0x80 * kOnes;
  constexpr auto anyZero = [](std::uint64_t x) { return (x - kOnes) & ~x; };
  // '"' and '&' differ in one bit, and so do '<' and '>'.
  const std::uint64_t quotes = anyZero((word | 0x04 * kOnes) ^ '&' * kOnes);
  const std::uint64_t brackets = anyZero((word | 0x02 * kOnes) ^ '>' * kOnes);
  const std::uint64_t controls = (word - 0x20 * kOnes) & ~word;
  return (word | quotes | brackets | controls) & kHighs;
}
}  // namespace internal

/// Whether the text has only characters from 0x20 to 0x7f, and none that XML escapes.
inline bool isUsualText(std::string_view text) {
  using internal::loadWord;
  using internal::unusualBytes;
  const char* const bytes = text.data();
  const std::size_t size = text.size();
  if (size >= 8) {
    std::uint64_t unusual = 0;
    for (std::size_t i = 0; i + 8 < size; i += 8) unusual |= unusualBytes(loadWord<std::uint64_t>(bytes + i));
    return (unusual | unusualBytes(loadWord<std::uint64_t>(bytes + size - 8))) == 0;
  }
  constexpr std::uint64_t kBlanks = 0x2020202020202020u;
  if (size >= 4) {
    const std::uint64_t low = loadWord<std::uint32_t>(bytes);
    const std::uint64_t high = loadWord<std::uint32_t>(bytes + size - 4);
    return unusualBytes(low | high << 32) == 0;
  }
  std::uint64_t word = kBlanks;
  for (std::size_t i = 0; i < size; ++i) word = word << 8 | static_cast<unsigned char>(bytes[i]);
  return unusualBytes(word) == 0;
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

/// Whether XML can hold the text, UTF-8, as it stands, but for what it escapes: it is well-formed, and all of
/// its characters are legal units of UTF-16.
inline bool isLegalText(std::string_view utf8) {
  for (std::size_t i = 0; i < utf8.size();) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte < 0x80) {
      if (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r') return false;
      ++i;
    } else if (const std::size_t size = wideCharacter(utf8.substr(i)); size != 0) {
      i += size;
    } else {
      return false;
    }
  }
  return true;
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

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

/// Sixteen bytes side by side, and the same as two words.
using Bytes16 __attribute__((vector_size(16))) = signed char;
using Words2 __attribute__((vector_size(16))) = std::uint64_t;

/// All bits of those bytes that are below 0x20, from 0x80 up, or one of `"&<>`.
inline Bytes16 unusualBytes(Bytes16 bytes) {
  // Signed, what is from 0x80 up is below 0x20 too. '"' and '&' differ in one bit, and so do '<' and '>'.
  return (bytes < 0x20) | ((bytes | 0x04) == '&') | ((bytes | 0x02) == '>');
}
inline bool isUsual(Bytes16 unusual) {
  const auto words = std::bit_cast<Words2>(unusual);
  return (words[0] | words[1]) == 0;
}
inline bool isUsual(std::uint64_t low, std::uint64_t high) {
  return isUsual(unusualBytes(std::bit_cast<Bytes16>(Words2{low, high})));
}

/// Hands the text on in pieces, `keep(position, piece)`, which may overlap; whether it has only characters
/// from 0x20 to 0x7f, and none that XML escapes.
template <class Keep>
[[gnu::always_inline]] inline bool isUsual(std::string_view text, Keep keep) {
  const char* const bytes = text.data();
  const std::size_t size = text.size();
  const auto load = [bytes, keep]<class Piece>(std::size_t position, Piece piece) {
    std::memcpy(&piece, bytes + position, sizeof piece);
    keep(position, piece);
    return piece;
  };
  constexpr std::uint64_t kBlanks = 0x2020'2020'2020'2020u;
  if (size >= 16) {
    Bytes16 unusual = unusualBytes(load(size - 16, Bytes16{}));
    for (std::size_t i = 0; i + 16 < size; i += 16) unusual |= unusualBytes(load(i, Bytes16{}));
    return isUsual(unusual);
  }
  if (size >= 8) return isUsual(load(0, std::uint64_t{}), load(size - 8, std::uint64_t{}));
  if (size >= 4)
    return isUsual(load(0, std::uint32_t{}) | std::uint64_t{load(size - 4, std::uint32_t{})} << 32, kBlanks);
  std::uint64_t word = kBlanks;
  for (std::size_t i = 0; i < size; ++i) word = word << 8 | load(i, static_cast<unsigned char>(0));
  return isUsual(word, kBlanks);
}
}  // namespace internal

/// Whether the text has only characters from 0x20 to 0x7f, and none that XML escapes.
inline bool isUsualText(std::string_view text) {
  return internal::isUsual(text, [](std::size_t, auto) {});
}

/// Copies such a text, and gives its end; null for any other, with anything in its place at `to`.
inline char* copyUsualText(char* to, std::string_view text) {
  const auto copy = [to](std::size_t position, auto piece) {
    std::memcpy(to + position, &piece, sizeof piece);
  };
  return internal::isUsual(text, copy) ? to + text.size() : nullptr;
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
    if (byte >= 0x20 && byte < 0x80) {
      ++i;
    } else if (byte < 0x20) {
      if (byte != '\t' && byte != '\n' && byte != '\r') return false;
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
inline char16_t* copyUsualText(char16_t* to, std::string_view text) {
  return isUsualText(text) ? copyText(to, text) : nullptr;
}

}  // namespace zqxml

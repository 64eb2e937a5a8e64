// What the characters of an XML text may be, for the scanner (xml_scanner.h). Not installed.
#pragma once

#include <zqxml/xml/internal/plain_text.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zqxml {

/// What an ASCII character may be.
enum CharacterClass : std::uint8_t {
  kFirstOfName = 1,
  kInName = 2,
  kSpace = 4,
  /// Stands for itself in the value of an attribute, between quotes of either kind.
  kInValue = 8,
  /// Stands for itself in text.
  kInText = 16,
  /// Legal where nothing has a meaning: comments and CDATA sections.
  kLegal = 32,
};

/// By the unit; nothing beyond ASCII is any of it.
inline constexpr std::array<std::uint8_t, 256> kClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  const auto add = [&](int from, int to, int what) {
    for (int c = from; c <= to; ++c)
      classes[static_cast<std::size_t>(c)] =
          static_cast<std::uint8_t>(classes[static_cast<std::size_t>(c)] | what);
  };
  add(0x20, 0x7f, kInValue | kInText | kLegal);
  for (const int c : {'\t', '\n', '\r', ' '}) add(c, c, kSpace | kLegal);
  for (const int c : {'\t', '\n'}) add(c, c, kInText);
  const auto remove = [&](int c, int what) {
    classes[static_cast<std::size_t>(c)] =
        static_cast<std::uint8_t>(classes[static_cast<std::size_t>(c)] & ~what);
  };
  for (const int c : {'&', '<', '>'}) remove(c, kInText);
  for (const int c : {'&', '<', '"', '\''}) remove(c, kInValue);
  for (const int from : {'a', 'A'}) add(from, from + 25, kFirstOfName | kInName);
  add('_', '_', kFirstOfName | kInName);
  add('0', '9', kInName);
  for (const int c : {'.', '-'}) add(c, c, kInName);
  return classes;
}();

template <class Char>
unsigned unitOf(Char c) {
  return static_cast<std::make_unsigned_t<decltype(c + 0)>>(c) & (sizeof(Char) == 1 ? 0xffu : 0xffffu);
}
template <class Char>
bool is(Char c, CharacterClass what) {
  const unsigned unit = unitOf(c);
  return unit < kClasses.size() && (kClasses[unit] & what) != 0;
}

/// A name of ASCII that is legal everywhere in XML and reserved nowhere.
inline bool isPlainName(std::string_view name) {
  return !name.empty() && is(name.front(), kFirstOfName) &&
         std::ranges::all_of(name, [](char c) { return is(c, kInName); }) && !name.starts_with("xml");
}

/// Behind the white space that begins here, if any does.
template <class Char>
const Char* behindSpace(const Char* at) {
  // A single blank, as a rule.
  if (*at == ' ') ++at;
  while (is(*at, kSpace)) ++at;
  return at;
}

/// Behind characters from 0x20 to 0x7f that are none of `stop`, '&' and '<', block by block: where blocks do
/// not reach, more of them may follow.
inline const char* behindBlocks(const char* at, [[maybe_unused]] const char* end,
                                [[maybe_unused]] char stop) {
#ifdef __SSE2__
  constexpr std::ptrdiff_t kBlock = sizeof(__m128i);
  for (; end - at >= kBlock; at += kBlock) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const auto equals = [block](char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
    // As signed numbers, bytes from 0x80 up are below 0x20 too.
    const __m128i outside = _mm_cmplt_epi8(block, _mm_set1_epi8(0x20));
    const __m128i found =
        _mm_or_si128(_mm_or_si128(equals(stop), outside), _mm_or_si128(equals('&'), equals('<')));
    if (const int places = _mm_movemask_epi8(found); places != 0)
      return at + std::countr_zero(static_cast<unsigned>(places));
  }
#endif
  return at;
}
/// UTF-16 is looked at unit by unit.
inline const char16_t* behindBlocks(const char16_t* at, const char16_t*, char16_t) {
  return at;
}

inline bool isHighSurrogate(unsigned unit) {
  return (unit & 0xfc00) == 0xd800;
}
inline bool isLowSurrogate(unsigned unit) {
  return (unit & 0xfc00) == 0xdc00;
}

/// Units of the legal character beyond ASCII that begins here; 0 for anything else.
inline std::size_t sizeOfCharacter(const char16_t* at) {
  if (isHighSurrogate(at[0])) return isLowSurrogate(at[1]) ? 2 : 0;
  return at[0] >= 0x80 && at[0] < 0xfffe && !isLowSurrogate(at[0]) ? 1 : 0;
}
inline std::size_t sizeOfCharacter(const char* at) {
  const unsigned first = unitOf(at[0]);
  const auto follows = [at](std::size_t i) { return (unitOf(at[i]) & 0xc0) == 0x80; };
  if (first < 0xf0) {
    // The NUL behind the text is no part of any character.
    std::size_t size = 1;
    while (size < 3 && follows(size)) ++size;
    return wideCharacter({at, size});
  }
  if (first > 0xf4 || !follows(1) || !follows(2) || !follows(3)) return 0;
  const unsigned second = unitOf(at[1]);
  return (first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f) ? 0 : 4;
}

/// A reference: how many units it takes, 0 when it is none of the plain ones, and what it stands for.
struct Reference {
  std::size_t size = 0;
  char32_t character = 0;
};

constexpr bool isLegalCharacter(char32_t c) {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return c < 0xd800 || (c >= 0xe000 && c < 0xfffe) || (c >= 0x10000 && c < 0x110000);
}

template <class Char>
Reference characterReference(const Char* at) {
  constexpr std::size_t kMostDigits = 8;
  const bool hex = at[2] == 'x';
  const std::size_t first = hex ? 3 : 2;
  char32_t value = 0;
  std::size_t i = first;
  for (; i < first + kMostDigits; ++i) {
    const unsigned c = unitOf(at[i]);
    const unsigned letter = c | 0x20;
    if (c >= '0' && c <= '9')
      value = value * (hex ? 16 : 10) + (c - '0');
    else if (hex && letter >= 'a' && letter <= 'f')
      value = value * 16 + (letter - 'a' + 10);
    else
      break;
  }
  if (i == first || at[i] != ';' || !isLegalCharacter(value)) return {};
  return {i + 1, value};
}

template <class Char>
Reference referenceAt(const Char* at) {
  if (at[1] == '#') return characterReference(at);
  constexpr std::pair<std::string_view, char32_t> kEntities[] = {
      {"amp;", '&'}, {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}};
  for (const auto& [name, character] : kEntities) {
    std::size_t same = 0;
    while (same < name.size() && unitOf(at[1 + same]) == unitOf(name[same])) ++same;
    if (same == name.size()) return {1 + name.size(), character};
  }
  return {};
}

}  // namespace zqxml

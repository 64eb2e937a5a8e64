// The binary form of a message: the facts that its writer and its reader share. Byte order: little-endian.
//
//   message  fixed32 version word: bits 0 to 15 the version, bit 16 a flag
//            fixed32 tag id of the root
//            body
//   body     the set fields, one record after another in declared order; no count, no end mark
//   record   fixed32: the marker when the type is a collection, else the key; then the value by type
//   key      name hash (24 bits) shifted left by 3, with the BinaryEncodingType in the low three bits
//   marker   kCollectionMarker, followed by the varint number of elements
//
// docs/wire-format.md tells the whole form, with an example.
#pragma once

#include <zqxml/binary/binary_stream.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/records.h>

#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zqxml::wire {

inline constexpr unsigned kHeaderSize = 8;
inline constexpr unsigned kKeySize = 4;
inline constexpr int kDefaultVersion = 2;

/// A well-formed key (hash 0x0FEFEFEF, one varint), which no field can have: a reader that does not know the
/// field takes the marker for an unknown varint field and moves on.
inline constexpr std::uint32_t kCollectionMarker = 0x7f7f7f78;

constexpr std::uint32_t hashOfKey(std::uint32_t key) {
  return key >> 3;
}
constexpr BinaryEncodingType encodingOfKey(std::uint32_t key) {
  return static_cast<BinaryEncodingType>(key & 7);
}
constexpr std::uint32_t keyOf(const FieldDef& field) {
  return (field.getFieldHashId() << 3) | fieldTypeFacts(field.getType()).encoding;
}

template <class Storage>
consteval bool isStoredAs(unsigned type) {
  return visitStorage(type, [](auto storage) { return std::same_as<decltype(storage), Storage>; });
}
template <class Storage>
consteval unsigned firstTypeStoredAs() {
  unsigned type = 0;
  while (!isStoredAs<Storage>(type)) ++type;
  return type;
}
template <class Storage>
inline constexpr unsigned kTypeStoredAs = firstTypeStoredAs<Storage>();

/// Whether all types that are stored so have one encoding, and are collections or not alike. Only what stores
/// nothing is not.
template <class Storage>
consteval bool hasOneKey() {
  constexpr unsigned kType = kTypeStoredAs<Storage>;
  for (unsigned type = 0; type < kFieldTypeCount; ++type) {
    if (!isStoredAs<Storage>(type)) continue;
    if (kFieldTypes[type].encoding != kFieldTypes[kType].encoding ||
        kCollectionTypes.contains(type) != kCollectionTypes.contains(kType))
      return false;
  }
  return true;
}

/// What the record of a field starts with that is known to be stored so: no table is asked at run time.
template <class Storage>
constexpr std::uint32_t firstWordOf(const FieldDef& field) {
  if constexpr (!hasOneKey<Storage>()) {
    static_assert(std::same_as<Storage, Nothing>, "a collection would start with the marker");
    return keyOf(field);
  } else if constexpr (kCollectionTypes.contains(kTypeStoredAs<Storage>)) {
    return kCollectionMarker;
  } else {
    return (field.getFieldHashId() << 3) | kFieldTypes[kTypeStoredAs<Storage>].encoding;
  }
}

/// From this version on binary strings travel as Base64, and passwords in their encrypted text form.
constexpr bool transformsText(int version) {
  return version > 1;
}

/// How a number is written, as a scalar and as an element of a list.
enum class NumberCoding { kZigzag, kVarint, kFixed64, kFixed32 };

// QUIRK: an enumeration is written as zigzag although its key promises a plain varint. A reader that skips it
// takes the same number of bytes either way.
template <element::Number E>
inline constexpr NumberCoding kCoding =
    std::same_as<E, element::Int32> || std::same_as<E, element::Enum>    ? NumberCoding::kZigzag
    : std::same_as<E, element::UInt32> || std::same_as<E, element::Bool> ? NumberCoding::kVarint
    : std::same_as<E, element::Float>                                    ? NumberCoding::kFixed32
                                                                         : NumberCoding::kFixed64;

/// Least bytes of one value.
template <class E>
inline constexpr unsigned kLeastSize = 1;
template <element::Number E>
inline constexpr unsigned kLeastSize<E> = kCoding<E> == NumberCoding::kFixed64   ? 8
                                          : kCoding<E> == NumberCoding::kFixed32 ? 4
                                                                                 : 1;

/// Whether the bytes of a packed list are those of its vector.
template <element::Number E>
inline constexpr bool kCopied = std::endian::native == std::endian::little&& kLeastSize<E> ==
                                    sizeof(typename E::Value) &&
                                kLeastSize<E> != 1;

/// Encoding that a map states for one of its sides.
template <class E>
inline constexpr BinaryEncodingType kSideEncoding = kFieldTypes[FDT_INT64].encoding;
template <>
inline constexpr BinaryEncodingType kSideEncoding<element::Str> = kFieldTypes[FDT_STRING].encoding;
template <>
inline constexpr BinaryEncodingType kSideEncoding<element::Obj> = kFieldTypes[FDT_OBJECT].encoding;

/// Whether one byte of the word that starts here is a NUL.
template <class Word>
bool holdsNul(const char* at) {
  constexpr Word kOnes = static_cast<Word>(-1) / 255;
  Word word;
  std::memcpy(&word, at, sizeof word);
  return ((word - kOnes) & ~word & kOnes << 7) != 0;
}

/// The text as a C string sees it: up to its first NUL.
inline std::string_view upToNul(std::string_view text) {
  // Most texts are short and have no NUL: a word at a time, the last bytes once more, without a call.
  using Word = std::uint64_t;
  using Half = std::uint32_t;
  const std::size_t size = text.size();
  if (size >= sizeof(Word) && size <= 8 * sizeof(Word)) {
    // The early end keeps the compiler from making a vector loop of it, which would cost more than it saves.
    std::size_t at = 0;
    while (at + sizeof(Word) < size && !holdsNul<Word>(text.data() + at)) at += sizeof(Word);
    if (at + sizeof(Word) >= size && !holdsNul<Word>(text.data() + size - sizeof(Word))) [[likely]]
      return text;
  } else if (size >= sizeof(Half) && size < sizeof(Word)) {
    if (!holdsNul<Half>(text.data()) && !holdsNul<Half>(text.data() + size - sizeof(Half))) [[likely]]
      return text;
  }
  const void* nul = text.empty() ? nullptr : std::memchr(text.data(), 0, size);
  return nul == nullptr
             ? text
             : text.substr(0, static_cast<std::size_t>(static_cast<const char*>(nul) - text.data()));
}

/// Bytes that can be read where the bytes of a string begin, however short it is.
inline constexpr std::size_t kStringRoom = 16;
static_assert(sizeof(std::string) == 32, "a short string stands in 16 bytes of its own");

/// The same for a string: most are read in one or two pieces.
inline std::string_view upToNul(const std::string& text) {
#ifdef __SSE2__
  const std::size_t size = text.size();
  if (size <= 2 * kStringRoom) {
    const auto nuls = [&text](std::size_t at) {
      const __m128i piece = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at));
      return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(piece, _mm_setzero_si128())));
    };
    const unsigned found =
        size < kStringRoom ? nuls(0) & ((1u << size) - 1) : nuls(0) | nuls(size - kStringRoom);
    if (found == 0) [[likely]]
      return text;
  }
#endif
  return upToNul(std::string_view(text));
}

}  // namespace zqxml::wire

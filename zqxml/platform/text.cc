#include <unicode/ustring.h>
#include <zqxml/platform/internal/text_pieces.h>
#include <zqxml/platform/text.h>

#include <algorithm>
#include <cstdint>

namespace zqxml {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;
// The converter counts in 32 bits, and its result may be three times as long as what it is given.
constexpr std::size_t kLargestPiece = std::size_t{1} << 28;

// The length of the next piece, which ends at the end of a character.
std::size_t pieceOf(std::u16string_view text, std::size_t largest) {
  if (text.size() <= largest) return text.size();
  const bool isLead = (text[largest - 1] & 0xFC00) == 0xD800;
  return isLead && largest > 1 ? largest - 1 : largest;
}

std::size_t pieceOf(std::string_view text, std::size_t largest) {
  if (text.size() <= largest) return text.size();
  const auto isFirst = [&](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80; };
  // No character has more than three bytes behind its first: beyond that, the bytes are no character's.
  for (std::size_t back = 0; back <= 3 && back < largest; ++back) {
    if (isFirst(largest - back)) return largest - back;
  }
  return largest;
}

// Copies the leading ASCII characters and says how many there were.
template <typename From, typename To>
std::size_t copyAscii(const From* from, std::size_t size, To* to) {
  std::size_t i = 0;
  constexpr std::size_t kBlock = 16;
  while (size - i >= kBlock) {
    From all = 0;
    for (std::size_t k = 0; k < kBlock; ++k) all = static_cast<From>(all | from[i + k]);
    if (all >= 0x80) break;
    for (std::size_t k = 0; k < kBlock; ++k) to[i + k] = static_cast<To>(from[i + k]);
    i += kBlock;
  }
  for (; i < size && from[i] < 0x80; ++i) to[i] = static_cast<To>(from[i]);
  return i;
}

void convert(std::string& out, std::u16string_view piece) {
  const std::size_t before = out.size();
  out.resize(before + 3 * piece.size());
  std::int32_t length = 0;
  UErrorCode error = U_ZERO_ERROR;
  u_strToUTF8WithSub(out.data() + before, static_cast<std::int32_t>(3 * piece.size()), &length, piece.data(),
                     static_cast<std::int32_t>(piece.size()), kReplacement, nullptr, &error);
  out.resize(before + static_cast<std::size_t>(length));
}

void convert(std::u16string& out, std::string_view piece) {
  const std::size_t before = out.size();
  out.resize(before + piece.size());
  std::int32_t length = 0;
  UErrorCode error = U_ZERO_ERROR;
  u_strFromUTF8WithSub(out.data() + before, static_cast<std::int32_t>(piece.size()), &length, piece.data(),
                       static_cast<std::int32_t>(piece.size()), kReplacement, nullptr, &error);
  out.resize(before + static_cast<std::size_t>(length));
}

}  // namespace

namespace internal {

template <typename Out, typename View>
void appendInPieces(Out& out, View text, std::size_t largest) {
  while (!text.empty()) {
    const std::size_t size = pieceOf(text, largest);
    convert(out, text.substr(0, size));
    text.remove_prefix(size);
  }
}
template void appendInPieces(std::string&, std::u16string_view, std::size_t);
template void appendInPieces(std::u16string&, std::string_view, std::size_t);

}  // namespace internal

namespace {

// Nearly all text is ASCII, for which the converter is too great an effort.
template <typename Out, typename View, typename From>
void append(Out& out, View text, const From* units) {
  const std::size_t before = out.size();
  out.resize(before + text.size());
  const std::size_t ascii = copyAscii(units, text.size(), out.data() + before);
  if (ascii == text.size()) return;
  out.resize(before + ascii);
  internal::appendInPieces(out, text.substr(ascii), kLargestPiece);
}

}  // namespace

void appendUtf8(std::string& out, std::u16string_view text) {
  append(out, text, text.data());
}

void appendUtf16(std::u16string& out, std::string_view text) {
  append(out, text, reinterpret_cast<const unsigned char*>(text.data()));
}

std::string toUtf8(std::u16string_view text) {
  std::string out;
  appendUtf8(out, text);
  return out;
}

std::u16string toUtf16(std::string_view text) {
  std::u16string out;
  appendUtf16(out, text);
  return out;
}

}  // namespace zqxml

#include <openssl/evp.h>
#include <zqxml/platform/base64.h>

#include <algorithm>
#include <array>

namespace zqxml {
namespace {

// The coder counts in `int`; a piece has whole groups of 3 bytes or 4 characters.
constexpr std::size_t kPieceOfBytes = std::size_t{3} << 28;
constexpr std::size_t kPieceOfCharacters = std::size_t{4} << 28;

constexpr std::array<bool, 256> makeAlphabet() {
  std::array<bool, 256> alphabet{};
  for (char c = 'A'; c <= 'Z'; ++c) alphabet[static_cast<unsigned char>(c)] = true;
  for (char c = 'a'; c <= 'z'; ++c) alphabet[static_cast<unsigned char>(c)] = true;
  for (char c = '0'; c <= '9'; ++c) alphabet[static_cast<unsigned char>(c)] = true;
  alphabet['+'] = alphabet['/'] = true;
  return alphabet;
}
constexpr std::array<bool, 256> kAlphabet = makeAlphabet();

const unsigned char* bytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace

std::string UlBase64::Encode(std::string_view bytes) {
  std::string out(encodedLength(bytes.size()), '\0');
  EncodeTo(bytes, out.data());
  return out;
}

void UlBase64::EncodeTo(std::string_view bytes, char* to) {
  if (bytes.empty()) return;
  // The coder ends each piece with a NUL, which the next piece takes the place of; the last group is made
  // aside.
  const std::size_t lastGroup = (bytes.size() - 1) / 3 * 3;
  std::string_view rest = bytes.substr(0, lastGroup);
  auto* at = reinterpret_cast<unsigned char*>(to);
  while (!rest.empty()) {
    const std::string_view piece = rest.substr(0, kPieceOfBytes);
    at += EVP_EncodeBlock(at, bytesOf(piece), static_cast<int>(piece.size()));
    rest.remove_prefix(piece.size());
  }
  std::array<unsigned char, 5> group{};
  const std::string_view last = bytes.substr(lastGroup);
  EVP_EncodeBlock(group.data(), bytesOf(last), static_cast<int>(last.size()));
  std::copy_n(group.begin(), 4, at);
}

bool UlBase64::Decode(std::string_view text, std::string& out) {
  if (text.size() % 4 != 0) return false;
  std::size_t padding = 0;
  while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=') ++padding;
  const std::string_view characters = text.substr(0, text.size() - padding);
  // The decoder itself would pass over blanks and take '=' for zero bits.
  if (!std::all_of(characters.begin(), characters.end(),
                   [](char c) { return kAlphabet[static_cast<unsigned char>(c)]; })) {
    return false;
  }
  std::string bytes(text.size() / 4 * 3, '\0');
  auto* to = reinterpret_cast<unsigned char*>(bytes.data());
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view piece = rest.substr(0, kPieceOfCharacters);
    const int size = EVP_DecodeBlock(to, bytesOf(piece), static_cast<int>(piece.size()));
    if (size < 0) return false;
    to += size;
    rest.remove_prefix(piece.size());
  }
  bytes.resize(bytes.size() - padding);
  out = std::move(bytes);
  return true;
}

}  // namespace zqxml

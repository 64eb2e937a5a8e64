// Texts that are copied as far as they stand for themselves in XML.
#include <gtest/gtest.h>
#include <zqxml/xml/internal/plain_text.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {
namespace {

constexpr std::size_t kLongest = 70;

std::string letters(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += static_cast<char>('a' + i % 26);
  return text;
}

/// What copyUsual takes of a text, copied into a room of just the promised size.
template <class Char>
std::basic_string<Char> copied(std::string_view text, bool inString) {
  std::vector<Char> room(text.size() + kCopyRoom);
  const std::size_t taken = copyUsual(room.data(), text, inString);
  return {room.data(), taken};
}

template <class Char>
std::basic_string<Char> widened(std::string_view text) {
  return {text.begin(), text.end()};
}

void expectTaken(const std::string& text, std::size_t count) {
  const std::string_view taken = std::string_view(text).substr(0, count);
  ASSERT_EQ(copied<char>(text, true), taken);
  ASSERT_EQ(copied<char16_t>(text, true), widened<char16_t>(taken));
  // No byte of this one can be read behind its end.
  const auto exact = std::make_unique<char[]>(text.size());
  std::copy(text.begin(), text.end(), exact.get());
  const std::string_view alone(exact.get(), text.size());
  ASSERT_EQ(copied<char>(alone, false), taken);
  ASSERT_EQ(copied<char16_t>(alone, false), widened<char16_t>(taken));
}

TEST(CopyUsual, TakesLettersOfEveryLengthWhole) {
  for (std::size_t length = 0; length < kLongest; ++length) expectTaken(letters(length), length);
}

TEST(CopyUsual, EndsBeforeTheFirstUnusualCharacterWhereverItStands) {
  for (std::size_t length = 1; length < kLongest; ++length)
    for (std::size_t place = 0; place < length; ++place) {
      std::string text = letters(length);
      text[place] = '&';
      expectTaken(text, place);
      text.back() = '<';
      expectTaken(text, place);
    }
}

TEST(CopyUsual, TakesThoseThatStandForThemselvesEverywhere) {
  for (int byte = 0; byte < 256; ++byte) {
    const auto character = static_cast<char>(byte);
    const bool usual =
        byte >= 0x20 && byte < 0x80 && std::string_view("\"&<>").find(character) == std::string_view::npos;
    for (const std::size_t length : {1u, 9u, 16u, 33u}) {
      std::string text = letters(length);
      text[length - 1] = character;
      expectTaken(text, usual ? length : length - 1);
    }
  }
}

TEST(CopyUsual, DoesNotCountWhatAStringHeldBefore) {
  std::string text = "a<b&c";
  text.resize(1);
  expectTaken(text, 1);
  text.assign(40, '<');
  text.resize(0);
  expectTaken(text, 0);
}

}  // namespace
}  // namespace zqxml

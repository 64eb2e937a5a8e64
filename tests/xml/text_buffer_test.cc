// The text that a writer of XML makes, front to back.
#include <gtest/gtest.h>
#include <zqxml/xml/internal/text_buffer.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace zqxml {
namespace {

template <class Char>
void append(TextBuffer<Char>& text, std::size_t count, Char unit) {
  text.endAt(std::fill_n(text.room(count), count, unit));
}

template <class Char>
std::basic_string<Char> moved(TextBuffer<Char>& text) {
  std::basic_string<Char> out(5, Char{'?'});
  text.moveTo(out);
  return out;
}

TEST(TextBuffer, GivesWhatWasWrittenWhateverItsLength) {
  for (std::size_t pieces = 0; pieces < 3000; pieces += 123) {
    TextBuffer<char> text;
    TextBuffer<char16_t> wide;
    std::string expected;
    for (std::size_t i = 0; i < pieces; ++i) {
      const char unit = static_cast<char>('a' + i % 26);
      append(text, i % 17, unit);
      append(wide, i % 17, static_cast<char16_t>(unit));
      expected.append(i % 17, unit);
    }
    EXPECT_EQ(text.size(), expected.size());
    EXPECT_EQ(moved(text), expected);
    EXPECT_EQ(moved(wide), std::u16string(expected.begin(), expected.end()));
  }
}

TEST(TextBuffer, KeepsTheRoomThatTheCallersStringHas) {
  std::string out;
  out.reserve(4000);
  const char* const memory = out.data();
  TextBuffer<char> text;
  append(text, 3000, 'x');
  EXPECT_TRUE(text.isShort());
  text.moveTo(out);
  EXPECT_EQ(out, std::string(3000, 'x'));
  EXPECT_EQ(out.data(), memory);
}

TEST(TextBuffer, GivesRoomForMoreThanItEverHad) {
  TextBuffer<char> text;
  append(text, 10, 'x');
  append(text, 1'000'000, 'y');
  EXPECT_FALSE(text.isShort());
  EXPECT_EQ(moved(text), std::string(10, 'x') + std::string(1'000'000, 'y'));
}

TEST(TextBuffer, TakesTheExpectedLengthAtOnceWhenItIsNear) {
  TextBuffer<char> text;
  text.expect(100'000);
  append(text, 9000, 'x');
  const char* const place = text.room(90'000);
  append(text, 90'000, 'y');
  EXPECT_EQ(text.room(1), place + 90'000);
}

TEST(TextBuffer, DoesNotKeepTheMemoryOfALengthThatWasExpectedInVain) {
  TextBuffer<char> text;
  text.expect(100'000);
  append(text, 9000, 'x');
  EXPECT_LT(moved(text).capacity(), 20'000U);
}

TEST(TextBuffer, DoesNotBelieveAnExpectationFarBeyondWhatThereIs) {
  TextBuffer<char> text;
  text.expect(std::size_t{1} << 60);
  append(text, 9000, 'x');
  EXPECT_EQ(moved(text), std::string(9000, 'x'));
}

}  // namespace
}  // namespace zqxml

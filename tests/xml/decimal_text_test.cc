// Numbers as decimal text, beside the standard library's.
#include <gtest/gtest.h>
#include <zqxml/xml/internal/decimal_text.h>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace zqxml {
namespace {

template <class... Form>
std::string standardText(Form... form) {
  std::array<char, 64> text{};
  return {text.data(), std::to_chars(text.begin(), text.end(), form...).ptr};
}

/// What `print` writes into a room of just the promised size.
template <class Char, class Print>
std::basic_string<Char> printedBy(Print print) {
  std::vector<Char> room(kNumberRoom);
  const Char* const end = print(room.data());
  if (end == nullptr) return {};
  return {room.data(), static_cast<std::size_t>(end - room.data())};
}

template <class Number>
void expectBothWidths(Number number) {
  const std::string expected = standardText(number);
  ASSERT_EQ(printedBy<char>([&](char* at) { return printDecimal(at, number); }), expected);
  ASSERT_EQ(printedBy<char16_t>([&](char16_t* at) { return printDecimal(at, number); }),
            std::u16string(expected.begin(), expected.end()));
}

std::string usualFloating(double number) {
  return printedBy<char>([&](char* at) { return printUsualFloating(at, number); });
}
std::string streamForm(double number) {
  return standardText(number, std::chars_format::general, 6);
}

TEST(DecimalText, IsRightAroundEveryPowerOfTen) {
  std::uint64_t power = 1;
  for (int digits = 0; digits < 20; ++digits, power *= 10)
    for (std::uint64_t number = power - 2; number != power + 3; ++number) {
      expectBothWidths(number);
      expectBothWidths(static_cast<std::int64_t>(number));
      expectBothWidths(-static_cast<std::int64_t>(number));
    }
}

TEST(DecimalText, IsRightAtTheEndsOfItsRange) {
  expectBothWidths(std::numeric_limits<std::int64_t>::min());
  expectBothWidths(std::numeric_limits<std::int64_t>::max());
  expectBothWidths(std::numeric_limits<std::uint64_t>::max());
}

TEST(DecimalText, IsRightForEveryNumberOfEightDigitsInSteps) {
  for (std::uint64_t number = 0; number < 100'000'000; number += 997) expectBothWidths(number);
  for (std::uint64_t number = 0; number < 10'000; ++number) expectBothWidths(number * 10'000 + number);
}

TEST(DecimalText, IsRightForRandomNumbersOfEveryLength) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200'000; ++i) expectBothWidths(random() >> random() % 64);
}

TEST(UsualFloating, IsTheFormOfAStreamForDecimalFractions) {
  for (int places = 0; places < 9; ++places)
    for (int digits = 1; digits < 20'000; digits += 7) {
      const double number = digits / std::pow(10, places);
      const std::string text = usualFloating(number);
      if (number >= 1.0 / 128) {
        ASSERT_EQ(text, streamForm(number));
        ASSERT_EQ(usualFloating(-number), streamForm(-number));
      }
    }
}

TEST(UsualFloating, RoundsHalvesToEven) {
  for (int sixteenths = 16 * 1000; sixteenths < 16 * 2000; ++sixteenths) {
    const double number = sixteenths / 16.0;
    ASSERT_EQ(usualFloating(number), streamForm(number));
  }
  for (const double number : {100000.5, 100001.5, 12345.25, 12345.75, 0.0078125, 0.10000050000000001})
    EXPECT_EQ(usualFloating(number), streamForm(number));
}

TEST(UsualFloating, IsTheFormOfAStreamForEveryMagnitudeThatItTakes) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 300'000; ++i) {
    const std::uint64_t exponent = 1023 - 9 + random() % 32;
    const auto number = std::bit_cast<double>(exponent << 52 | random() >> 12 | (random() & 1) << 63);
    const std::string text = usualFloating(number);
    const double magnitude = std::abs(number);
    if (magnitude >= 1.0 / 128 && magnitude < 999'999.5)
      ASSERT_EQ(text, streamForm(number));
    else
      ASSERT_EQ(text, "");
  }
}

TEST(UsualFloating, CarriesIntoAnotherDigit) {
  for (const double number : {9.9999996, 99.999999, 99999.97, 0.99999999, 0.0099999999, 0.099999996, 9.5,
                              99999.5, 999998.5, 999997.5})
    EXPECT_EQ(usualFloating(number), streamForm(number));
}

TEST(UsualFloating, LeavesWhatHasAnotherFormAlone) {
  using Limits = std::numeric_limits<double>;
  for (const double number : {-0.0, 0.001, 999'999.5, 999'999.75, 1e6, 1e300, Limits::denorm_min(),
                              Limits::max(), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
    EXPECT_EQ(usualFloating(number), "") << number;
  EXPECT_EQ(usualFloating(0), "0");
}

}  // namespace
}  // namespace zqxml

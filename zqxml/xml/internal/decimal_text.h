// Numbers as decimal text, written in place. Not installed.
//
// `Char` is char or char16_t. A function writes at `at`, gives the end of what it wrote, and may touch what
// follows, up to kNumberRoom units in all.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace zqxml {

/// Units that a number's text may take, and a little more for those who write eight at a time.
inline constexpr std::size_t kNumberRoom = 24;

namespace internal {
inline constexpr std::uint64_t kTenToEight = 100'000'000;

/// The eight digits of a number below 10^8, each in a byte, the first in the lowest.
constexpr std::uint64_t eightDigits(std::uint64_t number) {
  // Halves of four digits, quarters of two, then single ones, side by side in one word. Products take the
  // place of divisions: they are exact for numbers so small.
  const std::uint64_t high = number / 10'000;
  const std::uint64_t halves = high | (number - 10'000 * high) << 32;
  const std::uint64_t hundreds = (halves * 10'486 >> 20) & 0x0000'007f'0000'007f;
  const std::uint64_t quarters = hundreds | (halves - 100 * hundreds) << 16;
  const std::uint64_t tens = (quarters * 103 >> 10) & 0x000f'000f'000f'000f;
  return tens | (quarters - 10 * tens) << 8;
}

/// Eight characters, the first in the lowest byte.
template <class Char>
void storeEight(Char* at, std::uint64_t characters) {
  for (unsigned i = 0; i < 8; ++i) at[i] = static_cast<Char>(characters >> 8 * i & 0xff);
}

/// A number below 10^8, with all of its eight digits or without those in front that are 0.
template <class Char>
[[gnu::always_inline]] inline Char* printEight(Char* at, std::uint64_t number, bool all) {
  const std::uint64_t digits = eightDigits(number);
  constexpr std::uint64_t kLastDigit = std::uint64_t{1} << 63;
  const int without = all ? 0 : std::countr_zero(digits | kLastDigit) / 8;
  storeEight(at, (digits | 0x3030'3030'3030'3030) >> 8 * without);
  return at + 8 - without;
}

/// Any number from 10^8.
template <class Char>
[[gnu::noinline]] Char* printLong(Char* at, std::uint64_t number) {
  const std::uint64_t front = number / kTenToEight;
  at = front < kTenToEight ? printEight(at, front, false) : printLong(at, front);
  return printEight(at, number % kTenToEight, true);
}
}  // namespace internal

template <class Char>
Char* printDecimal(Char* at, std::uint64_t number) {
  if (number < internal::kTenToEight) return internal::printEight(at, number, false);
  return internal::printLong(at, number);
}

template <class Char>
Char* printDecimal(Char* at, std::int64_t number) {
  const auto magnitude = static_cast<std::uint64_t>(number);
  if (number >= 0) return printDecimal(at, magnitude);
  *at = '-';
  return printDecimal(at + 1, 0 - magnitude);
}

/// As NumberText::ofFloating (value_text.h), for the most usual numbers: 0, and magnitudes from 1/128 up to
/// six digits. Null, with nothing written, for any other.
template <class Char>
Char* printUsualFloating(Char* at, double number) {
  constexpr int kFractionBits = 52;
  constexpr std::uint64_t kOne = std::uint64_t{1} << kFractionBits;
  constexpr std::uint64_t kSixDigits = 100'000;
  const auto bits = std::bit_cast<std::uint64_t>(number);
  if (bits == 0) return printDecimal(at, bits);
  const int exponent = static_cast<int>(bits >> kFractionBits & 0x7ff) - 1023;
  if (exponent < -7 || exponent > 19) return nullptr;
  // The number is exactly digits + rest / 2^shift, and ten times the rest fits in the word: one digit after
  // the other moves from the rest to the digits, until there are six.
  const int shift = kFractionBits - exponent;
  const std::uint64_t mantissa = (bits & (kOne - 1)) | kOne;
  const std::uint64_t mask = (std::uint64_t{1} << shift) - 1;
  std::uint64_t digits = mantissa >> shift;
  std::uint64_t rest = mantissa & mask;
  std::uint64_t scale = 1;
  for (; digits < kSixDigits && rest != 0; scale *= 10) {
    rest *= 10;
    digits = digits * 10 + (rest >> shift);
    rest &= mask;
  }
  const std::uint64_t half = std::uint64_t{1} << (shift - 1);
  if (rest > half || (rest == half && digits % 2 != 0)) ++digits;
  if (digits >= 10 * kSixDigits * scale) return nullptr;  // the form has an exponent
  for (; scale > 1 && digits % 10 == 0; scale /= 10) digits /= 10;

  if (number < 0) *at++ = '-';
  at = printDecimal(at, digits / scale);
  if (scale == 1) return at;
  // The digits behind the point with a 1 before them, which keeps their zeros; the point takes its place.
  Char* const point = at;
  at = printDecimal(at, scale + digits % scale);
  *point = '.';
  return at;
}

}  // namespace zqxml

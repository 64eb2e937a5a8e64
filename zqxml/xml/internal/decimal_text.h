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
[[gnu::always_inline]] constexpr std::uint64_t eightDigits(std::uint64_t number) {
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

/// A number below 100.
template <class Char>
[[gnu::always_inline]] inline Char* printTwo(Char* at, std::uint64_t number) {
  const std::uint64_t tens = number * 103 >> 10;
  const std::uint64_t digits = tens | (number - 10 * tens) << 8 | 0x3030;
  const int without = number < 10 ? 1 : 0;
  const std::uint64_t characters = digits >> 8 * without;
  at[0] = static_cast<Char>(characters & 0xff);
  at[1] = static_cast<Char>(characters >> 8);
  return at + 2 - without;
}

/// Any number from 10^8; those of 32 bits have at most two digits before the last eight.
template <class Char>
[[gnu::noinline]] Char* printLong(Char* at, std::uint64_t number) {
  const std::uint64_t front = number / kTenToEight;
  if (front < 100)
    at = printTwo(at, front);
  else
    at = front < kTenToEight ? printEight(at, front, false) : printLong(at, front);
  return printEight(at, number - kTenToEight * front, true);
}

/// The part of a number behind the point.
struct Fraction {
  /// Its first digits, as a number.
  std::uint64_t digits;
  /// What follows them, in units of 2^-shift.
  std::uint64_t behind;
};
/// The first digits of rest / 2^shift, as many as `power` has zeros; up to 10^8. `shift` is 33 to 59.
inline Fraction firstDigits(std::uint64_t rest, int shift, std::uint64_t power) {
  // The product takes up to 86 bits, so it is made in two parts, of which the lower one has 32.
  constexpr std::uint64_t kLowPart = 0xffff'ffff;
  const std::uint64_t low = (rest & kLowPart) * power;
  const std::uint64_t high = (rest >> 32) * power + (low >> 32);
  const std::uint64_t highMask = (std::uint64_t{1} << (shift - 32)) - 1;
  return {high >> (shift - 32), (high & highMask) << 32 | (low & kLowPart)};
}
}  // namespace internal

template <class Char>
[[gnu::always_inline]] inline Char* printDecimal(Char* at, std::uint64_t number) {
  if (number < 100) return internal::printTwo(at, number);
  if (number < internal::kTenToEight) return internal::printEight(at, number, false);
  return internal::printLong(at, number);
}

template <class Char>
[[gnu::always_inline]] inline Char* printDecimal(Char* at, std::int64_t number) {
  const auto bits = static_cast<std::uint64_t>(number);
  const bool negative = number < 0;
  *at = '-';
  return printDecimal(at + (negative ? 1 : 0), negative ? 0 - bits : bits);
}

/// As NumberText::ofFloating (value_text.h), for the most usual numbers: 0, and magnitudes from 1/128 up to
/// six digits. Null, with anything in its place, for any other.
template <class Char>
Char* printUsualFloating(Char* at, double number) {
  constexpr int kFractionBits = 52;
  constexpr std::uint64_t kOne = std::uint64_t{1} << kFractionBits;
  constexpr std::uint64_t kPowers[] = {1,       10,        100,        1'000,      10'000,
                                       100'000, 1'000'000, 10'000'000, 100'000'000};
  constexpr std::uint64_t kSevenDigits = kPowers[6];
  const auto bits = std::bit_cast<std::uint64_t>(number);
  if (bits == 0) return internal::printTwo(at, bits);
  const int exponent = static_cast<int>(bits >> kFractionBits & 0x7ff) - 1023;
  if (exponent < -7 || exponent > 19) return nullptr;

  // The number is exactly whole + rest / 2^shift.
  const int shift = kFractionBits - exponent;
  const std::uint64_t mantissa = (bits & (kOne - 1)) | kOne;
  const std::uint64_t rest = mantissa & ((std::uint64_t{1} << shift) - 1);
  const std::uint64_t whole = mantissa >> shift;
  if (whole >= kSevenDigits) return nullptr;  // the form has an exponent
  *at = '-';
  Char* const first = number < 0 ? at + 1 : at;
  at = internal::printEight(first, whole, false);

  // Six digits in all, the first of which is not 0.
  auto places = static_cast<std::size_t>(whole == 0 ? 8 : 6 - (at - first));
  internal::Fraction fraction = internal::firstDigits(rest, shift, kPowers[places]);
  if (whole == 0 && fraction.digits >= kSevenDigits) {
    places = fraction.digits >= 10 * kSevenDigits ? 6 : 7;
    fraction = internal::firstDigits(rest, shift, kPowers[places]);
  }
  const std::uint64_t half = std::uint64_t{1} << (shift - 1);
  const std::uint64_t last = places == 0 ? whole : fraction.digits;
  if (fraction.behind > half || (fraction.behind == half && last % 2 != 0)) ++fraction.digits;
  if (fraction.digits == kPowers[places])
    return whole + 1 == kSevenDigits ? nullptr : internal::printEight(first, whole + 1, false);
  if (fraction.digits == 0) return at;

  // No zeros at the end.
  const std::uint64_t digits = internal::eightDigits(fraction.digits) >> 8 * (8 - places);
  *at = '.';
  internal::storeEight(at + 1, digits | 0x3030'3030'3030'3030);
  return at + 9 - std::countl_zero(digits) / 8;
}

}  // namespace zqxml

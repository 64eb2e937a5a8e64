#include <locale.h>
#include <zqxml/platform/internal/load_word.h>
#include <zqxml/platform/number_text.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <string>
#include <system_error>
#include <type_traits>

namespace zqxml {
namespace {

/// Sign and magnitude of the decimal number at the start of a text.
struct Decimal {
  bool found = false;  ///< there is a digit
  bool negative = false;
  bool overflow = false;  ///< the magnitude does not fit in 64 bits
  std::uint64_t magnitude = 0;
};

/// What a digit stands for; above 9 for anything else.
template <class Char>
constexpr std::uint64_t digitOf(Char unit) {
  return static_cast<std::uint64_t>(unit) - '0';
}
template <class Char>
constexpr bool isDigit(Char unit) {
  return digitOf(unit) <= 9;
}

template <class View>
Decimal scanDecimal(View text) {
  Decimal number;
  auto at = text.begin();
  const auto end = text.end();
  while (at != end && isSpace(static_cast<char32_t>(*at))) ++at;
  if (at != end && (*at == '-' || *at == '+')) number.negative = *at++ == '-';
  const auto digits = at;
  // What has so many digits fits, whatever they are.
  const auto sure = at + std::min<std::ptrdiff_t>(end - at, std::numeric_limits<std::uint64_t>::digits10);
  for (; at != sure && isDigit(*at); ++at) number.magnitude = number.magnitude * 10 + digitOf(*at);
  for (; at != end && isDigit(*at) && !number.overflow; ++at) {
    constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
    if (number.magnitude > (kMax - digitOf(*at)) / 10)
      number.overflow = true;
    else
      number.magnitude = number.magnitude * 10 + digitOf(*at);
  }
  number.found = at != digits;
  return number;
}

/// What eight characters stand for, each in a byte, the first in the lowest; above 9 for what is no digit.
constexpr std::uint64_t digitsOf(std::uint64_t characters) {
  return characters ^ 0x3030'3030'3030'3030;
}
constexpr bool areDigits(std::uint64_t digits) {
  // A byte above 9 reaches the highest bit, by itself or with what is added.
  return ((digits | (digits + 0x7676'7676'7676'7676)) & 0x8080'8080'8080'8080) == 0;
}
/// The number of eight digits: pairs of them, fours, all, side by side in one word.
constexpr std::uint64_t numberOf(std::uint64_t digits) {
  digits = (digits * 10 + (digits >> 8)) & 0x00ff'00ff'00ff'00ff;
  digits = (digits * 100 + (digits >> 16)) & 0x0000'ffff'0000'ffff;
  return (digits * 10'000 + (digits >> 32)) & 0xffff'ffff;
}
static_assert(numberOf(digitsOf(0x3837'3635'3433'3231)) == 12'345'678);

/// Reads a text of digits and nothing else, up to 16 of them. False for any other, which may still be a
/// number.
bool readDigits(std::string_view text, std::uint64_t& number) {
  const char* const at = text.data();
  const std::size_t size = text.size();
  if constexpr (std::endian::native == std::endian::little) {
    if (size >= 8) {
      if (size > 16) return false;
      const std::uint64_t first = digitsOf(internal::loadWord<std::uint64_t>(at));
      const std::uint64_t last = digitsOf(internal::loadWord<std::uint64_t>(at + size - 8));
      // Zeros take the place of what is in both.
      const std::uint64_t high = size == 8 ? 0 : numberOf(first << 8 * (16 - size));
      number = high * 100'000'000 + numberOf(last);
      return areDigits(first) && areDigits(last);
    }
    if (size >= 4) {
      const std::uint64_t first = internal::loadWord<std::uint32_t>(at);
      const std::uint64_t last = internal::loadWord<std::uint32_t>(at + size - 4);
      const std::uint64_t digits = digitsOf(first | last << 8 * (size - 4)) << 8 * (8 - size);
      number = numberOf(digits);
      return areDigits(digits);
    }
  }
  if (size > 16) return false;
  number = 0;
  for (const char unit : text) {
    if (!isDigit(unit)) return false;
    number = number * 10 + digitOf(unit);
  }
  return true;
}

/// Whether the number fits. A minus takes a signed type one further and leaves an unsigned one as it is.
template <class Integer>
bool fits(const Decimal& number) {
  std::uint64_t reach = static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
  if (std::is_signed_v<Integer> && number.negative) ++reach;
  return !number.overflow && number.magnitude <= reach;
}

template <class Integer>
Integer valueOf(const Decimal& number) {
  return static_cast<Integer>(number.negative ? 0 - number.magnitude : number.magnitude);
}

template <class Signed, class View>
Signed parseSigned(View text) {
  using Limits = std::numeric_limits<Signed>;
  const Decimal number = scanDecimal(text);
  if (!fits<Signed>(number)) return number.negative ? Limits::min() : Limits::max();
  return valueOf<Signed>(number);
}

template <class Unsigned, class View>
Unsigned parseUnsigned(View text) {
  const Decimal number = scanDecimal(text);
  return fits<Unsigned>(number) ? valueOf<Unsigned>(number) : std::numeric_limits<Unsigned>::max();
}

template <class Integer>
bool readInteger(std::string_view text, Integer& value) {
  const Decimal number = scanDecimal(text);
  if (!number.found || !fits<Integer>(number)) return false;
  value = valueOf<Integer>(number);
  return true;
}

/// strtod by the "C" locale, for what std::from_chars reads otherwise or not at all.
double parseDoubleByC(std::string_view text) {
  static const locale_t kClassic = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(std::string(text).c_str(), nullptr, kClassic);
}

/// What stands behind white space and a sign; `negative` tells the sign.
std::string_view unsignedPart(std::string_view text, bool& negative) {
  while (!text.empty() && isSpace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
  negative = !text.empty() && text.front() == '-';
  if (!text.empty() && (negative || text.front() == '+')) text.remove_prefix(1);
  return text;
}

template <class Floating>
bool readFloating(std::string_view whole, Floating& value) {
  bool negative = false;
  const std::string_view text = unsignedPart(whole, negative);
  // A second sign: from_chars would take a minus here.
  if (text.empty() || text.front() == '-') return false;
  Floating magnitude = 0;
  const std::errc failure = std::from_chars(text.data(), text.data() + text.size(), magnitude).ec;
  if (failure == std::errc::result_out_of_range) {
    const double wide = parseDoubleByC(text);
    if (wide > 1) return false;
    magnitude = static_cast<Floating>(wide);
  } else if (failure != std::errc{}) {
    return false;
  }
  value = negative ? -magnitude : magnitude;
  return true;
}

constexpr bool startsHexadecimal(std::string_view text) {
  return text.size() > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

}  // namespace

std::int64_t parseInt64(std::string_view text) {
  std::uint64_t value = 0;
  // Most numbers are a few digits and nothing else.
  return readDigits(text, value) ? static_cast<std::int64_t>(value) : parseSigned<std::int64_t>(text);
}
std::int64_t parseInt64(std::u16string_view text) {
  return parseSigned<std::int64_t>(text);
}
std::int32_t parseInt32(std::string_view text) {
  return parseSigned<std::int32_t>(text);
}
std::int32_t parseInt32(std::u16string_view text) {
  return parseSigned<std::int32_t>(text);
}
std::uint64_t parseUInt64(std::string_view text) {
  return parseUnsigned<std::uint64_t>(text);
}
std::uint64_t parseUInt64(std::u16string_view text) {
  return parseUnsigned<std::uint64_t>(text);
}
std::uint32_t parseUInt32(std::string_view text) {
  return parseUnsigned<std::uint32_t>(text);
}
std::uint32_t parseUInt32(std::u16string_view text) {
  return parseUnsigned<std::uint32_t>(text);
}

double parseDouble(std::string_view text) {
  const std::string_view whole = text;
  bool negative = false;
  text = unsignedPart(text, negative);
  // A second sign: from_chars would take a minus here.
  if (text.empty() || text.front() == '-') return 0;
  if (startsHexadecimal(text)) return parseDoubleByC(whole);
  double value = 0;
  const std::errc failure = std::from_chars(text.data(), text.data() + text.size(), value).ec;
  if (failure == std::errc::result_out_of_range) return parseDoubleByC(whole);
  if (failure != std::errc{}) return 0;
  return negative ? -value : value;
}

bool readNumber(std::string_view text, std::int32_t& value) {
  return readInteger(text, value);
}
bool readNumber(std::string_view text, std::uint32_t& value) {
  return readInteger(text, value);
}
bool readNumber(std::string_view text, std::int64_t& value) {
  return readInteger(text, value);
}
bool readNumber(std::string_view text, float& value) {
  return readFloating(text, value);
}
bool readNumber(std::string_view text, double& value) {
  return readFloating(text, value);
}

double parseDouble(std::u16string_view text) {
  text = trimSpace(text);
  std::array<char, 64> narrow;
  std::string longNarrow;
  char* to = narrow.data();
  if (text.size() > narrow.size()) {
    longNarrow.resize(text.size());
    to = longNarrow.data();
  }
  // No number has a unit beyond ASCII, so the first such unit ends it.
  std::size_t size = 0;
  for (; size < text.size() && text[size] < 0x80; ++size) to[size] = static_cast<char>(text[size]);
  return parseDouble(std::string_view(to, size));
}

}  // namespace zqxml

#include <locale.h>
#include <zqxml/platform/format.h>
#include <zqxml/platform/text.h>

#include <algorithm>
#include <cstdio>

namespace zqxml {
namespace {

constexpr int kLargest = 1024;  // width, and precision of a number

// How many bits of an integer a conversion takes.
enum class Length { k8, k16, k32, k64 };

// One conversion as it stands in the format.
struct Conversion {
  std::string flags;
  int width = 0;
  int precision = -1;  // below 0: none
  Length length = Length::k32;
  bool wideCharacter = false;
  char letter = 0;
  std::size_t end = 0;  // behind it in the format

  bool left() const { return flags.find('-') != std::string::npos; }
};

// The arguments in their order.
class Arguments {
 public:
  explicit Arguments(std::span<const FormatArg> list) : list_(list) {}

  const FormatArg* next() { return taken_ < list_.size() ? &list_[taken_++] : nullptr; }
  std::size_t taken() const { return taken_; }
  void giveBackTo(std::size_t taken) { taken_ = taken; }

 private:
  std::span<const FormatArg> list_;
  std::size_t taken_ = 0;
};

class Parser {
 public:
  Parser(std::string_view format, std::size_t behindPercent, Arguments& arguments)
      : format_(format), at_(behindPercent), arguments_(arguments) {}

  // False when this is no conversion, or an argument for a `*` is missing.
  bool parse(Conversion& out) {
    while (std::string_view("-+ #0").find(peek()) != std::string_view::npos) {
      if (out.flags.find(peek()) == std::string::npos) out.flags += peek();
      ++at_;
    }
    if (!parseNumber(out.width)) return false;
    if (out.width < 0) {
      if (!out.left()) out.flags += '-';
      out.width = -out.width;
    }
    if (peek() == '.') {
      ++at_;
      out.precision = 0;
      if (!parseNumber(out.precision)) return false;
    }
    parseLength(out);
    out.letter = peek();
    if (at_ < format_.size()) ++at_;
    out.end = at_;
    return std::string_view("diuoxXcCsSpfFeEgGaAn%").find(out.letter) != std::string_view::npos &&
           out.letter != 0;
  }

 private:
  // NUL stands for the end, too; no part of a conversion is one.
  char peek() const { return at_ < format_.size() ? format_[at_] : '\0'; }

  bool parseNumber(int& number) {
    if (peek() == '*') {
      ++at_;
      const FormatArg* argument = arguments_.next();
      if (argument == nullptr) return false;
      number = std::clamp(static_cast<int>(static_cast<std::uint32_t>(argument->number())), -0x3FFFFFFF,
                          0x3FFFFFFF);
      if (argument->kind() != FormatArg::Kind::kSigned && argument->kind() != FormatArg::Kind::kUnsigned)
        number = 0;
      return true;
    }
    for (; peek() >= '0' && peek() <= '9'; ++at_) number = std::min(number, 0x3FFFFFF) * 10 + (peek() - '0');
    return true;
  }

  bool take(std::string_view text) {
    if (format_.substr(at_, text.size()) != text) return false;
    at_ += text.size();
    return true;
  }

  void parseLength(Conversion& out) {
    if (take("hh")) {
      out.length = Length::k8;
    } else if (take("h")) {
      out.length = Length::k16;
    } else if (take("I32")) {
      out.length = Length::k32;
    } else if (take("ll") || take("l")) {
      out.length = Length::k64;
      out.wideCharacter = true;
    } else if (take("I64") || take("L") || take("j") || take("z") || take("t")) {
      out.length = Length::k64;
    }
  }

  std::string_view format_;
  std::size_t at_;
  Arguments& arguments_;
};

// Lets the C library see the "C" locale in this thread.
class CLocale {
 public:
  CLocale() : previous_(uselocale(locale())) {}
  ~CLocale() { uselocale(previous_); }
  CLocale(const CLocale&) = delete;
  CLocale& operator=(const CLocale&) = delete;

 private:
  static locale_t locale() {
    static const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
    return c;
  }
  locale_t previous_;
};

template <typename T>
void putNumber(std::string& out, const Conversion& conversion, const char* length, char letter, T value) {
  const std::string format = "%" + conversion.flags + "*.*" + length + letter;
  // The longest: 309 digits of a double, a point and the precision.
  char area[kLargest + 512];
  const int width = std::min(conversion.width, kLargest);
  const int precision = std::min(conversion.precision, kLargest);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  const int size = std::snprintf(area, sizeof area, format.c_str(), width, precision, value);
#pragma GCC diagnostic pop
  if (size > 0) out.append(area, std::min(static_cast<std::size_t>(size), sizeof area - 1));
}

void putPadded(std::string& out, const Conversion& conversion, std::string_view text) {
  const auto width = static_cast<std::size_t>(std::min(conversion.width, kLargest));
  const std::size_t blanks = width > text.size() ? width - text.size() : 0;
  if (!conversion.left()) out.append(blanks, ' ');
  out.append(text);
  if (conversion.left()) out.append(blanks, ' ');
}

// The longest beginning of whole characters with at most `limit` bytes.
std::string_view wholeCharacters(std::string_view utf8, std::size_t limit) {
  if (utf8.size() <= limit) return utf8;
  while (limit > 0 && (static_cast<unsigned char>(utf8[limit]) & 0xC0) == 0x80) --limit;
  return utf8.substr(0, limit);
}

void putText(std::string& out, const Conversion& conversion, const FormatArg& argument) {
  std::string converted;
  std::string_view text;
  if (argument.isNull()) {
    text = "(null)";
  } else if (argument.kind() == FormatArg::Kind::kWideText) {
    converted = toUtf8(argument.wideText());
    text = converted;
  } else {
    text = argument.text();
  }
  if (conversion.precision >= 0) {
    const auto limit = static_cast<std::size_t>(conversion.precision);
    text =
        argument.kind() == FormatArg::Kind::kWideText ? wholeCharacters(text, limit) : text.substr(0, limit);
  }
  putPadded(out, conversion, text);
}

void putInteger(std::string& out, const Conversion& conversion, char letter, std::uint64_t number) {
  const bool isSigned = letter == 'd' || letter == 'i';
  long long value = static_cast<long long>(number);
  switch (conversion.length) {
    case Length::k8:
      value = isSigned ? static_cast<std::int8_t>(number) : static_cast<std::uint8_t>(number);
      break;
    case Length::k16:
      value = isSigned ? static_cast<std::int16_t>(number) : static_cast<std::uint16_t>(number);
      break;
    case Length::k32:
      value = isSigned ? std::int64_t{static_cast<std::int32_t>(number)}
                       : std::int64_t{static_cast<std::uint32_t>(number)};
      break;
    case Length::k64:
      break;
  }
  putNumber(out, conversion, "ll", letter, value);
}

void putCharacter(std::string& out, const Conversion& conversion, const FormatArg& argument) {
  const std::uint64_t number = argument.number();
  // A `char` beyond ASCII is a byte of some text; a `char16_t` is a character.
  if (argument.kind() == FormatArg::Kind::kSigned && !conversion.wideCharacter && conversion.letter == 'c') {
    const char byte = static_cast<char>(static_cast<unsigned char>(number));
    return putPadded(out, conversion, {&byte, 1});
  }
  std::u16string character;
  if (number < 0x10000) {
    character = static_cast<char16_t>(number);
  } else if (number <= 0x10FFFF) {
    character = static_cast<char16_t>(0xD7C0 + (number >> 10));
    character += static_cast<char16_t>(0xDC00 + (number & 0x3FF));
  } else {
    character = u'\uFFFD';
  }
  putPadded(out, conversion, toUtf8(character));
}

void putPointer(std::string& out, const Conversion& conversion, const void* pointer) {
  char area[32];
  const int size = std::snprintf(area, sizeof area, "%p", pointer);
  putPadded(out, conversion, {area, static_cast<std::size_t>(size)});
}

bool isOneOf(char letter, std::string_view letters) {
  return letters.find(letter) != std::string_view::npos;
}

void put(std::string& out, const Conversion& conversion, const FormatArg& argument) {
  const char letter = conversion.letter;
  switch (argument.kind()) {
    case FormatArg::Kind::kText:
    case FormatArg::Kind::kWideText:
      return putText(out, conversion, argument);
    case FormatArg::Kind::kPointer:
      return putPointer(out, conversion, argument.pointer());
    case FormatArg::Kind::kDouble: {
      const bool fits = isOneOf(letter, "fFeEgGaA");
      return putNumber(out, conversion, "", fits ? letter : 'g', argument.floating());
    }
    case FormatArg::Kind::kSigned:
    case FormatArg::Kind::kUnsigned:
      break;
  }
  const bool isSigned = argument.kind() == FormatArg::Kind::kSigned;
  if (isOneOf(letter, "diuoxX")) return putInteger(out, conversion, letter, argument.number());
  if (isOneOf(letter, "cC")) return putCharacter(out, conversion, argument);
  if (isOneOf(letter, "fFeEgGaA")) {
    const std::uint64_t number = argument.number();
    const double value =
        isSigned ? static_cast<double>(static_cast<std::int64_t>(number)) : static_cast<double>(number);
    return putNumber(out, conversion, "", letter, value);
  }
  Conversion natural = conversion;
  natural.length = Length::k64;
  natural.precision = -1;
  putInteger(out, natural, isSigned ? 'd' : 'u', argument.number());
}

}  // namespace

std::string formatText(std::string_view format, std::span<const FormatArg> arguments) {
  std::string out;
  out.reserve(format.size() + 16 * arguments.size());
  const CLocale locale;
  Arguments list(arguments);
  std::size_t at = 0;
  while (at < format.size()) {
    const std::size_t percent = std::min(format.find('%', at), format.size());
    out.append(format, at, percent - at);
    if (percent == format.size()) break;
    const std::size_t taken = list.taken();
    Conversion conversion;
    const bool known = Parser(format, percent + 1, list).parse(conversion);
    const FormatArg* argument = nullptr;
    const bool needsArgument = known && conversion.letter != '%' && conversion.letter != 'n';
    if (needsArgument) argument = list.next();
    if (!known || (needsArgument && argument == nullptr)) {
      // What stands behind the percent sign is no conversion by itself, so it is passed on as text.
      list.giveBackTo(taken);
      out += '%';
      at = percent + 1;
      continue;
    }
    if (argument != nullptr) {
      put(out, conversion, *argument);
    } else if (conversion.letter == '%') {
      out += '%';
    }
    at = conversion.end;
  }
  return out;
}

}  // namespace zqxml

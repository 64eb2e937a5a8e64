#include <zqxml/catalogue/field_types.h>
#include <zqxml/message/bstring.h>
#include <zqxml/message/pstring.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/decimal_text.h>
#include <zqxml/xml/value_text.h>

#include <charconv>
#include <cstring>
#include <type_traits>

namespace zqxml {
namespace {

/// The types whose element says how the cell reads, and which have a text form at all. QUIRK: the list of
/// unsigned 64-bit numbers (18) has none, though its single value does.
constexpr FieldTypeSet kNoText{FDT_LIST_ULONGLONG};
/// Lists that are stored as unsigned numbers and still read as what they list.
constexpr FieldTypeSet kSignedCells{FDT_LIST_ENUM};
constexpr FieldTypeSet kBooleanCells{FDT_LIST_BOOL};

template <class T>
T readCell(const void* value) {
  T cell;
  std::memcpy(&cell, value, sizeof cell);
  return cell;
}

std::string signedText(const void* value) {
  return std::string(NumberText::ofSigned(readCell<std::int64_t>(value)).view());
}
std::string booleanText(const void* value) {
  return readCell<std::int64_t>(value) != 0 ? "1" : "0";
}

template <class Element>
std::string elementText(Element, const void* value) {
  using Value = typename Element::Value;
  if constexpr (std::is_same_v<Element, element::Bool>) {
    return booleanText(value);
  } else if constexpr (element::Floating<Element>) {
    return std::string(NumberText::ofFloating(static_cast<double>(readCell<Value>(value))).view());
  } else if constexpr (element::Integer<Element> && std::is_unsigned_v<Value>) {
    return std::string(NumberText::ofUnsigned(readCell<std::uint64_t>(value)).view());
  } else if constexpr (element::Integer<Element>) {
    return signedText(value);
  } else if constexpr (std::is_same_v<Element, element::Str>) {
    return *static_cast<const std::string*>(value);
  } else if constexpr (std::is_same_v<Element, element::WStr>) {
    return toUtf8(*static_cast<const std::u16string*>(value));
  } else if constexpr (std::is_same_v<Element, element::BStr> || std::is_same_v<Element, element::PStr>) {
    // QUIRK: the bytes end at the first NUL, although a bstring can hold any.
    return UlBase64::Encode(static_cast<const Value*>(value)->c_str());
  } else {
    return {};
  }
}

}  // namespace

std::string getStringFromFld(int type, const void* value) {
  const auto typeByte = static_cast<unsigned>(type);
  if (value == nullptr || kNoText.contains(typeByte)) return {};
  if (kSignedCells.contains(typeByte)) return signedText(value);
  if (kBooleanCells.contains(typeByte)) return booleanText(value);
  return visitStorage(typeByte,
                      Overloaded{[value]<class E>(Scalar<E>) { return elementText(E{}, value); },
                                 [value]<class E>(InPlace<E>) { return elementText(E{}, value); },
                                 [value]<class E>(Owned<E>) { return elementText(E{}, value); },
                                 [value]<class E>(List<E>) { return elementText(E{}, value); },
                                 [](Nothing) { return std::string(); }, [](Object) { return std::string(); },
                                 []<class K, class V>(Map<K, V>) { return std::string(); }});
}

namespace internal {
namespace {
std::size_t lengthTo(const char* end, const NumberBuffer& buffer) {
  return static_cast<std::size_t>(end - buffer.data());
}
}  // namespace

static_assert(sizeof(NumberBuffer) >= kNumberRoom);

std::size_t printSigned(NumberBuffer& buffer, std::int64_t value) {
  return lengthTo(printDecimal(buffer.data(), value), buffer);
}
std::size_t printUnsigned(NumberBuffer& buffer, std::uint64_t value) {
  return lengthTo(printDecimal(buffer.data(), value), buffer);
}
std::size_t printFloating(NumberBuffer& buffer, double value) {
  if (const char* const end = printUsualFloating(buffer.data(), value)) return lengthTo(end, buffer);
  constexpr auto kForm = std::chars_format::general;
  return lengthTo(std::to_chars(buffer.begin(), buffer.end(), value, kForm, 6).ptr, buffer);
}
}  // namespace internal

}  // namespace zqxml

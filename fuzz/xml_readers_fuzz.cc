// Texts of any bytes, read on both roads: the scanner has to give what the parser gives, object, result and
// lines. The same bytes are read as UTF-8 and, two at a time, as UTF-16.

#include <tests/support/xml_readings.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/platform/text.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "fuzz/xml_fuzz_common.h"

namespace zqxml {
namespace {

template <class Text>
void compareInto(const XNMessageBase& message, const Text& xml) {
  for (const bool keepExisting : {false, true})
    fuzz::require(readInto(message, xml, keepExisting, true) == readInto(message, xml, keepExisting, false));
}

void compareAll(const std::string& text) {
  fuzz::require(readNew(text, true) == readNew(text, false));
  compareInto(XmlRead::Every(), text);
  compareInto(XmlRead::Node(), text);
  const std::u16string wide = toUtf16(text);
  if (wide.find(u'\0') == wide.npos) compareInto(XmlRead::Node(), wide);
  std::u16string units(text.size() / 2, u'\0');
  std::memcpy(units.data(), text.data(), units.size() * 2);
  compareInto(XmlRead::Node(), units);
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::EvDebug::setDebugLevel(-1);
  (void)zqxml::XNMessageBase::Initialize();
  zqxml::compareAll(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}

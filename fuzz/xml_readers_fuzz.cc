// Texts of any bytes, read on both roads: the scanner has to give what the parser gives, object, result and
// lines. The same bytes are read as UTF-8 and, two at a time, as UTF-16. A parser that is kept from text to
// text has to give what a new one gives, and what SAX2 gives; other texts have to be read behind these as
// before.

#include <tests/support/sax2_reading.h>
#include <tests/support/xml_readings.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/internal/sax_parse.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/xml_fuzz_common.h"

namespace zqxml {
namespace {

template <class Text>
void compareInto(const XNMessageBase& message, const Text& xml) {
  for (const bool keepExisting : {false, true})
    fuzz::require(readInto(message, xml, keepExisting, true) == readInto(message, xml, keepExisting, false));
}

/// Texts that tell what is left of an earlier one.
constexpr const char* kProbes[] = {
    "<XmlRead_Node id='1' name='n'><?pi?><tags val='t'/><child id='2'/></XmlRead_Node>",
    "<XmlRead_Node name='&#1;'/>", "<XmlRead_Node name='&e;'/>", "<XmlRead_Node p:id='3'/>"};

void compareParsers(const std::string& text) {
  static const std::vector<ReadingOutcome> probed = [] {
    std::vector<ReadingOutcome> outcomes;
    for (const char* probe : kProbes) {
      SaxParse::dropKept();
      outcomes.push_back(readNew(probe, false));
    }
    return outcomes;
  }();
  // An empty text is refused before a parser gets it.
  if (!text.empty())
    fuzz::require(readInto(XmlRead::Every(), text, true, false) == readBySax2(XmlRead::Every(), text));
  SaxParse::dropKept();
  const ReadingOutcome byNewParser = readNew(text, false);
  for (std::size_t i = 0; i < std::size(kProbes); ++i) {
    (void)readNew(kProbes[0], false);
    fuzz::require(readNew(text, false) == byNewParser);
    fuzz::require(readNew(kProbes[i], false) == probed[i]);
  }
}

void compareAll(const std::string& text) {
  compareParsers(text);
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

// Masked texts and events. The first line of the input is the left keyword, the second the right one, and the
// rest a text; the rest is taken for an event in the binary form, too.

#include <zqxml/binary/binary_buffer.h>
#include <zqxml/catalogue/generated/Common.h>
#include <zqxml/logging/event_conversion.h>
#include <zqxml/logging/masked_xml.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/xml_fuzz_common.h"

namespace zqxml::fuzz {
namespace {

std::string takeLine(std::string_view& input) {
  const std::string_view line = input.substr(0, input.find('\n'));
  input.remove_prefix(line.size() < input.size() ? line.size() + 1 : line.size());
  return std::string(line);
}

/// What the keyword mask is to do, one stretch at a time.
std::string maskedOneByOne(std::string text, const std::string& left, const std::string& right) {
  if (left.empty() || right.empty()) return {};
  std::size_t at = 0;
  for (;;) {
    const std::size_t found = text.find(left, at);
    const std::size_t start = found + left.size();
    const std::size_t end = found == std::string::npos ? found : text.find(right, start);
    if (end == std::string::npos) return text;
    text = text.substr(0, start) + "******" + text.substr(end);
    at = start + 6 + right.size();
  }
}

bool isText(const std::string& text) {
  return text.empty() || text.starts_with("<?xml ") || text == "Error unserializing given object." ||
         text == "Error reserializing given object/string";
}

void maskText(const std::string& left, const std::string& right, const std::string& text) {
  const std::string masked = logXML(text, nullptr);
  require(isText(masked) && masked.empty() == text.empty());

  const std::string_view token = R"(<attributes name="USDKtoken" value=")";
  const std::string hidden = logXMLWithUsdkTokenMask(text);
  const std::size_t found = masked.find(token);
  if (found == std::string::npos) {
    require(hidden == masked);
  } else {
    require(hidden.substr(found + token.size()).starts_with("***\""));
  }

  // The plain way takes time in proportion to the square of the text.
  const std::string between = logXmlWithKeywordMask(text, left, right, false);
  if (text.size() < 5000) require(between == maskedOneByOne(text, left, right));
  require(logXmlWithKeywordMask(text, left, right, true) == logXML(between, nullptr));
}

void convertEvent(std::string_view bytes) {
  BinaryBuffer buffer;
  buffer.SetReadBuffer(bytes.data(), bytes.size(), true);
  Common::EventMessage message;
  // Whatever could be read is an event.
  message.UnserializeBinary(buffer);
  EvMessageContainer event;
  const bool whole = getEvMessageContainerFromXML(message, event);
  const std::size_t size = static_cast<std::size_t>(event.getArguments().NoOfArgs());
  const std::size_t sent = std::as_const(message).getArguments().size();
  require(whole ? size == sent : size < sent);

  Common::EventMessage again;
  setEvMessageContainerToXML(event, again);
  require(std::as_const(again).getArguments().size() == size);
  EvMessageContainer back;
  require(getEvMessageContainerFromXML(again, back) && back.getMessageId() == event.getMessageId());
  require(back.getArguments().NoOfArgs() == event.getArguments().NoOfArgs());
}

}  // namespace
}  // namespace zqxml::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::fuzz::logToNowhere();
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string left = zqxml::fuzz::takeLine(input);
  const std::string right = zqxml::fuzz::takeLine(input);
  zqxml::fuzz::maskText(left, right, std::string(input));
  zqxml::fuzz::convertEvent(input);
  return 0;
}

#include <zqxml/logging/masked_xml.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/fx_string.h>
#include <zqxml/platform/platform_info.h>
#include <zqxml/xml/xml_encoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <string_view>

namespace zqxml {
namespace {

/// The flags that the configuration asks for. Says in the log when they show what should be hidden.
EncodingFlags configuredFlags() {
  constexpr const char* kKey = "nDoNotMaskSensitiveDataInXML";
  int notMasked = 0;
  ZQPlatformInfo().getNumber("EventManager", kKey, notMasked);
  EncodingFlags flags;
  if (notMasked == 0) {
    flags.encoding_options |= MASK_SENSITIVE;
  } else {
    // QUIRK: the letter behind the number is no part of its conversion, and is shown.
    XmlLogContext::instance().log("logXML",
                                  "NOT masking sensitive data to XML as additional setting %s is set to %ui",
                                  kKey, notMasked);
  }
  return flags;
}

}  // namespace

std::string logXML(const std::string& xml, XNMessageBase* object) {
  if (object == nullptr && xml.empty()) return xml;
  std::unique_ptr<XNMessageBase> made;
  if (object == nullptr) {
    made.reset(XMLSerializer().unserialize(xml, false));
    if (made == nullptr) return "Error unserializing given object.";
    object = made.get();
  }
  std::string text;
  if (XMLEncoder(configuredFlags(), nullptr).serialize(*object, text) == XN_MSG_OK) return text;
  return xml.empty() ? "Error serializing XNMessageBase object and given empty input string"
                     : "Error reserializing given object/string";
}

std::string logXMLWithUsdkTokenMask(const std::string& xml) {
  constexpr std::string_view kToken = R"(<attributes name="USDKtoken" value=")";
  static_assert(kToken.size() == 36);
  std::string text = logXML(xml, nullptr);
  std::size_t start = text.find(kToken);
  if (start == std::string::npos) return text;
  start += kToken.size();
  const std::size_t end = text.find('"', start);
  if (end != std::string::npos) text.replace(start, end - start, "***");
  return text;
}

std::string logXmlWithKeywordMask(const std::string& xml, const std::string& left, const std::string& right,
                                  bool applyLogXML) {
  if (xml.empty() || left.empty() || right.empty()) return {};
  std::string text = xml;
  FXString::ReplaceAllByMatchingLeftAndRight(text, left, right, "******", 0);
  return applyLogXML ? logXML(text, nullptr) : text;
}

}  // namespace zqxml

/// @file
/// Texts of messages that may go into a log: XML without what the catalogue marks as sensitive.
///
/// None of these functions writes the text anywhere. Failures are told by the text that they give, so that a
/// caller can log whatever comes back. They throw nothing but std::bad_alloc, and keep no state: any thread
/// may call them at any time.
#pragma once

#include <zqxml/platform/export.h>

#include <string>

namespace zqxml {

class XNMessageBase;

/// The XML of `object`, or of the message that `xml` holds when `object` is null, with "########" for every
/// single value of a field with the Sensitive annotation. QUIRK: lists and sub-objects with it are shown, and
/// passwords as the encoder writes them: encrypted, if their type says so.
///
/// When the number "nDoNotMaskSensitiveDataInXML" of section "EventManager" is there and not 0, nothing is
/// masked, and a notice goes to the message log; it is read at every call. In place of XML the result is
/// - empty for a null object and an empty text;
/// - "Error unserializing given object." for a text that is no message;
/// - "Error serializing XNMessageBase object and given empty input string", or with a text beside the object
///   "Error reserializing given object/string", for an object that cannot be written.
ZQXML_EXPORT std::string logXML(const std::string& xml, XNMessageBase* object = nullptr);

/// logXML of the text, with "***" for the value of its first element <attributes name="USDKtoken"
/// value="...">.
ZQXML_EXPORT std::string logXMLWithUsdkTokenMask(const std::string& xml);

/// Any text with "******" for what stands between `left` and the next `right` behind it, wherever that is;
/// the two stay. With `applyLogXML` the result goes through logXML. Empty when one of the three texts is.
ZQXML_EXPORT std::string logXmlWithKeywordMask(const std::string& xml, const std::string& left,
                                               const std::string& right, bool applyLogXML);

}  // namespace zqxml

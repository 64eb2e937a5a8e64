// The fast road from a message to XML: a text without a DOM. Not installed.
#pragma once

#include <zqxml/xml/internal/xml_walk.h>

#include <string>

namespace zqxml {

/// Replaces `out` by the message's text, the same that the DOM road writes, and is true; or is false, with
/// `out` as it was and nothing logged, when the DOM road has to be taken. It has to be when listeners are
/// registered, traces are logged, a password routine would be called, and whenever something is left out or
/// fails, so that what is told of it comes from there.
bool writeXmlText(XNMessageBase& message, const XmlWalkCall& call, bool rootOnly, std::string& out) noexcept;
/// The same in UTF-16.
bool writeXmlText(XNMessageBase& message, const XmlWalkCall& call, bool rootOnly,
                  std::u16string& out) noexcept;

}  // namespace zqxml

#pragma once

#include <zqxml/message/xn_message_base.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zqxml::tool {

/// What a page tells of the message beside its fields.
struct PageFacts {
  std::optional<std::uint64_t> xmlBytes;     ///< size of the XML form; none when it cannot be written
  std::optional<std::uint64_t> binaryBytes;  ///< size of the binary form, likewise
};

/// The message as a page of HTML for people, whole in one text: style and script stand in it, and its
/// Content-Security-Policy runs nothing else and lets nothing be loaded. See FieldRows for what is shown, and
/// what is masked without `showSecrets`.
std::string messagePage(const XNMessageBase& message, const PageFacts& facts, bool showSecrets);

}  // namespace zqxml::tool

#pragma once

#include <zqxml/message/xn_message_base.h>
#include <zqxml/render/zq_xml_render_context.h>

#include <string>

namespace zqxml::tool {

/// What a message becomes for people.
enum class Rendering {
  kText,     ///< one line of text
  kOutline,  ///< an outline in HTML, as a fragment
  kSummary,  ///< a paragraph in HTML, as a fragment
};

/// The message in that form. Nothing fails; a message without set fields is an empty text.
std::string render(XNMessageBase& message, Rendering form, const ContextFormatOpts& options = {});

}  // namespace zqxml::tool

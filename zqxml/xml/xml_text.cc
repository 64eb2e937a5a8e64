#include <zqxml/xml/internal/text_sink.h>
#include <zqxml/xml/internal/xml_text.h>

namespace zqxml {
namespace {

/// The finest level of what the DOM road logs on its way to a text that nothing is missing from.
constexpr int kTraceLevel = 10;

template <class Char>
bool write(XNMessageBase& message, const XmlWalkCall& call, bool rootOnly,
           std::basic_string<Char>& out) noexcept {
  if (XMLSerializationSupport::hasListeners() || debugEnabled(kTraceLevel)) return false;
  try {
    const ClassPlan* plan = ClassPlan::of(message);
    if (plan == nullptr) return false;
    TextSink<Char> sink(call.flags);
    sink.text().expect(plan->expectedLength());
    if (!rootOnly) sink.declare();
    const auto root = sink.element({}, plan->rootName);
    XmlWalk<TextSink<Char>>(sink, call).writeFields(message, root);
    if (sink.gaveUp()) return false;
    sink.end(root);
    if (!rootOnly) sink.endDocument();
    if (!sink.text().isShort()) plan->noteLength(sink.text().size());
    sink.text().moveTo(out);
    return true;
  } catch (...) {
    return false;  // no memory for what the other road may do with less
  }
}

}  // namespace

bool writeXmlText(XNMessageBase& message, const XmlWalkCall& call, bool rootOnly, std::string& out) noexcept {
  return write(message, call, rootOnly, out);
}

bool writeXmlText(XNMessageBase& message, const XmlWalkCall& call, bool rootOnly,
                  std::u16string& out) noexcept {
  return write(message, call, rootOnly, out);
}

}  // namespace zqxml

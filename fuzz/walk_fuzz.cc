// Any bytes as a message, and as what a visitor does to it: walks in both modes, merging, rendering, dummy
// values.
//
// The input is a byte of choices, a byte with the length of the visitor's script, the script, and a message
// in binary form. What works on a message by walking it is a step in kSteps.
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/logging/dummy_objects.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/render/default_render_context.h>
#include <zqxml/render/html_gui_summary_render_context.h>
#include <zqxml/render/html_render_context.h>
#include <zqxml/render/summary_traverse.h>
#include <zqxml/render/zq_xml_summary.h>
#include <zqxml/traverse/entity_type_handler.h>
#include <zqxml/traverse/xml_traverse.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {
namespace {

/// Ends the run where a promise is broken.
void require(bool holds) {
  if (!holds) std::abort();
}

/// What the bytes ask for.
struct Choices {
  bool inOrder;
  bool create;
  bool keep;
  std::string_view script;
};

/// Does at every call what the next byte of its script says, and nothing when that is at its end.
class ScriptedHandler : public XmlTraverseHandler {
 public:
  ScriptedHandler(XNMessageBase& root, const Choices& choices)
      : XmlTraverseHandler(0, choices.inOrder), root_(root), script_(choices.script) {}

  void beginTraverse(std::string) override { ++open_; }
  void startSubObject(MsgFieldContext& context) override {
    ++open_;
    act(context);
  }
  void visit(MsgFieldContext& context) override { act(context); }
  void endSubObject(MsgFieldContext& context) override {
    act(context);
    --open_;
  }
  void endTraverse(std::string) override { --open_; }
  /// Every start has had its end.
  bool isBalanced() const { return open_ == 0; }

 private:
  void act(MsgFieldContext& context) {
    if (at_ == script_.size()) return;
    switch (static_cast<unsigned char>(script_[at_++]) % 20) {
      case 1:
        return context.replaceValue(-1);
      case 2:
        return context.replaceValue(1u);
      case 3:
        return context.replaceValue(-1L);
      case 4:
        return context.replaceValue(1uL);
      case 5:
        return context.replaceValue(-1LL);
      case 6:
        return context.replaceValue(true);
      case 7:
        return context.replaceValue(0.5F);
      case 8:
        return context.replaceValue(0.5);
      case 9:
        return context.replaceValue(std::string("text"));
      case 10:
        return context.replaceValue(std::u16string(u"text"));
      case 11:
        return context.replaceValue(bstring(std::string("bytes")), false);
      case 12:
        return context.replaceValue(pstring("word", 4));
      case 13:
        return replaceByNew(context);
      case 14:
        return replaceByItself(context);
      case 15:
        return context.clearList();
      case 16:
        return context.EnableField();
      case 17:
        return read(context);
      case 18:
        return replaceOutside();
      case 19:
        return MessageAccess::reset(root_);
      default:
        return;
    }
  }
  static void replaceByNew(MsgFieldContext& context) {
    const std::unique_ptr<XNMessageBase> made(
        context.getField().classRefBytes() == 0
            ? nullptr
            : XNMessageBase::createObjectFromClassID(context.getField().namePointer()));
    context.replaceValue(made.get());
  }
  /// Each time the message may become twice as large, hence a few times only.
  void replaceByItself(MsgFieldContext& context) {
    if (copies_++ < 5) context.replaceValue(context.getMsgObj());
  }
  static void read(MsgFieldContext& context) {
    std::vector<void*> elements;
    context.readListValue(&elements);
  }
  /// Takes a field of the root away, whatever is being walked.
  void replaceOutside() {
    const int fields = root_.getNumberOfFields();
    if (fields != 0)
      MessageAccess::deleteMember(root_, static_cast<short>(at_ % static_cast<unsigned>(fields)));
  }

  XNMessageBase& root_;
  const std::string_view script_;
  std::size_t at_ = 0;
  int copies_ = 0;
  int open_ = 0;
};

/// Does `work`, which must leave the message as it is.
template <class Work>
void unchanged(XNMessageBase& message, Work work) {
  const XNMessageBase before(message);
  const bool equalsItself = before == message;  // fields of some types never do
  work();
  require((before == message) == equalsItself);
}

void walkUnchanged(XNMessageBase& message, const Choices& choices) {
  XmlTraverse walker;  // which is the handler that does nothing
  unchanged(message, [&] { walker.traverse(message, walker, choices.create, choices.keep); });
}

/// A summary in the context, and one that also sees the sub-objects that a walk builds.
void summarize(XNMessageBase& message, const Choices& choices, ZqXMLRenderContext& context) {
  ZqXMLFormatOptions options;
  unchanged(message, [&] {
    require(ZqXMLSummary::getZqSummaryInfo(&message, &context, options) == XN_MSG_OK);
    SummaryTraverse all(&context, 0, choices.inOrder);
    XmlTraverse().traverse(message, all, choices.create, choices.keep);
  });
}

void render(XNMessageBase& message, const Choices& choices) {
  constexpr int kGerman = 1031;
  const ContextFormatOpts options(kGerman, choices.inOrder, choices.create);
  std::ostringstream stream;
  ZqXMLFormatOptions unused;
  require(ZqXMLSummary::getZqSummaryInfo(&message, stream, unused) == XN_MSG_OK);
  DefaultRenderContext text(stream, options);
  HTMLRenderContext outline(options);
  HTMLGuiSummaryRenderContext paragraph(options);
  for (ZqXMLRenderContext* context : std::initializer_list<ZqXMLRenderContext*>{&text, &outline, &paragraph})
    summarize(message, choices, *context);
  std::string out;
  outline.DumpToString(out);
  require(out.ends_with("</div>"));
  paragraph.DumpToString(out);
  require(out.ends_with("</p></div>"));
}

void enableDefaults(XNMessageBase& message, const Choices& choices) {
  EntityTypeHandler handler(0, choices.inOrder);
  XmlTraverse().traverse(message, handler, choices.create, choices.keep);
}

void walkScripted(XNMessageBase& message, const Choices& choices) {
  ScriptedHandler handler(message, choices);
  XmlTraverse().traverse(message, handler, choices.create, choices.keep);
  require(handler.isBalanced());
}

void mergeAll(XNMessageBase& message, const Choices&) {
  const std::unique_ptr<XNMessageBase> empty(XNMessageBase::createObject(message.getTagID()));
  if (empty == nullptr) return;
  require(XmlTraverse::merge(message, *empty));
  require(XmlTraverse::merge(*empty, message));
  require(XmlTraverse::merge(message, message));
}

void fillWithDummies(XNMessageBase& message, const Choices&) {
  XNMessageBase* filled = &message;
  const int result = createXMLObjectWithDummyValues(filled);
  require(result == 0 || result == 1);
}

using Step = void (*)(XNMessageBase& message, const Choices& choices);
constexpr Step kSteps[] = {walkUnchanged, render,       walkScripted,    mergeAll,      enableDefaults,
                           render,        walkScripted, fillWithDummies, walkUnchanged, render};

void run(std::string_view input) {
  if (input.size() < 2) return;
  const auto bits = static_cast<unsigned char>(input[0]);
  const std::size_t scripted = std::min<std::size_t>(static_cast<unsigned char>(input[1]), input.size() - 2);
  const Choices choices{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, input.substr(2, scripted)};
  const std::string_view bytes = input.substr(2 + scripted);
  BinaryBuffer buffer;
  buffer.SetReadBuffer(bytes.data(), bytes.size(), true);
  const std::unique_ptr<XNMessageBase> message(BinarySerializer::unserialize(buffer, nullptr, false));
  if (message == nullptr) return;
  for (const Step step : kSteps) step(*message, choices);
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::EvDebug::setDebugLevel(-1);
  zqxml::run({reinterpret_cast<const char*>(data), size});
  return 0;
}

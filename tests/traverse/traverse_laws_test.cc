// Laws of walking and merging, over random messages.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/random_message.h>
#include <tests/traverse/recording_handler.h>

namespace zqxml {
namespace {

/// Looks at nothing and changes nothing.
struct EmptyHandler : XmlTraverseHandler {
  using XmlTraverseHandler::XmlTraverseHandler;
  void visit(MsgFieldContext&) override {}
};

/// Appends a few elements to every list of objects that it comes to, also while the list is walked.
struct AppendingHandler : XmlTraverseHandler {
  using XmlTraverseHandler::XmlTraverseHandler;
  void visit(MsgFieldContext& context) override { append(context); }
  void startSubObject(MsgFieldContext& context) override {
    ++depth;
    append(context);
  }
  void endSubObject(MsgFieldContext& context) override {
    --depth;
    append(context);
  }
  void append(MsgFieldContext& context) {
    if (left == 0 || context.getField().getType() != FDT_LIST_OBJECT) return;
    --left;
    const std::unique_ptr<XNMessageBase> element(
        XNMessageBase::createObjectFromClassID(context.getField().namePointer()));
    context.replaceValue(element.get());
  }
  int depth = 0;
  int left = 200;
};

RC_GTEST_PROP(WalkLaw, EmptyHandlerChangesNothing, (bool inOrder, bool create)) {
  OpenMessage message = *randomMessages(0);
  const std::string before = dump(message);
  const OpenMessage copy(message);
  const bool equal = copy == message;
  LogCapture capture;  // classes in themselves
  EmptyHandler handler(0, inOrder);
  XmlTraverse().traverse(message, handler, create, false);
  RC_ASSERT(dump(message) == before);
  RC_ASSERT((copy == message) == equal);
}

RC_GTEST_PROP(WalkLaw, HandlerThatReplacesNothingKeepsNothing, (bool inOrder)) {
  OpenMessage message = *randomMessages(0);
  const std::string before = dump(message);
  LogCapture capture;
  EmptyHandler handler(0, inOrder);
  XmlTraverse().traverse(message, handler, true, true);
  RC_ASSERT(dump(message) == before);
}

RC_GTEST_PROP(WalkLaw, ListsMayGrowWhileTheyAreWalked, (bool inOrder, bool create)) {
  OpenMessage message = *randomMessages(0);
  LogCapture capture;
  AppendingHandler handler(0, inOrder);
  XmlTraverse().traverse(message, handler, create, create);
  RC_ASSERT(handler.depth == 0);
  const OpenMessage copy(message);
  RC_ASSERT(!dump(copy).empty());
}

/// Leaves in the message, and in the objects of its object fields, only what merges.
void clearWhatDoesNotMerge(XNMessageBase& message) {
  constexpr FieldTypeSet kUnmerged{FDT_ULONGLONG, FDT_LIST_UINT, FDT_LIST_ULONGLONG,
                                   FDT_LIST_ENUM, FDT_LIST_BOOL, FDT_LIST_BSTRING};
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (field.getType() == FDT_NONE) continue;
    const auto* list = field.getType() == FDT_LIST_OBJECT
                           ? MessageAccess::owned<std::vector<XNMessageBase>>(std::as_const(message), field)
                           : nullptr;
    if (kUnmerged.contains(field.getType()) || kMapTypes.contains(field.getType()) ||
        (list != nullptr && list->empty()))
      MessageAccess::unmark(message, field.getMemNum());
  }
}

RC_GTEST_PROP(MergeLaw, IntoAnEmptyMessageIsACopyOfWhatMerges, ()) {
  OpenMessage message = *randomMessages(kCopyLosses);
  clearWhatDoesNotMerge(message);
  OpenMessage merged(message.getSubsysID(), message.getMessageIndex());
  MessageAccess::wipeBitset(merged);
  RC_ASSERT(XmlTraverse::merge(message, merged));
  RC_ASSERT(dump(merged) == dump(message));
  RC_ASSERT(merged == message);
}

RC_GTEST_PROP(MergeLaw, SourceIsNotChanged, ()) {
  OpenMessage source = *randomMessages(0);
  OpenMessage destination =
      *randomMessagesOf({static_cast<short>(source.getSubsysID()), source.getMessageIndex()}, 0);
  const std::string before = dump(source);
  RC_ASSERT(XmlTraverse::merge(source, destination));
  RC_ASSERT(dump(source) == before);
}

RC_GTEST_PROP(MergeLaw, WithItselfIsTheMergeOfTwoCopies, ()) {
  OpenMessage message = *randomMessages(0);
  OpenMessage source(message), destination(message);
  RC_ASSERT(XmlTraverse::merge(source, destination));
  RC_ASSERT(XmlTraverse::merge(message, message));
  const OpenMessage merged(message);
  RC_ASSERT(dump(merged) == dump(destination));
}

}  // namespace
}  // namespace zqxml

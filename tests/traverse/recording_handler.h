// A visitor that writes down what it is called with, and does what a test asks for.
#pragma once

#include <tests/support/open_message.h>
#include <zqxml/traverse/xml_traverse.h>

#include <functional>
#include <string>
#include <vector>

namespace zqxml {

class RecordingHandler : public XmlTraverseHandler {
 public:
  using Action = std::function<void(MsgFieldContext&)>;

  explicit RecordingHandler(bool inOrder = false, Action onVisit = {})
      : XmlTraverseHandler(0, inOrder), visitAction(std::move(onVisit)) {}

  void beginTraverse(std::string rootName) override { events.push_back("begin " + rootName); }
  void startSubObject(MsgFieldContext& context) override {
    events.push_back("start " + nameOf(context));
    if (startAction) startAction(context);
  }
  void visit(MsgFieldContext& context) override {
    events.push_back((context.isValueSet() ? "set " : "unset ") + nameOf(context));
    if (visitAction) visitAction(context);
  }
  void endSubObject(MsgFieldContext& context) override {
    events.push_back("end " + nameOf(context));
    if (endAction) endAction(context);
  }
  void endTraverse(std::string rootName) override { events.push_back("finish " + rootName); }

  static std::string nameOf(const MsgFieldContext& context) { return context.getField().getName(); }

  std::vector<std::string> events;
  Action startAction;
  Action visitAction;
  Action endAction;
};

/// The handler's events of one walk.
inline std::vector<std::string> eventsOf(XNMessageBase& msg, RecordingHandler handler = RecordingHandler(),
                                         bool create = false, bool keep = false) {
  XmlTraverse().traverse(msg, handler, create, keep);
  return handler.events;
}

/// Does `action` at the fields of this name.
inline RecordingHandler::Action at(std::string name, RecordingHandler::Action action) {
  return [name = std::move(name), action = std::move(action)](MsgFieldContext& context) {
    if (RecordingHandler::nameOf(context) == name) action(context);
  };
}

}  // namespace zqxml

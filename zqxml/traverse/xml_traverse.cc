#include <zqxml/logging/xml_log_context.h>
#include <zqxml/traverse/internal/object_walk.h>
#include <zqxml/traverse/xml_traverse.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_encoder.h>

#include <algorithm>
#include <utility>

namespace zqxml {
namespace {

constexpr char kTraverse[] = "XmlTraverse::traverse";

/// What a walk calls its root: the name of its class behind the first '_', all of it when there is none.
std::string rootNameOf(const _ClassDef* record) {
  const std::string name = record == nullptr || record->getName() == nullptr ? "" : record->getName();
  const std::size_t separator = name.find('_');
  return separator == name.npos ? name : name.substr(separator + 1);
}

/// An empty processing stack for one walk. A handler may start a walk of the same walker inside of it.
class FreshStack {
 public:
  explicit FreshStack(std::vector<std::string_view>& stack)
      : stack_(stack), outer_(std::exchange(stack, {})) {}
  ~FreshStack() { stack_ = std::move(outer_); }
  FreshStack(const FreshStack&) = delete;
  FreshStack& operator=(const FreshStack&) = delete;

 private:
  std::vector<std::string_view>& stack_;
  std::vector<std::string_view> outer_;
};

}  // namespace

void XmlTraverse::visit(MsgFieldContext&) {}

void XmlTraverse::traverse(XNMessageBase& msg, XmlTraverseHandler& traverseHandler, bool create, bool keep) {
  handler = &traverseHandler;
  const _ClassDef* record = XNMessageBase::GetClassDef(&msg);
  if (record == nullptr) return;
  const std::string rootName = rootNameOf(record);
  traverseHandler.beginTraverse(rootName);
  if (traverseHandler.getOrder()) {
    traverseByOrderHelper(msg, record, create, keep, nullptr);
  } else {
    const FreshStack stack(processingStack);
    traverseHelper(msg, record, create, keep, nullptr);
  }
  traverseHandler.endTraverse(rootName);
}

void XmlTraverse::traverse(std::string& xml, XmlTraverseHandler& traverseHandler, bool create, bool keep,
                           ZqXMLContextInfo* context) {
  ZqXMLContextInfo ownContext;
  if (context == nullptr) context = &ownContext;
  context->setPasswordEncType(static_cast<int>(Annotation::PasswordEncryptType::PASS_THROUGH));
  handler = &traverseHandler;
  const std::unique_ptr<XNMessageBase> msg(XMLDecoder(context).unSerialize(xml, context));
  if (context->isErrorSet()) return;
  if (msg != nullptr) {
    const _ClassDef* record = XNMessageBase::GetClassDef(msg.get());
    const std::string rootName = rootNameOf(record);
    traverseHandler.beginTraverse(rootName);
    if (record == nullptr) {
      logError(kTraverse, "Error retrieving metadata for given object");
    } else {
      const FreshStack stack(processingStack);
      traverseHelper(*msg, record, create, keep, nullptr);
    }
    traverseHandler.endTraverse(rootName);
  }
  xml.clear();
  if (msg != nullptr && XMLEncoder().serialize(*msg, xml) != 0)
    logError(kTraverse, "Error serializing object with tagID : [%lu]", msg->getTagID());
}

bool XmlTraverse::traverseHelper(XNMessageBase& msg, const _ClassDef*& classDef, bool create, bool keep,
                                 const FieldDefTraverseInfo* parent) {
  return ObjectWalk<PlainMode>(*this, *handler, create, keep).run(msg, *classDef, parent);
}

bool XmlTraverse::traverseByOrderHelper(XNMessageBase& msg, const _ClassDef*& classDef, bool create,
                                        bool keep, const FieldDefTraverseInfo* parent) {
  return ObjectWalk<OrderMode>(*this, *handler, create, keep).run(msg, *classDef, parent);
}

bool XmlTraverse::existsInProcessingStack(std::string_view className) const {
  return std::find(processingStack.begin(), processingStack.end(), className) != processingStack.end();
}

}  // namespace zqxml

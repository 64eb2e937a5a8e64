#include <zqxml/logging/xml_log_context.h>
#include <zqxml/traverse/internal/object_walk.h>
#include <zqxml/traverse/xml_traverse.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_encoder.h>

#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace zqxml {
namespace {

constexpr char kTraverse[] = "XmlTraverse::traverse";

/// What a walk calls its root: the name of its class behind the first '_', all of it when there is none.
const char* rootNameOf(const _ClassDef* record) {
  const char* name = record == nullptr || record->getName() == nullptr ? "" : record->getName();
  const char* separator = std::strchr(name, '_');
  return separator == nullptr ? name : separator + 1;
}

/// An empty processing stack for one walk. A handler may start a walk of the same walker inside of it.
class FreshStack {
 public:
  explicit FreshStack(const ProcessedClass*& stack) : stack_(stack), outer_(std::exchange(stack, nullptr)) {}
  ~FreshStack() { stack_ = outer_; }
  FreshStack(const FreshStack&) = delete;
  FreshStack& operator=(const FreshStack&) = delete;

 private:
  const ProcessedClass*& stack_;
  const ProcessedClass* outer_;
};

}  // namespace

void XmlTraverse::visit(MsgFieldContext&) {}

void XmlTraverse::traverse(XNMessageBase& msg, XmlTraverseHandler& traverseHandler, bool create, bool keep) {
  handler = &traverseHandler;
  const _ClassDef* record = XNMessageBase::GetClassDef(&msg);
  if (record == nullptr) return;
  const char* rootName = rootNameOf(record);
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
    const char* rootName = rootNameOf(record);
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
  return ObjectWalk<PlainMode>(*this, create, keep).run(msg, *classDef, parent);
}

bool XmlTraverse::traverseByOrderHelper(XNMessageBase& msg, const _ClassDef*& classDef, bool create,
                                        bool keep, const FieldDefTraverseInfo* parent) {
  return ObjectWalk<OrderMode>(*this, create, keep).run(msg, *classDef, parent);
}

bool XmlTraverse::existsInProcessingStack(const char* className) const {
  const std::string_view name = className == nullptr ? "" : className;
  for (const ProcessedClass* entry = processingStack; entry != nullptr; entry = entry->outer)
    if (name == (entry->name == nullptr ? "" : entry->name)) return true;
  return false;
}

}  // namespace zqxml

#include <zqxml/logging/dummy_objects.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/traverse/msg_field_context.h>

#include <memory>

namespace zqxml {
namespace {

constexpr int kRounds = 5;
/// No class nests so deep but one that contains itself; five elements at each level would be no sample
/// either.
constexpr int kDeepest = 100;

int fill(XNMessageBase* msg, int depth);

/// Fills one field; 1 when something below it cannot be filled.
struct FieldFiller {
  MsgFieldContext& context;
  int depth;

  template <class E>
  int operator()(InPlace<E>) const {
    return offer(1, true);
  }
  int operator()(Owned<element::BStr>) const { return offer(1, true); }
  template <element::Integer E>
  int operator()(List<E>) const {
    return context.getField().getType() == FDT_LIST_ENUM ? 0 : offer(kRounds, 0);
  }
  template <element::Floating E>
  int operator()(List<E>) const {
    return offer(kRounds, 0.0F);
  }
  int operator()(List<element::Obj>) const {
    for (int round = 0; round < kRounds; ++round) {
      const std::unique_ptr<XNMessageBase> element = build();
      if (element == nullptr) continue;
      if (fill(element.get(), depth + 1) != 0) return 1;
      context.replaceValue(element.get());
    }
    return 0;
  }
  int operator()(Object) const {
    const std::unique_ptr<XNMessageBase> object = build();
    if (object == nullptr) return 0;
    // QUIRK: the message gets its copy before the object is filled, so that it has an empty one; samples have
    // always ended here.
    context.replaceValue(object.get());
    return fill(object.get(), depth + 1);
  }
  template <class Storage>
  int operator()(Storage) const {
    return 0;
  }

 private:
  template <class Value>
  int offer(int times, Value value) const {
    for (int i = 0; i < times; ++i) context.replaceValue(value);
    return 0;
  }
  std::unique_ptr<XNMessageBase> build() const {
    return std::unique_ptr<XNMessageBase>(
        XNMessageBase::createObjectFromClassID(context.getField().namePointer()));
  }
};

int fill(XNMessageBase* msg, int depth) {
  const _ClassDef* record = XNMessageBase::GetClassDef(msg);
  if (record == nullptr) return 1;
  if (depth > kDeepest) {
    logError("recurseAndFillDummyValues", "Message [%s] nests more than [%d] levels deep", msg->getTagName(),
             kDeepest);
    return 1;
  }
  for (const FieldDef& field : *record) {
    MsgFieldContext context(field, msg);
    if (visitStorage(field.getType(), FieldFiller{context, depth}) != 0) return 1;
  }
  return 0;
}

}  // namespace

int createXMLObjectWithDummyValues(XNMessageBase*& msg) {
  const int result = recurseAndFillDummyValues(msg);
  if (result == 0) return 0;
  logError("createXMLObjectWithDummyValues", "recurseAndFillDummyValues() failed with Return Code[%d]",
           result);
  return 1;
}

int recurseAndFillDummyValues(XNMessageBase* msg) {
  return fill(msg, 1);
}

}  // namespace zqxml

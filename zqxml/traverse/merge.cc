// XmlTraverse::merge: the set fields of one message on top of another's.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/traverse/xml_traverse.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

// QUIRK: these are passed over: type 6 passes for a list, 18 and 30 do not, and the others are left out of
// the lists that merge. Callers rely on their own values surviving.
constexpr FieldTypeSet kNotMerged{FDT_ULONGLONG, FDT_LIST_UINT, FDT_LIST_ULONGLONG,
                                  FDT_LIST_ENUM, FDT_LIST_BOOL, FDT_LIST_BSTRING};

std::unique_ptr<XNMessageBase> copyOf(const XNMessageBase& object) {
  try {
    return std::make_unique<XNMessageBase>(object);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

/// Appends the elements of `from`, which may be `to` itself.
template <class Value>
void append(const std::vector<Value>& from, std::vector<Value>& to) {
  const std::size_t count = from.size();
  const std::size_t needed = to.size() + count;
  if (to.capacity() < needed) to.reserve(std::max(needed, 2 * to.capacity()));
  for (std::size_t i = 0; i < count; ++i) to.push_back(from[i]);
}

/// Merges one field that is set in the source.
struct FieldMerger {
  XNMessageBase& from;
  XNMessageBase& to;
  const FieldDef& field;

  template <class E>
  void operator()(Scalar<E>) const {
    MessageAccess::setInteger(to, field, MessageAccess::slot(std::as_const(from), field));
  }
  template <class E>
  void operator()(InPlace<E>) const {
    using Text = typename E::Value;
    MessageAccess::inPlace<Text>(to, field) = MessageAccess::inPlace<Text>(from, field);
    MessageAccess::mark(to, field.getMemNum());
  }
  // Of a password the text as it is stored, and the type that it is stored in.
  template <class E>
  void operator()(Owned<E>) const {
    using Text = typename E::Value;
    if (const Text* text = MessageAccess::owned<Text>(std::as_const(from), field))
      MessageAccess::make<Text>(to, field, true) = *text;
  }
  template <class E>
  void operator()(List<E>) const {
    using Elements = typename List<E>::Value;
    const Elements* elements = MessageAccess::owned<Elements>(std::as_const(from), field);
    const bool isEmpty = elements == nullptr || elements->empty();
    // Objects are handed over one by one; other lists as a whole, even when there is nothing in them.
    if (isEmpty && std::is_same_v<E, element::Obj>) return;
    Elements& target = MessageAccess::make<Elements>(to, field, true);
    if (!isEmpty) append(*elements, target);
  }
  void operator()(Object) const {
    XNMessageBase* source = MessageAccess::owned<XNMessageBase>(from, field);
    if (source == nullptr) return;
    XNMessageBase*& target = MessageAccess::owned<XNMessageBase>(to, field);
    if (target != nullptr && MessageAccess::isSet(to, field.getMemNum())) {
      XmlTraverse::merge(*source, *target);  // objects of two classes stay as they are
      return;
    }
    std::unique_ptr<XNMessageBase> copy = copyOf(*source);
    if (copy == nullptr) return;
    const std::unique_ptr<XNMessageBase> old(std::exchange(target, copy.release()));
    MessageAccess::mark(to, field.getMemNum());
  }
  // QUIRK: maps are not merged.
  template <class Storage>
  void operator()(Storage) const {}
};

}  // namespace

bool XmlTraverse::merge(XNMessageBase& source, XNMessageBase& destination) {
  const _ClassDef* record = MessageAccess::classDef(source);
  if (record == nullptr || record != MessageAccess::classDef(destination)) return false;
  logDebug("ZqXmlMessageProcessor::merge", 10, "Merging Objects [%ld] and [%ld]", source.getTagID(),
           destination.getTagID());
  for (const FieldDef& field : *record) {
    if (field.getFieldHashId() == 0 || kNotMerged.contains(field.getType()) ||
        !MessageAccess::isSet(source, field.getMemNum()))
      continue;
    visitStorage(field.getType(), FieldMerger{source, destination, field});
  }
  return true;
}

}  // namespace zqxml

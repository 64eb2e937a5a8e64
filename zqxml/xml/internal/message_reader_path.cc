#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/format.h>
#include <zqxml/xml/internal/list_growth.h>
#include <zqxml/xml/internal/message_reader_path.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

using Elements = std::vector<XNMessageBase>;

}  // namespace

void ObjectPath::finish() {
  while (levels_.size() > 1) discard(leave());
}

void ObjectPath::openRoot(XNMessageBase& root) {
  enter({.object = &root, .role = PathRole::kRoot});
}

bool ObjectPath::openMember(const FieldDef& field) {
  checkDepth();
  XNMessageBase* object = MessageAccess::owned<XNMessageBase>(current(), field);
  const bool loose = object == nullptr;
  if (loose) object = XNMessageBase::createObjectFromClassID(field.namePointer());
  if (object == nullptr) return false;
  MessageAccess::wipeBitset(*object);
  enter({.object = object, .loose = loose});
  return true;
}

bool ObjectPath::openElement(const FieldDef& field, std::size_t alike) {
  checkDepth();
  const ClassRef ref = ClassRef::read(field.namePointer());
  if (ref.subsystem >= kSubsystemCount)
    return XNMessageBase::createObjectFromClassID(field.namePointer()) != nullptr;  // logs, gives null
  Elements*& elements = MessageAccess::owned<Elements>(current(), field);
  const bool madeVector = elements == nullptr;
  if (madeVector) elements = new Elements;
  growFor(*elements, alike);
  XNMessageBase& element = elements->emplace_back();
  enter({.object = &element, .list = &field, .madeVector = madeVector});
  MessageAccess::initialize(element, ref);
  MessageAccess::wipeBitset(element);
  return true;
}

bool ObjectPath::openSide(const char* classRef, PathRole side, std::uint64_t entry) {
  checkDepth();
  XNMessageBase* object = XNMessageBase::createObjectFromClassID(classRef);
  if (object == nullptr) return false;
  MessageAccess::wipeBitset(*object);
  enter({.object = object, .entry = entry, .role = side, .loose = true});
  return true;
}

void ObjectPath::closeAsMember(const FieldDef& field) {
  const Level level = leave();
  XNMessageBase& owner = current();
  if (MessageAccess::isSet(owner, field.getMemNum())) return discard(level);
  XNMessageBase*& slot = MessageAccess::owned<XNMessageBase>(owner, field);
  if (slot != level.object) {
    std::unique_ptr<XNMessageBase> object = detach(level);
    if (object == nullptr) object = std::make_unique<XNMessageBase>(*level.object);
    delete std::exchange(slot, object.release());
  }
  MessageAccess::mark(owner, field.getMemNum());
}

void ObjectPath::closeAsElement(const FieldDef& field) {
  const Level level = leave();
  XNMessageBase& owner = current();
  if (level.list == &field) return MessageAccess::mark(owner, field.getMemNum());
  const std::unique_ptr<XNMessageBase> object = detach(level);
  Elements& elements = MessageAccess::make<Elements>(owner, field, true);
  if (object != nullptr)
    elements.push_back(std::move(*object));
  else
    elements.push_back(*level.object);
}

std::unique_ptr<XNMessageBase> ObjectPath::closeSide() {
  return detach(leave());
}

void ObjectPath::checkDepth() {
  if (maxLevels_ != 0 && levels_.size() >= maxLevels_)
    throw std::length_error(formatText("Objects are nested in more than [%zu] levels", maxLevels_));
  // Room for the level that follows, so that no object is lost for want of it.
  levels_.reserve(levels_.size() + 1);
}

void ObjectPath::enter(const Level& level) {
  levels_.push_back(level);
}

ObjectPath::Level ObjectPath::leave() {
  const Level level = levels_.back();
  levels_.pop_back();
  return level;
}

std::unique_ptr<XNMessageBase> ObjectPath::detach(const Level& level) {
  if (level.loose) return std::unique_ptr<XNMessageBase>(level.object);
  if (level.list == nullptr) return nullptr;
  auto object = std::make_unique<XNMessageBase>(std::move(*level.object));
  dropLastElement(level);
  return object;
}

void ObjectPath::discard(const Level& level) {
  if (level.loose)
    delete level.object;
  else if (level.list != nullptr)
    dropLastElement(level);
}

void ObjectPath::dropLastElement(const Level& level) {
  Elements*& elements = MessageAccess::owned<Elements>(current(), *level.list);
  elements->pop_back();
  if (level.madeVector) delete std::exchange(elements, nullptr);
}

}  // namespace zqxml

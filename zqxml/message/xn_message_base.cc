// Building, moving and destroying messages.
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/ended_messages.h>
#include <zqxml/message/internal/kept_texts.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/object_views.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/exception.h>

#include <bit>
#include <new>

namespace zqxml {

constinit thread_local std::uint64_t endedMessages = 0;

static_assert(BuiltContent::kSlots == XNMessageBuffer::kMaxInlineSlots);

namespace {

/// Constructs what exists for the whole life of an object; every other slot stays zero.
struct ContentBuilder {
  XNMessageBase& message;
  const FieldDef& field;

  template <class E>
  void operator()(InPlace<E>) const {
    ::new (&MessageAccess::slot(message, field)) typename E::Value();
  }
  template <class E>
  void operator()(Owned<E>) const {
    MessageAccess::owned<typename E::Value>(message, field) = new typename E::Value();
  }
  template <class Storage>
  void operator()(Storage) const {}
};

/// Ends a field's content for good; the slot is not used again.
struct ContentDestroyer {
  XNMessageBase& message;
  const FieldDef& field;

  void operator()(Nothing) const {}
  template <class E>
  void operator()(Scalar<E>) const {}
  template <class E>
  void operator()(InPlace<E>) const {
    std::destroy_at(&MessageAccess::inPlace<typename E::Value>(message, field));
  }
  /// From the last one: the first ones are still in the cache when the next message takes their place.
  void operator()(List<element::Obj>) const {
    auto* objects = MessageAccess::owned<std::vector<XNMessageBase>>(message, field);
    if (objects == nullptr) return;
    while (!objects->empty()) objects->pop_back();
    delete objects;
  }
  template <class Storage>
  void operator()(Storage) const {
    delete MessageAccess::owned<typename Storage::Value>(message, field);
  }
};

/// Moves an in-place string out of a store whose bytes were copied; all other content moved with the bytes.
struct InPlaceMover {
  XNMessageBase& to;
  std::int64_t* from;
  const FieldDef& field;

  template <class E>
  void operator()(InPlace<E>) const {
    using Text = typename E::Value;
    Text& source = *reinterpret_cast<Text*>(from);
    ::new (&MessageAccess::slot(to, field)) Text(std::move(source));
    std::destroy_at(&source);
  }
  template <class Storage>
  void operator()(Storage) const {}
};

constexpr FieldTypeSet kInPlaceTypes =
    FieldTypeSet::ofStorage(Overloaded{[]<class E>(InPlace<E>) { return true; }, [](auto) { return false; }});

/// How many slots of a class that has more than fit lie inside the object, so that no string is split between
/// inside and outside.
short inlineSlotCount(const _ClassDef& classDef) {
  constexpr short kMax = XNMessageBuffer::kMaxInlineSlots;
  const FieldDef* last = nullptr;
  for (const FieldDef& field : classDef) {
    if (field.getIndex() == kMax) return kMax;
    if (field.getIndex() > kMax) break;
    last = &field;
  }
  // A trailing self record has index 0, so that a class may end up with no inline slot at all: correct, if
  // not compact.
  return last == nullptr ? short{0} : last->getIndex();
}

}  // namespace

XNMessageBase::XNMessageBase() = default;

XNMessageBase::XNMessageBase(int msgSysIndex, int msgIndex) : XNMessageBase() {
  initialize(msgSysIndex, msgIndex);
}

XNMessageBase::XNMessageBase(int msgSysIndex, int msgIndex, std::int64_t* block, int blockSize)
    : XNMessageBase() {
  if (block == nullptr)
    initialize(msgSysIndex, msgIndex);
  else
    initializeInBlock(msgSysIndex, msgIndex, block, blockSize);
}

XNMessageBase::XNMessageBase(XNMessageBase&& other) noexcept
    : tagId_(other.tagId_),
      cachedSize_(other.cachedSize_),
      classDef_(other.classDef_),
      texts_(std::move(other.texts_)),
      msgIndex_(other.msgIndex_),
      msgSysIndex_(other.msgSysIndex_),
      serialized_(other.serialized_),
      movedFrom_(other.movedFrom_),
      buffer_(std::move(other.buffer_)) {
  takeInlineStrings(other);
  other.initToNULL();
  other.movedFrom_ = true;
}

void XNMessageBase::initToNULL() {
  ++endedMessages;
  tagId_ = 0;
  classDef_ = nullptr;
  texts_.reset();
  cachedSize_ = 0;
  msgIndex_ = 0;
  msgSysIndex_ = 0;
  serialized_ = false;
  movedFrom_ = false;
}

template <class Handler>
void XNMessageBase::forEachFirstString(BuiltContent content, Handler handle) {
  if (content.strings() == 0) return;
  std::int64_t* const slots =
      &buffer_[0];  // those before BuiltContent::kSlots are together, wherever they are
  for (std::uint32_t strings = content.strings(); strings != 0; strings &= strings - 1)
    handle(slots[std::countr_zero(strings)]);
}

void XNMessageBase::initialize(int msgSysIndex, int msgIndex) {
  const _ClassDef* record = catalogue::classAt(msgSysIndex, msgIndex);
  if (record == nullptr) return;
  initializeBuffer(*record);
  initializeContent(*record, msgSysIndex, msgIndex);
}

inline void XNMessageBase::initializeBuffer(const _ClassDef& record) {
  const short slots = record.getNumberOfElements();
  const short fields = record.getNumberOfFields();
  if (slots <= XNMessageBuffer::kMaxInlineSlots)
    buffer_.init(slots, fields);
  else
    buffer_.init(inlineSlotCount(record), slots, fields);
}

void XNMessageBase::initializeInBlock(int msgSysIndex, int msgIndex, std::int64_t* block, int blockSize) {
  const _ClassDef* record = catalogue::classAt(msgSysIndex, msgIndex);
  if (record == nullptr) return;
  const short slots = record->getNumberOfElements();
  const short fields = record->getNumberOfFields();
  // QUIRK: the test does not scale the slots to bytes; generated classes were built against it.
  if (blockSize < slots + fields / 8 + 1) {
    static constexpr const char* kText = "Size of buffer provided is not sufficient";
    logError("XNMessageBase::initialize", "[%s]", kText);
    throw ZqException("XNMessageBase::initialize", kText, "", -1, -1);
  }
  const std::size_t needed =
      static_cast<std::size_t>(slots) * sizeof *block + XNMessageBuffer::bitBytes(fields);
  if (static_cast<std::size_t>(blockSize) < needed)
    initializeBuffer(*record);
  else
    buffer_.init(block, blockSize, slots, fields);
  initializeContent(*record, msgSysIndex, msgIndex);
}

inline void XNMessageBase::initializeContent(const _ClassDef& record, int msgSysIndex, int msgIndex) {
  msgIndex_ = msgIndex;
  msgSysIndex_ = static_cast<std::int16_t>(msgSysIndex);
  tagId_ = makeTagId(msgSysIndex, record.getClassId());
  classDef_ = &record;
  const BuiltContent content = record.builtContent();
  forEachFirstString(content, [](std::int64_t& slot) { ::new (&slot) std::string(); });
  if (!content.nothingElseBuilt() || record.defaultsStart() != -1 || gSubsystemTable[msgSysIndex].oldWay)
    initializeRest();
}

[[gnu::noinline]] void XNMessageBase::initializeRest() {
  const BuiltContent content = classDef_->builtContent();
  if (!content.nothingElseBuilt()) {
    for (const FieldDef& field : *classDef_) {
      if (kAlwaysBuiltTypes.contains(field.getType()) && !content.isAmongStrings(field))
        visitStorage(field.getType(), ContentBuilder{*this, field});
    }
  }
  setDefaults(-1);
  if (gSubsystemTable[msgSysIndex_].oldWay) {
    constructSubObjects();
    setEveryPrimitiveBitset(true);
  }
}

void XNMessageBase::constructSubObjects() {
  for (const FieldDef& field : *classDef_) {
    if (field.getFieldHashId() == 0) continue;
    visitStorage(field.getType(),
                 Overloaded{[&]<class E>(List<E> list) {
                              MessageAccess::make<typename decltype(list)::Value>(*this, field, true);
                            },
                            [&](Object) {
                              XNMessageBase* built =
                                  createFromClassIDIfNotProcessingInstructionInfo(field.namePointer());
                              if (built == nullptr) return;
                              MessageAccess::owned<XNMessageBase>(*this, field) = built;
                              MessageAccess::mark(*this, field.getMemNum());
                            },
                            [](auto) {}});
  }
}

void XNMessageBase::takeInlineStrings(XNMessageBase& other) noexcept {
  if (classDef_ == nullptr || buffer_.usesCallerBlock()) return;
  for (const FieldDef& field : *classDef_) {
    if (kInPlaceTypes.contains(field.getType()) && field.getIndex() < buffer_.inlineCount())
      visitStorage(field.getType(),
                   InPlaceMover{*this, other.buffer_.inlineSlots() + field.getIndex(), field});
  }
}

inline void XNMessageBase::destroyFields() noexcept {
  if (classDef_ == nullptr) return;
  const BuiltContent content = classDef_->builtContent();
  forEachFirstString(content,
                     [](std::int64_t& slot) { std::destroy_at(reinterpret_cast<std::string*>(&slot)); });
  if (!content.nothingElseOwned()) destroyOtherFields();
  classDef_ = nullptr;
}

XNMessageBase::~XNMessageBase() {
  ++endedMessages;
  destroyFields();
}

[[gnu::noinline]] void XNMessageBase::destroyOtherFields() noexcept {
  const BuiltContent content = classDef_->builtContent();
  for (const FieldDef& field : *classDef_) {
    if (kOwningTypes.contains(field.getType()) && !content.isAmongStrings(field))
      visitStorage(field.getType(), ContentDestroyer{*this, field});
  }
}

XNMessageBase& typed::append(std::vector<XNMessageBase>& list, int subsystem, int classIndex) {
  XNMessageBase& added = list.emplace_back();
  try {
    MessageAccess::initialize(added, subsystem, classIndex);
  } catch (...) {
    list.pop_back();
    throw;
  }
  return added;
}

}  // namespace zqxml

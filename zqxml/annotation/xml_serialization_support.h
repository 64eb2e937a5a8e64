// Serialization listeners: outside code that observes or vetoes fields while a message is written to XML.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/catalogue/result.h>
#include <zqxml/platform/export.h>

#include <cstdint>

namespace zqxml {

class XNMessageBase;

/// What a listener receives: the field about to be written (a copy), its object (borrowed) and the listeners'
/// verdict.
struct ListenerCbData {
  FieldDef field;                ///< about to be written
  XNMessageBase* msg = nullptr;  ///< the object that it is in
  std::uint32_t flags = 0;       ///< XMLCB_SKIP_PROCESSING leaves the field out
};

/// Stored in ListenerCbData::flags it leaves the field out; any other value lets it be written.
inline constexpr std::uint32_t XMLCB_SKIP_PROCESSING = 1;

/// A listener. Its result is ignored; the verdict goes into ListenerCbData::flags. It may change the fields
/// of `msg`, the one that is shown among them, write messages of its own, and add and remove listeners. The
/// objects around `msg` it has to leave alone, and it may neither end nor move one that is being written.
/// What it throws ends the call that writes (XN_MSG_FAILED).
using ListenerFunction = bool (*)(ListenerCbData&);

/// Registers listeners, which see each field that is written to XML. Face of the one process-wide registry:
/// every instance (any encoder or serializer too) acts on the same lists. Threads: the registry has no lock;
/// register before threads start writing. A listener runs on the writer's thread.
class ZQXML_EXPORT XMLSerializationSupport {
 public:
  /// XMLSerializer::initialize.
  static eXNMsgRet initialize();

  /// Appends `fn` to the list of `id` (tag of a message class or of an annotation class); null does nothing.
  /// A function registered twice runs twice.
  void addListener(std::uint32_t id, ListenerFunction fn);
  /// Removes the first entry equal to `fn`; false when id or function is not there. The id stays, even with
  /// an empty list.
  bool removeListener(std::uint32_t id, ListenerFunction fn);
  /// Calls the listeners of `id` in registration order, on a copy of the list. `flags` is not reset in
  /// between.
  void ProcessCallBack(std::uint32_t id, ListenerCbData& data);
  /// True once any id is known, even with an empty list.
  static bool hasListeners();
};

/// Stock listener: of a GenericEntity only `_type_` and its identifying fields are written, everything else
/// is hidden.
ZQXML_EXPORT bool hideFields(ListenerCbData& data);

}  // namespace zqxml

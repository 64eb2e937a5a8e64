#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/xml/xml_serializer.h>

#include <algorithm>
#include <map>
#include <vector>

namespace zqxml {
namespace {

using Listeners = std::vector<ListenerFunction>;

/// The registry of the process; never destroyed, so that code which runs at the very end can still write.
std::map<std::uint32_t, Listeners>& registry() {
  static auto& listeners = *new std::map<std::uint32_t, Listeners>;
  return listeners;
}

}  // namespace

eXNMsgRet XMLSerializationSupport::initialize() {
  return XMLSerializer::initialize();
}

void XMLSerializationSupport::addListener(std::uint32_t id, ListenerFunction fn) {
  if (fn != nullptr) registry()[id].push_back(fn);
}

bool XMLSerializationSupport::removeListener(std::uint32_t id, ListenerFunction fn) {
  const auto found = registry().find(id);
  if (found == registry().end()) return false;
  Listeners& listeners = found->second;
  const auto entry = std::find(listeners.begin(), listeners.end(), fn);
  if (entry == listeners.end()) return false;
  // QUIRK: an id whose list has become empty stays, and writers go on asking for it.
  listeners.erase(entry);
  return true;
}

void XMLSerializationSupport::ProcessCallBack(std::uint32_t id, ListenerCbData& data) {
  const auto found = registry().find(id);
  if (found == registry().end()) return;
  // A copy: a listener may add and remove listeners.
  const Listeners listeners = found->second;
  for (const ListenerFunction listener : listeners) listener(data);
}

bool XMLSerializationSupport::hasListeners() {
  return !registry().empty();
}

}  // namespace zqxml

// Any paths and values into a message, and what is told of it afterwards.
//
// The input is lines: SUBSYSTEM_CLASS first, then PATH=VALUE, or #NUMBER=VALUE for an id of any kind, with
// the escapes of zqmsg xpath.

#include <zqxml/catalogue/lookup.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/traverse/xml_meta_data.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqmsg/path_line.h"

namespace zqxml {
namespace {

/// Ends the run where one answer contradicts another.
void require(bool holds) {
  if (!holds) std::abort();
}

std::string_view takeLine(std::string_view& input) {
  const std::string_view line = input.substr(0, input.find('\n'));
  input.remove_prefix(line.size() == input.size() ? input.size() : line.size() + 1);
  return line;
}

std::unique_ptr<XNMessageBase> newMessage(std::string_view name) {
  const std::size_t split = name.find('_');
  if (split == std::string_view::npos) return nullptr;
  short subsystem = 0;
  int index = 0;
  if (!catalogue::subsystemFromName(std::string(name.substr(0, split)).c_str(), subsystem) ||
      !catalogue::classIndexFromName(std::string(name.substr(split + 1)).c_str(), subsystem, index))
    return nullptr;
  return std::unique_ptr<XNMessageBase>(XNMessageBase::createObjectFromIndices(subsystem, index));
}

std::vector<XPathMetaData> readItems(std::string_view lines) {
  std::vector<XPathMetaData> items;
  while (!lines.empty()) {
    const std::optional<tool::PathLine> line = tool::readPathLine(takeLine(lines));
    if (!line) continue;
    XPathMetaData item;
    item.id = line->path.starts_with('#') ? parseInt32(line->path.substr(1)) : xpathId(line->path);
    item.value = line->value;
    items.push_back(item);
  }
  return items;
}

void checkTold(XNMessageBase& message, short subsystem) {
  std::vector<XPathMetaData> told;
  if (XMLMetaData().getXpathMetaData(&message, told, true) != XML_SUBSYSTEM_OK) return;
  for (const XPathMetaData& item : told) {
    require(item.id == xpathId(item.xpath));
    require(XMLMetaData::doesXPathIDExist(subsystem, item.id));
    std::string path;
    require(XMLMetaData::getXPathFromID(subsystem, item.id, path) && path == item.xpath);
    // The line form brings the value back.
    const std::string line = tool::pathLine(item.xpath, item.value);
    const std::optional<tool::PathLine> read =
        tool::readPathLine(std::string_view(line).substr(0, line.size() - 1));
    require(read && read->path == item.xpath && read->value == item.value);
  }
}

void run(std::string_view input) {
  const std::unique_ptr<XNMessageBase> message = newMessage(takeLine(input));
  if (message == nullptr) return;
  std::vector<XPathMetaData> items = readItems(input);
  XNMessageBase* target = message.get();
  const auto own = static_cast<short>(message->getSubsysID());
  for (const short subsystem : {own, short{12}, short{22}}) {
    XMLMetaData().setXpathMetaData(target, items, subsystem);
    require(target == message.get());
  }
  checkTold(*message, own);
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::EvDebug::setDebugLevel(-1);
  zqxml::run({reinterpret_cast<const char*>(data), size});
  return 0;
}

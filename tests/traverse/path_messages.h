// What the tests of XMLMetaData share.
#pragma once

#include <gmock/gmock.h>
#include <zqxml/traverse/xml_meta_data.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/log_capture.h"
#include "tests/support/open_message.h"

namespace zqxml {

/// Opens the private operations, and the table, of XMLMetaData.
struct XMLMetaDataTestAccess {
  static int appType(char type) { return XMLMetaData::getAppType(type); }
  static bool hasXPath(const FieldDef& field) { return XMLMetaData::hasXPath(field); }
  static int index(const XPathIDHelper* helper, int count, int id) {
    return XMLMetaData::getXPathFieldsInfoIndex(helper, count, id);
  }
  static bool set(XNMessageBase* msg, const std::vector<short>& path, const std::string& value,
                  int level = 0) {
    return XMLMetaData::setXpathMetaDataHelper(msg, path.data(), level, static_cast<int>(path.size()), value);
  }
  static void useTable(XMLMetaData& paths, const XPathData& data) { paths.data_ = &data; }
};

inline constexpr short kIda = 22;
inline constexpr short kTMMsg = 12;

inline const char* const kGet = "XMLMetaData::getXpathMetaData";
inline const char* const kGetHelper = "XMLMetaData::getXPathMetaDataHelper";
inline const char* const kSet = "XMLMetaData::setXpathMetaData";
inline const char* const kSetHelper = "XMLMetaData::setXpathMetaDataHelper";
inline const char* const kReconstruction = "Error while reconstruction of object from XPathID";

using PathValue = std::pair<std::string, std::string>;

/// An item as a caller makes it: by the path's id alone.
inline XPathMetaData item(const std::string& path, const std::string& value) {
  XPathMetaData made;
  made.id = xpathId(path);
  made.value = value;
  return made;
}

inline XMLSubsystemStatus setPaths(XNMessageBase& message, const std::vector<PathValue>& values) {
  std::vector<XPathMetaData> items;
  for (const auto& [path, value] : values) items.push_back(item(path, value));
  XNMessageBase* target = &message;
  return XMLMetaData().setXpathMetaData(target, items, static_cast<short>(message.getSubsysID()));
}

inline std::vector<XPathMetaData> itemsOf(XNMessageBase& message, bool all = true) {
  std::vector<XPathMetaData> items;
  EXPECT_EQ(XMLMetaData().getXpathMetaData(&message, items, all), XML_SUBSYSTEM_OK);
  return items;
}

inline std::vector<PathValue> pathsOf(XNMessageBase& message, bool all = true) {
  std::vector<PathValue> values;
  for (const XPathMetaData& made : itemsOf(message, all)) values.emplace_back(made.xpath, made.value);
  return values;
}

/// The object of a field, made and marked.
inline XNMessageBase& objectOf(XNMessageBase& message, std::string_view name) {
  const FieldDef& field = fieldOf(message, name);
  XNMessageBase*& slot = MessageAccess::owned<XNMessageBase>(message, field);
  if (slot == nullptr) slot = XNMessageBase::createObjectFromClassID(field.namePointer());
  setBit(message, name);
  return *slot;
}

}  // namespace zqxml

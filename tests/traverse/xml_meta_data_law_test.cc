// A law over random messages: what is told of one can be set in another, and is then told of that one.
#include <rapidcheck/gtest.h>
#include <zqxml/platform/base64.h>

#include <map>

#include "tests/support/random_message.h"
#include "tests/traverse/path_messages.h"

namespace zqxml {
namespace {

/// Values that the list does not bring back: six digits of a float travel, byte strings end at a NUL, and
/// numbers wider than their type are no numbers of it.
constexpr Losses kPathLosses =
    kHashlessFields | kUnstored | kHighHalves | kDigits | kLoneSurrogates | kNulInBytes | kNegativeEnums;

constexpr FieldTypeSet kNotSet{FDT_ULONGLONG, FDT_LIST_BOOL};
constexpr FieldTypeSet kBase64{FDT_BSTRING, FDT_PSTRING};

std::vector<ClassIndices> roots() {
  return {classNamed("TMMsg_TaskOptions"), classNamed("ZqEntities_EntitySelection"),
          classNamed("Ida_ScanRequest"), classNamed("Ida_PathRoot"), classNamed("databrowse_BrowseItem")};
}

unsigned typeOf(ClassIndices root, int id) {
  const XPathData& data = *XNMessageBase::getXPathData(root.subsystem);
  const XPathFieldsInfo& way = data.fieldsInfo[catalogue::xpathIndexOfId(data.idHelper, data.count, id)];
  const _ClassDef* record = &root.record();
  for (int level = 0; level + 1 < way.depth; ++level)
    record = catalogue::classOfField(record->getFields()[way.fieldPath[level]]);
  return record->getFields()[way.fieldPath[way.depth - 1]].getType();
}

using ValuesById = std::map<int, std::vector<std::string>>;

ValuesById valuesById(const std::vector<XPathMetaData>& items) {
  ValuesById values;
  for (const XPathMetaData& made : items) values[made.id].push_back(made.value);
  return values;
}

RC_GTEST_PROP(XMLMetaDataLaw, GetThenSetGivesBackEveryValueWithAPath, ()) {
  const std::vector<ClassIndices> all = roots();
  const ClassIndices root = all[*rc::gen::inRange<std::size_t>(0, all.size())];
  OpenMessage message = *randomMessagesOf(root, kPathLosses);
  const std::vector<XPathMetaData> told = itemsOf(message);
  RC_TAG(told.empty() ? "nothing told" : "values told");

  std::vector<XPathMetaData> items;
  for (XPathMetaData made : told) {
    RC_ASSERT(made.id == xpathId(made.xpath));
    const unsigned type = typeOf(root, made.id);
    if (kNotSet.contains(type)) continue;
    if (kBase64.contains(type)) RC_ASSERT(UlBase64::Decode(made.value, made.value));
    items.push_back(made);
  }
  OpenMessage again(root.subsystem, root.index);
  XNMessageBase* target = &again;
  RC_ASSERT(XMLMetaData().setXpathMetaData(target, items, root.subsystem) == XML_SUBSYSTEM_OK);

  // Objects that were made for the values may have defaults besides.
  ValuesById after = valuesById(itemsOf(again));
  for (const auto& [id, values] : valuesById(told)) {
    if (kNotSet.contains(typeOf(root, id))) continue;
    RC_ASSERT(after[id] == values);
  }
}

}  // namespace
}  // namespace zqxml

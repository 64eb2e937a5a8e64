// What holds for every table of paths.
#pragma once

#include <gtest/gtest.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/xpath_data.h>

#include <string>
#include <vector>

namespace zqxml {

/// The path that the field numbers spell from the class on; "" when they do not lead to a value.
inline std::string spelledPath(const _ClassDef* record, const XPathFieldsInfo& way) {
  std::string text;
  for (int level = 0; level < way.depth; ++level) {
    const short number = way.fieldPath[level];
    if (record == nullptr || number < 0 || number >= record->getNumberOfFields()) return {};
    const FieldDef& field = record->getFields()[number];
    if (level + 1 == way.depth)
      return text + (kXPathScalarTypes.contains(field.getType()) ? "@" : "") + field.getName();
    if (field.getType() != FDT_OBJECT && field.getType() != FDT_LIST_OBJECT) return {};
    text += std::string(field.getName()) + "[1]/";
    record = catalogue::classOfField(field);
  }
  return {};
}

/// Expects the orders, the ids, the spare entries, and that every path is found by its text and by its id,
/// and leads to its field from some class of the subsystem.
inline void expectWellFormed(const XPathData& data) {
  SCOPED_TRACE(data.subsystem);
  const SubsystemDef& subsystem = gSubsystemTable[data.subsystem];
  for (int i = 0; i < data.count; ++i) {
    const XPathEntry& entry = data.paths[i];
    ASSERT_EQ(entry.id, xpathId(entry.xpath)) << entry.xpath;
    if (i > 0) {
      ASSERT_LT(std::string(data.paths[i - 1].xpath), entry.xpath);
      ASSERT_LT(data.idHelper[i - 1].id, data.idHelper[i].id);
    }
    ASSERT_EQ(catalogue::xpathIndexOfPath(data, entry.xpath), i);
    ASSERT_EQ(catalogue::xpathIndexOfId(data.idHelper, data.count, entry.id), i);
    bool leads = false;
    for (int index = 0; index < subsystem.recordCount && !leads; ++index)
      leads = spelledPath(&subsystem.classDefs[index], data.fieldsInfo[i]) == entry.xpath;
    ASSERT_TRUE(leads) << entry.xpath;
  }
  EXPECT_EQ(data.idHelper[data.count].index, -1);
  EXPECT_EQ(data.paths[data.count].xpath, nullptr);
  EXPECT_EQ(data.fieldsInfo[data.count].fieldPath, nullptr);
}

}  // namespace zqxml

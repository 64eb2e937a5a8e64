// 25,000 paths in one subsystem.
#include <gmock/gmock.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/traverse/xml_meta_data.h>

#include <algorithm>
#include <memory>

#include "tests/catalogue/path_tables.h"

namespace zqxml {
namespace {

constexpr short kLarge = 199;
constexpr int kPaths = 25'000;
constexpr int kMostSteps = 15;  // bit_width(25,000)

TEST(LargePathsTest, TablesAreWellFormed) {
  const XPathData* data = XNMessageBase::getXPathData(kLarge);
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->count, kPaths);
  expectWellFormed(*data);
}

TEST(LargePathsTest, LookUpsTakeAFewComparisons) {
  const XPathData& data = *XNMessageBase::getXPathData(kLarge);
  for (int i = 0; i < kPaths; ++i) {
    int steps = 0;
    const std::string_view path = data.paths[i].xpath;
    ASSERT_EQ(catalogue::findSorted(data.paths, kPaths,
                                    [&](const XPathEntry& entry) {
                                      ++steps;
                                      return std::string_view(entry.xpath).compare(path);
                                    }),
              i);
    ASSERT_LE(steps, kMostSteps);
    steps = 0;
    // Also for an id that is not there.
    for (const int id : {data.idHelper[i].id, data.idHelper[i].id + 1}) {
      steps = 0;
      catalogue::findSorted(data.idHelper, kPaths, [&](const XPathIDHelper& entry) {
        ++steps;
        return (entry.id > id ? 1 : 0) - (entry.id < id ? 1 : 0);
      });
      ASSERT_LE(steps, kMostSteps);
    }
  }
}

TEST(LargePathsTest, EveryValueComesBack) {
  const XPathData& data = *XNMessageBase::getXPathData(kLarge);
  std::vector<XPathMetaData> items;
  for (int i = 0; i < kPaths; ++i) {
    XPathMetaData item;
    item.id = data.paths[i].id;
    item.xpath = data.paths[i].xpath;
    item.value = std::to_string(i);
    items.push_back(item);
  }
  short subsystem = kLarge;
  int index = 0;
  const std::unique_ptr<XNMessageBase> message(XNMessageBase::createObjectFromIndices(subsystem, index));
  XNMessageBase* target = message.get();
  ASSERT_EQ(XMLMetaData().setXpathMetaData(target, items, kLarge), XML_SUBSYSTEM_OK);
  std::vector<XPathMetaData> out;
  ASSERT_EQ(XMLMetaData().getXpathMetaData(target, out, true), XML_SUBSYSTEM_OK);
  std::sort(out.begin(), out.end(), [](const auto& a, const auto& b) { return a.xpath < b.xpath; });
  ASSERT_EQ(out.size(), items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    ASSERT_EQ(out[i].xpath, items[i].xpath);
    ASSERT_EQ(out[i].id, items[i].id);
    ASSERT_EQ(out[i].value, items[i].value);
  }
}

TEST(LargePathsTest, PathOfAnIdIsFound) {
  const XPathData& data = *XNMessageBase::getXPathData(kLarge);
  std::string path;
  for (int i = 0; i < kPaths; ++i) {
    ASSERT_TRUE(XMLMetaData::getXPathFromID(kLarge, data.paths[i].id, path));
    ASSERT_EQ(path, data.paths[i].xpath);
    ASSERT_TRUE(XMLMetaData::doesXPathIDExist(kLarge, data.paths[i].id));
  }
}

}  // namespace
}  // namespace zqxml

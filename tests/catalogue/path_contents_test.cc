// The paths of the library's own catalogue.
#include <gmock/gmock.h>
#include <zqxml/message/xn_message_base.h>

#include "tests/catalogue/path_tables.h"

namespace zqxml {
namespace {

TEST(PathContentsTest, FourSubsystemsHaveAHundredPathsAndMore) {
  std::vector<unsigned> slots;
  for (const XPathData* row = gXPathTable; row->paths != nullptr; ++row) {
    slots.push_back(row->subsystem);
    EXPECT_GE(row->count, 100) << row->subsystem;
  }
  EXPECT_THAT(slots, testing::ElementsAre(12, 18, 22, 100));
}

TEST(PathContentsTest, TablesAreWellFormed) {
  for (const XPathData* row = gXPathTable; row->paths != nullptr; ++row) expectWellFormed(*row);
}

TEST(PathContentsTest, KnownPathsAreThere) {
  const auto idOf = [](short subsystem, const char* path) {
    const XPathData& data = *XNMessageBase::getXPathData(subsystem);
    const int place = catalogue::xpathIndexOfPath(data, path);
    return place < 0 ? -1 : data.paths[place].id;
  };
  EXPECT_EQ(idOf(12, "options[1]/@originalJobId"), 0x6557686d);
  EXPECT_EQ(idOf(12, "options[1]/@externalDataProcessor"), 0x38d09dfd);
  EXPECT_NE(idOf(12, "options[1]/adComparisonOption[1]/@adCompareType"), -1);
  EXPECT_NE(idOf(100, "browseMetaData[1]/aDData[1]/@value"), -1);
  EXPECT_EQ(idOf(12, "browseMetaData[1]/aDData[1]/@value"), -1);
}

TEST(PathContentsTest, OtherSubsystemsHaveNone) {
  for (int subsystem = -1; subsystem <= 300; ++subsystem) {
    const bool has = subsystem == 12 || subsystem == 18 || subsystem == 22 || subsystem == 100;
    EXPECT_EQ(XNMessageBase::getXPathData(static_cast<short>(subsystem)) != nullptr, has) << subsystem;
  }
  EXPECT_EQ(XNMessageBase::getXPathData(32767), nullptr);
  EXPECT_EQ(XNMessageBase::getXPathData(-32768), nullptr);
}

}  // namespace
}  // namespace zqxml

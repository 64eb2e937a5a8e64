// Look-ups in tables of paths.
#include <gmock/gmock.h>
#include <zqxml/catalogue/xpath_data.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/catalogue/path_tables.h"

namespace zqxml {
namespace {

constexpr short kMembers[] = {0, 1, 0, 2, 0, 3};
constexpr XPathFieldsInfo kFields[] = {{kMembers, 2}, {kMembers + 2, 2}, {kMembers + 4, 2}, {}};
constexpr XPathEntry kPaths[] = {{30, "a[1]/@b"}, {10, "a[1]/c"}, {20, "a[1]/\xc3\xa4"}, {}};
constexpr XPathIDHelper kIds[] = {{10, 1}, {20, 2}, {30, 0}, {-1, -1}};
constexpr XPathData kData{1, kFields, kIds, kPaths, 3};

TEST(XPathDataTest, TablesOfTheTestsCatalogueAreWellFormed) {
  int rows = 0;
  for (const XPathData* row = gXPathTable; row->paths != nullptr; ++row, ++rows) expectWellFormed(*row);
  EXPECT_EQ(rows, 4);
}

TEST(XPathDataTest, PathsAreFoundByTheirBytes) {
  EXPECT_EQ(catalogue::xpathIndexOfPath(kData, "a[1]/@b"), 0);
  EXPECT_EQ(catalogue::xpathIndexOfPath(kData, "a[1]/c"), 1);
  EXPECT_EQ(catalogue::xpathIndexOfPath(kData, "a[1]/\xc3\xa4"), 2);
  for (const char* path : {"", "a", "a[1]/", "a[1]/@", "a[1]/@b ", "a[1]/@c", "a[1]/b", "a[1]/d", "\xff"})
    EXPECT_EQ(catalogue::xpathIndexOfPath(kData, path), -1) << path;
}

TEST(XPathDataTest, IdsLeadToTheirPaths) {
  EXPECT_EQ(catalogue::xpathIndexOfId(kIds, 3, 10), 1);
  EXPECT_EQ(catalogue::xpathIndexOfId(kIds, 3, 20), 2);
  EXPECT_EQ(catalogue::xpathIndexOfId(kIds, 3, 30), 0);
  for (const int id :
       {0, 9, 11, 19, 21, 29, 31, -10, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    EXPECT_EQ(catalogue::xpathIndexOfId(kIds, 3, id), -1) << id;
}

TEST(XPathDataTest, SpareEntryIsNoHit) {
  EXPECT_EQ(catalogue::xpathIndexOfId(kIds, 3, -1), -1);
  EXPECT_EQ(catalogue::xpathIndexOfId(kIds, 2, 30), -1);
  EXPECT_EQ(catalogue::xpathIndexOfId(kIds, 0, 10), -1);
  EXPECT_EQ(catalogue::xpathIndexOfId(nullptr, 0, 10), -1);
  EXPECT_EQ(catalogue::xpathIndexOfPath({1, kFields, kIds, kPaths, 0}, "a[1]/@b"), -1);
}

TEST(XPathDataTest, IdIsTheAbsoluteSignedHash) {
  EXPECT_EQ(xpathId(""), 0);
  EXPECT_EQ(xpathId("options[1]/@originalJobId"), 0x6557686d);
  // The sum is 0xc72f6203.
  EXPECT_EQ(xpathId("options[1]/@externalDataProcessor"), 0x38d09dfd);
  // Bytes above 0x7f count as negative numbers.
  EXPECT_EQ(xpathId("\xff"), 1);
  EXPECT_EQ(xpathId("\x80"), 128);
  EXPECT_EQ(xpathId("\x01\xff"), 30);
}

TEST(XPathDataTest, TypesWithPathsAreTheScalarsAndTheListsThatCanBeRead) {
  std::vector<unsigned> scalars, lists;
  for (unsigned type = 0; type < 256; ++type) {
    if (kXPathScalarTypes.contains(type)) scalars.push_back(type);
    if (kXPathListTypes.contains(type)) lists.push_back(type);
  }
  EXPECT_THAT(scalars, testing::ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 25, 31, 41, 42));
  EXPECT_THAT(lists, testing::ElementsAre(13, 14, 15, 16, 17, 19, 20, 21, 26, 27, 28));
}

TEST(XPathDataTest, SearchFindsEveryEntryOfEverySize) {
  for (int size = 0; size <= 40; ++size) {
    std::vector<int> numbers;
    for (int i = 0; i < size; ++i) numbers.push_back(2 * i);
    for (int wanted = -1; wanted <= 2 * size; ++wanted) {
      const int found =
          catalogue::findSorted(numbers.data(), size, [wanted](int number) { return number - wanted; });
      EXPECT_EQ(found, wanted >= 0 && wanted % 2 == 0 && wanted / 2 < size ? wanted / 2 : -1);
    }
  }
}

}  // namespace
}  // namespace zqxml

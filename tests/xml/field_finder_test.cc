#include <gtest/gtest.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/xml/internal/field_finder.h>
#include <zqxml/xml/internal/name_view.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zqxml {
namespace {

TEST(FieldFinder, GivesTheFirstFieldOfAHashForEveryClassOfTheCatalogue) {
  FieldFinder finder;
  std::size_t fields = 0;
  for (int round = 0; round < 2; ++round) {
    for (int subsystem = 0; subsystem < kSubsystemCount; ++subsystem) {
      for (int index = 0; index < gSubsystemTable[subsystem].recordCount; ++index) {
        const _ClassDef& record = *catalogue::classAt(subsystem, index);
        for (const FieldDef& field : record) {
          const std::uint32_t hash = field.getFieldHashId();
          const FieldDef* first = std::find_if(record.begin(), record.end(), [hash](const FieldDef& other) {
            return hash != 0 && other.getFieldHashId() == hash && other.getType() != FDT_NONE;
          });
          ASSERT_EQ(finder.find(&record, hash), first == record.end() ? nullptr : first);
          ASSERT_EQ(finder.find(&record, hash ^ 0x1000000), nullptr);
          ++fields;
        }
      }
    }
  }
  EXPECT_GT(fields, 500u);
}

TEST(FieldFinder, FindsNothingWithoutAClass) {
  EXPECT_EQ(FieldFinder().find(nullptr, 5), nullptr);
}

TEST(FieldFinder, WideNamesHashLikeTheirUtf8) {
  for (const std::string_view name :
       {"", "a", "processinginstructioninfo", "n\xc3\xa4me", "\xe6\x97\xa5x", "\xf0\x9f\x98\x80"})
    EXPECT_EQ(nameHash(toUtf16(name)), nameHash(name)) << name;
}

}  // namespace
}  // namespace zqxml

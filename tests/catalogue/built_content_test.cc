// What is built with a message of a class and ends with it, as the class's record tells.
#include <gtest/gtest.h>
#include <tests/support/open_message.h>

namespace zqxml {
namespace {

TEST(BuiltContent, HasTheStringsThatEndInTheFirstSlots) {
  const BuiltContent content = classNamed("Demo_SelfPair").record().builtContent();
  EXPECT_EQ(content.strings(), 1u << 1);
  EXPECT_TRUE(content.nothingElseBuilt());
  EXPECT_TRUE(content.nothingElseOwned());
}

TEST(BuiltContent, OfNumbersAloneIsNothing) {
  const BuiltContent content = classNamed("Demo_Fields7").record().builtContent();
  EXPECT_EQ(content.strings(), 0u);
  EXPECT_TRUE(content.nothingElseBuilt());
  EXPECT_TRUE(content.nothingElseOwned());
}

TEST(BuiltContent, LeavesTheStringThatGoesBeyondTheFirstSlots) {
  for (const char* name : {"Demo_StringAt22", "Demo_StringAt22Last", "Demo_SelfAfterString22"}) {
    const BuiltContent content = classNamed(name).record().builtContent();
    EXPECT_EQ(content.strings(), 0u) << name;
    EXPECT_FALSE(content.nothingElseBuilt()) << name;
    EXPECT_FALSE(content.nothingElseOwned()) << name;
  }
}

TEST(BuiltContent, TellsWhatIsOwnedFromWhatIsBuilt) {
  const auto contentOf = [](FieldDataType type) {
    const FieldDef field("field", nullptr, 1, 0, 0, 0, type);
    return _ClassDef("One", &field, 0, -1, 1, 4).builtContent();
  };
  EXPECT_TRUE(contentOf(FDT_LIST_INT).nothingElseBuilt());
  EXPECT_FALSE(contentOf(FDT_LIST_INT).nothingElseOwned());
  EXPECT_TRUE(contentOf(FDT_MAP_INT64_INT64).nothingElseBuilt());
  EXPECT_FALSE(contentOf(FDT_OBJECT).nothingElseOwned());
  EXPECT_FALSE(contentOf(FDT_BSTRING).nothingElseBuilt());
  EXPECT_FALSE(contentOf(FDT_WSTRING).nothingElseBuilt());
  EXPECT_FALSE(contentOf(FDT_WSTRING).nothingElseOwned());
  EXPECT_TRUE(contentOf(FDT_NONE).nothingElseOwned());
  EXPECT_EQ(contentOf(FDT_STRING).strings(), 1u);
  EXPECT_TRUE(contentOf(FDT_STRING).nothingElseOwned());
}

TEST(BuiltContent, OfARecordWithoutATableIsUnknown) {
  EXPECT_FALSE(BuiltContent().nothingElseBuilt());
  EXPECT_FALSE(BuiltContent().nothingElseOwned());
}

}  // namespace
}  // namespace zqxml

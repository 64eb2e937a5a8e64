#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/xml/internal/attribute_guide.h>
#include <zqxml/xml/internal/name_view.h>

#include <string>
#include <string_view>

namespace zqxml {
namespace {

const AttributeGuide* ofRoot(std::string_view name) {
  return AttributeGuide::ofRoot(name, nameHash(name));
}

/// All names as they stand in a tag.
std::string namesOf(const AttributeGuide& guide) {
  std::string all;
  for (const AttributeGuide::Name& name : guide.names()) {
    all += std::string_view(name.attribute, name.attributeLength());
    EXPECT_EQ(name.hash(), nameHash(std::string_view(name.attribute + 1, name.length)));
  }
  return all;
}

TEST(AttributeGuide, HasTheSingleValuesInTheOrderOfTheWriter) {
  ASSERT_NE(ofRoot("XmlRead_Defaults"), nullptr);
  EXPECT_EQ(namesOf(*ofRoot("XmlRead_Defaults")), R"( number=" on=" text=")");
  ASSERT_NE(ofRoot("XmlRead_Node"), nullptr);
  EXPECT_EQ(namesOf(*ofRoot("XmlRead_Node")), R"( id=" name=")");
  EXPECT_EQ(namesOf(*ofRoot("XmlRead_Empty")), "");
}

TEST(AttributeGuide, TellsWhereTheClassHasTheField) {
  const AttributeGuide* guide = ofRoot("XmlRead_Defaults");
  ASSERT_EQ(guide->names().size(), 3u);
  EXPECT_EQ(guide->names()[0].position, 0);
  EXPECT_EQ(guide->names()[1].position, 2);
  EXPECT_EQ(guide->names()[2].position, 1);
}

TEST(AttributeGuide, NameWithoutAClassHasNone) {
  EXPECT_EQ(ofRoot("XmlRead_Nothing"), nullptr);
  EXPECT_EQ(ofRoot("XmlRead"), nullptr);
  EXPECT_EQ(ofRoot("Nowhere_Node"), nullptr);
}

TEST(AttributeGuide, ElementsOfObjectFieldsHaveTheGuideOfTheirClass) {
  const AttributeGuide* node = ofRoot("XmlRead_Node");
  EXPECT_EQ(node->ofField(nameHash("child")), node);
  EXPECT_EQ(node->ofField(nameHash("items")), node);
  EXPECT_EQ(node->ofField(nameHash("place")), ofRoot("XmlRead_Point"));
}

TEST(AttributeGuide, ElementsOfOtherFieldsHaveNone) {
  const AttributeGuide* node = ofRoot("XmlRead_Node");
  for (const char* name : {"id", "tags", "byName", "none"}) EXPECT_EQ(node->ofField(nameHash(name)), nullptr);
}

TEST(AttributeGuide, IsMadeOnce) {
  EXPECT_EQ(ofRoot("XmlRead_Point"), ofRoot("XmlRead_Point"));
}

TEST(AttributeGuide, NamesThatShareAPlaceInTheMemoryOfRootsKeepTheirClasses) {
  const std::string longest = "XmlRead_" + std::string(100, 'N');
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(AttributeGuide::ofRoot("XmlRead_Node", 5), ofRoot("XmlRead_Node"));
    EXPECT_EQ(AttributeGuide::ofRoot("XmlRead_Point", 5), ofRoot("XmlRead_Point"));
    EXPECT_EQ(AttributeGuide::ofRoot("XmlRead_None", 5), nullptr);
    EXPECT_EQ(AttributeGuide::ofRoot(longest, 5), nullptr);
  }
}

}  // namespace
}  // namespace zqxml

// What goes into the typed message classes and comes out of them: without copies, and through views of lists
// and maps of objects.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using Demo::EveryChild;
using Demo::EveryType;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

const std::string kLong(100, 'x');
const std::u16string kLongWide(100, u'x');

// --- Texts

TEST(TypedValuesTest, TextIsMovedInAndReadInPlace) {
  EveryType message;
  std::string text = kLong;
  const char* bytes = text.data();
  message.setStringField(std::move(text));
  EXPECT_EQ(message.getStringField().data(), bytes);
  std::u16string wide = kLongWide;
  const char16_t* units = wide.data();
  message.setWstringField(std::move(wide));
  EXPECT_EQ(message.getWstringField().data(), units);
}

TEST(TypedValuesTest, TextMovedIntoItselfStays) {
  EveryType message;
  for (const std::string& text : {std::string("short"), kLong}) {
    message.setStringField(text);
    message.setStringField(std::move(message.mutableStringField()));
    EXPECT_EQ(message.getStringField(), text);
  }
}

TEST(TypedValuesTest, CopiedTextTakesTheMemoryThatIsThere) {
  EveryType message;
  message.setStringField(kLong);
  const char* bytes = message.getStringField().data();
  message.setStringField(std::string_view(kLong).substr(0, 50));
  EXPECT_EQ(message.getStringField(), kLong.substr(0, 50));
  EXPECT_EQ(message.getStringField().data(), bytes);
  message.setStringField(std::string_view(message.getStringField()).substr(40));
  EXPECT_EQ(message.getStringField(), kLong.substr(0, 10)) << "a part of itself";
  message.setStringField(message.getStringField());
  EXPECT_EQ(message.getStringField(), kLong.substr(0, 10));
}

TEST(TypedValuesTest, ShortTextTakesAPartOfItself) {
  EveryType message;
  message.setStringField("abcdefghijklmno");
  message.setStringField(std::string_view(message.getStringField()).substr(1));
  EXPECT_EQ(message.getStringField(), "bcdefghijklmno");
  message.setStringField(message.getStringField());
  EXPECT_EQ(message.getStringField(), "bcdefghijklmno");
  message.setWstringField(u"abcdefg");
  message.setWstringField(std::u16string_view(message.getWstringField()).substr(1));
  EXPECT_EQ(message.getWstringField(), u"bcdefg");
}

TEST(TypedValuesTest, TextsOfEveryLengthTakeThePlaceOfEachOther) {
  EveryType message;
  for (std::size_t before = 0; before < 40; ++before) {
    for (std::size_t after = 0; after < 40; ++after) {
      message.setStringField(std::string(before, 'b'));
      message.setStringField(std::string_view(kLong).substr(0, after));
      ASSERT_EQ(message.getStringField(), std::string(after, 'x')) << before;
      message.setWstringField(std::u16string(before, u'b'));
      message.setWstringField(std::u16string_view(kLongWide).substr(0, after));
      ASSERT_EQ(message.getWstringField(), std::u16string(after, u'x')) << before;
    }
  }
}

TEST(TypedValuesTest, NullTextIsEmptyAndSet) {
  EveryType message;
  const char* none = nullptr;
  message.setStringField("before");
  message.setStringField(none);
  EXPECT_EQ(message.getStringField(), "");
  EXPECT_TRUE(message.isStringFieldSet());
}

TEST(TypedValuesTest, AnythingThatTurnsIntoAViewIsAText) {
  struct Name {
    operator std::string_view() const { return "of its own"; }
  };
  char buffer[] = "buffer";
  EveryType message;
  message.setStringField(Name());
  EXPECT_EQ(message.getStringField(), "of its own");
  message.setStringField(buffer);
  EXPECT_EQ(message.getStringField(), "buffer");
}

TEST(TypedValuesTest, BytesAreMovedInWithEveryByte) {
  EveryType message;
  bstring value(kLong + '\0');
  const char* bytes = value.data();
  message.setBstringField(std::move(value));
  EXPECT_EQ(message.getBstringField().data(), bytes);
  EXPECT_EQ(message.getBstringField().size(), 101u);
  std::string text = kLong;
  bytes = text.data();
  message.setBstringField(std::move(text));
  EXPECT_EQ(message.getBstringField().data(), bytes);
  EveryType other;
  other.setBstringField(message.getBstringField());
  EXPECT_EQ(other.getBstringField(), message.getBstringField());
}

TEST(TypedValuesTest, PasswordKeepsItsEncryptionType) {
  EveryType message;
  pstring stored(kLong, 5);
  const char* bytes = stored.data();
  message.setPstringField(stored);
  EXPECT_EQ(message.getPstringField().str(), kLong);
  EXPECT_EQ(message.getPstringField().getEncryptionType(), 5);
  message.setPstringField(std::move(stored));
  EXPECT_EQ(message.getPstringField().data(), bytes);
  EXPECT_EQ(message.getPstringField().getEncryptionType(), 5);
  message.setPstringField("plain again");
  EXPECT_EQ(message.getPstringField().getEncryptionType(), 1);
}

TEST(TypedValuesTest, TextOfAFieldThatIsNotThereIsEmptyAndDropped) {
  LogCapture capture(0);
  Demo::DriftRetyped retyped;
  auto& base = reinterpret_cast<Demo::DriftBase&>(static_cast<XNMessageBase&>(retyped));
  const std::string& text = base.getText();
  base.setText("lost");
  EXPECT_EQ(text, "");
  EXPECT_EQ(&base.getText(), &text) << "one for the process";
  base.setList({1, 2, 3});
  EXPECT_THAT(base.getList(), IsEmpty());
  EXPECT_EQ(capture.lines().size(), 5u);
}

// --- Lists and maps

TEST(TypedValuesTest, ListsAndMapsAreMovedIn) {
  EveryType message;
  std::vector<std::string> list{kLong, "b"};
  const std::string* element = list.data();
  message.setListStringField(std::move(list));
  EXPECT_EQ(message.getListStringField().data(), element);
  std::map<std::string, std::int64_t> map{{kLong, 1}};
  const std::string* key = &map.begin()->first;
  message.setMapStringInt64Field(std::move(map));
  EXPECT_EQ(&message.getMapStringInt64Field().begin()->first, key);
}

TEST(TypedValuesTest, ListsTakeBracedValues) {
  EveryType message;
  message.setListIntField({1, -2});
  message.setListBoolField({true, false});
  message.setListDoubleField({0.5});
  message.setListStringField({"a", "b"});
  message.setListWstringField({u"w"});
  EXPECT_THAT(message.getListIntField(), ElementsAre(1, -2));
  EXPECT_THAT(message.getListBoolField(), ElementsAre(1u, 0u));
  EXPECT_THAT(message.getListDoubleField(), ElementsAre(0.5));
  EXPECT_THAT(message.getListStringField(), ElementsAre("a", "b"));
  EXPECT_THAT(message.getListWstringField(), ElementsAre(u"w"));
  message.setListIntField({});
  EXPECT_THAT(message.getListIntField(), IsEmpty());
  EXPECT_TRUE(message.isListIntFieldSet());
}

// --- Objects

EveryChild child(int number, const std::string& text = {}) {
  EveryChild made;
  made.setNumber(number);
  made.setText(text);
  return made;
}

std::vector<int> numbersOf(ObjectView<const EveryChild> view) {
  std::vector<int> numbers;
  for (const EveryChild& element : view) numbers.push_back(element.getNumber());
  return numbers;
}

TEST(TypedValuesTest, ObjectIsMovedIn) {
  EveryType message;
  EveryChild value = child(1, kLong);
  const char* bytes = value.getText().data();
  message.setObjectField(std::move(value));
  ASSERT_TRUE(message.isObjectFieldSet());
  EXPECT_EQ(message.getObjectField()->getText().data(), bytes);
  message.setObjectField(child(2, "replaced"));
  EXPECT_EQ(message.getObjectField()->getNumber(), 2);
  EXPECT_EQ(message.getObjectField()->getText(), "replaced");
}

TEST(TypedValuesTest, TypedVectorIsMovedInElementByElement) {
  EveryType message;
  std::vector<EveryChild> children;
  children.push_back(child(1, kLong));
  children.push_back(child(2));
  const char* bytes = children[0].getText().data();
  message.setListObjectField(children);
  EXPECT_NE(message.getListObjectField()[0].getText().data(), bytes) << "a copy";
  message.setListObjectField(std::move(children));
  EXPECT_EQ(message.getListObjectField()[0].getText().data(), bytes);
  EXPECT_THAT(numbersOf(message.getListObjectField()), ElementsAre(1, 2));
  const ObjectView<const EveryChild> view = message.getListObjectField();
  children.assign(view.begin(), view.end());
  EXPECT_EQ(children.back().getNumber(), 2);
}

TEST(TypedValuesTest, ViewsAreCopiedIntoOtherMessages) {
  EveryType message, other;
  message.setListObjectField({child(1), child(2)});
  message.setMapStringObjectField({{"a", child(3)}});
  other.setListObjectField(message.getListObjectField());
  other.setListObjectField(other.mutableListObjectField());
  other.setMapStringObjectField(message.getMapStringObjectField());
  other.setMapStringObjectField(other.mutableMapStringObjectField());
  EXPECT_THAT(numbersOf(other.getListObjectField()), ElementsAre(1, 2));
  EXPECT_EQ(other.findInMapStringObjectField("a")->getNumber(), 3);
}

TEST(TypedValuesTest, VectorOfMessagesIsMovedWhole) {
  EveryType message;
  std::vector<XNMessageBase> children(1, child(7));
  const XNMessageBase* element = children.data();
  message.setListObjectField(std::move(children));
  EXPECT_EQ(message.getListObjectField().begin().operator->(), element);
}

TEST(TypedValuesTest, ObjectListsGrowAndShrink) {
  EveryType message;
  const ObjectView<EveryChild> view = message.mutableListObjectField();
  view.reserve(4);
  view.add().setNumber(3);
  view.add(child(1));
  const EveryChild kept = child(2);
  view.add(kept);
  view.add(view.front());
  EXPECT_THAT(numbersOf(view), ElementsAre(3, 1, 2, 3));
  std::sort(view.begin(), view.end(),
            [](const EveryChild& a, const EveryChild& b) { return a.getNumber() < b.getNumber(); });
  EXPECT_THAT(numbersOf(view), ElementsAre(1, 2, 3, 3));
  view.erase(1);
  EXPECT_THAT(numbersOf(view), ElementsAre(1, 3, 3));
  view.erase(view.begin() + 1, view.end());
  EXPECT_THAT(numbersOf(view), ElementsAre(1));
  view.erase(view.begin());
  EXPECT_TRUE(view.empty() && message.isListObjectFieldSet());
  message.setListObjectField({child(5), child(6)});
  EXPECT_THAT(numbersOf(view), ElementsAre(5, 6)) << "the view is of the field, whatever it holds";
  EXPECT_EQ(view.back().getNumber(), 6);
  view.clear();
  EXPECT_TRUE(message.getListObjectField().empty());
}

TEST(TypedValuesTest, ListOfObjectsOfSeveralClassesCanShrink) {
  EveryType message;
  message.setListObjectField(std::vector<XNMessageBase>{child(1), EveryType(), child(2)});
  message.mutableListObjectField().erase(0);
  ASSERT_EQ(message.getListObjectField().size(), 2u);
  EXPECT_EQ(message.getListObjectField()[0].getTagID(), EveryType::kTagId);
  EXPECT_EQ(message.getListObjectField()[1].getNumber(), 2);
}

TEST(TypedValuesTest, IteratorsOfAListHaveRandomAccess) {
  EveryType message;
  message.setListObjectField({child(1), child(2), child(3)});
  const ObjectView<const EveryChild> view = message.getListObjectField();
  auto it = view.begin();
  EXPECT_EQ(view.end() - it, 3);
  EXPECT_EQ(it[2].getNumber(), 3);
  EXPECT_EQ((2 + it)->getNumber(), 3);
  EXPECT_EQ((it++)->getNumber(), 1);
  EXPECT_EQ((it--)->getNumber(), 2);
  EXPECT_LT(it, view.end());
  EXPECT_EQ((--(it += 2))->getNumber(), 2);
  EXPECT_EQ((view.end() - 1)->getNumber(), 3);
}

TEST(TypedValuesTest, ObjectMapsAreRangesOfKeysAndObjects) {
  EveryType message;
  EXPECT_TRUE(message.getMapStringObjectField().empty());
  EXPECT_EQ(message.getMapStringObjectField().find("a"), nullptr);
  EXPECT_FALSE(message.getMapStringObjectField().contains("a"));
  const ObjectMapView<std::string, EveryChild> view = message.mutableMapStringObjectField();
  view.add("b").setNumber(2);
  view.add("a").setNumber(1);
  view.add("a").setText("same");
  std::vector<std::pair<std::string, int>> entries;
  for (auto [key, value] : message.getMapStringObjectField()) entries.emplace_back(key, value.getNumber());
  EXPECT_THAT(entries, ElementsAre(Pair("a", 1), Pair("b", 2)));
  for (auto [key, value] : view) value.setNumber(value.getNumber() * 10);
  EXPECT_EQ(view.find("a")->getNumber(), 10);
  EXPECT_EQ(view.begin()->second.getText(), "same");
  EXPECT_EQ((++view.begin())->first, "b");
  EXPECT_TRUE(view.erase("a"));
  EXPECT_FALSE(view.erase("a"));
  EXPECT_EQ(view.size(), 1u);
  view.clear();
  EXPECT_TRUE(message.isMapStringObjectFieldSet());
}

TEST(TypedValuesTest, ObjectMapsAreMovedIn) {
  EveryType message;
  std::map<std::int64_t, EveryChild> typedMap;
  typedMap.emplace(1, child(1, kLong));
  const char* bytes = typedMap.at(1).getText().data();
  message.setMapInt64ObjectField(typedMap);
  EXPECT_NE(message.findInMapInt64ObjectField(1)->getText().data(), bytes) << "a copy";
  message.setMapInt64ObjectField(std::move(typedMap));
  EXPECT_EQ(message.findInMapInt64ObjectField(1)->getText().data(), bytes);
  std::map<std::string, XNMessageBase> map;
  map.emplace("k", child(2));
  const XNMessageBase* object = &map.at("k");
  message.setMapStringObjectField(std::move(map));
  EXPECT_EQ(message.findInMapStringObjectField("k"), object);
  message.setMapStringObjectField({{"a", child(3)}, {"b", child(4)}});
  EXPECT_EQ(message.getMapStringObjectField().find("b")->getNumber(), 4);
  message.mutableMapStringObjectFieldMap().erase("b");
  EXPECT_EQ(message.getMapStringObjectField().size(), 1u);
}

}  // namespace
}  // namespace zqxml

// Merging one message into another of its class.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <tests/xml/failing_allocation.h>
#include <zqxml/catalogue/generated/Walk.h>
#include <zqxml/catalogue/generated/ZqDFMImport.h>
#include <zqxml/traverse/xml_traverse.h>

namespace zqxml {
namespace {

using testing::ElementsAre;
using Ints = std::vector<std::int32_t>;
using Objects = std::vector<XNMessageBase>;

OpenMessage every() {
  return newMessage("Demo_EveryType");
}
OpenMessage filled() {
  OpenMessage message = every();
  fillEveryType(message);
  return message;
}

TEST(Merge, NumberOfTheSourceWins) {
  OpenMessage source = every(), destination = every();
  setInteger(source, "intField", 5);
  setInteger(destination, "intField", 7);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_EQ(slotOf(destination, "intField"), 5);
}

TEST(Merge, FieldThatIsNotSetInTheSourceStays) {
  OpenMessage source = every(), destination = filled();
  setInteger(source, "intField", 5);
  setBit(source, "intField", false);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  checkEveryType(destination);
}

TEST(Merge, ListElementsOfTheSourceGoBehind) {
  OpenMessage source = every(), destination = every();
  collectionOf<Ints>(source, "listIntField") = {1, 2};
  collectionOf<Ints>(destination, "listIntField") = {3};
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_THAT(*ownedBy<Ints>(destination, "listIntField"), ElementsAre(3, 1, 2));
  EXPECT_THAT(*ownedBy<Ints>(source, "listIntField"), ElementsAre(1, 2));
}

TEST(Merge, KeepsListsOfBoolUnmerged) {
  OpenMessage source = every(), destination = every();
  collectionOf<std::vector<std::uint32_t>>(source, "listBoolField") = {1};
  collectionOf<std::vector<std::uint32_t>>(destination, "listBoolField") = {0};
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_THAT(*ownedBy<std::vector<std::uint32_t>>(destination, "listBoolField"), ElementsAre(0));
}

TEST(Merge, KeepsMapsUnmerged) {
  using Map = std::map<std::string, std::string>;
  OpenMessage source = every(), destination = every();
  collectionOf<Map>(source, "mapStringStringField") = {{"a", "b"}};
  collectionOf<Map>(destination, "mapStringStringField") = {{"c", "d"}};
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_EQ(*ownedBy<Map>(destination, "mapStringStringField"), (Map{{"c", "d"}}));
}

TEST(Merge, SubObjectOfTheSourceAloneIsCopied) {
  Walk::Outer source, destination;
  source.mutableMiddle().setNumber(1);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  ASSERT_TRUE(destination.isMiddleSet());
  EXPECT_EQ(destination.getMiddle()->getNumber(), 1);
  source.mutableMiddle().setNumber(2);
  EXPECT_EQ(destination.getMiddle()->getNumber(), 1);
  destination.mutableMiddle().setNumber(3);
  EXPECT_EQ(source.getMiddle()->getNumber(), 2);
}

TEST(Merge, SubObjectOfBothIsMergedByTheSameRules) {
  Walk::Outer source, destination;
  source.mutableMiddle().setNumber(1);
  source.mutableMiddle().addToInners().setValue(2);
  destination.mutableMiddle().setNumber(3);
  destination.mutableMiddle().mutableInner().setText("own");
  destination.mutableMiddle().addToInners().setValue(4);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  const Walk::Middle& merged = *destination.getMiddle();
  EXPECT_EQ(merged.getNumber(), 1);
  EXPECT_EQ(merged.getInner()->getText(), "own");
  ASSERT_EQ(merged.getInners().size(), 2u);
  EXPECT_EQ(merged.getInners()[0].getValue(), 4);
  EXPECT_EQ(merged.getInners()[1].getValue(), 2);
}

TEST(Merge, ObjectsOfTwoClassesAreRefusedWithoutAWord) {
  OpenMessage source = filled(), destination = newMessage("Demo_Sample");
  setInteger(destination, "id", 5);
  LogCapture capture(25);
  EXPECT_FALSE(XmlTraverse::merge(source, destination));
  EXPECT_FALSE(XmlTraverse::merge(destination, source));
  EXPECT_TRUE(capture.empty());
  EXPECT_EQ(dump(destination), "Demo_Sample {\n  id = 5\n}\n");
  checkEveryType(source);
}

TEST(Merge, PasswordKeepsTheTypeThatItHadInTheSource) {
  OpenMessage source = every(), destination = every();
  MessageAccess::make<pstring>(source, fieldOf(source, "pstringField"), true) = pstring("cipher", 4);
  MessageAccess::make<pstring>(destination, fieldOf(destination, "pstringField"), true) = pstring("plain");
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_EQ(ownedBy<pstring>(destination, "pstringField")->str(), "cipher");
  EXPECT_EQ(ownedBy<pstring>(destination, "pstringField")->getEncryptionType(), 4);
}

// --- Every type

// Types that merge, and how.
constexpr FieldTypeSet kSourceWins{FDT_INT,     FDT_UINT,    FDT_LONG,   FDT_ULONG,  FDT_LONGLONG, FDT_BOOL,
                                   FDT_STRING,  FDT_WSTRING, FDT_ENUM,   FDT_DOUBLE, FDT_FLOAT,    FDT_OBJECT,
                                   FDT_BSTRING, FDT_PSTRING, FDT_TIME32, FDT_TIME64};
constexpr FieldTypeSet kAppended{FDT_LIST_INT,      FDT_LIST_LONG,   FDT_LIST_ULONG,
                                 FDT_LIST_LONGLONG, FDT_LIST_STRING, FDT_LIST_WSTRING,
                                 FDT_LIST_OBJECT,   FDT_LIST_FLOAT,  FDT_LIST_DOUBLE};

/// The field and its value in a dump of a Demo.EveryType, from its line to that of the next field.
std::string valueIn(const std::string& text, const FieldDef& field) {
  const std::string name = std::string("\n  ") + field.getName() + " = ";
  const std::size_t begin = text.find(name);
  if (begin == text.npos) return "";
  std::size_t end = begin + name.size();
  do {
    end = text.find('\n', end + 1);
  } while (text.compare(end, 3, "\n  ") == 0 && (text[end + 3] == ' ' || text[end + 3] == '}'));
  return text.substr(begin + name.size(), end - begin - name.size());
}

class MergeOfType : public testing::TestWithParam<unsigned> {
 protected:
  const FieldDef& field() const {
    for (const FieldDef& candidate : classNamed("Demo_EveryType").record())
      if (candidate.getType() == GetParam() && candidate.getMemNum() != 0) return candidate;
    throw std::logic_error("no field of the type");
  }
  bool merges() const { return kSourceWins.contains(GetParam()) || kAppended.contains(GetParam()); }
};
std::vector<unsigned> typesOfEveryType() {
  std::vector<unsigned> types;
  for (const FieldDef& candidate : classNamed("Demo_EveryType").record())
    if (candidate.getMemNum() != 0) types.push_back(candidate.getType());
  return types;
}
INSTANTIATE_TEST_SUITE_P(Types, MergeOfType, testing::ValuesIn(typesOfEveryType()),
                         [](const auto& type) { return std::string(fieldTypeFacts(type.param).name); });

TEST_P(MergeOfType, IntoAnEmptyMessageCopiesWhatMerges) {
  OpenMessage source = filled(), destination = every();
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_EQ(hasBit(destination, field().getName()), merges());
  EXPECT_EQ(valueIn(dump(destination), field()), merges() ? valueIn(dump(source), field()) : "");
  checkEveryType(source);
}

TEST_P(MergeOfType, IntoItselfDoublesListsAndChangesNothingElse) {
  OpenMessage message = filled();
  EXPECT_TRUE(XmlTraverse::merge(message, message));
  std::string expected = valueIn(dump(filled()), field());
  if (kAppended.contains(GetParam())) {
    const std::string elements = expected.substr(1, expected.size() - 2);
    expected = "[" + elements + ", " + elements + "]";
  }
  if (GetParam() == FDT_OBJECT) return;  // has a list
  EXPECT_EQ(valueIn(dump(message), field()), expected);
}

TEST_P(MergeOfType, IntoAMessageThatHasOneTakesTheSourceOrAppends) {
  OpenMessage source = filled(), destination = filled();
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  const std::string own = valueIn(dump(source), field());
  const std::string merged = valueIn(dump(destination), field());
  if (GetParam() == FDT_OBJECT) return;  // has a list
  EXPECT_EQ(merged,
            kAppended.contains(GetParam()) ? own.substr(0, own.size() - 1) + ", " + own.substr(1) : own);
}

// --- Lists

TEST(Merge, EmptyListOfTheSourceMarksTheListOfTheDestination) {
  OpenMessage source = every(), destination = every();
  collectionOf<Ints>(source, "listIntField");
  setBit(source, "listLongField");  // set, and never made
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  for (const char* name : {"listIntField", "listLongField"}) {
    EXPECT_TRUE(hasBit(destination, name));
    EXPECT_TRUE(ownedBy<Ints>(destination, name)->empty());
  }
  EXPECT_EQ(slotOf(source, "listLongField"), 0);
}

TEST(Merge, EmptyListOfObjectsDoesNothing) {
  OpenMessage source = every(), destination = every();
  collectionOf<Objects>(source, "listObjectField");
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  setBit(source, "listObjectField");
  EXPECT_FALSE(hasBit(destination, "listObjectField"));
}

TEST(Merge, ListThatIsNotSetInTheDestinationIsMarked) {
  OpenMessage source = every(), destination = every();
  collectionOf<Ints>(source, "listIntField") = {1};
  collectionOf<Ints>(destination, "listIntField") = {2};
  setBit(destination, "listIntField", false);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_TRUE(hasBit(destination, "listIntField"));
  EXPECT_THAT(*ownedBy<Ints>(destination, "listIntField"), ElementsAre(2, 1));
}

TEST(Merge, ListsGrowInStepsHoweverManyAreMerged) {
  OpenMessage source = every(), destination = every();
  collectionOf<Ints>(source, "listIntField") = {1};
  const Ints& list = collectionOf<Ints>(destination, "listIntField");
  int growths = 0;
  for (int i = 0; i < 1000; ++i) {
    const std::size_t before = list.capacity();
    EXPECT_TRUE(XmlTraverse::merge(source, destination));
    growths += list.capacity() != before ? 1 : 0;
  }
  EXPECT_EQ(list.size(), 1000u);
  EXPECT_LT(growths, 20);
}

TEST(Merge, ElementsAreCopies) {
  Walk::Middle source, destination;
  source.addToInners().setValue(1);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  source.mutableInners()[0].setValue(2);
  EXPECT_EQ(destination.getInners()[0].getValue(), 1);
}

// --- What is half built

TEST(Merge, MessagesWithoutAClassAreRefused) {
  XNMessageBase bare, other;
  OpenMessage message = every();
  EXPECT_FALSE(XmlTraverse::merge(bare, other));
  EXPECT_FALSE(XmlTraverse::merge(bare, bare));
  EXPECT_FALSE(XmlTraverse::merge(bare, message));
  EXPECT_FALSE(XmlTraverse::merge(message, bare));
}

TEST(Merge, FieldsWithoutAHashAreLeftOut) {
  OpenMessage source = newMessage("Demo_Hashless"), destination = newMessage("Demo_Hashless");
  setInteger(source, "hiddenNumber", 5);
  setInteger(source, "first", 6);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_FALSE(hasBit(destination, "hiddenNumber"));
  EXPECT_EQ(slotOf(destination, "first"), 6);
}

TEST(Merge, SubObjectThatIsSetAndNotThereIsPassedOver) {
  Walk::Outer source, destination;
  setBit(source, "middle");
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_FALSE(destination.isMiddleSet());
  source.mutableMiddle().setNumber(1);
  setBit(destination, "middle");
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_EQ(destination.getMiddle()->getNumber(), 1);
}

TEST(Merge, SubObjectThatIsNotSetInTheDestinationIsReplaced) {
  Walk::Outer source, destination;
  source.mutableMiddle().setNumber(1);
  destination.mutableMiddle().mutableInner().setValue(2);
  setBit(destination, "middle", false);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_EQ(dump(destination), dump(source));
}

TEST(Merge, SubObjectsOfTwoClassesDoNotStopTheMerge) {
  Walk::Outer source, destination;
  source.mutableMiddle().setNumber(1);
  source.setId(2);
  MessageAccess::owned<XNMessageBase>(destination, fieldOf(destination, "middle")) =
      new OpenMessage(newMessage("Demo_EveryChild"));
  setBit(destination, "middle");
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_EQ(destination.getId(), 2);
  EXPECT_EQ(ownedBy<XNMessageBase>(destination, "middle")->getTagName(), "Demo_EveryChild");
}

TEST(Merge, SubObjectForWhichThereIsNoMemoryIsLeftOut) {
  Walk::Outer source, destination;
  source.mutableMiddle().setNumber(1);
  source.setId(2);
  failNextAllocation();
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_FALSE(allocationWillFail());
  EXPECT_FALSE(destination.isMiddleSet());
  EXPECT_EQ(destination.getId(), 2);
}

TEST(Merge, OldWayObjectsMergeInPlace) {
  ZqDFMImport::OldTree source, destination;
  source.mutableBranch().setNumber(8);
  const XNMessageBase* before = destination.getBranch();
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  EXPECT_EQ(destination.getBranch(), before);
  EXPECT_EQ(destination.getBranch()->getNumber(), 8);
}

TEST(Merge, TagsAreTracedSourceFirst) {
  OpenMessage source = every(), destination = every();
  LogCapture capture(10);
  EXPECT_TRUE(XmlTraverse::merge(source, destination));
  const std::string tag = std::to_string(source.getTagID());
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"ZqXmlMessageProcessor::merge", 10,
                                                        "Merging Objects [" + tag + "] and [" + tag + "]"}));
  EXPECT_TRUE(XmlTraverse().merge(source, destination));  // also on a walker
}

}  // namespace
}  // namespace zqxml

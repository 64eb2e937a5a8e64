// XMLMetaData: messages told as paths and values, and what its ids are.
#include <zqxml/catalogue/generated/TMMsg.h>

#include "tests/traverse/path_messages.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Access = XMLMetaDataTestAccess;

TEST(XMLMetaDataTest, RootFieldWithoutGenPathGivesNoItemsUnlessAllIsAsked) {
  TMMsg::TaskOptions task;
  task.mutableDefaults().setPriority(5);
  EXPECT_THAT(pathsOf(task, false), IsEmpty());
  task.mutableOptions().setPriority(7);
  EXPECT_THAT(pathsOf(task, false), ElementsAre(PathValue("options[1]/@priority", "7")));
  EXPECT_THAT(pathsOf(task, true),
              ElementsAre(PathValue("options[1]/@priority", "7"), PathValue("defaults[1]/@priority", "5")));
}

TEST(XMLMetaDataTest, ListOfThreeNumbersGivesThreeItemsOfOneId) {
  TMMsg::TaskOptions task;
  task.mutableOptions().setAlertIds({4, -5, 6});
  const std::vector<XPathMetaData> items = itemsOf(task);
  ASSERT_EQ(items.size(), 3u);
  for (const XPathMetaData& made : items) {
    EXPECT_EQ(made.id, xpathId("options[1]/alertIds"));
    EXPECT_EQ(made.xpath, "options[1]/alertIds");
    EXPECT_EQ(made.type, 10007);
    EXPECT_FALSE(made.singleInstanced);
    EXPECT_FALSE(made.reserved);
  }
  EXPECT_EQ(items[0].value, "4");
  EXPECT_EQ(items[1].value, "-5");
  EXPECT_EQ(items[2].value, "6");
}

TEST(XMLMetaDataTest, PathThatIsNotInTheTableGivesNoItemAndNoLine) {
  const LogCapture log(25);
  OpenMessage root = newMessage("Ida_PathRoot");
  XNMessageBase& every = objectOf(root, "every");
  collectionOf<std::map<std::string, std::string>>(every, "mapStringStringField")["a"] = "b";
  collectionOf<std::vector<std::uint64_t>>(every, "listUlonglongField").push_back(1);
  collectionOf<std::vector<bstring>>(every, "listBstringField").emplace_back("x");
  // Below the level at which a class in itself ends its paths.
  setInteger(objectOf(objectOf(root, "nest"), "child"), "depth", 1);
  EXPECT_THAT(pathsOf(root), IsEmpty());
  EXPECT_TRUE(log.empty());
}

TEST(XMLMetaDataTest, UnknownIdIsPassedOverAndTheNextItemIsSet) {
  const LogCapture log;
  TMMsg::TaskOptions task;
  XNMessageBase* target = &task;
  XPathMetaData unknown;
  unknown.id = -2;
  EXPECT_EQ(XMLMetaData().setXpathMetaData(target, {unknown, item("options[1]/@priority", "7")}, kTMMsg),
            XML_SUBSYSTEM_OK);
  EXPECT_EQ(task.getOptions()->getPriority(), 7);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kSet, 0, "No MetaData exists for XPath ID :[4294967294]"}));
}

TEST(XMLMetaDataTest, SubsystemWithoutPathsHasNoId) {
  const LogCapture log(10);
  EXPECT_FALSE(XMLMetaData::doesXPathIDExist(5, 0x6557686d));
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"XMLMetaData::doesXPathIDExist", 10,
                                                    "XPath Metadata does not exist for subsystem [5]"}));
}

TEST(XMLMetaDataTest, KnownIdGivesThePathWhoseHashItIs) {
  std::string path;
  EXPECT_TRUE(XMLMetaData::getXPathFromID(kTMMsg, 0x38d09dfd, path));
  EXPECT_EQ(path, "options[1]/@externalDataProcessor");
  EXPECT_EQ(xpathId(path), 0x38d09dfd);
}

TEST(XMLMetaDataTest, IdsOfASubsystemExist) {
  const LogCapture log(25);
  EXPECT_TRUE(XMLMetaData::doesXPathIDExist(kTMMsg, 0x6557686d));
  EXPECT_FALSE(XMLMetaData::doesXPathIDExist(kTMMsg, 0x6557686e));
  EXPECT_FALSE(XMLMetaData::doesXPathIDExist(kTMMsg, -1));
  EXPECT_FALSE(XMLMetaData::doesXPathIDExist(kIda, 0x6557686d));
  EXPECT_TRUE(log.empty());
}

TEST(XMLMetaDataTest, UnknownIdLeavesThePathAlone) {
  const LogCapture log(25);
  std::string path = "before";
  EXPECT_FALSE(XMLMetaData::getXPathFromID(kTMMsg, 1, path));
  EXPECT_EQ(path, "before");
  EXPECT_TRUE(log.empty());
}

TEST(XMLMetaDataTest, SubsystemWithoutPathsEmptiesThePath) {
  const LogCapture log;
  std::string path = "before";
  EXPECT_FALSE(XMLMetaData::getXPathFromID(5, 0x38d09dfd, path));
  EXPECT_EQ(path, "");
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"XMLMetaData::getXPathFromID", 0,
                                                    "Error retrieving metadata for Subsystem ID [5]"}));
}

TEST(XMLMetaDataTest, MissingTableOfIdsIsLogged) {
  const LogCapture log;
  EXPECT_EQ(Access::index(nullptr, 3, 1), -1);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"XMLMetaData::getFieldNumbers", 0,
                                                    "Subsytem XPath Metadata not provided"}));
}

TEST(XMLMetaDataTest, NothingToTellOfNull) {
  const LogCapture log;
  std::vector<XPathMetaData> items(1);
  EXPECT_EQ(XMLMetaData().getXpathMetaData(nullptr, items, true), XML_SUBSYSTEM_FAILED);
  EXPECT_EQ(items.size(), 1u);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kGet, 0, "Received NULL as pointer to object."}));
}

TEST(XMLMetaDataTest, MessageOfASubsystemWithoutPathsCannotBeTold) {
  const LogCapture log;
  OpenMessage alert = newMessage("ZQGui_SaveAlert");
  std::vector<XPathMetaData> items;
  EXPECT_EQ(XMLMetaData().getXpathMetaData(&alert, items, true), XML_SUBSYSTEM_FAILED);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kGet, 0, "No XPath metadata exists for given subsystem id : [1]"}));
}

TEST(XMLMetaDataTest, MessageWithoutAClassCannotBeTold) {
  const LogCapture log;
  OpenMessage message;
  std::vector<XPathMetaData> items;
  XMLMetaData paths;
  Access::useTable(paths, *XNMessageBase::getXPathData(kIda));
  EXPECT_EQ(paths.getXpathMetaData(&message, items, true), XML_SUBSYSTEM_FAILED);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{
                  kGet, 0, "Unable to get Metadata for Object : [" + message.getTagName() + "]"}));
}

TEST(XMLMetaDataTest, ItemsGoBehindThoseThatAreThere) {
  TMMsg::TaskOptions task;
  task.mutableOptions().setPriority(7);
  std::vector<XPathMetaData> items(1);
  items[0].xpath = "first";
  EXPECT_EQ(XMLMetaData().getXpathMetaData(&task, items, false), XML_SUBSYSTEM_OK);
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0].xpath, "first");
  EXPECT_EQ(items[1].id, xpathId("options[1]/@priority"));
}

TEST(XMLMetaDataTest, SingleInstancedIsToldOfScalarsAlone) {
  TMMsg::TaskOptions task;
  task.mutableOptions().setComment(u"c");
  task.mutableOptions().setPriority(1);
  task.mutableOptions().setAlertIds({1});
  for (const XPathMetaData& made : itemsOf(task))
    EXPECT_EQ(made.singleInstanced, made.xpath == "options[1]/@comment") << made.xpath;
}

TEST(XMLMetaDataTest, ValuesOfTheRootAreNotTold) {
  TMMsg::TaskOptions task;
  task.setTaskId(7);
  EXPECT_THAT(pathsOf(task), IsEmpty());
}

TEST(XMLMetaDataTest, FieldsThatAreNotSetAreNotTold) {
  TMMsg::TaskOptions task;
  task.mutableOptions().setPriority(7);
  task.mutableOptions().unsetPriority();
  EXPECT_THAT(pathsOf(task), IsEmpty());
  task.mutableOptions().setPriority(7);
  setBit(task, "options", false);
  EXPECT_THAT(pathsOf(task), IsEmpty());
}

TEST(XMLMetaDataTest, ObjectThatIsSetAndNotThereIsPassedOver) {
  TMMsg::TaskOptions task;
  setBit(task, "options");
  EXPECT_THAT(pathsOf(task), IsEmpty());
  setBit(task.mutableOptions(), "backupOption");
  EXPECT_THAT(pathsOf(task), IsEmpty());
}

TEST(XMLMetaDataTest, KeepsListsOfObjectsUntoldWithALine) {
  TMMsg::TaskOptions task;
  task.mutableOptions().mutableRestoreOption().addToPieces().setMaximumSize(5);
  {
    const LogCapture log(25);
    EXPECT_THAT(pathsOf(task), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                                 kGetHelper, 25,
                                 "Type:[complex List] Found Xpath[options[1]/restoreOption[1]/pieces]. "
                                 "This is yet to be implemented."}));
  }
  const LogCapture quieter(24);
  EXPECT_THAT(pathsOf(task), IsEmpty());
  EXPECT_TRUE(quieter.empty());
}

TEST(XMLMetaDataTest, SubObjectWithoutAClassIsLoggedAndPassedOver) {
  const LogCapture log;
  TMMsg::TaskOptions task;
  XNMessageBase& options = task.mutableOptions();
  const _ClassDef* record = MessageAccess::classDef(options);
  MessageAccess::setClassDef(options, nullptr);
  task.mutableDefaults().setPriority(5);
  EXPECT_THAT(pathsOf(task), ElementsAre(PathValue("defaults[1]/@priority", "5")));
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kGetHelper, 0, "Unable to get Metadata for Object"}));
  MessageAccess::setClassDef(options, record);
}

TEST(XMLMetaDataTest, ObjectsInObjectsAreToldToTheThousandthLevel) {
  const LogCapture log;
  OpenMessage root = newMessage("Ida_PathRoot");
  XNMessageBase* at = &objectOf(root, "nest");
  for (int level = 0; level < 1200; ++level) at = &objectOf(*at, "child");
  setInteger(objectOf(root, "nest"), "depth", 3);
  EXPECT_THAT(pathsOf(root), ElementsAre(PathValue("nest[1]/@depth", "3")));
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                               kGetHelper, 0, "Objects nest [1000] levels deep: no paths are told below"}));
}

TEST(XMLMetaDataTest, GenPathIsABitOfTheSecondFlagByte) {
  const auto hasPath = [](const char* record) {
    return Access::hasXPath(FieldDef("o", record, 1, 0, 0, 0, FDT_OBJECT));
  };
  EXPECT_FALSE(hasPath(nullptr));
  EXPECT_FALSE(hasPath("\0\x03\xff"));
  EXPECT_FALSE(hasPath("\0\x03\xff\x80"));
  EXPECT_FALSE(hasPath("\0\x04\xff\x7f"));
  EXPECT_TRUE(hasPath("\0\x04\0\x80"));
  EXPECT_TRUE(hasPath("\0\x05\0\x80\0"));
}

}  // namespace
}  // namespace zqxml

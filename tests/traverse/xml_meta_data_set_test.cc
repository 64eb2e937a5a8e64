// XMLMetaData: messages from paths and values.
#include <zqxml/catalogue/generated/Ida.h>
#include <zqxml/catalogue/generated/TMMsg.h>

#include "tests/traverse/path_messages.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Access = XMLMetaDataTestAccess;

TEST(XMLMetaDataSetTest, NullCannotBeSet) {
  const LogCapture log;
  XNMessageBase* target = nullptr;
  EXPECT_EQ(XMLMetaData().setXpathMetaData(target, {}, kTMMsg), XML_SUBSYSTEM_FAILED);
  EXPECT_EQ(target, nullptr);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kSet, 0, "Received NULL as pointer to object."}));
}

TEST(XMLMetaDataSetTest, SubsystemWithoutPathsCannotBeSet) {
  const LogCapture log;
  TMMsg::TaskOptions task;
  XNMessageBase* target = &task;
  EXPECT_EQ(XMLMetaData().setXpathMetaData(target, {}, 5), XML_SUBSYSTEM_FAILED);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kSet, 0, "No XPath metadata exists for given subsystem index: [5]"}));
}

TEST(XMLMetaDataSetTest, MessageWithoutAClassCannotBeSet) {
  const LogCapture log;
  XNMessageBase message;
  XNMessageBase* target = &message;
  EXPECT_EQ(XMLMetaData().setXpathMetaData(target, {}, kTMMsg), XML_SUBSYSTEM_FAILED);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{
                  kSet, 0, "Unable to get Metadata for Object : [" + message.getTagName() + "]"}));
}

TEST(XMLMetaDataSetTest, ObjectsOnTheWayAreMade) {
  TMMsg::TaskOptions task;
  ASSERT_EQ(setPaths(task, {{"options[1]/restoreOption[1]/fileOption[1]/@maximumSize", "5"},
                            {"options[1]/restoreOption[1]/@overwrite", "true"}}),
            XML_SUBSYSTEM_OK);
  const TMMsg::RestoreOption& restore = *task.getOptions()->getRestoreOption();
  EXPECT_TRUE(task.isOptionsSet() && task.getOptions()->isRestoreOptionSet() && restore.isFileOptionSet());
  EXPECT_EQ(restore.getFileOption()->getMaximumSize(), 5);
  EXPECT_TRUE(restore.getOverwrite());
}

TEST(XMLMetaDataSetTest, ObjectThatIsThereIsUsedAndMarked) {
  TMMsg::TaskOptions task;
  task.mutableOptions().setPriority(1);
  const XNMessageBase* before = task.getOptions();
  setBit(task, "options", false);
  ASSERT_EQ(setPaths(task, {{"options[1]/@originalJobId", "2"}}), XML_SUBSYSTEM_OK);
  EXPECT_TRUE(task.isOptionsSet());
  EXPECT_EQ(task.getOptions(), before);
  EXPECT_EQ(task.getOptions()->getPriority(), 1);
}

TEST(XMLMetaDataSetTest, EveryItemMakesAnElementOfItsOwn) {
  TMMsg::TaskOptions task;
  ASSERT_EQ(setPaths(task, {{"options[1]/restoreOption[1]/pieces[1]/@maximumSize", "1"},
                            {"options[1]/restoreOption[1]/pieces[1]/sourceItem", "a"},
                            {"options[1]/restoreOption[1]/pieces[1]/sourceItem", "b"}}),
            XML_SUBSYSTEM_OK);
  const auto pieces = task.getOptions()->getRestoreOption()->getPieces();
  ASSERT_EQ(pieces.size(), 3u);
  EXPECT_EQ(pieces[0].getMaximumSize(), 1);
  EXPECT_THAT(pieces[1].getSourceItem(), ElementsAre("a"));
  EXPECT_THAT(pieces[2].getSourceItem(), ElementsAre("b"));
}

TEST(XMLMetaDataSetTest, BadValueEndsTheRunAndWhatWasSetBeforeStays) {
  const LogCapture log(15);
  TMMsg::TaskOptions task;
  EXPECT_EQ(setPaths(task, {{"options[1]/@priority", "7"},
                            {"options[1]/backupOption[1]/@streams", "many"},
                            {"options[1]/@originalJobId", "2"}}),
            XML_SUBSYSTEM_FAILED);
  EXPECT_TRUE(
      log.has(kSetHelper, 15,
              "Unable to set value for Message [TMMsg_BackupOption] : Field [streams] value :[many]"));
  EXPECT_EQ(task.getOptions()->getPriority(), 7);
  EXPECT_FALSE(task.getOptions()->isOriginalJobIdSet());
  EXPECT_FALSE(task.getOptions()->isBackupOptionSet());
  EXPECT_EQ(ownedBy<XNMessageBase>(*task.getOptions(), "backupOption"), nullptr);
}

TEST(XMLMetaDataSetTest, BadValueMakesNoElementAndKeepsObjectsThatAreThere) {
  TMMsg::TaskOptions task;
  task.mutableOptions().mutableRestoreOption().setOverwrite(true);
  EXPECT_EQ(setPaths(task, {{"options[1]/restoreOption[1]/pieces[1]/@maximumSize", "x"}}),
            XML_SUBSYSTEM_FAILED);
  EXPECT_FALSE(task.getOptions()->getRestoreOption()->isPiecesSet());
  EXPECT_TRUE(task.getOptions()->getRestoreOption()->getOverwrite());
}

TEST(XMLMetaDataSetTest, FieldNumbersThatTheClassDoesNotHaveFail) {
  TMMsg::TaskOptions task;
  for (const std::vector<short>& path : std::vector<std::vector<short>>{
           {static_cast<short>(task.getNumberOfFields())}, {999}, {-1}, {2, 999}, {}, {2}, {2, 4}}) {
    const LogCapture log;
    EXPECT_FALSE(Access::set(&task, path, "1"));
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kSetHelper, 0, kReconstruction}));
  }
  EXPECT_FALSE(task.isOptionsSet());
}

TEST(XMLMetaDataSetTest, LevelBeyondTheDepthFails) {
  const LogCapture log;
  TMMsg::TaskOptions task;
  EXPECT_FALSE(Access::set(&task, {1}, "1", 1));
  EXPECT_FALSE(Access::set(&task, {1}, "1", 2));
  EXPECT_EQ(log.count(kSetHelper, 0, kReconstruction), 2u);
  EXPECT_TRUE(Access::set(&task, {1}, "1", 0));
}

TEST(XMLMetaDataSetTest, HelperRefusesNullAndMessagesWithoutAClass) {
  const LogCapture log;
  XNMessageBase message;
  EXPECT_FALSE(Access::set(nullptr, {1}, "1"));
  EXPECT_FALSE(Access::set(&message, {1}, "1"));
  EXPECT_THAT(
      log.lines(),
      ElementsAre(
          CapturedLine{kSetHelper, 0, "The object pointer received is NULL"},
          CapturedLine{kSetHelper, 0, "Unable to get Metadata for Object : [" + message.getTagName() + "]"}));
}

// No subsystem 250; subsystem 1 has no class 999.
constexpr FieldDef kBrokenFields[] = {{"\xfa\0\0\x01o", nullptr, 1, 0, 0, 0, FDT_OBJECT},
                                      {"\x01\0\x03\xe7l", nullptr, 2, 0, 1, 1, FDT_LIST_OBJECT}};
constexpr _ClassDef kBrokenClass("Broken", kBrokenFields, 1, -1, 2, 2);

TEST(XMLMetaDataSetTest, ReferencesToNothingFail) {
  OpenMessage message = newMessage("Demo_Elements24");
  const _ClassDef* record = MessageAccess::classDef(message);
  MessageAccess::setClassDef(message, &kBrokenClass);
  const LogCapture log;
  EXPECT_FALSE(Access::set(&message, {0, 0}, "1"));
  EXPECT_TRUE(log.has(kSetHelper, 0, "The object pointer received is NULL"));
  EXPECT_FALSE(Access::set(&message, {1, 0}, "1"));
  EXPECT_TRUE(log.hasPart(kSetHelper, 0, "Unable to get Metadata for Object : ["));
  MessageAccess::setClassDef(message, record);
}

TEST(XMLMetaDataSetTest, KeepsTheTableOfItsFirstSubsystem) {
  const LogCapture log;
  TMMsg::TaskOptions task;
  Ida::ScanRequest scan;
  XNMessageBase* target = &task;
  XMLMetaData paths;
  ASSERT_EQ(paths.setXpathMetaData(target, {item("options[1]/@priority", "7")}, kTMMsg), XML_SUBSYSTEM_OK);
  // A subsystem without paths is not asked for any more, and ids of another one are unknown.
  EXPECT_EQ(paths.setXpathMetaData(target, {item("options[1]/@priority", "8")}, 5), XML_SUBSYSTEM_OK);
  EXPECT_EQ(task.getOptions()->getPriority(), 8);
  XNMessageBase* other = &scan;
  EXPECT_EQ(paths.setXpathMetaData(other, {item("scanOption[1]/@threads", "2")}, kIda), XML_SUBSYSTEM_OK);
  EXPECT_FALSE(scan.isScanOptionSet());
  EXPECT_EQ(log.lines().size(), 1u);
  // And its messages are told by the first one's paths.
  scan.mutableScanOption().setThreads(3);
  std::vector<XPathMetaData> items;
  EXPECT_EQ(paths.getXpathMetaData(&scan, items, true), XML_SUBSYSTEM_OK);
  EXPECT_THAT(items, IsEmpty());
}

TEST(XMLMetaDataSetTest, AnyPathOnAnyClassHasAResult) {
  const LogCapture log(-1);
  for (const XPathData* row = gXPathTable; row->paths != nullptr; ++row) {
    for (const SubsystemDef& subsystem : gSubsystemTable) {
      for (int index = 0; index < subsystem.recordCount; ++index) {
        if (subsystem.classDefs[index].getNumberOfFields() == 0 || subsystem.classDefs[index].isEnumeration())
          continue;
        const auto slot = static_cast<short>(&subsystem - gSubsystemTable);
        OpenMessage message(slot, index);
        for (int i = 0; i < row->count; i += 7) {
          XNMessageBase* target = &message;
          XPathMetaData made;
          made.id = row->paths[i].id;
          made.value = "1";
          XMLMetaData().setXpathMetaData(target, {made}, static_cast<short>(row->subsystem));
        }
        std::vector<XPathMetaData> items;
        XMLMetaData().getXpathMetaData(&message, items, true);
      }
    }
  }
}

}  // namespace
}  // namespace zqxml

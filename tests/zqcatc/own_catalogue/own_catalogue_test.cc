// A program with subsystems of its own, on the shared library: the library works with the program's
// catalogue.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Common.h>
#include <zqxml/catalogue/generated/JobManager.h>
#include <zqxml/catalogue/generated/Own.h>
#include <zqxml/catalogue/lookup.h>

#include <memory>
#include <string>

namespace zqxml {
namespace {

TEST(OwnCatalogueTest, LibraryFindsTheProgramsSubsystem) {
  EXPECT_EQ(XNMessageBase::getTagNameFromTagID(Own::Thing::kTagId), "Own_Thing");
  short slot = 0;
  EXPECT_TRUE(XNMessageBase::getMessageSystemIndexFromName("Own", slot));
  EXPECT_EQ(slot, 199);
  EXPECT_STREQ(XNMessageBase::getEnumString(199, "Kind", 2), "LARGE");
}

TEST(OwnCatalogueTest, LibraryBuildsTheProgramsClasses) {
  const std::unique_ptr<XNMessageBase> message(XNMessageBase::createObject(Own::Thing::kTagId));
  ASSERT_NE(message, nullptr);
  Own::Thing* thing = Own::Thing::from(message.get());
  ASSERT_NE(thing, nullptr);
  thing->setName("a thing");
  thing->setKind(Own::Kind::LARGE);
  thing->mutableEvent().mutableMessage().setMessageId(7);
  const Own::Thing copy(*thing);
  EXPECT_EQ(copy.getName(), "a thing");
  EXPECT_EQ(copy.getKind(), Own::Kind::LARGE);
  EXPECT_EQ(copy.getEvent()->getMessage()->getMessageId(), 7);
  EXPECT_TRUE(copy == *thing);
}

TEST(OwnCatalogueTest, ClassesOfTheLibraryAreStillThere) {
  EXPECT_EQ(XNMessageBase::getTagNameFromTagID(JobManager::Job::kTagId), "JobManager_Job");
  EXPECT_EQ(XNMessageBase::getTagNameFromTagID(Common::OwnEvent::kTagId), "Common_OwnEvent");
  EXPECT_EQ(gSubsystemTable[20].recordCount, 60);
  int filled = 0;
  for (const SubsystemDef& row : gSubsystemTable) filled += row.name != nullptr ? 1 : 0;
  EXPECT_EQ(filled, 77);
}

TEST(OwnCatalogueTest, RegisterSubsystemCanBeCalled) {
  Own::RegisterSubsystem();
  Common::RegisterSubsystem();
  EXPECT_STREQ(gSubsystemTable[199].name, "Own");
}

}  // namespace
}  // namespace zqxml

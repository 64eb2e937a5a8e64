// The short way to an object that a reader can fill.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <tests/support/random_message.h>

#include <string>
#include <vector>

namespace zqxml {
namespace {

/// All values, set or not.
std::string everyValue(XNMessageBase& message) {
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    const bool empty =
        !kValueInSlotTypes.contains(field.getType()) && MessageAccess::slot(message, field) == 0;
    if (field.getType() != FDT_NONE && !empty) MessageAccess::mark(message, field.getMemNum());
  }
  return dump(message);
}

RC_GTEST_PROP(ResetAndWipeTest, LeavesWhatResetAndThenWipeLeave, ()) {
  static const std::vector<std::string> kClasses = {
      "Demo_EveryType",  "Demo_Defaults",   "Demo_SelfPair",           "Demo_Hashless",
      "Demo_Elements25", "ZQGui_SaveAlert", "ZqDFMImport_DfmEveryType"};
  OpenMessage message = *randomMessagesOf(classNamed(*rc::gen::elementOf(kClasses)), Losses{0});
  OpenMessage other(message);

  MessageAccess::resetAndWipe(message);
  MessageAccess::reset(other);
  MessageAccess::wipeBitset(other);

  RC_ASSERT(dump(message).find('=') == std::string::npos);
  RC_ASSERT(everyValue(message) == everyValue(other));
}

TEST(ResetAndWipeTest, MessageWithoutAClassIsLeftAlone) {
  XNMessageBase message;
  MessageAccess::resetAndWipe(message);
  EXPECT_EQ(message.getTagID(), 0u);
}

}  // namespace
}  // namespace zqxml

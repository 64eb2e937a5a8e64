// EntityTypeHandler: defaults that command parameters ask for.
#include <gtest/gtest.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Walk.h>
#include <zqxml/traverse/entity_type_handler.h>
#include <zqxml/traverse/xml_traverse.h>

namespace zqxml {
namespace {

TEST(EntityTypeHandler, EnumerationsWhoseCommandWantsTheDefaultGetIt) {
  Walk::Commands commands;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&commands))
    MessageAccess::deleteMember(commands, field.getMemNum());
  ASSERT_EQ(dump(commands), "Walk_Commands {\n}\n");
  EntityTypeHandler handler;
  XmlTraverse().traverse(commands, handler);
  EXPECT_EQ(dump(commands), "Walk_Commands {\n  wanted = 1\n}\n");
}

TEST(EntityTypeHandler, EnumerationThatIsSetKeepsItsValue) {
  Walk::Commands commands;
  setInteger(commands, "wanted", 0);
  EntityTypeHandler handler;
  XmlTraverse().traverse(commands, handler);
  EXPECT_EQ(slotOf(commands, "wanted"), 0);
}

TEST(EntityTypeHandler, FieldsWithoutNameOrMessageAreLeftAlone) {
  EntityTypeHandler handler;
  MsgFieldContext nameless(FieldDef(nullptr, "\0\3\0", 5, 0, 0, 0, FDT_ENUM), nullptr);
  handler.visit(nameless);
  Walk::Commands commands;
  MsgFieldContext orphan(fieldOf(commands, "wanted"), nullptr);
  handler.visit(orphan);
  EXPECT_FALSE(orphan.isReplaced());
}

}  // namespace
}  // namespace zqxml

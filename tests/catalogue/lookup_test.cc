// Every way from a number or a name to a record, and back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/xml/my_sax2_handler.h>
#include <zqxml/xml/xml_decoder.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace zqxml {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr FieldDef referring(const char* namePointer) {
  return {namePointer, nullptr, 1, 0, 0, 0, FDT_OBJECT};
}

// --- At the edges.

TEST(CatalogueLookup, SlotZeroIsRefusedInThreeWays) {
  short subsystem = -1;
  int classIndex = -1;
  EXPECT_FALSE(XNMessageBase::getIndicesFromTagID(subsystem, classIndex, 0x00000001));
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::GetClassDef(short{0}, 0), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{
                  "XNMessageBase::GetClassDef", 0,
                  "Unable to retrieve metadata for message with msgSysIndex : [0], msgIndex : [0]"}));
  capture.clear();
  // A reference lets slot 0 through: it has no records, and that is all.
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID("\0\0\0\0"), nullptr);
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID(referring("\0\0\0\0name")), nullptr);
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(CatalogueLookup, KeepsSlot207OutOfTagsAndInOfIndices) {
  short subsystem = -1;
  int classIndex = -1;
  EXPECT_FALSE(XNMessageBase::getIndicesFromTagID(subsystem, classIndex, 0xcf000001));
  std::uint32_t tagId = 7;
  EXPECT_TRUE(XNMessageBase::getTagIDFromIndices(207, 0, tagId));
  EXPECT_EQ(tagId, 0xcf000000u);
}

TEST(CatalogueLookup, HashOfNothingIsZero) {
  EXPECT_EQ(MySAX2Handler::getHash("", 0), 0u);
  EXPECT_EQ(MySAX2Handler::getHash(nullptr, 5), 0u);
}

TEST(CatalogueLookup, EnumerationsAreSearchedByNameOnly) {
  const _ClassDef& record = classNamed("Demo_EveryMode").record();
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, "AUTO"), 2);
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, "auto"), -1);
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, ""), -1);
  // A name whose hash is the value of an enumerator: the hash word is a value here, and is not compared.
  EXPECT_EQ(nameHash("\x01"), 1u);
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, "\x01"), -1);
}

TEST(CatalogueLookup, FieldWithoutAHashHasNoPosition) {
  const _ClassDef& record = classNamed("Demo_Hashless").record();
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, "hiddenNumber"), -1);
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, "last"), 6);
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, ""), -1);
}

TEST(CatalogueLookup, NoSubsystemHasTwoClassesOfOneName) {
  for (short slot = 0; slot < kSubsystemCount; ++slot) {
    const SubsystemDef& row = gSubsystemTable[slot];
    for (int index = 0; index < row.recordCount; ++index) {
      const char* name = row.classDefs[index].getName();
      if (name == nullptr) continue;
      short subsystem = slot;
      int found = -1;
      EXPECT_TRUE(XNMessageBase::getMessageIndexFromName(name, subsystem, found));
      EXPECT_EQ(found, index) << name;
    }
  }
}

TEST(CatalogueLookup, KeepsTheSelfRecordInTheSchemaText) {
  std::string text;
  ASSERT_TRUE(XNMessageBase::getMessageSchemaString(classNamed("Demo_SelfPair").tag(), text, true, false));
  std::string line = std::string("Unknown type ") + '\0';
  line.resize(30, ' ');
  EXPECT_THAT(text, HasSubstr(line + "\tSelfPair"));
}

// --- Tags and indices.

TEST(TagLookup, FindsEveryClassWithAnId) {
  for (short slot = 1; slot < kSubsystemCount; ++slot) {
    const SubsystemDef& row = gSubsystemTable[slot];
    for (int index = 0; index < row.recordCount; ++index) {
      if (row.classDefs[index].getClassId() == 0) continue;
      std::uint32_t tagId = 0;
      ASSERT_TRUE(XNMessageBase::getTagIDFromIndices(slot, static_cast<short>(index), tagId));
      short subsystem = -1;
      int found = -1;
      ASSERT_TRUE(XNMessageBase::getIndicesFromTagID(subsystem, found, tagId));
      EXPECT_EQ(subsystem, slot);
      EXPECT_EQ(found, index);
      EXPECT_EQ(XNMessageBase::GetClassDef(tagId), &row.classDefs[index]);
    }
  }
}

TEST(TagLookup, StoresTheSlotWhateverComesOfTheSearch) {
  short subsystem = -1;
  int classIndex = -7;
  for (const std::uint32_t tagId : {0xca000001u, 0x00000005u, 0xcf000001u, 0xff000001u, 0x18000001u}) {
    EXPECT_FALSE(XNMessageBase::getIndicesFromTagID(subsystem, classIndex, tagId));
    EXPECT_EQ(subsystem, static_cast<short>(tagId >> 24));
    EXPECT_EQ(classIndex, -7);
  }
}

TEST(TagLookup, KeepsResolvingClassIdZeroToTheFirstRecord) {
  const ClassIndices withoutId = classNamed("Demo_EmptyWithoutId");
  EXPECT_NE(withoutId.index, 0);
  short subsystem = -1;
  int classIndex = -1;
  ASSERT_TRUE(XNMessageBase::getIndicesFromTagID(subsystem, classIndex, withoutId.tag()));
  EXPECT_EQ(classIndex, 0);
}

TEST(TagLookup, FindsTheLeastAndTheGreatestId) {
  EXPECT_EQ(XNMessageBase::GetClassDef(0xceffffffu), &classNamed("Edge_EdgeFirst").record());
  EXPECT_EQ(XNMessageBase::GetClassDef(0xce000001u), &classNamed("Edge_EdgeLast").record());
  EXPECT_EQ(XNMessageBase::GetClassDef(0xce000002u), nullptr);
  EXPECT_EQ(XNMessageBase::GetClassDef(0xce000000u), nullptr);
}

TEST(TagLookup, TagOfIndicesNeedsASlotAndAnIndex) {
  std::uint32_t tagId = 7;
  EXPECT_FALSE(XNMessageBase::getTagIDFromIndices(-1, 0, tagId));
  EXPECT_FALSE(XNMessageBase::getTagIDFromIndices(208, 0, tagId));
  EXPECT_FALSE(XNMessageBase::getTagIDFromIndices(18, -1, tagId));
  EXPECT_EQ(tagId, 7u);
  EXPECT_TRUE(XNMessageBase::getTagIDFromIndices(18, 74, tagId));
  EXPECT_EQ(tagId, 0x12454ea9u);
  EXPECT_TRUE(XNMessageBase::getTagIDFromIndices(18, 30000, tagId));  // no upper check: a class without an id
  EXPECT_EQ(tagId, 0x12000000u);
  EXPECT_TRUE(XNMessageBase::getTagIDFromIndices(0, 0, tagId));
  EXPECT_EQ(tagId, 0u);
}

TEST(ClassLookup, ByIndicesNeedsASlotBetweenTheEnds) {
  EXPECT_EQ(XNMessageBase::GetClassDef(short{18}, 74),
            &classNamed("ZqEntities_ProcessingInstructionInfo").record());
  for (const auto& [subsystem, index] :
       {std::pair{short{-1}, 0}, {short{0}, 0}, {short{207}, 0}, {short{18}, -1}}) {
    LogCapture capture;
    EXPECT_EQ(XNMessageBase::GetClassDef(subsystem, index), nullptr);
    EXPECT_THAT(
        capture.lines(),
        ElementsAre(CapturedLine{
            "XNMessageBase::GetClassDef", 0,
            formatText("Unable to retrieve metadata for message with msgSysIndex : [%d], msgIndex : [%d]",
                       subsystem, index)}));
  }
}

TEST(ClassLookup, OfAMessageIsItsRecord) {
  const OpenMessage message = newMessage("Demo_EveryChild");
  EXPECT_EQ(XNMessageBase::GetClassDef(&message), &classNamed("Demo_EveryChild").record());
  EXPECT_EQ(XNMessageBase::GetClassDef(static_cast<const XNMessageBase*>(nullptr)), nullptr);
}

TEST(ClassLookup, OfTheDecoderForwards) {
  const std::uint32_t tagId = classNamed("Demo_EveryChild").tag();
  const _ClassDef* record = &classNamed("Demo_EveryChild").record();
  const OpenMessage message = newMessage("Demo_EveryChild");
  EXPECT_EQ(XMLDecoder::GetClassDef(tagId), record);
  EXPECT_EQ(XMLDecoder::GetClassDef(tagId & 0xff000000, tagId & 0xffffff), record);
  EXPECT_EQ(XMLDecoder::GetClassDef(&message), record);
}

TEST(ReferenceLookup, FollowsAReferenceIntoAnotherSubsystem) {
  const _ClassDef* record = &classNamed("ZqEntities_ProcessingInstructionInfo").record();
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID("\x12\x00\x00\x4a"), record);
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID(referring("\x12\x00\x00\x4aname")), record);
}

TEST(ReferenceLookup, FollowsAReferenceToAClassWithoutAnId) {
  const ClassIndices indices = classNamed("Demo_EmptyWithoutId");
  const char bytes[] = {static_cast<char>(indices.subsystem), 0, 0, static_cast<char>(indices.index)};
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID(bytes), &indices.record());
}

TEST(ReferenceLookup, OfNullIsNull) {
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID(static_cast<const void*>(nullptr)), nullptr);
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID(referring(nullptr)), nullptr);
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(ReferenceLookup, KeepsTwoTextsThatDifferInOneLetter) {
  LogCapture capture;
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID(referring("\xcf\x00\x00\x05name")), nullptr);
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID("\xff\x00\x00\x05"), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::GetClassDefFromPtrToClassID", 0,
                                       "Error retrieving metadata with msgSysIndex : [207], msgIndex : [5]. "
                                       "Total_subsystems : [207]"},
                          CapturedLine{"XNMessageBase::GetClassDefFromPtrToClassID", 0,
                                       "Error retrieving metadata with msgSysIndex : [255], msgIndex : [5]. "
                                       "Total_Subsystems : [207]"}));
}

TEST(ReferenceLookup, OfAnIndexBeyondTheRecordsIsNull) {
  EXPECT_EQ(XNMessageBase::GetClassDefFromClassID("\x12\xff\xff\xff"), nullptr);
}

// --- Names.

TEST(NameLookup, FindsSubsystemsByTheirExactName) {
  short subsystem = -1;
  EXPECT_TRUE(XNMessageBase::getMessageSystemIndexFromName("ZqEntities", subsystem));
  EXPECT_EQ(subsystem, 18);
  EXPECT_TRUE(XNMessageBase::getMessageSystemIndexFromName("Edge", subsystem));
  EXPECT_EQ(subsystem, 206);
  EXPECT_FALSE(XNMessageBase::getMessageSystemIndexFromName("zqentities", subsystem));
  EXPECT_FALSE(XNMessageBase::getMessageSystemIndexFromName("", subsystem));
  EXPECT_FALSE(XNMessageBase::getMessageSystemIndexFromName(nullptr, subsystem));
}

TEST(NameLookup, FindsClassesByTheirExactName) {
  short subsystem = 18;
  int classIndex = -1;
  EXPECT_TRUE(XNMessageBase::getMessageIndexFromName("ProcessingInstructionInfo", subsystem, classIndex));
  EXPECT_EQ(classIndex, 74);
  EXPECT_FALSE(XNMessageBase::getMessageIndexFromName("processingInstructionInfo", subsystem, classIndex));
  EXPECT_FALSE(XNMessageBase::getMessageIndexFromName(nullptr, subsystem, classIndex));
  for (short outside : {short{-1}, short{207}})
    EXPECT_FALSE(XNMessageBase::getMessageIndexFromName("ProcessingInstructionInfo", outside, classIndex));
  short empty = 24;
  EXPECT_FALSE(XNMessageBase::getMessageIndexFromName("ProcessingInstructionInfo", empty, classIndex));
}

TEST(NameLookup, FindsFieldsByHash) {
  const _ClassDef& record = classNamed("Demo_EveryType").record();
  for (int position = 0; position < record.getNumberOfFields(); ++position)
    EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, record.getFields()[position].getName()),
              position);
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, "noSuchField"), -1);
}

TEST(NameLookup, OfFieldsNeedsAClassWithFields) {
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(nullptr, "intField"), -1);
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&classNamed("Demo_Empty").record(), "intField"), -1);
}

TEST(NameLookup, KeepsAnsweringAHashCollisionWithTheFieldOfThatHash) {
  // "Aa" and "BB" are one hash in this function, and so are names that differ only so.
  constexpr FieldDef kFields[] = {{"AaField", nullptr, nameHash("AaField"), 0, 0, 0, FDT_INT}};
  const _ClassDef record("Collision", kFields, 1, -1, 1, 1);
  ASSERT_EQ(nameHash("AaField"), nameHash("BBField"));
  EXPECT_EQ(XNMessageBase::getFieldNumberFromName(&record, "BBField"), 0);
}

TEST(NameHash, IsThatOfTheCatalogue) {
  const std::string name = "errorCode";
  EXPECT_EQ(MySAX2Handler::getHash(name.c_str(), name.size()), 0x9cb015u);
  EXPECT_EQ(nameHash("processinginstructioninfo"), 0xcac2c9u);
  EXPECT_EQ(nameHash("__mapKey__"), 0x321e63u);
  EXPECT_EQ(nameHash("__mapValue__"), 0x882bf5u);
}

TEST(NameHash, TakesItsBytesAsSigned) {
  // One byte above 0x7f is a negative number: 0xff is -1, of which the low 24 bits are left.
  EXPECT_EQ(MySAX2Handler::getHash("\xff", 1), 0xffffffu);
  EXPECT_EQ(MySAX2Handler::getHash("\x80\x01", 2), (static_cast<std::uint32_t>(-128 * 31 + 1)) & 0xffffff);
  EXPECT_EQ(MySAX2Handler::getHash("a\0b", 3), ('a' * 31u * 31u + 'b') & 0xffffff);
}

// --- Enumerators.

TEST(EnumString, IsTheEnumeratorsName) {
  EXPECT_STREQ(XNMessageBase::getEnumString(202, "EveryMode", 2), "AUTO");
  EXPECT_STREQ(XNMessageBase::getEnumString(1, "ReportingOptions", 0x80), "DDB_JOB");
}

TEST(EnumString, OfAnUnknownValueOrEnumerationIsEmptyAndLogged) {
  for (const auto& [name, value] : {std::pair{"EveryMode", 9}, {"NoSuchEnum", 1}, {"everymode", 2}}) {
    LogCapture capture;
    EXPECT_STREQ(XNMessageBase::getEnumString(202, name, value), "");
    EXPECT_THAT(capture.lines(),
                ElementsAre(CapturedLine{
                    "XNMessageBase::getEnumString", 0,
                    formatText("Subsystem : [202] :: Enum : [%s] does not have a member with value : [%d]",
                               name, value)}));
  }
}

TEST(EnumString, OfASubsystemOutsideTheTableIsEmptyAndLogged) {
  for (const short subsystem : {short{-1}, short{207}}) {
    LogCapture capture;
    EXPECT_STREQ(XNMessageBase::getEnumString(subsystem, "EveryMode", 2), "");
    EXPECT_THAT(capture.lines(),
                ElementsAre(CapturedLine{"XNMessageBase::getEnumString", 0,
                                         formatText("Subsystem : [%d] does not exist", subsystem)}));
  }
}

TEST(EnumString, KeepsNotLookingWhetherTheClassIsAnEnumeration) {
  const FieldDef& field = fieldOf(classNamed("Demo_EveryChild").record(), "number");
  EXPECT_STREQ(XNMessageBase::getEnumString(202, "EveryChild", static_cast<int>(field.getFieldHashId())),
               "number");
}

// --- Old-way subsystems.

TEST(OldWay, IsToldByTheSlotAlone) {
  constexpr short kOld[] = {1,  2,  3,  4,  5,  6,  7,  9,   10,  11,  13,  15,  16,  17,
                            19, 25, 31, 33, 34, 36, 50, 103, 110, 111, 113, 114, 116, 201};
  for (unsigned slot = 0; slot < 256; ++slot) {
    const bool old = std::find(std::begin(kOld), std::end(kOld), static_cast<short>(slot)) != std::end(kOld);
    EXPECT_EQ(XNMessageBase::isOldWay(slot << 24), old) << slot;
    EXPECT_EQ(XNMessageBase::isOldWay((slot << 24) | 0xffffff), old) << slot;
  }
  for (const short slot : kOld) EXPECT_TRUE(gSubsystemTable[slot].oldWay) << slot;
  EXPECT_EQ(std::count_if(std::begin(gSubsystemTable), std::end(gSubsystemTable),
                          [](const SubsystemDef& row) { return row.oldWay; }),
            std::ssize(kOld));
}

// --- The schema text.

TEST(SchemaText, HasAHeaderAndALineForEachField) {
  std::string text = "before";
  ASSERT_TRUE(XNMessageBase::getMessageSchemaString(0x01000020, text, true, true));
  EXPECT_EQ(text,
            "Subsystem Name : ZQGui                         \n"
            "Subsystem Id : 1                             \n"
            "Message Name : SaveAlert                     \n"
            "Message Id : 32                            \n\n"
            "FIELD TYPE                    \tFIELD NAME                    \tHASH      \tID   \tINDEX\n"
            "ProcessingInstructionInfo     \tprocessinginstructioninfo     \t13288137  \t0    \t0    \n"
            "uint                          \timpersonateUser               \t16751076  \t1    \t1    \n"
            "string                        \tloginName                     \t8585620   \t2    \t2    \n"
            "bstring                       \tpassword                      \t9026203   \t3    \t6    \n"
            "uint                          \tuseNetworkShare               \t9320824   \t4    \t7    \n"
            "string                        \talertLocation                 \t11694385  \t5    \t8    \n"
            "string                        \tzqpassword                    \t12493522  \t6    \t12   \n");
}

TEST(SchemaText, WithoutDetailsHasTwoColumns) {
  std::string text;
  ASSERT_TRUE(XNMessageBase::getMessageSchemaString(classNamed("Demo_EveryChild").tag(), text, true, false));
  EXPECT_THAT(text, HasSubstr("\n\nFIELD TYPE                    \tFIELD NAME                    \n"
                              "int                           \tnumber                        \n"
                              "string                        \ttext                          \n"));
}

TEST(SchemaText, LeavesOutFieldsWithoutAHashUnlessAsked) {
  const std::uint32_t tagId = classNamed("Demo_Hashless").tag();
  std::string all;
  std::string some;
  ASSERT_TRUE(XNMessageBase::getMessageSchemaString(tagId, all, true, false));
  ASSERT_TRUE(XNMessageBase::getMessageSchemaString(tagId, some, false, false));
  EXPECT_THAT(all, HasSubstr("hiddenNumber"));
  EXPECT_THAT(some, ::testing::Not(HasSubstr("hidden")));
  EXPECT_THAT(some, HasSubstr("last"));
}

TEST(SchemaText, OfAnUnknownTagIsFalse) {
  std::string text = "kept";
  LogCapture capture;
  EXPECT_FALSE(XNMessageBase::getMessageSchemaString(0xca000001, text, true, true));
  EXPECT_EQ(text, "kept");
}

}  // namespace
}  // namespace zqxml

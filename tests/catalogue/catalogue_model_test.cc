// The shape of the catalogue: field types, names, references, results.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/xml/xml_decoder.h>

#include <string>

namespace zqxml {
namespace {

using ::testing::ElementsAre;

constexpr FieldDef fieldOfType(unsigned type, const char* namePointer) {
  return {namePointer, nullptr, 1, 0, 0, 0, static_cast<FieldDataType>(type)};
}

// --- Names, references and values of fields.

TEST(CatalogueModel, NameStandsBehindTheReferencesOfItsType) {
  EXPECT_STREQ(fieldOfType(FDT_MAP_OBJECT_OBJECT, "\x1e\x00\x0d\xb1\x1e\x00\x0d\xb1mapM1_M1").getName(),
               "mapM1_M1");
  EXPECT_STREQ(fieldOfType(FDT_OBJECT, "\x12\x00\x00\x4aname").getName(), "name");
  EXPECT_STREQ(fieldOfType(FDT_STRING, "name").getName(), "name");
  const FieldDef& map = fieldOf(classNamed("App_TestMessage2").record(), "mapM1_M1");
  EXPECT_EQ(map.getType(), FDT_MAP_OBJECT_OBJECT);
  EXPECT_EQ(map.getName() - map.namePointer(), 8);
}

TEST(CatalogueModel, ReferenceHasItsSubsystemInTheFirstByte) {
  const ClassRef ref = ClassRef::read("\x1e\x00\x0d\xb1");
  EXPECT_EQ(ref.subsystem, 30);
  EXPECT_EQ(ref.classIndex, 3505);
}

TEST(CatalogueModel, AddressOfAnAbsentBstringIsNullAndThatOfAStringNever) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& bytes = fieldOf(message, "bstringField");
  const FieldDef& text = fieldOf(message, "stringField");
  EXPECT_EQ(bytes.getFieldAddrResolved(&message), ownedBy<bstring>(message, "bstringField"));
  message.deleteMember(bytes.getMemNum(), message.getTagID(), 0, true);
  EXPECT_EQ(bytes.getFieldAddrResolved(&message), nullptr);
  EXPECT_EQ(text.getFieldAddrResolved(&message), &MessageAccess::slot(message, text));
}

TEST(CatalogueModel, MapKeyTypeOfAStringIsNone) {
  EXPECT_EQ(FieldDef::getMapKeyType(FDT_STRING), FDT_NONE);
}

TEST(CatalogueModel, SelfRecordCountsAsAFieldAndTakesNoSlot) {
  const _ClassDef& record = classNamed("Demo_SelfPair").record();
  EXPECT_EQ(record.getNumberOfFields(), 3);
  EXPECT_EQ(record.getNumberOfElements(), 1 + 4);
  const FieldDef& self = record.getFields()[2];
  EXPECT_EQ(self.getType(), FDT_NONE);
  EXPECT_STREQ(self.getName(), "SelfPair");
  EXPECT_EQ(self.getFieldHashId(), nameHash("SelfPair"));
  EXPECT_EQ(self.getMemNum(), 0);
  EXPECT_EQ(self.getIndex(), 0);
  EXPECT_TRUE(self.hasAnnotation());
}

// --- The field types, row by row.

struct TypeRow {
  unsigned value;
  const char* name;
  const char*
      text;  // of a field of the type whose class is Leaf (or, behind a comma, Leaf again); null for none
  unsigned slots;
  const char* flags;  // P, X, L, C, M as in the functions below
  int encoding;
};

// The classes named in the texts are those that the references below name.
constexpr TypeRow kTypes[] = {
    {0, "FDT_NONE", nullptr, 0, "", 7},
    {1, "FDT_INT", "int", 1, "PX", 6},
    {2, "FDT_UINT", "uint", 1, "PX", 0},
    {3, "FDT_LONG", "long", 1, "PX", 6},
    {4, "FDT_ULONG", "ulong", 1, "PX", 0},
    {5, "FDT_LONGLONG", "longlong", 1, "PX", 1},
    {6, "FDT_ULONGLONG", "ulonglong", 1, "PXLC", 1},
    {7, "FDT_BOOL", "bool", 1, "PX", 0},
    {8, "FDT_STRING", "string", 4, "PX", 2},
    {9, "FDT_WSTRING", "wstring", 4, "PX", 2},
    {10, "FDT_ENUM", "TestMessage1", 1, "PX", 0},
    {11, "FDT_DOUBLE", "double", 1, "PX", 1},
    {12, "FDT_FLOAT", "float", 1, "PX", 5},
    {13, "FDT_LIST_INT", "list<int>", 1, "XLC", 2},
    {14, "FDT_LIST_UINT", "list<uint>", 1, "XLC", 2},
    {15, "FDT_LIST_LONG", "list<long>", 1, "XLC", 2},
    {16, "FDT_LIST_ULONG", "list<ulong>", 1, "XLC", 2},
    {17, "FDT_LIST_LONGLONG", "list<longlong>", 1, "XLC", 2},
    {18, "FDT_LIST_ULONGLONG", nullptr, 1, "X", 2},
    {19, "FDT_LIST_ENUM", "list<TestMessage1>", 1, "XLC", 2},
    {20, "FDT_LIST_STRING", "list<string>", 1, "XLC", 2},
    {21, "FDT_LIST_WSTRING", "list<wstring>", 1, "XLC", 2},
    {22, "FDT_LIST_OBJECT", "list<TestMessage1>", 1, "LC", 2},
    {23, "FDT_OBJECT", "TestMessage1", 1, "", 2},
    {24, "FDT_RESERVED_24", nullptr, 0, "", 7},
    {25, "FDT_BSTRING", "bstring", 1, "PX", 2},
    {26, "FDT_LIST_BOOL", "list<bool>", 1, "XLC", 2},
    {27, "FDT_LIST_FLOAT", "list<float>", 1, "XLC", 2},
    {28, "FDT_LIST_DOUBLE", "list<double>", 1, "XLC", 2},
    {29, "FDT_RESERVED_29", nullptr, 1, "X", 7},
    {30, "FDT_LIST_BSTRING", nullptr, 1, "XC", 2},
    {31, "FDT_PSTRING", "bstring", 1, "PX", 2},
    {32, "FDT_ENUM_VALUE", nullptr, 0, "X", 7},
    {33, "FDT_MAP_INT64_INT64", "map<int64,int64>", 1, "XCM", 2},
    {34, "FDT_MAP_INT64_STRING", "map<int64,string>", 1, "XCM", 2},
    {35, "FDT_MAP_INT64_OBJECT", "map<longlong,TestMessage1>", 1, "CM", 2},
    {36, "FDT_MAP_STRING_INT64", "map<string,int64>", 1, "XCM", 2},
    {37, "FDT_MAP_STRING_STRING", "map<string,string>", 1, "XCM", 2},
    {38, "FDT_MAP_STRING_OBJECT", "map<string,TestMessage1>", 1, "CM", 2},
    {39, "FDT_MAP_OBJECT_OBJECT", "map<TestMessage1,ProcessingInstructionInfo>", 1, "CM", 2},
    {40, "FDT_INT64", nullptr, 0, "X", 1},
    {41, "FDT_TIME32", "zq_time32_t", 1, "PX", 6},
    {42, "FDT_TIME64", "zq_time64_t", 1, "PX", 1},
};

class FieldTypeTable : public ::testing::TestWithParam<TypeRow> {
 protected:
  /// A field of the row's type; its references, where it has them, are TestMessage1 and
  /// ProcessingInstructionInfo.
  FieldDef field() const { return fieldOfType(GetParam().value, "\x1e\x00\x0d\xb1\x12\x00\x00\x4aname"); }
  bool has(char flag) const {
    return std::string_view(GetParam().flags).find(flag) != std::string_view::npos;
  }
};

TEST_P(FieldTypeTable, HasItsNameAndSlots) {
  EXPECT_STREQ(kFieldTypes[GetParam().value].name, GetParam().name);
  EXPECT_EQ(kFieldTypes[GetParam().value].slots, GetParam().slots);
}

TEST_P(FieldTypeTable, HasItsText) {
  const std::string unknown = std::string("Unknown type ") + static_cast<char>(GetParam().value);
  EXPECT_EQ(field().getFieldTypeName(), GetParam().text == nullptr ? unknown : GetParam().text);
}

TEST_P(FieldTypeTable, IsClassified) {
  const unsigned type = GetParam().value;
  EXPECT_EQ(FieldDef::isPrimitiveType(type), has('P'));
  EXPECT_EQ(XMLDecoder::isPrimitive(type), has('X'));
  EXPECT_EQ(XMLDecoder::isListType(type), has('L'));
  EXPECT_EQ(BinarySerializerTestAccess::isCollectionType(static_cast<int>(type)), has('C'));
  EXPECT_EQ(FieldDef::isMapType(type), has('M'));
  EXPECT_EQ(XMLDecoder::isEnum(type), type == 10 || type == 19);
}

TEST_P(FieldTypeTable, HasItsEncoding) {
  EXPECT_EQ(BinarySerializerTestAccess::encodingType(static_cast<int>(GetParam().value)),
            GetParam().encoding);
}

INSTANTIATE_TEST_SUITE_P(AllTypes, FieldTypeTable, ::testing::ValuesIn(kTypes),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FieldTypes, AreFortyThree) {
  EXPECT_EQ(std::size(kTypes), kFieldTypeCount);
  for (unsigned value = 0; value < std::size(kTypes); ++value) EXPECT_EQ(kTypes[value].value, value);
}

TEST(FieldTypes, BeyondTheTableAreNothing) {
  for (const unsigned type : {43u, 44u, 127u, 200u, 255u}) {
    EXPECT_FALSE(FieldDef::isPrimitiveType(type));
    EXPECT_FALSE(XMLDecoder::isPrimitive(type));
    EXPECT_FALSE(XMLDecoder::isListType(type));
    EXPECT_FALSE(BinarySerializerTestAccess::isCollectionType(static_cast<int>(type)));
    EXPECT_FALSE(FieldDef::isMapType(type));
    EXPECT_EQ(BinarySerializerTestAccess::encodingType(static_cast<int>(type)), 7);
    EXPECT_EQ(fieldOfType(type, "name").getFieldTypeName(),
              std::string("Unknown type ") + static_cast<char>(type));
    EXPECT_STREQ(fieldOfType(type, "name").getName(), "name");
  }
}

TEST(FieldTypes, NameBeginsBehindAsManyReferencesAsTheTypeHas) {
  for (unsigned type = 0; type < kFieldTypeCount; ++type) {
    const unsigned bytes = type == 39 ? 8
                           : type == 10 || type == 19 || type == 22 || type == 23 || type == 35 || type == 38
                               ? 4
                               : 0;
    const char* pointer = "12345678name";
    EXPECT_EQ(fieldOfType(type, pointer).getName(), pointer + bytes) << type;
  }
}

TEST(FieldTypes, MapsHaveTheirSides) {
  struct Sides {
    unsigned map;
    FieldDataType key, value;
  };
  constexpr Sides kSides[] = {{33, FDT_INT64, FDT_INT64},   {34, FDT_INT64, FDT_STRING},
                              {35, FDT_INT64, FDT_OBJECT},  {36, FDT_STRING, FDT_INT64},
                              {37, FDT_STRING, FDT_STRING}, {38, FDT_STRING, FDT_OBJECT},
                              {39, FDT_OBJECT, FDT_OBJECT}};
  for (unsigned type = 0; type < 256; ++type) {
    const bool map = type >= 33 && type <= 39;
    EXPECT_EQ(FieldDef::getMapKeyType(type), map ? kSides[type - 33].key : FDT_NONE) << type;
    EXPECT_EQ(FieldDef::getMapValueType(type), map ? kSides[type - 33].value : FDT_NONE) << type;
  }
}

TEST(FieldTypes, ScalarsHaveASize) {
  for (unsigned type = 0; type < 256; ++type) {
    const int size = type == 7                                                                      ? 1
                     : type == 1 || type == 2 || type == 3 || type == 4 || type == 12 || type == 41 ? 4
                     : type == 5 || type == 11 || type == 42                                        ? 8
                                                                                                    : 0;
    LogCapture capture;
    EXPECT_EQ(getSizeOfField(fieldOfType(type, "\x1e\x00\x0d\xb1\x12\x00\x00\x4aname")), size) << type;
    if (size != 0) {
      EXPECT_TRUE(capture.empty()) << type;
      continue;
    }
    const FieldDef field = fieldOfType(type, "\x1e\x00\x0d\xb1\x12\x00\x00\x4aname");
    EXPECT_THAT(capture.lines(),
                ElementsAre(CapturedLine{"createElementOfType", 0,
                                         formatText("Unknown Type for Computing size. Type:[%d] Field:[%s].",
                                                    type, field.getName())}));
  }
}

// --- Texts of types whose class cannot be had.

TEST(FieldTypeName, FallsBackWhenTheClassCannotBeHad) {
  struct Fallback {
    unsigned type;
    const char* text;
  };
  constexpr Fallback kFallbacks[] = {{10, "Invalid enum type"},
                                     {19, "Invalid list<enum> type"},
                                     {22, "Invalid list<object> type"},
                                     {23, "Invalid complex object type"},
                                     {35, "Invalid map<longlong, object>"},
                                     {38, "Invalid map<string, object>"},
                                     {39, "Invalid map<Object, Object>"}};
  for (const auto& [type, text] : kFallbacks) {
    LogCapture capture;
    const FieldDef beyond = fieldOfType(type, "\xfa\x00\x00\x01\xfa\x00\x00\x01name");
    EXPECT_EQ(beyond.getFieldTypeName(), text);
    EXPECT_THAT(
        capture.lines(),
        ElementsAre(CapturedLine{
            "XNMessageBase::GetClassDefFromPtrToClassID", 0,
            "Error retrieving metadata with msgSysIndex : [250], msgIndex : [1]. Total_subsystems : [207]"}));
    EXPECT_EQ(fieldOfType(type, nullptr).getFieldTypeName(), text);
    EXPECT_EQ(fieldOfType(type, "\x18\x00\x00\x01\x18\x00\x00\x01name").getFieldTypeName(),
              text);  // an empty slot
  }
}

TEST(FieldTypeName, OfAMapWhoseValueClassCannotBeHadNamesTheKey) {
  LogCapture capture;
  EXPECT_EQ(fieldOfType(39, "\x1e\x00\x0d\xb1\xfa\x00\x00\x01name").getFieldTypeName(),
            "Invalid map<TestMessage1,object>");
}

// --- Records.

TEST(CatalogueRecords, StartOutZero) {
  constexpr FieldDef field;
  EXPECT_EQ(field.getName(), nullptr);
  EXPECT_EQ(field.getAnnotationFlags(), nullptr);
  EXPECT_FALSE(field.hasAnnotation());
  EXPECT_EQ(field.getFieldHashId(), 0u);
  EXPECT_EQ(field.getLoczId(), 0);
  EXPECT_EQ(field.getMemNum(), 0);
  EXPECT_EQ(field.getIndex(), 0);
  EXPECT_EQ(field.getType(), FDT_NONE);
}

TEST(CatalogueRecords, GiveWhatTheyHold) {
  constexpr FieldDef field("name", "\0\3\0", 5, -6, 7, 8, FDT_INT);
  EXPECT_EQ(field.getFieldHashId(), 5u);
  EXPECT_EQ(field.getLoczId(), -6);
  EXPECT_EQ(field.getMemNum(), 7);
  EXPECT_EQ(field.getIndex(), 8);
  EXPECT_EQ(field.getType(), FDT_INT);
  EXPECT_TRUE(field.hasAnnotation());
  EXPECT_EQ(field.getAnnotationFlags()[1], 3);
}

TEST(CatalogueRecords, ClassIsAnEnumerationByItsFirstFieldOnly) {
  EXPECT_TRUE(classNamed("Demo_EveryMode").record().isEnumeration());
  EXPECT_FALSE(classNamed("Demo_EveryType").record().isEnumeration());
  EXPECT_FALSE(classNamed("Demo_Empty").record().isEnumeration());
  EXPECT_EQ(classNamed("Demo_EveryMode").record().getNumberOfElements(), 0);
}

TEST(CatalogueRecords, AddressesFollowTheType) {
  OpenMessage message = newMessage("Demo_EveryType");
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    const void* slot = &MessageAccess::slot(message, field);
    const unsigned type = field.getType();
    const bool inSlot = (type >= 1 && type <= 12) || type == 41 || type == 42;
    const void* content = reinterpret_cast<const void*>(slotOf(message, field.getName()));
    EXPECT_EQ(field.getFieldAddrResolved(&message), inSlot ? slot : content) << field.getName();
    EXPECT_EQ(field.getFieldAddrResolved(nullptr), nullptr) << field.getName();
  }
}

TEST(CatalogueRecords, AddressInAMessageWithoutSuchSlotsIsNull) {
  OpenMessage child = newMessage("Demo_EveryChild");  // six slots
  for (const FieldDef& field : classNamed("Demo_EveryType").record()) {
    const bool fits = field.getIndex() + fieldTypeFacts(field.getType()).slots <= 6;
    if (fits) continue;
    EXPECT_EQ(field.getFieldAddrResolved(&child), nullptr) << field.getName();
  }
  EXPECT_EQ(FieldDef("below", nullptr, 1, 0, 0, -1, FDT_INT).getFieldAddrResolved(&child), nullptr);
}

TEST(CatalogueRecords, AddressOfWhatStoresNothingIsNull) {
  OpenMessage message = newMessage("Demo_Reserved29");
  EXPECT_EQ(fieldOf(message, "reserved").getFieldAddrResolved(&message), nullptr);
  for (const unsigned type : {0u, 24u, 29u, 32u, 40u, 43u, 255u})
    EXPECT_EQ(fieldOfType(type, "name").getFieldAddrResolved(&message), nullptr) << type;
}

TEST(ValidEnumValue, IsOneOfTheEnumeratorsValues) {
  const _ClassDef& record = classNamed("Demo_EveryType").record();
  for (const char* name : {"enumField", "listEnumField"}) {
    EXPECT_TRUE(FieldDef::isValidEnumValue(fieldOf(record, name), 2)) << name;
    EXPECT_FALSE(FieldDef::isValidEnumValue(fieldOf(record, name), 3)) << name;
  }
  EXPECT_FALSE(FieldDef::isValidEnumValue(fieldOf(record, "intField"), 2));
}

TEST(ValidEnumValue, LogsAClassThatCannotBeReached) {
  LogCapture capture;
  EXPECT_FALSE(FieldDef::isValidEnumValue(fieldOfType(FDT_ENUM, "\xfa\x00\x00\x01mode"), -7));
  EXPECT_TRUE(capture.has("FieldDef::isValidEnumValue", 0, "Error identifying [mode]:[-7] as an enum "));
}

TEST(MessageResults, HaveTheirNumbers) {
  EXPECT_EQ(XN_MSG_OK, 0);
  EXPECT_EQ(XN_MSG_FAILED, 1);
  EXPECT_EQ(XN_MSG_PARSE_ERROR, 4);
  EXPECT_EQ(XN_MSG_XML_LIBRARY_ERROR, 5);
  EXPECT_EQ(XN_MSG_NO_PASSWORD_HANDLER, 6);
}

TEST(TagIds, JoinSlotAndClassId) {
  EXPECT_EQ(makeTagId(18, 0x454ea9), 0x12454ea9u);
  EXPECT_EQ(subsystemOfTag(0x12454ea9), 18);
  EXPECT_EQ(classNamed("ZqEntities_ProcessingInstructionInfo").tag(), 0x12454ea9u);
}

}  // namespace
}  // namespace zqxml

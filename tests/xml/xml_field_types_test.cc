// Every field type as the writer gives it, as attributes and as elements.
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/message/internal/message_access.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <string>

#include "tests/support/log_capture.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using Demo::EveryChild;
using Demo::EveryMode;
using Demo::EveryType;
using Number = EveryType::FieldNumber;

/// One field type: what is set, and the content of the root element in both forms.
struct TypeRow {
  const char* name;
  std::function<void(EveryType&)> fill;
  const char* attributes;
  const char* elements;
};

void PrintTo(const TypeRow& row, std::ostream* out) {
  *out << row.name;
}

std::string rowName(const testing::TestParamInfo<TypeRow>& row) {
  return row.param.name;
}

class EveryFieldType : public testing::TestWithParam<TypeRow> {};

TEST_P(EveryFieldType, HasItsForm) {
  const TypeRow& row = GetParam();
  EveryType msg;
  row.fill(msg);
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), "<Demo_EveryType" + std::string(row.attributes));
  EXPECT_EQ(xmlOf(msg, withElements()), "<Demo_EveryType" + std::string(row.elements));
  EXPECT_TRUE(log.empty());
}

EveryChild child(int number) {
  EveryChild object;
  object.setNumber(number);
  return object;
}

const TypeRow kScalars[] = {
    {"Int", [](auto& m) { m.setIntField(-5); }, R"( intField="-5"/>)",
     "><intField>-5</intField></Demo_EveryType>"},
    {"Uint", [](auto& m) { m.setUintField(4294967295u); }, R"( uintField="4294967295"/>)",
     "><uintField>4294967295</uintField></Demo_EveryType>"},
    {"Long", [](auto& m) { m.setLongField(-2147483647 - 1); }, R"( longField="-2147483648"/>)",
     "><longField>-2147483648</longField></Demo_EveryType>"},
    {"Ulong", [](auto& m) { m.setUlongField(4294967295u); }, R"( ulongField="4294967295"/>)",
     "><ulongField>4294967295</ulongField></Demo_EveryType>"},
    {"Longlong", [](auto& m) { m.setLonglongField(std::numeric_limits<std::int64_t>::min()); },
     R"( longlongField="-9223372036854775808"/>)",
     "><longlongField>-9223372036854775808</longlongField></Demo_EveryType>"},
    {"KeepsUlonglongSigned", [](auto& m) { m.setUlonglongField(std::numeric_limits<std::uint64_t>::max()); },
     R"( ulonglongField="-1"/>)", "><ulonglongField>-1</ulonglongField></Demo_EveryType>"},
    {"Bool", [](auto& m) { m.setBoolField(true); }, R"( boolField="1"/>)",
     "><boolField>1</boolField></Demo_EveryType>"},
    {"BoolFalse", [](auto& m) { m.setBoolField(false); }, R"( boolField="0"/>)",
     "><boolField>0</boolField></Demo_EveryType>"},
    {"String", [](auto& m) { m.setStringField("a<b"); }, R"( stringField="a&lt;b"/>)",
     "><stringField>a&lt;b</stringField></Demo_EveryType>"},
    {"Wstring", [](auto& m) { m.setWstringField(u"wide €"); }, R"( wstringField="wide €"/>)",
     "><wstringField>wide €</wstringField></Demo_EveryType>"},
    {"Enum", [](auto& m) { m.setEnumField(EveryMode::AUTO); }, R"( enumField="2"/>)",
     "><enumField>2</enumField></Demo_EveryType>"},
    {"KeepsSixDigitsOfADouble", [](auto& m) { m.setDoubleField(3.14159265358979); },
     R"( doubleField="3.14159"/>)", "><doubleField>3.14159</doubleField></Demo_EveryType>"},
    {"DoubleInScientificForm", [](auto& m) { m.setDoubleField(1e20); }, R"( doubleField="1e+20"/>)",
     "><doubleField>1e+20</doubleField></Demo_EveryType>"},
    {"KeepsSixDigitsOfAFloat", [](auto& m) { m.setFloatField(1234567.0f); }, R"( floatField="1.23457e+06"/>)",
     "><floatField>1.23457e+06</floatField></Demo_EveryType>"},
    {"Bstring", [](auto& m) { m.setBstringField("bytes"); }, R"( bstringField="Ynl0ZXM="/>)",
     "><bstringField>Ynl0ZXM=</bstringField></Demo_EveryType>"},
    {"Pstring", [](auto& m) { m.setPstringField("secret"); }, R"( pstringField="secret"/>)",
     "><pstringField>secret</pstringField></Demo_EveryType>"},
    {"Time32", [](auto& m) { m.setTime32Field(-1); }, R"( time32Field="-1"/>)",
     "><time32Field>-1</time32Field></Demo_EveryType>"},
    {"Time64", [](auto& m) { m.setTime64Field(1577836800); }, R"( time64Field="1577836800"/>)",
     "><time64Field>1577836800</time64Field></Demo_EveryType>"},
};
INSTANTIATE_TEST_SUITE_P(Scalars, EveryFieldType, testing::ValuesIn(kScalars), rowName);

const TypeRow kLists[] = {
    {"Int",
     [](auto& m) {
       m.setListIntField({-1, 2});
     },
     R"(><listIntField val="-1"/><listIntField val="2"/></Demo_EveryType>)",
     "><listIntField>-1</listIntField><listIntField>2</listIntField></Demo_EveryType>"},
    {"Uint", [](auto& m) { m.setListUintField({4294967295u}); },
     R"(><listUintField val="4294967295"/></Demo_EveryType>)",
     "><listUintField>4294967295</listUintField></Demo_EveryType>"},
    {"Long", [](auto& m) { m.setListLongField({-3}); }, R"(><listLongField val="-3"/></Demo_EveryType>)",
     "><listLongField>-3</listLongField></Demo_EveryType>"},
    {"Ulong", [](auto& m) { m.setListUlongField({4294967295u}); },
     R"(><listUlongField val="4294967295"/></Demo_EveryType>)",
     "><listUlongField>4294967295</listUlongField></Demo_EveryType>"},
    {"Longlong", [](auto& m) { m.setListLonglongField({-9000000000}); },
     R"(><listLonglongField val="-9000000000"/></Demo_EveryType>)",
     "><listLonglongField>-9000000000</listLonglongField></Demo_EveryType>"},
    {"Ulonglong", [](auto& m) { m.setListUlonglongField({18446744073709551615u}); },
     R"(><listUlonglongField val="18446744073709551615"/></Demo_EveryType>)",
     "><listUlonglongField>18446744073709551615</listUlonglongField></Demo_EveryType>"},
    {"Enum",
     [](auto& m) {
       m.setListEnumField({1, 2});
     },
     R"(><listEnumField val="1"/><listEnumField val="2"/></Demo_EveryType>)",
     "><listEnumField>1</listEnumField><listEnumField>2</listEnumField></Demo_EveryType>"},
    {"Bool",
     [](auto& m) {
       m.setListBoolField({1, 0, 7});
     },
     R"(><listBoolField val="1"/><listBoolField val="0"/><listBoolField val="7"/></Demo_EveryType>)",
     "><listBoolField>1</listBoolField><listBoolField>0</listBoolField><listBoolField>7</listBoolField>"
     "</Demo_EveryType>"},
    {"Float",
     [](auto& m) {
       m.setListFloatField({0.5f, 1234567.0f});
     },
     R"(><listFloatField val="0.5"/><listFloatField val="1.23457e+06"/></Demo_EveryType>)",
     "><listFloatField>0.5</listFloatField><listFloatField>1.23457e+06</listFloatField></Demo_EveryType>"},
    {"Double", [](auto& m) { m.setListDoubleField({1e-7}); },
     R"(><listDoubleField val="1e-07"/></Demo_EveryType>)",
     "><listDoubleField>1e-07</listDoubleField></Demo_EveryType>"},
    {"String",
     [](auto& m) {
       m.setListStringField({"x", "", "\x02"});
     },
     R"(><listStringField val="x"/><listStringField val=""/><listStringField val="||#2!"/></Demo_EveryType>)",
     "><listStringField>x</listStringField><listStringField></listStringField>"
     "<listStringField>||#2!</listStringField></Demo_EveryType>"},
    {"Wstring",
     [](auto& m) {
       m.setListWstringField({u"€", u"\u0002"});
     },
     R"(><listWstringField val="€"/><listWstringField val="||#2!"/></Demo_EveryType>)",
     "><listWstringField>€</listWstringField><listWstringField>||#2!</listWstringField></Demo_EveryType>"},
    {"Bstring",
     [](auto& m) {
       m.setListBstringField({bstring("a"), bstring(std::string(1, '\0'))});
     },
     R"(><listBstringField val="YQ=="/><listBstringField val="AA=="/></Demo_EveryType>)",
     "><listBstringField>YQ==</listBstringField><listBstringField>AA==</listBstringField></Demo_EveryType>"},
    {"Object",
     [](auto& m) {
       m.setListObjectField({child(1), EveryChild()});
     },
     R"(><listObjectField number="1"/><listObjectField/></Demo_EveryType>)",
     "><listObjectField><number>1</number></listObjectField><listObjectField/></Demo_EveryType>"},
};
INSTANTIATE_TEST_SUITE_P(Lists, EveryFieldType, testing::ValuesIn(kLists), rowName);

const TypeRow kMapsAndObjects[] = {
    {"Object", [](auto& m) { m.mutableObjectField().setNumber(1); },
     R"(><objectField number="1"/></Demo_EveryType>)",
     "><objectField><number>1</number></objectField></Demo_EveryType>"},
    {"ProcessingInstructionInfo", [](auto& m) { m.getProcessinginstructioninfo(true); },
     "><processinginstructioninfo/></Demo_EveryType>", "><processinginstructioninfo/></Demo_EveryType>"},
    {"Int64Int64",
     [](auto& m) {
       m.setMapInt64Int64Field({{2, 20}, {-1, -10}});
     },
     R"(><mapInt64Int64Field><__mapKey__ val="-1"/><__mapValue__ val="-10"/></mapInt64Int64Field>)"
     R"(<mapInt64Int64Field><__mapKey__ val="2"/><__mapValue__ val="20"/></mapInt64Int64Field></Demo_EveryType>)",
     "><mapInt64Int64Field><__mapKey__>-1</__mapKey__><__mapValue__>-10</__mapValue__></mapInt64Int64Field>"
     "<mapInt64Int64Field><__mapKey__>2</__mapKey__><__mapValue__>20</__mapValue__></mapInt64Int64Field>"
     "</Demo_EveryType>"},
    {"Int64String",
     [](auto& m) {
       m.setMapInt64StringField({{1, "\x01"}});
     },
     R"(><mapInt64StringField><__mapKey__ val="1"/><__mapValue__ val="||#1!"/></mapInt64StringField></Demo_EveryType>)",
     "><mapInt64StringField><__mapKey__>1</__mapKey__><__mapValue__>||#1!</__mapValue__></"
     "mapInt64StringField>"
     "</Demo_EveryType>"},
    {"Int64Object",
     [](auto& m) {
       m.setMapInt64ObjectField({{1, child(5)}});
     },
     R"(><mapInt64ObjectField><__mapKey__ val="1"/><__mapValue__ number="5"/></mapInt64ObjectField></Demo_EveryType>)",
     "><mapInt64ObjectField><__mapKey__>1</__mapKey__><__mapValue__><number>5</number></__mapValue__>"
     "</mapInt64ObjectField></Demo_EveryType>"},
    {"StringInt64",
     [](auto& m) {
       m.setMapStringInt64Field({{"b", 2}, {"a", 1}});
     },
     R"(><mapStringInt64Field><__mapKey__ val="a"/><__mapValue__ val="1"/></mapStringInt64Field>)"
     R"(<mapStringInt64Field><__mapKey__ val="b"/><__mapValue__ val="2"/></mapStringInt64Field></Demo_EveryType>)",
     "><mapStringInt64Field><__mapKey__>a</__mapKey__><__mapValue__>1</__mapValue__></mapStringInt64Field>"
     "<mapStringInt64Field><__mapKey__>b</__mapKey__><__mapValue__>2</__mapValue__></mapStringInt64Field>"
     "</Demo_EveryType>"},
    {"StringString",
     [](auto& m) {
       m.setMapStringStringField({{"ü", "]]>"}});
     },
     R"(><mapStringStringField><__mapKey__ val="ü"/><__mapValue__ val="]]>"/></mapStringStringField></Demo_EveryType>)",
     "><mapStringStringField><__mapKey__>ü</__mapKey__><__mapValue__>]]&gt;</__mapValue__></"
     "mapStringStringField>"
     "</Demo_EveryType>"},
    {"StringObject",
     [](auto& m) {
       m.setMapStringObjectField({{"k", child(5)}});
     },
     R"(><mapStringObjectField><__mapKey__ val="k"/><__mapValue__ number="5"/></mapStringObjectField></Demo_EveryType>)",
     "><mapStringObjectField><__mapKey__>k</__mapKey__><__mapValue__><number>5</number></__mapValue__>"
     "</mapStringObjectField></Demo_EveryType>"},
    {"ObjectObject", [](auto& m) { m.mutableMapObjectObjectField().emplace(child(1), child(2)); },
     R"(><mapObjectObjectField><__mapKey__ number="1"/><__mapValue__ number="2"/></mapObjectObjectField></Demo_EveryType>)",
     "><mapObjectObjectField><__mapKey__><number>1</number></__mapKey__><__mapValue__><number>2</number>"
     "</__mapValue__></mapObjectObjectField></Demo_EveryType>"},
};
INSTANTIATE_TEST_SUITE_P(MapsAndObjects, EveryFieldType, testing::ValuesIn(kMapsAndObjects), rowName);

TEST(FieldTypesWithoutForm, WriteNothing) {
  for (const unsigned type : {0u, 24u, 29u, 32u, 40u, 43u, 100u, 255u}) {
    Demo::SampleChild msg;
    msg.setN(1);
    PatchedRecord record(msg);
    record.retype(0, type);
    LogCapture log;
    EXPECT_EQ(xmlOf(msg), "<Demo_SampleChild/>") << type;
    EXPECT_EQ(xmlOf(msg, withElements()), "<Demo_SampleChild/>") << type;
    EXPECT_TRUE(log.empty()) << type;
  }
}

}  // namespace
}  // namespace zqxml

#include "tools/zqmsg/message_diff.h"

#include <gmock/gmock.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <string>
#include <vector>

namespace zqxml::tool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::unique_ptr<XNMessageBase> messageFrom(const std::string& xml) {
  std::unique_ptr<XNMessageBase> message(XMLSerializer().unserialize(xml, false));
  EXPECT_NE(message, nullptr) << xml;
  return message;
}

std::vector<std::string> differences(const std::string& aXml, const std::string& bXml) {
  const auto a = messageFrom(aXml);
  const auto b = messageFrom(bXml);
  std::vector<std::string> lines;
  MessageDiff diff([&lines](const std::string& path, const std::string& aText, const std::string& bText) {
    lines.push_back(path + ": " + aText + " != " + bText);
  });
  if (a != nullptr && b != nullptr) diff.compare("", *a, *b);
  EXPECT_EQ(diff.count(), lines.size());
  return lines;
}

std::string every(const std::string& attributes, const std::string& children = "") {
  return "<Demo_EveryType " + attributes + ">" + children + "</Demo_EveryType>";
}

/// One field in two messages: what is different, and that nothing is when they are the same.
struct FieldCase {
  const char* name;
  std::string a;
  std::string b;
  std::string line;
};

FieldCase attribute(const char* name, const std::string& a, const std::string& b, const std::string& texts) {
  return {name, every(std::string(name) + "=\"" + a + "\""), every(std::string(name) + "=\"" + b + "\""),
          std::string(name) + ": " + texts};
}

std::string listOf(const std::string& name, const std::string& value) {
  return every("", "<" + name + " val=\"AAAA\"/><" + name + " val=\"" + value + "\"/>");
}

FieldCase list(const char* name, const std::string& a, const std::string& b, const std::string& texts) {
  return {name, listOf(name, a), listOf(name, b), std::string(name) + "[1]: " + texts};
}

std::string entryOf(const std::string& name, const std::string& key, const std::string& value) {
  return every("", "<" + name + "><__mapKey__" + key + "/><__mapValue__" + value + "/></" + name + ">");
}

FieldCase map(const char* name, const std::string& key, const std::string& a, const std::string& b,
              const std::string& line) {
  return {name, entryOf(name, key, a), entryOf(name, key, b), line};
}

class EveryField : public testing::TestWithParam<FieldCase> {};

TEST_P(EveryField, IsComparedByItsValue) {
  EXPECT_THAT(differences(GetParam().a, GetParam().b), ElementsAre(GetParam().line));
  EXPECT_THAT(differences(GetParam().a, GetParam().a), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    MessageDiff, EveryField,
    testing::Values(
        attribute("intField", "-1", "2", "-1 != 2"),
        attribute("uintField", "1", "4000000000", "1 != 4000000000"),
        attribute("longField", "0", "-7", "0 != -7"), attribute("ulongField", "1", "2", "1 != 2"),
        attribute("longlongField", "-9223372036854775808", "0", "-9223372036854775808 != 0"),
        attribute("ulonglongField", "1", "2", "1 != 2"), attribute("boolField", "1", "0", "true != false"),
        attribute("stringField", "a", "\xc3\xbc", "\"a\" != \"\xc3\xbc\""),
        attribute("wstringField", "a", "\xc3\xbc", "\"a\" != \"\xc3\xbc\""),
        attribute("enumField", "1", "9", "1 (ON) != 9"),
        attribute("doubleField", "0.5", "-0.25", "0.5 != -0.25"),
        attribute("floatField", "0.5", "1e30", "0.5 != 1e+30"),
        attribute("bstringField", "YQ==", "/w==", "\"a\" != \"\\xff\""),
        attribute("time32Field", "1", "2", "1 != 2"),
        attribute("time64Field", "1", "99999999999", "1 != 99999999999"),
        list("listIntField", "1", "-2", "1 != -2"), list("listUintField", "1", "2", "1 != 2"),
        list("listLongField", "1", "2", "1 != 2"), list("listUlongField", "1", "2", "1 != 2"),
        list("listLonglongField", "1", "2", "1 != 2"), list("listUlonglongField", "1", "2", "1 != 2"),
        list("listEnumField", "1", "2", "1 != 2"), list("listStringField", "x", "y", "\"x\" != \"y\""),
        list("listWstringField", "x", "y", "\"x\" != \"y\""), list("listBoolField", "1", "0", "1 != 0"),
        list("listFloatField", "1", "2.5", "1 != 2.5"), list("listDoubleField", "1", "2.5", "1 != 2.5"),
        list("listBstringField", "YQ==", "Yg==", "\"a\" != \"b\""),
        FieldCase{"listObjectField",
                  every("", "<listObjectField number=\"1\"/><listObjectField number=\"2\"/>"),
                  every("", "<listObjectField number=\"1\"/><listObjectField number=\"3\"/>"),
                  "listObjectField[1].number: 2 != 3"},
        FieldCase{"objectField", every("", "<objectField text=\"x\"/>"),
                  every("", "<objectField text=\"y\"/>"), "objectField.text: \"x\" != \"y\""},
        map("mapInt64Int64Field", " val=\"5\"", " val=\"1\"", " val=\"2\"", "mapInt64Int64Field[5]: 1 != 2"),
        map("mapInt64StringField", " val=\"-5\"", " val=\"1\"", " val=\"2\"",
            "mapInt64StringField[-5]: \"1\" != \"2\""),
        map("mapInt64ObjectField", " val=\"5\"", " number=\"1\"", " number=\"2\"",
            "mapInt64ObjectField[5].number: 1 != 2"),
        map("mapStringInt64Field", " val=\"k\"", " val=\"1\"", " val=\"2\"",
            "mapStringInt64Field[\"k\"]: 1 != 2"),
        map("mapStringStringField", " val=\"k\"", " val=\"1\"", " val=\"2\"",
            "mapStringStringField[\"k\"]: \"1\" != \"2\""),
        map("mapStringObjectField", " val=\"k\"", " number=\"1\"", " number=\"2\"",
            "mapStringObjectField[\"k\"].number: 1 != 2"),
        map("mapObjectObjectField", " number=\"5\"", " number=\"1\"", " number=\"2\"",
            "mapObjectObjectField[value].number: 1 != 2"),
        FieldCase{"mapObjectObjectKey", entryOf("mapObjectObjectField", " number=\"5\"", " number=\"1\""),
                  entryOf("mapObjectObjectField", " number=\"6\"", " number=\"1\""),
                  "mapObjectObjectField[key].number: 5 != 6"}),
    [](const auto& field) { return std::string(field.param.name); });

TEST(MessageDiff, PasswordsDifferWithoutTheirText) {
  EXPECT_THAT(differences(every("pstringField=\"one\""), every("pstringField=\"two\"")),
              ElementsAre("pstringField: a password of type 1 != another one"));
  EXPECT_THAT(differences(every("pstringField=\"one\""), every("")),
              ElementsAre("pstringField: a password of type 1 != (not set)"));
}

TEST(MessageDiff, PasswordsOfOneTextDifferByTheirForm) {
  const auto plain = messageFrom(every("pstringField=\"one\""));
  const auto stored = messageFrom(every("pstringField=\"one\""));
  const FieldDef& field = XNMessageBase::GetClassDef(stored.get())
                              ->getFields()[XNMessageBase::getFieldNumberFromName(
                                  XNMessageBase::GetClassDef(stored.get()), "pstringField")];
  MessageAccess::owned<pstring>(*stored, field)->setEncryptionType(5);
  std::vector<std::string> lines;
  MessageDiff([&lines](const std::string& path, const std::string& a, const std::string& b) {
    lines.push_back(path + ": " + a + " != " + b);
  }).compare("", *plain, *stored);
  EXPECT_THAT(lines, ElementsAre("pstringField: a password of type 1 != a password of type 5"));
}

TEST(MessageDiff, AFieldThatIsSetDiffersFromOneThatIsNot) {
  EXPECT_THAT(differences(every("intField=\"0\""), every("")), ElementsAre("intField: 0 != (not set)"));
  EXPECT_THAT(differences(every(""), every("stringField=\"\"")),
              ElementsAre("stringField: (not set) != \"\""));
  EXPECT_THAT(differences(every("", "<objectField/>"), every("")),
              ElementsAre("objectField: Demo_EveryChild != (not set)"));
  EXPECT_THAT(differences(every(""), listOf("listIntField", "1")),
              ElementsAre("listIntField: (not set) != 2 elements"));
  EXPECT_THAT(differences(entryOf("mapStringInt64Field", " val=\"k\"", " val=\"1\""), every("")),
              ElementsAre("mapStringInt64Field: 1 entry != (not set)"));
}

TEST(MessageDiff, ElementsThatOneListDoesNotHaveAreNone) {
  EXPECT_THAT(differences(every("", "<listStringField val=\"a\"/>"),
                          every("", "<listStringField val=\"b\"/><listStringField val=\"c\"/>")),
              ElementsAre("listStringField[0]: \"a\" != \"b\"", "listStringField[1]: (none) != \"c\""));
  EXPECT_THAT(differences(every("", "<listObjectField/><listObjectField/>"), every("", "<listObjectField/>")),
              ElementsAre("listObjectField[1]: Demo_EveryChild != (none)"));
}

TEST(MessageDiff, EntriesOfMapsAreComparedByTheirKeys) {
  const std::string a = entryOf("mapStringInt64Field", " val=\"a\"", " val=\"1\"");
  const std::string b = entryOf("mapStringInt64Field", " val=\"b\"", " val=\"1\"");
  EXPECT_THAT(differences(a, b), ElementsAre("mapStringInt64Field[\"a\"]: 1 != (none)",
                                             "mapStringInt64Field[\"b\"]: (none) != 1"));
}

TEST(MessageDiff, NumbersAreComparedByTheirBits) {
  EXPECT_THAT(differences(every("doubleField=\"0.0\""), every("doubleField=\"-0.0\"")),
              ElementsAre("doubleField: 0 != -0"));
  EXPECT_THAT(differences(every("doubleField=\"nan\""), every("doubleField=\"nan\"")), IsEmpty());
}

TEST(MessageDiff, LongTextsAreShownWhereTheyDiffer) {
  const std::string start(200, 'a');
  EXPECT_THAT(differences(every("stringField=\"" + start + "X\""), every("stringField=\"" + start + "Y\"")),
              ElementsAre("stringField: ...\"" + std::string(59, 'a') + "X\" (201 bytes) != ...\"" +
                          std::string(59, 'a') + "Y\" (201 bytes)"));
}

TEST(MessageDiff, ObjectsOfDifferentClassesDifferByThem) {
  EXPECT_THAT(differences("<Demo_Sample/>", every("")),
              ElementsAre("(class): Demo_Sample != Demo_EveryType"));
}

TEST(MessageDiff, FieldsWithoutAHashDoNotCount) {
  EXPECT_THAT(differences("<Demo_Hashless/>", "<Demo_Hashless/>"), IsEmpty());
}

TEST(MessageDiff, DifferencesComeInTheOrderOfTheFields) {
  EXPECT_THAT(differences(every("stringField=\"a\" intField=\"1\" time64Field=\"3\""),
                          every("stringField=\"b\" intField=\"2\" time64Field=\"4\"")),
              ElementsAre("intField: 1 != 2", "stringField: \"a\" != \"b\"", "time64Field: 3 != 4"));
}

}  // namespace
}  // namespace zqxml::tool

// What the reader makes of single values: each field type, as an attribute and as the text of an element.
#include <gmock/gmock.h>
#include <zqxml/catalogue/generated/XmlRead.h>

#include <cmath>
#include <functional>
#include <limits>

#include "tests/support/log_capture.h"
#include "tests/support/reading.h"
#include "tests/support/time_zone.h"
#include "tests/xml/value_forms.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using XmlRead::Every;
using XmlRead::Level;

class BothForms : public testing::TestWithParam<ValueForm> {
 protected:
  ReadAs<Every> read(const std::string& field, const std::string& text) const {
    return GetParam().read(field, text);
  }
};
INSTANTIATE_TEST_SUITE_P(XmlReaderValues, BothForms, testing::Values(kAttributeForm, kElementForm),
                         [](const auto& form) { return form.param.name; });

// --- Numbers

struct IntegerField {
  const char* name;
  std::function<std::int64_t(const Every&)> get;
  std::function<bool(const Every&)> isSet;
};
const IntegerField kIntegerFields[] = {
    {"intField", &Every::getIntField, &Every::isIntFieldSet},
    {"uintField", &Every::getUintField, &Every::isUintFieldSet},
    {"longField", &Every::getLongField, &Every::isLongFieldSet},
    {"ulongField", &Every::getUlongField, &Every::isUlongFieldSet},
    {"longlongField", &Every::getLonglongField, &Every::isLonglongFieldSet},
    {"ulonglongField",
     [](const Every& every) { return static_cast<std::int64_t>(every.getUlonglongField()); },
     &Every::isUlonglongFieldSet},
    {"time32Field", &Every::getTime32Field, &Every::isTime32FieldSet},
    {"time64Field", &Every::getTime64Field, &Every::isTime64FieldSet},
};

TEST_P(BothForms, EveryIntegerTypeReadsDecimals) {
  for (const IntegerField& field : kIntegerFields) {
    SCOPED_TRACE(field.name);
    const auto every = read(field.name, "1234567");
    ASSERT_TRUE(every.ok());
    EXPECT_EQ(field.get(every), 1234567);
    EXPECT_TRUE(field.isSet(every));
    EXPECT_EQ(field.get(read(field.name, " \t+42x")), 42);
    EXPECT_EQ(field.get(read(field.name, "no number")), 0);
  }
}

TEST_P(BothForms, IntegersAreSixtyFourBitsWideWhateverTheType) {
  const auto every = read("longlongField", "-9223372036854775808");
  EXPECT_EQ(every.getLonglongField(), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(read("longlongField", "9223372036854775808").getLonglongField(),
            std::numeric_limits<std::int64_t>::max());
  // QUIRK of the form: unsigned numbers are read as signed ones and stop at the greatest of them.
  EXPECT_EQ(read("ulonglongField", "18446744073709551615").getUlonglongField(), 0x7fffffffffffffffu);
  EXPECT_EQ(read("ulonglongField", "-1").getUlonglongField(), 0xffffffffffffffffu);
}

TEST_P(BothForms, FloatingPointIsReadWithoutTheLocale) {
  EXPECT_EQ(read("doubleField", "-1.5e3").getDoubleField(), -1500.0);
  EXPECT_EQ(read("doubleField", "0.1 ").getDoubleField(), 0.1);
  EXPECT_EQ(read("doubleField", "x").getDoubleField(), 0.0);
  EXPECT_TRUE(std::isinf(read("doubleField", "1e999").getDoubleField()));
  EXPECT_EQ(read("floatField", "0.1").getFloatField(), 0.1f);
  EXPECT_TRUE(std::isinf(read("floatField", "1e300").getFloatField()));
  EXPECT_TRUE(std::isnan(read("floatField", "nan").getFloatField()));
  EXPECT_TRUE(read("floatField", "0").isFloatFieldSet());
  EXPECT_TRUE(read("doubleField", "0").isDoubleFieldSet());
}

TEST_P(BothForms, BooleansAreWordsInAnyCaseOrNumbers) {
  EXPECT_TRUE(read("boolField", "true").getBoolField());
  EXPECT_TRUE(read("boolField", "TrUe").getBoolField());
  EXPECT_FALSE(read("boolField", "FALSE").getBoolField());
  EXPECT_TRUE(read("boolField", "FALSE").isBoolFieldSet());
  EXPECT_TRUE(read("boolField", "1").getBoolField());
  EXPECT_FALSE(read("boolField", "0").getBoolField());
  EXPECT_TRUE(read("boolField", "-7").getBoolField());
  EXPECT_FALSE(read("boolField", "yes").getBoolField());
  EXPECT_FALSE(read("boolField", "trues").getBoolField());
}

// --- Enumerations

TEST_P(BothForms, EnumerationsAreNumbersOrNamesInAnyCase) {
  EXPECT_EQ(read("enumField", "7").getEnumField(), Level::HIGH);
  EXPECT_EQ(read("enumField", "HIGH").getEnumField(), Level::HIGH);
  EXPECT_EQ(read("enumField", "low").getEnumField(), Level::Low);
  EXPECT_EQ(read("enumField", "below").getEnumField(), Level::BELOW);
}

TEST_P(BothForms, EnumerationNumberNeedsNoEnumerator) {
  const auto every = read("enumField", "4711");
  EXPECT_EQ(static_cast<int>(every.getEnumField()), 4711);
}

TEST_P(BothForms, UnknownEnumeratorIsLoggedAndLeavesTheFieldUnset) {
  LogCapture log;
  const auto every = read("enumField", "HIGHER");
  EXPECT_TRUE(every.ok());
  EXPECT_FALSE(every.isEnumFieldSet());
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{GetParam().where, 0,
                                                    "Enum [Level] does not have enum value [HIGHER]"}));
}

TEST_P(BothForms, KeepsTakingANegativeEnumerationNumberForAName) {
  LogCapture log;
  EXPECT_FALSE(read("enumField", "-1").isEnumFieldSet());
  EXPECT_TRUE(log.has(GetParam().where, 0, "Enum [Level] does not have enum value [-1]"));
}

TEST_P(BothForms, EnumerationNameBeyondAsciiIsUnknown) {
  LogCapture log;
  EXPECT_FALSE(read("enumField", "H\xc3\x8fGH").isEnumFieldSet());
  EXPECT_TRUE(log.has(GetParam().where, 0, "Enum [Level] does not have enum value [H\xc3\x8fGH]"));
}

// --- Texts

TEST_P(BothForms, StringsKeepTheirCharacters) {
  EXPECT_EQ(read("stringField", "a&lt;&#xe9;\xe6\x97\xa5\xf0\x9f\x98\x80").getStringField(),
            "a<\xc3\xa9\xe6\x97\xa5\xf0\x9f\x98\x80");
  EXPECT_EQ(read("wstringField", "a&lt;&#xe9;\xe6\x97\xa5\xf0\x9f\x98\x80").getWstringField(),
            u"a<\u00e9\u65e5\U0001F600");
}

TEST_P(BothForms, StringsGetWhatXmlCannotHold) {
  EXPECT_EQ(read("stringField", "|A|#1!B").getStringField(), std::string("A\1B"));
  EXPECT_EQ(read("wstringField", "|A|#1F!B").getWstringField(), u"A\u001fB");
  EXPECT_EQ(read("stringField", "|plain").getStringField(), "|plain");
  EXPECT_EQ(read("wstringField", "|").getWstringField(), u"|");
}

TEST_P(BothForms, LoneSurrogateOfAStringBecomesTheReplacementCharacter) {
  EXPECT_EQ(read("stringField", "|a|#D800!b").getStringField(),
            "a\xef\xbf\xbd"
            "b");
  EXPECT_EQ(read("wstringField", "|a|#D800!b").getWstringField(), (std::u16string{u'a', 0xd800, u'b'}));
}

TEST_P(BothForms, EscapedZeroEndsAString) {
  EXPECT_EQ(read("stringField", "|ab|#0!cd").getStringField(), "ab");
  EXPECT_EQ(read("wstringField", "|ab|#!cd").getWstringField(), u"ab");
}

TEST_P(BothForms, StringsAreNotTrimmed) {
  EXPECT_EQ(read("stringField", " a  b ").getStringField(), " a  b ");
  EXPECT_EQ(read("wstringField", "  ").getWstringField(), u"  ");
}

TEST_P(BothForms, LongStringsArriveWhole) {
  std::string text;
  for (int i = 0; i < 30000; ++i) text += i % 7 == 0 ? "\xc3\xa9" : "x";
  EXPECT_EQ(read("stringField", text).getStringField(), text);
}

// --- Binary strings

TEST_P(BothForms, BinaryStringsAreBase64) {
  const auto every = read("bstringField", "YWIAY2Q=");
  EXPECT_TRUE(every.isBstringFieldSet());
  EXPECT_EQ(every.getBstringField().str(), std::string("ab\0cd", 5));
  EXPECT_EQ(read("bstringField", "YW IA\nY2Q=").getBstringField().str(), std::string("ab\0cd", 5));
}

TEST_P(BothForms, KeepsSettingABinaryStringThatIsNoBase64ToNothing) {
  LogCapture log;
  const auto every = read("bstringField", "no base64!");
  EXPECT_TRUE(every.isBstringFieldSet());
  EXPECT_EQ(every.getBstringField().str(), "");
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"base64DecodeXmlCh", 0, "Base64::decode failed"}));
}

// --- Passwords

TEST_P(BothForms, PasswordWithoutAMarkIsPlain) {
  LogCapture log;
  const auto every = read("pstringField", "secret");
  EXPECT_TRUE(every.isPstringFieldSet());
  EXPECT_EQ(every.getPstringField().str(), "secret");
  EXPECT_EQ(every.getPstringField().getEncryptionType(), 1);
  EXPECT_TRUE(log.empty());
}

TEST_P(BothForms, PasswordWithAMarkKeepsItsTypeWithoutAContext) {
  const auto every = read("pstringField",
                          "||#5!YWJj");  // mark 5, "abc"
  EXPECT_EQ(every.getPstringField().str(), "abc");
  EXPECT_EQ(every.getPstringField().getEncryptionType(), 5);
}

TEST_P(BothForms, KeepsCuttingAPasswordAtItsFirstZeroByte) {
  const auto every = read("pstringField", "||#5!YWIAY2Q=");
  EXPECT_EQ(every.getPstringField().str(), "ab");
}

TEST_P(BothForms, PasswordThatCannotBeReadIsLoggedAndLeavesTheFieldUnset) {
  const CapturedLine line{GetParam().where, 0,
                          "Password Handler Not Found while serializing bstring field [pstringField]"};
  // Marked as type 9, for which nobody has registered a routine, and as type 5 without Base64 behind the
  // mark.
  for (const char* text : {"&#9;YWJj", "||#5!*"}) {
    LogCapture log;
    const auto every = read("pstringField", text);
    EXPECT_TRUE(every.ok());
    EXPECT_FALSE(every.isPstringFieldSet());
    EXPECT_THAT(log.lines(), testing::Contains(line));
  }
}

TEST(XmlReaderValues, EmptyPasswordAttributeSetsAnEmptyPlainOne) {
  Every every;
  every.setPstringField("old", Annotation::PasswordEncryptType::BASE64);
  ASSERT_EQ(XMLSerializer().unserialize(every, std::string("<a pstringField=''/>"), true), XN_MSG_OK);
  EXPECT_TRUE(every.isPstringFieldSet());
  EXPECT_EQ(every.getPstringField().str(), "");
  EXPECT_EQ(every.getPstringField().getEncryptionType(), 1);
}

TEST(XmlReaderValues, EmptyAttributesSetEmptyValues) {
  const ReadAs<Every> every("", "stringField='' wstringField='' bstringField='' boolField='' doubleField=''");
  EXPECT_TRUE(every.isStringFieldSet());
  EXPECT_TRUE(every.isWstringFieldSet());
  EXPECT_TRUE(every.isBstringFieldSet());
  EXPECT_TRUE(every.isBoolFieldSet());
  EXPECT_TRUE(every.isDoubleFieldSet());
}

TEST(XmlReaderValues, EmptyEnumerationAttributeIsAnUnknownName) {
  LogCapture log;
  EXPECT_FALSE(ReadAs<Every>("", "enumField=''").isEnumFieldSet());
  EXPECT_TRUE(log.has(kAttributes, 0, "Enum [Level] does not have enum value []"));
}

// --- Dates and times

class DatesInBothForms : public BothForms {
  ScopedTimeZone zone_{"UTC0"};
};
INSTANTIATE_TEST_SUITE_P(XmlReaderValues, DatesInBothForms, testing::Values(kAttributeForm, kElementForm),
                         [](const auto& form) { return form.param.name; });

TEST_P(DatesInBothForms, DatesAreTextsOrNumbers) {
  EXPECT_EQ(read("dateTime", "2020-01-02 03:04:05").getDateTime(), 1577934245);
  EXPECT_EQ(read("day", "2020-01-02").getDay(), 1577923200);
  EXPECT_EQ(read("dateTime", "1577934245").getDateTime(), 1577934245);
}

TEST_P(DatesInBothForms, TextThatIsNoDateIsReadAsANumberAndLogged) {
  LogCapture log(25);
  const auto every = read("dateTime", "1 dd");
  EXPECT_EQ(every.getDateTime(), 1);
  EXPECT_TRUE(every.isDateTimeSet());
  EXPECT_TRUE(log.has(GetParam().where, 25, "Error in XDate representation"));
}

TEST_P(DatesInBothForms, DatesAreStoredWithoutASign) {
  ScopedTimeZone west("XYZ8");
  EXPECT_EQ(read("day", "1969-12-30").getDay(), 4294967296 - 2 * 86400 + 8 * 3600);
}

TEST_P(DatesInBothForms, TimesAreTextsOrNumbers) {
  EXPECT_EQ(read("timeOfDay", "01:02:03").getTimeOfDay(), 3723u);
  EXPECT_EQ(read("timeOfDay", "24:00:00").getTimeOfDay(), 86400u);
  EXPECT_EQ(read("timeOfDay", "3723").getTimeOfDay(), 3723u);
  EXPECT_EQ(read("timeOfDay", "-1").getTimeOfDay(), 0xffffffffu);
}

TEST_P(DatesInBothForms, TextThatIsNoTimeIsLoggedAndLeavesTheFieldUnset) {
  LogCapture log;
  EXPECT_FALSE(read("timeOfDay", "12:30").isTimeOfDaySet());
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"processZQTime", 0, "Error in Time representation : [12:30]"},
                          CapturedLine{GetParam().where, 0, "Error in ZQTime representation"}));
  log.clear();
  EXPECT_FALSE(read("timeOfDay", "24:00:01").isTimeOfDaySet());
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"processZQTime", 0,
                                                    "Error in 24 hour time representation : [24:00:01]"},
                                       CapturedLine{GetParam().where, 0, "Error in ZQTime representation"}));
}

TEST_P(DatesInBothForms, FieldThatIsBothTimeAndDateReadsTheDate) {
  EXPECT_EQ(read("timeAndDate", "2020-01-02").getTimeAndDate(), 1577923200);
  EXPECT_EQ(read("timeAndDate", "77").getTimeAndDate(), 77);
  EXPECT_EQ(read("timeAndDate", "01:00:00").getTimeAndDate(), 1);
}

TEST_P(DatesInBothForms, InvalidTimeEndsAFieldThatIsBoth) {
  LogCapture log;
  EXPECT_FALSE(read("timeAndDate", "2020-01-02 03:04").isTimeAndDateSet());
  EXPECT_TRUE(log.has(GetParam().where, 0, "Error in ZQTime representation"));
}

// --- What takes no single value

TEST(XmlReaderValues, ListsMapsAndObjectsTakeNoAttribute) {
  std::string attributes;
  for (const char* name :
       {"listInt",         "listUint",        "listLong",       "listUlong",    "listLonglong",
        "listUlonglong",   "listEnum",        "listString",     "listWstring",  "listObject",
        "objectField",     "listBool",        "listFloat",      "listDouble",   "reservedField",
        "listBstring",     "mapIntInt",       "mapIntString",   "mapIntObject", "mapStringInt",
        "mapStringString", "mapStringObject", "mapObjectObject"})
    attributes += std::string(name) + "='1' ";
  LogCapture log(25);
  const ReadAs<Every> every("", attributes);
  ASSERT_TRUE(every.ok());
  EXPECT_TRUE(log.empty());
  bool hasHash = false;
  std::string name;
  for (short position = 0; position < every.getNumberOfFields(); ++position)
    EXPECT_FALSE(every.isSet(position, hasHash, name)) << position;
}

TEST(XmlReaderValues, ReservedTypeTakesATextForNothing) {
  LogCapture log;
  const ReadAs<Every> every("<reservedField>text</reservedField>");
  ASSERT_TRUE(every.ok());
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::setcdataobject", 0, "[This function is deprecated]"}));
}

TEST(XmlReaderValues, SelfRecordIsNoField) {
  LogCapture log(15);
  const ReadAs<Every> every("<Every>text<intField>1</intField></Every><longField>2</longField>", "Every='3'");
  EXPECT_TRUE(every.ok());
  EXPECT_FALSE(every.isIntFieldSet());
  EXPECT_EQ(every.getLongField(), 2);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kAttributes, 15, "No such field : [Every] in message : [Every] "},
                          CapturedLine{"MySAX2Handler::startElement", 10, "Skipping member : [Every]"},
                          CapturedLine{"MySAX2Handler::startElement", 10, "Skipping element [intField]"}));
}

TEST(XmlReaderValues, NumbersInElementsMayHaveWhiteSpaceAround) {
  const ReadAs<Every> every(
      "<intField>\n  12\t</intField><boolField> true </boolField><enumField>\n HIGH </enumField>"
      "<doubleField> 2.5 </doubleField><dateTime> 2020-01-02 03:04:05 </dateTime>");
  EXPECT_EQ(every.getIntField(), 12);
  EXPECT_TRUE(every.getBoolField());
  EXPECT_EQ(every.getEnumField(), Level::HIGH);
  EXPECT_EQ(every.getDoubleField(), 2.5);
  EXPECT_NE(every.getDateTime(), 2020);
}

TEST(XmlReaderValues, WordsInAttributesMayNot) {
  LogCapture log;
  const ReadAs<Every> every("", "boolField=' true' enumField=' HIGH'");
  EXPECT_FALSE(every.getBoolField());
  EXPECT_FALSE(every.isEnumFieldSet());
  EXPECT_TRUE(log.has(kAttributes, 0, "Enum [Level] does not have enum value [ HIGH]"));
}

TEST(XmlReaderValues, WhiteSpaceAloneIsTheNumberZero) {
  const ReadAs<Every> every("<intField> </intField><stringField> </stringField>");
  EXPECT_TRUE(every.isIntFieldSet());
  EXPECT_EQ(every.getIntField(), 0);
  EXPECT_EQ(every.getStringField(), " ");
}

TEST(XmlReaderValues, CdataSectionIsAText) {
  const ReadAs<Every> every(
      "<cdataText><![CDATA[a<b]]></cdataText><intField><![CDATA[5]]></intField>"
      "<listString><![CDATA[x&y]]></listString><listInt><![CDATA[6]]></listInt>"
      "<bstringField><![CDATA[YWI=]]></bstringField>");
  EXPECT_EQ(every.getCdataText(), "a<b");
  EXPECT_EQ(every.getIntField(), 5);
  EXPECT_THAT(every.getListString(), ElementsAre("x&y"));
  EXPECT_THAT(every.getListInt(), ElementsAre(6));
  EXPECT_EQ(every.getBstringField().str(), "ab");
}

TEST(XmlReaderValues, KeepsTheEscapedEndOfACdataSection) {
  const ReadAs<Every> every("<cdataText><![CDATA[a]]]]><![CDATA[>>b]]></cdataText>");
  EXPECT_EQ(every.getCdataText(), "a]]>>b");
}

TEST(XmlReaderValues, LastOfSeveralValuesStays) {
  const ReadAs<Every> every("<intField>2</intField><intField>3</intField>", "intField='1'");
  EXPECT_EQ(every.getIntField(), 3);
}

}  // namespace
}  // namespace zqxml

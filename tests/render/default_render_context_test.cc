#include <gmock/gmock.h>
#include <tests/render/rendering.h>
#include <tests/support/log_capture.h>
#include <zqxml/render/xml_utils.h>

#include <limits>
#include <locale>

namespace zqxml {
namespace {

using testing::IsEmpty;

/// A context on a stream of its own.
class DefaultRender : public testing::Test {
 protected:
  /// The events of these fields, straight to the context.
  void attributes(XNMessageBase& message, std::initializer_list<const char*> fields) {
    for (const char* field : fields) {
      MsgFieldContext event = eventOf(message, field);
      context_.writeAttribute(event);
    }
  }
  std::string text() const {
    std::string text = "replaced";
    context_.DumpToString(text);
    return text;
  }

  std::ostringstream stream_;
  DefaultRenderContext context_{stream_, optionsFor(kNoTexts)};
};

TEST_F(DefaultRender, WritesTheExampleToTheByte) {
  Render::Plain message;
  message.setId(5);
  message.setName("x");
  message.setState(Render::State::RUNNING);
  message.mutableIds() = {1, 2};
  EXPECT_EQ(plainText(message), "id:[5],name:[x],state:[RUNNING],ids[1,2]");
}

// --- What is easily done wrong

TEST_F(DefaultRender, HiddenFieldIsAbsentAndItsNeighboursKeepASingleComma) {
  Render::Hidden message;
  message.setBefore(1);
  message.setHidden("h");
  message.setBetween(2);
  message.setSuppressed("s");
  message.setSecret("p");
  message.setSensitive("shown");
  message.setAfter(3);
  attributes(message, {"before", "hidden", "between", "suppressed", "secret", "sensitive", "after"});
  EXPECT_EQ(text(), "before:[1],between:[2],sensitive:[shown],after:[3]");
}

TEST_F(DefaultRender, FirstItemHasNoComma) {
  context_.writeAttribute("a", 1);
  EXPECT_EQ(text(), "a:[1]");
  context_.writeAttribute("b", 2);
  EXPECT_EQ(text(), "a:[1],b:[2]");
}

TEST_F(DefaultRender, BoolPrintsTrueOrFalse) {
  Render::Values message;
  message.setFlag(true);
  attributes(message, {"flag"});
  message.setFlag(false);
  attributes(message, {"flag"});
  EXPECT_EQ(text(), "flag:[true],flag:[false]");
}

TEST_F(DefaultRender, KeepsUlonglongsAndPasswordsUnwritten) {
  Render::Values message;
  message.setAUlonglong(1);
  message.setPassword("p");
  attributes(message, {"aUlonglong", "password"});
  EXPECT_THAT(text(), IsEmpty());
}

TEST_F(DefaultRender, FloatOfATenthPrintsAsWritten) {
  Render::Values message;
  message.setAFloat(0.1f);
  attributes(message, {"aFloat"});
  EXPECT_EQ(text(), "aFloat:[0.1]");
}

TEST_F(DefaultRender, KeepsTheCommaOfAnEmptyWideText) {
  Render::Values message;
  message.setAString("x");
  message.setAWstring(u"");
  attributes(message, {"aString", "aWstring"});
  EXPECT_EQ(text(), "aString:[x],");
}

// --- The types

TEST_F(DefaultRender, DispatchesEveryTypeThatHasAForm) {
  Render::Values message = filledValues();
  for (const auto& [name, text] : kValueTexts) attributes(message, {name.c_str()});
  EXPECT_EQ(
      text(),
      "anInt:[-1],aUint:[4000000000],aLong:[-2],aUlong:[4000000001],aLonglong:[-9000000000],flag:[true],"
      "aString:[<text>],aWstring:[wide ü],aDouble:[0.123457],aFloat:[0.1],bytes:[b<],time32:[-3],"
      "time64:[9000000001]");
  message.setADouble(1234567);
  attributes(message, {"aDouble"});
  EXPECT_TRUE(text().ends_with(",aDouble:[1.23457e+06]"));
}

TEST_F(DefaultRender, EmptyTextIsAnItem) {
  Render::Values message;
  message.setAString("");
  message.setBytes("");
  attributes(message, {"aString", "bytes"});
  EXPECT_EQ(text(), "aString:[],bytes:[]");
}

TEST_F(DefaultRender, OverloadsWriteEveryTypeThatTheyAreNamedFor) {
  context_.writeAttribute("string", std::string("s"));
  context_.writeAttribute("text", "t");
  context_.writeAttribute("null", static_cast<const char*>(nullptr));
  context_.writeAttribute("int", std::numeric_limits<int>::min());
  context_.writeAttribute("unsigned int", std::numeric_limits<unsigned int>::max());
  context_.writeAttribute("long", std::numeric_limits<long>::min());
  context_.writeAttribute("unsigned long", std::numeric_limits<unsigned long>::max());
  context_.writeAttribute("float", 1e10f);
  context_.writeAttribute("double", -1.5e-300);
  context_.writeAttribute("wstring", std::u16string(u"w"));
  context_.writeAttribute("bstring", bstring(std::string("b\0b", 3)));
  context_.writeAttribute("__int64", std::numeric_limits<long long>::min());
  context_.writeAttribute("bool", false);
  EXPECT_EQ(text(), std::string("string:[s],text:[t],null:[],int:[-2147483648],unsigned int:[4294967295],"
                                "long:[-9223372036854775808],unsigned long:[18446744073709551615],"
                                "float:[1e+10],double:[-1.5e-300],wstring:[w],bstring:[b") +
                        '\0' + "b],__int64:[-9223372036854775808],bool:[false]");
}

TEST_F(DefaultRender, DatesArePlainNumbers) {
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, "dateInt", 172800);
  setInteger(message, "dateTime64", 1577934245);
  attributes(message, {"dateInt", "dateTime64"});
  EXPECT_EQ(text(), "dateInt:[172800],dateTime64:[1577934245]");
}

TEST_F(DefaultRender, EnumerationsListsMapsAndObjectsAreNoAttributes) {
  OpenMessage message = newMessage("Demo_EveryType");
  for (const char* field :
       {"enumField", "listIntField", "listUlonglongField", "listEnumField", "listObjectField", "objectField",
        "listBstringField", "mapInt64Int64Field", "mapStringObjectField", "mapObjectObjectField"}) {
    setBit(message, field);
    attributes(message, {field});
  }
  EXPECT_THAT(text(), IsEmpty());
}

TEST_F(DefaultRender, FieldIsWrittenWhenItIsSetInTheMessageAndInTheEvent) {
  Render::Item message;
  attributes(message, {"name"});
  message.setName("x");
  MsgFieldContext event = eventOf(message, "name");
  event.setValueState(false);
  context_.writeAttribute(event);
  message.unsetName();
  event.setValueState(true);
  context_.writeAttribute(event);
  EXPECT_THAT(text(), IsEmpty());
}

// --- Structure

TEST_F(DefaultRender, HeadersBeginANewLineOfItemsAndNothingElse) {
  Render::JobOption message;
  MsgFieldContext client = eventOf(message, "client");
  context_.writeAttribute("a", 1);
  context_.startHeader("x");
  context_.writeAttribute("b", 1);
  context_.writeHeader("x");
  context_.writeAttribute("c", 1);
  context_.endHeader("x");
  context_.writeAttribute("d", 1);
  context_.startSubHeader(client);
  context_.writeAttribute("e", 1);
  context_.writeSubHeader("x");
  context_.writeAttribute("f", 1);
  context_.endSubHeader(client);
  context_.writeAttribute("g", 1);
  EXPECT_EQ(text(), "a:[1]b:[1]c:[1],d:[1],e:[1],f:[1],g:[1]");
}

TEST_F(DefaultRender, FieldsOfSubObjectsFollowThoseOfTheirParent) {
  Render::JobOption message;
  message.setId(5);
  message.mutableClient().setName("c1");
  EXPECT_EQ(plainText(message), "id:[5],name:[c1]");
}

// --- Enumerations

TEST_F(DefaultRender, EnumerationIsItsTextOrElseItsName) {
  Render::Plain message;
  const auto written = [&message](Render::State state) {
    message.setState(state);
    return plainText(message);
  };
  EXPECT_EQ(written(Render::State::RUNNING), "state:[RUNNING]");
  EXPECT_EQ(written(Render::State::DONE), "state:[All done]");
  EXPECT_EQ(written(Render::State::FAILED), "state:[FAILED]");
  LogCapture capture;
  EXPECT_EQ(written(static_cast<Render::State>(99)), "state:[]");
  EXPECT_TRUE(capture.hasPart("XMLDecoder::GetEnumString", 0, "does not contain enum with value : [99]"));
}

TEST_F(DefaultRender, UnsetEnumerationLeavesNothing) {
  Render::Plain message;
  MsgFieldContext event = eventOf(message, "state");
  context_.writeEnum(event);
  EXPECT_THAT(text(), IsEmpty());
}

TEST_F(DefaultRender, KeepsTheCommaOfAListOfEnumerationsAsAnEnumeration) {
  Render::Values message;
  message.mutableEnums() = {1, 2};
  MsgFieldContext event = eventOf(message, "enums");
  LogCapture capture;
  context_.writeAttribute("a", 1);
  context_.writeEnum(event);
  EXPECT_EQ(text(), "a:[1],");
  EXPECT_THAT(capture.lines(), IsEmpty());
}

// --- Lists

TEST_F(DefaultRender, KeepsTheCommaOfAnEmptyList) {
  Render::Plain message;
  message.setId(5);
  message.mutableIds();
  EXPECT_EQ(plainText(message), "id:[5],");
}

TEST_F(DefaultRender, KeepsTheCommaOfAnUlonglongWhetherSetOrNot) {
  Render::Values message;
  message.setAnInt(1);
  EXPECT_EQ(plainText(message), "anInt:[1],");
  message.setAUlonglong(1);
  EXPECT_EQ(plainText(message), "anInt:[1],");
  EXPECT_EQ(streamText(message), "anInt:[1],");
}

TEST_F(DefaultRender, KeepsListsOfEnumerationsAndObjectsWithoutTheirElements) {
  Render::Values message;
  message.mutableEnums() = {1, 2};
  message.addToObjects();
  for (const char* field : {"enums", "objects"}) {
    MsgFieldContext event = eventOf(message, field);
    context_.writeList(event);
  }
  EXPECT_EQ(text(), "enums[],objects[]");
}

TEST_F(DefaultRender, WhatIsNoListLeavesItsComma) {
  Render::Values message;
  message.setAnInt(1);
  message.setAUlonglong(1);
  LogCapture capture;
  for (const char* field : {"anInt", "aUlonglong", "anInt"}) {
    MsgFieldContext event = eventOf(message, field);
    context_.writeList(event);
  }
  EXPECT_EQ(text(), ",,");
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST_F(DefaultRender, ElementsOfListsHaveTheTextOfSingleValues) {
  OpenMessage message = newMessage("Demo_EveryType");
  collectionOf<std::vector<std::int32_t>>(message, "listIntField") = {-1, 2};
  collectionOf<std::vector<std::uint32_t>>(message, "listUintField") = {4000000000u};
  collectionOf<std::vector<std::int32_t>>(message, "listLongField") = {-3};
  collectionOf<std::vector<std::uint32_t>>(message, "listUlongField") = {3000000000u, 1};
  collectionOf<std::vector<std::int64_t>>(message, "listLonglongField") = {-9000000000};
  collectionOf<std::vector<std::string>>(message, "listStringField") = {"a", "", "b,c"};
  collectionOf<std::vector<std::u16string>>(message, "listWstringField") = {u"ü"};
  collectionOf<std::vector<std::uint32_t>>(message, "listBoolField") = {1, 0};
  collectionOf<std::vector<float>>(message, "listFloatField") = {0.1f};
  collectionOf<std::vector<double>>(message, "listDoubleField") = {1e100, 0.5};
  for (const char* field :
       {"listIntField", "listUintField", "listLongField", "listUlongField", "listLonglongField",
        "listStringField", "listWstringField", "listBoolField", "listFloatField", "listDoubleField"}) {
    MsgFieldContext event = eventOf(message, field);
    context_.writeList(event);
  }
  EXPECT_EQ(text(),
            "listIntField[-1,2],listUintField[4000000000],listLongField[-3],listUlongField[3000000000,1],"
            "listLonglongField[-9000000000],listStringField[a,,b,c],listWstringField[ü],listBoolField[1,0],"
            "listFloatField[0.1],listDoubleField[1e+100,0.5]");
}

// --- Labels, and the stream

TEST_F(DefaultRender, EnumerationsAndListsHaveLabelsAndSingleValuesNames) {
  Render::Labels message;
  message.setLogin("l");
  message.setState(Render::State::RUNNING);
  message.mutablePlaces() = {"p"};
  message.setFlag(true);
  EXPECT_EQ(plainText(message), "login:[l],state:[RUNNING],places[p],flag:[true]");
  EXPECT_EQ(plainText(message, optionsFor(kEnglish)),
            "login:[l],Impersonate user:[RUNNING],Alert location[p],flag:[true]");
  EXPECT_EQ(plainText(message, optionsFor(kGerman)),
            "login:[l],Benutzer annehmen:[RUNNING],Ablageort für Warnungen[p],flag:[true]");
}

TEST_F(DefaultRender, ValuesGoThroughTheStreamsOwnInsertion) {
  stream_.imbue(std::locale(std::locale::classic()));
  stream_.precision(3);
  context_.writeAttribute("a", 0.123456);
  EXPECT_EQ(text(), "a:[0.123]");
}

TEST(ContextFormatOpts, StartFalseAndTakeTheirPartsInOrder) {
  const ContextFormatOpts none;
  EXPECT_EQ(none.localeId, 0);
  EXPECT_FALSE(none.order);
  EXPECT_FALSE(none.collapsible);
  const ContextFormatOpts all(7, true, false);
  EXPECT_EQ(all.localeId, 7);
  EXPECT_TRUE(all.order);
  EXPECT_FALSE(all.collapsible);
  std::ostringstream stream;
  const ContextFormatOpts given = DefaultRenderContext(stream, all).getFormatOptions();
  EXPECT_EQ(given.localeId, 7);
  EXPECT_TRUE(given.order);
}

TEST(XmlUtils, LocalizedMessageIsATextOrAFailure) {
  std::string text = "before";
  EXPECT_EQ(XmlUtils::getLocalizedMessage(0x3d000552, kGerman, text), XN_MSG_OK);
  EXPECT_EQ(text, "Ja");
  EXPECT_EQ(XmlUtils::getLocalizedMessage(0x3d000552, kNoTexts, text), XN_MSG_FAILED);
  EXPECT_EQ(text, "");
}

}  // namespace
}  // namespace zqxml

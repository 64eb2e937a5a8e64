// Messages as JSON documents and back: docs/json-form.md.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/every_type.h"
#include "tests/support/golden_file.h"
#include "tests/support/log_capture.h"
#include "tests/support/message_dump.h"
#include "tests/support/random_message.h"
#include "tools/zqmsg/json/json_reader.h"
#include "tools/zqmsg/json/json_text.h"
#include "tools/zqmsg/json/json_writer.h"

namespace zqxml::tool {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Fault = JsonReading::Fault;

std::string jsonOf(const XNMessageBase& message, const JsonStyle& style = {}) {
  std::string text;
  JsonWriter(text, style).document(message);
  return text;
}

/// The document's fields: what stands for the class is around them.
std::string fieldsOf(const XNMessageBase& message, const JsonStyle& style = {}) {
  const std::string text = jsonOf(message, style);
  const std::size_t start = text.find(':') + 1;
  return text.substr(start, text.size() - start - 1);
}

// --- Out

TEST(JsonForm, EveryTypeIsAsRecorded) {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  const auto asItIs = [](std::string text) { return text; };
  expectGolden("every_type.json", jsonOf(message) + '\n', asItIs);
  expectGolden("every_type.readable.json", jsonOf(message, {true, true, {}}) + '\n', asItIs);
  for (const char* name : {"every_type.json", "every_type.readable.json"}) {
    const JsonReading reading = readJson(goldenContent(name));
    ASSERT_NE(reading.message, nullptr) << reading.what;
    checkEveryType(*reading.message);
  }
}

RC_GTEST_PROP(JsonLaw, JsonBringsMessagesBack, ()) {
  const OpenMessage message = *randomMessages(kJsonLosses);
  const JsonStyle style{*rc::gen::arbitrary<bool>(), *rc::gen::arbitrary<bool>(), {}};
  const std::string text = jsonOf(message, style);
  RC_LOG() << text << '\n';
  const JsonReading reading = readJson(text);
  RC_ASSERT(reading.what == "");
  RC_ASSERT(dump(*reading.message) == dump(message));
  RC_ASSERT(*reading.message == message);
  RC_ASSERT(jsonOf(*reading.message, style) == text);
}

RC_GTEST_PROP(JsonLaw, EveryMessageIsADocumentThatOthersRead, ()) {
  const OpenMessage message = *randomMessages(kHashlessFields);
  RC_ASSERT(nlohmann::json::accept(jsonOf(message)));
}

TEST(JsonForm, ClassIsNamedAroundTheFields) {
  Demo::Sample message;
  message.setId(7);
  message.setTitle("a\"b");
  EXPECT_EQ(jsonOf(message), R"({"Demo_Sample":{"id":7,"title":"a\"b"}})");
}

TEST(JsonForm, NumbersOf64BitsAreTexts) {
  Demo::EveryType message;
  message.setLonglongField(5);
  message.setUlonglongField(std::numeric_limits<std::uint64_t>::max());
  message.mutableListLonglongField() = {-1};
  message.setUintField(std::numeric_limits<std::uint32_t>::max());
  EXPECT_EQ(
      fieldsOf(message),
      R"({"uintField":4294967295,"longlongField":"5","ulonglongField":"18446744073709551615","listLonglongField":["-1"]})");
}

TEST(JsonForm, FractionsAreTheShortestThatComeBack) {
  Demo::EveryType message;
  message.setDoubleField(0.1);
  message.setFloatField(0.1f);
  message.mutableListDoubleField() = {
      1e300,       -0.0, 5, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
      std::nan("")};
  EXPECT_EQ(
      fieldsOf(message),
      R"({"doubleField":0.1,"floatField":0.1,"listDoubleField":[1e+300,-0.0,5,"Infinity","-Infinity","NaN"]})");
}

TEST(JsonForm, EnumerationsAreNumbersOrNames) {
  Demo::EveryType message;
  message.setEnumField(Demo::EveryMode::AUTO);
  message.mutableListEnumField() = {1, 77};
  EXPECT_EQ(fieldsOf(message), R"({"enumField":2,"listEnumField":[1,77]})");
  EXPECT_EQ(fieldsOf(message, {false, true, {}}), R"({"enumField":"AUTO","listEnumField":["ON",77]})");
}

TEST(JsonForm, MapsAreArraysOfPairs) {
  Demo::Sample message;
  message.mutableSizes() = {{"k", 3}, {"l", -1}};
  EXPECT_EQ(fieldsOf(message), R"({"sizes":[["k","3"],["l","-1"]]})");
}

TEST(JsonForm, EmptyListsAndMapsStay) {
  Demo::Sample message;
  message.mutableTags();
  message.mutableSizes();
  EXPECT_EQ(fieldsOf(message), R"({"tags":[],"sizes":[]})");
}

TEST(JsonForm, TextThatIsNoUnicodeIsReplaced) {
  Demo::EveryType message;
  message.setStringField("a\xff\0\x1f\x7f"s);
  message.setWstringField(u"b\xd800");
  EXPECT_EQ(fieldsOf(message),
            "{\"stringField\":\"a\xef\xbf\xbd\\u0000\\u001f\\u007f\",\"wstringField\":\"b\xef\xbf\xbd\"}");
}

TEST(JsonForm, MasksHideWholeFields) {
  Demo::Guarded message;
  message.setSecretText("s");
  message.setSecretNumber(7);
  message.setSecretPassword("p"s);
  message.mutableSecretList() = {"l"};
  message.mutableSecretChild();
  EXPECT_EQ(
      fieldsOf(message, {false, false, {.passwords = false, .sensitive = true}}),
      R"({"secretText":"########","secretNumber":"########","secretPassword":"########","secretList":"########","secretChild":"########"})");
  Demo::EveryType password;
  password.setPstringField("hush"s);
  EXPECT_EQ(fieldsOf(password, {false, false, {.passwords = true, .sensitive = false}}),
            R"({"pstringField":"*******"})");
  EXPECT_EQ(fieldsOf(password), R"({"pstringField":"hush"})");
}

// --- In

JsonReading fieldsRead(const std::string& fields) {
  return readJson("{\"Demo_EveryType\":" + fields + "}");
}

TEST(JsonReader, TakesNumbersAsNumbersAndAsTexts) {
  const JsonReading reading = fieldsRead(
      R"({"longlongField":9007199254740993,"intField":"-5","ulonglongField":18446744073709551615,
          "listIntField":[1,"2"],"doubleField":"0.5","boolField":true,"listBoolField":[false,1,"1"],
          "enumField":"AUTO","listEnumField":["ON",2,"0"]})");
  ASSERT_NE(reading.message, nullptr) << reading.what;
  Demo::EveryType expected;
  expected.setLonglongField(9007199254740993);
  expected.setIntField(-5);
  expected.setUlonglongField(std::numeric_limits<std::uint64_t>::max());
  expected.mutableListIntField() = {1, 2};
  expected.setDoubleField(0.5);
  expected.setBoolField(true);
  expected.mutableListBoolField() = {0, 1, 1};
  expected.setEnumField(Demo::EveryMode::AUTO);
  expected.mutableListEnumField() = {1, 2, 0};
  EXPECT_EQ(dump(*reading.message), dump(expected));
}

TEST(JsonReader, NullIsAFieldThatIsNotSet) {
  const JsonReading reading = fieldsRead(R"({"intField":null,"listIntField":null,"objectField":null})");
  ASSERT_NE(reading.message, nullptr);
  EXPECT_EQ(dump(*reading.message), dump(Demo::EveryType()));
}

TEST(JsonReader, MembersMayStandInAnyOrder) {
  EXPECT_NE(fieldsRead(R"({"stringField":"x","intField":1})").message, nullptr);
}

struct FaultCase {
  const char* name;
  std::string document;
  Fault fault;
  const char* what;
  std::size_t line, column;

  friend std::ostream& operator<<(std::ostream& out, const FaultCase& one) { return out << one.name; }
};

class JsonFault : public testing::TestWithParam<FaultCase> {};

TEST_P(JsonFault, IsToldWithItsPlace) {
  const JsonReading reading = readJson(GetParam().document);
  EXPECT_EQ(reading.message, nullptr);
  EXPECT_EQ(reading.fault, GetParam().fault);
  EXPECT_THAT(reading.what, StartsWith(GetParam().what));
  EXPECT_EQ(reading.line, GetParam().line);
  EXPECT_EQ(reading.column, GetParam().column);
}

FaultCase unfit(const char* name, const std::string& fields, const char* what, std::size_t column) {
  return {name, "{\"Demo_EveryType\":\n" + fields + "}", Fault::kUnfit, what, 2, column};
}

INSTANTIATE_TEST_SUITE_P(
    Json, JsonFault,
    testing::Values(
        FaultCase{"Empty", "", Fault::kNotWellFormed, "is no JSON: ", 1, 1},
        FaultCase{"Cut", "{\"Demo_Empty\":{\n", Fault::kNotWellFormed, "is no JSON: ", 2, 1},
        FaultCase{"NoJson", "{\"Demo_Empty\":\n oops}", Fault::kNotWellFormed, "is no JSON: ", 2, 2},
        FaultCase{"SecondDocument", "{\"Demo_Empty\":{}}\n{}", Fault::kNotWellFormed, "is no JSON: ", 2, 1},
        FaultCase{"NotUtf8", "{\"Demo_Sample\":{\"title\":\"\xff\"}}", Fault::kNotWellFormed,
                  "is no JSON: ", 1, 26},
        FaultCase{"LoneSurrogate", R"({"Demo_Sample":{"title":"\ud800"}})", Fault::kNotWellFormed,
                  "is no JSON: ", 1, 32},
        FaultCase{"Array", " []", Fault::kUnfit, "a document is an object that names a class", 1, 2},
        FaultCase{"NoClass", "{}", Fault::kUnfit, "a document is an object that names a class", 1, 2},
        FaultCase{"UnknownClass", R"({"Demo_Sampel":{}})", Fault::kUnknownClass,
                  "\"Demo_Sampel\" is no class of subsystem Demo", 1, 2},
        FaultCase{"Enumeration", R"({"Demo_SampleMode":{}})", Fault::kUnknownClass,
                  "\"Demo_SampleMode\" is an enumeration", 1, 2},
        FaultCase{"TwoMessages", R"({"Demo_Empty":{},"Demo_Sample":{}})", Fault::kUnfit,
                  "a document holds one message", 1, 18},
        FaultCase{"NoObject", R"({"Demo_Empty":7})", Fault::kUnfit, "a document is an object", 1, 15},
        unfit("UnknownName", R"({"shoeSize":1})", "\"shoeSize\" is no field of Demo_EveryType", 2),
        unfit("NameTwice", R"({"intField":1, "intField":1})", "intField is there twice", 16),
        unfit("NameTwiceAfterNull", R"({"intField":null,"intField":1})", "intField is there twice", 18),
        unfit("TextForNumber", R"({"intField":"one"})",
              R"(intField needs a whole number from -2147483648 to 2147483647 and has the text "one")", 13),
        unfit("BlankInNumber", R"({"intField":" 1"})", "intField needs a whole number", 13),
        unfit("TrueForNumber", R"({"intField":true})", "intField needs a whole number", 13),
        unfit("Fraction", R"({"intField":1.5})", "intField needs a whole number", 13),
        unfit("BeyondInt", R"({"intField":2147483648})", "intField needs a whole number", 13),
        unfit("BelowUint", R"({"uintField":-1})", "uintField needs a whole number from 0 to 4294967295", 14),
        unfit("BeyondLonglong", R"({"longlongField":"9223372036854775808"})", "longlongField needs", 18),
        unfit("BeyondEverything", R"({"ulonglongField":99999999999999999999999})", "ulonglongField needs",
              19),
        unfit("BeyondDouble", R"({"doubleField":1e999})", "doubleField has a number beyond all", 16),
        unfit("BeyondFloat", R"({"floatField":1e39})", "floatField needs a number of 32 bits and has 1e39",
              15),
        unfit("NoEnumerator", R"({"enumField":"MAYBE"})", "enumField needs a name of EveryMode or a number",
              14),
        unfit("NoBase64", R"({"bstringField":"a?"})", "bstringField needs Base64 and has the text", 17),
        unfit("NumberForText", R"({"stringField":1})", "stringField needs a text and has 1", 16),
        unfit("ObjectForText", R"({"stringField":{}})", "stringField needs a text and has an object", 16),
        unfit("ArrayForText", R"({"stringField":[]})", "stringField needs a text and has an array", 16),
        unfit("TextForObject", R"({"objectField":"x"})", "objectField needs an object and has the text", 16),
        unfit("ObjectForList", R"({"listIntField":{}})", "listIntField needs an array and has an object", 17),
        unfit("NumberForList", R"({"listIntField":1})", "listIntField needs an array and has 1", 17),
        unfit("NullInList", R"({"listIntField":[1, null]})", "listIntField[1] needs a whole number", 21),
        unfit("ArrayInList", R"({"listIntField":[[]]})", "listIntField[0] needs no array", 18),
        unfit("NumberInListOfObjects", R"({"listObjectField":[{},7]})",
              "listObjectField[1] needs an object and has 7", 24),
        unfit("FieldOfASubObject", R"({"listObjectField":[{},{"number":"x"}]})",
              "listObjectField[1].number needs a whole number", 34),
        unfit("NoPair", R"({"mapStringInt64Field":["k"]})",
              "mapStringInt64Field[0] needs a pair [key, value] and has the text", 25),
        unfit("HalfAPair", R"({"mapStringInt64Field":[["k"]]})", "mapStringInt64Field[value] is not there",
              29),
        unfit("ThreeInAPair", R"({"mapStringInt64Field":[["k",1,2]]})",
              "mapStringInt64Field[value] has more than a key and a value", 32),
        unfit("KeyTwice", R"({"mapStringInt64Field":[["k",1],["k",2]]})",
              "mapStringInt64Field[key] is there already", 40),
        unfit("BadKey", R"({"mapInt64StringField":[["k","v"]]})", "mapInt64StringField[key] needs", 26),
        unfit("BadValue", R"({"mapStringInt64Field":[["k","v"]]})", "mapStringInt64Field[value] needs", 30),
        unfit("Mask", R"({"intField":"########"})", "intField is masked: its value is not in the document",
              13)),
    [](const auto& fault) { return std::string(fault.param.name); });

TEST(JsonReader, FaultSaysNothingOfTheLengthOfItsToken) {
  const JsonReading text = fieldsRead("{\"intField\":\"" + std::string(1000000, 'x') + "\"}");
  EXPECT_LT(text.what.size(), 300u);
  const JsonReading name = fieldsRead("{\"" + std::string(1000000, 'x') + "\":1}");
  EXPECT_LT(name.what.size(), 300u);
  const JsonReading className = readJson("{\"" + std::string(1000000, 'x') + "\":1}");
  EXPECT_LT(className.what.size(), 300u);
  const JsonReading syntax = fieldsRead("{\"intField\":\"" + std::string(1000000, 'x'));
  EXPECT_LT(syntax.what.size(), 300u);
  const JsonReading number = fieldsRead("{\"intField\":" + std::string(1000000, '9') + "}");
  EXPECT_LT(number.what.size(), 300u);
}

std::string nested(int levels) {
  std::string text = "{\"Demo_Nest\":";
  for (int i = 1; i < levels; ++i) text += "{\"child\":";
  text += "{}";
  return text + std::string(static_cast<std::size_t>(levels), '}');
}

TEST(JsonReader, NestingEndsAtTheReadersLimit) {
  EXPECT_NE(readJson(nested(1000)).message, nullptr);
  const JsonReading reading = readJson(nested(1001));
  EXPECT_EQ(reading.message, nullptr);
  EXPECT_THAT(reading.what, HasSubstr("is nested in more than 1000 levels of objects"));
  EXPECT_EQ(readJson(std::string(1000000, '[')).message, nullptr);
  EXPECT_EQ(readJson("{\"Demo_Nest\":" + std::string(1000000, '[')).message, nullptr);
}

TEST(JsonReader, PasswordsAreThoseOfXml) {
  const JsonReading reading = fieldsRead(R"({"pstringField":"hush"})");
  ASSERT_NE(reading.message, nullptr) << reading.what;
  Demo::EveryType expected;
  expected.setPstringField("hush"s);
  EXPECT_EQ(dump(*reading.message), dump(expected));
  EXPECT_EQ(fieldsRead(R"({"pstringField":"a\u0000b"})").fault, Fault::kUnfit);
}

TEST(JsonForm, PasswordEndsAtItsFirstNul) {
  Demo::EveryType message;
  message.setPstringField("a\0b"s);
  EXPECT_EQ(fieldsOf(message), R"({"pstringField":"a"})");
}

TEST(JsonReader, MasksCanBePassedOver) {
  const JsonReading reading = readJson(R"({"Demo_EveryType":{"intField":"########","longField":1}})", true);
  ASSERT_NE(reading.message, nullptr) << reading.what;
  Demo::EveryType expected;
  expected.setLongField(1);
  EXPECT_EQ(dump(*reading.message), dump(expected));
}

TEST(JsonReader, NothingIsLogged) {
  const LogCapture capture;
  readJson("{\"Demo_Nope\":{}}");
  fieldsRead(R"({"nope":1})");
  fieldsRead(R"({"enumField":"MAYBE"})");
  EXPECT_THAT(capture.lines(), IsEmpty());
}

}  // namespace
}  // namespace zqxml::tool

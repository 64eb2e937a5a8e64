// What is told of the bytes of a binary message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_readings.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/binary/binary_explainer.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/platform/format.h>

#include <string>
#include <vector>

namespace zqxml {
namespace {

using Demo::EveryType;
using testing::ElementsAre;
using testing::IsEmpty;

struct Explanation {
  bool readable = false;
  std::vector<BinaryNote> notes;
};

/// The notes, after looking that they cover every byte once and in order, and that nothing was logged.
Explanation explain(const std::string& bytes) {
  Explanation explanation;
  LogCapture capture;
  explanation.readable =
      explainBinary(bytes, [&](const BinaryNote& note) { explanation.notes.push_back(note); });
  std::uint64_t end = 0;
  for (const BinaryNote& note : explanation.notes) {
    EXPECT_EQ(note.offset, end) << note.what;
    end = note.offset + note.length;
  }
  EXPECT_EQ(end, bytes.size());
  EXPECT_THAT(capture.lines(), IsEmpty());
  return explanation;
}

/// "offset+length field what: value" for each note behind the header.
std::vector<std::string> lines(const std::string& bytes) {
  std::vector<std::string> told;
  for (const BinaryNote& note : explain(bytes).notes) {
    if (note.offset < 8 && note.length != 0) continue;
    told.push_back(formatText("%llu+%llu %s%s%s: %s", note.offset, note.length, note.field,
                              note.field.empty() ? "" : " ", note.what, note.value));
  }
  return told;
}

TEST(BinaryExplainerTest, TellsTheHeader) {
  const Explanation told = explain(everyType(""));
  ASSERT_EQ(told.notes.size(), 2u);
  EXPECT_STREQ(told.notes[0].what, "version");
  EXPECT_EQ(told.notes[0].value, "2");
  EXPECT_STREQ(told.notes[1].what, "tag id");
  EXPECT_EQ(told.notes[1].value, formatText("0x%08x Demo_EveryType", EveryType::kTagId));
  EXPECT_TRUE(told.readable);
  EXPECT_EQ(explain(withHeader(EveryType::kTagId, "", 0x10002)).notes[0].value, "2, flag set");
}

TEST(BinaryExplainerTest, TellsTheWorkedExampleByteByByte) {
  App::TestMessage2 message;
  setInteger(message, "intField", -3);
  setText(message, "strField", "hi");
  collectionOf<std::vector<std::int32_t>>(message, "ListInt") = {1, -1};
  setInteger(message.mutableM1(), "intFieldM1", 5);
  collectionOf<std::map<std::string, std::int64_t>>(message, "mapStr_LL")["a"] = 7;
  EXPECT_THAT(
      lines(serialized(message)),
      ElementsAre("8+4 intField key: hash 0x46b64b, encoding 6 (zigzag varint)",  //
                  "12+1 intField value: -3",                                      //
                  "13+4 strField key: hash 0x0e2949, encoding 2 (length-delimited)",
                  "17+1 strField length: 2 bytes",  //
                  "18+2 strField text: \"hi\"",     //
                  "20+4 key: collection marker",    //
                  "24+1 count: 2",                  //
                  "25+4 ListInt key: hash 0x10da51, encoding 2 (length-delimited)",
                  "29+1 ListInt byte count: 2 bytes",  //
                  "30+1 ListInt[0] value: 1",          //
                  "31+1 ListInt[1] value: -1",         //
                  "32+4 M1 key: hash 0x000984, encoding 2 (length-delimited)",
                  "36+1 M1 size: 5 bytes",  //
                  "37+4 M1.intFieldM1 key: hash 0x72590f, encoding 6 (zigzag varint)",
                  "41+1 M1.intFieldM1 value: 5",  //
                  "42+4 key: collection marker",  //
                  "46+1 count: 1",                //
                  "47+4 mapStr_LL key: hash 0x6952ca, encoding 2 (length-delimited)",
                  "51+1 mapStr_LL byte count: 12 bytes", "52+1 mapStr_LL key encoding: 2 (length-delimited)",
                  "53+1 mapStr_LL value encoding: 1 (8 bytes)",  //
                  "54+1 mapStr_LL[0].key length: 1 byte",        //
                  "55+1 mapStr_LL[0].key text: \"a\"",           //
                  "56+8 mapStr_LL[0].value value: 7"));
}

TEST(BinaryExplainerTest, TellsHowDeepABodyLies) {
  EveryType message;
  message.mutableObjectField().setNumber(1);
  message.setTime32Field(1);
  std::vector<int> depths;
  for (const BinaryNote& note : explain(serialized(message)).notes) depths.push_back(note.depth);
  EXPECT_THAT(depths, ElementsAre(0, 0, 0, 0, 1, 1, 0, 0));
}

TEST(BinaryExplainerTest, NamesElementsAndSides) {
  EveryType message;
  message.addToListObjectField().setNumber(1);
  message.addToListObjectField().setNumbers({5});
  message.addToMapInt64ObjectField(-9).setText("x");
  const std::vector<std::string> told = lines(serialized(message));
  EXPECT_THAT(told, testing::Contains("28+4 listObjectField[1] key: collection marker"));
  EXPECT_THAT(told, testing::Contains("38+1 listObjectField[1].numbers[0] value: 5"));
  EXPECT_THAT(told, testing::Contains(testing::EndsWith("mapInt64ObjectField[0].key value: -9")));
  EXPECT_THAT(told, testing::Contains(testing::EndsWith("mapInt64ObjectField[0].value.text text: \"x\"")));
  EXPECT_THAT(told,
              testing::Contains(testing::EndsWith("listObjectField[1] key again: hash 0xc7457d, encoding 2 "
                                                  "(length-delimited)")));
}

TEST(BinaryExplainerTest, NamesEnumerators) {
  EveryType message;
  message.setEnumField(Demo::EveryMode::AUTO);
  setInteger(message, "intField", 2);
  message.setListEnumField({1, 77});
  const std::vector<std::string> told = lines(serialized(message));
  EXPECT_THAT(told, testing::Contains(testing::EndsWith("enumField value: 2 (AUTO)")));
  EXPECT_THAT(told, testing::Contains(testing::EndsWith(" intField value: 2")));
  EXPECT_THAT(told, testing::Contains(testing::EndsWith("listEnumField[0] value: 1 (ON)")));
  EXPECT_THAT(told, testing::Contains(testing::EndsWith("listEnumField[1] value: 77")));
}

TEST(BinaryExplainerTest, ShowsFloatingNumbersInFull) {
  EveryType message;
  message.setDoubleField(0.1);
  message.setFloatField(0.1f);
  const std::vector<std::string> told = lines(serialized(message));
  EXPECT_THAT(told, testing::Contains(testing::EndsWith("doubleField value: 0.10000000000000001")));
  EXPECT_THAT(told, testing::Contains(testing::EndsWith("floatField value: 0.100000001")));
}

TEST(BinaryExplainerTest, QuotesTexts) {
  const auto text = [](std::string_view bytes) {
    return explain(everyType(Wire().key("stringField", 2).text(bytes))).notes.back().value;
  };
  EXPECT_EQ(text("say \"hi\" \\"), R"("say \"hi\" \\")");
  EXPECT_EQ(text(std::string_view("a\0b\n\r\t\x7f", 7)), R"("a\x00b\n\r\t\x7f")");
  EXPECT_EQ(text("Zürich €"), "\"Zürich €\"");
  EXPECT_EQ(text("Z\xfcrich"), R"("Z\xfcrich")");
}

TEST(BinaryExplainerTest, TellsUnknownFieldsByTheirHash) {
  const std::string body = Wire()
                               .key("nobody", 0)
                               .varint(300)
                               .key("nobody", 1)
                               .fixed64(1)
                               .key("nobody", 2)
                               .text("xy")
                               .key("nobody", 5)
                               .fixed32(7)
                               .key("nobody", 6)
                               .varint(3)
                               .key("nobody", 7)
                               .key("intField", 6)
                               .varint(2);
  const std::string name = formatText("?0x%06x", nameHash("nobody"));
  const std::vector<std::string> told = lines(everyType(body));
  const std::string key = " key: hash 0x" + name.substr(3) + ", encoding ";
  EXPECT_THAT(told, ElementsAre("8+4 " + name + key + "0 (varint)",             //
                                "12+2 " + name + " unknown value: 300",         //
                                "14+4 " + name + key + "1 (8 bytes)",           //
                                "18+8 " + name + " unknown value: 1",           //
                                "26+4 " + name + key + "2 (length-delimited)",  //
                                "30+1 " + name + " length: 2 bytes",            //
                                "31+2 " + name + " skipped: \"xy\"",            //
                                "33+4 " + name + key + "5 (4 bytes)",           //
                                "37+4 " + name + " unknown value: 7",           //
                                "41+4 " + name + key + "6 (zigzag varint)",     //
                                "45+1 " + name + " unknown value: -2",          //
                                "46+4 " + name + key + "7 (none)",              //
                                "50+4 intField key: hash 0x46b64b, encoding 6 (zigzag varint)",
                                "54+1 intField value: 1"));
}

TEST(BinaryExplainerTest, ReadsMessagesOfUnknownClassesAsUnknownFields) {
  const std::string bytes = withHeader(0x01020304, Wire().key("nobody", 6).varint(2));
  const Explanation told = explain(bytes);
  EXPECT_FALSE(told.readable);
  ASSERT_EQ(told.notes.size(), 5u);
  EXPECT_TRUE(told.notes[2].problem);
  EXPECT_EQ(told.notes[2].length, 0u);
  EXPECT_EQ(told.notes[2].value, "The catalogue has no class with this tag id");
  EXPECT_FALSE(told.notes[4].problem);
  EXPECT_EQ(told.notes[4].value, "1");
}

TEST(BinaryExplainerTest, TellsBytesThatAreNoKey) {
  const Explanation told = explain(everyType("\xff\xfe"));
  EXPECT_TRUE(told.readable);
  EXPECT_STREQ(told.notes.back().what, "unread");
  EXPECT_EQ(told.notes.back().length, 2u);
  EXPECT_EQ(told.notes.back().field, "");
}

TEST(BinaryExplainerTest, TellsAnIncompleteHeader) {
  for (const std::string& bytes : {std::string(), std::string("\2\0\0", 3)}) {
    const Explanation told = explain(bytes);
    EXPECT_FALSE(told.readable);
    ASSERT_EQ(told.notes.size(), 1u);
    EXPECT_TRUE(told.notes[0].problem);
    EXPECT_EQ(told.notes[0].value, "The header of 8 bytes is not complete");
  }
}

TEST(BinaryExplainerTest, SaysWhatIsWrongAndWhere) {
  const std::string body =
      Wire().key("objectField", 2).varint(8).key("text", 2).varint(9).raw("abc").key("intField", 6).varint(2);
  const Explanation told = explain(everyType(body));
  EXPECT_FALSE(told.readable);
  const BinaryNote& last = told.notes.back();
  EXPECT_TRUE(last.problem);
  EXPECT_EQ(last.offset, 18u);
  EXPECT_EQ(last.length, 8u);
  EXPECT_EQ(last.depth, 1);
  EXPECT_EQ(last.field, "objectField.text");
  EXPECT_EQ(last.value,
            "Error constructing string field [text]. Specified string size [9] causes a buffer overrun. "
            "Buffer size : "
            "[26]. CurrentPosition : [18]");
}

TEST(BinaryExplainerTest, ProblemAtTheEndOfTheBytesHasNoLength) {
  const Explanation told = explain(everyType(Wire().key("intField", 6)));
  EXPECT_FALSE(told.readable);
  EXPECT_TRUE(told.notes.back().problem);
  EXPECT_EQ(told.notes.back().length, 0u);
  EXPECT_EQ(told.notes.back().field, "intField");
}

TEST(BinaryExplainerTest, TellsWhatBecomesOfAnUlonglong) {
  EveryType message;
  message.setUlonglongField(0x0102);
  EXPECT_THAT(lines(serialized(message)),
              ElementsAre("8+4 key: collection marker",  //
                          "12+1 count: 2",               //
                          "13+4 ?0x000000 key: hash 0x000000, encoding 1 (8 bytes)",
                          "17+3 ?0x000000 problem: Buffer ends before its content does. "
                          "Buffer size : [20]. CurrentPosition : [17]"));
}

TEST(BinaryExplainerTest, ShowsPasswordsAsTheyTravel) {
  const std::string body = Wire()
                               .key("ver3Password", 2)
                               .text(
                                   "\x05"
                                   "Ynl0ZXM=");
  const Explanation told = explain(withHeader(App::AnnotationSample::kTagId, body));
  EXPECT_TRUE(told.readable);
  EXPECT_EQ(told.notes.back().value, R"("\x05Ynl0ZXM=")");
}

TEST(BinaryExplainerTest, EveryCutIsExplained) {
  EveryType message;
  message.setListStringField({"a", "bc"});
  message.mutableObjectField().setText("inner");
  message.setMapStringInt64Field({{"k", 1}});
  const std::string bytes = serialized(message);
  LogCapture capture;
  for (std::size_t size = 0; size <= bytes.size(); ++size) {
    const bool readable = readNew(bytes.substr(0, size)) != nullptr;
    capture.clear();
    bool told = false;
    std::uint64_t end = 0;
    told = explainBinary(std::string_view(bytes).substr(0, size), [&](const BinaryNote& note) {
      EXPECT_EQ(note.offset, end);
      end = note.offset + note.length;
    });
    EXPECT_EQ(told, readable) << size;
    EXPECT_EQ(end, size);
  }
}

}  // namespace
}  // namespace zqxml

// Maps and passwords out of the binary form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/annotation/password_routines.h>
#include <tests/binary/binary_readings.h>
#include <tests/binary/hand_made_class.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/xml/zq_xml_context_info.h>

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using Demo::EveryType;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// Marker, key, byte count and encodings of a map.
Wire mapHead(const char* field, std::uint32_t count, unsigned keyEncoding, unsigned valueEncoding) {
  return Wire().marker(count).key(field, 2).varint(0).varint(keyEncoding).varint(valueEncoding);
}

/// A child of number 1, with its size.
const std::string& child() {
  static const std::string kChild = Wire().varint(5).key("number", 6).varint(2);
  return kChild;
}

/// The lines of reading this, without the last one, which is the entry's.
std::vector<CapturedLine> failure(const std::string& body) {
  EveryType message;
  LogCapture capture;
  EXPECT_EQ(readInto(message, everyType(body)), -1);
  std::vector<CapturedLine> lines = capture.lines();
  EXPECT_FALSE(lines.empty());
  if (lines.empty()) return lines;
  EXPECT_EQ(lines.back(),
            (CapturedLine{kEntry, 0, "Error unserializing from buffer on object [Demo_EveryType]"}));
  lines.pop_back();
  return lines;
}

CapturedLine overrun(const std::string& kind, const char* field, const std::string& body, unsigned claimed,
                     std::size_t left) {
  return {kReader, 0,
          "Error constructing " + kind + " field [" + field + "]. Specified string size [" +
              std::to_string(claimed) + "] causes a buffer overrun. Buffer size : [" +
              std::to_string(8 + body.size()) + "]. CurrentPosition : [" +
              std::to_string(8 + body.size() - left) + "]"};
}

TEST(BinaryReaderMapTest, OverrunsOfTextsSayWhichSide) {
  const std::string filler(16, 'x');
  struct Case {
    const char* field;
    unsigned keyEncoding, valueEncoding;
    std::string before;
    const char* kind;
  };
  const std::string number = Wire().fixed64(1);
  const std::string text = Wire().text("k");
  for (const Case& one : std::vector<Case>{{"mapInt64StringField", 1, 2, number, "map<string> (value)"},
                                           {"mapStringInt64Field", 2, 1, "", "map<string> (key)"},
                                           {"mapStringStringField", 2, 2, "", "map<string> (key)"},
                                           {"mapStringStringField", 2, 2, text, "map<string> (Value)"},
                                           {"mapStringObjectField", 2, 2, "", "map<string> (key)"}}) {
    const std::string body =
        mapHead(one.field, 1, one.keyEncoding, one.valueEncoding).raw(one.before).varint(99).raw(filler);
    EXPECT_THAT(failure(body), ElementsAre(overrun(one.kind, one.field, body, 99, filler.size())))
        << one.field;
  }
}

TEST(BinaryReaderMapTest, EncodingsAreComparedForEveryMap) {
  for (const FieldDef& field : *XNMessageBase::GetClassDef(EveryType::kTagId)) {
    if (!kMapTypes.contains(field.getType())) continue;
    const unsigned keyEncoding = fieldTypeFacts(FieldDef::getMapKeyType(field.getType())).encoding;
    const unsigned valueEncoding = fieldTypeFacts(FieldDef::getMapValueType(field.getType())).encoding;
    EveryType message;
    EXPECT_EQ(readInto(message, everyType(mapHead(field.getName(), 0, keyEncoding, valueEncoding))), 0);
    EXPECT_TRUE(hasBit(message, field.getName()));
    const std::string name = field.getName();
    EXPECT_THAT(
        failure(mapHead(field.getName(), 0, 3 - keyEncoding, valueEncoding)),
        ElementsAre(CapturedLine{
            kReader, 0,
            "Map member [" + name + "] has key/value encoding type mismatch\n" +
                "key type = [1]; received key type = [" + std::to_string(3 - keyEncoding) +
                "]\nValue type = [1]; received value type = [" + std::to_string(valueEncoding) + "] "}));
  }
}

TEST(BinaryReaderMapTest, FirstOfTwoEqualKeysStays) {
  EveryType message;
  const std::string body =
      std::string(mapHead("mapStringInt64Field", 2, 2, 1).text("a").fixed64(1).text("a").fixed64(2)) +
      std::string(mapHead("mapInt64Int64Field", 2, 1, 1).fixed64(5).fixed64(1).fixed64(5).fixed64(2)) +
      std::string(mapHead("mapInt64StringField", 2, 1, 2).fixed64(5).text("x").fixed64(5).text("y")) +
      std::string(mapHead("mapStringStringField", 2, 2, 2).text("a").text("x").text("a").text("y")) +
      std::string(mapHead("mapInt64ObjectField", 2, 1, 2).fixed64(5).raw(child()).fixed64(5).varint(0));
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_THAT(message.getMapStringInt64Field(), ElementsAre(Pair("a", 1)));
  EXPECT_THAT(message.getMapInt64Int64Field(), ElementsAre(Pair(5, 1)));
  EXPECT_THAT(message.getMapInt64StringField(), ElementsAre(Pair(5, "x")));
  EXPECT_THAT(message.getMapStringStringField(), ElementsAre(Pair("a", "x")));
  EXPECT_EQ(message.findInMapInt64ObjectField(5)->getNumber(), 1);
}

TEST(BinaryReaderMapTest, KeysNeedNotComeInOrder) {
  EveryType message;
  const std::string body = mapHead("mapInt64Int64Field", 3, 1, 1)
                               .fixed64(5)
                               .fixed64(1)
                               .fixed64(~std::uint64_t{0})
                               .fixed64(2)
                               .fixed64(3)
                               .fixed64(3);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_THAT(message.getMapInt64Int64Field(), ElementsAre(Pair(-1, 2), Pair(3, 3), Pair(5, 1)));
}

TEST(BinaryReaderMapTest, KeepsTextsOfAMapWholeWithTheirNul) {
  EveryType message;
  const std::string_view text("a\0b", 3);
  ASSERT_EQ(readInto(message, everyType(mapHead("mapStringStringField", 1, 2, 2).text(text).text(text))), 0);
  EXPECT_THAT(message.getMapStringStringField(), ElementsAre(Pair(text, text)));
}

TEST(BinaryReaderMapTest, KeepsOneEntryOfAMapKeyedByObjects) {
  EveryType message;
  const std::string body = mapHead("mapObjectObjectField", 2, 2, 2)
                               .raw(child())
                               .varint(0)
                               .varint(0)
                               .raw(child())
                               .key("intField", 6)
                               .varint(2);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  const auto& map = *ownedBy<std::map<XNMessageBase, XNMessageBase>>(message, "mapObjectObjectField");
  ASSERT_EQ(map.size(), 1u);
  EXPECT_EQ(slotOf(map.begin()->first, "number"), 1);
  EXPECT_FALSE(hasBit(map.begin()->second, "number"));
  EXPECT_EQ(message.getIntField(), 1);
}

TEST(BinaryReaderMapTest, FailuresInsideObjectsNameTheSide) {
  const std::string broken = Wire().varint(5).key("text", 2).varint(99).raw("xxxx");
  const auto last = [](const std::vector<CapturedLine>& lines) { return lines.at(1); };
  EXPECT_EQ(last(failure(mapHead("mapInt64ObjectField", 1, 1, 2).fixed64(1).raw(broken))),
            (CapturedLine{kReader, 0, "Error unserializing on field [mapInt64ObjectField]"}));
  EXPECT_EQ(last(failure(mapHead("mapStringObjectField", 1, 2, 2).text("k").raw(broken))),
            (CapturedLine{kReader, 0, "Error unserializing on field [mapStringObjectField]"}));
  EXPECT_EQ(last(failure(mapHead("mapObjectObjectField", 1, 2, 2).raw(broken))),
            (CapturedLine{kReader, 0, "Error unserializing on field [mapObjectObjectField]  (map key)"}));
  EXPECT_EQ(last(failure(mapHead("mapObjectObjectField", 1, 2, 2).varint(0).raw(broken))),
            (CapturedLine{kReader, 0, "Error unserializing on field [mapObjectObjectField] (map value)"}));
}

TEST(BinaryReaderMapTest, FailedMapKeepsTheEntriesThatArrived) {
  EveryType message;
  LogCapture capture;
  const std::string body =
      mapHead("mapStringInt64Field", 2, 2, 1).text("a").fixed64(1).text("b").raw("1234567");
  EXPECT_EQ(readInto(message, everyType(body)), -1);
  EXPECT_THAT(message.getMapStringInt64Field(), ElementsAre(Pair("a", 1)));
}

/// A class whose one field is a map of classes that no catalogue has; and what is read behind that map.
struct LostClass {
  HandMadeClass handMade;
  int after = 0;

  LostClass(FieldDataType type, const std::string& refs) {
    handMade.field(type, "map", refs).field(FDT_INT, "after");
  }
  std::vector<CapturedLine> read(const Wire& map, std::size_t& entries) {
    OpenMessage message = handMade.message();
    LogCapture capture;
    std::string body = map;
    body += std::string(Wire().key("after", 6).varint(2));
    EXPECT_EQ(readInto(message, withHeader(message.getTagID(), body)), 0);
    after = static_cast<int>(slotOf(message, "after"));
    entries = sizeOf(message, fieldOf(message, "map"));
    std::vector<CapturedLine> lines;
    for (CapturedLine& line : capture.lines()) {
      if (line.function == kReader) lines.push_back(line);
    }
    return lines;
  }

  static std::size_t sizeOf(const XNMessageBase& message, const FieldDef& field) {
    return visitStorage(
        field.getType(),
        Overloaded{[&]<class K, class V>(Map<K, V>) {
                     return MessageAccess::owned<typename Map<K, V>::Value>(message, field)->size();
                   },
                   [](auto) { return std::size_t{99}; }});
  }
};

const std::string kLost("\xff\0\0\1", 4);
const std::string kFound("\xca\0\0\4", 4);  // Demo_EveryChild
const CapturedLine kNotConstructed{kReader, 0, "Error constructing map object : [map]"};

TEST(BinaryReaderMapTest, EntryWhoseClassCannotBeHadIsPassedOver) {
  std::size_t entries = 0;
  LostClass byNumber(FDT_MAP_INT64_OBJECT, kLost);
  EXPECT_THAT(byNumber.read(mapHead("map", 2, 1, 2).fixed64(1).raw(child()).fixed64(2).raw(child()), entries),
              ElementsAre(kNotConstructed, kNotConstructed));
  EXPECT_EQ(entries, 0u);
  EXPECT_EQ(byNumber.after, 1);
  LostClass byName(FDT_MAP_STRING_OBJECT, kLost);
  EXPECT_THAT(byName.read(mapHead("map", 1, 2, 2).text("a").raw(child()), entries),
              ElementsAre(kNotConstructed));
  EXPECT_EQ(entries, 0u);
  EXPECT_EQ(byName.after, 1);
}

TEST(BinaryReaderMapTest, PairIsPassedOverWhenEitherClassCannotBeHad) {
  std::size_t entries = 0;
  LostClass keyLost(FDT_MAP_OBJECT_OBJECT, kLost + kFound);
  EXPECT_THAT(keyLost.read(mapHead("map", 1, 2, 2).raw(child()).raw(child()), entries),
              ElementsAre(kNotConstructed));
  EXPECT_EQ(entries, 0u);
  EXPECT_EQ(keyLost.after, 1);
  LostClass valueLost(FDT_MAP_OBJECT_OBJECT, kFound + kLost);
  EXPECT_THAT(valueLost.read(mapHead("map", 1, 2, 2).raw(child()).raw(child()), entries),
              ElementsAre(kNotConstructed));
  EXPECT_EQ(entries, 0u);
  EXPECT_EQ(valueLost.after, 1);
}

TEST(BinaryReaderMapTest, PairWhoseValueIsCutOffBehindALostKeyFails) {
  LostClass keyLost(FDT_MAP_OBJECT_OBJECT, kLost + kFound);
  OpenMessage message = keyLost.handMade.message();
  const std::string body = mapHead("map", 1, 2, 2).raw(child()).raw("\x80");
  EXPECT_EQ(readInto(message, withHeader(message.getTagID(), body)), -1);
}

TEST(BinaryReaderMapTest, KeepsReadingOnWhereAnObjectCannotBePassedOver) {
  std::size_t entries = 0;
  LostClass lost(FDT_MAP_INT64_OBJECT, kLost);
  lost.read(mapHead("map", 1, 1, 2).fixed64(1).varint(99), entries);
  EXPECT_EQ(lost.after, 1);
}

// --- Passwords.

class BinaryReaderPasswordTest : public PasswordRoutinesTest {
 protected:
  /// Reads one password field of App_AnnotationSample.
  int read(const char* field, std::string_view text, std::uint32_t version = 2,
           ZqXMLContextInfo* context = nullptr) {
    ExactBuffer buffer(withHeader(message_.getTagID(), Wire().key(field, 2).text(text), version));
    return BinarySerializer::unserialize(message_, buffer, context, false);
  }

  App::AnnotationSample message_;
};

TEST_F(BinaryReaderPasswordTest, VersionBelow2TakesTheTextAsItStands) {
  ASSERT_EQ(read("ver3Password",
                 "\x05"
                 "Ynl0ZXM=",
                 1),
            0);
  EXPECT_EQ(message_.getVer3Password().str(),
            "\x05"
            "Ynl0ZXM=");
  EXPECT_EQ(message_.getVer3Password().getEncryptionType(), 1);
}

TEST_F(BinaryReaderPasswordTest, TypeZeroTakesTheTextAsItStands) {
  ASSERT_EQ(read("barePassword",
                 "\x05"
                 "Ynl0ZXM="),
            0);
  EXPECT_EQ(message_.getBarePassword().str(),
            "\x05"
            "Ynl0ZXM=");
  EXPECT_EQ(message_.getBarePassword().getEncryptionType(), 1);
}

TEST_F(BinaryReaderPasswordTest, ExceptionOfARoutinePassesThrough) {
  XMLDecoder::registerPasswordDecAlgo(typeOf(9), failingRoutine);
  const std::string form = formOf(9, "bytes");
  EXPECT_THROW(read("base64Password", form), std::runtime_error);
  ExactBuffer buffer(withHeader(message_.getTagID(), Wire().key("base64Password", 2).text(form), 2));
  EXPECT_THROW(BinarySerializer::unserialize(buffer, nullptr, false), std::runtime_error)
      << "and leaks nothing";
}

TEST_F(BinaryReaderPasswordTest, MarkedTextKeepsItsStoredFormWithoutAContext) {
  ASSERT_EQ(read("ver3Password",
                 "\x05"
                 "Ynl0ZXM="),
            0);
  EXPECT_EQ(message_.getVer3Password().str(), "bytes");
  EXPECT_EQ(message_.getVer3Password().getEncryptionType(), 5);
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(BinaryReaderPasswordTest, TextWithoutAMarkIsPlainUpToItsFirstNul) {
  ASSERT_EQ(read("ver3Password", std::string_view("se\0cret", 7)), 0);
  EXPECT_EQ(message_.getVer3Password().str(), "se");
  EXPECT_EQ(message_.getVer3Password().getEncryptionType(), 1);
}

TEST_F(BinaryReaderPasswordTest, ContextReachesTheDecryption) {
  registerDecryption<5>();
  ZqXMLContextInfo context;
  context.setPasswordEncType(1);
  ASSERT_EQ(read("ver3Password",
                 "\x05"
                 "Ynl0ZXM=",
                 2, &context),
            0);
  EXPECT_EQ(message_.getVer3Password().str(), "dec5(bytes)");
  EXPECT_EQ(message_.getVer3Password().getEncryptionType(), 1);
}

TEST_F(BinaryReaderPasswordTest, FailedDecryptionIsReportedAndLeavesTheFieldUnset) {
  LogCapture capture;
  ASSERT_EQ(read("ver3Password",
                 "\x05"
                 "no base64"),
            0);
  EXPECT_FALSE(message_.isVer3PasswordSet());
  EXPECT_TRUE(
      capture.has(kReader, 0, "Password Handler Not Found while serializing pstring field [ver3Password]"));
}

TEST_F(BinaryReaderPasswordTest, PasswordWithoutAnnotationFailsTheMessage) {
  HandMadeClass handMade;
  handMade.field(FDT_PSTRING, "password");
  for (std::uint32_t version : {1u, 2u}) {
    OpenMessage message = handMade.message();
    LogCapture capture;
    EXPECT_EQ(readInto(message, withHeader(message.getTagID(), Wire().key("password", 2).text("x"), version)),
              -1);
    EXPECT_TRUE(capture.has(kReader, 0, "No Password annotation found on member : password"));
  }
}

TEST_F(BinaryReaderPasswordTest, PasswordsMakeTheRoundTripThroughTheirRoutines) {
  registerEncryption<5>();
  App::AnnotationSample source;
  source.setVer3Password("secret", typeOf(1));
  ASSERT_EQ(readInto(message_, serialized(source)), 0);
  EXPECT_EQ(message_.getVer3Password().str(), "enc5(secret)");
  EXPECT_EQ(message_.getVer3Password().getEncryptionType(), 5);
}

}  // namespace
}  // namespace zqxml

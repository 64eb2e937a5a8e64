// The members of XNMessageBase that write XML.
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/xml_serializer.h>

#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/log_capture.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using Demo::Sample;

constexpr const char* kText =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?><Demo_Sample title="é"/>)";
constexpr const char* kRoot = R"(<Demo_Sample title="é"/>)";
constexpr const char16_t* kWide =
    uR"(<?xml version="1.0" encoding="UTF-16" standalone="no" ?><Demo_Sample title="é"/>)";
constexpr const char16_t* kWideRoot = uR"(<Demo_Sample title="é"/>)";

Sample titled() {
  Sample msg;
  msg.setTitle("é");
  return msg;
}

TEST(MessageXml, RootOnlyLeavesTheDeclarationOut) {
  Sample msg = titled();
  std::string text = "before";
  EXPECT_EQ(msg.serialize(text), XN_MSG_OK);
  EXPECT_EQ(text, kText);
  EXPECT_EQ(msg.serialize(text, true), XN_MSG_OK);
  EXPECT_EQ(text, kRoot);
  EXPECT_EQ(msg.serializeUTF8(text), XN_MSG_OK);
  EXPECT_EQ(text, kText);
  EXPECT_EQ(msg.serializeUTF8(text, true), XN_MSG_OK);
  EXPECT_EQ(text, kRoot);
}

TEST(MessageXml, WideFormsAreUtf16InNativeOrderWithoutAMark) {
  Sample msg = titled();
  std::u16string text = u"before";
  EXPECT_EQ(msg.serializeUTF16(text), XN_MSG_OK);
  EXPECT_EQ(text, kWide);
  EXPECT_EQ(msg.serializeUTF16(text, true), XN_MSG_OK);
  EXPECT_EQ(text, kWideRoot);
}

TEST(MessageXml, UnicodeHasNoDeclarationAndTheKeptUtf16TextHasOne) {
  Sample msg = titled();
  std::u16string text;
  EXPECT_EQ(msg.serializeUnicode(text), XN_MSG_OK);
  EXPECT_EQ(text, kWideRoot);
  EXPECT_EQ(msg.getSerializedXMLStringUTF16(), std::u16string(kWide));
  EXPECT_EQ(msg.getSerializedXMLStringUnicode(), std::u16string(kWideRoot));
  EXPECT_EQ(msg.getSerializedXMLStringUTF16(true), std::u16string(kWideRoot));
}

TEST(MessageXml, AsStringIsTheTextWithItsDeclaration) {
  Sample msg = titled();
  EXPECT_EQ(msg.AsString(), kText);
  LogCapture log;
  EXPECT_EQ(XNMessageBase().AsString(), "");
}

TEST(MessageXml, KeepsTheCachedTextOfASerializedObjectWhateverTheArgument) {
  Sample msg = titled();
  msg.setSerializedXMLString("cached", true);
  EXPECT_STREQ(msg.getSerializedXMLString(true), "cached");
  EXPECT_STREQ(msg.getSerializedXMLString(false), "cached");
}

TEST(MessageXml, TextOfAnObjectThatIsNotSerializedIsMadeEachTime) {
  Sample msg = titled();
  EXPECT_STREQ(msg.getSerializedXMLString(), "");
  EXPECT_STREQ(msg.getSerializedXMLString(true), kRoot);
  EXPECT_STREQ(msg.getSerializedXMLString(), kRoot);
  EXPECT_FALSE(msg.isSerialized());
  msg.setTitle("new");
  EXPECT_STREQ(msg.getSerializedXMLString(true), R"(<Demo_Sample title="new"/>)");
}

TEST(MessageXml, SerializedObjectWithoutATextIsSerialized) {
  Sample msg = titled();
  msg.setSerialized(true);
  EXPECT_STREQ(msg.getSerializedXMLString(true), kRoot);
}

TEST(MessageXml, KeepsTheWideTextOfASerializedObject) {
  Sample msg = titled();
  msg.setSerialized(true);
  EXPECT_EQ(msg.getSerializedXMLStringUTF16(true), std::u16string());
  msg.setSerialized(false);
  EXPECT_EQ(msg.getSerializedXMLStringUTF16(true), std::u16string(kWideRoot));
  msg.setSerialized(true);
  msg.setTitle("new");
  EXPECT_EQ(msg.getSerializedXMLStringUTF16(true), std::u16string(kWideRoot));
}

TEST(MessageXml, FailureIsAnEmptyText) {
  XNMessageBase msg;
  LogCapture log;
  EXPECT_STREQ(msg.getSerializedXMLString(true), "");
  EXPECT_EQ(msg.getSerializedXMLStringUTF16(true), std::u16string());
  std::u16string wide;
  EXPECT_EQ(msg.serializeUnicode(wide), XN_MSG_FAILED);
}

TEST(MessageXml, SerializerWithoutAVersionWritesVersionTwo) {
  Demo::EveryType msg;
  msg.setPstringField("secret");
  std::string text;
  EXPECT_EQ(XMLSerializer().serialize(msg, text), XN_MSG_OK);
  EXPECT_NE(text.find(R"(pstringField="secret")"), text.npos);
  EXPECT_EQ(text.find("<?xml"), 0u);
  EXPECT_EQ(XMLSerializer().serialize(msg, text, 1), XN_MSG_OK);
  EXPECT_NE(text.find(R"(pstringField="c2VjcmV0")"), text.npos);
  EXPECT_EQ(text.find("<?xml"), 0u);
}

TEST(MessageXml, SerializerIsCopiedAndMovedWithFlagsAndContext) {
  ZqXMLContextInfo context;
  XMLSerializer serializer(withElements(), &context);
  XMLSerializer copy = serializer;
  XMLSerializer moved = std::move(serializer);
  for (const XMLSerializer* other : {&copy, &moved}) {
    EXPECT_TRUE(other->flags().useElements);
    EXPECT_EQ(other->context(), &context);
  }
  EXPECT_EQ(XMLSerializer().context(), nullptr);
  EXPECT_EQ(XMLSerializer(&context).context(), &context);
}

TEST(MessageXml, DeepNestingIsWritten) {
  Demo::Nest msg;
  Demo::Nest* last = &msg;
  for (int depth = 0; depth < 1000; ++depth) {
    last = &last->mutableChild();
    last->setDepth(depth);
  }
  const std::string text = xmlOf(msg);
  EXPECT_EQ(text.substr(0, 37), R"(<Demo_Nest><child depth="0"><child de)");
  EXPECT_NE(text.find(R"(<child depth="999"/>)"), text.npos);
}

TEST(MessageXml, ConcurrentWritersDoNotDisturbEachOther) {
  std::vector<std::thread> threads;
  std::atomic<int> right = 0;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([number, &right] {
      Sample msg;
      msg.setId(number);
      msg.setTags({"x"});
      const std::string expected =
          "<Demo_Sample id=\"" + std::to_string(number) + R"("><tags val="x"/></Demo_Sample>)";
      for (int i = 0; i < 100; ++i) {
        std::string text;
        if (msg.serialize(text, true) == XN_MSG_OK && text == expected) ++right;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, 400);
}

}  // namespace
}  // namespace zqxml

// Listeners in the writer: when they are asked, and what becomes of the field.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/internal/xml_serializer_access.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/log_capture.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using App::AnnotationSample;
using Demo::Guarded;
using testing::ElementsAre;

constexpr const char* kWalk = "XMLSerializer::serializeXMLRecur";
constexpr std::uint32_t kSensitive = 0x1b2f6e76;
constexpr std::uint32_t kSuppress = 0x1bb90ad5;
constexpr std::uint32_t kZQTime = 0x1b385de0;

/// Registered for its life.
class ScopedListener {
 public:
  ScopedListener(std::uint32_t id, ListenerFunction function) : id_(id), function_(function) {
    XMLSerializationSupport().addListener(id, function);
  }
  ~ScopedListener() { XMLSerializationSupport().removeListener(id_, function_); }
  ScopedListener(const ScopedListener&) = delete;
  ScopedListener& operator=(const ScopedListener&) = delete;

 private:
  std::uint32_t id_;
  ListenerFunction function_;
};

/// Fields that the listeners below were asked about, and the flags that they found.
std::vector<std::pair<std::string, std::uint32_t>>& asked() {
  static std::vector<std::pair<std::string, std::uint32_t>> calls;
  return calls;
}

class XmlListeners : public testing::Test {
 protected:
  void SetUp() override { asked().clear(); }
};

bool record(ListenerCbData& data) {
  asked().emplace_back(data.field.getName(), data.flags);
  return true;
}
bool skip(ListenerCbData& data) {
  data.flags = XMLCB_SKIP_PROCESSING;
  return false;
}
bool skipOpen(ListenerCbData& data) {
  if (std::string(data.field.getName()) == "open") data.flags = XMLCB_SKIP_PROCESSING;
  return true;
}
bool storeTwo(ListenerCbData& data) {
  data.flags = 2;
  return true;
}
bool storeZero(ListenerCbData& data) {
  data.flags = 0;
  return true;
}
bool fail(ListenerCbData&) {
  throw std::runtime_error("listener");
}

TEST_F(XmlListeners, AreAskedByTagForEachFieldThatWouldBeWritten) {
  const ScopedListener listener(Guarded::kTagId, &record);
  Guarded msg;
  msg.setOpen("a");
  msg.setSecretText("b");
  xmlOf(msg);
  EXPECT_THAT(asked(), ElementsAre(std::pair("open", 0u), std::pair("secretText", 0u)));
}

TEST_F(XmlListeners, SkipOnTheTagLeavesTheFieldOutWhateverTheResult) {
  const ScopedListener listener(Guarded::kTagId, &skipOpen);
  Guarded msg;
  msg.setOpen("a");
  msg.setSecretText("b");
  msg.mutableChild().setOpen("another class");
  LogCapture log(15);
  EXPECT_EQ(xmlOf(msg), R"(<Demo_Guarded secretText="b"><child open="another class"/></Demo_Guarded>)");
  EXPECT_EQ(log.count(kWalk, 15, "Skipping field [open] as XMLCB_SKIP_PROCESSING is set(On Tag ID)"), 1u);

  const ScopedListener resultFalse(Guarded::kTagId, &skip);
  EXPECT_EQ(xmlOf(msg), "<Demo_Guarded/>");
}

TEST_F(XmlListeners, SkipOnAnAnnotationLeavesOutJustItsFields) {
  const ScopedListener listener(kSensitive, &skip);
  Guarded msg;
  msg.setOpen("a");
  msg.setSecretText("b");
  msg.setSecretList({"c"});
  LogCapture log(15);
  EXPECT_EQ(xmlOf(msg), R"(<Demo_Guarded open="a"/>)");
  EXPECT_TRUE(
      log.has(kWalk, 15, "Skipping field [secretText] as XMLCB_SKIP_PROCESSING is set(On Annotation ID)"));
  EXPECT_TRUE(
      log.has(kWalk, 15, "Skipping field [secretList] as XMLCB_SKIP_PROCESSING is set(On Annotation ID)"));
}

TEST_F(XmlListeners, OtherFlagsLetTheFieldBeWritten) {
  const ScopedListener listener(Guarded::kTagId, &storeTwo);
  Guarded msg;
  msg.setOpen("a");
  EXPECT_EQ(xmlOf(msg), R"(<Demo_Guarded open="a"/>)");
}

TEST_F(XmlListeners, KeepsTheFlagsFromTagToAnnotationsAndBetweenThem) {
  const ScopedListener tag(Guarded::kTagId, &storeTwo);
  const ScopedListener first(kZQTime, &record);
  const ScopedListener second(kZQTime, &skip);
  const ScopedListener third(kSuppress, &record);
  Guarded msg;
  msg.setAnnotated(1);
  EXPECT_EQ(xmlOf(msg), "<Demo_Guarded/>");
  // The annotations of the field in record order: ZQTime, then Suppress, which finds what was stored before
  // it.
  EXPECT_THAT(asked(), ElementsAre(std::pair("annotated", 2u), std::pair("annotated", 1u)));
}

TEST_F(XmlListeners, LaterAnnotationCancelsTheSkipOfAnEarlierOne) {
  const ScopedListener first(kZQTime, &skip);
  const ScopedListener second(kSuppress, &storeZero);
  Guarded msg;
  msg.setAnnotated(1);
  EXPECT_EQ(xmlOf(msg), R"(<Demo_Guarded annotated="1"/>)");
}

TEST_F(XmlListeners, ComeBeforeTheMask) {
  const ScopedListener listener(kSensitive, &skip);
  Guarded msg;
  msg.setSecretText("b");
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_SENSITIVE)), "<Demo_Guarded/>");
}

TEST_F(XmlListeners, AreTheSameForEverySerializer) {
  XMLSerializer one;
  one.addListener(Guarded::kTagId, &skip);
  Guarded msg;
  msg.setOpen("a");
  EXPECT_EQ(xmlOf(msg), "<Demo_Guarded/>");
  EXPECT_TRUE(XMLSerializerAccess::registry()->removeListener(Guarded::kTagId, &skip));
  EXPECT_EQ(xmlOf(msg), R"(<Demo_Guarded open="a"/>)");
}

TEST_F(XmlListeners, ExceptionFailsTheCallAndLeaksNothing) {
  const ScopedListener listener(Demo::GuardedChild::kTagId, &fail);
  Guarded msg;
  msg.setOpen("a");
  msg.mutableChild().setOpen("b");
  LogCapture log;
  std::string text = "before";
  EXPECT_EQ(msg.serialize(text), XN_MSG_FAILED);
  EXPECT_EQ(text, "before");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"XMLSerializer::serialize", 0, "Error creating XML root node."}));

  log.clear();
  std::u16string wide = u"before";
  EXPECT_EQ(msg.serializeUTF16(wide), XN_MSG_FAILED);
  EXPECT_EQ(wide, u"before");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"XMLSerializer::serializeUTF16", 0, "Error creating XML root node."}));
}

/// Empties the whole object that it is shown a field of.
bool emptyAll(ListenerCbData& data) {
  MessageAccess::resetAndWipe(*data.msg);
  return true;
}

TEST_F(XmlListeners, MayEmptyTheObjectThatTheyAreShown) {
  const ScopedListener listener(Guarded::kTagId, &emptyAll);
  Guarded text;
  text.setOpen("gone");
  text.setSecretText("gone too");
  EXPECT_EQ(xmlOf(text), R"(<Demo_Guarded open=""/>)");
  Guarded object;
  object.mutableChild().setOpen("gone");
  LogCapture log;
  EXPECT_EQ(xmlOf(object), "<Demo_Guarded/>");
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kWalk, 0, "Please check"}));
}

/// Writes the message that it is shown a field of once more, without itself.
bool writeAgain(ListenerCbData& data) {
  XMLSerializationSupport().removeListener(Guarded::kTagId, &writeAgain);
  asked().emplace_back(xmlOf(*data.msg), data.flags);
  return true;
}

TEST_F(XmlListeners, MayWriteTheMessageThemselves) {
  const ScopedListener listener(Guarded::kTagId, &writeAgain);
  Guarded msg;
  msg.setOpen("a");
  msg.mutableChild().setOpen("b");
  const std::string text = R"(<Demo_Guarded open="a"><child open="b"/></Demo_Guarded>)";
  EXPECT_EQ(xmlOf(msg), text);
  EXPECT_THAT(asked(), ElementsAre(std::pair(text, 0u)));
}

TEST_F(XmlListeners, FieldsThatAreWrittenAreTracedAtLevel15) {
  Guarded msg;
  msg.setOpen("a");
  LogCapture log(15);
  xmlOf(msg);
  EXPECT_EQ(log.count(kWalk, 15, "Writing [Guarded]:[open]"), 1u);
  EXPECT_FALSE(log.hasPart(kWalk, 15, "secretText"));
}

}  // namespace
}  // namespace zqxml

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/ZqEntities.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_encoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// An id that no class has.
constexpr std::uint32_t kId = 0xff000001;

std::vector<std::string>& calls() {
  static std::vector<std::string> made;
  return made;
}

bool first(ListenerCbData&) {
  calls().push_back("first");
  return true;
}
bool second(ListenerCbData&) {
  calls().push_back("second");
  return false;
}
bool skip(ListenerCbData& data) {
  data.flags = XMLCB_SKIP_PROCESSING;
  return false;
}
bool letThrough(ListenerCbData& data) {
  data.flags = 0;
  return true;
}
bool removeItselfAndAddFirst(ListenerCbData&) {
  calls().push_back("remover");
  XMLSerializationSupport().removeListener(kId, removeItselfAndAddFirst);
  XMLSerializationSupport().addListener(kId, first);
  return true;
}
bool fail(ListenerCbData&) {
  throw std::runtime_error("listener");
}

/// Listeners of a test, taken away at its end. The ids themselves stay known in the process.
class Listeners : public testing::Test {
 protected:
  Listeners() { calls().clear(); }
  ~Listeners() override {
    for (const auto& [id, fn] : added_)
      while (support_.removeListener(id, fn)) continue;
    while (support_.removeListener(kId, first)) continue;
  }

  void add(std::uint32_t id, ListenerFunction fn) {
    support_.addListener(id, fn);
    added_.emplace_back(id, fn);
  }
  std::uint32_t process(std::uint32_t id, std::uint32_t flags = 0) {
    ListenerCbData data;
    data.flags = flags;
    support_.ProcessCallBack(id, data);
    return data.flags;
  }

  XMLSerializationSupport support_;

 private:
  std::vector<std::pair<std::uint32_t, ListenerFunction>> added_;
};

std::string serialized(XNMessageBase& message) {
  std::string text;
  EXPECT_EQ(XMLSerializer().serialize(message, text, true), XN_MSG_OK);
  return text;
}

TEST_F(Listeners, NullFunctionIsNotAdded) {
  const bool known = XMLSerializationSupport::hasListeners();
  support_.addListener(0xff000002, nullptr);
  EXPECT_EQ(XMLSerializationSupport::hasListeners(), known);
  EXPECT_FALSE(support_.removeListener(0xff000002, nullptr));
  EXPECT_EQ(process(0xff000002, 7), 7u);
}

TEST_F(Listeners, UnknownIdAndFunctionAreNotRemoved) {
  EXPECT_FALSE(support_.removeListener(0xff000003, first));
  add(kId, first);
  EXPECT_FALSE(support_.removeListener(kId, second));
  process(kId);
  EXPECT_THAT(calls(), ElementsAre("first"));
}

TEST_F(Listeners, RunInTheirOrderAndALaterOneHasTheLastWord) {
  add(kId, skip);
  add(kId, first);
  add(kId, second);
  EXPECT_EQ(process(kId), XMLCB_SKIP_PROCESSING);
  EXPECT_THAT(calls(), ElementsAre("first", "second"));
  add(kId, letThrough);
  EXPECT_EQ(process(kId), 0u);
}

TEST_F(Listeners, OfAnAnnotationLeaveOutJustItsFields) {
  Demo::Guarded message;
  message.setOpen("in the open");
  message.setSecretText("hush");
  message.setSecretNumber(4711);
  message.setSuppressed("shown");
  const std::string before = serialized(message);
  EXPECT_THAT(before, HasSubstr("hush"));
  add(Annotation::Sensitive::kTagId, skip);
  LogCapture capture(15);
  const std::string text = serialized(message);
  EXPECT_THAT(text, HasSubstr("open=\"in the open\""));
  EXPECT_THAT(text, HasSubstr("suppressed=\"shown\""));
  EXPECT_THAT(text, Not(HasSubstr("secretText")));
  EXPECT_THAT(text, Not(HasSubstr("secretNumber")));
  EXPECT_TRUE(
      capture.hasPart("XMLSerializer::serializeXMLRecur", 15,
                      "Skipping field [secretText] as XMLCB_SKIP_PROCESSING is set(On Annotation ID)"));
}

TEST_F(Listeners, KeepsAnIdThatHasNoListenersLeft) {
  support_.addListener(kId, first);
  EXPECT_TRUE(support_.removeListener(kId, first));
  EXPECT_FALSE(support_.removeListener(kId, first));
  EXPECT_TRUE(XMLSerializationSupport::hasListeners());
  EXPECT_EQ(process(kId, 5), 5u);
  EXPECT_TRUE(calls().empty());
}

// --- hideFields

constexpr std::uint32_t kEntityTag = ZqEntities::GenericEntity::kTagId;
static_assert(kEntityTag == 0x128c0c7a);

/// What hideFields says of the field in an entity of this type: the flags.
std::uint32_t hide(const char* name, int type) {
  ZqEntities::GenericEntity entity;
  entity.set_type_(static_cast<ZqEntities::EntityType>(type));
  const _ClassDef* classDef = MessageAccess::classDef(entity);
  ListenerCbData data;
  data.field = classDef->getFields()[catalogue::fieldPosition(classDef, name)];
  data.msg = &entity;
  data.flags = 77;
  EXPECT_TRUE(hideFields(data));
  return data.flags;
}

TEST_F(Listeners, HideFieldsHidesAllButTheType) {
  for (const char* name : {"hubCellId", "hubCellName", "clientId", "entityGUID", "flags"})
    EXPECT_EQ(hide(name, 2), XMLCB_SKIP_PROCESSING) << name;
}

TEST(HideFields, KeepsTheTypeOfTheShownEntities) {
  for (const int type : {2, 10, 27, 34, 42, 43, 71, 72, 95, 113, 114})
    EXPECT_EQ(hide("_type_", type), 0u) << type;
}

TEST(HideFields, HidesTheTypeOfTheOtherEntities) {
  for (const int type : {-1, 0, 1, 3, 4, 9, 11, 26, 28, 94, 96, 112, 115})
    EXPECT_EQ(hide("_type_", type), XMLCB_SKIP_PROCESSING) << type;
}

TEST(HideFields, HidesEverythingOfOtherClasses) {
  Demo::SampleChild message;
  ListenerCbData data;
  data.msg = &message;
  data.field = FieldDef("_type_", nullptr, 1, 0, 0, 0, FDT_INT);
  message.setN(2);
  EXPECT_TRUE(hideFields(data));
  EXPECT_EQ(data.flags, XMLCB_SKIP_PROCESSING);
}

TEST(HideFields, TypeIsReadFromIntegersOnly) {
  ZqEntities::GenericEntity entity;
  entity.set_type_(static_cast<ZqEntities::EntityType>(2));
  ListenerCbData data;
  data.msg = &entity;
  for (const FieldDataType type :
       {FDT_STRING, FDT_DOUBLE, FDT_BSTRING, FDT_LIST_INT, FDT_MAP_INT64_INT64, FDT_NONE}) {
    data.field = FieldDef("_type_", nullptr, 1, 0, 0, 0, type);
    EXPECT_TRUE(hideFields(data));
    EXPECT_EQ(data.flags, XMLCB_SKIP_PROCESSING) << type;
  }
  data.field = FieldDef("_type_", nullptr, 1, 0, 0, 0, FDT_UINT);
  EXPECT_TRUE(hideFields(data));
  EXPECT_EQ(data.flags, 0u);
}

TEST(HideFields, ObjectWithoutClassIsLeftAlone) {
  XNMessageBase classless;
  ListenerCbData data;
  for (XNMessageBase* message : {&classless, static_cast<XNMessageBase*>(nullptr)}) {
    data.msg = message;
    data.flags = 77;
    EXPECT_FALSE(hideFields(data));
    EXPECT_EQ(data.flags, 0u);
  }
}

TEST_F(Listeners, HideFieldsReducesAnEntityToItsTypeWhileWriting) {
  ZqEntities::GenericEntity entity;
  entity.set_type_(static_cast<ZqEntities::EntityType>(2));
  entity.setClientName("server");
  add(kEntityTag, hideFields);
  EXPECT_EQ(serialized(entity), "<ZqEntities_GenericEntity _type_=\"2\"/>");
}

// --- The registry

TEST_F(Listeners, FunctionRegisteredTwiceRunsTwice) {
  add(kId, first);
  add(kId, first);
  process(kId);
  EXPECT_THAT(calls(), ElementsAre("first", "first"));
  EXPECT_TRUE(support_.removeListener(kId, first));
  process(kId);
  EXPECT_THAT(calls(), ElementsAre("first", "first", "first"));
}

TEST_F(Listeners, FirstEntryOfAFunctionIsRemoved) {
  add(kId, first);
  add(kId, second);
  add(kId, first);
  EXPECT_TRUE(support_.removeListener(kId, first));
  process(kId);
  EXPECT_THAT(calls(), ElementsAre("second", "first"));
}

TEST_F(Listeners, OfOtherIdsDoNotRun) {
  add(kId, first);
  process(kId + 1);
  EXPECT_TRUE(calls().empty());
}

TEST_F(Listeners, RoundGoesOnWithTheListenersThatItBeganWith) {
  add(kId, removeItselfAndAddFirst);
  add(kId, second);
  process(kId);
  EXPECT_THAT(calls(), ElementsAre("remover", "second"));
  calls().clear();
  process(kId);
  EXPECT_THAT(calls(), ElementsAre("second", "first"));
}

TEST_F(Listeners, FlagsAreNotResetBetweenThem) {
  add(kId, first);
  EXPECT_EQ(process(kId, 42), 42u);
}

TEST_F(Listeners, ExceptionReachesTheCaller) {
  add(kId, fail);
  add(kId, first);
  EXPECT_THROW(process(kId), std::runtime_error);
  EXPECT_TRUE(calls().empty());
}

TEST_F(Listeners, AllInstancesActOnOneRegistry) {
  XMLSerializationSupport other;
  const XMLSerializationSupport copy = other;
  other = copy;
  XMLSerializer serializer;
  XMLEncoder encoder;
  other.addListener(kId, first);
  serializer.addListener(kId, second);
  process(kId);
  EXPECT_THAT(calls(), ElementsAre("first", "second"));
  EXPECT_TRUE(encoder.removeListener(kId, first));
  EXPECT_TRUE(other.removeListener(kId, second));
}

TEST_F(Listeners, InitializationStartsTheXmlLibrary) {
  EXPECT_EQ(XMLSerializationSupport::initialize(), XN_MSG_OK);
  EXPECT_TRUE(XMLSerializer::isXercesInitialized);
}

// --- In the writer

TEST_F(Listeners, OfAClassSeeEachOfItsFieldsThatIsWritten) {
  static std::vector<std::string> seen;
  seen.clear();
  Demo::Sample message;
  message.setId(7);
  message.setTitle("t");
  static const XNMessageBase* expected = nullptr;
  expected = &message;
  add(Demo::Sample::kTagId, [](ListenerCbData& data) {
    EXPECT_EQ(data.msg, expected);
    EXPECT_EQ(data.flags, 0u);
    seen.push_back(data.field.getName());
    if (seen.back() == "id") data.flags = XMLCB_SKIP_PROCESSING;
    return true;
  });
  LogCapture capture(15);
  EXPECT_EQ(serialized(message), "<Demo_Sample title=\"t\"/>");
  EXPECT_THAT(seen, ElementsAre("id", "title"));
  EXPECT_TRUE(capture.has("XMLSerializer::serializeXMLRecur", 15,
                          "Skipping field [id] as XMLCB_SKIP_PROCESSING is set(On Tag ID)"));
}

TEST_F(Listeners, AnyOtherVerdictLetsTheFieldBeWritten) {
  Demo::Sample message;
  message.setId(7);
  add(Demo::Sample::kTagId, [](ListenerCbData& data) {
    data.flags = 2;
    return true;
  });
  EXPECT_EQ(serialized(message), "<Demo_Sample id=\"7\"/>");
}

TEST_F(Listeners, OfAllAnnotationsOfAFieldRunAndTheLastHasTheLastWord) {
  Demo::Guarded message;
  message.setAnnotated(60);
  add(Annotation::ZQTime::kTagId, skip);
  add(Annotation::Sensitive::kTagId, letThrough);
  EXPECT_THAT(serialized(message), HasSubstr("annotated"));
  EXPECT_TRUE(support_.removeListener(Annotation::Sensitive::kTagId, letThrough));
  EXPECT_THAT(serialized(message), Not(HasSubstr("annotated")));
}

}  // namespace
}  // namespace zqxml

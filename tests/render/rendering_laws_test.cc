// What holds of every rendering: it leaves the message alone, grows with it and no faster, gets along with
// any message, and does not disturb another thread's.
#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>
#include <tests/render/rendering.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/random_message.h>
#include <zqxml/catalogue/generated/JobManager.h>
#include <zqxml/catalogue/generated/Render.h>
#include <zqxml/render/summary_traverse.h>

#include <array>
#include <set>
#include <thread>

namespace zqxml {
namespace {

/// Every form of a message, in plain and in catalogue order.
std::vector<std::string> everyForm(XNMessageBase& message) {
  std::vector<std::string> forms{streamText(message)};
  for (const bool order : {false, true}) {
    const ContextFormatOpts options = optionsFor(kNoTexts, order);
    forms.push_back(plainText(message, options));
    forms.push_back(outlineOf(message, options));
    forms.push_back(paragraphOf(message, options));
  }
  return forms;
}

/// What lies in the slots, pointers included: also what is not set stays as it is.
std::vector<std::int64_t> slotsOf(const XNMessageBase& message) {
  std::vector<std::int64_t> slots;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message))
    if (fieldTypeFacts(field.getType()).slots != 0) slots.push_back(MessageAccess::slot(message, field));
  return slots;
}

RC_GTEST_PROP(Rendering, NeverChangesTheMessage, ()) {
  OpenMessage message = *randomMessages(0);
  const LogCapture capture;
  const std::string before = dump(message);
  const std::vector<std::int64_t> slots = slotsOf(message);
  everyForm(message);
  RC_ASSERT(dump(message) == before);
  RC_ASSERT(slotsOf(message) == slots);
}

TEST(Rendering, NeverChangesAMessageOfEveryType) {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  everyForm(message);
  checkEveryType(message);
}

RC_GTEST_PROP(Rendering, IsTheSameEachTime, ()) {
  OpenMessage message = *randomMessages(0);
  const LogCapture capture;
  RC_ASSERT(everyForm(message) == everyForm(message));
}

/// A list of equal jobs, each with sub-objects and lists.
JobManager::JobListResp jobs(int count) {
  JobManager::JobListResp list;
  for (int i = 0; i < count; ++i) {
    JobManager::Job& job = list.addToJobs();
    job.setJobId(9);
    job.setStatus(JobManager::JobStatus::RUNNING);
    job.mutableErrorCodes() = {1, 2, 3};
    for (int phase = 0; phase < 2; ++phase) job.addToPhases().addToAttempts().setReason("r");
  }
  return list;
}

TEST(Rendering, GrowsWithTheCountOfItsElements) {
  const auto sizes = [](int count) {
    JobManager::JobListResp list = jobs(count);
    std::vector<std::size_t> all;
    for (const std::string& form : everyForm(list)) all.push_back(form.size());
    return all;
  };
  const std::vector<std::size_t> small = sizes(300), medium = sizes(600), large = sizes(900);
  for (std::size_t form = 0; form < small.size(); ++form) {
    ASSERT_GT(small[form], 0u);
    EXPECT_EQ(large[form] - medium[form], medium[form] - small[form]) << form;
  }
}

TEST(Rendering, GrowsNoFasterWhereTheIndentationDrifts) {
  // Each element of `rows` has a list `rows` in an object of its own: a label that stands two labels before.
  const auto outlineSize = [](int count) {
    Render::Drift message;
    for (int i = 0; i < count; ++i) message.addToRows().mutableInner().addToRows().setValue(1);
    return outlineOf(message).size();
  };
  const std::size_t small = outlineSize(300), medium = outlineSize(600), large = outlineSize(900);
  EXPECT_EQ(large - medium, medium - small);
}

TEST(Rendering, GrowsWithTheDepthOfItsObjects) {
  const std::size_t small = outlineOfDepth(300).size(), medium = outlineOfDepth(600).size(),
                    large = outlineOfDepth(900).size();
  EXPECT_EQ(large - medium, medium - small);
}

/// All events of a context, with one field.
void allEvents(ZqXMLRenderContext& context, MsgFieldContext& event) {
  context.startSubHeader(event);
  context.writeAttribute(event);
  context.writeList(event);
  context.writeEnum(event);
  context.endSubHeader(event);
  context.endSubHeader(event);
}
void allEvents(MsgFieldContext& event) {
  std::ostringstream stream;
  DefaultRenderContext text(stream, optionsFor(kEnglish));
  HTMLRenderContext outline(optionsFor(kEnglish));
  HTMLGuiSummaryRenderContext paragraph(optionsFor(kEnglish));
  for (const bool set : {false, true}) {
    event.setValueState(set);
    for (ZqXMLRenderContext* context :
         std::initializer_list<ZqXMLRenderContext*>{&text, &outline, &paragraph}) {
      allEvents(*context, event);
      DefaultSummaryTraverse handler(context);
      handler.startSubObject(event);
      handler.visit(event);
      handler.endSubObject(event);
      handler.visit(event);
    }
  }
}

TEST(Rendering, GetsAlongWithAnyFieldOfAnyMessage) {
  const LogCapture capture;
  OpenMessage full = newMessage("Demo_EveryType");
  fillEveryType(full);
  OpenMessage fresh = newMessage("Demo_EveryType");
  OpenMessage marked = newMessage("Demo_EveryType");  // fields that are set and have no value
  OpenMessage foreign = newMessage("Demo_Sample");
  XNMessageBase classless;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&full)) {
    setBit(marked, field.getName());
    for (XNMessageBase* message :
         std::initializer_list<XNMessageBase*>{&full, &fresh, &marked, &foreign, &classless, nullptr}) {
      MsgFieldContext event(field, message);
      allEvents(event);
    }
  }
  checkEveryType(full);
}

TEST(Rendering, GetsAlongWithFieldsThatNoClassHas) {
  const LogCapture capture;
  OpenMessage message = newMessage("Demo_EveryType");
  for (unsigned type = 0; type < 256; ++type) {
    for (const std::int16_t number : std::initializer_list<std::int16_t>{-1, 0, 5, 38, 39, 32767}) {
      const FieldDef field("\0\0\0\0\0\0\0\0name", nullptr, 1, 0, number, number,
                           static_cast<FieldDataType>(type));
      MsgFieldContext event(field, &message);
      allEvents(event);
    }
  }
  const FieldDef nameless;
  MsgFieldContext event(nameless, &message);
  allEvents(event);
}

TEST(Rendering, FieldWithTheNameOfAnotherIsNoFieldOfTheMessage) {
  const LogCapture capture;
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  const FieldDef& texts = fieldOf(message, "listStringField");
  const auto textOfFieldNamed = [&](const char* name) {
    const FieldDef field(name, nullptr, texts.getFieldHashId(), 0, texts.getMemNum(), texts.getIndex(),
                         FDT_LIST_STRING);
    MsgFieldContext event(field, &message);
    std::ostringstream stream;
    DefaultRenderContext(stream, optionsFor(kNoTexts)).writeList(event);
    return stream.str();
  };
  EXPECT_THAT(textOfFieldNamed("listStringField"), testing::StartsWith("listStringField["));
  EXPECT_EQ(textOfFieldNamed("listIntField"), "");
  EXPECT_EQ(textOfFieldNamed(nullptr), "");
}

TEST(Rendering, ContextsOfConcurrentThreadsHaveIdsOfTheirOwn) {
  constexpr int kBlocks = 200;
  const int outlinesBefore = HTMLRenderContext::CountOptions;
  const int summariesBefore = HTMLGuiSummaryRenderContext::CountOptions;
  std::array<std::set<std::string>, 4> ids;
  std::vector<std::thread> threads;
  for (std::set<std::string>& own : ids) {
    threads.emplace_back([&own] {
      Render::Item message;
      message.setName("x");
      for (int i = 0; i < kBlocks; ++i) {
        const std::string text = outlineOf(message, optionsFor(kEnglish, false, true));
        const std::size_t at = text.find("<div id=\"") + 9;
        own.insert(text.substr(at, text.find('"', at) - at));
        paragraphOf(message);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::set<std::string> all;
  for (const std::set<std::string>& own : ids) all.insert(own.begin(), own.end());
  EXPECT_EQ(all.size(), ids.size() * kBlocks);
  EXPECT_EQ(HTMLRenderContext::CountOptions, outlinesBefore + 4 * kBlocks);
  EXPECT_EQ(HTMLGuiSummaryRenderContext::CountOptions, summariesBefore + 4 * kBlocks);
}

}  // namespace
}  // namespace zqxml

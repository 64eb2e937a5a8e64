// Many threads at once: each builds, copies, writes, reads and logs messages of its own; what they share is
// the catalogue, the XML library, the log and the registries.
#include <gtest/gtest.h>
#include <tests/support/every_type.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <tests/support/xml_roads.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/dummy_objects.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/traverse/xml_traverse.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 25;

/// Runs work(thread) on many threads that start together.
void onAllThreads(const std::function<void(int)>& work) {
  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      work(thread);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

/// A message that tells which thread made it.
OpenMessage messageOf(int thread) {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  setInteger(message, "intField", thread);
  return message;
}

class ManyThreads : public ::testing::Test {
 protected:
  ManyThreads() {
    EvDebug::setSink([this](const LogLine& line) { lines_ += line.text.empty() ? 0 : 1; });
  }
  ~ManyThreads() override { EvDebug::setSink({}); }

  /// Counts a failed expectation; gtest's own are for one thread.
  void expect(bool holds) { failures_ += holds ? 0 : 1; }
  void TearDown() override { EXPECT_EQ(failures_.load(), 0); }

  void writeAndReadXml(int thread) {
    for (int round = 0; round < kRounds; ++round) {
      OpenMessage message = messageOf(thread);
      std::string xml;
      std::u16string wide;
      expect(message.serialize(xml) == XN_MSG_OK && message.serializeUTF16(wide) == XN_MSG_OK);
      OpenMessage read = newMessage("Demo_EveryType");
      expect(read.unserialize(xml) == XN_MSG_OK && dump(read) == dump(message));
      expect(read.unserialize(wide.c_str()) == XN_MSG_OK && dump(read) == dump(message));
    }
  }

  std::atomic<int> lines_ = 0;
  std::atomic<int> failures_ = 0;
};

TEST_F(ManyThreads, ThreadsWriteAndReadXmlAtOnce) {
  onAllThreads([&](int thread) { writeAndReadXml(thread); });
  EXPECT_EQ(lines_.load(), 0);
}

TEST_F(ManyThreads, ThreadsWriteAndReadXmlThroughTheLibraryAtOnce) {
  const FastXmlRoads closed(false);
  onAllThreads([&](int thread) { writeAndReadXml(thread); });
  EXPECT_EQ(lines_.load(), 0);
}

TEST_F(ManyThreads, ThreadsWriteAndReadTheBinaryFormAtOnce) {
  onAllThreads([&](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      OpenMessage message = messageOf(thread);
      clearBinaryLosses(message);
      BinaryBuffer buffer;
      expect(BinarySerializer::serialize(message, buffer) != 0);
      const std::unique_ptr<XNMessageBase> read(BinarySerializer::unserialize(buffer, nullptr, false));
      expect(read != nullptr && dump(*read) == dump(message));
    }
  });
  EXPECT_EQ(lines_.load(), 0);
}

TEST_F(ManyThreads, ThreadsReadOneBufferAtOnce) {
  OpenMessage message = messageOf(0);
  clearBinaryLosses(message);
  BinaryBuffer buffer;
  ASSERT_NE(BinarySerializer::serialize(message, buffer), 0u);
  const std::string expected = dump(message);
  onAllThreads([&](int) {
    for (int round = 0; round < kRounds; ++round) {
      const std::unique_ptr<XNMessageBase> read(BinarySerializer::unserialize(buffer, nullptr, false));
      expect(read != nullptr && dump(*read) == expected);
    }
  });
}

TEST_F(ManyThreads, ThreadsBuildCopyAndClearAtOnce) {
  onAllThreads([&](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      const OpenMessage message = messageOf(thread);
      OpenMessage copy(message);
      expect(copy == message && slotOf(copy, "intField") == thread);
      copy.reset();
      expect(!(copy == message));
      copy = message;
      expect(dump(copy) == dump(message));
      const std::unique_ptr<XNMessageBase> old(
          XNMessageBase::createObject(classNamed("ZqDFMImport_OldTree").tag()));
      expect(old != nullptr);
    }
  });
}

TEST_F(ManyThreads, ThreadsCopyOneMessageAtOnce) {
  const OpenMessage message = messageOf(0);
  onAllThreads([&](int) {
    for (int round = 0; round < kRounds; ++round) expect(OpenMessage(message) == message);
  });
}

TEST_F(ManyThreads, ThreadsWalkMergeAndFillAtOnce) {
  onAllThreads([&](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      OpenMessage message = messageOf(thread);
      const std::string before = dump(message);
      XmlTraverse walker;  // a handler too, which does nothing
      walker.traverse(message, walker, true, true);
      expect(dump(message) == before);
      OpenMessage merged = newMessage("Demo_EveryType");
      expect(XmlTraverse::merge(message, merged) && slotOf(merged, "intField") == thread);
      XNMessageBase* filled = &merged;
      expect(createXMLObjectWithDummyValues(filled) == 0);
    }
  });
  EXPECT_EQ(lines_.load(), 0);
}

TEST_F(ManyThreads, ThreadsFailAndLogAtOnce) {
  onAllThreads([&](int thread) {
    OpenMessage message = messageOf(thread);
    for (int round = 0; round < kRounds; ++round) {
      // Each failure has a fallback of its thread's own, and a line.
      std::int64_t& fallback = message.getint64ByRef(-1, 0, message.getTagID(), 0);
      expect(fallback == 0);
      fallback = thread;
      expect(message.getstringByRef(1, 1, 7, 7).empty());
      expect(message.getlistint(1, 1, 7, 7, true) == nullptr);
      expect(XNMessageBase::createObject(0xca000001) == nullptr);
      logDebug("ManyThreads", 15, "not written %d", round);
    }
  });
  EXPECT_EQ(lines_.load(), kThreads * kRounds * 4);
}

TEST_F(ManyThreads, ThreadsChangeTheLogLevelWhileOthersLog) {
  onAllThreads([&](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      if (thread == 0) EvDebug::setDebugLevel(round % 2 == 0 ? 25 : 0);
      OpenMessage message = messageOf(thread);
      std::string xml;
      expect(message.serialize(xml) == XN_MSG_OK);
      expect(message.unserialize(xml) == XN_MSG_OK);
    }
  });
  EvDebug::setDebugLevel(0);
}

TEST_F(ManyThreads, ThreadsLookUpTheCatalogueAtOnce) {
  onAllThreads([&](int) {
    for (int round = 0; round < kRounds; ++round) {
      const ClassIndices indices = classNamed("Demo_EveryType");
      std::string schema;
      expect(XNMessageBase::getMessageSchemaString(indices.tag(), schema, true, true) && !schema.empty());
      expect(XMLDecoder::GetEnumString(fieldOf(indices.record(), "enumField"), 2) == std::string("AUTO"));
    }
  });
}

}  // namespace
}  // namespace zqxml

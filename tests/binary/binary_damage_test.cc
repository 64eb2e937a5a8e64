// Damaged, hostile and extreme input of the binary reader: it answers, and within bounds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <tests/support/settings.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/JobManager.h>
#include <zqxml/message/internal/nesting_limit.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

/// Bytes that the C++ heap holds, and the most that it has held.
std::atomic<std::size_t> liveBytes{0};
std::atomic<std::size_t> peakBytes{0};
constexpr std::size_t kPrefix = alignof(std::max_align_t);

}  // namespace

void* operator new(std::size_t size) {
  auto* block = static_cast<char*>(std::malloc(size + kPrefix));
  if (block == nullptr) throw std::bad_alloc();
  *reinterpret_cast<std::size_t*>(block) = size;
  const std::size_t live = liveBytes.fetch_add(size) + size;
  std::size_t peak = peakBytes.load();
  while (live > peak && !peakBytes.compare_exchange_weak(peak, live)) {
  }
  return block + kPrefix;
}
void operator delete(void* pointer) noexcept {
  if (pointer == nullptr) return;
  char* block = static_cast<char*>(pointer) - kPrefix;
  liveBytes.fetch_sub(*reinterpret_cast<std::size_t*>(block));
  std::free(block);
}
void operator delete(void* pointer, std::size_t) noexcept {
  operator delete(pointer);
}

namespace zqxml {
namespace {

/// The most that the heap held beyond the present while this ran.
std::size_t heapOf(const std::function<void()>& run) {
  const std::size_t before = liveBytes.load();
  peakBytes.store(before);
  run();
  return peakBytes.load() - before;
}

/// A message with every kind of field that can be read back, objects in objects included.
std::string goldenEveryType() {
  Demo::EveryType message;
  message.setIntField(-3);
  message.setStringField("text");
  message.setWstringField(u"wide €");
  message.setDoubleField(1.5);
  message.setFloatField(0.5f);
  message.setBstringField("bytes");
  message.setPstringField("secret");
  message.setListIntField({1, -1, 100000});
  message.setListStringField({"a", "bc"});
  message.setListDoubleField({1.5, 2.5});
  message.mutableObjectField().setText("inner");
  message.addToListObjectField().setNumber(1);
  message.addToListObjectField().setNumbers({7, 8});
  message.setMapStringInt64Field({{"k", 1}, {"l", 2}});
  message.setMapStringStringField({{"a", "b"}});
  message.addToMapInt64ObjectField(4).setText("mapped");
  auto& pairs = collectionOf<std::map<XNMessageBase, XNMessageBase>>(message, "mapObjectObjectField");
  pairs.emplace(Demo::EveryChild(), Demo::EveryChild());
  return serialized(message);
}

std::string goldenJobs() {
  JobManager::JobListResp message;
  message.setGenerated(1700000000);
  for (int i = 0; i < 3; ++i) {
    JobManager::Job& job = message.addToJobs();
    job.setJobId(i);
    job.setDescription("a job");
    job.addToPhases().addToAttempts().setReason("none");
    job.setErrorCodes({1, 2});
    job.setCounters({{"files", i}});
  }
  return serialized(message);
}

/// Both entries, on exactly these bytes.
void readBoth(const std::string& bytes, XNMessageBase& message) {
  const int result = readInto(message, bytes);
  EXPECT_TRUE(result == 0 || result == -1);
  const auto made = readNew(bytes);
  if (result == 0) {
    EXPECT_NE(made, nullptr);
  }
}

void everyCut(const std::string& golden, const char* className) {
  LogCapture capture;
  OpenMessage message = newMessage(className);
  for (std::size_t size = 0; size < golden.size(); ++size) readBoth(golden.substr(0, size), message);
  EXPECT_EQ(readInto(message, golden), 0);
}

/// Each byte of the body, replaced by values that make the most of lengths, counts and keys.
void everyByteReplaced(const std::string& golden, const char* className) {
  LogCapture capture;
  OpenMessage message = newMessage(className);
  for (std::size_t at = 8; at < golden.size(); ++at) {
    for (const int flip : {0x01, 0x02, 0x80, 0xff, -1, -2}) {
      std::string damaged = golden;
      const auto byte = static_cast<unsigned char>(damaged[at]);
      damaged[at] = static_cast<char>(flip == -1 ? 0 : flip == -2 ? 0xff : byte ^ flip);
      readBoth(damaged, message);
    }
  }
}

TEST(BinaryDamageTest, EveryCutOfAMessageIsAnswered) {
  everyCut(goldenEveryType(), "Demo_EveryType");
  everyCut(goldenJobs(), "JobManager_JobListResp");
}

TEST(BinaryDamageTest, EveryReplacedByteIsAnswered) {
  everyByteReplaced(goldenEveryType(), "Demo_EveryType");
  everyByteReplaced(goldenJobs(), "JobManager_JobListResp");
}

TEST(BinaryDamageTest, EveryReplacedByteOfTheHeaderIsAnswered) {
  const std::string golden = goldenEveryType();
  LogCapture capture;
  for (std::size_t at = 0; at < 8; ++at) {
    for (int value = 0; value < 256; ++value) {
      std::string damaged = golden;
      damaged[at] = static_cast<char>(value);
      Demo::EveryType message;
      readBoth(damaged, message);
    }
  }
}

// --- Nesting.

/// The bodies of `levels` messages of Demo_Nest, each the content of the one field of the one around it.
std::string nest(int levels, const std::function<std::string(const std::string&)>& around) {
  std::string body;
  for (int i = 1; i < levels; ++i) body = around(body);
  return withHeader(Demo::Nest::kTagId, body);
}
std::string asObject(const std::string& body) {
  return Wire().key("child", 2).text(body);
}
std::string asElement(const std::string& body) {
  return Wire().marker(1).key("children", 2).text(body);
}
std::string asMapped(const std::string& body) {
  return Wire().marker(1).key("byNumber", 2).varint(0).varint(1).varint(2).fixed64(1).text(body);
}
std::string asKey(const std::string& body) {
  return Wire().marker(1).key("pair", 2).varint(0).varint(2).varint(2).text(body).varint(0);
}

class BinaryNestingTest : public testing::Test {
 protected:
  BinaryNestingTest() { NestingLimit::forget(); }
  ~BinaryNestingTest() override { NestingLimit::forget(); }

  LogCapture capture_;
};

TEST_F(BinaryNestingTest, ThousandLevelsAreReadAndOneMoreIsNot) {
  for (const auto& around : {asObject, asElement, asMapped, asKey}) {
    Demo::Nest message;
    EXPECT_EQ(readInto(message, nest(1000, around)), 0);
    EXPECT_EQ(readInto(message, nest(1001, around)), -1);
    EXPECT_TRUE(capture_.has("BinarySerializer::unserializeBinaryRecur", 0,
                             "Objects are nested deeper than [1000] levels"));
    EXPECT_TRUE(capture_.has("BinarySerializer::unserialize", 0,
                             "Error unserializing from buffer on object [Demo_Nest]"));
    capture_.clear();
  }
}

TEST_F(BinaryNestingTest, SettingChangesTheLimit) {
  TestSettings settings{{"EventManager/nMaxNesting", "3"}};
  Demo::Nest message;
  EXPECT_EQ(readInto(message, nest(3, asObject)), 0);
  EXPECT_EQ(readInto(message, nest(4, asObject)), -1);
}

TEST_F(BinaryNestingTest, ZeroIsNoLimit) {
  TestSettings settings{{"EventManager/nMaxNesting", "0"}};
  Demo::Nest message;
  EXPECT_EQ(readInto(message, nest(1500, asObject)), 0);
}

TEST_F(BinaryNestingTest, SettingBelowZeroIsNoSetting) {
  TestSettings settings{{"EventManager/nMaxNesting", "-5"}};
  Demo::Nest message;
  EXPECT_EQ(readInto(message, nest(1000, asObject)), 0);
  EXPECT_EQ(readInto(message, nest(1001, asObject)), -1);
}

TEST_F(BinaryNestingTest, SettingIsReadOncePerProcess) {
  TestSettings settings;
  settings.count("EventManager/nMaxNesting");
  Demo::Nest message;
  readInto(message, nest(3, asObject));
  readInto(message, nest(3, asObject));
  EXPECT_EQ(settings.lookUps(), 1);
}

TEST_F(BinaryNestingTest, ThousandLevelsAreWritten) {
  Demo::Nest message;
  const std::string bytes = nest(1000, asObject);
  ASSERT_EQ(readInto(message, bytes), 0);
  EXPECT_EQ(serialized(message), bytes);
}

// --- Memory.

TEST(BinaryMemoryTest, ClaimedCountsDoNotReserveMoreThanTheBytesAreWorth) {
  // Each level claims as many elements as there are bytes left, and only the innermost one fails.
  std::string body = std::string(20000, '\0');
  for (int i = 0; i < 900; ++i) {
    body = Wire().marker(static_cast<std::uint32_t>(body.size() / 6)).key("children", 2).text(body);
  }
  const std::string bytes = withHeader(Demo::Nest::kTagId, body);
  LogCapture capture;
  Demo::Nest message;
  const std::size_t heap = heapOf([&] { readInto(message, bytes); });
  EXPECT_LT(heap, 200 * bytes.size() + 1000000);
}

TEST(BinaryMemoryTest, MillionsOfClaimedElementsReserveNothing) {
  for (const char* field : {"listIntField", "listLonglongField", "listStringField", "listObjectField"}) {
    const std::string bytes = withHeader(
        Demo::EveryType::kTagId, Wire().marker(0x7fffffff).key(field, 2).raw(std::string(1000, '\0')));
    LogCapture capture;
    Demo::EveryType message;
    EXPECT_LT(heapOf([&] { EXPECT_EQ(readInto(message, bytes), -1); }), 100000u) << field;
  }
}

TEST(BinaryMemoryTest, LargeListsAreReservedOnce) {
  Demo::EveryType source;
  for (int i = 0; i < 2000; ++i) source.addToListObjectField().setNumber(i);
  const std::string bytes = serialized(source);
  Demo::EveryType message;
  const std::size_t heap = heapOf([&] { ASSERT_EQ(readInto(message, bytes), 0); });
  EXPECT_LT(heap, 2000 * sizeof(XNMessageBase) + bytes.size() + 10000);
  EXPECT_EQ(message.mutableListObjectFieldVector().capacity(), 2000u);
}

TEST(BinaryMemoryTest, ReadingAgainIntoAnObjectLeaksNothing) {
  const std::string bytes = goldenEveryType();
  Demo::EveryType message;
  ASSERT_EQ(readInto(message, bytes), 0);
  const std::size_t before = liveBytes.load();
  for (int i = 0; i < 3; ++i) ASSERT_EQ(readInto(message, bytes), 0);
  EXPECT_EQ(liveBytes.load(), before);
}

TEST(BinaryMemoryTest, FailuresLeakNothing) {
  const std::string golden = goldenJobs();
  LogCapture capture(-1);  // its lines would take memory too
  // What is made once for the process or the thread is no leak.
  for (std::size_t size = 8; size < golden.size(); ++size) readNew(golden.substr(0, size));
  for (std::size_t size = 8; size < golden.size(); ++size) {
    const std::string bytes = golden.substr(0, size);
    const std::size_t before = liveBytes.load();
    readNew(bytes);
    EXPECT_EQ(liveBytes.load(), before) << size;
  }
}

}  // namespace
}  // namespace zqxml

// What holds for every message on its way through the binary form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <tests/support/random_message.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <string>
#include <vector>

namespace zqxml {
namespace {

/// What the form cannot carry: see docs/wire-format.md.
const RandomValues kCarried{.without = {FDT_ULONGLONG, FDT_LIST_ULONGLONG}, .hashless = false};

/// A random class of these: every type, real messages, long ones, drifted ones. No class with lists or maps
/// of old-way objects: these come back with every field set, since that is how they are made.
OpenMessage randomMessage(const RandomValues& values) {
  static const std::vector<std::string> kClasses = {
      "Demo_EveryType",         "Demo_Sample",         "Demo_Hundred",     "Demo_Newer",
      "Demo_MapOuter",          "Demo_Nest",           "Demo_Elements25",  "Demo_StringAt22",
      "Demo_SelfPair",          "Drift_Reversed",      "App_TestMessage2", "ZQGui_SaveAlert",
      "JobManager_JobListResp", "JobManager_JobReport"};
  OpenMessage message = newMessage(*rc::gen::elementOf(kClasses));
  MessageAccess::wipeBitset(message);
  fillAtRandom(message, values);
  return message;
}

RC_GTEST_PROP(BinaryRoundTripTest, AnyMessageComesBack, ()) {
  OpenMessage message = randomMessage(kCarried);
  const std::string bytes = serialized(message);
  const auto back = readNew(bytes);
  RC_ASSERT(back != nullptr);
  RC_ASSERT(dump(*back) == dump(message));
  RC_ASSERT(serialized(*back) == bytes);
}

RC_GTEST_PROP(BinaryRoundTripTest, ReadingIntoAnObjectReplacesWhatItHeld, ()) {
  OpenMessage message = randomMessage(kCarried);
  OpenMessage other(message.getSubsysID(), message.getMessageIndex());
  fillAtRandom(other, kCarried);
  const std::string bytes = serialized(message);
  RC_ASSERT(readInto(other, bytes) == 0);
  RC_ASSERT(serialized(other) == bytes);
}

RC_GTEST_PROP(BinaryRoundTripTest, SizeIsWhatIsWrittenWhateverTheVersion, (int version)) {
  OpenMessage message = randomMessage({.without = {}, .hashless = true, .emptyCollections = true});
  const unsigned size = BinarySerializerTestAccess::bodySize(message, version);
  std::string range(size + 64, '\0');
  BinaryStream stream(range.data(), range.size());
  BinarySerializerTestAccess::writeBody(message, stream, version);
  RC_ASSERT(stream.position() == size);
  RC_ASSERT(serialized(message, version).size() == 8u + size);
}

RC_GTEST_PROP(BinaryRoundTripTest, DamageIsAnswered, ()) {
  OpenMessage message = randomMessage(kCarried);
  std::string bytes = serialized(message);
  for (int changes = *rc::gen::inRange(1, 4); changes > 0 && bytes.size() > 8; --changes) {
    const auto at = *rc::gen::inRange<std::size_t>(8, bytes.size());
    bytes[at] = *rc::gen::arbitrary<char>();
  }
  LogCapture capture(-1);
  const int result = readInto(message, bytes);
  RC_ASSERT(result == 0 || result == -1);
  RC_ASSERT((readNew(bytes) != nullptr) == (result == 0));
}

TEST(BinaryRoundTripTest, EveryTypeComesBack) {
  for (int version : {1, 2, 3}) {
    Demo::EveryType message;
    fillEveryType(message);
    clearBinaryLosses(message);
    Demo::EveryType back;
    ASSERT_EQ(readInto(back, serialized(message, version)), 0);
    checkEveryType(back, EveryTypeLosses::kBinary);
  }
}

}  // namespace
}  // namespace zqxml

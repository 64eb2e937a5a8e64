// What holds for every message on its way through the binary form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <tests/support/random_message.h>
#include <zqxml/binary/binary_explainer.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <string>

namespace zqxml {
namespace {

RC_GTEST_PROP(BinaryRoundTripTest, AnyMessageIsWrittenAgainAsItCame, ()) {
  OpenMessage message = *randomMessages(kBinaryLosses);
  const std::string bytes = serialized(message);
  const auto back = readNew(bytes);
  RC_ASSERT(back != nullptr);
  RC_ASSERT(serialized(*back) == bytes);
}

RC_GTEST_PROP(BinaryRoundTripTest, ReadingIntoAnObjectReplacesWhatItHeld, ()) {
  OpenMessage message = *randomMessages(kBinaryLosses);
  OpenMessage other = *randomMessagesOf(
      {static_cast<short>(message.getSubsysID()), message.getMessageIndex()}, kBinaryLosses);
  const std::string bytes = serialized(message);
  RC_ASSERT(readInto(other, bytes) == 0);
  RC_ASSERT(serialized(other) == bytes);
}

RC_GTEST_PROP(BinaryRoundTripTest, SizeIsWhatIsWrittenWhateverTheVersion, (int version)) {
  OpenMessage message = *randomMessages(0);
  const unsigned size = BinarySerializerTestAccess::bodySize(message, version);
  std::string range(size + 64, '\0');
  BinaryStream stream(range.data(), range.size());
  BinarySerializerTestAccess::writeBody(message, stream, version);
  RC_ASSERT(stream.position() == size);
  // One sink looks at the end of its range, and the other one writes what was counted unchecked.
  RC_ASSERT(serializedBody(message, version) == range.substr(0, size));
}

RC_GTEST_PROP(BinaryRoundTripTest, DamageIsAnswered, ()) {
  OpenMessage message = *randomMessages(kBinaryLosses);
  std::string bytes = serialized(message);
  for (int changes = *rc::gen::inRange(1, 4); changes > 0 && bytes.size() > 8; --changes) {
    const auto at = *rc::gen::inRange<std::size_t>(8, bytes.size());
    bytes[at] = *rc::gen::arbitrary<char>();
  }
  LogCapture capture(-1);
  const int result = readInto(message, bytes);
  RC_ASSERT(result == 0 || result == -1);
  RC_ASSERT((readNew(bytes) != nullptr) == (result == 0));
  RC_ASSERT(explainBinary(bytes, [](const BinaryNote&) {}) == (result == 0));
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

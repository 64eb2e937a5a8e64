// Reading while memory runs out: each allocation of a reading fails in turn, on both roads. In a program of
// its own: it replaces `operator new`.
#include <gtest/gtest.h>
#include <tests/support/every_type.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <tests/support/xml_roads.h>
#include <tests/xml/failing_allocation.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_serializer.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <string>

namespace zqxml {
namespace {

/// What a reading gave; null when it failed.
using Made = std::unique_ptr<XNMessageBase>;

/// Both forms of a message with a field of every type. Each reading either gives the whole message, in spite
/// of an allocation that failed, or fails.
class ReadMemory : public ::testing::TestWithParam<bool> {
 protected:
  ReadMemory() {
    OpenMessage message = newMessage("Demo_EveryType");
    fillEveryType(message);
    EXPECT_EQ(message.serialize(attributes_), XN_MSG_OK);
    EncodingFlags flags;
    flags.useElements = true;
    EXPECT_EQ(XMLSerializer(flags, nullptr).serialize(message, elements_, true), XN_MSG_OK);
    expected_ = dump(message);
    EvDebug::setDebugLevel(-1);
  }
  ~ReadMemory() override { EvDebug::setDebugLevel(0); }

  /// Lets each allocation fail in turn, until the reading has no more of them.
  void failEachAllocation(const std::function<Made()>& read) {
    ASSERT_NE(read(), nullptr);  // what is made once is there from here on
    int failed = 0;
    for (std::size_t number = 1;; ++number) {
      SCOPED_TRACE(number);
      const std::ptrdiff_t before = allocatedBlocks();
      failAllocation(number);
      Made made = readOrNull(read);
      const bool none = allocationWillFail();
      failAllocation(0);
      if (made == nullptr)
        ++failed;
      else
        EXPECT_EQ(dump(*made), expected_);
      made.reset();
      // The XML library loses what its constructors have taken when memory runs out in them.
      const bool fast = GetParam();
      ASSERT_TRUE(!fast || allocatedBlocks() == before) << "blocks were lost";
      if (none) break;
    }
    EXPECT_GT(failed, 0);
  }

  /// Reads into a message. One that a reading has failed for can be read into again.
  template <class Text>
  Made readInto(const Text& xml) const {
    Made message(XNMessageBase::createObject(classNamed("Demo_EveryType").tag()));
    const eXNMsgRet result = message->unserialize(xml);
    if (result == XN_MSG_OK) return message;
    EXPECT_EQ(result, XN_MSG_XML_LIBRARY_ERROR);
    EXPECT_EQ(message->unserialize(xml), XN_MSG_OK);
    EXPECT_EQ(dump(*message), expected_);
    return nullptr;
  }

  std::string attributes_;
  std::string elements_;

 private:
  static Made readOrNull(const std::function<Made()>& read) {
    try {
      return read();
    } catch (const std::bad_alloc&) {
      return nullptr;  // nothing was begun
    }
  }

  std::string expected_;
  const FastXmlRoads road_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Roads, ReadMemory, ::testing::Bool());

TEST_P(ReadMemory, ShortageInATextOfAttributesIsAFailureWithoutLoss) {
  failEachAllocation([this] { return readInto(attributes_); });
}

TEST_P(ReadMemory, ShortageInATextOfElementsIsAFailureWithoutLoss) {
  failEachAllocation([this] { return readInto(elements_); });
}

TEST_P(ReadMemory, ShortageInAWideTextIsAFailureWithoutLoss) {
  const std::u16string wide = toUtf16(attributes_.substr(attributes_.find('>') + 1));
  failEachAllocation([&] { return readInto(wide.c_str()); });
}

TEST_P(ReadMemory, ShortageWhileAnObjectIsMadeGivesNone) {
  failEachAllocation([this] { return Made(XMLSerializer().unserialize(attributes_, false)); });
}

}  // namespace
}  // namespace zqxml

// Laws over random messages: what every form brings back, and what a copy is. Each law names what its form
// loses.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <tests/support/message_dump.h>
#include <tests/support/random_message.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <string>
#include <utility>

namespace zqxml {
namespace {

constexpr EncodingFlags flagsOf(bool useElements, bool readable) {
  EncodingFlags flags;
  flags.useElements = useElements;
  flags.readable = readable;
  return flags;
}

/// Writes the message with the flags as UTF-8 and as UTF-16, reads both into new ones, expects the same
/// values.
void expectXmlBringsBack(OpenMessage& message, EncodingFlags flags) {
  XMLSerializer serializer(flags, nullptr);
  std::string xml;
  RC_ASSERT(serializer.serialize(message, xml) == XN_MSG_OK);
  RC_LOG() << xml << '\n';
  const std::unique_ptr<XNMessageBase> read(serializer.unserialize(std::as_const(xml), false));
  RC_ASSERT(read != nullptr);
  RC_ASSERT(dump(*read) == dump(message));
  RC_ASSERT(*read == message);

  std::u16string wide;
  RC_ASSERT(serializer.serializeUTF16(message, wide, false) == XN_MSG_OK);
  OpenMessage second(message.getSubsysID(), message.getMessageIndex());
  RC_ASSERT(serializer.unserialize(second, wide.c_str(), false, false) == XN_MSG_OK);
  RC_ASSERT(dump(second) == dump(message));
  RC_ASSERT(second == message);
}

void expectBinaryBringsBack(OpenMessage& message, int version) {
  BinaryBuffer buffer;
  RC_ASSERT(BinarySerializer::serialize(message, buffer, version) != 0u);
  const std::unique_ptr<XNMessageBase> read(BinarySerializer::unserialize(buffer, nullptr, false));
  RC_ASSERT(read != nullptr);
  RC_ASSERT(dump(*read) == dump(message));
  RC_ASSERT(*read == message);
}

RC_GTEST_PROP(RoundTripLaw, XmlOfAttributesBringsMessagesBack, ()) {
  OpenMessage message = *randomMessages(kXmlLosses);
  expectXmlBringsBack(message, flagsOf(false, false));
}

RC_GTEST_PROP(RoundTripLaw, XmlOfElementsBringsMessagesBack, ()) {
  OpenMessage message = *randomMessages(kXmlElementLosses);
  expectXmlBringsBack(message, flagsOf(true, false));
}

RC_GTEST_PROP(RoundTripLaw, ReadableXmlBringsMessagesBack, ()) {
  OpenMessage message = *randomMessages(kXmlReadableLosses);
  expectXmlBringsBack(message, flagsOf(false, true));
}

RC_GTEST_PROP(RoundTripLaw, BinaryOfVersionOneBringsMessagesBack, ()) {
  OpenMessage message = *randomMessages(kBinaryV1Losses);
  expectBinaryBringsBack(message, 1);
}

RC_GTEST_PROP(RoundTripLaw, BinaryOfVersionTwoBringsMessagesBack, ()) {
  OpenMessage message = *randomMessages(kBinaryLosses);
  expectBinaryBringsBack(message, 2);
}

RC_GTEST_PROP(CopyLaw, CopyEqualsItsOriginal, ()) {
  const OpenMessage message = *randomMessages(kCopyLosses);
  const OpenMessage copy(message);
  RC_ASSERT(dump(copy) == dump(message));
  RC_ASSERT(copy == message);
}

RC_GTEST_PROP(CopyLaw, AssignedMessageEqualsItsSource, ()) {
  const OpenMessage message = *randomMessages(kCopyLosses);
  OpenMessage target(message.getSubsysID(), message.getMessageIndex());
  target = message;
  RC_ASSERT(dump(target) == dump(message));
  RC_ASSERT(target == message);
}

RC_GTEST_PROP(CopyLaw, MovedMessageHoldsWhatItsSourceHeld, ()) {
  OpenMessage message = *randomMessages(0);
  const std::string before = dump(message);
  const OpenMessage moved(std::move(message));
  RC_ASSERT(dump(moved) == before);
}

}  // namespace
}  // namespace zqxml

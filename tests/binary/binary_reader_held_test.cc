// Content that is part of the object which it is read into.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <string>

namespace zqxml {
namespace {

using Demo::EveryType;
using testing::ElementsAre;

/// Puts something else wherever the form can hang, and then has values that show whether it was still there.
std::string form() {
  const std::string other(100, 'o');
  EveryType source;
  source.setStringField(other);
  source.setListStringField({other});
  source.mutableObjectField().setText(other);
  source.setBstringField(other);
  source.setListBstringField({bstring(other)});
  source.setMapStringStringField({{"key", other}});
  source.setTime64Field(64);
  return serialized(source);
}

/// Reads what `text`, a part of the message, holds.
void read(EveryType& message, const std::string& text, bool keepExisting) {
  const std::string expected = form();
  ASSERT_EQ(text, expected);
  BinaryBuffer buffer;
  buffer.SetReadBuffer(text.data(), text.size(), true);
  ASSERT_EQ(BinarySerializer::unserialize(message, buffer, nullptr, keepExisting), 0);
  EXPECT_EQ(serialized(message), expected);
}

class BinaryReaderHeld : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(KeptOrNot, BinaryReaderHeld, testing::Bool());

TEST_P(BinaryReaderHeld, ContentIsReadFromAText) {
  EveryType message;
  message.setStringField(form());
  read(message, message.getStringField(), GetParam());
}

TEST_P(BinaryReaderHeld, ContentIsReadFromBytes) {
  EveryType message;
  message.setBstringField(form());
  read(message, message.getBstringField().str(), GetParam());
}

TEST_P(BinaryReaderHeld, ContentIsReadFromAList) {
  EveryType message;
  message.setListBstringField({bstring(form())});
  read(message, message.getListBstringField().front().str(), GetParam());
}

TEST_P(BinaryReaderHeld, ContentIsReadFromASubObject) {
  EveryType message;
  message.mutableObjectField().setText(form());
  read(message, message.getObjectField()->getText(), GetParam());
}

}  // namespace
}  // namespace zqxml

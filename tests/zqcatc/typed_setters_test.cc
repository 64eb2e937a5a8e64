// Setters of generated classes, which store in line what the record of the object says is there: that record
// may be another than the one that they were generated from.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/message/internal/message_access.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "tests/support/log_capture.h"

namespace zqxml {
namespace {

using Demo::EveryType;
using testing::Contains;
using Number = EveryType::FieldNumber;

/// A message whose record can be another one for a while.
class TypedSetters : public testing::Test {
 protected:
  ~TypedSetters() override { useOwnRecord(); }

  FieldDef& field(short memNum) { return fields_[static_cast<std::size_t>(memNum)]; }
  void change(short memNum, short index, FieldDataType type) {
    FieldDef& changed = field(memNum);
    changed = FieldDef(changed.namePointer(), nullptr, changed.getFieldHashId(), 0, memNum, index, type);
  }
  void retype(short memNum, FieldDataType type) { change(memNum, field(memNum).getIndex(), type); }
  void useChangedRecord(short fieldCount) {
    record_.emplace("EveryType", fields_.data(), own_.getClassId(), -1, fieldCount,
                    own_.getNumberOfElements());
    MessageAccess::setClassDef(message_, &*record_);
  }
  void useChangedRecord() { useChangedRecord(own_.getNumberOfFields()); }
  void useOwnRecord() { MessageAccess::setClassDef(message_, &own_); }

  EveryType message_;
  LogCapture capture_;

 private:
  const _ClassDef& own_ = *MessageAccess::classDef(message_);
  std::vector<FieldDef> fields_{own_.begin(), own_.end()};
  std::optional<_ClassDef> record_;
};

TEST_F(TypedSetters, AskTheRecordOfTheObjectForTheFieldsType) {
  retype(Number::kIntField, FDT_LONG);
  retype(Number::kUintField, FDT_DOUBLE);
  retype(Number::kDoubleField, FDT_INT);
  retype(Number::kFloatField, FDT_INT);
  retype(Number::kStringField, FDT_INT);
  retype(Number::kWstringField, FDT_INT);
  useChangedRecord();
  message_.setIntField(7);
  EXPECT_TRUE(capture_.empty()) << "another type that is stored alike";
  message_.setUintField(7);
  message_.setDoubleField(7);
  message_.setFloatField(7);
  message_.setStringField("seven");
  message_.setWstringField(u"seven");
  EXPECT_EQ(capture_.lines().size(), 5u);
  useOwnRecord();
  EXPECT_EQ(message_.getIntField(), 7);
  EXPECT_FALSE(message_.isUintFieldSet());
  EXPECT_FALSE(message_.isDoubleFieldSet());
  EXPECT_FALSE(message_.isFloatFieldSet());
  EXPECT_EQ(message_.getStringField(), "");
  EXPECT_EQ(message_.getWstringField(), u"");
}

TEST_F(TypedSetters, AskTheRecordOfTheObjectForTheFieldsSlot) {
  const short elsewhere = field(Number::kLongField).getIndex();
  change(Number::kIntField, elsewhere, FDT_INT);
  change(Number::kStringField, elsewhere, FDT_STRING);
  useChangedRecord();
  message_.setIntField(7);
  message_.setStringField("seven");
  EXPECT_EQ(capture_.lines().size(), 2u);
  useOwnRecord();
  EXPECT_EQ(message_.getIntField(), 0);
  EXPECT_EQ(message_.getLongField(), 0);
  EXPECT_EQ(message_.getStringField(), "");
  EXPECT_FALSE(message_.isIntFieldSet());
  EXPECT_FALSE(message_.isStringFieldSet());
}

TEST_F(TypedSetters, AskTheObjectForItsTag) {
  Demo::Elements24 message;  // its first field has the slot and the type of the child's, and another name
  reinterpret_cast<Demo::EveryChild&>(static_cast<XNMessageBase&>(message)).setNumber(7);
  EXPECT_EQ(capture_.lines().size(), 1u);
  EXPECT_EQ(message.getI00(), 0);
  EXPECT_FALSE(message.isI00Set());
}

TEST_F(TypedSetters, OfAFieldBehindTheLastOfTheRecordAreRefused) {
  useChangedRecord(Number::kUintField);
  message_.setIntField(7);
  EXPECT_TRUE(capture_.empty());
  message_.setUintField(7);
  EXPECT_TRUE(capture_.hasPart("XNMessageBase::setint64", 0, "Given field id [2]."));
  useOwnRecord();
  EXPECT_EQ(message_.getIntField(), 7);
  EXPECT_EQ(message_.getUintField(), 0u);
}

TEST_F(TypedSetters, OfAFieldBeforeTheFirstAreRefused) {
  struct HandWritten : EveryType {
    void setFieldBeforeTheFirst() { putint64<FDT_INT>(-1, 0, 7, getTagID(), 0); }
  };
  HandWritten message;
  message.setFieldBeforeTheFirst();
  EXPECT_TRUE(capture_.hasPart("XNMessageBase::setint64", 0, "Given field id [-1]."));
  EXPECT_EQ(message, EveryType());
}

TEST_F(TypedSetters, OfAMessageThatWasMovedFromAreRefused) {
  EveryType message;
  const EveryType taken(std::move(message));
  message.setIntField(7);
  EXPECT_THAT(capture_.lines(), Contains(testing::Field(&CapturedLine::function, "XNMessageBase::setint64")));
  message.setStringField("seven");
  EXPECT_THAT(capture_.lines(),
              Contains(testing::Field(&CapturedLine::function, "XNMessageBase::assignstring")));
}

TEST_F(TypedSetters, OfAFloatClearTheSlotsUpperHalf) {
  std::int64_t& slot = MessageAccess::slot(message_, field(Number::kFloatField));
  slot = -1;
  message_.setFloatField(1.5F);
  EXPECT_EQ(slot, std::bit_cast<std::int32_t>(1.5F));
}

}  // namespace
}  // namespace zqxml

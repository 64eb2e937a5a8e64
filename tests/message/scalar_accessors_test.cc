// The accessors of numbers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/message/accessor_texts.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>

#include <bit>
#include <limits>
#include <thread>

namespace zqxml {
namespace {

using ::testing::ElementsAre;

constexpr std::uint32_t kForeignTag = 0xc8abcdef;
constexpr std::uint32_t kUnknownHash = 0x123456;

std::int64_t bitsOf(float value) {
  return static_cast<std::int64_t>(std::bit_cast<std::uint32_t>(value));
}

// A family has its value type, the name of its accessors behind get and set, fields of EveryType that it
// serves, a value, and how the value lies in a slot.
struct Int64Family {
  using Value = std::int64_t;
  static constexpr const char* kName = "int64";
  static constexpr const char* kFields[] = {"intField",      "uintField",     "longField", "ulongField",
                                            "longlongField", "boolField",     "enumField", "time32Field",
                                            "time64Field",   "ulonglongField"};
  static constexpr const char* kOther = "doubleField";
  static constexpr Value kSample = std::numeric_limits<std::int64_t>::min() + 5;
  static std::int64_t slot(Value value) { return value; }
  static Value get(const OpenMessage& message, short index, std::uint32_t tag, std::uint32_t hash) {
    return message.getint64(index, tag, hash);
  }
  static void set(OpenMessage& message, short memNum, short index, Value value, std::uint32_t tag,
                  std::uint32_t hash) {
    message.setint64(memNum, index, value, tag, hash);
  }
};
struct DoubleFamily {
  using Value = double;
  static constexpr const char* kName = "double";
  static constexpr const char* kFields[] = {"doubleField"};
  static constexpr const char* kOther = "floatField";
  static constexpr Value kSample = -0.1;
  static std::int64_t slot(Value value) { return std::bit_cast<std::int64_t>(value); }
  static Value get(const OpenMessage& message, short index, std::uint32_t tag, std::uint32_t hash) {
    return message.getdouble(index, tag, hash);
  }
  static void set(OpenMessage& message, short memNum, short index, Value value, std::uint32_t tag,
                  std::uint32_t hash) {
    message.setdouble(memNum, index, value, tag, hash);
  }
};
struct FloatFamily {
  using Value = float;
  static constexpr const char* kName = "float";
  static constexpr const char* kFields[] = {"floatField"};
  static constexpr const char* kOther = "intField";
  static constexpr Value kSample = -0.1f;
  static std::int64_t slot(Value value) { return bitsOf(value); }
  static Value get(const OpenMessage& message, short index, std::uint32_t tag, std::uint32_t hash) {
    return message.getfloat(index, tag, hash);
  }
  static void set(OpenMessage& message, short memNum, short index, Value value, std::uint32_t tag,
                  std::uint32_t hash) {
    message.setfloat(memNum, index, value, tag, hash);
  }
};

struct ScalarNames {
  template <class Family>
  static std::string GetName(int) {
    return Family::kName;
  }
};

template <class Family>
class ScalarAccessors : public ::testing::Test {
 protected:
  static std::string name(const char* before) {
    return std::string("XNMessageBase::") + before + Family::kName;
  }
  const FieldDef& field() const { return fieldOf(message_, Family::kFields[0]); }
  void expectWriteRefused(OpenMessage& message, short memNum, short index, std::uint32_t tag,
                          std::uint32_t hash, const std::string& text) {
    LogCapture capture;
    Family::set(message, memNum, index, Family::kSample, tag, hash);
    EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{name("set"), 0, text}));
  }
  void expectReadRefused(const OpenMessage& message, short index, std::uint32_t tag, std::uint32_t hash,
                         const std::string& text) {
    LogCapture capture;
    EXPECT_EQ(Family::get(message, index, tag, hash), 0);
    EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{name("get"), 0, text}));
  }

  OpenMessage message_ = newMessage("Demo_EveryType");
  const std::uint32_t tag_ = message_.getTagID();
};

using ScalarFamilies = ::testing::Types<Int64Family, DoubleFamily, FloatFamily>;
TYPED_TEST_SUITE(ScalarAccessors, ScalarFamilies, ScalarNames);

TYPED_TEST(ScalarAccessors, WriteStoresAndMarksEveryFieldOfTheFamily) {
  LogCapture capture;
  for (const char* name : TypeParam::kFields) {
    const FieldDef& field = fieldOf(this->message_, name);
    EXPECT_EQ(TypeParam::get(this->message_, field.getIndex(), this->tag_, 0), 0) << name;
    EXPECT_FALSE(hasBit(this->message_, name)) << name;
    TypeParam::set(this->message_, field.getMemNum(), field.getIndex(), TypeParam::kSample, this->tag_, 0);
    EXPECT_EQ(slotOf(this->message_, name), TypeParam::slot(TypeParam::kSample)) << name;
    EXPECT_TRUE(hasBit(this->message_, name)) << name;
    EXPECT_EQ(TypeParam::get(this->message_, field.getIndex(), this->tag_, 0), TypeParam::kSample) << name;
  }
  EXPECT_TRUE(capture.empty());
}

TYPED_TEST(ScalarAccessors, ForeignTagFindsTheFieldByItsHash) {
  OpenMessage drifted = newMessage("Drift_Reversed");
  LogCapture capture;
  for (const char* name : TypeParam::kFields) {
    const FieldDef& field = fieldOf(this->message_, name);
    TypeParam::set(drifted, field.getMemNum(), field.getIndex(), TypeParam::kSample, this->tag_,
                   field.getFieldHashId());
    EXPECT_EQ(slotOf(drifted, name), TypeParam::slot(TypeParam::kSample)) << name;
    EXPECT_TRUE(hasBit(drifted, name)) << name;
    EXPECT_EQ(TypeParam::get(drifted, field.getIndex(), this->tag_, field.getFieldHashId()),
              TypeParam::kSample)
        << name;
  }
  EXPECT_TRUE(capture.empty());
}

TYPED_TEST(ScalarAccessors, UnknownHashIsLoggedAndChangesNothing) {
  const std::string text = noSuchField(this->message_, kUnknownHash, kForeignTag);
  this->expectWriteRefused(this->message_, this->field().getMemNum(), this->field().getIndex(), kForeignTag,
                           kUnknownHash, text);
  this->expectReadRefused(this->message_, this->field().getIndex(), kForeignTag, kUnknownHash, text);
  EXPECT_EQ(slotOf(this->message_, TypeParam::kFields[0]), 0);
  EXPECT_FALSE(hasBit(this->message_, TypeParam::kFields[0]));
}

TYPED_TEST(ScalarAccessors, MemNumOutsideTheClassIsRefused) {
  for (const int memNum : {-1, this->message_.getNumberOfFields(), 32767}) {
    this->expectWriteRefused(this->message_, static_cast<short>(memNum), this->field().getIndex(), this->tag_,
                             0, invalidMember(this->message_, memNum));
    this->expectWriteRefused(this->message_, static_cast<short>(memNum), this->field().getIndex(),
                             kForeignTag, this->field().getFieldHashId(),
                             invalidMember(this->message_, memNum));
  }
}

TYPED_TEST(ScalarAccessors, IndexOutsideTheSlotsIsRefused) {
  const short slots = XNMessageBase::GetClassDef(&this->message_)->getNumberOfElements();
  for (const short index : {short{-1}, slots, short{32767}}) {
    this->expectWriteRefused(this->message_, this->field().getMemNum(), index, this->tag_, 0,
                             invalidMember(this->message_, this->field().getMemNum()));
    this->expectReadRefused(this->message_, index, this->tag_, 0, invalidIndex(this->message_, index));
    // Reads look at the index before they look at the tag.
    this->expectReadRefused(this->message_, index, kForeignTag, this->field().getFieldHashId(),
                            invalidIndex(this->message_, index));
  }
}

TYPED_TEST(ScalarAccessors, FieldOfAnotherStorageIsRefused) {
  const FieldDef& other = fieldOf(this->message_, TypeParam::kOther);
  this->expectWriteRefused(this->message_, other.getMemNum(), other.getIndex(), this->tag_, 7,
                           noSuchField(this->message_, 7, this->tag_));
  EXPECT_EQ(slotOf(this->message_, TypeParam::kOther), 0);

  OpenMessage retyped = newMessage("Drift_Retyped");
  const std::string text = noSuchField(retyped, this->field().getFieldHashId(), this->tag_);
  this->expectWriteRefused(retyped, this->field().getMemNum(), this->field().getIndex(), this->tag_,
                           this->field().getFieldHashId(), text);
  this->expectReadRefused(retyped, this->field().getIndex(), this->tag_, this->field().getFieldHashId(),
                          text);
}

TYPED_TEST(ScalarAccessors, MessageWithoutAClassIsRefused) {
  OpenMessage none;
  LogCapture capture;
  TypeParam::set(none, 0, 0, TypeParam::kSample, 0, 0);
  EXPECT_EQ(TypeParam::get(none, 0, 0, 0), 0);
  EXPECT_TRUE(capture.has(this->name("set"), 0, invalidMember(none, 0)));
  EXPECT_TRUE(capture.has(this->name("get"), 0, invalidIndex(none, 0)));
}

TEST(Int64Accessor, OwnTagChangesTheSlotAndTurnsIsSetTrue) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "intField");
  EXPECT_FALSE(message.isSet(field.getMemNum(), message.getTagID(), 0));
  message.setint64(field.getMemNum(), field.getIndex(), 5, message.getTagID(), 0);
  EXPECT_EQ(message.getint64(field.getIndex(), message.getTagID(), 0), 5);
  EXPECT_TRUE(message.isSet(field.getMemNum(), message.getTagID(), 0));
}

TEST(Int64Accessor, ForeignTagWithAnothersHashChangesThatField) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& given = fieldOf(message, "intField");
  const FieldDef& meant = fieldOf(message, "uintField");
  message.setint64(given.getMemNum(), given.getIndex(), 5, kForeignTag, meant.getFieldHashId());
  EXPECT_EQ(slotOf(message, "uintField"), 5);
  EXPECT_TRUE(hasBit(message, "uintField"));
  EXPECT_EQ(slotOf(message, "intField"), 0);
  EXPECT_FALSE(hasBit(message, "intField"));
}

TEST(Int64Accessor, ForeignTagWithHashZeroHitsTheFirstFieldWithoutAHash) {
  OpenMessage message = newMessage("Demo_Hashless");
  LogCapture capture;
  message.setint64(0, 0, 5, kForeignTag, 0);
  EXPECT_EQ(slotOf(message, "hiddenNumber"), 5);
  EXPECT_TRUE(hasBit(message, "hiddenNumber"));
  EXPECT_FALSE(hasBit(message, "first"));
  EXPECT_TRUE(capture.empty());
}

TEST(Int64Accessor, FastPathReachesAFieldWithoutAHash) {
  OpenMessage message = newMessage("Demo_Hashless");
  const FieldDef& field = fieldOf(message, "hiddenNumber");
  message.setint64(field.getMemNum(), field.getIndex(), 7, message.getTagID(), 0);
  EXPECT_EQ(message.getint64(field.getIndex(), message.getTagID(), 0), 7);
  EXPECT_TRUE(hasBit(message, "hiddenNumber"));
}

TEST(Int64Accessor, OwnTagTakesSlotAndBitAsTheyAreGiven) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& marked = fieldOf(message, "intField");
  const FieldDef& stored = fieldOf(message, "uintField");
  LogCapture capture;
  message.setint64(marked.getMemNum(), stored.getIndex(), 5, message.getTagID(), 0);
  EXPECT_EQ(slotOf(message, "uintField"), 5);
  EXPECT_EQ(slotOf(message, "intField"), 0);
  EXPECT_TRUE(hasBit(message, "intField"));
  EXPECT_FALSE(hasBit(message, "uintField"));
  message.getint64ByRef(marked.getMemNum(), stored.getIndex(), message.getTagID(), 0) = 6;
  EXPECT_EQ(slotOf(message, "uintField"), 6);
  EXPECT_TRUE(capture.empty());
}

TEST(Int64ByRefAccessor, MarksAndGivesTheSlot) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "longlongField");
  message.getint64ByRef(field.getMemNum(), field.getIndex(), message.getTagID(), 0) = 77;
  EXPECT_EQ(slotOf(message, "longlongField"), 77);
  EXPECT_TRUE(hasBit(message, "longlongField"));
}

TEST(Int64ByRefAccessor, ForeignTagFindsTheFieldByItsHash) {
  OpenMessage drifted = newMessage("Drift_Reversed");
  const FieldDef& field = fieldOf(classNamed("Demo_EveryType").record(), "longlongField");
  drifted.getint64ByRef(field.getMemNum(), field.getIndex(), kForeignTag, field.getFieldHashId()) = 77;
  EXPECT_EQ(slotOf(drifted, "longlongField"), 77);
  EXPECT_TRUE(hasBit(drifted, "longlongField"));
}

TEST(Int64ByRefAccessor, FailureGivesACellThatIsZeroAgainNextTime) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "intField");
  LogCapture capture;
  std::int64_t& cell = message.getint64ByRef(field.getMemNum(), field.getIndex(), kForeignTag, kUnknownHash);
  EXPECT_EQ(cell, 0);
  cell = 99;
  EXPECT_EQ(message.getint64ByRef(-1, field.getIndex(), message.getTagID(), 0), 0);
  EXPECT_EQ(slotOf(message, "intField"), 0);
  EXPECT_FALSE(hasBit(message, "intField"));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XNMessageBase::getint64ByRef", 0,
                                       noSuchField(message, kUnknownHash, kForeignTag)},
                          CapturedLine{"XNMessageBase::getint64ByRef", 0, invalidMember(message, -1)}));
}

TEST(Int64ByRefAccessor, FallbacksOfTwoThreadsAreTwo) {
  OpenMessage message = newMessage("Demo_EveryType");
  LogCapture capture;
  std::int64_t* here = &message.getint64ByRef(0, 0, kForeignTag, kUnknownHash);
  std::int64_t* there = nullptr;
  std::thread([&] { there = &message.getint64ByRef(0, 0, kForeignTag, kUnknownHash); }).join();
  EXPECT_NE(here, there);
}

TEST(FloatAccessor, WriteClearsTheSlotsUpperHalf) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "floatField");
  MessageAccess::slot(message, field) = -1;
  message.setfloat(field.getMemNum(), field.getIndex(), 1.5f, message.getTagID(), 0);
  EXPECT_EQ(slotOf(message, "floatField"), bitsOf(1.5f));
}

TEST(FloatAccessor, ReadTakesOnlyTheLowFourBytes) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "floatField");
  MessageAccess::slot(message, field) = bitsOf(1.5f) | (std::int64_t{0x7fffffff} << 32);
  EXPECT_EQ(message.getfloat(field.getIndex(), message.getTagID(), 0), 1.5f);
}

}  // namespace
}  // namespace zqxml

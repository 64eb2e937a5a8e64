// The accessors of texts: strings in place, bstring and pstring behind an owning slot, and the deprecated
// cdata.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/message/accessor_texts.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>

namespace zqxml {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t kForeignTag = 0xc8abcdef;
constexpr std::uint32_t kUnknownHash = 0x123456;

/// What a test tells an accessor.
struct Address {
  short memNum;
  short index;
  std::uint32_t tag;
  std::uint32_t hash;
};
Address addressOf(const FieldDef& field, std::uint32_t tag, std::uint32_t hash = 0) {
  return {field.getMemNum(), field.getIndex(), tag, hash};
}

// A family: its text, its accessors' names, a field, the members, and the text of a member whatever its form.
struct StringFamily {
  using Text = std::string;
  static constexpr const char *kField = "stringField", *kOther = "wstringField", *kName = "string";
  static Text sample() { return "a text longer than a string holds inside"; }
  static Text get(OpenMessage& m, Address a) { return m.getstring(a.memNum, a.index, a.tag, a.hash); }
  static Text getConst(const OpenMessage& m, Address a) {
    return m.getstring_const(a.memNum, a.index, a.tag, a.hash);
  }
  static Text& byRef(OpenMessage& m, Address a) { return m.getstringByRef(a.memNum, a.index, a.tag, a.hash); }
  static void set(OpenMessage& m, Address a, const Text& value) {
    m.setstring(a.memNum, a.index, value, a.tag, a.hash);
  }
  static Text orEmpty(const Text& text) { return text; }
};
struct WstringFamily {
  using Text = std::u16string;
  static constexpr const char *kField = "wstringField", *kOther = "stringField", *kName = "wstring";
  static Text sample() { return u"gr\u00fc\u00df dich, \U0001f600 und noch mehr"; }
  static Text get(OpenMessage& m, Address a) { return m.getwstring(a.memNum, a.index, a.tag, a.hash); }
  static Text getConst(const OpenMessage& m, Address a) {
    return m.getwstring_const(a.memNum, a.index, a.tag, a.hash);
  }
  static Text& byRef(OpenMessage& m, Address a) {
    return m.getwstringByRef(a.memNum, a.index, a.tag, a.hash);
  }
  static void set(OpenMessage& m, Address a, const Text& value) {
    m.setwstring(a.memNum, a.index, value, a.tag, a.hash);
  }
  static Text orEmpty(const Text& text) { return text; }
};
struct BstringFamily {
  using Text = bstring;
  static constexpr const char *kField = "bstringField", *kOther = "pstringField", *kName = "bstringobject";
  static Text sample() { return std::string("a\0b", 3); }
  static Text* get(OpenMessage& m, Address a) { return m.getbstringobject(a.memNum, a.index, a.tag, a.hash); }
  static const Text* getConst(const OpenMessage& m, Address a) {
    return m.getbstringobject_const(a.memNum, a.index, a.tag, a.hash);
  }
  static Text& byRef(OpenMessage& m, Address a) {
    return m.getbstringobjectByRef(a.memNum, a.index, a.tag, a.hash);
  }
  static void set(OpenMessage& m, Address a, const Text& value) {
    m.setbstringobject(a.memNum, a.index, value, a.tag, a.hash);
  }
  static Text orEmpty(const Text* text) { return text == nullptr ? Text() : *text; }
};
struct PstringFamily {
  using Text = pstring;
  static constexpr const char *kField = "pstringField", *kOther = "bstringField", *kName = "pstringobject";
  static Text sample() { return {"stored form", 5}; }
  static Text* get(OpenMessage& m, Address a) { return m.getpstringobject(a.memNum, a.index, a.tag, a.hash); }
  static const Text* getConst(const OpenMessage& m, Address a) {
    return m.getpstringobject_const(a.memNum, a.index, a.tag, a.hash);
  }
  static Text& byRef(OpenMessage& m, Address a) {
    return m.getpstringobjectByRef(a.memNum, a.index, a.tag, a.hash);
  }
  static void set(OpenMessage& m, Address a, const Text& value) {
    m.setpstringobject(a.memNum, a.index, value, value.getEncryptionType(), a.tag, a.hash);
  }
  static Text orEmpty(const Text* text) { return text == nullptr ? Text() : *text; }
};

struct TextNames {
  template <class Family>
  static std::string GetName(int) {
    return Family::kName;
  }
};

template <class Family>
class TextAccessors : public ::testing::Test {
 protected:
  using Text = typename Family::Text;
  const FieldDef& field() const { return fieldOf(message_, Family::kField); }
  Address own() const { return addressOf(field(), message_.getTagID()); }
  Address foreign() const { return addressOf(field(), message_.getTagID(), field().getFieldHashId()); }
  Text stored(const OpenMessage& message) const {
    return Family::orEmpty(
        Family::getConst(message, addressOf(fieldOf(message, Family::kField), message.getTagID())));
  }
  void expectAllRefused(OpenMessage& message, Address address, const std::string& text) {
    const std::string name = Family::kName;
    LogCapture capture;
    EXPECT_EQ(Family::orEmpty(Family::get(message, address)), Text());
    EXPECT_EQ(Family::orEmpty(Family::getConst(message, address)), Text());
    EXPECT_EQ(Family::byRef(message, address), Text());
    Family::set(message, address, Family::sample());
    EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XNMessageBase::get" + name, 0, text},
                                             CapturedLine{"XNMessageBase::get" + name + "_const", 0, text},
                                             CapturedLine{"XNMessageBase::get" + name + "ByRef", 0, text},
                                             CapturedLine{"XNMessageBase::set" + name, 0, text}));
  }

  OpenMessage message_ = newMessage("Demo_EveryType");
};

using TextFamilies = ::testing::Types<StringFamily, WstringFamily, BstringFamily, PstringFamily>;
TYPED_TEST_SUITE(TextAccessors, TextFamilies, TextNames);

TYPED_TEST(TextAccessors, ReadsGiveAnEmptyTextAndMarkNothing) {
  LogCapture capture;
  EXPECT_EQ(TypeParam::orEmpty(TypeParam::get(this->message_, this->own())), typename TestFixture::Text());
  EXPECT_EQ(TypeParam::orEmpty(TypeParam::getConst(this->message_, this->own())),
            typename TestFixture::Text());
  EXPECT_FALSE(hasBit(this->message_, TypeParam::kField));
  EXPECT_TRUE(capture.empty());
}

TYPED_TEST(TextAccessors, WriteStoresAndMarks) {
  TypeParam::set(this->message_, this->own(), TypeParam::sample());
  EXPECT_EQ(TypeParam::orEmpty(TypeParam::get(this->message_, this->own())), TypeParam::sample());
  EXPECT_EQ(TypeParam::orEmpty(TypeParam::getConst(this->message_, this->own())), TypeParam::sample());
  EXPECT_TRUE(hasBit(this->message_, TypeParam::kField));
}

TYPED_TEST(TextAccessors, ByRefMarksAndGivesTheTextItself) {
  TypeParam::byRef(this->message_, this->own()) = TypeParam::sample();
  EXPECT_EQ(this->stored(this->message_), TypeParam::sample());
  EXPECT_TRUE(hasBit(this->message_, TypeParam::kField));
}

TYPED_TEST(TextAccessors, WriteOfItsOwnTextKeepsIt) {
  TypeParam::set(this->message_, this->own(), TypeParam::sample());
  TypeParam::set(this->message_, this->own(), TypeParam::byRef(this->message_, this->own()));
  EXPECT_EQ(this->stored(this->message_), TypeParam::sample());
}

TYPED_TEST(TextAccessors, ForeignTagFindsTheFieldByItsHash) {
  OpenMessage drifted = newMessage("Drift_Reversed");
  LogCapture capture;
  EXPECT_EQ(TypeParam::orEmpty(TypeParam::get(drifted, this->foreign())), typename TestFixture::Text());
  EXPECT_FALSE(hasBit(drifted, TypeParam::kField));
  TypeParam::set(drifted, this->foreign(), TypeParam::sample());
  EXPECT_TRUE(hasBit(drifted, TypeParam::kField));
  EXPECT_EQ(this->stored(drifted), TypeParam::sample());
  EXPECT_EQ(TypeParam::orEmpty(TypeParam::getConst(drifted, this->foreign())), TypeParam::sample());
  setBit(drifted, TypeParam::kField, false);
  EXPECT_EQ(&TypeParam::byRef(drifted, this->foreign()),
            &TypeParam::byRef(drifted, addressOf(fieldOf(drifted, TypeParam::kField), drifted.getTagID())));
  EXPECT_TRUE(hasBit(drifted, TypeParam::kField));
  EXPECT_TRUE(capture.empty());
}

TYPED_TEST(TextAccessors, UnknownHashIsLoggedAndChangesNothing) {
  TypeParam::set(this->message_, this->own(), TypeParam::sample());
  setBit(this->message_, TypeParam::kField, false);
  this->expectAllRefused(this->message_, addressOf(this->field(), kForeignTag, kUnknownHash),
                         noSuchField(this->message_, kUnknownHash, kForeignTag));
  EXPECT_EQ(this->stored(this->message_), TypeParam::sample());
  EXPECT_FALSE(hasBit(this->message_, TypeParam::kField));
}

TYPED_TEST(TextAccessors, MemNumOutsideTheClassIsRefused) {
  for (const int memNum : {-1, this->message_.getNumberOfFields()}) {
    Address address = this->own();
    address.memNum = static_cast<short>(memNum);
    this->expectAllRefused(this->message_, address, invalidMember(this->message_, memNum));
    address.tag = kForeignTag;
    address.hash = this->field().getFieldHashId();
    this->expectAllRefused(this->message_, address, invalidMember(this->message_, memNum));
  }
}

TYPED_TEST(TextAccessors, IndexOutsideTheSlotsIsRefused) {
  for (const short index : {short{-1}, XNMessageBase::GetClassDef(&this->message_)->getNumberOfElements()}) {
    Address address = this->own();
    address.index = index;
    this->expectAllRefused(this->message_, address, invalidMember(this->message_, address.memNum));
  }
}

TYPED_TEST(TextAccessors, FieldOfAnotherStorageIsRefused) {
  const std::uint32_t tag = this->message_.getTagID();
  this->expectAllRefused(this->message_, addressOf(fieldOf(this->message_, TypeParam::kOther), tag, 7),
                         noSuchField(this->message_, 7, tag));
  this->expectAllRefused(this->message_, addressOf(fieldOf(this->message_, "intField"), tag, 7),
                         noSuchField(this->message_, 7, tag));
  OpenMessage retyped = newMessage("Drift_Retyped");
  this->expectAllRefused(retyped, this->foreign(), noSuchField(retyped, this->field().getFieldHashId(), tag));
}

TYPED_TEST(TextAccessors, MessageWithoutAClassIsRefused) {
  OpenMessage none;
  LogCapture capture;
  EXPECT_EQ(TypeParam::orEmpty(TypeParam::get(none, {0, 0, 0, 0})), typename TestFixture::Text());
  EXPECT_TRUE(capture.has(std::string("XNMessageBase::get") + TypeParam::kName, 0, invalidMember(none, 0)));
}

TYPED_TEST(TextAccessors, WhatIsWrittenToTheFallbackIsForgotten) {
  LogCapture capture;
  const Address unknown = addressOf(this->field(), kForeignTag, kUnknownHash);
  TypeParam::byRef(this->message_, unknown) = TypeParam::sample();
  EXPECT_EQ(TypeParam::byRef(this->message_, unknown), typename TestFixture::Text());
  EXPECT_EQ(this->stored(this->message_), typename TestFixture::Text());
}

TEST(StringAccessor, OwnTagTakesSlotAndBitAsTheyAreGiven) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& text = fieldOf(message, "stringField");
  LogCapture capture;
  message.setstring(0, text.getIndex(), "text", message.getTagID(), 0);
  EXPECT_EQ(message.getstring(1, text.getIndex(), message.getTagID(), 0), "text");
  EXPECT_TRUE(hasBit(message, "processinginstructioninfo"));
  EXPECT_FALSE(hasBit(message, "stringField"));
  EXPECT_TRUE(capture.empty());
  // Slots inside a text are none of any field.
  message.setint64(1, static_cast<short>(text.getIndex() + 1), -1, message.getTagID(), 0);
  EXPECT_EQ(textOf(message, "stringField"), "text");
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XNMessageBase::setint64", 0,
                                                        noSuchField(message, 0, message.getTagID())}));
}

TEST(BstringAccessor, SetterCopiesIntoTheExistingObject) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "bstringField");
  const Address own = addressOf(field, message.getTagID());
  const bstring* before = BstringFamily::get(message, own);
  BstringFamily::set(message, own, std::string("bytes"));
  EXPECT_EQ(BstringFamily::get(message, own), before);
}

TEST(BstringAccessor, ByRefOfAMissingObjectGivesTheFallbackAndMarksNothing) {
  OpenMessage message = newMessage("Demo_EveryType");
  const FieldDef& field = fieldOf(message, "bstringField");
  const Address own = addressOf(field, message.getTagID());
  message.deleteMember(own.memNum, own.tag, 0, true);
  EXPECT_EQ(BstringFamily::get(message, own), nullptr);
  EXPECT_EQ(BstringFamily::byRef(message, own), bstring());
  EXPECT_FALSE(hasBit(message, "bstringField"));
}

TEST(PstringAccessor, SetterTakesTextAndTypeApart) {
  OpenMessage message = newMessage("Demo_EveryType");
  const Address own = addressOf(fieldOf(message, "pstringField"), message.getTagID());
  const pstring* before = PstringFamily::get(message, own);
  message.setpstringobject(own.memNum, own.index, bstring("text"), 12, own.tag, 0);
  EXPECT_EQ(PstringFamily::get(message, own), before);
  EXPECT_EQ(before->str(), "text");
  EXPECT_EQ(before->getEncryptionType(), 12);
}

TEST(DeprecatedCdataAccessors, OnlyLog) {
  OpenMessage message = newMessage("Demo_EveryType");
  const OpenMessage& constant = message;
  const Address own = addressOf(fieldOf(message, "bstringField"), message.getTagID());
  LogCapture capture;
  EXPECT_EQ(message.getcdataobject(own.memNum, own.index, own.tag, 0), nullptr);
  EXPECT_EQ(constant.getcdataobject_const(own.memNum, own.index, own.tag, 0), nullptr);
  message.setcdataobject(own.memNum, own.index, cdata(std::string("text")), own.tag, 0);
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(CapturedLine{"XNMessageBase::getcdataobject", 0, "[This is a deprecated function]"},
                  CapturedLine{"XNMessageBase::getcdataobject_const", 0, "[This is a deprecated function]"},
                  CapturedLine{"XNMessageBase::setcdataobject", 0, "[This function is deprecated]"}));
  EXPECT_FALSE(hasBit(message, "bstringField"));
  EXPECT_THAT(BstringFamily::get(message, own)->str(), IsEmpty());
}

}  // namespace
}  // namespace zqxml

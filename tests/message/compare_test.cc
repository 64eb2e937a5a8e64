// Equality, type by type, and order.
#include <gtest/gtest.h>
#include <tests/message/collection_families.h>
#include <tests/support/every_type.h>
#include <tests/support/open_message.h>

#include <limits>

namespace zqxml {
namespace {

class MessageEquality : public ::testing::Test {
 protected:
  MessageEquality() {
    fillEveryType(a_);
    fillEveryType(b_);
  }
  void expectEqual(bool equal) const {
    EXPECT_EQ(a_ == b_, equal);
    EXPECT_EQ(b_ == a_, equal);
    EXPECT_EQ(a_ != b_, !equal);
  }
  template <class T>
  T& inPlace(const char* name) {
    return MessageAccess::inPlace<T>(b_, fieldOf(b_, name));
  }
  template <class T>
  T& owned(const char* name) {
    return *MessageAccess::owned<T>(b_, fieldOf(b_, name));
  }

  OpenMessage a_ = newMessage("Demo_EveryType");
  OpenMessage b_ = newMessage("Demo_EveryType");
};

TEST_F(MessageEquality, OfTheSameContentHolds) {
  expectEqual(true);
}

TEST_F(MessageEquality, LooksAtTheWholeSlotOfEveryScalar) {
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&b_)) {
    const bool scalar = visitStorage(
        field.getType(), Overloaded{[]<class E>(Scalar<E>) { return true; }, [](auto) { return false; }});
    if (!scalar) continue;
    MessageAccess::slot(b_, field) ^= std::int64_t{1} << 63;
    expectEqual(false);
    MessageAccess::slot(b_, field) ^= std::int64_t{1} << 63;
  }
  expectEqual(true);
}

TEST_F(MessageEquality, ComparesFloatsByTheirBits) {
  const FieldDef& field = fieldOf(a_, "doubleField");
  MessageAccess::setDouble(a_, field, 0.0);
  MessageAccess::setDouble(b_, field, -0.0);
  expectEqual(false);
  MessageAccess::setDouble(a_, field, std::numeric_limits<double>::quiet_NaN());
  MessageAccess::setDouble(b_, field, std::numeric_limits<double>::quiet_NaN());
  expectEqual(true);
}

TEST_F(MessageEquality, LooksAtTheBitOfEveryField) {
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&b_)) {
    if (!hasBit(b_, field.getName())) continue;
    setBit(b_, field.getName(), false);
    expectEqual(false);
    setBit(b_, field.getName());
  }
}

TEST_F(MessageEquality, LooksAtTexts) {
  inPlace<std::string>("stringField") += "x";
  expectEqual(false);
  inPlace<std::string>("stringField").pop_back();
  inPlace<std::u16string>("wstringField") += u"x";
  expectEqual(false);
  inPlace<std::u16string>("wstringField").pop_back();
  owned<bstring>("bstringField").append("\0", 1);
  expectEqual(false);
}

TEST_F(MessageEquality, LooksAtThePasswordsTextAndNotAtItsType) {
  owned<pstring>("pstringField").setEncryptionType(9);
  expectEqual(true);
  owned<pstring>("pstringField") += 'x';
  expectEqual(false);
}

TEST_F(MessageEquality, LooksIntoObjects) {
  setInteger(owned<XNMessageBase>("objectField"), "number", 77777);
  expectEqual(false);
}

TEST_F(MessageEquality, LooksIntoListsOfObjects) {
  setInteger(owned<std::vector<XNMessageBase>>("listObjectField").back(), "number", 77777);
  expectEqual(false);
}

TEST_F(MessageEquality, OfNullAndNullHolds) {
  for (const char* name : {"listIntField", "objectField", "listObjectField"}) {
    for (OpenMessage* message : {&a_, &b_}) {
      message->deleteMember(fieldOf(*message, name).getMemNum(), message->getTagID(), 0, false);
      setBit(*message, name);
    }
  }
  expectEqual(true);
}

TEST_F(MessageEquality, OfNullAndSomethingFails) {
  for (const char* name : {"listIntField", "objectField", "listObjectField"}) {
    OpenMessage other(b_);
    other.deleteMember(fieldOf(other, name).getMemNum(), other.getTagID(), 0, false);
    setBit(other, name);
    EXPECT_FALSE(a_ == other) << name;
    EXPECT_FALSE(other == a_) << name;
  }
}

TEST_F(MessageEquality, LooksAtNoFieldWithoutAHash) {
  OpenMessage a = newMessage("Demo_Hashless");
  const OpenMessage b = newMessage("Demo_Hashless");
  setInteger(a, "hiddenNumber", 5);
  EXPECT_TRUE(a == b);
}

TEST_F(MessageEquality, LooksAtNoSelfRecord) {
  OpenMessage a = newMessage("Demo_SelfPair");
  OpenMessage b = newMessage("Demo_SelfPair");
  EXPECT_TRUE(a == b);
  setInteger(a, "number", 5);
  EXPECT_FALSE(a == b);
  setInteger(b, "number", 5);
  EXPECT_TRUE(a == b);
}

TEST_F(MessageEquality, OfTwoClassesFails) {
  const OpenMessage child = newMessage("Demo_EveryChild");
  const OpenMessage none;
  EXPECT_FALSE(a_ == child);
  EXPECT_FALSE(a_ == none);
  EXPECT_FALSE(none == a_);
}

TEST_F(MessageEquality, OfAListOfNotANumberHoldsForTheSameMessage) {
  collectionOf<std::vector<double>>(a_, "listDoubleField")
      .push_back(std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(a_ == a_);
}

// Element by element, with the same length: every list.
template <class Family>
class ListEquality : public ::testing::Test {};
using ListFamilies =
    ::testing::Types<ListInt, ListUint, ListEnum, ListBool, ListLong, ListUlong, ListLonglong, ListUlonglong,
                     ListFloat, ListDouble, ListString, ListWstring, ListBstring, ListObject>;
TYPED_TEST_SUITE(ListEquality, ListFamilies, FamilyNames);

TYPED_TEST(ListEquality, LooksAtLengthAndElements) {
  OpenMessage a = newMessage("Demo_EveryType");
  OpenMessage b = newMessage("Demo_EveryType");
  auto& listA = collectionOf<typename TypeParam::Value>(a, TypeParam::kField);
  auto& listB = collectionOf<typename TypeParam::Value>(b, TypeParam::kField);
  listA = TypeParam::sample();
  listB = TypeParam::sample();
  EXPECT_TRUE(a == b);
  listB.pop_back();
  EXPECT_FALSE(a == b);
  EXPECT_FALSE(b == a);
  listB.push_back(listB.front());
  EXPECT_FALSE(a == b);
}

TEST(MessageOrder, KeepsNoMessageBelowAnother) {
  const OpenMessage a = leaf(1, "one");
  const OpenMessage b = leaf(2, "two");
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_FALSE(a < a);
}

}  // namespace
}  // namespace zqxml

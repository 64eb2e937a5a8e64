// What compiles with the typed message classes, and what must not: literals, null pointers and zeros find the
// right setter or none.
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <concepts>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

using Demo::EveryChild;
using Demo::EveryType;

/// Whether `call` compiles for an object of the type; a lambda, so that `0` and literals are what they are.
#define COMPILES(Type, ...)  \
  ([]<class M>(M*) {         \
    return requires(M & m) { \
      m.__VA_ARGS__;         \
    };                       \
  }(static_cast<Type*>(nullptr)))

static_assert(COMPILES(EveryType, setStringField("literal")));
static_assert(COMPILES(EveryType, setStringField(std::string("rvalue"))));
static_assert(COMPILES(EveryType, setStringField(std::string_view("view"))));
static_assert(COMPILES(EveryType, setStringField(static_cast<char*>(nullptr))));
static_assert(!COMPILES(EveryType, setStringField(nullptr)));
static_assert(!COMPILES(EveryType, setStringField(0)));
static_assert(!COMPILES(EveryType, setStringField(5)));
static_assert(!COMPILES(EveryType, setStringField('c')));
static_assert(!COMPILES(EveryType, setStringField(true)));
static_assert(!COMPILES(EveryType, setStringField(u"wide")));
static_assert(!COMPILES(EveryType, setStringField(L"wide")));
static_assert(!COMPILES(EveryType, setStringField(bstring())));

static_assert(COMPILES(EveryType, setWstringField(u"literal")));
static_assert(COMPILES(EveryType, setWstringField(std::u16string(u"rvalue"))));
static_assert(COMPILES(EveryType, setWstringField(std::u16string_view(u"view"))));
static_assert(!COMPILES(EveryType, setWstringField("narrow")));
static_assert(!COMPILES(EveryType, setWstringField(L"another width")));
static_assert(!COMPILES(EveryType, setWstringField(nullptr)));

static_assert(COMPILES(EveryType, setBstringField("literal")));
static_assert(COMPILES(EveryType, setBstringField(bstring("bytes"))));
static_assert(!COMPILES(EveryType, setBstringField(pstring("secret"))));  // it would be plain for all to see
static_assert(!COMPILES(EveryType, setBstringField(0)));
static_assert(!COMPILES(EveryType, setBstringField(nullptr)));

static_assert(COMPILES(EveryType, setPstringField("literal")));
static_assert(COMPILES(EveryType, setPstringField(std::string("rvalue"))));
static_assert(COMPILES(EveryType, setPstringField(pstring("stored", 5))));
static_assert(COMPILES(EveryType, setPstringField("stored", Annotation::PasswordEncryptType::BASE64)));
static_assert(!COMPILES(EveryType,
                        setPstringField(pstring("a", 5), Annotation::PasswordEncryptType::BASE64)));
static_assert(!COMPILES(EveryType, setPstringField("stored", 9)));
static_assert(!COMPILES(EveryType, setPstringField(nullptr)));
static_assert(!COMPILES(EveryType, setPstringField(0)));

static_assert(COMPILES(EveryType, setBoolField(true)));
static_assert(COMPILES(EveryType, setBoolField(0)));
static_assert(COMPILES(EveryType, setBoolField(1)));
static_assert(!COMPILES(EveryType, setBoolField("true")));  // any pointer would be true
static_assert(!COMPILES(EveryType, setBoolField(nullptr)));
static_assert(!COMPILES(EveryType, setIntField("5")));
static_assert(!COMPILES(EveryType, setIntField(nullptr)));
static_assert(!COMPILES(EveryType, setEnumField(1)));
static_assert(COMPILES(EveryType, setEnumField(Demo::EveryMode::AUTO)));

static_assert(COMPILES(EveryType, setListIntField({1, 2})));
static_assert(COMPILES(EveryType, setListIntField({})));
static_assert(COMPILES(EveryType, setListStringField({"a", "b", "c"})));
static_assert(!COMPILES(EveryType, setListIntField(nullptr)));
static_assert(!COMPILES(EveryType, setListIntField(3)));  // no list of three zeros
static_assert(!COMPILES(EveryType, setListIntField({"a"})));
static_assert(COMPILES(EveryType, setMapStringInt64Field({{"a", 1}, {"b", 2}})));
static_assert(COMPILES(EveryType, setObjectField(EveryChild())));
static_assert(COMPILES(EveryType, setObjectField({})));
static_assert(!COMPILES(EveryType, setObjectField(nullptr)));
static_assert(!COMPILES(EveryType, setObjectField(EveryType())));
static_assert(COMPILES(EveryType, setListObjectField({})));
static_assert(COMPILES(EveryType, setListObjectField({EveryChild(), EveryChild()})));
static_assert(!COMPILES(EveryType, setListObjectField(std::vector<EveryType>())));
static_assert(COMPILES(EveryType, setMapStringObjectField({{"a", EveryChild()}})));

// A message that is only read.
static_assert(COMPILES(const EveryType, getStringField()));
static_assert(COMPILES(const EveryType, isStringFieldSet()));
static_assert(COMPILES(const EveryType, getListObjectField()[0].getNumber()));
static_assert(COMPILES(const EveryType, findInMapStringObjectField("a")));
static_assert(!COMPILES(const EveryType, setStringField("a")));
static_assert(!COMPILES(const EveryType, mutableStringField()));
static_assert(!COMPILES(const EveryType, unsetStringField()));
static_assert(!COMPILES(const EveryType, addToListObjectField()));
static_assert(!COMPILES(EveryType, getListObjectField().add()));
static_assert(!COMPILES(EveryType, getListObjectField()[0].setNumber(1)));
static_assert(!COMPILES(EveryType, getMapStringObjectField().erase("a")));

template <class Expected, class Actual>
constexpr bool kSame = std::is_same_v<Expected, Actual>;
#define TYPE_OF(call) decltype(std::declval<const EveryType&>().call)
static_assert(kSame<TYPE_OF(getStringField()), const std::string&>);
static_assert(kSame<TYPE_OF(getWstringField()), const std::u16string&>);
static_assert(kSame<TYPE_OF(getBstringField()), const bstring&>);
static_assert(kSame<TYPE_OF(getPstringField()), const pstring&>);
static_assert(kSame<TYPE_OF(getListStringField()), const std::vector<std::string>&>);
static_assert(kSame<TYPE_OF(getMapInt64StringField()), const std::map<std::int64_t, std::string>&>);
static_assert(kSame<TYPE_OF(getListObjectField()[0]), const EveryChild&>);
static_assert(std::random_access_iterator<ObjectView<EveryChild>::iterator>);
static_assert(std::input_iterator<ObjectMapView<std::string, EveryChild>::iterator>);
static_assert(std::convertible_to<ObjectView<EveryChild>, ObjectView<const EveryChild>>);
static_assert(!std::convertible_to<ObjectView<const EveryChild>, ObjectView<EveryChild>>);
static_assert(std::is_nothrow_move_constructible_v<EveryType> && std::is_copy_constructible_v<EveryType>);

TEST(TypedOverloadsTest, SettersOfEveryFieldAreFound) {
  EveryType message;
  message.setBoolField(1);
  message.setStringField("literal");
  message.setObjectField({});
  EXPECT_TRUE(message.getBoolField() && message.isObjectFieldSet());
  EXPECT_EQ(message.getStringField(), "literal");
}

}  // namespace
}  // namespace zqxml

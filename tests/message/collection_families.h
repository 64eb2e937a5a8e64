// The families of list and map accessors, one type each for typed tests: their members, a field of EveryType
// that they serve, and a value to store.
#pragma once

#include <gtest/gtest.h>
#include <tests/support/open_message.h>

#include <map>
#include <string>
#include <vector>

namespace zqxml {

inline OpenMessage leaf(std::int64_t number, const std::string& text) {
  OpenMessage message = newMessage("Demo_EveryChild");
  setInteger(message, "number", number);
  setText(message, "text", text);
  return message;
}

// A Family has: Value (the collection), kField, kName (the accessor without get and set), sample() (a value),
// and the members get, getConst and set of the message given to its constructor, each told where the field
// is.
#define ZQXML_FAMILY(family, accessor, field, collection, ...)                                             \
  struct family {                                                                                          \
    using Value = collection;                                                                              \
    static constexpr const char* kField = field;                                                           \
    static constexpr const char* kName = #accessor;                                                        \
    static Value sample() { return Value{__VA_ARGS__}; }                                                   \
    OpenMessage& message;                                                                                  \
    Value*& get(short memNum, short index, std::uint32_t tag, std::uint32_t hash, bool markSet) const {    \
      return message.get##accessor(memNum, index, tag, hash, markSet);                                     \
    }                                                                                                      \
    const Value* getConst(short memNum, short index, std::uint32_t tag, std::uint32_t hash) const {        \
      const OpenMessage& constant = message;                                                               \
      return constant.get##accessor##_const(memNum, index, tag, hash);                                     \
    }                                                                                                      \
    void set(short memNum, short index, const Value* value, std::uint32_t tag, std::uint32_t hash) const { \
      message.set##accessor(memNum, index, value, tag, hash);                                              \
    }                                                                                                      \
  };

using Int64Int64Map = std::map<std::int64_t, std::int64_t>;
using Int64StringMap = std::map<std::int64_t, std::string>;
using Int64ObjectMap = std::map<std::int64_t, XNMessageBase>;
using StringInt64Map = std::map<std::string, std::int64_t>;
using StringStringMap = std::map<std::string, std::string>;
using StringObjectMap = std::map<std::string, XNMessageBase>;
using ObjectObjectMap = std::map<XNMessageBase, XNMessageBase>;

// clang-format off
ZQXML_FAMILY(ListInt, listint, "listIntField", std::vector<std::int32_t>, -1, 0, 2147483647)
ZQXML_FAMILY(ListUint, listuint, "listUintField", std::vector<std::uint32_t>, 1, 4294967295u)
ZQXML_FAMILY(ListEnum, listuint, "listEnumField", std::vector<std::uint32_t>, 1, 4)
ZQXML_FAMILY(ListBool, listuint, "listBoolField", std::vector<std::uint32_t>, 1, 0)
ZQXML_FAMILY(ListLong, listlong, "listLongField", std::vector<std::int32_t>, -2147483647, 5)
ZQXML_FAMILY(ListUlong, listulong, "listUlongField", std::vector<std::uint32_t>, 0, 4000000000u)
ZQXML_FAMILY(ListLonglong, listlonglong, "listLonglongField", std::vector<std::int64_t>, -1, INT64_MAX)
ZQXML_FAMILY(ListUlonglong, listulonglong, "listUlonglongField", std::vector<std::uint64_t>, 1, UINT64_MAX)
ZQXML_FAMILY(ListFloat, listfloat, "listFloatField", std::vector<float>, 0.5f, -2.0f)
ZQXML_FAMILY(ListDouble, listdouble, "listDoubleField", std::vector<double>, 0.5, -1e300)
ZQXML_FAMILY(ListString, liststring, "listStringField", std::vector<std::string>, "", "a text longer than a string holds inside")
ZQXML_FAMILY(ListWstring, listwstring, "listWstringField", std::vector<std::u16string>, u"", u"gr\u00fc\u00df")
ZQXML_FAMILY(ListBstring, listbstring, "listBstringField", std::vector<bstring>, bstring(std::string("a\0b", 3)), bstring())
ZQXML_FAMILY(ListObject, listobject, "listObjectField", std::vector<XNMessageBase>, leaf(1, "one"), leaf(2, "two"))
ZQXML_FAMILY(MapInt64Int64, MapInt64AndInt64, "mapInt64Int64Field", Int64Int64Map, {-1, 2}, {3, INT64_MIN})
ZQXML_FAMILY(MapInt64String, MapInt64AndString, "mapInt64StringField", Int64StringMap, {1, "one"}, {2, ""})
ZQXML_FAMILY(MapInt64Object, MapInt64AndObject, "mapInt64ObjectField", Int64ObjectMap, {1, leaf(1, "one")}, {2, leaf(2, "two")})
ZQXML_FAMILY(MapStringInt64, MapStringAndInt64, "mapStringInt64Field", StringInt64Map, {"", 0}, {"k", -1})
ZQXML_FAMILY(MapStringString, MapStringAndString, "mapStringStringField", StringStringMap, {"k", "v"}, {"l", ""})
ZQXML_FAMILY(MapStringObject, MapStringAndObject, "mapStringObjectField", StringObjectMap, {"k", leaf(1, "one")})
ZQXML_FAMILY(MapObjectObject, MapObjectAndObject, "mapObjectObjectField", ObjectObjectMap, {leaf(1, "key"), leaf(2, "value")})
// clang-format on
#undef ZQXML_FAMILY

using CollectionFamilies =
    ::testing::Types<ListInt, ListUint, ListEnum, ListBool, ListLong, ListUlong, ListLonglong, ListUlonglong,
                     ListFloat, ListDouble, ListString, ListWstring, ListBstring, ListObject, MapInt64Int64,
                     MapInt64String, MapInt64Object, MapStringInt64, MapStringString, MapStringObject,
                     MapObjectObject>;

struct FamilyNames {
  template <class Family>
  static std::string GetName(int) {
    return Family::kField;
  }
};

}  // namespace zqxml

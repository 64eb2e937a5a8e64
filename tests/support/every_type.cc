#include <gtest/gtest.h>
#include <tests/support/every_type.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>

#include <limits>
#include <string>

namespace zqxml {
namespace {

constexpr const char* kBinaryLosses[] = {"ulonglongField", "listUlonglongField"};

/// Calls an accessor with the numbers of the field of that name.
class Filler {
 public:
  explicit Filler(XNMessageBase& message) : message_(open(message)) {}

  void integer(const char* name, std::int64_t value) const {
    const FieldDef& field = fieldOf(message_, name);
    message_.setint64(field.getMemNum(), field.getIndex(), value, message_.getTagID(), 0);
  }
  /// Calls the setter (a member of OpenMessage) with the field's numbers and the arguments in between.
  template <class Setter, class... Args>
  void set(Setter setter, const char* name, const Args&... args) const {
    const FieldDef& field = fieldOf(message_, name);
    (message_.*setter)(field.getMemNum(), field.getIndex(), args..., message_.getTagID(), 0);
  }
  /// The collection that the getter makes and marks.
  template <class Collection>
  Collection& collection(Collection*& (XNMessageBase::*getter)(short, short, std::uint32_t, std::uint32_t,
                                                               bool),
                         const char* name) const {
    const FieldDef& field = fieldOf(message_, name);
    return *(message_.*getter)(field.getMemNum(), field.getIndex(), message_.getTagID(), 0, true);
  }

 private:
  OpenMessage& message_;
};

OpenMessage child(int number, const std::string& text) {
  OpenMessage message = newMessage("Demo_EveryChild");
  const Filler fill(message);
  fill.integer("number", number);
  fill.set(&OpenMessage::setstring, "text", text);
  fill.collection(&OpenMessage::getlistint, "numbers") = {number, -number};
  return message;
}

void fillScalars(const Filler& fill) {
  fill.integer("intField", -2147483648LL);
  fill.integer("uintField", 4294967295LL);
  fill.integer("longField", -7);
  fill.integer("ulongField", 4000000000LL);
  fill.integer("longlongField", std::numeric_limits<std::int64_t>::min());
  fill.integer("ulonglongField", std::numeric_limits<std::int64_t>::max());
  fill.integer("boolField", 1);
  fill.integer("enumField", 2);
  fill.integer("time32Field", 1700000000);
  fill.integer("time64Field", 4102444800LL);
  fill.set(&OpenMessage::setdouble, "doubleField", -1.5e-300);
  fill.set(&OpenMessage::setfloat, "floatField", 0.15625f);
}

void fillTexts(const Filler& fill) {
  fill.set(&OpenMessage::setstring, "stringField",
           std::string("Grüße & <tags> \"quoted\" 'twice' ]]>\tand\na control \x01, € 😀"));
  fill.set(&OpenMessage::setwstring, "wstringField", std::u16string(u"wide é 中文 😀 & < > \""));
  fill.set(&OpenMessage::setbstringobject, "bstringField", bstring(std::string("bytes \xff\xfe\x01 end")));
  fill.set(&OpenMessage::setpstringobject, "pstringField", bstring(std::string("pa&ss <word>")), 1);
}

void fillLists(const Filler& fill) {
  fill.collection(&OpenMessage::getlistint, "listIntField") = {1, -1, 2147483647};
  fill.collection(&OpenMessage::getlistuint, "listUintField") = {0, 4294967295u};
  fill.collection(&OpenMessage::getlistlong, "listLongField") = {-2147483647, 300};
  fill.collection(&OpenMessage::getlistulong, "listUlongField") = {128, 4000000000u};
  fill.collection(&OpenMessage::getlistlonglong, "listLonglongField") = {-1, 9007199254740993LL};
  fill.collection(&OpenMessage::getlistulonglong, "listUlonglongField") = {1, 18446744073709551615ull};
  fill.collection(&OpenMessage::getlistuint, "listEnumField") = {0, 2, 1};
  fill.collection(&OpenMessage::getlistuint, "listBoolField") = {1, 0, 1};
  fill.collection(&OpenMessage::getlistfloat, "listFloatField") = {0.5f, -2.25f};
  fill.collection(&OpenMessage::getlistdouble, "listDoubleField") = {0.125, -1e100};
  fill.collection(&OpenMessage::getliststring, "listStringField") = {"first", "& second <"};
  fill.collection(&OpenMessage::getlistwstring, "listWstringField") = {u"erste", u"zwölf"};
  fill.collection(&OpenMessage::getlistbstring, "listBstringField") = {bstring(std::string("\x01\x02")),
                                                                       bstring(std::string("bytes"))};
  auto& children = fill.collection(&OpenMessage::getlistobject, "listObjectField");
  children.clear();
  children.push_back(child(1, "one"));
  children.push_back(child(2, "two"));
}

void fillMaps(const Filler& fill) {
  fill.collection(&OpenMessage::getMapInt64AndInt64, "mapInt64Int64Field") = {{-1, 1},
                                                                              {2, -9007199254740993LL}};
  fill.collection(&OpenMessage::getMapInt64AndString, "mapInt64StringField") = {{0, "zero"}, {1, "one & <"}};
  fill.collection(&OpenMessage::getMapInt64AndObject, "mapInt64ObjectField").emplace(5, child(5, "five"));
  fill.collection(&OpenMessage::getMapStringAndInt64, "mapStringInt64Field") = {{"k", 3}, {"ä", -3}};
  fill.collection(&OpenMessage::getMapStringAndString, "mapStringStringField") = {{"key", "value"},
                                                                                  {"l", "m"}};
  auto& byName = fill.collection(&OpenMessage::getMapStringAndObject, "mapStringObjectField");
  byName.emplace("six", child(6, "six"));
  byName.emplace("seven", child(7, "seven"));
  fill.collection(&OpenMessage::getMapObjectAndObject, "mapObjectObjectField")
      .emplace(child(8, "key"), child(9, "value"));
}

constexpr const char* kEveryType = R"(Demo_EveryType {
  intField = -2147483648
  uintField = 4294967295
  longField = -7
  ulongField = 4000000000
  longlongField = -9223372036854775808
  ulonglongField = 9223372036854775807
  boolField = 1
  stringField = "Grüße & <tags> \x22quoted\x22 'twice' ]]>\x09and\x0aa control \x01, € 😀"
  wstringField = u"wide é 中文 😀 & < > \x22"
  enumField = 2
  doubleField = -1.5000000000000001e-300
  floatField = 0.15625
  listIntField = [1, -1, 2147483647]
  listUintField = [0, 4294967295]
  listLongField = [-2147483647, 300]
  listUlongField = [128, 4000000000]
  listLonglongField = [-1, 9007199254740993]
  listUlonglongField = [1, 18446744073709551615]
  listEnumField = [0, 2, 1]
  listStringField = ["first", "& second <"]
  listWstringField = [u"erste", u"zwölf"]
  listObjectField = [Demo_EveryChild {
    number = 1
    text = "one"
    numbers = [1, -1]
  }, Demo_EveryChild {
    number = 2
    text = "two"
    numbers = [2, -2]
  }]
  objectField = Demo_EveryChild {
    number = 3
    text = "three"
    numbers = [3, -3]
  }
  bstringField = b"bytes \xff\xfe\x01 end"
  listBoolField = [1, 0, 1]
  listFloatField = [0.5, -2.25]
  listDoubleField = [0.125, -1e+100]
  listBstringField = [b"\x01\x02", b"bytes"]
  pstringField = p1"pa&ss <word>"
  mapInt64Int64Field = {<-1: 1><2: -9007199254740993>}
  mapInt64StringField = {<0: "zero"><1: "one & <">}
  mapInt64ObjectField = {<5: Demo_EveryChild {
    number = 5
    text = "five"
    numbers = [5, -5]
  }>}
  mapStringInt64Field = {<"k": 3><"ä": -3>}
  mapStringStringField = {<"key": "value"><"l": "m">}
  mapStringObjectField = {<"seven": Demo_EveryChild {
    number = 7
    text = "seven"
    numbers = [7, -7]
  }><"six": Demo_EveryChild {
    number = 6
    text = "six"
    numbers = [6, -6]
  }>}
  mapObjectObjectField = {<Demo_EveryChild {
    number = 8
    text = "key"
    numbers = [8, -8]
  }: Demo_EveryChild {
    number = 9
    text = "value"
    numbers = [9, -9]
  }>}
  time32Field = 1700000000
  time64Field = 4102444800
}
)";

}  // namespace

void fillEveryType(XNMessageBase& message) {
  const Filler fill(message);
  fillScalars(fill);
  fillTexts(fill);
  fillLists(fill);
  fillMaps(fill);
  XNMessageBase& object = *open(message).getObjectAccessor(
      true, true, fieldOf(message, "objectField").getMemNum(), fieldOf(message, "objectField").getIndex(),
      message.getTagID(), 0, classNamed("Demo_EveryChild").subsystem, classNamed("Demo_EveryChild").index);
  object = child(3, "three");
}

void clearBinaryLosses(XNMessageBase& message) {
  for (const char* name : kBinaryLosses)
    open(message).deleteMember(fieldOf(message, name).getMemNum(), message.getTagID(), 0, false);
}

void checkEveryType(const XNMessageBase& message, EveryTypeLosses losses) {
  std::string expected = kEveryType;
  if (losses == EveryTypeLosses::kBinary) {
    for (const char* name : kBinaryLosses) {
      const std::size_t begin = expected.find(std::string("  ") + name + " = ");
      expected.erase(begin, expected.find('\n', begin) + 1 - begin);
    }
  }
  EXPECT_EQ(dump(message), expected);
}

}  // namespace zqxml

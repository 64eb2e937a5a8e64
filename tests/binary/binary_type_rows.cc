#include <tests/binary/binary_forms.h>
#include <tests/binary/binary_type_rows.h>
#include <tests/support/open_message.h>

#include <limits>
#include <map>

namespace zqxml {
namespace {

using Demo::EveryChild;
using Demo::EveryType;

EveryChild child(int number) {
  EveryChild made;
  made.setNumber(number);
  return made;
}

template <class Vector>
std::function<void(EveryType&)> list(const char* field, Vector values) {
  return [=](EveryType& message) { collectionOf<Vector>(message, field) = values; };
}
std::function<void(EveryType&)> integer(const char* field, std::int64_t value) {
  return [=](EveryType& message) { setInteger(message, field, value); };
}

}  // namespace

const std::vector<BinaryTypeRow>& binaryTypeRows() {
  using namespace std;
  static const vector<BinaryTypeRow> kRows = {
      {FDT_INT, "intField", 6, "K 05", integer("intField", -3)},
      {FDT_UINT, "uintField", 0, "K ff ff ff ff 0f", integer("uintField", 0xffffffff)},
      {FDT_LONG, "longField", 6, "K ff ff ff ff 0f", integer("longField", numeric_limits<int32_t>::min())},
      {FDT_ULONG, "ulongField", 0, "K ac 02", integer("ulongField", 300)},
      {FDT_LONGLONG, "longlongField", 1, "K fe ff ff ff ff ff ff ff", integer("longlongField", -2)},
      {FDT_ULONGLONG, "ulonglongField", 1, "M 08 07 06 05 04 03 02 01",
       integer("ulonglongField", 0x0102030405060708)},
      {FDT_BOOL, "boolField", 0, "K 01", integer("boolField", 1)},
      {FDT_STRING, "stringField", 2, "K 02 68 69", [](EveryType& m) { m.setStringField("hi"); }},
      {FDT_WSTRING, "wstringField", 2, "K 03 e2 82 ac", [](EveryType& m) { m.setWstringField(u"€"); }},
      {FDT_ENUM, "enumField", 0, "K 04", integer("enumField", 2)},
      {FDT_DOUBLE, "doubleField", 1, "K 00 00 00 00 00 00 f8 3f",
       [](EveryType& m) { m.setDoubleField(1.5); }},
      {FDT_FLOAT, "floatField", 5, "K 00 00 20 c0", [](EveryType& m) { m.setFloatField(-2.5f); }},
      {FDT_LIST_INT, "listIntField", 2, "M 02 K 02 02 01", list("listIntField", vector<int32_t>{1, -1})},
      {FDT_LIST_UINT, "listUintField", 2, "M 02 K 03 01 ac 02",
       list("listUintField", vector<uint32_t>{1, 300})},
      {FDT_LIST_LONG, "listLongField", 2, "M 02 K 03 03 d8 04",
       list("listLongField", vector<int32_t>{-2, 300})},
      {FDT_LIST_ULONG, "listUlongField", 2, "M 01 K 05 ff ff ff ff 0f",
       list("listUlongField", vector<uint32_t>{0xffffffff})},
      {FDT_LIST_LONGLONG, "listLonglongField", 2, "M 02 K 10 01 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff",
       list("listLonglongField", vector<int64_t>{1, -1})},
      {FDT_LIST_ULONGLONG, "listUlonglongField", 2,
       "K 02 K 10 01 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff",
       list("listUlonglongField", vector<uint64_t>{1, numeric_limits<uint64_t>::max()})},
      {FDT_LIST_ENUM, "listEnumField", 2, "M 02 K 02 02 01", list("listEnumField", vector<uint32_t>{2, 1})},
      {FDT_LIST_STRING, "listStringField", 2, "M 02 K 01 61 K 00",
       list("listStringField", vector<string>{"a", ""})},
      {FDT_LIST_WSTRING, "listWstringField", 2, "M 02 K 02 c3 a9 K 01 62",
       list("listWstringField", vector<u16string>{u"é", u"b"})},
      {FDT_LIST_OBJECT, "listObjectField", 2, "M 02 K 05 4e da c6 02 02 K 00",
       [](EveryType& m) {
         m.addToListObjectField().setNumber(1);
         m.addToListObjectField();
       }},
      {FDT_OBJECT, "objectField", 2, "K 05 4e da c6 02 02",
       [](EveryType& m) { m.mutableObjectField().setNumber(1); }},
      {FDT_BSTRING, "bstringField", 2, "K 04 59 51 42 69",
       [](EveryType& m) { m.setBstringField(string_view("a\0b", 3)); }},
      {FDT_LIST_BOOL, "listBoolField", 2, "M 03 K 03 01 00 01",
       list("listBoolField", vector<uint32_t>{1, 0, 1})},
      {FDT_LIST_FLOAT, "listFloatField", 2, "M 02 K 08 00 00 80 3f 00 00 20 c0",
       list("listFloatField", vector<float>{1, -2.5f})},
      {FDT_LIST_DOUBLE, "listDoubleField", 2, "M 01 K 08 00 00 00 00 00 00 f8 3f",
       list("listDoubleField", vector<double>{1.5})},
      {FDT_LIST_BSTRING, "listBstringField", 2, "M 02 K 04 59 51 42 69 K 04 59 77 3d 3d",
       [](EveryType& m) {
         auto& values = collectionOf<vector<bstring>>(m, "listBstringField");
         values = {string("a\0b", 3), string("c")};
       }},
      {FDT_PSTRING, "pstringField", 2, "K 06 73 65 63 72 65 74",
       [](EveryType& m) { m.setPstringField("secret"); }},
      {FDT_MAP_INT64_INT64, "mapInt64Int64Field", 2,
       "M 02 K 22 01 01 ff ff ff ff ff ff ff ff 02 00 00 00 00 00 00 00 "
       "01 00 00 00 00 00 00 00 03 00 00 00 00 00 00 00",
       list("mapInt64Int64Field", map<int64_t, int64_t>{{-1, 2}, {1, 3}})},
      {FDT_MAP_INT64_STRING, "mapInt64StringField", 2, "M 01 K 0d 01 02 01 00 00 00 00 00 00 00 02 68 69",
       list("mapInt64StringField", map<int64_t, string>{{1, "hi"}})},
      {FDT_MAP_INT64_OBJECT, "mapInt64ObjectField", 2,
       "M 01 K 10 01 02 01 00 00 00 00 00 00 00 05 4e da c6 02 02",
       [](EveryType& m) {
         collectionOf<map<int64_t, XNMessageBase>>(m, "mapInt64ObjectField").emplace(1, child(1));
       }},
      {FDT_MAP_STRING_INT64, "mapStringInt64Field", 2, "M 01 K 0c 02 01 01 61 07 00 00 00 00 00 00 00",
       list("mapStringInt64Field", map<string, int64_t>{{"a", 7}})},
      {FDT_MAP_STRING_STRING, "mapStringStringField", 2, "M 02 K 09 02 02 00 00 01 61 02 62 63",
       list("mapStringStringField", map<string, string>{{"", ""}, {"a", "bc"}})},
      {FDT_MAP_STRING_OBJECT, "mapStringObjectField", 2, "M 01 K 0a 02 02 01 61 05 4e da c6 02 02",
       [](EveryType& m) {
         collectionOf<map<string, XNMessageBase>>(m, "mapStringObjectField").emplace("a", child(1));
       }},
      {FDT_MAP_OBJECT_OBJECT, "mapObjectObjectField", 2, "M 01 K 09 02 02 05 4e da c6 02 02 00",
       [](EveryType& m) {
         collectionOf<map<XNMessageBase, XNMessageBase>>(m, "mapObjectObjectField")
             .emplace(child(1), EveryChild());
       }},
      {FDT_TIME32, "time32Field", 6, "K 80 a3 05", integer("time32Field", 43200)},
      {FDT_TIME64, "time64Field", 1, "K 80 51 01 00 01 00 00 00", integer("time64Field", 0x100015180)},
  };
  return kRows;
}
std::string recordHex(const BinaryTypeRow& row) {
  std::string hex;
  for (const char* at = row.record; *at != 0; ++at) {
    if (*at == 'M') {
      hex += "78 7f 7f 7f";
    } else if (*at == 'K') {
      hex += toHex(Wire().key(row.field, row.encoding).bytes());
    } else {
      hex += *at;
    }
  }
  return hex;
}

}  // namespace zqxml

#include "accessor_writer.h"

#include <vector>

#include "code_template.h"
#include "cpp_names.h"
#include "values.h"

namespace zqxml::zqcatc {

namespace {

// C++ type of an element, as values go in and out.
constexpr std::string_view cppType(element::Int32) {
  return "std::int32_t";
}
constexpr std::string_view cppType(element::UInt32) {
  return "std::uint32_t";
}
constexpr std::string_view cppType(element::Int64) {
  return "std::int64_t";
}
constexpr std::string_view cppType(element::UInt64) {
  return "std::uint64_t";
}
constexpr std::string_view cppType(element::Double) {
  return "double";
}
constexpr std::string_view cppType(element::Float) {
  return "float";
}
constexpr std::string_view cppType(element::Str) {
  return "std::string";
}
constexpr std::string_view cppType(element::WStr) {
  return "std::u16string";
}
constexpr std::string_view cppType(element::BStr) {
  return "bstring";
}
constexpr std::string_view cppType(element::PStr) {
  return "pstring";
}
constexpr std::string_view cppType(element::Obj) {
  return "XNMessageBase";
}

// What the base's accessors call an element: getdouble, getwstring, getMapInt64AndString.
constexpr std::string_view accessorWord(element::Double) {
  return "double";
}
constexpr std::string_view accessorWord(element::Float) {
  return "float";
}
constexpr std::string_view accessorWord(element::Str) {
  return "string";
}
constexpr std::string_view accessorWord(element::WStr) {
  return "wstring";
}
constexpr std::string_view mapWord(element::Int64) {
  return "Int64";
}
constexpr std::string_view mapWord(element::Str) {
  return "String";
}
constexpr std::string_view mapWord(element::Obj) {
  return "Object";
}

/// Field types whose lists are read and written through the accessors of list<uint>.
constexpr FieldTypeSet kUintListTypes{FDT_LIST_BOOL, FDT_LIST_ENUM};

std::string listWord(FieldDataType type) {
  constexpr std::string_view kPrefix = "list_";
  return kUintListTypes.contains(type) ? "uint" : typeName(type).substr(kPrefix.size());
}

/// Writes the accessors of one field; called with its storage. In the texts:
///   @X@       the field's name behind get, set, ...
///   @mem@     its member number            @place@   member number and slot, as most accessors take them
///   @slot@    its slot                     @id@      the tag of the class and the hash of the field
///   @fdt@     its type in the catalogue
///   @type@    C++ type of a value          @word@    what the base's accessors call the type
///   @target@  C++ name of the class or enumeration that it refers to, @indices@ its slot and class index
class AccessorWriter {
 public:
  AccessorWriter(const Field& field, const Class& owner, std::string_view passwordType)
      : field_(field), passwordType_(passwordType) {
    const std::string member = std::to_string(field.memNum);
    const std::string slot = std::to_string(field.index);
    values_ = {{"X", accessorStem(field)},
               {"mem", member},
               {"slot", slot},
               {"place", cat(member, ", ", slot)},
               {"fdt", cat("::zqxml::", fieldTypeFacts(field.type).name)},
               {"id", cat("kTagId, ", hexNumber(field.hash))}};
    if (field.references.empty()) return;
    const Class& target = *field.references.front().target;
    values_.push_back({"target", cppClassName(target, *owner.subsystem)});
    values_.push_back({"indices", cat(target.subsystem->slot, ", ", target.index)});
  }

  std::string text() && {
    visitStorage(field_.type, *this);
    emit(R"(
bool is@X@Set() const { return XNMessageBase::isSet(@mem@, @id@); }
void unset@X@() {
  XNMessageBase::deleteMember(@mem@, @id@, false);
  XNMessageBase::unsetField(@mem@, @id@);
}
)");
    return std::move(text_);
  }

  void operator()(Nothing) {}

  template <class E>
  void operator()(Scalar<E>) {
    if constexpr (element::Floating<E>) {
      values_.push_back({"word", std::string(accessorWord(E{}))});
      emit(R"(
@word@ get@X@() const { return get@word@(@slot@, @id@); }
void set@X@(@word@ value) { put@word@<@fdt@>(@place@, value, @id@); }
)");
    } else {
      values_.push_back({"type", std::string(cppType(E{}))});
      emit(R"(
@type@ get@X@() const { return static_cast<@type@>(getint64(@slot@, @id@)); }
void set@X@(@type@ value) { putint64<@fdt@>(@place@, static_cast<std::int64_t>(value), @id@); }
)");
    }
  }

  void operator()(Scalar<element::Bool>) {
    emit(R"(
bool get@X@() const { return getint64(@slot@, @id@) != 0; }
void set@X@(bool value) { putint64<@fdt@>(@place@, value ? 1 : 0, @id@); }
template <class T>
void set@X@(T*) = delete;  // a pointer would be true
)");
  }

  void operator()(Scalar<element::Enum>) {
    // An enumerator is a signed 32-bit number in its slot, whatever type the enumeration has in C++.
    emit(R"(
@target@ get@X@() const { return static_cast<@target@>(getint64(@slot@, @id@)); }
void set@X@(@target@ value) { putint64<@fdt@>(@place@, static_cast<std::int32_t>(value), @id@); }
)");
  }

  template <class E>
  void operator()(InPlace<E>) {
    values_.push_back({"type", std::string(cppType(E{}))});
    values_.push_back({"word", std::string(accessorWord(E{}))});
    values_.push_back({"arg", std::is_same_v<E, element::Str> ? "StringArg" : "WStringArg"});
    emit(R"(
const @type@& get@X@() const { return get@word@ByRef_const(@place@, @id@); }
@type@& mutable@X@() { return get@word@ByRef(@place@, @id@); }
void set@X@(const typed::@arg@& value) { put@word@<@fdt@>(@place@, value, @id@); }
)");
  }

  template <class E>
  void operator()(Owned<E>) {
    values_.push_back({"type", std::string(cppType(E{}))});
    emit(R"(
const @type@& get@X@() const { return typed::orEmpty(get@type@object_const(@place@, @id@)); }
@type@& mutable@X@() { return get@type@objectByRef(@place@, @id@); }
)");
    if constexpr (std::same_as<E, element::PStr>) {
      passwordSetter();
    } else {
      emit(R"(
void set@X@(const typed::BytesArg& value) { assignbstringobject(@place@, value, @id@); }
)");
    }
  }

  template <class E>
  void operator()(List<E>) {
    container(cat("std::vector<", cppType(E{}), ">"), cat("list", listWord(field_.type)));
  }

  void operator()(List<element::Obj>) {
    emit(R"(
ObjectView<const @target@> get@X@() const {
  return ObjectView<const @target@>(getlistobject_const(@place@, @id@));
}
ObjectView<@target@> mutable@X@() { return ObjectView<@target@>(&mutable@X@Vector()); }
std::vector<XNMessageBase>& mutable@X@Vector() {
  return typed::orScratch(getlistobject(@place@, @id@, true));
}
@target@& addTo@X@() {
  return reinterpret_cast<@target@&>(typed::append(mutable@X@Vector(), @indices@));
}
void set@X@(typed::ObjectListArg<@target@> value) {
  typed::put(getlistobject(@place@, @id@, true), value.list());
}
)");
  }

  template <class K, class V>
  void operator()(Map<K, V>) {
    container(cat("std::map<", cppType(K{}), ", ", cppType(V{}), ">"),
              cat("Map", mapWord(K{}), "And", mapWord(V{})));
  }

  template <class K>
  requires(!std::same_as<K, element::Obj>) void operator()(Map<K, element::Obj>) {
    values_.push_back({"key", std::string(cppType(K{}))});
    values_.push_back({"word", cat("Map", mapWord(K{}), "AndObject")});
    emit(R"(
ObjectMapView<@key@, const @target@> get@X@() const {
  return ObjectMapView<@key@, const @target@>(XNMessageBase::get@word@_const(@place@, @id@));
}
const @target@* findIn@X@(const @key@& key) const {
  return reinterpret_cast<const @target@*>(typed::find(XNMessageBase::get@word@_const(@place@, @id@), key));
}
ObjectMapView<@key@, @target@> mutable@X@() {
  return ObjectMapView<@key@, @target@>(&mutable@X@Map());
}
std::map<@key@, XNMessageBase>& mutable@X@Map() {
  return typed::orScratch(XNMessageBase::get@word@(@place@, @id@, true));
}
@target@& addTo@X@(@key@ key) {
  return reinterpret_cast<@target@&>(typed::insert(mutable@X@Map(), std::move(key), @indices@));
}
void set@X@(typed::ObjectMapArg<@key@, @target@> value) {
  typed::put(XNMessageBase::get@word@(@place@, @id@, true), value.map());
}
)");
  }

  void operator()(Object) {
    emit(R"(
const @target@* get@X@() const {
  return reinterpret_cast<const @target@*>(XNMessageBase::getObject_const(@place@, @id@));
}
@target@& mutable@X@() {
  XNMessageBase* object = XNMessageBase::getObjectAccessor(true, true, @place@, @id@, @indices@);
  return reinterpret_cast<@target@&>(typed::orScratch(object));
}
void set@X@(const @target@& value) { XNMessageBase::setObjectAccessor(&value, @place@, @id@); }
void set@X@(@target@&& value) {
  XNMessageBase* object = XNMessageBase::getObjectAccessor(true, true, @place@, @id@, @indices@);
  typed::put(object, reinterpret_cast<XNMessageBase&&>(value));
}
)");
  }

 private:
  /// The first line break is that of the raw literal.
  void emit(std::string_view text) { text_ += indented(expand(text.substr(1), values_), "  "); }

  void container(std::string type, std::string word) {
    values_.push_back({"type", std::move(type)});
    values_.push_back({"word", std::move(word)});
    emit(R"(
const @type@& get@X@() const {
  return typed::orEmpty(XNMessageBase::get@word@_const(@place@, @id@));
}
@type@& mutable@X@() {
  return typed::orScratch(XNMessageBase::get@word@(@place@, @id@, true));
}
void set@X@(@type@ value) {
  typed::put(XNMessageBase::get@word@(@place@, @id@, true), std::move(value));
}
)");
  }

  void passwordSetter() {
    const bool isEnum = passwordType_ != "int";
    values_.push_back({"form", std::string(passwordType_)});
    values_.push_back({"number", isEnum ? "static_cast<int>(type)" : "type"});
    emit(R"(
void set@X@(const typed::PasswordArg& value) {
  assignpstringobject(@place@, value, value.encryptionType(), @id@);
}
void set@X@(const typed::BytesArg& value, @form@ type) {
  assignpstringobject(@place@, value, @number@, @id@);
}
)");
  }

  const Field& field_;
  std::string_view passwordType_;
  std::vector<TemplateValue> values_;
  std::string text_;
};

}  // namespace

std::string cppClassName(const Class& record, const Subsystem& home) {
  const std::string name = cppIdentifier(record.name);
  return record.subsystem == &home ? name : cat("::zqxml::", record.subsystem->name, "::", name);
}

std::string writeAccessors(const Field& field, const Class& owner, std::string_view passwordType) {
  return AccessorWriter(field, owner, passwordType).text();
}

}  // namespace zqxml::zqcatc

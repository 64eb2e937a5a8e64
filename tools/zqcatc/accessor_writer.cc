#include "accessor_writer.h"

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

/// Writes the accessors of one field; called with its storage.
class AccessorWriter {
 public:
  AccessorWriter(const Field& field, const Class& owner, std::string_view passwordType)
      : field_(field), owner_(owner), passwordType_(passwordType), stem_(accessorStem(field)) {
    identity_ = cat("kTagId, ", hexNumber(field.hash));
    place_ = cat(field.memNum, ", ", field.index);
  }

  std::string text() && {
    visitStorage(field_.type, *this);
    line(cat("bool is", stem_, "Set() const { return XNMessageBase::isSet(", field_.memNum, ", ", identity_,
             "); }"));
    line(cat("void unset", stem_, "() {"));
    line(cat("  XNMessageBase::deleteMember(", field_.memNum, ", ", identity_, ", false);"));
    line(cat("  XNMessageBase::unsetField(", field_.memNum, ", ", identity_, ");"));
    line("}");
    return std::move(text_);
  }

  void operator()(Nothing) {}

  template <class E>
  void operator()(Scalar<E>) {
    if constexpr (element::Floating<E>) {
      const std::string_view word = accessorWord(E{});
      scalar(cppType(E{}), cat("get", word, "(", field_.index, ", ", identity_, ")"), cat("set", word),
             "value");
    } else {
      integer(E{});
    }
  }

  template <class E>
  void operator()(InPlace<E>) {
    const std::string_view word = accessorWord(E{});
    const std::string_view type = cppType(E{});
    line(cat(type, " get", stem_, "() const { return get", word, "_const(", place_, ", ", identity_, "); }"));
    line(cat(type, "& mutable", stem_, "() { return get", word, "ByRef(", place_, ", ", identity_, "); }"));
    line(cat("void set", stem_, "(const ", type, "& value) { set", word, "(", place_, ", value, ", identity_,
             "); }"));
  }

  void operator()(Owned<element::BStr>) {
    owned("bstring");
    line(cat("void set", stem_, "(std::string_view value) { setbstringobject(", place_,
             ", bstring(std::string(value)), ", identity_, "); }"));
  }

  void operator()(Owned<element::PStr>) {
    owned("pstring");
    const bool isEnum = passwordType_ != "int";
    line(cat("void set", stem_, "(std::string_view value, ", passwordType_,
             " type = ", isEnum ? cat(passwordType_, "{1}") : "1", ") {"));
    line(cat("  setpstringobject(", place_, ", bstring(std::string(value)), ",
             isEnum ? "static_cast<int>(type)" : "type", ", ", identity_, ");"));
    line("}");
  }

  template <class E>
  void operator()(List<E>) {
    const std::string word = listWord(field_.type);
    container(cat("std::vector<", element(E{}), ">"), cat("list", word));
  }

  void operator()(List<element::Obj>) {
    const std::string type = target(0);
    const std::string make = cat("typed::orScratch(getlistobject(", place_, ", ", identity_, ", true))");
    line(cat("ObjectView<const ", type, "> get", stem_, "() const {"));
    line(cat("  return ObjectView<const ", type, ">(getlistobject_const(", place_, ", ", identity_, "));"));
    line("}");
    line(cat("ObjectView<", type, "> mutable", stem_, "() { return ObjectView<", type, ">(&", make, "); }"));
    line(cat("std::vector<XNMessageBase>& mutable", stem_, "Vector() { return ", make, "; }"));
    line(cat(type, "& addTo", stem_, "() {"));
    line(cat("  return reinterpret_cast<", type, "&>(typed::append(", make, ", ", targetIndices(0), "));"));
    line("}");
    line(cat("void set", stem_, "(const std::vector<XNMessageBase>& value) { setlistobject(", place_,
             ", &value, ", identity_, "); }"));
  }

  template <class K, class V>
  void operator()(Map<K, V>) {
    const std::string word = cat("Map", mapWord(K{}), "And", mapWord(V{}));
    container(cat("std::map<", cppType(K{}), ", ", cppType(V{}), ">"), word);
    if constexpr (std::same_as<V, element::Obj> && !std::same_as<K, element::Obj>) keyedObjects(cppType(K{}));
  }

  void operator()(Object) {
    const std::string type = target(0);
    line(cat("const ", type, "* get", stem_, "() const {"));
    line(cat("  return reinterpret_cast<const ", type, "*>(XNMessageBase::getObject_const(", place_, ", ",
             identity_, "));"));
    line("}");
    line(cat(type, "& mutable", stem_, "() {"));
    line(cat("  return reinterpret_cast<", type,
             "&>(typed::orScratch(XNMessageBase::getObjectAccessor(true, true, ", place_, ", ", identity_,
             ", ", targetIndices(0), ")));"));
    line("}");
    line(cat("void set", stem_, "(const ", type, "& value) { XNMessageBase::setObjectAccessor(&value, ",
             place_, ", ", identity_, "); }"));
  }

 private:
  void line(std::string_view text) { text_ += cat("  ", text, "\n"); }

  void scalar(std::string_view type, std::string_view read, std::string_view setter, std::string_view value) {
    line(cat(type, " get", stem_, "() const { return ", read, "; }"));
    line(cat("void set", stem_, "(", type, " value) { ", setter, "(", place_, ", ", value, ", ", identity_,
             "); }"));
  }

  template <class E>
  void integer(E) {
    const std::string read = cat("getint64(", field_.index, ", ", identity_, ")");
    if constexpr (std::same_as<E, element::Bool>) {
      scalar("bool", read + " != 0", "setint64", "value ? 1 : 0");
    } else if constexpr (std::same_as<E, element::Enum>) {
      // An enumerator is a signed 32-bit number in its slot, whatever type the enumeration has in C++.
      const std::string type = target(0);
      scalar(type, cat("static_cast<", type, ">(", read, ")"), "setint64",
             "static_cast<std::int32_t>(value)");
    } else if constexpr (std::same_as<E, element::Int64>) {
      scalar(cppType(E{}), read, "setint64", "value");
    } else {
      scalar(cppType(E{}), cat("static_cast<", cppType(E{}), ">(", read, ")"), "setint64",
             std::same_as<E, element::UInt64> ? "static_cast<std::int64_t>(value)" : "value");
    }
  }

  void owned(std::string_view type) {
    line(cat("const ", type, "& get", stem_, "() const { return typed::orEmpty(get", type, "object_const(",
             place_, ", ", identity_, ")); }"));
    line(cat(type, "& mutable", stem_, "() { return get", type, "objectByRef(", place_, ", ", identity_,
             "); }"));
  }

  void container(std::string_view type, std::string_view word) {
    const std::string_view base = word.starts_with("Map") ? "XNMessageBase::" : "";
    line(cat("const ", type, "& get", stem_, "() const {"));
    line(cat("  return typed::orEmpty(", base, "get", word, "_const(", place_, ", ", identity_, "));"));
    line("}");
    line(cat(type, "& mutable", stem_, "() {"));
    line(cat("  return typed::orScratch(", base, "get", word, "(", place_, ", ", identity_, ", true));"));
    line("}");
    line(cat("void set", stem_, "(const ", type, "& value) { ", base, "set", word, "(", place_, ", &value, ",
             identity_, "); }"));
  }

  void keyedObjects(std::string_view keyType) {
    const std::string type = target(0);
    line(cat("const ", type, "* findIn", stem_, "(const ", keyType, "& key) const {"));
    line(cat("  return reinterpret_cast<const ", type, "*>(typed::find(get", stem_, "(), key));"));
    line("}");
    line(cat(type, "& addTo", stem_, "(const ", keyType, "& key) {"));
    line(cat("  return reinterpret_cast<", type, "&>(typed::insert(mutable", stem_, "(), key, ",
             targetIndices(0), "));"));
    line("}");
  }

  template <class E>
  static constexpr std::string_view element(E) {
    return cppType(E{});
  }

  std::string target(std::size_t reference) const {
    return cppClassName(*field_.references[reference].target, *owner_.subsystem);
  }
  std::string targetIndices(std::size_t reference) const {
    const Class& record = *field_.references[reference].target;
    return cat(record.subsystem->slot, ", ", record.index);
  }

  const Field& field_;
  const Class& owner_;
  std::string_view passwordType_;
  std::string stem_;
  std::string identity_;
  std::string place_;
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

/// @file
/// Events between their two shapes: the container of a process, and the message that travels.
///
/// On the wire every argument is a text with a type beside it. The functions work on their arguments alone,
/// so that any thread may call them at any time. They throw nothing but std::bad_alloc.
#pragma once

#include <zqxml/catalogue/generated/Common.h>
#include <zqxml/platform/ev_message_container.h>
#include <zqxml/platform/export.h>

#include <concepts>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace zqxml {

/// Sets the id of `out`, and puts the arguments behind those that it has. Without arguments its list is left
/// alone.
ZQXML_EXPORT void setEvMessageContainerToXML(const EvMessageContainer& in, Common::EventMessage& out);

/// Puts the arguments at the end of `out`, numbered on from its length. Null is a list without arguments.
/// QUIRK: an unsigned 64-bit number is written with the type LONGLONG, so that a reader clips what is above
/// the signed range.
ZQXML_EXPORT void setEvMessageArgumentsToXML(const ArgumentInfo* first,
                                             std::vector<Common::EventArgument>& out);

/// Empties `out`, and sets its id and its arguments. The result is that of the arguments.
ZQXML_EXPORT bool getEvMessageContainerFromXML(const Common::EventMessage& in, EvMessageContainer& out);

/// Puts the arguments at the end of those of `out`, in the order of the list, wherever they say they stand.
/// Numbers are read as C's strto... functions do, INT, LONG, UINT and ULONG as 32 bits; a text ends at its
/// first NUL. False at the first argument of an unknown type, which is logged ("Unknown argument type not
/// supported
/// [%d].", level 0); `out` keeps those before it.
ZQXML_EXPORT bool getEvMessageContainerArgumentsFromXML(const std::vector<Common::EventArgument>& in,
                                                        EvMessageContainer& out);

/// Appends an argument to the event: an int as INT, a long as LONG, a long long as LONGLONG, and says so in
/// the log ("Pushing argument of type [%s].", level 10; a long long is called "__int64"). Any other type is
/// logged
/// ("Unknown argument type not supported [%s].", level 0) and gives false; the list of arguments is then
/// made, if there was none, but nothing is put into it.
template <typename T>
requires(!std::convertible_to<T, std::string>) bool pushEventArgumentXML(Common::EventMessage& msg, T value);

/// @{
/// Appends a text, as STRING. Always true; logs nothing. Null is an empty text.
ZQXML_EXPORT bool pushEventArgumentXML(Common::EventMessage& msg, const std::string& value);
inline bool pushEventArgumentXML(Common::EventMessage& msg, const char* value) {
  return pushEventArgumentXML(msg, std::string(value == nullptr ? "" : value));
}
/// @}

namespace internal {
ZQXML_EXPORT bool pushEventNumber(Common::EventMessage& msg, int value);
ZQXML_EXPORT bool pushEventNumber(Common::EventMessage& msg, long value);
ZQXML_EXPORT bool pushEventNumber(Common::EventMessage& msg, long long value);
/// What becomes of an argument of any other type.
ZQXML_EXPORT bool refuseEventArgument(Common::EventMessage& msg, const std::type_info& type);
}  // namespace internal

template <typename T>
requires(!std::convertible_to<T, std::string>) bool pushEventArgumentXML(Common::EventMessage& msg, T value) {
  if constexpr (std::is_same_v<T, int> || std::is_same_v<T, long> || std::is_same_v<T, long long>) {
    return internal::pushEventNumber(msg, value);
  } else {
    return internal::refuseEventArgument(msg, typeid(T));
  }
}

}  // namespace zqxml

#include <cxxabi.h>
#include <zqxml/logging/event_conversion.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/xml/internal/list_growth.h>

#include <cstdlib>
#include <memory>
#include <utility>

namespace zqxml {
namespace {

using Common::EventArgument;
using Common::EventArgumentType;
using Common::EventMessage;

constexpr char kPush[] = "pushEventArgumentXML";
constexpr char kPushing[] = "Pushing argument of type [%s].";

EventArgumentType typeOf(ArgumentInfo::Kind kind) {
  switch (kind) {
    case ArgumentInfo::Kind::kInt:
      return EventArgumentType::INT;
    case ArgumentInfo::Kind::kUnsignedInt:
      return EventArgumentType::UINT;
    case ArgumentInfo::Kind::kLong:
      return EventArgumentType::LONG;
    case ArgumentInfo::Kind::kUnsignedLong:
      return EventArgumentType::ULONG;
    case ArgumentInfo::Kind::kInt64:
    case ArgumentInfo::Kind::kUnsignedInt64:  // QUIRK: readers of the signed type get it clipped
      return EventArgumentType::LONGLONG;
    case ArgumentInfo::Kind::kString:
      break;
  }
  return EventArgumentType::STRING;
}

std::string dataOf(const ArgumentInfo::Node& node) {
  switch (node.kind) {
    case ArgumentInfo::Kind::kInt:
    case ArgumentInfo::Kind::kLong:
    case ArgumentInfo::Kind::kInt64:
      return std::to_string(static_cast<std::int64_t>(node.number));
    case ArgumentInfo::Kind::kUnsignedInt:
    case ArgumentInfo::Kind::kUnsignedLong:
    case ArgumentInfo::Kind::kUnsignedInt64:
      return std::to_string(node.number);
    case ArgumentInfo::Kind::kString:
      break;
  }
  return node.text;
}

void fill(EventArgument& argument, std::size_t position, EventArgumentType type, std::string data) {
  argument.setPosition(static_cast<std::int32_t>(position));
  argument.setType(type);
  argument.setData(std::move(data));
}

/// The text by value: it may be that of an argument of this very event, which moves when the list grows.
void append(EventMessage& msg, EventArgumentType type, std::string data) {
  const std::size_t position = msg.mutableArgumentsVector().size() + 1;
  fill(msg.addToArguments(), position, type, std::move(data));
}

/// Reads one argument into the container. False, and a line, when its type is not known.
bool insert(EvMessageContainer& out, const EventArgument& argument) {
  const std::string& data = argument.getData();
  switch (argument.getType()) {
    case EventArgumentType::INT:
      out << int{parseInt32(data)};
      return true;
    case EventArgumentType::LONG:
      out << long{parseInt32(data)};
      return true;
    case EventArgumentType::LONGLONG:
      out << static_cast<long long>(parseInt64(data));
      return true;
    case EventArgumentType::STRING:
      // QUIRK: as a C string, which ends at its first NUL.
      out << data.c_str();
      return true;
    case EventArgumentType::UINT:
      out << unsigned{parseUInt32(data)};
      return true;
    case EventArgumentType::ULONG:
      out << static_cast<unsigned long>(parseUInt32(data));
      return true;
    case EventArgumentType::ULONGLONG:
      out << static_cast<unsigned long long>(parseUInt64(data));
      return true;
  }
  logError("getEvMessageContainerArgumentsFromXML", "Unknown argument type not supported [%d].",
           argument.getType());
  return false;
}

template <class Arguments>
bool insertAll(EvMessageContainer& out, const Arguments& arguments) {
  for (const EventArgument& argument : arguments)
    if (!insert(out, argument)) return false;
  return true;
}

template <class Number>
bool pushNumber(EventMessage& msg, const char* typeName, EventArgumentType type, Number value) {
  logDebug(kPush, 10, kPushing, typeName);
  append(msg, type, std::to_string(value));
  return true;
}

}  // namespace

void setEvMessageContainerToXML(const EvMessageContainer& in, EventMessage& out) {
  out.setMessageId(in.getMessageId());
  for (auto* node = in.getArguments().first(); node != nullptr; node = node->next.get())
    append(out, typeOf(node->kind), dataOf(*node));
}

void setEvMessageArgumentsToXML(const ArgumentInfo* first, std::vector<EventArgument>& out) {
  if (first == nullptr) return;
  if (first->NoOfArgs() > 1) growFor(out, static_cast<std::size_t>(first->NoOfArgs() - 1));
  for (auto* node = first->first(); node != nullptr; node = node->next.get()) {
    const std::size_t position = out.size() + 1;
    fill(out.emplace_back(), position, typeOf(node->kind), dataOf(*node));
  }
}

bool getEvMessageContainerFromXML(const EventMessage& in, EvMessageContainer& out) {
  out.getArguments().Clear();
  out.setMessageId(in.getMessageId());
  return insertAll(out, in.getArguments());
}

bool getEvMessageContainerArgumentsFromXML(const std::vector<EventArgument>& in, EvMessageContainer& out) {
  return insertAll(out, in);
}

bool pushEventArgumentXML(EventMessage& msg, const std::string& value) {
  append(msg, EventArgumentType::STRING, value);
  return true;
}

namespace internal {

bool pushEventNumber(EventMessage& msg, int value) {
  return pushNumber(msg, "int", EventArgumentType::INT, value);
}

bool pushEventNumber(EventMessage& msg, long value) {
  return pushNumber(msg, "long", EventArgumentType::LONG, value);
}

bool pushEventNumber(EventMessage& msg, long long value) {
  return pushNumber(msg, "__int64", EventArgumentType::LONGLONG, value);
}

bool refuseEventArgument(EventMessage& msg, const std::type_info& type) {
  msg.mutableArgumentsVector();
  const std::unique_ptr<char, decltype(&std::free)> readable(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr), &std::free);
  const char* name = readable != nullptr ? readable.get() : type.name();
  logDebug(kPush, 10, kPushing, name);
  logError(kPush, "Unknown argument type not supported [%s].", name);
  return false;
}

}  // namespace internal

}  // namespace zqxml

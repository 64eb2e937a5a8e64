#include "tools/zqmsg/json/json_reader.h"

#include <zqxml/message/internal/nesting_limit.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "tools/zqmsg/json/json_message_builder.h"
#include "tools/zqmsg/json/json_value.h"

namespace zqxml::tool {
namespace {

using Json = nlohmann::json;
using Kind = JsonValue::Kind;
using Fault = JsonReading::Fault;

constexpr std::size_t kMostShown = 200;

/// An iterator over the text that tells where the parser is.
class Reader {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  explicit Reader(const char** at) : at_(at) {}
  reference operator*() const { return **at_; }
  Reader& operator++() {
    ++*at_;
    return *this;
  }
  Reader operator++(int) {
    const Reader before = *this;
    ++*at_;
    return before;
  }
  bool operator==(const Reader& other) const { return *at_ == *other.at_; }
  bool operator!=(const Reader& other) const { return *at_ != *other.at_; }

 private:
  const char** at_;
};

/// What the parser says of a text that is no JSON, without what it had read last: that can be of any length.
std::string syntaxError(std::string_view what) {
  constexpr std::string_view kLastRead = "; last read: ";
  constexpr std::string_view kExpected = "; expected ";
  if (const std::size_t colon = what.find(": "); colon != what.npos) what.remove_prefix(colon + 2);
  const std::size_t cut = what.find(kLastRead);
  std::string text(what.substr(0, std::min(cut, kMostShown)));
  const std::size_t expected = cut == what.npos ? what.npos : what.rfind(kExpected);
  if (expected != what.npos && expected > cut) text += what.substr(expected, kMostShown);
  return text;
}

/// What the parser calls.
class Events {
 public:
  Events(JsonMessageBuilder& builder, std::string_view text, const char* const& at)
      : builder_(builder), text_(text), at_(at) {}

  bool null() { return value({}); }
  bool boolean(bool value) { return this->value({.kind = Kind::kBoolean, .integer = value ? 1 : 0}); }
  bool number_integer(Json::number_integer_t value) {
    return this->value({.kind = Kind::kInteger, .integer = value});
  }
  bool number_unsigned(Json::number_unsigned_t value) {
    return this->value({.kind = Kind::kUnsigned, .unsignedValue = value});
  }
  bool number_float(Json::number_float_t value, const std::string& text) {
    return this->value({.kind = Kind::kFraction, .fraction = value, .text = text});
  }
  bool string(std::string& text) { return value({.kind = Kind::kText, .text = text}); }
  bool binary(Json::binary_t&) { return false; }  // no JSON text has any
  bool start_object(std::size_t) { return step(builder_.startObject()); }
  bool key(std::string& name) { return step(builder_.key(name)); }
  bool end_object() { return step(builder_.endObject()); }
  bool start_array(std::size_t) { return step(builder_.startArray()); }
  bool end_array() { return step(builder_.endArray()); }

  bool parse_error(std::size_t position, const std::string& token, const nlohmann::detail::exception& error) {
    constexpr int kNumberOverflow = 406;
    if (error.id == kNumberOverflow)
      return step(builder_.fail(Fault::kUnfit, "has a number beyond all that there are: " +
                                                   token.substr(0, std::min<std::size_t>(token.size(), 40))));
    place_ = position == 0 ? 0 : position - 1;
    return builder_.fail(Fault::kNotWellFormed, "is no JSON: " + syntaxError(error.what()));
  }

  /// Where a fault was: the first character of what did not fit, as an offset.
  std::size_t place() const { return std::min(place_, text_.size()); }

 private:
  bool value(const JsonValue& value) { return step(builder_.value(value)); }
  /// The parser stands behind what an event is about, and one further behind a number.
  bool step(bool fits) {
    const auto end = static_cast<std::size_t>(at_ - text_.data());
    if (fits) {
      place_ = end;
    } else {
      place_ = std::min(text_.find_first_not_of(" \t\r\n,:", place_), end);
    }
    return fits;
  }

  JsonMessageBuilder& builder_;
  const std::string_view text_;
  const char* const& at_;
  std::size_t place_ = 0;
};

void tellPlace(std::string_view before, JsonReading& reading) {
  const auto isStart = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; };
  reading.line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  before.remove_prefix(before.rfind('\n') + 1);
  reading.column = 1 + static_cast<std::size_t>(std::count_if(before.begin(), before.end(), isStart));
}

}  // namespace

JsonReading readJson(std::string_view text, bool masked) {
  JsonMessageBuilder builder(masked, static_cast<std::size_t>(NestingLimit::get()));
  const char* at = text.data();
  const char* end = text.data() + text.size();
  Events events(builder, text, at);
  Json::sax_parse(Reader(&at), Reader(&end), &events);
  JsonReading reading = builder.take();
  if (reading.fault != Fault::kNone) tellPlace(text.substr(0, events.place()), reading);
  return reading;
}

}  // namespace zqxml::tool

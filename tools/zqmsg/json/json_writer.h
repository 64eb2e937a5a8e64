// A message as a JSON document: docs/json-form.md.
#pragma once

#include <zqxml/message/xn_message_base.h>

#include <string>

#include "tools/zqmsg/masks.h"

namespace zqxml::tool {

struct JsonStyle {
  bool indented = false;   ///< a line for every value; else all on one line, without a line end
  bool enumNames = false;  ///< enumerations by name, where the value has one
  Masks masks;
};

/// Writes a message: `{"SUBSYSTEM_CLASS":{"field":value,...}}`, the fields that are set, in the order of the
/// class. What cannot be written is left out, and logged as the library logs what XML cannot hold.
class JsonWriter {
 public:
  JsonWriter(std::string& out, const JsonStyle& style) : out_(out), style_(style) {}

  void document(const XNMessageBase& message);

 private:
  friend class JsonField;

  void object(const XNMessageBase& message);
  void open(char bracket);
  void close(char bracket);
  /// What stands before an element or a key: a comma where it is not the first, and a new line.
  void item();
  void key(std::string_view name);
  void newLine();

  std::string& out_;
  const JsonStyle style_;
  std::size_t depth_ = 0;
};

}  // namespace zqxml::tool

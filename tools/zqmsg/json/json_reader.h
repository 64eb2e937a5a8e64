// A message from a JSON document: docs/json-form.md.
#pragma once

#include <zqxml/message/xn_message_base.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace zqxml::tool {

/// What became of a document: a message, or the reason why there is none.
struct JsonReading {
  enum class Fault {
    kNone,
    kNotWellFormed,  ///< it is no JSON, or not one document
    kUnknownClass,   ///< it names no class of the catalogue
    kUnfit,          ///< what it holds does not fit the class
  };

  std::unique_ptr<XNMessageBase> message;
  Fault fault = Fault::kNone;
  std::string what;        ///< the field's path, where it is about one, and what is wrong
  std::string advice;      ///< what to do about it, where that is known
  std::size_t line = 0;    ///< where it is wrong, both from 1
  std::size_t column = 0;  ///< in characters
};

/// Reads one document. Whatever the text is: nothing of it is passed over in silence, nothing beyond
/// nMaxNesting levels of objects is built, and memory is in proportion to it. Passwords that cannot be
/// decrypted are logged as those of XML are, and left out. With `masked`, a mask in place of a value that is
/// no text leaves the field unset; otherwise it is a fault.
JsonReading readJson(std::string_view text, bool masked = false);

}  // namespace zqxml::tool

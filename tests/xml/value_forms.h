// The two forms in which the XML of a single value comes, for tests of the reader.
#pragma once

#include <zqxml/catalogue/generated/XmlRead.h>

#include <ostream>
#include <string>

#include "tests/support/reading.h"

namespace zqxml {

inline constexpr char kEnd[] = "MySAX2Handler::endElement";
inline constexpr char kAttributes[] = "MySAX2Handler::processAttributes";

/// The two forms that a single value comes in.
struct ValueForm {
  const char* name;
  const char* where;  ///< the operation that logs
  bool isElement;

  ReadAs<XmlRead::Every> read(const std::string& field, const std::string& text) const {
    return isElement ? ReadAs<XmlRead::Every>("<" + field + ">" + text + "</" + field + ">")
                     : ReadAs<XmlRead::Every>("", field + "=\"" + text + "\"");
  }
  friend std::ostream& operator<<(std::ostream& out, const ValueForm& form) { return out << form.name; }
};
inline constexpr ValueForm kAttributeForm{"Attribute", kAttributes, false};
inline constexpr ValueForm kElementForm{"Element", kEnd, true};

}  // namespace zqxml

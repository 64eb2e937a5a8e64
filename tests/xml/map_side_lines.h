#pragma once

#include <string>

#include "tests/support/log_capture.h"

namespace zqxml {

/// What the reader says where the tag of a map's side, "key" or "value", ends no object that is one; the map
/// is the last that it met.
inline CapturedLine wrongSideTag(const std::string& side, const std::string& map) {
  return {"MySAX2Handler::endElement", 0,
          "Encountered wrong map[" + side + "] tag usage. Cached map name is : [" + map + "]"};
}

}  // namespace zqxml

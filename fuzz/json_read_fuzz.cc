// Any text as a JSON document. What is read is written, read again and written again: both texts are the
// same.

#include <zqxml/platform/ev_debug.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tools/zqmsg/json/json_reader.h"
#include "tools/zqmsg/json/json_writer.h"

namespace zqxml::tool {
namespace {

/// Ends the run where one answer contradicts another.
void require(bool holds) {
  if (!holds) std::abort();
}

std::string written(const XNMessageBase& message, bool named) {
  std::string text;
  JsonWriter(text, {named, named, {}}).document(message);
  return text;
}

void run(std::string_view input) {
  const JsonReading reading = readJson(input);
  require((reading.message == nullptr) == (reading.fault != JsonReading::Fault::kNone));
  require(reading.what.empty() == (reading.message != nullptr) && reading.what.size() < 100000);
  readJson(input, true);
  if (reading.message == nullptr) return;
  for (const bool named : {false, true}) {
    const std::string text = written(*reading.message, named);
    const JsonReading again = readJson(text);
    require(again.message != nullptr && written(*again.message, named) == text);
  }
}

}  // namespace
}  // namespace zqxml::tool

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::EvDebug::setDebugLevel(-1);
  zqxml::tool::run({reinterpret_cast<const char*>(data), size});
  return 0;
}

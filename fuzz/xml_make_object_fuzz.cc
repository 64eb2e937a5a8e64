// Texts of any bytes, from which the object is made that their root names.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "fuzz/xml_fuzz_common.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::fuzz::logToNowhere();
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::unique_ptr<zqxml::XNMessageBase> made(zqxml::XMLSerializer().unserialize(text, false));
  if (made != nullptr) zqxml::fuzz::useMessage(*made);
  return 0;
}

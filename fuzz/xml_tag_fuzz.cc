// The tag look-up, which reads the start of a text alone: what it finds is what reading all of it makes.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "fuzz/xml_fuzz_common.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using zqxml::fuzz::require;
  zqxml::fuzz::logToNowhere();
  std::string text(reinterpret_cast<const char*>(data), size);
  std::string tag = "before";
  unsigned tagId = 1;
  const bool found = zqxml::XMLSerializer::GetTagAndTagIDFromXML(text, tag, tagId);
  require(found ? tagId >> 24 != 0 && !tag.empty() : text.empty() || (tagId == 0 && tag.empty()));
  const std::unique_ptr<zqxml::XNMessageBase> made(zqxml::XMLSerializer().unserialize(text, false));
  if (made != nullptr) require(found && made->getTagID() == tagId && made->getTagName() == tag);
  return 0;
}

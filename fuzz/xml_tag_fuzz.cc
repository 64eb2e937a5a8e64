// The tag look-up, which reads the start of a text alone: what it finds is what reading all of it makes, and
// the same on both roads, lines included.
#include <tests/support/log_capture.h>
#include <tests/support/xml_roads.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/xml_fuzz_common.h"

namespace zqxml {
namespace {

void compareRoads(std::string text) {
  std::string tags[2];
  unsigned ids[2];
  bool found[2];
  std::vector<CapturedLine> lines[2];
  for (const bool fast : {false, true}) {
    const FastXmlRoads roads(fast);
    const LogCapture capture(25);
    found[fast] = XMLSerializer::GetTagAndTagIDFromXML(text, tags[fast], ids[fast]);
    lines[fast] = capture.lines();
  }
  fuzz::require(found[0] == found[1] && tags[0] == tags[1] && lines[0] == lines[1]);
  fuzz::require(text.empty() || ids[0] == ids[1]);
  EvDebug::setSink([](const LogLine&) {});  // which a capture has taken away
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using zqxml::fuzz::require;
  zqxml::fuzz::logToNowhere();
  std::string text(reinterpret_cast<const char*>(data), size);
  zqxml::compareRoads(text);
  std::string tag = "before";
  unsigned tagId = 1;
  const bool found = zqxml::XMLSerializer::GetTagAndTagIDFromXML(text, tag, tagId);
  require(found ? tagId >> 24 != 0 && !tag.empty() : text.empty() || (tagId == 0 && tag.empty()));
  const std::unique_ptr<zqxml::XNMessageBase> made(zqxml::XMLSerializer().unserialize(text, false));
  if (made != nullptr) require(found && made->getTagID() == tagId && made->getTagName() == tag);
  return 0;
}

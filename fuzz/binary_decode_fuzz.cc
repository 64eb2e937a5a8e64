// Any bytes as a message in binary form: both readers, the explainer, and the writer over what came of it.

#include <zqxml/binary/binary_explainer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/ev_debug.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace zqxml {
namespace {

/// Ends the run where one answer contradicts another.
void require(bool holds) {
  if (!holds) std::abort();
}

void run(std::string_view bytes) {
  BinaryBuffer buffer;
  buffer.SetReadBuffer(bytes.data(), bytes.size(), true);
  const std::unique_ptr<XNMessageBase> made(BinarySerializer::unserialize(buffer, nullptr, false));

  std::uint64_t explained = 0;
  const bool readable = explainBinary(bytes, [&](const BinaryNote& note) {
    require(note.offset == explained || note.length == 0);
    explained = note.offset + note.length;
  });
  require(explained == bytes.size());
  require(readable == (made != nullptr));

  if (made == nullptr) return;
  // The other reader agrees, on an object that holds something already. (Class id 0 stands for the first
  // class of a subsystem, whose objects have an id of their own.)
  std::uint32_t tag = 0;
  for (int i = 3; i >= 0; --i)
    tag = tag << 8 | static_cast<unsigned char>(bytes[4 + static_cast<std::size_t>(i)]);
  const bool sameTag = made->getTagID() == tag;
  require(BinarySerializer::unserialize(*made, buffer, nullptr, false) == (sameTag ? 0 : -1));
  require(BinarySerializer::unserialize(*made, buffer, nullptr, true) == (sameTag ? 0 : -1));
  for (int version : {1, 2}) {
    BinaryBuffer form;
    require(BinarySerializer::serialize(*made, form, version) >= 8);
  }
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::EvDebug::setDebugLevel(-1);
  zqxml::run({reinterpret_cast<const char*>(data), size});
  return 0;
}

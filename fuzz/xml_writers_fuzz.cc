// Messages of any bytes, written on both roads: the text without a DOM has to be that of the DOM. The first
// byte of the input is the way of writing, the rest a message in the binary form.

#include <tests/support/xml_ways.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "fuzz/xml_fuzz_common.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zqxml;
  if (size == 0) return 0;
  EvDebug::setDebugLevel(-1);
  BinaryBuffer buffer;
  buffer.SetReadBuffer(reinterpret_cast<const char*>(data + 1), size - 1, true);
  const std::unique_ptr<XNMessageBase> message(BinarySerializer::unserialize(buffer, nullptr, false));
  if (message == nullptr) return 0;
  const WayOfWriting way(data[0]);
  fuzz::require(written(*message, way, true) == written(*message, way, false));
  return 0;
}

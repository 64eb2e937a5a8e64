// Any bytes as an object file of format A: reading it to its end, and appending behind it.

#include <fuzz/object_file_fuzz.h>

namespace zqxml {
namespace {

/// Reads to the end; the results on the way there, and the bytes of objects that were made.
XNMessageBaseFileHandlerError readAll(XNMessageBaseFileHandler& handler,
                                      std::vector<std::unique_ptr<XNMessageBase>>& made) {
  for (;;) {
    XNMessageBase* object = nullptr;
    const XNMessageBaseFileHandlerError result = handler.GetObjectFromFile(object);
    if (result != FileHandlerSuccess) {
      require(object == nullptr);
      return result;
    }
    if (object != nullptr) made.emplace_back(object);
  }
}

void run(const std::uint8_t* data, std::size_t size) {
  FuzzFile input(data, size);
  XNMessageBaseFileHandler handler(&input.file());
  std::vector<std::unique_ptr<XNMessageBase>> made;
  const XNMessageBaseFileHandlerError end = readAll(handler, made);
  require(end == FileHandlerNoData || end == FileHandlerInvalidFile);

  // What was read can be written, and is then read again.
  FuzzFile copy(nullptr, 0);
  handler.setSrcFile(&copy.file());
  std::uint64_t total = 0;
  for (const auto& object : made) {
    unsigned written = 0;
    require(handler.AddObjectToFile(*object, written) == FileHandlerSuccess && written >= 12);
    total += written;
  }
  require(copy.size() == total);

  // Appending leaves what was there.
  if (made.empty()) return;
  handler.setSrcFile(&input.file());
  unsigned written = 0;
  require(handler.AddObjectToFile(*made.front(), written) == FileHandlerSuccess);
  require(input.size() == size + written);
  input.rewind();
  std::vector<std::unique_ptr<XNMessageBase>> again;
  readAll(handler, again);
  require(again.size() >= made.size());
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::EvDebug::setDebugLevel(-1);
  zqxml::run(data, size);
  return 0;
}

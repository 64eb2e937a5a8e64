// Any bytes as an object file of format B: reading it to its end, and appending behind it.

#include <fuzz/object_file_fuzz.h>

#include <limits>

namespace zqxml {
namespace {

class Objects : public std::vector<XNMessageBase*> {
 public:
  ~Objects() {
    for (XNMessageBase* object : *this) delete object;
  }
};

void run(const std::uint8_t* data, std::size_t size) {
  FuzzFile input(data, size);
  XNMessageBaseFileHandler handler(&input.file());
  Objects made;
  const XNMessageBaseFileHandlerError end =
      handler.readBinaryBufferFromFile(made, std::numeric_limits<int>::max());
  require(end == FileHandlerNoData || (end == FileHandlerUnknownVersion && made.empty()));

  // Read one by one, there are as many.
  input.rewind();
  Objects single;
  while (handler.readBinaryBufferFromFile(single, 1) == FileHandlerSuccess) {
  }
  require(single.size() == made.size());

  // An object that fits is appended to a file of the format, and to no other.
  input.rewind();
  std::vector<XNMessageBase*> none;
  const XNMessageBaseFileHandlerError appended = handler.appendBinaryBufferToFile(none);
  require(appended == FileHandlerSuccess || appended == FileHandlerUnknownVersion);
  require((appended == FileHandlerSuccess) == (size == 0 || end == FileHandlerNoData));
  FuzzFile copy(nullptr, 0);
  handler.setSrcFile(&copy.file());
  const XNMessageBaseFileHandlerError written = handler.appendBinaryBufferToFile(made);
  require(written == FileHandlerSuccess || written == FileHandlerWriteFailed);
  if (written == FileHandlerWriteFailed) return;  // one of them is longer now than its length field can tell
  copy.rewind();
  Objects again;
  require(handler.readBinaryBufferFromFile(again, static_cast<int>(made.size())) == FileHandlerSuccess);
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::EvDebug::setDebugLevel(-1);
  zqxml::run(data, size);
  return 0;
}

// What the tests of object files share: small messages, their bytes, and files of bytes.
#pragma once

#include <gmock/gmock.h>
#include <tests/binary/binary_forms.h>
#include <tests/support/failing_file_calls.h>
#include <tests/support/log_capture.h>
#include <tests/support/scratch_folder.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/platform/file.h>

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

using MessagePtr = std::unique_ptr<XNMessageBase>;

inline App::TestMessage2 numbered(int number) {
  App::TestMessage2 message;
  message.setIntField(number);
  message.setStrField("hi");
  return message;
}
/// The number of such a message; -1 for another one, or none.
inline int numberOf(const XNMessageBase* message) {
  if (message == nullptr || message->getTagID() != App::TestMessage2::kTagId) return -1;
  return static_cast<const App::TestMessage2*>(message)->getIntField();
}

/// Bytes of the record of format A, or of format B without its version field, with this data.
inline std::string recordA(const std::string& data) {
  std::string record;
  for (int shift = 24; shift >= 0; shift -= 8) record += static_cast<char>(data.size() >> shift & 0xff);
  return record + data;
}
inline std::string recordB(const std::string& data) {
  std::string record = std::to_string(data.size());
  record.resize(4);
  return record + data;
}
inline const std::string kVersionField("1\0\0\0", 4);

class ObjectFiles : public testing::Test {
 protected:
  /// Bytes of a numbered message in binary form.
  static std::string form(int number) {
    App::TestMessage2 message = numbered(number);
    return serialized(message);
  }
  /// Opens a file with these bytes for reading and writing, at its start.
  CUlFile& open(std::string_view bytes = {}) {
    path_ = folder_.write("objects", bytes);
    EXPECT_FALSE(file_.Open(path_, CUlFile::Mode::kReadWrite).IsError());
    handler_.setSrcFile(&file_);
    return file_;
  }
  std::string bytes() const { return folder_.read("objects"); }
  static std::string textOf(int error) { return std::strerror(error); }

  /// Reads up to `count` records of format B and adds the numbers of their objects to numbers_.
  XNMessageBaseFileHandlerError readB(int count) {
    std::vector<XNMessageBase*> objects;
    const XNMessageBaseFileHandlerError result = handler_.readBinaryBufferFromFile(objects, count);
    for (XNMessageBase* object : objects) numbers_.push_back(numberOf(MessagePtr(object).get()));
    return result;
  }
  /// Reads one record of format A and adds the number of its object to numbers_.
  XNMessageBaseFileHandlerError readA() {
    XNMessageBase* object = nullptr;
    const XNMessageBaseFileHandlerError result = handler_.GetObjectFromFile(object);
    const MessagePtr owner(object);
    if (result == FileHandlerSuccess) numbers_.push_back(numberOf(object));
    return result;
  }

  ScratchFolder folder_;
  std::string path_;
  CUlFile file_;
  XNMessageBaseFileHandler handler_;
  std::vector<int> numbers_;
};

}  // namespace zqxml

#include <zqxml/platform/exception.h>

#include <utility>

namespace zqxml {

ZqException::ZqException(std::string function, std::string text, std::string file, int line, int code)
    : function_(std::move(function)),
      text_(std::move(text)),
      file_(std::move(file)),
      line_(line),
      code_(code) {}

ZqException::~ZqException() = default;

}  // namespace zqxml

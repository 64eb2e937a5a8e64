#pragma once

#include <zqxml/platform/export.h>

#include <exception>
#include <string>

namespace zqxml {

/// The exception of the few operations that do not report by a return value.
///
/// `what()` is the text. It carries no more than that and the place, so it can be copied and rethrown freely
/// between threads.
class ZQXML_EXPORT ZqException : public std::exception {
 public:
  /// `function` names the throwing operation, as log lines name it. `file` and the two numbers are free for
  /// the thrower: no file is an empty text, no number is -1.
  ZqException(std::string function, std::string text, std::string file = {}, int line = -1, int code = -1);
  /// @{
  /// Copies carry the same.
  ZqException(const ZqException&) = default;
  ZqException& operator=(const ZqException&) = default;
  /// @}
  ~ZqException() override;

  /// text() for those who know no more than std::exception.
  const char* what() const noexcept override { return text_.c_str(); }

  /// @{
  /// What the thrower gave.
  const std::string& function() const { return function_; }
  const std::string& text() const { return text_; }
  const std::string& file() const { return file_; }
  int line() const { return line_; }
  int code() const { return code_; }
  /// @}

 private:
  std::string function_;
  std::string text_;
  std::string file_;
  int line_;
  int code_;
};

}  // namespace zqxml

// bstring: value type of FDT_BSTRING, a byte string that may hold anything, NUL bytes included.
#pragma once

#include <zqxml/message/text_wrapper.h>
#include <zqxml/platform/export.h>

#include <string>
#include <utility>

namespace zqxml {

/// The value of FDT_BSTRING fields: a byte string that may hold anything, NUL bytes included. It has the
/// interface of a std::string and converts from one; str() gives the std::string that it holds.
class ZQXML_EXPORT bstring : public TextWrapper<bstring> {
 public:
  /// @{
  /// Made empty or of the bytes of a text, copied, moved and assigned as a std::string is.
  bstring() = default;
  bstring(std::string text) : TextWrapper(std::move(text)) {}
  bstring(const bstring&) = default;
  bstring(bstring&&) noexcept = default;
  ~bstring() override = default;
  bstring& operator=(const bstring&) = default;
  bstring& operator=(bstring&&) noexcept = default;
  bstring& operator=(const std::string& text) { return assign(text); }
  /// @}
};

}  // namespace zqxml

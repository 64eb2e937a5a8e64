// bstring: value type of FDT_BSTRING, a byte string that may hold anything, NUL bytes included.
#pragma once

#include <zqxml/message/text_wrapper.h>
#include <zqxml/platform/export.h>

#include <string>
#include <utility>

namespace zqxml {

class ZQXML_EXPORT bstring : public TextWrapper<bstring> {
 public:
  bstring() = default;
  bstring(std::string text) : TextWrapper(std::move(text)) {}
  bstring(const bstring&) = default;
  bstring(bstring&&) noexcept = default;
  ~bstring() override = default;
  bstring& operator=(const bstring&) = default;
  bstring& operator=(bstring&&) noexcept = default;
  bstring& operator=(const std::string& text) { return assign(text); }
};

}  // namespace zqxml

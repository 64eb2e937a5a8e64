// cdata: the raw CDATA body of a message.
#pragma once

#include <zqxml/message/text_wrapper.h>
#include <zqxml/platform/export.h>

#include <string>
#include <utility>

namespace zqxml {

/// A bstring's sibling with a flag "was set" that only the owning message reads and writes: neither
/// construction from a text nor assignment nor clear touches it, and a copy starts with the flag down.
class ZQXML_EXPORT cdata : public TextWrapper<cdata> {
 public:
  /// @{
  /// Made empty or of a text, copied and assigned as a std::string is, the flag apart.
  cdata() = default;
  cdata(std::string text) : TextWrapper(std::move(text)) {}
  cdata(const cdata& other) : TextWrapper(other) {}
  ~cdata() override = default;
  cdata& operator=(const cdata& other) { return assign(other); }
  cdata& operator=(const std::string& text) { return assign(text); }
  /// @}

 private:
  friend class XNMessageBase;
  bool set_ = false;
};

}  // namespace zqxml

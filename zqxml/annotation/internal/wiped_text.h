// Texts with passwords in them that are overwritten when they go.
#pragma once

#include <zqxml/platform/secure_string.h>

#include <string>

namespace zqxml {

/// Overwrites, at the end of the scope, what a text then holds.
class WipeAtExit {
 public:
  explicit WipeAtExit(std::string& text) : text_(text) {}
  ~WipeAtExit() { cleanse(text_.data(), text_.size()); }
  WipeAtExit(const WipeAtExit&) = delete;
  WipeAtExit& operator=(const WipeAtExit&) = delete;

 private:
  std::string& text_;
};

/// Gives `text` the content of `fresh` and overwrites what it held.
inline void replaceWiping(std::string& text, std::string& fresh) {
  const WipeAtExit wipe(fresh);
  text.swap(fresh);
}

}  // namespace zqxml

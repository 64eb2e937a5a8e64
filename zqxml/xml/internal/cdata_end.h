// The end mark of a CDATA section inside a text that goes into one. Not installed.
#pragma once

#include <cstddef>
#include <string>

namespace zqxml {

/// Replaces every "]]>" by "]]]]>>", narrow or wide. QUIRK: the reader does not undo it, and the result still
/// has the mark in its midst; the form requires it so. The search goes on behind each replacement.
template <class Char>
void escapeCDATAEnd(std::basic_string<Char>& text) {
  static constexpr Char kEnd[] = {']', ']', '>'};
  static constexpr Char kReplacement[] = {']', ']', ']', ']', '>', '>'};
  for (std::size_t at = text.find(kEnd, 0, 3); at != text.npos; at = text.find(kEnd, at + 6, 3))
    text.replace(at, 3, kReplacement, 6);
}

}  // namespace zqxml

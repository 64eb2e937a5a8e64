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
  std::size_t at = text.find(kEnd, 0, 3);
  if (at == text.npos) return;
  std::basic_string<Char> escaped;
  std::size_t done = 0;
  for (; at != text.npos; at = text.find(kEnd, done, 3)) {
    escaped.append(text, done, at - done).append(kReplacement, 6);
    done = at + 3;
  }
  text = escaped.append(text, done);
}

}  // namespace zqxml

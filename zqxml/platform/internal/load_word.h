// Words read from bytes at any place. Not installed.
#pragma once

#include <cstring>

namespace zqxml::internal {

/// The Word whose bytes stand there, wherever that is. REQUIRES: so many bytes can be read.
template <class Word>
Word loadWord(const char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

}  // namespace zqxml::internal

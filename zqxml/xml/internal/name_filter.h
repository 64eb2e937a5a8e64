// Which names a tag has had. Not installed.
#pragma once

#include <array>
#include <cstdint>
#include <utility>

namespace zqxml {

/// A set of names by their hashes that never misses one, and now and then takes a name for one that it has.
class NameFilter {
 public:
  /// False when the hash is new for sure. Notes it.
  bool mayHave(std::uint32_t hash) {
    std::uint64_t& word = words_[hash / 64 % words_.size()];
    const std::uint64_t bit = std::uint64_t{1} << hash % 64;
    return (std::exchange(word, word | bit) & bit) != 0;
  }

 private:
  std::array<std::uint64_t, 4> words_{};
};

}  // namespace zqxml

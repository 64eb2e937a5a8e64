#include "name_typos.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace zqxml::zqcatc {

namespace {

/// Code points; what is no UTF-8 comes out as some number of them.
std::u32string charactersOf(const std::string& name) {
  std::u32string characters;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xc0) == 0x80 && !characters.empty())
      characters.back() = characters.back() << 6 | (byte & 0x3f);
    else
      characters += byte;
  }
  return characters;
}

/// Hashes of a text and of the text without any one character, each in one step.
class TextHash {
 public:
  explicit TextHash(const std::u32string& text)
      : before_(text.size() + 1), behind_(text.size() + 1), power_(text.size() + 1, 1) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      before_[i + 1] = before_[i] * kBase + text[i] + 1;
      power_[i + 1] = power_[i] * kBase;
    }
    for (std::size_t i = text.size(); i-- > 0;)
      behind_[i] = behind_[i + 1] + (text[i] + std::uint64_t{1}) * power_[text.size() - 1 - i];
  }
  std::uint64_t whole() const { return before_.back(); }
  std::uint64_t without(std::size_t position) const {
    const std::size_t size = before_.size() - 1;
    return before_[position] * power_[size - 1 - position] + behind_[position + 1];
  }

 private:
  static constexpr std::uint64_t kBase = 0x9e3779b97f4a7c15;
  // Arithmetic is modulo 2^64: what has one hash is compared before it counts.
  std::vector<std::uint64_t> before_;
  std::vector<std::uint64_t> behind_;
  std::vector<std::uint64_t> power_;
};

bool isDigit(char32_t character) {
  return character >= U'0' && character <= U'9';
}

/// Whether one typing error, not one of digits, lies between the two.
bool isTypo(const std::u32string& one, const std::u32string& other) {
  const std::u32string& longer = one.size() < other.size() ? other : one;
  const std::u32string& shorter = one.size() < other.size() ? one : other;
  const std::size_t more = longer.size() - shorter.size();
  if (longer.size() < 3 || more > 1) return false;
  const auto [at, unused] = std::mismatch(longer.begin(), longer.end(), shorter.begin(), shorter.end());
  if (at == longer.end()) return false;
  const auto position = static_cast<std::size_t>(at - longer.begin());
  const bool inserted = more == 1;
  if (longer.compare(position + 1, std::u32string::npos, shorter, position + (inserted ? 0 : 1)) != 0)
    return false;
  return !isDigit(longer[position]) || (!inserted && !isDigit(shorter[position]));
}

/// Where names were seen: by hash, and by what the hash is of.
using Seen = std::unordered_map<std::uint64_t, std::size_t>;

std::uint64_t placed(std::uint64_t hash, std::size_t position) {
  return hash ^ (position + 1) * 0xbf58476d1ce4e5b9;
}

}  // namespace

std::vector<std::pair<std::size_t, std::size_t>> findNameTypos(const std::vector<std::string>& names) {
  std::vector<std::u32string> texts;
  texts.reserve(names.size());
  Seen whole;      // names
  Seen shortened;  // names without one character
  Seen gapped;     // names without the character at one position
  std::vector<std::pair<std::size_t, std::size_t>> found;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::u32string& text = texts.emplace_back(charactersOf(names[i]));
    const TextHash hash(text);
    std::size_t other = i;
    const auto consider = [&](const Seen& seen, std::uint64_t key) {
      const auto entry = seen.find(key);
      if (other == i && entry != seen.end() && isTypo(text, texts[entry->second])) other = entry->second;
    };
    consider(shortened, hash.whole());
    for (std::size_t at = 0; at < text.size(); ++at) {
      consider(whole, hash.without(at));
      consider(gapped, placed(hash.without(at), at));
    }
    if (other != i) found.emplace_back(i, other);
    whole.try_emplace(hash.whole(), i);
    for (std::size_t at = 0; at < text.size(); ++at) {
      shortened.try_emplace(hash.without(at), i);
      gapped.try_emplace(placed(hash.without(at), at), i);
    }
  }
  return found;
}

}  // namespace zqxml::zqcatc

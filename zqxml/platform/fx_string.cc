#include <zqxml/platform/fx_string.h>

#include <algorithm>
#include <limits>

namespace zqxml {

int FXString::ReplaceAllByMatchingLeftAndRight(std::string& text, std::string_view left,
                                               std::string_view right, std::string_view replacement,
                                               std::size_t start) {
  if (left.empty() || right.empty()) return 0;
  std::string replaced;
  std::size_t copied = 0;  // bytes of `text` that are in `replaced`, or have been replaced there
  std::size_t count = 0;
  for (std::size_t at = start; (at = text.find(left, at)) != std::string::npos; ++count) {
    const std::size_t stretch = at + left.size();
    const std::size_t end = text.find(right, stretch);
    if (end == std::string::npos) break;
    if (count == 0) replaced.reserve(text.size());
    replaced.append(text, copied, stretch - copied).append(replacement);
    copied = end;
    at = end + right.size();
  }
  if (count == 0) return 0;
  replaced.append(text, copied);
  text.swap(replaced);
  return static_cast<int>(std::min<std::size_t>(count, std::numeric_limits<int>::max()));
}

}  // namespace zqxml

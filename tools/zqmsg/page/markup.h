#pragma once

#include <string>
#include <string_view>

namespace zqxml::tool {

/// Text as the content of an HTML element or of a quoted attribute: nothing in it is mark-up. Line feeds and
/// tabs stay, other control characters and bytes that are no UTF-8 become \xNN.
std::string htmlText(std::string_view text);

}  // namespace zqxml::tool

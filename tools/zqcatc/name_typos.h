// Names that one typing error turns into each other.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zqxml::zqcatc {

/// For each name that is one character put in, left out or put in place of another away from an earlier one:
/// its position and that of an earlier such name. Names that differ in a digit alone are meant to, and names
/// of one or two letters are too short to tell: both are passed over. Takes time and memory in proportion to
/// the length of all names. Names are UTF-8.
std::vector<std::pair<std::size_t, std::size_t>> findNameTypos(const std::vector<std::string>& names);

}  // namespace zqxml::zqcatc

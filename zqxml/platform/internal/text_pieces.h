#pragma once

#include <cstddef>

namespace zqxml::internal {

/// appendUtf8 and appendUtf16 without their short way for ASCII, `largest` units (4 or more) at a time. What
/// the pieces are does not show in the result; it is a parameter so that this can be tested without
/// gigabytes.
template <typename Out, typename View>
void appendInPieces(Out& out, View text, std::size_t largest);

}  // namespace zqxml::internal

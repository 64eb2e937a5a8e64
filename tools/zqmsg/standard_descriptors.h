#pragma once

namespace zqxml::tool {

/// Takes the places of standard input, output and error that the program was started without, before another
/// file does: what is told to people would be written into it. Reading and writing there goes on failing.
void occupyStandardDescriptors();

}  // namespace zqxml::tool

#pragma once

#include <zqxml/message/xn_message_base.h>

#include <string>

#include "tools/zqmsg/codec.h"

namespace zqxml::tool {

struct Session;

/// Reads back what `original` became in the form of `options`, and tells each field that did not survive, on
/// standard error: its path and both values, hidden by the masks. Then the session's status is kDifferent,
/// unless something failed before. `where` is what messages call the input.
void verify(const XNMessageBase& original, const std::string& bytes, const WriteOptions& options,
            const std::string& where, Session& session);

}  // namespace zqxml::tool

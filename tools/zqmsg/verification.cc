#include "tools/zqmsg/verification.h"

#include "tools/zqmsg/message_diff.h"
#include "tools/zqmsg/session.h"

namespace zqxml::tool {

void verify(const XNMessageBase& original, const std::string& bytes, const WriteOptions& options,
            const std::string& where, Session& session) {
  bool survived = true;
  try {
    const MessagePtr back = decode(options.form, bytes, where, session.log, true);
    MessageDiff difference(
        [&](const std::string& path, const std::string& before, const std::string& after) {
          session.console.tell(where, path + " did not survive: " + before + " != " + after);
        },
        options.masks);
    difference.compare("", original, *back);
    survived = difference.count() == 0;
  } catch (const Failure& failure) {
    session.console.tell(where, std::string("what was written cannot be read again: ") + failure.what());
    survived = false;
  }
  session.log.take();
  if (!survived && session.status == kDone) session.status = kDifferent;
}

}  // namespace zqxml::tool

#pragma once

#include <cstdint>

#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/output.h"
#include "tools/zqmsg/session.h"

namespace zqxml::tool {

/// Steps of which one that fails does not stop the others: inputs, and the messages in them. The session has
/// the status of the first failure.
class Attempts {
 public:
  explicit Attempts(Session& session) : session_(session) {}

  /// Runs `step`; false when it failed, which is reported then. What fails because of the target ends the
  /// run: it is thrown on.
  template <class Step>
  bool attempt(Step step) {
    try {
      step();
      return true;
    } catch (const TargetFailure&) {
      throw;
    } catch (const Failure& failure) {
      session_.console.report(failure);
      session_.log.take();
      if (failures_++ == 0) session_.status = failure.status();
      return false;
    }
  }
  std::uint64_t failures() const { return failures_; }

 private:
  Session& session_;
  std::uint64_t failures_ = 0;
};

/// Runs `step`, which writes to `output`. What it could write is written out, whatever happens then.
template <class Step>
void writeAsFarAsItGoes(Output& output, Session& session, Step step) {
  try {
    step();
  } catch (const Failure&) {
    session.console.endProgress();
    output.commit();
    throw;
  }
  session.console.endProgress();
  output.commit();
}

}  // namespace zqxml::tool

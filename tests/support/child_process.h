// What only a process of its own can try.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace zqxml {

/// Whether what a child of this process checks holds. The child ends without leaving `check`'s caller.
template <class Check>
bool holdsInChild(Check check) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(check() ? 0 : 1);
  int status = -1;
  return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace zqxml

#include "tools/zqmsg/interruption.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <climits>
#include <cstring>

namespace zqxml::tool {
namespace {

constexpr int kInterruptions[] = {SIGINT, SIGTERM, SIGHUP};

// What the handler may read: a signal can come at any instruction.
std::array<char, PATH_MAX> pathToRemove;
std::atomic<bool> armed{false};

extern "C" void removeAndDie(int signalNumber) {
  if (armed.load()) unlink(pathToRemove.data());
  // The handler was taken off on entry (SA_RESETHAND): the second one ends the process as if it had not been.
  raise(signalNumber);
}

void installHandlers() {
  for (int signalNumber : kInterruptions) {
    struct sigaction present = {};
    if (sigaction(signalNumber, nullptr, &present) != 0 || present.sa_handler != SIG_DFL) continue;
    struct sigaction action = {};
    action.sa_handler = &removeAndDie;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    sigemptyset(&action.sa_mask);
    sigaction(signalNumber, &action, nullptr);
  }
}

}  // namespace

InterruptionsHeld::InterruptionsHeld() {
  sigset_t held;
  sigemptyset(&held);
  for (int signalNumber : kInterruptions) sigaddset(&held, signalNumber);
  sigprocmask(SIG_BLOCK, &held, &before_);
}

InterruptionsHeld::~InterruptionsHeld() {
  sigprocmask(SIG_SETMASK, &before_, nullptr);
}

void RemovedOnInterruption::remember(const std::string& path) {
  forget();
  if (path.empty() || path.size() >= pathToRemove.size()) return;
  std::memcpy(pathToRemove.data(), path.c_str(), path.size() + 1);
  armed.store(true);
  installHandlers();
}

void RemovedOnInterruption::forget() {
  armed.store(false);
}

}  // namespace zqxml::tool

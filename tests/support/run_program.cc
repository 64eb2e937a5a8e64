#include "tests/support/run_program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstddef>

namespace zqxml {
namespace {

constexpr auto kMostTime = std::chrono::minutes(2);

struct Pipe {
  std::array<int, 2> ends{-1, -1};
  explicit Pipe(bool terminal = false) {
    if (terminal) {
      if (openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) != 0) ends = {-1, -1};
    } else if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      ends = {-1, -1};
    }
  }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void closeEnd(std::size_t i) {
    if (ends[i] >= 0) close(ends[i]);
    ends[i] = -1;
  }
};

// In the child, after fork: only what is safe there.
[[noreturn]] void become(std::vector<char*>& arguments, const ProgramSetup& setup, const Pipe& in,
                         const Pipe& out, const Pipe& err) {
  const int full = setup.fullOutput ? open("/dev/full", O_WRONLY) : out.ends[1];
  if (dup2(in.ends[0], 0) < 0 || dup2(full, 1) < 0 || dup2(err.ends[1], 2) < 0) _exit(127);
  if (!setup.folder.empty() && chdir(setup.folder.c_str()) != 0) _exit(127);
  for (const std::string& variable : setup.environment) {
    const std::size_t equals = variable.find('=');
    if (equals == std::string::npos) {
      unsetenv(variable.c_str());
    } else {
      setenv(variable.substr(0, equals).c_str(), variable.c_str() + equals + 1, 1);
    }
  }
  execv(arguments[0], arguments.data());
  _exit(127);
}

// Feeds the input and collects both outputs until they are closed; false when the time is over.
bool exchange(const std::string& input, Pipe& in, Pipe& out, Pipe& err, ProgramRun& run) {
  const auto end = std::chrono::steady_clock::now() + kMostTime;
  std::size_t fed = 0;
  if (input.empty()) in.closeEnd(1);
  while (out.ends[0] >= 0 || err.ends[0] >= 0) {
    std::array<pollfd, 3> waits{pollfd{in.ends[1], POLLOUT, 0}, pollfd{out.ends[0], POLLIN, 0},
                                pollfd{err.ends[0], POLLIN, 0}};
    if (poll(waits.data(), waits.size(), 1000) < 0) return false;
    if (std::chrono::steady_clock::now() > end) return false;
    if (waits[0].revents != 0) {
      const ssize_t written = write(in.ends[1], input.data() + fed, input.size() - fed);
      if (written > 0) fed += static_cast<std::size_t>(written);
      if (written < 0 || fed == input.size()) in.closeEnd(1);
    }
    const auto collect = [&waits](std::size_t i, Pipe& from, std::string& text) {
      if (waits[i].revents == 0) return;
      std::array<char, 65536> block;
      const ssize_t arrived = read(from.ends[0], block.data(), block.size());
      if (arrived > 0) {
        text.append(block.data(), static_cast<std::size_t>(arrived));
      } else {
        from.closeEnd(0);
      }
    };
    collect(1, out, run.out);
    collect(2, err, run.err);
  }
  return true;
}

}  // namespace

ProgramRun runProgram(const std::vector<std::string>& command, const ProgramSetup& setup) {
  ProgramRun run;
  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  Pipe in, out;
  Pipe err(setup.errorTerminal);
  // A program that does not read its input must not end the test.
  signal(SIGPIPE, SIG_IGN);
  const pid_t child = fork();
  if (child < 0) return run;
  if (child == 0) {
    signal(SIGPIPE, SIG_DFL);
    become(arguments, setup, in, out, err);
  }
  in.closeEnd(0);
  out.closeEnd(1);
  err.closeEnd(1);
  fcntl(in.ends[1], F_SETFL, O_NONBLOCK);
  if (!exchange(setup.input, in, out, err, run)) kill(child, SIGKILL);
  int status = 0;
  rusage usage = {};
  if (wait4(child, &status, 0, &usage) != child) return run;
  run.peakMemory = usage.ru_maxrss;
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return run;
}

}  // namespace zqxml

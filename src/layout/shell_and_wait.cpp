#include "layout/shell_and_wait.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>
#include <thread>

extern char** environ;

namespace sylvora {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// posix_spawn attributes and file actions, released on every path out.
class SpawnSetup {
 public:
  SpawnSetup() {
    attrOk_ = posix_spawnattr_init(&attr_) == 0;
    actionsOk_ = posix_spawn_file_actions_init(&actions_) == 0;
  }
  ~SpawnSetup() {
    if (attrOk_) posix_spawnattr_destroy(&attr_);
    if (actionsOk_) posix_spawn_file_actions_destroy(&actions_);
  }
  SpawnSetup(const SpawnSetup&) = delete;
  SpawnSetup& operator=(const SpawnSetup&) = delete;

  // Own process group (so that a time-out can stop the program's children too), default
  // signal mask, stdin and stdout on /dev/null, stderr on /dev/null or the given file.
  bool Prepare(const std::string& errorPath) {
    if (!attrOk_ || !actionsOk_) return false;
    sigset_t none;
    sigemptyset(&none);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    sigaddset(&defaults, SIGINT);
    sigaddset(&defaults, SIGTERM);
    short flags = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    if (posix_spawnattr_setflags(&attr_, flags) != 0) return false;
    if (posix_spawnattr_setpgroup(&attr_, 0) != 0) return false;
    if (posix_spawnattr_setsigmask(&attr_, &none) != 0) return false;
    if (posix_spawnattr_setsigdefault(&attr_, &defaults) != 0) return false;
    if (posix_spawn_file_actions_addopen(&actions_, 0, "/dev/null", O_RDONLY, 0) != 0) return false;
    if (posix_spawn_file_actions_addopen(&actions_, 1, "/dev/null", O_WRONLY, 0) != 0) return false;
    const char* error = errorPath.empty() ? "/dev/null" : errorPath.c_str();
    return posix_spawn_file_actions_addopen(&actions_, 2, error, O_WRONLY | O_CREAT | O_TRUNC,
                                            0600) == 0;
  }

  const posix_spawnattr_t* Attributes() const { return &attr_; }
  const posix_spawn_file_actions_t* Actions() const { return &actions_; }

 private:
  posix_spawnattr_t attr_{};
  posix_spawn_file_actions_t actions_{};
  bool attrOk_ = false;
  bool actionsOk_ = false;
};

enum class SliceEnd { kEnded, kTimedOut, kFailed };

// Reaps `pid` if it has ended.
std::optional<SliceEnd> Reap(pid_t pid, int& exitCode) {
  for (;;) {
    int status = 0;
    const pid_t got = ::waitpid(pid, &status, WNOHANG);
    if (got == pid) {
      if (WIFEXITED(status)) exitCode = WEXITSTATUS(status);
      if (WIFSIGNALED(status)) exitCode = 128 + WTERMSIG(status);
      return SliceEnd::kEnded;
    }
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return SliceEnd::kFailed;
    return std::nullopt;
  }
}

// Waits up to one slice for `pid` to end. With a process descriptor the wait wakes the moment
// the program ends; without one (an old kernel) it polls with growing naps (1 ms .. 20 ms), so
// that a quick program is still noticed quickly and a slow one costs little.
SliceEnd WaitSlice(pid_t pid, int pidDescriptor, std::int32_t sliceMs, int& exitCode) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::milliseconds(sliceMs);
  auto nap = std::chrono::milliseconds(1);
  for (;;) {
    if (const auto ended = Reap(pid, exitCode)) return *ended;
    const auto now = Clock::now();
    if (now >= end) return SliceEnd::kTimedOut;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - now);
    if (pidDescriptor >= 0) {
      pollfd watch{pidDescriptor, POLLIN, 0};
      ::poll(&watch, 1, static_cast<int>(left.count()));
      continue;
    }
    std::this_thread::sleep_for(std::min<Clock::duration>(nap, left));
    nap = std::min(nap * 2, std::chrono::milliseconds(20));
  }
}

// A descriptor that becomes readable when the process ends, or -1 where the kernel has none.
class ProcessDescriptor {
 public:
  explicit ProcessDescriptor(pid_t pid)
      : fd_(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))) {}
  ~ProcessDescriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  ProcessDescriptor(const ProcessDescriptor&) = delete;
  ProcessDescriptor& operator=(const ProcessDescriptor&) = delete;
  int Get() const { return fd_; }

 private:
  int fd_;
};

// Stops the program and everything it started, then reaps it.
void KillAndReap(pid_t pid) {
  ::kill(-pid, SIGKILL);
  ::kill(pid, SIGKILL);
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace

std::vector<std::string> SplitCommandLine(std::string_view commandLine) {
  std::vector<std::string> arguments;
  std::string current;
  bool inArgument = false;
  bool quoted = false;
  for (const char c : commandLine) {
    if (c == '"') {
      quoted = !quoted;
      inArgument = true;
      continue;
    }
    if (!quoted && IsBlank(c)) {
      if (inArgument) arguments.push_back(std::move(current));
      current.clear();
      inArgument = false;
      continue;
    }
    current.push_back(c);
    inArgument = true;
  }
  if (inArgument) arguments.push_back(std::move(current));
  return arguments;
}

std::int32_t ShellAndWait(std::string_view commandLine, std::int32_t timeLimitMs,
                          std::int32_t windowStyle, std::int32_t breakOption,
                          const ProgressCallback& progress, std::int32_t sliceMs) {
  ShellOutcome outcome;
  return ShellAndWait(commandLine, timeLimitMs, windowStyle, breakOption, progress, {}, outcome,
                      sliceMs);
}

std::int32_t ShellAndWait(std::string_view commandLine, std::int32_t timeLimitMs,
                          std::int32_t windowStyle, std::int32_t breakOption,
                          const ProgressCallback& progress, const std::string& errorPath,
                          ShellOutcome& outcome, std::int32_t sliceMs) {
  outcome = ShellOutcome();
  const auto first = commandLine.find_first_not_of(' ');
  if (first == std::string_view::npos || timeLimitMs < 0 || sliceMs < 1) {
    return kShellInvalidArgument;
  }
  if (breakOption < 0 || breakOption > 2) return kShellInvalidArgument;
  if (windowStyle < 0 || windowStyle == 5 || windowStyle > 6) return kShellInvalidArgument;

  std::vector<std::string> arguments = SplitCommandLine(commandLine);
  if (arguments.empty() || arguments.front().empty()) return kShellNotStarted;
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (auto& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);

  SpawnSetup setup;
  if (!setup.Prepare(errorPath)) return kShellNotStarted;
  pid_t pid = 0;
  const bool searchPath = arguments.front().find('/') == std::string::npos;
  const int spawned =
      searchPath
          ? ::posix_spawnp(&pid, argv[0], setup.Actions(), setup.Attributes(), argv.data(), environ)
          : ::posix_spawn(&pid, argv[0], setup.Actions(), setup.Attributes(), argv.data(), environ);
  if (spawned != 0 || pid <= 0) return kShellNotStarted;

  const ProcessDescriptor pidDescriptor(pid);
  std::int64_t elapsed = 0;
  for (;;) {
    const SliceEnd slice = WaitSlice(pid, pidDescriptor.Get(), sliceMs, outcome.exitCode);
    if (slice == SliceEnd::kEnded || slice == SliceEnd::kFailed) return kShellEnded;
    if (progress && !progress("Waiting for Graphviz", elapsed, timeLimitMs)) {
      KillAndReap(pid);
      return kShellAbandoned;
    }
    elapsed += sliceMs;
    if (timeLimitMs > 0 && elapsed > timeLimitMs) {
      KillAndReap(pid);
      return kShellTimedOut;
    }
  }
}

}  // namespace sylvora

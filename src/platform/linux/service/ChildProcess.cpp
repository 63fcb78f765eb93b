#include "platform/linux/service/ChildProcess.h"

#include "platform/linux/Descriptor.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace ventolith::platform {

namespace {

[[noreturn]] void fail(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
}

/// All signals wait for as long as this lives, so that none meets this process's handlers in a child of it.
class SignalsHeld {
public:
  SignalsHeld() {
    sigset_t all{};
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;
  ~SignalsHeld() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
  sigset_t before_{};
};

void restoreSignals() {
  for (int number = 1; number < NSIG; ++number)
    ::signal(number, SIG_DFL);
  sigset_t none{};
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

void redirectStreams() {
  const int nothing = ::open("/dev/null", O_RDWR);
  ::dup2(nothing, STDIN_FILENO);
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
  // Only the streams are the child's; the end for `report` closes itself as well, when the program takes
  // over.
  ::syscall(SYS_close_range, 3U, ~0U, CLOSE_RANGE_CLOEXEC);
}

/// Strings as a new program takes them: by pointers that end with a null.
std::vector<char*> pointersTo(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& string : strings)
    pointers.push_back(string.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// Runs in the child, where nothing may be allocated, and tells `report` what went wrong.
[[noreturn]] void become(char* const* arguments, char* const* environment, pid_t parent, int report) {
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != parent) ::_exit(1); // It was gone before its end could be told.
  redirectStreams();
  restoreSignals();
  ::execve(arguments[0], arguments, environment);
  const int error = errno;
  static_cast<void>(::write(report, &error, sizeof error) == 0);
  ::_exit(127);
}

/// What the child reports; none when its program took over.
int errorReported(int report) {
  int error = 0;
  ssize_t count = 0;
  do {
    count = ::read(report, &error, sizeof error);
  } while (count < 0 && errno == EINTR);
  return count == ssize_t{sizeof error} ? error : 0;
}

int reap(pid_t process) {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

pid_t start(ChildProcess::Launch launch) {
  const std::string program = launch.arguments.at(0);
  const std::vector<char*> arguments = pointersTo(launch.arguments);
  const std::vector<char*> environment = pointersTo(launch.environment);
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) fail(errno, program);
  const Descriptor report(ends[0]);
  Descriptor childsEnd(ends[1]);

  const pid_t parent = ::getpid();
  const pid_t process = [&] {
    const SignalsHeld held;
    const pid_t forked = ::fork();
    if (forked == 0) become(arguments.data(), environment.data(), parent, childsEnd.get());
    return forked;
  }();
  if (process < 0) fail(errno, program);

  childsEnd = Descriptor(-1);
  const int error = errorReported(report.get());
  if (error == 0) return process;
  static_cast<void>(reap(process));
  fail(error, program);
}

int handleOf(pid_t process) {
  const long handle = ::syscall(SYS_pidfd_open, process, 0U);
  if (handle >= 0) return static_cast<int>(handle);
  const int error = errno;
  ::kill(process, SIGKILL);
  static_cast<void>(reap(process));
  fail(error, "pidfd_open");
}

std::string endOf(int status) {
  return WIFSIGNALED(status) ? fmt::format("was ended by signal {}", WTERMSIG(status))
                             : fmt::format("ended with status {}", WEXITSTATUS(status));
}

} // namespace

ChildProcess::ChildProcess(const runtime::Executor& executor, Launch launch)
    : process_(start(std::move(launch))), handle_(executor, handleOf(process_)) {}

ChildProcess::~ChildProcess() {
  signal(SIGTERM);
  if (!isReaped_) ::waitpid(process_, nullptr, WNOHANG);
}

void ChildProcess::signal(int number) const {
  // The number of a child that was not reaped is nobody else's.
  if (!isReaped_) ::kill(process_, number);
}

runtime::Async<std::string> ChildProcess::ended() {
  co_await handle_.async_wait(boost::asio::posix::stream_descriptor::wait_read, boost::asio::use_awaitable);
  isReaped_ = true;
  co_return endOf(reap(process_));
}

} // namespace ventolith::platform

#include "platform/linux/desktop/OpenURL.h"

#include "platform/linux/service/ErrorLine.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>
#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>

namespace ventolith::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestURL = 8192;

bool isWebAddress(const std::string& text) {
  if (text.size() > longestURL) return false;
  const auto url = boost::urls::parse_uri(text);
  if (!url) return false;
  const auto scheme = url->scheme_id();
  if (scheme != boost::urls::scheme::http && scheme != boost::urls::scheme::https) return false;
  // Boost 1.81 takes the rest of "user@localhost@elsewhere", which is no authority, for a path.
  const auto path = url->encoded_path();
  return !url->encoded_host().empty() && (path.empty() || path.starts_with('/'));
}

/// None where no absolute folder of PATH has it: what lies where the user happens to be is not run.
std::optional<fs::path> findProgram(const char* name) {
  const char* const folders = std::getenv("PATH");
  std::istringstream list(folders == nullptr ? "/usr/local/bin:/usr/bin:/bin" : folders);
  for (std::string folder; std::getline(list, folder, ':');) {
    const fs::path file = fs::path(folder) / name;
    std::error_code ignored;
    if (file.is_absolute() && fs::is_regular_file(file, ignored) && ::access(file.c_str(), X_OK) == 0)
      return file;
  }
  return std::nullopt;
}

/// Runs in a child, where nothing may be allocated: signals and files as if a session had started it.
[[noreturn]] void become(const char* program, char* const* arguments) {
  for (int number = 1; number < NSIG; ++number)
    ::signal(number, SIG_DFL);
  sigset_t none{};
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  const int nothing = ::open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    ::dup2(nothing, stream);
  ::syscall(SYS_close_range, 3U, ~0U, CLOSE_RANGE_CLOEXEC);
  ::execv(program, arguments);
  ::_exit(127);
}

/// As the child of a child that ends at once, so that it is the system that takes note of its end.
bool startApart(const char* program, char* const* arguments) {
  // Held, so that none meets this process's handlers in a child of it.
  sigset_t all{};
  sigset_t before{};
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  const pid_t between = ::fork();
  if (between == 0) {
    ::setsid(); // What ends at the terminal leaves the browser alone.
    const pid_t process = ::fork();
    if (process == 0) become(program, arguments);
    ::_exit(process < 0 ? 1 : 0);
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  if (between < 0) return false;
  int status = 0;
  while (::waitpid(between, &status, 0) < 0) {
    if (errno != EINTR) return true; // Somebody else took note of it, and it has done its work.
  }
  return status == 0;
}

} // namespace

void openURL(const std::string& url) {
  // Not quoted: it may be anything, and standard error may be a terminal.
  if (!isWebAddress(url)) return sayOnStandardError("a page was not opened: it has no web address");
  const auto program = findProgram("xdg-open");
  if (!program) return sayOnStandardError("xdg-open is not installed; the page is " + url);
  std::string name = program->string();
  std::string address = url;
  const std::array<char*, 3> arguments{name.data(), address.data(), nullptr};
  if (!startApart(program->c_str(), arguments.data()))
    sayOnStandardError("xdg-open cannot be started; the page is " + url);
}

} // namespace ventolith::platform

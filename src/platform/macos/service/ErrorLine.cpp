#include "platform/macos/service/ErrorLine.h"

#include <os/log.h>
#include <sys/select.h>
#include <unistd.h>

#include <climits>
#include <cstddef>

namespace ventolith::platform {

namespace {

/// A pipe that is ready takes as much without waiting.
constexpr std::size_t longestLine = PIPE_BUF;

/// By select, since poll knows no devices here, which terminals are.
bool isStandardErrorReady() {
  fd_set ready;
  FD_ZERO(&ready);
  FD_SET(STDERR_FILENO, &ready);
  timeval now = {.tv_sec = 0, .tv_usec = 0};
  return ::select(STDERR_FILENO + 1, nullptr, &ready, nullptr, &now) == 1;
}

void sayInLog(const std::string& text) {
  static const os_log_t log = ::os_log_create("com.ventolith", "general");
  os_log(log, "%{public}s", text.c_str());
}

} // namespace

void sayOnStandardError(std::string text) {
  sayInLog(text);
  if (!isStandardErrorReady()) return;
  if (text.size() >= longestLine) text.resize(longestLine - 1);
  text += '\n';
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace ventolith::platform

#include "platform/linux/service/ErrorLine.h"

#include <climits>
#include <cstddef>
#include <poll.h>
#include <unistd.h>

namespace ventolith::platform {

namespace {

/// A pipe that is ready takes as much without waiting.
constexpr std::size_t longestLine = PIPE_BUF;

} // namespace

void sayOnStandardError(std::string text) {
  pollfd standardError = {.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
  if (::poll(&standardError, 1, 0) != 1 || (standardError.revents & POLLOUT) == 0) return;
  if (text.size() >= longestLine) text.resize(longestLine - 1);
  text += '\n';
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace ventolith::platform

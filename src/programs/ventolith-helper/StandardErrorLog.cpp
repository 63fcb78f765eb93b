#include "programs/ventolith-helper/StandardErrorLog.h"

#include <fmt/format.h>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ventolith::programs {

bool isStandardErrorTheJournal(const Environment& environment) {
  struct stat file = {};
  if (::fstat(STDERR_FILENO, &file) != 0) return false;
  return environment("JOURNAL_STREAM") == fmt::format("{}:{}", file.st_dev, file.st_ino);
}

void StandardErrorLog::write(const char* priority, const std::string& line) const {
  pollfd standardError = {.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
  if (::poll(&standardError, 1, 0) != 1) return;
  const std::string text = fmt::format("{}ventolith-helper: {}\n", isJournal_ ? priority : "", line);
  static_cast<void>(::write(STDERR_FILENO, text.data(), text.size()));
}

} // namespace ventolith::programs

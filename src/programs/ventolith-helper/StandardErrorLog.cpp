#include "programs/ventolith-helper/StandardErrorLog.h"

#include "platform/system/service/ErrorLine.h"

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

namespace ventolith::programs {

bool isStandardErrorTheJournal(const Environment& environment) {
  struct stat file = {};
  if (::fstat(STDERR_FILENO, &file) != 0) return false;
  return environment("JOURNAL_STREAM") == fmt::format("{}:{}", file.st_dev, file.st_ino);
}

void StandardErrorLog::write(const char* priority, const std::string& line) const {
  platform::sayOnStandardError(fmt::format("{}ventolith-helper: {}", isJournal_ ? priority : "", line));
}

} // namespace ventolith::programs

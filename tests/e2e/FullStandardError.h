// Standard error on a disk that is full.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>

namespace ventolith::e2e {

/// Every write to standard error fails while this lives.
class FullStandardError {
public:
  FullStandardError() : before_(::dup(STDERR_FILENO)) {
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    if (before_ < 0 || full < 0 || ::dup2(full, STDERR_FILENO) < 0)
      throw std::runtime_error("standard error cannot be led to /dev/full");
    ::close(full);
  }
  FullStandardError(const FullStandardError&) = delete;
  FullStandardError& operator=(const FullStandardError&) = delete;
  ~FullStandardError() {
    ::dup2(before_, STDERR_FILENO);
    ::close(before_);
  }

private:
  int before_;
};

} // namespace ventolith::e2e

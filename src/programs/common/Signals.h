// What a program was started with, as far as signals go.
#pragma once

#include <csignal>

namespace ventolith::programs {

/// Whether whoever started this program had it ignore the signal, as nohup does with SIGHUP.
[[nodiscard]] inline bool isIgnored(int signal) {
  struct sigaction action = {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace ventolith::programs

#include "programs/ventolith/window/ProcessSignals.h"

#include "programs/common/Signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace ventolith::programs {

namespace {

/// A descriptor that tells of the signals, which are blocked in this thread and in those that it makes.
int takeSignals() {
  sigset_t taken;
  sigemptyset(&taken);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (!isIgnored(signal)) sigaddset(&taken, signal);
  }
  pthread_sigmask(SIG_BLOCK, &taken, nullptr);
  const int descriptor = ::signalfd(-1, &taken, SFD_NONBLOCK | SFD_CLOEXEC);
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
  return descriptor;
}

} // namespace

ProcessSignals::ProcessSignals() : signals_(takeSignals()) {}

ProcessSignals::~ProcessSignals() = default;

void ProcessSignals::listen() {
  notifier_ = std::make_unique<QSocketNotifier>(signals_.get(), QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
    signalfd_siginfo signal{};
    while (::read(signals_.get(), &signal, sizeof signal) == sizeof signal)
      Q_EMIT asked();
  });
}

} // namespace ventolith::programs

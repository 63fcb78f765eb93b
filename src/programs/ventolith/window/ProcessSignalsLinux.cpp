#include "programs/ventolith/window/ProcessSignals.h"

#include "platform/system/Descriptor.h"
#include "programs/common/Signals.h"

#include <QSocketNotifier>

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <optional>
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

class ProcessSignals::Source {
public:
  void listen(ProcessSignals& signals) {
    notifier_.emplace(signals_.get(), QSocketNotifier::Read);
    connect(&*notifier_, &QSocketNotifier::activated, &signals, [this, &signals] {
      signalfd_siginfo signal{};
      while (::read(signals_.get(), &signal, sizeof signal) == sizeof signal)
        Q_EMIT signals.asked();
    });
  }

private:
  platform::Descriptor signals_{takeSignals()};
  std::optional<QSocketNotifier> notifier_;
};

ProcessSignals::ProcessSignals() : source_(std::make_unique<Source>()) {}

ProcessSignals::~ProcessSignals() = default;

void ProcessSignals::listen() {
  source_->listen(*this);
}

} // namespace ventolith::programs

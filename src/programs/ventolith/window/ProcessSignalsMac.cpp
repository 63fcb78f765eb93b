#include "programs/ventolith/window/ProcessSignals.h"

#include "platform/system/Descriptor.h"
#include "programs/common/Signals.h"
#include "programs/ventolith/window/MainQueueReads.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <optional>
#include <system_error>

namespace ventolith::programs {

namespace {

std::atomic<int> signalsEnd = -1; // Of the pipe that a signal is told through.
static_assert(std::atomic<int>::is_always_lock_free, "A signal's handler must not wait.");

void tell(int) {
  const int before = errno;
  const char one = 1;
  // A pipe that is full has told enough.
  [[maybe_unused]] const ssize_t written = ::write(signalsEnd.load(), &one, sizeof one);
  errno = before;
}

struct Pipe {
  platform::Descriptor reading;
  platform::Descriptor writing;
};

Pipe newPipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  for (const int end : ends) {
    ::fcntl(end, F_SETFD, FD_CLOEXEC);
    ::fcntl(end, F_SETFL, O_NONBLOCK);
  }
  return {platform::Descriptor(ends[0]), platform::Descriptor(ends[1])};
}

void onSignals(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (!isIgnored(signal)) ::sigaction(signal, &action, nullptr);
  }
}

} // namespace

/// A signal is written down at once, wherever it strikes, and read in the event loop.
class ProcessSignals::Source {
public:
  Source() : pipe_(newPipe()) {
    signalsEnd = pipe_.writing.get();
    onSignals(&tell);
  }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source() { onSignals(SIG_DFL); }

  void listen(ProcessSignals& signals) {
    reads_.emplace(pipe_.reading.get(), [this, &signals] {
      char one = 0;
      while (::read(pipe_.reading.get(), &one, sizeof one) == sizeof one)
        Q_EMIT signals.asked();
    });
  }

private:
  Pipe pipe_;
  std::optional<MainQueueReads> reads_;
};

ProcessSignals::ProcessSignals() : source_(std::make_unique<Source>()) {}

ProcessSignals::~ProcessSignals() = default;

void ProcessSignals::listen() {
  source_->listen(*this);
}

} // namespace ventolith::programs

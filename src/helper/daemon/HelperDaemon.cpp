#include "helper/daemon/HelperDaemon.h"

#include <utility>

namespace ventolith::helper {

using runtime::Async;

namespace {

// The answer to the client that asked for an upgrade is on its way when this has passed.
constexpr runtime::Duration answerGrace = std::chrono::milliseconds(50);

} // namespace

HelperDaemon::HelperDaemon(const runtime::Executor& executor, runtime::Clock& clock, Machine machine,
                           Surroundings surroundings, std::string buildIdentifier)
    : clock_(clock),
      machine_(machine),
      around_(surroundings),
      engine_(executor, clock, machine.smc, machine.sensors, machine.privileges, around_.supervisor,
              around_.log),
      fans_(executor, clock, engine_, around_.log),
      service_({.fans = fans_,
                .listener = around_.listener,
                .authorizer = around_.authorizer,
                .log = around_.log,
                .buildIdentifier = std::move(buildIdentifier),
                .madeRoom = [this] { endFor(End::upgrade); }}),
      ended_(executor) {}

Async<HelperDaemon::Outcome> HelperDaemon::run(runtime::StopToken stop) {
  co_await recover();
  const auto observation = stop.onStop([this] { endFor(End::asked); });
  if (stop.stopRequested()) endFor(End::asked);
  serve();
  co_await ended_.wait();

  around_.supervisor.stopping();
  service_.refuseChanges();
  const bool areFansBack = co_await giveFansBack();
  around_.listener.invalidate();
  co_return Outcome{end_, areFansBack};
}

/// A previous run may have died with fans in its hands.
Async<void> HelperDaemon::recover() {
  if (!machine_.privileges.mayControlFans())
    around_.log.warn("this process may not control the fans: it can tell their state, and refuses commands");
  if (const auto error = co_await engine_.recover()) {
    around_.log.warn("at the start: " + *error);
  } else {
    around_.log.note("every fan is with the firmware");
  }
}

void HelperDaemon::serve() {
  around_.sleepEvents.observe(
      {.willSleep = [this] { return fans_.willSleep(); }, .didWake = [this] { fans_.didWake(); }});
  around_.listener.resume(service_, [this](const std::string& reason) {
    around_.log.warn("nobody can reach this helper any more: " + reason);
    endFor(End::lost);
  });
  around_.supervisor.ready();
  engine_.beginSupervision();
}

void HelperDaemon::endFor(End end) {
  if (ended_.hasHappened()) return;
  end_ = end;
  ended_.happen();
}

Async<bool> HelperDaemon::giveFansBack() {
  if (end_ == End::upgrade) { // They are back, or have refused often enough.
    co_await clock_.sleep(answerGrace, runtime::StopToken());
    co_return engine_.isAtRest();
  }
  const auto error = co_await fans_.giveEveryFanBack();
  if (error) around_.log.warn("ending though not every fan is back: " + *error);
  co_return !error;
}

} // namespace ventolith::helper

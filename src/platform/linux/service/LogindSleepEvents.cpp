#include "platform/linux/service/LogindSleepEvents.h"

#include "platform/linux/Descriptor.h"
#include "platform/linux/service/BusAbsence.h"
#include "platform/linux/service/ErrorLine.h"
#include "runtime/StateStream.h"
#include "runtime/StopToken.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace ventolith::platform {

namespace {

constexpr const char* logind = "org.freedesktop.login1";
constexpr const char* path = "/org/freedesktop/login1";
constexpr const char* manager = "org.freedesktop.login1.Manager";

enum class Event { logindCame, logindWent, sleepBegins, sleepEnded };

Event eventOf(bool isPreparingForSleep) {
  return isPreparingForSleep ? Event::sleepBegins : Event::sleepEnded;
}

} // namespace

struct LogindSleepEvents::Observation {
  Observation(runtime::Executor onExecutor, std::shared_ptr<BusConnection> onConnection, Handlers toCall)
      : executor(std::move(onExecutor)), connection(std::move(onConnection)), handlers(std::move(toCall)) {}

  void hear(const std::shared_ptr<Observation>& self);

  static runtime::Async<void> handleEvents(std::shared_ptr<Observation> self);
  static runtime::Async<void> handle(std::shared_ptr<Observation> self, Event event);

  // Nothing waits for logind's answers to these: one that hangs holds up no event.
  static void meet(const std::shared_ptr<Observation>& self);
  static runtime::Async<void> askWhetherItSleeps(std::shared_ptr<Observation> self);
  static runtime::Async<void> takeInhibitor(std::shared_ptr<Observation> self);
  void reportRefusal(const BusResult<BusReply>& reply) const;

  runtime::Executor executor;
  std::shared_ptr<BusConnection> connection;
  Handlers handlers;
  runtime::StateStream<Event> events;
  runtime::StopSource stopped;
  std::uint64_t signals = 0;
  bool isAsleep = false;    // From the beginning of `willSleep`.
  Descriptor inhibitor{-1}; // Open while sleep waits for us.
  BusMatch sleep;
  BusMatch owner;
};

void LogindSleepEvents::Observation::hear(const std::shared_ptr<Observation>& self) {
  const std::weak_ptr<Observation> weak = self;
  const std::string rule = fmt::format(
      "type='signal',sender='{}',path='{}',interface='{}',member='PrepareForSleep'", logind, path, manager);
  sleep = connection->match(rule, [weak](sdbus::Message& signal) {
    const auto observation = weak.lock();
    bool begins = false;
    if (!observation || !readBody(signal, begins)) return;
    ++observation->signals;
    observation->events.yield(eventOf(begins));
  });
  owner = connection->matchOwner(logind, [weak](const std::string& newOwner) {
    const auto observation = weak.lock();
    if (observation) observation->events.yield(newOwner.empty() ? Event::logindWent : Event::logindCame);
  });
}

runtime::Async<void> LogindSleepEvents::Observation::handleEvents(std::shared_ptr<Observation> self) {
  const runtime::StopToken stop = self->stopped.token();
  meet(self);
  while (!stop.stopRequested()) {
    const std::optional<Event> event = co_await self->events.next(stop);
    if (event && !stop.stopRequested()) co_await handle(self, *event);
  }
}

runtime::Async<void> LogindSleepEvents::Observation::handle(std::shared_ptr<Observation> self, Event event) {
  switch (event) {
  case Event::logindCame: meet(self); break;
  case Event::logindWent: self->inhibitor = Descriptor(-1); break;
  case Event::sleepBegins: {
    const Descriptor delay = std::move(self->inhibitor); // Sleep goes on where this ends.
    if (!std::exchange(self->isAsleep, true)) co_await self->handlers.willSleep();
    break;
  }
  case Event::sleepEnded:
    if (!std::exchange(self->isAsleep, false)) break;
    self->handlers.didWake();
    runtime::start(self->executor, "the leave to delay sleep", takeInhibitor(self));
    break;
  }
}

void LogindSleepEvents::Observation::meet(const std::shared_ptr<Observation>& self) {
  runtime::start(self->executor, "the leave to delay sleep", takeInhibitor(self));
  runtime::start(self->executor, "the question whether the machine sleeps", askWhetherItSleeps(self));
}

/// What was told before this logind came, or before this process did. A signal that comes before the answer
/// knows at least as much.
runtime::Async<void> LogindSleepEvents::Observation::askWhetherItSleeps(std::shared_ptr<Observation> self) {
  const std::uint64_t signalsBefore = self->signals;
  sdbus::MethodCall call = self->connection->newCall(
      {.destination = logind, .path = path, .interface = "org.freedesktop.DBus.Properties", .name = "Get"});
  call << manager << "PreparingForSleep";
  BusResult<BusReply> reply = co_await self->connection->call(std::move(call), self->stopped.token());
  sdbus::Variant value;
  if (!reply || !reply->read(value) || !value.containsValueOfType<bool>()) co_return;
  if (self->signals == signalsBefore) self->events.yield(eventOf(value.get<bool>()));
}

runtime::Async<void> LogindSleepEvents::Observation::takeInhibitor(std::shared_ptr<Observation> self) {
  sdbus::MethodCall call = self->connection->newCall(
      {.destination = logind, .path = path, .interface = manager, .name = "Inhibit"});
  call << "sleep"
       << "Ventolith"
       << "Giving the fans back to the firmware"
       << "delay";
  BusResult<BusReply> reply = co_await self->connection->call(std::move(call), self->stopped.token());
  if (self->stopped.stopRequested() || self->connection->isLost()) co_return;
  sdbus::UnixFd taken;
  if (!reply || !reply->read(taken)) co_return self->reportRefusal(reply);
  // One for a sleep that has begun meanwhile would only hold that up.
  if (!self->isAsleep) self->inhibitor = Descriptor(::fcntl(taken.get(), F_DUPFD_CLOEXEC, 0));
}

void LogindSleepEvents::Observation::reportRefusal(const BusResult<BusReply>& reply) const {
  if (!reply && isAbsence(reply.error())) return;
  sayOnStandardError("[LogindSleepEvents] sleep will not wait for the fans: " +
                     (reply ? std::string("logind was not understood") : reply.error().description()));
}

LogindSleepEvents::~LogindSleepEvents() {
  if (!observation_) return;
  observation_->sleep = {};
  observation_->owner = {};
  observation_->inhibitor = Descriptor(-1);
  observation_->stopped.requestStop();
}

void LogindSleepEvents::observe(Handlers handlers) {
  const auto connection = bus_.connection();
  if (!connection) return;
  observation_ = std::make_shared<Observation>(executor_, *connection, std::move(handlers));
  observation_->hear(observation_);
  runtime::start(executor_, "sleep events", Observation::handleEvents(observation_));
}

} // namespace ventolith::platform

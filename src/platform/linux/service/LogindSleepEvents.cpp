#include "platform/linux/service/LogindSleepEvents.h"

#include "platform/linux/Descriptor.h"
#include "platform/linux/service/BusAbsence.h"
#include "runtime/StateStream.h"
#include "runtime/StopToken.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <cstdio>
#include <string>
#include <utility>

namespace ventolith::platform {

namespace {

constexpr const char* logind = "org.freedesktop.login1";
constexpr const char* path = "/org/freedesktop/login1";
constexpr const char* manager = "org.freedesktop.login1.Manager";

enum class Event { logindCame, logindWent, sleepBegins, sleepEnded };

} // namespace

struct LogindSleepEvents::Observation {
  Observation(std::shared_ptr<BusConnection> onConnection, Handlers toCall)
      : connection(std::move(onConnection)), handlers(std::move(toCall)) {}

  void hear(const std::shared_ptr<Observation>& self);

  static runtime::Async<void> handleEvents(std::shared_ptr<Observation> self);
  runtime::Async<void> handle(Event event);
  runtime::Async<void> takeInhibitor();

  std::shared_ptr<BusConnection> connection;
  Handlers handlers;
  runtime::StateStream<Event> events;
  runtime::StopSource stopped;
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
    observation->events.yield(begins ? Event::sleepBegins : Event::sleepEnded);
  });
  owner = connection->matchOwner(logind, [weak](const std::string& newOwner) {
    const auto observation = weak.lock();
    if (observation) observation->events.yield(newOwner.empty() ? Event::logindWent : Event::logindCame);
  });
}

runtime::Async<void> LogindSleepEvents::Observation::handleEvents(std::shared_ptr<Observation> self) {
  const runtime::StopToken stop = self->stopped.token();
  co_await self->takeInhibitor();
  while (!stop.stopRequested()) {
    const std::optional<Event> event = co_await self->events.next(stop);
    if (event && !stop.stopRequested()) co_await self->handle(*event);
  }
}

runtime::Async<void> LogindSleepEvents::Observation::handle(Event event) {
  switch (event) {
  case Event::logindCame: co_await takeInhibitor(); break;
  case Event::logindWent: inhibitor = Descriptor(-1); break;
  case Event::sleepBegins: {
    const Descriptor delay = std::move(inhibitor); // Sleep goes on where this ends.
    co_await handlers.willSleep();
    break;
  }
  case Event::sleepEnded:
    co_await takeInhibitor();
    if (!stopped.stopRequested()) handlers.didWake();
    break;
  }
}

runtime::Async<void> LogindSleepEvents::Observation::takeInhibitor() {
  sdbus::MethodCall call =
      connection->newCall({.destination = logind, .path = path, .interface = manager, .name = "Inhibit"});
  call << "sleep"
       << "Ventolith"
       << "Giving the fans back to the firmware"
       << "delay";
  BusResult<BusReply> reply = co_await connection->call(std::move(call), stopped.token());
  sdbus::UnixFd taken;
  if (reply && reply->read(taken)) {
    inhibitor = Descriptor(::fcntl(taken.get(), F_DUPFD_CLOEXEC, 0));
    co_return;
  }
  if (stopped.stopRequested() || connection->isLost()) co_return;
  if (reply || !isAbsence(reply.error())) {
    fmt::print(stderr, "[LogindSleepEvents] sleep will not wait for the fans: {}\n",
               reply ? "logind was not understood" : reply.error().description());
  }
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
  observation_ = std::make_shared<Observation>(*connection, std::move(handlers));
  observation_->hear(observation_);
  runtime::start(executor_, "sleep events", Observation::handleEvents(observation_));
}

} // namespace ventolith::platform

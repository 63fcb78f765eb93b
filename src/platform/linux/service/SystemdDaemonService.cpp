#include "platform/linux/service/SystemdDaemonService.h"

#include "platform/linux/service/BusAbsence.h"
#include "platform/linux/service/ErrorLine.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace ventolith::platform {

namespace {

using helper::DaemonStatus;

constexpr const char* unit = "ventolith-helper.service";
constexpr const char* systemd = "org.freedesktop.systemd1";
constexpr const char* path = "/org/freedesktop/systemd1";
constexpr const char* manager = "org.freedesktop.systemd1.Manager";
constexpr std::chrono::seconds longestJob{30};

sdbus::MethodCall managerCall(const BusConnection& connection, const std::string& method) {
  return connection.newCall({.destination = systemd, .path = path, .interface = manager, .name = method});
}

std::string signalRule(std::string_view signal) {
  return fmt::format("type='signal',sender='{}',path='{}',interface='{}',member='{}'", systemd, path, manager,
                     signal);
}

/// A change, which may need a person's permission.
runtime::Async<BusResult<BusReply>> change(std::shared_ptr<BusConnection> connection,
                                           sdbus::MethodCall call) {
  allowInteractiveAuthorization(call);
  co_return co_await connection->call(std::move(call));
}

runtime::Async<BusResult<BusReply>> enableUnit(std::shared_ptr<BusConnection> connection) {
  sdbus::MethodCall call = managerCall(*connection, "EnableUnitFiles");
  constexpr bool untilReboot = false;
  constexpr bool replaceOtherLinks = false;
  call << std::vector<std::string>{unit} << untilReboot << replaceOtherLinks;
  co_return co_await change(connection, std::move(call));
}

runtime::Async<BusResult<BusReply>> disableUnit(std::shared_ptr<BusConnection> connection) {
  sdbus::MethodCall call = managerCall(*connection, "DisableUnitFiles");
  constexpr bool untilReboot = false;
  call << std::vector<std::string>{unit} << untilReboot;
  co_return co_await change(connection, std::move(call));
}

runtime::Async<BusResult<BusReply>> reload(std::shared_ptr<BusConnection> connection) {
  co_return co_await change(connection, managerCall(*connection, "Reload"));
}

bool isRefusal(const BusFailure& failure) {
  constexpr std::array refusals{
      "org.freedesktop.DBus.Error.InteractiveAuthorizationRequired",
      "org.freedesktop.DBus.Error.AccessDenied",
      "org.freedesktop.PolicyKit1.Error.Cancelled",
      "org.freedesktop.PolicyKit1.Error.NotAuthorized",
  };
  return std::find(refusals.begin(), refusals.end(), failure.name) != refusals.end();
}

/// The ends of the unit's jobs, of which one is waited for.
struct JobEnds {
  void note(const std::string& job, std::string result) {
    results.emplace(job, std::move(result));
    if (job == awaited) isOver.requestStop();
  }

  std::map<std::string, std::string> results;
  std::string awaited;
  runtime::StopSource isOver;
};

BusMatch hearJobEnds(BusConnection& connection, const std::shared_ptr<JobEnds>& ends) {
  // The rule cannot name the unit: sd-bus compares no argument that stands behind a number.
  return connection.match(signalRule("JobRemoved"), [ends](sdbus::Message& signal) {
    std::uint32_t number = 0;
    sdbus::ObjectPath job;
    std::string ofUnit;
    std::string result;
    if (readBody(signal, number, job, ofUnit, result) && ofUnit == unit) ends->note(job, result);
  });
}

} // namespace

DaemonStatus statusOfUnitFile(std::string_view state) {
  static const std::map<std::string_view, DaemonStatus> statuses{
      {"enabled", DaemonStatus::enabled},
      {"enabled-runtime", DaemonStatus::enabled},
      {"alias", DaemonStatus::enabled}, // The name itself is a link to a unit.
      {"static",
       DaemonStatus::enabled}, // Nothing could be registered: whoever wrote the file says who starts it.
      {"generated", DaemonStatus::enabled}, // The same.
      {"transient", DaemonStatus::enabled}, // The same.
      {"disabled", DaemonStatus::notRegistered},
      {"indirect", DaemonStatus::notRegistered},
      {"linked",
       DaemonStatus::notRegistered}, // systemd knows the file from elsewhere, and nothing starts it.
      {"linked-runtime", DaemonStatus::notRegistered},
      {"masked", DaemonStatus::requiresApproval}, // Forbidden by an administrator.
      {"masked-runtime", DaemonStatus::requiresApproval},
  };
  const auto known = statuses.find(state);
  return known == statuses.end() ? DaemonStatus::notFound : known->second;
}

/// What one connection tells of systemd.
struct SystemdDaemonService::Watch {
  explicit Watch(std::shared_ptr<BusConnection> onConnection) : connection(std::move(onConnection)) {}

  void hear(const std::shared_ptr<Watch>& self);
  void noteChange() {
    kept.reset();
    ++changes;
  }

  static runtime::Async<std::optional<BusFailure>> subscribe(std::shared_ptr<Watch> watch);
  static runtime::Async<BusResult<DaemonStatus>> ask(std::shared_ptr<Watch> watch);

  std::shared_ptr<BusConnection> connection;
  std::optional<DaemonStatus> kept; // Still true, as far as systemd said.
  std::uint64_t changes = 0;
  bool isSubscribed =
      false; // systemd sends signals to who asked for them, and forgets it when it starts anew.
  BusMatch unitFiles;
  BusMatch reloading;
  BusMatch owner;
};

void SystemdDaemonService::Watch::hear(const std::shared_ptr<Watch>& self) {
  const std::weak_ptr<Watch> weak = self;
  const auto noteChangeOf = [weak](sdbus::Message&) {
    if (const auto watch = weak.lock()) watch->noteChange();
  };
  unitFiles = connection->match(signalRule("UnitFilesChanged"), noteChangeOf);
  reloading = connection->match(signalRule("Reloading"), noteChangeOf);
  owner = connection->matchOwner(systemd, [weak](const std::string&) {
    const auto watch = weak.lock();
    if (!watch) return;
    watch->isSubscribed = false;
    watch->noteChange();
  });
}

runtime::Async<std::optional<BusFailure>>
SystemdDaemonService::Watch::subscribe(std::shared_ptr<Watch> watch) {
  if (watch->isSubscribed) co_return std::nullopt;
  const BusResult<BusReply> reply =
      co_await watch->connection->call(managerCall(*watch->connection, "Subscribe"));
  if (!reply && reply.error().name != "org.freedesktop.systemd1.AlreadySubscribed") co_return reply.error();
  watch->isSubscribed = true;
  co_return std::nullopt;
}

runtime::Async<BusResult<DaemonStatus>> SystemdDaemonService::Watch::ask(std::shared_ptr<Watch> watch) {
  if (const std::optional<BusFailure> failure = co_await subscribe(watch)) co_return *failure;
  sdbus::MethodCall call = managerCall(*watch->connection, "GetUnitFileState");
  call << unit;
  BusResult<BusReply> reply = co_await watch->connection->call(std::move(call));
  if (!reply) {
    const std::string& name = reply.error().name;
    if (name == "org.freedesktop.DBus.Error.FileNotFound" || name == "org.freedesktop.systemd1.NoSuchUnit")
      co_return DaemonStatus::notFound;
    co_return reply.error();
  }
  std::string state;
  if (!reply->read(state)) co_return BusFailure{"", "systemd was not understood"};
  co_return statusOfUnitFile(state);
}

SystemdDaemonService::WatchResult SystemdDaemonService::watch() {
  const auto connection = bus_.connection();
  if (!connection) return connection.error();
  if (!watch_ || watch_->connection != *connection) {
    watch_ = std::make_shared<Watch>(*connection);
    watch_->hear(watch_);
  }
  return watch_;
}

runtime::Async<DaemonStatus> SystemdDaemonService::status() {
  co_return co_await serial_.run(currentStatus());
}

runtime::Async<DaemonStatus> SystemdDaemonService::currentStatus() {
  const WatchResult opened = watch();
  if (!opened) co_return DaemonStatus::notFound;
  const std::shared_ptr<Watch>& watch = *opened;
  if (!watch->kept) {
    const std::uint64_t changes = watch->changes;
    const BusResult<DaemonStatus> answer = co_await Watch::ask(watch);
    // What failed otherwise may go better the next time, and nothing would tell.
    const bool isLasting = answer || isAbsence(answer.error());
    const DaemonStatus now = answer ? *answer : DaemonStatus::notFound;
    if (!isLasting || changes != watch->changes) co_return now;
    watch->kept = now;
  }
  co_return isRefused_ && watch->kept == DaemonStatus::notRegistered ? DaemonStatus::requiresApproval
                                                                     : *watch->kept;
}

helper::DaemonService::ErrorText SystemdDaemonService::noteRefusal(const BusFailure& failure) {
  if (isRefusal(failure)) isRefused_ = true;
  return failure.description();
}

runtime::Async<BusResult<SystemdDaemonService::JobEnd>>
SystemdDaemonService::runJob(std::shared_ptr<Watch> watch, std::string method) {
  const std::shared_ptr<BusConnection> connection = watch->connection;
  const auto ends = std::make_shared<JobEnds>();
  const BusMatch match = hearJobEnds(*connection, ends);
  sdbus::MethodCall call = managerCall(*connection, method);
  call << unit << "replace";
  BusResult<BusReply> reply = co_await change(connection, std::move(call));
  if (!reply) co_return reply.error();
  sdbus::ObjectPath job;
  if (!reply->read(job)) co_return BusFailure{"", "systemd was not understood"};

  ends->awaited = job;
  const auto loss = connection->lost().onStop([ends] { ends->isOver.requestStop(); });
  if (!ends->results.contains(job)) co_await clock_.sleep(longestJob, ends->isOver.token());
  const auto end = ends->results.find(job);
  co_return JobEnd{end == ends->results.end() ? "not known yet" : end->second};
}

runtime::Async<helper::DaemonService::ErrorText> SystemdDaemonService::registerDaemon() {
  co_return co_await serial_.run(enableAndStart());
}

runtime::Async<helper::DaemonService::ErrorText> SystemdDaemonService::enableAndStart() {
  const WatchResult opened = watch();
  if (!opened) co_return opened.error().description();
  const std::shared_ptr<Watch>& watch = *opened;
  if (const auto failure = co_await Watch::subscribe(watch)) co_return failure->description();

  const auto enabled = co_await enableUnit(watch->connection);
  watch->noteChange();
  if (!enabled) co_return noteRefusal(enabled.error());
  const auto reloaded = co_await reload(watch->connection);
  watch->noteChange();
  if (!reloaded) co_return noteRefusal(reloaded.error());
  isRefused_ = false;

  const BusResult<JobEnd> start = co_await runJob(watch, "StartUnit");
  if (!start) co_return noteRefusal(start.error());
  if (start->result == "done" || start->result == "skipped") co_return std::nullopt;
  co_return fmt::format("the helper is enabled, but its start is: {}", start->result);
}

runtime::Async<helper::DaemonService::ErrorText> SystemdDaemonService::unregisterDaemon() {
  co_return co_await serial_.run(stopAndDisable());
}

runtime::Async<helper::DaemonService::ErrorText> SystemdDaemonService::stopAndDisable() {
  const WatchResult opened = watch();
  if (!opened) co_return opened.error().description();
  const std::shared_ptr<Watch>& watch = *opened;
  if (const auto failure = co_await Watch::subscribe(watch)) co_return failure->description();

  // Disabled first: a client that goes on would have the bus start the helper again.
  const auto disabled = co_await disableUnit(watch->connection);
  watch->noteChange();
  if (!disabled) co_return disabled.error().description();
  const auto reloaded = co_await reload(watch->connection);
  watch->noteChange();
  if (!reloaded) co_return reloaded.error().description();
  const BusResult<JobEnd> stop = co_await runJob(watch, "StopUnit");
  if (!stop && stop.error().name != "org.freedesktop.systemd1.NoSuchUnit")
    co_return stop.error().description();
  if (stop && stop->result != "done")
    co_return fmt::format("the helper is disabled, but its end is: {}", stop->result);
  co_return std::nullopt;
}

void SystemdDaemonService::openSystemSettings() {
  sayOnStandardError("[SystemdDaemonService] an administrator enables the helper by: systemctl enable --now "
                     "ventolith-helper");
}

} // namespace ventolith::platform

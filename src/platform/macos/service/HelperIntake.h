// What comes over the helper's connections, from the system's threads to the service.
#pragma once

#include "helper/link/HelperListener.h"
#include "platform/macos/service/Budget.h"
#include "platform/macos/service/Doorway.h"
#include "platform/macos/service/PendingAnswer.h"
#include "platform/macos/service/PresentCallers.h"

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>

namespace ventolith::platform {

/// Hands each message to the service on the executor, in the order in which its connection brought it, and
/// carries the answer back. What is said below about threads aside, belongs to the executor's thread.
///
/// The service has no way to refuse over this line: a refusal, and a message that comes when nobody serves
/// (any more), are answered by none, which the connection turns into what its message has for that.
class HelperIntake : public std::enable_shared_from_this<HelperIntake> {
public:
  /// Of a plan's bytes no more than these are to be copied: the service refuses more than 1 MiB by their
  /// number.
  static constexpr std::size_t copiedBytes = (std::size_t{1} << 20) + 1;
  /// Calls of one connection that may be under way: more than the service takes of one caller, so that it is
  /// the service that refuses, and says so.
  static constexpr std::size_t mostCalls = 64;
  static constexpr std::size_t mostConnections = 64;

  /// One connection. Any thread; its own operations one after another, as connections bring them.
  class Caller {
  public:
    Caller(std::weak_ptr<HelperIntake> intake, std::shared_ptr<Doorway> doorway, helper::HelperCaller name);

    /// `answer` is called once, on any thread; it is empty for a Heartbeat.
    void take(helper::HelperMessage message, PendingAnswer::Answer answer) const;
    /// More than once is once.
    void gone() const;

  private:
    std::weak_ptr<HelperIntake> intake_;
    std::shared_ptr<Doorway> doorway_;
    helper::HelperCaller name_;
    std::shared_ptr<Budget> budget_ = std::make_shared<Budget>(mostCalls);
  };

  HelperIntake(runtime::Executor executor, std::shared_ptr<PresentCallers> callers);

  /// A connection that is let in; before any message of it is taken. None when too many are here. `close` is
  /// called when the intake stops, on the executor's thread, if the caller is still here. Any thread.
  [[nodiscard]] std::shared_ptr<Caller> admit(pid_t process, uid_t user, std::function<void()> close);

  /// Once, before anybody is admitted. `service` outlives this object, or the call of `stop`.
  void serve(helper::HelperService& service) { service_ = &service; }
  void watch(const helper::HelperCaller& caller);
  void unwatch(const helper::HelperCaller& caller) { watched_.erase(caller); }

  /// Refuses what is under way, and has the connections closed, whose number it returns. Nothing is taken
  /// from here on, and this object may go on any thread.
  std::size_t stop();

private:
  struct Connection {
    std::function<void()> close;
    Budget::Place place;
  };

  void come(const helper::HelperCaller& caller, uid_t user, Connection connection);
  void begin(const helper::HelperCaller& caller, helper::HelperMessage message, PendingAnswer pending);
  void go(const helper::HelperCaller& caller);
  static runtime::Async<void> answer(std::weak_ptr<HelperIntake> intake, std::uint64_t number,
                                     helper::HelperCaller caller, helper::HelperMessage message,
                                     helper::HelperService& service);
  void finish(std::uint64_t number, helper::HelperAnswer answer);

  runtime::Executor executor_;
  std::shared_ptr<Doorway> doorway_;
  std::shared_ptr<PresentCallers> callers_;
  std::atomic<std::uint64_t> admissions_ = 0;
  std::shared_ptr<Budget> connectionBudget_ = std::make_shared<Budget>(mostConnections);
  helper::HelperService* service_ = nullptr; // None before `serve` and after `stop`.
  std::map<helper::HelperCaller, Connection> connections_;
  std::set<helper::HelperCaller> watched_;
  std::uint64_t calls_ = 0;
  std::map<std::uint64_t, PendingAnswer> unanswered_;
};

} // namespace ventolith::platform

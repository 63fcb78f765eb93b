#include "platform/macos/service/SystemPowerEvents.h"

#include "platform/macos/service/Doorway.h"
#include "platform/macos/service/ErrorLine.h"
#include "platform/macos/service/SleepNotices.h"

#include <IOKit/IOKitLib.h>
#include <IOKit/IOMessage.h>
#include <IOKit/pwr_mgt/IOPMLib.h>
#include <dispatch/dispatch.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>

namespace ventolith::platform {

namespace {

/// Well beyond what giving the fans back may take, and well before the system itself waits no longer: a
/// helper that hangs is no reason to keep a closed Mac awake for half a minute.
constexpr std::chrono::seconds longestDelay(10);

/// The connection over which power changes are allowed; open for as long as somebody may still have to.
class RootPort {
public:
  explicit RootPort(io_connect_t port) : port_(port) {}
  RootPort(const RootPort&) = delete;
  RootPort& operator=(const RootPort&) = delete;
  ~RootPort() { ::IOServiceClose(port_); }

  void allow(std::intptr_t change) const { ::IOAllowPowerChange(port_, change); }

private:
  io_connect_t port_;
};

/// The answer to one notice of sleep, given once: at its end, if not before. Any thread.
class SleepAnswer {
public:
  SleepAnswer(std::shared_ptr<const RootPort> root, std::intptr_t change)
      : root_(std::move(root)), change_(change) {}
  SleepAnswer(const SleepAnswer&) = delete;
  SleepAnswer& operator=(const SleepAnswer&) = delete;
  ~SleepAnswer() { give(); }

  /// False if it has been given already.
  bool give() {
    if (isGiven_.exchange(true)) return false;
    root_->allow(change_);
    return true;
  }

private:
  const std::shared_ptr<const RootPort> root_;
  const std::intptr_t change_;
  std::atomic_bool isGiven_ = false;
};

/// Gives `answer` on `queue` if nobody has given it by then.
void giveInTime(dispatch_queue_t queue, const std::shared_ptr<SleepAnswer>& answer) {
  const auto give = [](void* context) {
    const std::unique_ptr<std::weak_ptr<SleepAnswer>> late(static_cast<std::weak_ptr<SleepAnswer>*>(context));
    const auto present = late->lock();
    if (present && present->give())
      sayOnStandardError(
          "[SystemPowerEvents] the machine goes to sleep without waiting for the fans any more");
  };
  ::dispatch_after_f(::dispatch_time(DISPATCH_TIME_NOW, std::chrono::nanoseconds(longestDelay).count()),
                     queue, std::make_unique<std::weak_ptr<SleepAnswer>>(answer).release(), give);
}

} // namespace

/// From the registration to its end. The system calls back on `queue_` alone.
class SystemPowerEvents::Registration {
public:
  Registration(const runtime::Executor& executor, Handlers handlers)
      : doorway_(std::make_shared<Doorway>(executor)),
        notices_(std::make_shared<SleepNotices>(std::move(handlers))),
        queue_(::dispatch_queue_create("com.ventolith.power", DISPATCH_QUEUE_SERIAL)) {
    notices_->handleOn(executor);
    begin();
  }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration();

private:
  void begin();
  void take(natural_t notice, void* argument);
  void takeWillSleep(std::intptr_t change);
  template <class Tell>
  void post(Tell tell);

  std::shared_ptr<Doorway> doorway_;
  std::shared_ptr<SleepNotices> notices_;
  dispatch_queue_t queue_;
  std::shared_ptr<const RootPort> root_; // None if the registration was not taken.
  IONotificationPortRef port_ = nullptr;
  io_object_t notifier_ = IO_OBJECT_NULL;
};

void SystemPowerEvents::Registration::begin() {
  const auto callback = [](void* self, io_service_t, natural_t notice, void* argument) {
    static_cast<Registration*>(self)->take(notice, argument);
  };
  const io_connect_t root = ::IORegisterForSystemPower(this, &port_, callback, &notifier_);
  if (root == MACH_PORT_NULL)
    return sayOnStandardError("[SystemPowerEvents] sleep will not wait for the fans: no registration");
  root_ = std::make_shared<RootPort>(root);
  ::IONotificationPortSetDispatchQueue(port_, queue_);
}

SystemPowerEvents::Registration::~Registration() {
  doorway_->shut();
  notices_->stop();
  if (root_) {
    ::IODeregisterForSystemPower(&notifier_);
    // On the queue, so that no notice is being taken while the port goes, and none comes after it.
    ::dispatch_sync_f(queue_, port_, [](void* port) {
      ::IONotificationPortDestroy(static_cast<IONotificationPortRef>(port));
    });
  }
  ::dispatch_release(queue_);
}

template <class Tell>
void SystemPowerEvents::Registration::post(Tell tell) {
  doorway_->post([weak = std::weak_ptr(notices_), tell = std::move(tell)]() mutable {
    if (const auto notices = weak.lock()) tell(*notices);
  });
}

void SystemPowerEvents::Registration::take(natural_t notice, void* argument) {
  const auto change = reinterpret_cast<std::intptr_t>(argument);
  switch (notice) {
  case kIOMessageCanSystemSleep: root_->allow(change); break;
  case kIOMessageSystemWillSleep: takeWillSleep(change); break;
  case kIOMessageSystemHasPoweredOn: post([](SleepNotices& notices) { notices.sleepEnded(); }); break;
  default: break;
  }
}

void SystemPowerEvents::Registration::takeWillSleep(std::intptr_t change) {
  auto answer = std::make_shared<SleepAnswer>(root_, change);
  giveInTime(queue_, answer);
  post([delay = std::move(answer)](SleepNotices& notices) mutable { notices.sleepBegins(std::move(delay)); });
}

SystemPowerEvents::SystemPowerEvents(runtime::Executor executor) : executor_(std::move(executor)) {}

SystemPowerEvents::~SystemPowerEvents() = default;

void SystemPowerEvents::observe(Handlers handlers) {
  registration_ = std::make_unique<Registration>(executor_, std::move(handlers));
}

} // namespace ventolith::platform

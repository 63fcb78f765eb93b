#include "platform/macos/service/SystemPowerEvents.h"

#include "platform/macos/service/Doorway.h"
#include "platform/macos/service/ErrorLine.h"
#include "platform/macos/service/SleepNotices.h"

#include <IOKit/IOKitLib.h>
#include <IOKit/IOMessage.h>
#include <IOKit/pwr_mgt/IOPMLib.h>
#include <dispatch/dispatch.h>

#include <cstdint>
#include <utility>

namespace ventolith::platform {

namespace {

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

/// Allows the change when its last copy goes: when it was handled, or nobody handles it any more.
SleepNotices::Delay delayOf(const std::shared_ptr<const RootPort>& root, std::intptr_t change) {
  return {root.get(), [root, change](const void*) { root->allow(change); }};
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
  case kIOMessageSystemWillSleep:
    post([delay = delayOf(root_, change)](SleepNotices& notices) mutable {
      notices.sleepBegins(std::move(delay));
    });
    break;
  case kIOMessageSystemHasPoweredOn: post([](SleepNotices& notices) { notices.sleepEnded(); }); break;
  default: break;
  }
}

SystemPowerEvents::SystemPowerEvents(runtime::Executor executor) : executor_(std::move(executor)) {}

SystemPowerEvents::~SystemPowerEvents() = default;

void SystemPowerEvents::observe(Handlers handlers) {
  registration_ = std::make_unique<Registration>(executor_, std::move(handlers));
}

} // namespace ventolith::platform

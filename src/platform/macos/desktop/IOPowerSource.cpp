#include "platform/macos/desktop/IOPowerSource.h"

#include "platform/macos/AutoreleasePool.h"
#include "platform/macos/CFText.h"
#include "platform/macos/service/Doorway.h"

#include <IOKit/ps/IOPowerSources.h>
#include <dispatch/dispatch.h>

#include <utility>

namespace ventolith::platform {

using app::PowerSource;

/// Given to the system as its callback's context. Belongs to the main thread once the source has been added
/// to its run loop, but for shutting the doorway.
struct IOPowerSource::Subscription {
  Subscription(runtime::Executor executor, std::weak_ptr<const std::function<void()>> whoIsTold)
      : doorway(std::move(executor)), onChange(std::move(whoIsTold)) {}

  Doorway doorway;
  const std::weak_ptr<const std::function<void()>> onChange;

  /// The system's callback.
  static void notify(void* context) {
    if (context == nullptr) return;
    auto& subscription = *static_cast<Subscription*>(context);
    subscription.doorway.post([onChange = subscription.onChange] {
      if (const auto tell = onChange.lock()) (*tell)(); // Held, since who is told may stop the provider.
    });
  }

  static void letGo(void* context) { std::unique_ptr<Subscription>(static_cast<Subscription*>(context)); }
};

IOPowerSource::IOPowerSource(runtime::Executor executor) : executor_(std::move(executor)) {}

IOPowerSource::~IOPowerSource() {
  stop();
}

void IOPowerSource::start(std::function<void()> onChange) {
  onChange_ = std::make_shared<const std::function<void()>>(std::move(onChange));
  subscription_ = std::make_unique<Subscription>(executor_, onChange_);
  source_.reset(::IOPSNotificationCreateRunLoopSource(Subscription::notify, subscription_.get()));
  if (source_) ::CFRunLoopAddSource(::CFRunLoopGetMain(), source_.get(), kCFRunLoopDefaultMode);
}

void IOPowerSource::stop() {
  onChange_.reset();
  if (!source_) return;
  subscription_->doorway.shut();
  ::CFRunLoopRemoveSource(::CFRunLoopGetMain(), source_.get(), kCFRunLoopDefaultMode);
  source_.reset();
  // The callback may be running there at this moment; what it was given goes after it.
  ::dispatch_async_f(::dispatch_get_main_queue(), subscription_.release(), Subscription::letGo);
}

PowerSource IOPowerSource::current() const {
  const AutoreleasePool pool;
  const CFOwned<CFTypeRef> snapshot(::IOPSCopyPowerSourcesInfo());
  if (!snapshot) return PowerSource::unknown;
  const std::string providing = textOf(::IOPSGetProvidingPowerSourceType(snapshot.get())); // The snapshot's.
  if (providing == "AC Power") return PowerSource::ac;
  if (providing == "Battery Power") return PowerSource::battery;
  return PowerSource::unknown;
}

} // namespace ventolith::platform

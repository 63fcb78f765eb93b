// The Mac's power source.
#pragma once

#include "app/PowerSource.h"
#include "platform/macos/CFOwned.h"
#include "runtime/Async.h"

#include <functional>
#include <memory>

namespace ventolith::platform {

/// Is notified on the main run loop of the process, and tells on `executor`. In a process whose main thread
/// runs no run loop it tells of no change.
class IOPowerSource final : public app::PowerSourceProvider {
public:
  explicit IOPowerSource(runtime::Executor executor);
  ~IOPowerSource() override;

  void start(std::function<void()> onChange) override;
  void stop() override;
  [[nodiscard]] app::PowerSource current() const override;

private:
  struct Subscription;

  runtime::Executor executor_;
  std::shared_ptr<const std::function<void()>> onChange_; // While started.
  CFOwned<CFRunLoopSourceRef> source_;                    // None if the system gives none.
  std::unique_ptr<Subscription> subscription_;            // What `source_` refers to.
};

} // namespace ventolith::platform

// The machine's power source as UPower tells it over the system's bus.
#pragma once

#include "app/PowerSource.h"
#include "runtime/Async.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ventolith::platform {

/// UPower is asked once whenever it appears, and then listened to: nothing is polled. Its notifications are
/// those about its power source and about its display device, which stands for all supplies of the machine.
///
/// A fallback answers until UPower does, and whenever UPower is away. That the one takes over from the other
/// is told only if they differ, since no supply has changed.
///
/// The start starts UPower too, as any desktop does: without it some batteries are not known at all. Later
/// on one that went is not called back, as who stopped it may have meant it, and one that comes is taken up.
/// A bus that is lost does not come back to this process: the fallback answers from there on.
class UPowerSource final : public app::PowerSourceProvider {
public:
  using MakeFallback = std::function<std::unique_ptr<app::PowerSourceProvider>()>;

  /// `busAddress`: none is the system's bus. A fallback is made each time that one is needed.
  UPowerSource(runtime::Executor executor, std::optional<std::string> busAddress, MakeFallback makeFallback);
  ~UPowerSource() override;

  void start(std::function<void()> onChange) override;
  void stop() override;
  [[nodiscard]] app::PowerSource current() const override;

private:
  class Watch;

  runtime::Executor executor_;
  std::optional<std::string> busAddress_;
  MakeFallback makeFallback_;
  std::shared_ptr<Watch> watch_; // From the start on. What arrives from the bus refers to it weakly.
};

} // namespace ventolith::platform

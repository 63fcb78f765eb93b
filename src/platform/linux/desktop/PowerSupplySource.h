// The machine's power source as the kernel tells it: for machines without a service that knows it better.
#pragma once

#include "app/PowerSource.h"
#include "platform/linux/Descriptor.h"
#include "platform/linux/desktop/KernelEvents.h"
#include "runtime/Async.h"

#include <filesystem>
#include <functional>
#include <optional>

namespace ventolith::platform {

/// Reads the folder at its start and at each of the kernel's notices about power supplies, and never besides.
class PowerSupplySource final : public app::PowerSourceProvider {
public:
  /// `kernelEvents` as of `openKernelEvents`; without it the source stays as it was at the start.
  PowerSupplySource(runtime::Executor executor, std::filesystem::path folder, Descriptor kernelEvents);

  void start(std::function<void()> onChange) override;
  void stop() override;
  [[nodiscard]] app::PowerSource current() const override { return source_; }

private:
  void readAndTell();

  runtime::Executor executor_;
  std::filesystem::path folder_;
  Descriptor kernelEvents_; // Until the start.
  std::function<void()> onChange_;
  app::PowerSource source_ = app::PowerSource::unknown;
  std::optional<PowerSupplyEvents> events_;
};

} // namespace ventolith::platform

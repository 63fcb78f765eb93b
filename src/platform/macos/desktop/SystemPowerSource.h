// Where this machine's power comes from.
#pragma once

#include "app/PowerSource.h"
#include "runtime/Async.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace ventolith::platform {

inline constexpr const char* powerSupplies = "";

/// The power sources of IOKit, which knows no bus and no folder: both are for other systems. Waits for
/// nothing before its start, and belongs to the thread of `engineExecutor`.
[[nodiscard]] std::unique_ptr<app::PowerSourceProvider>
systemPowerSource(const runtime::Executor& engineExecutor, std::optional<std::string> busAddress,
                  std::filesystem::path powerSupplyFolder = powerSupplies);

} // namespace ventolith::platform

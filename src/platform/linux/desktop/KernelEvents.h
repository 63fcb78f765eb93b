// The kernel's notices that a device came, went or changed, as far as they are about power supplies.
#pragma once

#include "platform/linux/Descriptor.h"
#include "runtime/Async.h"

#include <linux/netlink.h>

#include <functional>
#include <memory>
#include <string_view>

namespace ventolith::platform {

/// A socket that receives all of the kernel's notices; closed where this process may have none.
[[nodiscard]] Descriptor openKernelEvents();

/// Whether the datagram ("change@/devices/...", then "KEY=value", each ended by a zero byte) is about a
/// power supply, and from the kernel: every other sender has a port.
[[nodiscard]] bool isPowerSupplyNotice(const sockaddr_nl& sender, std::string_view datagram);

/// Sleeps until something arrives. Belongs to the thread of its executor.
class PowerSupplyEvents {
public:
  /// Calls `onNotice` once for the notices that came together, and when some were lost. The object may go in
  /// that call. Of a socket that is closed, or fails, nothing is heard.
  PowerSupplyEvents(const runtime::Executor& executor, Descriptor socket, std::function<void()> onNotice);
  PowerSupplyEvents(const PowerSupplyEvents&) = delete;
  PowerSupplyEvents& operator=(const PowerSupplyEvents&) = delete;
  ~PowerSupplyEvents();

private:
  class Listening;
  std::shared_ptr<Listening> listening_; // The wait refers to it weakly.
};

} // namespace ventolith::platform

// What the process has allocated and not freed.
#pragma once

namespace ventolith::support {

/// Bytes, to the byte, of all libraries of the process: none that an allocator keeps for later.
[[nodiscard]] long liveBytes();

} // namespace ventolith::support

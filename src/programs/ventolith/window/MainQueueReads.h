// Waiting for a descriptor on the system's main queue, which Qt's event loop serves.
#pragma once

#include <dispatch/dispatch.h>

#include <functional>

namespace ventolith::programs {

/// Calls back on the main thread as long as the descriptor can be read. What Qt has for it is made for
/// sockets, and a kernel queue is none. Made, used and destroyed on the main thread; may be destroyed by its
/// callback.
class MainQueueReads {
public:
  /// The descriptor may be closed while this stands. Fails with std::system_error.
  MainQueueReads(int descriptor, std::function<void()> onReadable);
  MainQueueReads(const MainQueueReads&) = delete;
  MainQueueReads& operator=(const MainQueueReads&) = delete;
  /// Calls back no more.
  ~MainQueueReads();

private:
  dispatch_source_t source_;
};

} // namespace ventolith::programs

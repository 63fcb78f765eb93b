// The kernel of the fake system: two counters of time, a queue with a timer in it, and a name.
#pragma once

#include "InForce.h"

#include <sys/event.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::fake {

/// Without one in force the counters run with this computer's own time.
class Kernel : public InForce<Kernel> {
public:
  Kernel() : InForce(this) {}

  // What the test sets.
  std::optional<std::uint64_t> continuousTicks; // None runs with this computer's time.
  std::optional<std::uint64_t> absoluteTicks;
  bool makesQueues = true;
  bool takesTimers = true;
  std::optional<std::string> model = "Mac14,9";

  // What the sources under test did.
  std::vector<struct kevent> changes;
};

} // namespace ventolith::fake

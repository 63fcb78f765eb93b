// How fast the system lets this process run.
#pragma once

namespace ventolith::programs {

/// For the life of the process: its timers keep their times while nobody looks at it. A Mac slows down what
/// has no window in view, and heartbeats that come late give the fans back. The machine may sleep all the
/// same.
void keepFullSpeed();

} // namespace ventolith::programs

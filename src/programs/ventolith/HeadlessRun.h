// The application without a window: what it publishes is written down, and its actions are words on a line.
#pragma once

#include "programs/common/MachineSelection.h"

namespace ventolith::programs {

enum class EngineRuns { onTheModelsThread, onItsOwnThread };

/// Runs until SIGINT, SIGTERM, SIGHUP or the word "quit" on standard input, whose end changes nothing; then
/// gives the fans back and ends the process. Fails as Application does.
[[noreturn]] void runHeadless(const Environment& environment, EngineRuns engineRuns);

} // namespace ventolith::programs

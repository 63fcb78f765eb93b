// How long the application's end may take.
#pragma once

#include <chrono>

namespace ventolith::programs {

/// For the message that asks the fans back.
inline constexpr std::chrono::milliseconds lastWords{500};
/// For a driver or a bus that stands still. The process ends without it then.
inline constexpr std::chrono::milliseconds longestEngineEnd{200};

/// Ends the process, in order or, if its engine thread could not be ended, at once: what that one uses must
/// not be taken down.
[[noreturn]] void endProcess(bool isEngineEnded);

} // namespace ventolith::programs

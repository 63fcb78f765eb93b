// Lines on standard error, and in the system's log, from within a process that holds fans.
#pragma once

#include <string>

namespace ventolith::platform {

/// Writes `text` and an end of line to standard error, if that takes it at once; otherwise the line, or the
/// rest of it, is lost. Nobody who does not read it, no full disk and no closed pipe keeps the caller from
/// its work. The same goes to the system's log, where a daemon is looked for. Never throws. Any thread.
void sayOnStandardError(std::string text);

} // namespace ventolith::platform

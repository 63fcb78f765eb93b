// What a command says besides its result.
#pragma once

#include "programs/ventolithctl/Context.h"

#include <string>

namespace ventolith::ctl {

/// Text on standard error. What cannot be said, on a terminal that was closed or paused, is left unsaid: it
/// keeps no fan from going back.
void tryToWrite(Context& context, const std::string& text);

/// The same with the program's name in front, and a line feed.
void warn(Context& context, const std::string& text);

} // namespace ventolith::ctl

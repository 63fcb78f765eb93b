// The helper's registration, in words.
#pragma once

#include "helper/link/DaemonService.h"

#include <string>
#include <string_view>

namespace ventolith::ctl {

/// "enabled": as in JSON.
[[nodiscard]] std::string_view caseName(helper::DaemonStatus status);

/// "the helper is installed": as a reason, and as a sentence.
[[nodiscard]] std::string_view registrationReason(helper::DaemonStatus status);
[[nodiscard]] std::string registrationSentence(helper::DaemonStatus status);

/// What to do so that there is a helper; for a status that is `enabled` there is nothing.
[[nodiscard]] std::string_view registrationAdvice(helper::DaemonStatus status);

} // namespace ventolith::ctl

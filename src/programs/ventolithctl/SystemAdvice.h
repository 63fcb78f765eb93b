// What to do about the helper, where that differs by system.
#pragma once

#include <string_view>

namespace ventolith::ctl {

/// So that the helper is allowed to run.
[[nodiscard]] std::string_view approvalAdvice();

/// So that the system knows a helper at all.
[[nodiscard]] std::string_view installationAdvice();

} // namespace ventolith::ctl

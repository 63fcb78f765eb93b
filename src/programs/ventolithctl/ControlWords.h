// What the helper answers, in words.
#pragma once

#include "core/ControlContract.h"

#include <string>

namespace ventolith::ctl {

/// Why a command had no success, or not yet; what to do next where something can be done.
[[nodiscard]] std::string reasonText(const core::ControlResult& result);

/// What `state` says, a sentence a line: each fan that is not the firmware's, and what is wrong.
[[nodiscard]] std::string stateSentences(const core::ControlState& state);

} // namespace ventolith::ctl

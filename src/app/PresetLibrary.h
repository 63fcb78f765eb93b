// The presets that every installation starts with, and the rules of the list of presets. Pure.
#pragma once

#include "core/FanControlPlan.h"

#include <optional>
#include <vector>

namespace ventolith::app {

namespace PresetLibrary {

// Fixed, so that they mean the same in every installation.
extern const core::UUID quietID;
extern const core::UUID balancedID;
extern const core::UUID maxID;

// Each makes a preset that controls exactly `fanIDs`, in that order, and all of them by the one curve, whose
// points have new identifiers each time. The curve follows the hottest sensor.
[[nodiscard]] core::FanPreset quiet(const std::vector<core::FanID>& fanIDs);
[[nodiscard]] core::FanPreset balanced(const std::vector<core::FanID>& fanIDs);
[[nodiscard]] core::FanPreset maxx(const std::vector<core::FanID>& fanIDs);

/// Quiet, Balanced and Max.
[[nodiscard]] std::vector<core::FanPreset> builtIns(const std::vector<core::FanID>& fanIDs);

} // namespace PresetLibrary

using FanPresets = std::vector<core::FanPreset>;

/// `presets` with `preset` in the place of the first one of its identifier, or else at the end.
[[nodiscard]] FanPresets presetsAfterUpserting(const core::FanPreset& preset, FanPresets presets);

/// `presets` without every one of the identifier of `preset`; none if that is built in, for those stay.
[[nodiscard]] std::optional<FanPresets> presetsAfterDeleting(const core::FanPreset& preset,
                                                             FanPresets presets);

} // namespace ventolith::app

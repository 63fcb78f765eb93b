// The capsule that says what a fan does, on its tile and in the menu bar's panel.
#pragma once

#include "core/ControlContract.h"

#include <QString>

namespace ventolith::ui {

struct ModeBadge {
  QString label;
  QString symbol;
  /// Accent text on the accent colour at 22 %; otherwise secondary text on the accent colour at 12 %.
  bool isAccented = false;

  bool operator==(const ModeBadge&) const = default;
};

[[nodiscard]] ModeBadge modeBadge(core::ControlMode mode);

} // namespace ventolith::ui

#include "ui/state/ModeBadge.h"

#include "ui/state/Numbers.h"

namespace ventolith::ui {

ModeBadge modeBadge(core::ControlMode mode) {
  return {.label = utf8Text(core::label(mode)),
          .symbol = utf8Text(core::symbolName(mode)),
          .isAccented = mode != core::ControlMode::automatic};
}

} // namespace ventolith::ui

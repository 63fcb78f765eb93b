#include "programs/ventolith/window/Display.h"

#include <algorithm>
#include <array>

namespace ventolith::programs {

bool hasDisplay(const Environment& environment) {
  constexpr std::array variables{"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
  return std::any_of(variables.begin(), variables.end(),
                     [&](const char* variable) { return !environment(variable).value_or("").empty(); });
}

bool givesOwnIcon() {
  return true;
}

} // namespace ventolith::programs

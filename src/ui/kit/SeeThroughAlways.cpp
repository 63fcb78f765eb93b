#include "ui/kit/SeeThrough.h"

namespace ventolith::ui {

bool screenShowsThroughWindows() {
  return true;
}

} // namespace ventolith::ui

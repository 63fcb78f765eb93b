// A desktop lists windows, not programs: with the window everything is done that there is to do.
#include "ui/kit/Presence.h"

namespace ventolith::ui {

void presentApplication() {}

void withdrawApplication() {}

} // namespace ventolith::ui

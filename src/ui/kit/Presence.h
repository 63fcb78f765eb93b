// The application among the others on the screen.
#pragma once

namespace ventolith::ui {

/// Its window opens: it comes before other programs, and stands where the system lists those that have
/// windows.
void presentApplication();
/// Its window has closed: an application that lives in the menu bar is listed no longer.
void withdrawApplication();

} // namespace ventolith::ui

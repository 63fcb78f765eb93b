// What assistive technology is told about the application's windows.
#pragma once

namespace ventolith::ui {

/// The main window is a window, and what opens above it (popovers, menus) is a part of the application: Qt
/// leaves such windows out, so that what is in them could be heard with the keyboard on it, but not be found.
/// Once a process, before the application object is made.
void installWindowAccessibility();

} // namespace ventolith::ui

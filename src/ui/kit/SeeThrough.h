// Whether a part of a window can be left out, so that what lies behind it shows.
#pragma once

namespace ventolith::ui {

/// As the screen is now. Without it what is left out of a window is black: a window that casts a shadow must
/// go without, and be cut to its shape. Asked of the display server each time, since what provides it comes
/// and goes; main thread.
[[nodiscard]] bool screenShowsThroughWindows();

} // namespace ventolith::ui

// Tells the theme what the desktop says itself of its look.
#pragma once

#include <QObject>

#include <memory>

namespace ventolith::ui {

class Theme;

/// Live, for as long as the result stands; the theme outlives it. The application object stands before it is
/// made. A desktop that says nothing leaves the theme to the toolkit (FollowsQt).
[[nodiscard]] std::unique_ptr<QObject> followDesktop(Theme& theme);

} // namespace ventolith::ui

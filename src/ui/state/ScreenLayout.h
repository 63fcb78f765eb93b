// How the screens answer to the size of the window. All lengths are logical pixels.
#pragma once

namespace ventolith::ui {

/// The least width of the content of the screens that scroll, and of the rules.
inline constexpr int detailMinimumWidth = 560;

inline constexpr int chartMinimumHeight = 300;

/// The height of the curve editor's chart in a window of that height.
[[nodiscard]] int chartHeight(int windowHeight);

/// How many sliders of the response tuning stand side by side in content of that width.
[[nodiscard]] int tuningColumns(int contentWidth);

} // namespace ventolith::ui

// Sizes that more than one piece of the interface uses, in logical pixels, and durations in milliseconds.
#pragma once

#include <QMargins>

namespace ventolith::ui::metrics {

// The spacing scale.
inline constexpr int space2 = 2, space4 = 4, space6 = 6, space8 = 8, space10 = 10, space12 = 12;
inline constexpr int space16 = 16, space20 = 20, space24 = 24, space32 = 32;

// A screen.
inline constexpr int screenTop = 20, screenSides = 20, screenBottom = 32;
inline constexpr int betweenCards = 16;
inline constexpr int titleToContent = 12;
inline constexpr int windowMinimumWidth = 900, windowMinimumHeight = 640;
inline constexpr int topBarHeight = 52;
inline constexpr int sidebarWidth = 200, sidebarMinimum = 180, sidebarMaximum = 240;
inline constexpr int panelWidth = 320;

// Padding, the stroke included.
inline constexpr int cardPadding = 16;
inline constexpr int tilePadding = 14;
inline constexpr int bannerPaddingVertical = 14, bannerPaddingHorizontal = 16;
inline constexpr int errorPadding = 10;

// Radii.
inline constexpr double cardRadius = 12;
inline constexpr double tileRadius = 10;
inline constexpr double menuRadius = 9;
inline constexpr double sensorRowRadius = 8;
inline constexpr double errorRadius = 8;
inline constexpr double controlRadius = 7; // Button, picker, sidebar row, thumbnail.
inline constexpr double smallButtonRadius = 6;
inline constexpr double stepperRadius = 5;
inline constexpr double menuRowRadius = 5;
inline constexpr double checkBoxRadius = 4.5;
inline constexpr double plateRadius = 14;

// Strokes.
inline constexpr double hairline = 1;
inline constexpr double activeCardStroke = 2;
inline constexpr double dashedStroke = 1.5, dashOn = 6, dashOff = 4;
inline constexpr double chartStroke = 2.5;
inline constexpr double safetyStroke = 1.5, safetyDashOn = 5, safetyDashOff = 4;
inline constexpr double thumbnailStroke = 2;
inline constexpr double gaugeStroke = 5;

// The focus ring.
inline constexpr double focusRingWidth = 3, focusRingGap = 1, focusRingRadius = 2;

// States: how much of `primaryText` lies over a fill (of black over `accentFill`), and what remains visible.
inline constexpr double hoverMix = 0.04, hoverMixPlain = 0.06, hoverMixProminent = 0.08;
inline constexpr double pressMix = 0.10, pressMixProminent = 0.16;
inline constexpr double disabledOpacity = 0.42, disabledSliderOpacity = 0.5, disabledRuleOpacity = 0.55;

// Motion.
inline constexpr int hoverMotion = 80, selectionMotion = 150, popoverMotion = 120, liveLineMotion = 200;
inline constexpr int readingMotion = 300;

// Responsive grids.
inline constexpr int sensorMinimum = 230, sensorGap = 10;
inline constexpr int presetMinimum = 220, presetGap = 16;
inline constexpr int fanMinimum = 260, fanGap = 12;

} // namespace ventolith::ui::metrics

namespace ventolith::ui {

/// What every screen leaves free around its content.
[[nodiscard]] constexpr QMargins detailContentInsets() {
  return {metrics::screenSides, metrics::screenTop, metrics::screenSides, metrics::screenBottom};
}

} // namespace ventolith::ui

// The colours of the interface, by role. Defined once, for light and for dark.
//
// Nothing else in the interface names a colour: who paints asks for a role. What shows that something is
// selected, filled in or can be pressed is made from one accent, which the system may give.
#pragma once

#include <QColor>

#include <optional>

namespace ventolith::ui {

enum class Appearance { light, dark };

struct Palette {
  Appearance appearance = Appearance::light;

  // Surfaces
  QColor windowBackground, toolbarBackground, sidebarBackground, cardBackground, tileBackground;
  QColor controlBackground, buttonBackground, panelBackground, menuBackground, thumbBackground;
  QColor sensorRowFill; ///< Lies over a card.

  // Strokes
  QColor cardStroke, tileStroke, buttonStroke, separator, menuStroke, newCardStroke;

  // Text. `tertiaryText` is for cards and windows, not for the sidebar.
  QColor primaryText, secondaryText, tertiaryText;

  // Accent
  QColor accent;        ///< Text, icons, outlines.
  QColor accentFill;    ///< Prominent buttons, switches, a menu row under the pointer.
  QColor onAccent;      ///< Text and icons on `accentFill`.
  QColor accentGraphic; ///< The fill of gauges and sliders.
  // Of `accent`, see-through: they lie over any surface.
  QColor accentFaint;      ///< The badge "Auto", the plate behind an icon.
  QColor sidebarSelection; ///< The chosen row of the sidebar.
  QColor accentActive;     ///< "Active", the track of a gauge.
  QColor accentSoft;       ///< Other badges, the halo of a chosen point.
  QColor focusRing;

  // Status
  QColor success, successText, warning, warningFill, warningStroke;
  QColor danger, dangerFill, dangerStroke, neutralFill, neutralStroke;

  // Controls
  QColor trackBackground, knob, knobStroke, switchOff;

  // Chart
  QColor chartLine, chartGrid, chartAxis, safetyLine;

  // Shadows: nothing casts one but a preset's card, a knob, and what floats above a window.
  QColor cardShadow, knobShadow, menuShadow;

  /// The house's own colours.
  [[nodiscard]] static Palette of(Appearance appearance);
  /// The same with `accent` as the one accent. Every role made from it keeps its contrast: it is made darker
  /// or lighter until text in it can be read wherever it is used.
  [[nodiscard]] static Palette of(Appearance appearance, std::optional<QColor> accent);
};

/// Names a role: `palette.*role`, as in `&Palette::secondaryText`.
using ColorRole = QColor Palette::*;

/// `over` laid over `base` at `fraction` (0 to 1) of its opacity; opaque if `base` is.
[[nodiscard]] QColor mixed(const QColor& base, const QColor& over, double fraction);
/// `over` with its own opacity laid over the opaque `base`.
[[nodiscard]] QColor composed(const QColor& base, const QColor& over);
/// `color` at `fraction` of its opacity.
[[nodiscard]] QColor faded(const QColor& color, double fraction);
/// The contrast ratio of the Web Content Accessibility Guidelines, 1 to 21, of two opaque colours.
[[nodiscard]] double contrast(const QColor& one, const QColor& other);

} // namespace ventolith::ui

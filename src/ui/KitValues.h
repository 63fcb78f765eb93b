// The plain values of the core and of the screens' state, in the terms of the kit.
#pragma once

#include "core/TemperatureScale.h"
#include "ui/kit/Symbol.h"
#include "ui/kit/Theme.h"

#include <QColor>

namespace ventolith::ui {

[[nodiscard]] inline QColor qColor(const core::Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.r), static_cast<float>(color.g),
                          static_cast<float>(color.b));
}

/// The appearance that temperatures are coloured for.
[[nodiscard]] inline core::ColorScheme schemeOf(const Theme& theme) {
  return theme.appearance() == Appearance::dark ? core::ColorScheme::dark : core::ColorScheme::light;
}

/// Of a name that a screen's state gives. A name without a drawing is a mistake, which shows as the sign for
/// something that went wrong.
[[nodiscard]] inline Symbol symbolFor(const QString& name) {
  return symbolNamed(name).value_or(Symbol::warningTriangle);
}

} // namespace ventolith::ui

// The set of icons, under the names of the design.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace ventolith::ui {

enum class Symbol {
  gauge,
  chart,
  grid,
  stack,
  info,
  uturn,
  uturnCircle,
  fan,
  fanFilled,
  thermometer,
  bolt,
  boltSlash,
  refreshAlert,
  warningTriangle,
  sliders,
  hand,
  plusCircle,
  minusCircle,
  plus,
  reset,
  save,
  trash,
  ellipsisCircle,
  checkmarkCircle,
  checkmark,
  boltClock,
  chevronsUpDown,
  chevronDown,
  window
};

/// Every case, in order.
[[nodiscard]] const std::array<Symbol, 29>& allSymbols();

/// "arrow.uturn.backward": the name of the drawing, which is also the system's own symbol's where it has one.
[[nodiscard]] QString nameOf(Symbol symbol);
/// The symbol of that name; nothing for a name that is none.
[[nodiscard]] std::optional<Symbol> symbolNamed(const QString& name);

} // namespace ventolith::ui

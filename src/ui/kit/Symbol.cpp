#include "ui/kit/Symbol.h"

namespace ventolith::ui {
namespace {

struct Named {
  Symbol symbol;
  QLatin1String name;
};

constexpr std::array names{
    Named{Symbol::gauge, QLatin1String("gauge.with.dots.needle.67percent")},
    Named{Symbol::chart, QLatin1String("chart.line.uptrend.xyaxis")},
    Named{Symbol::grid, QLatin1String("square.grid.3x3")},
    Named{Symbol::stack, QLatin1String("square.stack.3d.up")},
    Named{Symbol::info, QLatin1String("info.circle")},
    Named{Symbol::uturn, QLatin1String("arrow.uturn.backward")},
    Named{Symbol::uturnCircle, QLatin1String("arrow.uturn.backward.circle")},
    Named{Symbol::fan, QLatin1String("fan")},
    Named{Symbol::fanFilled, QLatin1String("fan.fill")},
    Named{Symbol::thermometer, QLatin1String("thermometer.medium")},
    Named{Symbol::bolt, QLatin1String("bolt.fill")},
    Named{Symbol::boltSlash, QLatin1String("bolt.slash.fill")},
    Named{Symbol::refreshAlert, QLatin1String("exclamationmark.arrow.triangle.2.circlepath")},
    Named{Symbol::warningTriangle, QLatin1String("exclamationmark.triangle.fill")},
    Named{Symbol::sliders, QLatin1String("slider.horizontal.3")},
    Named{Symbol::hand, QLatin1String("hand.point.up.left.fill")},
    Named{Symbol::plusCircle, QLatin1String("plus.circle")},
    Named{Symbol::minusCircle, QLatin1String("minus.circle")},
    Named{Symbol::plus, QLatin1String("plus")},
    Named{Symbol::reset, QLatin1String("arrow.counterclockwise")},
    Named{Symbol::save, QLatin1String("square.and.arrow.down")},
    Named{Symbol::trash, QLatin1String("trash")},
    Named{Symbol::ellipsisCircle, QLatin1String("ellipsis.circle")},
    Named{Symbol::checkmarkCircle, QLatin1String("checkmark.circle.fill")},
    Named{Symbol::checkmark, QLatin1String("checkmark")},
    Named{Symbol::boltClock, QLatin1String("bolt.badge.clock")},
    Named{Symbol::chevronsUpDown, QLatin1String("chevron.up.chevron.down")},
    Named{Symbol::chevronDown, QLatin1String("chevron.down")},
    Named{Symbol::window, QLatin1String("macwindow")},
};

} // namespace

const std::array<Symbol, 29>& allSymbols() {
  static constexpr auto symbols = [] {
    std::array<Symbol, names.size()> list{};
    for (std::size_t index = 0; index < names.size(); ++index)
      list[index] = names[index].symbol;
    return list;
  }();
  return symbols;
}

QString nameOf(Symbol symbol) {
  return names[static_cast<std::size_t>(symbol)].name;
}

std::optional<Symbol> symbolNamed(const QString& name) {
  for (const auto& entry : names)
    if (name == entry.name) return entry.symbol;
  if (name == QLatin1String("thermometer")) return Symbol::thermometer; // The design uses both names.
  return std::nullopt;
}

} // namespace ventolith::ui

// The icons that the system's other programs have, where it has a set of them.
#pragma once

#include "ui/kit/Icons.h"

#include <memory>

namespace ventolith::ui {

/// For the theme of what is shown on this system: its own symbols, or the house's drawings.
[[nodiscard]] std::unique_ptr<SymbolSource> systemSymbols();

} // namespace ventolith::ui

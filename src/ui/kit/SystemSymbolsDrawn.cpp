#include "ui/kit/SystemSymbols.h"

namespace ventolith::ui {

std::unique_ptr<SymbolSource> systemSymbols() {
  return std::make_unique<SVGSymbols>();
}

} // namespace ventolith::ui

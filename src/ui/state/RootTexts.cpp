#include "ui/state/RootTexts.h"

#include <QCoreApplication>

namespace ventolith::ui {

namespace {

class Root {
  Q_DECLARE_TR_FUNCTIONS(Root)
};

} // namespace

RootTexts rootTexts() {
  return {.screens = Root::tr("Screens"),
          .restoreAuto = Root::tr("Restore Auto"),
          .restoreAutoToolTip = Root::tr("Return all fans to firmware Auto")};
}

} // namespace ventolith::ui

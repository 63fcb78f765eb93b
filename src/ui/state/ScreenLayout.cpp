#include "ui/state/ScreenLayout.h"

namespace ventolith::ui {

int chartHeight(int windowHeight) {
  if (windowHeight >= 1000) return 420;
  if (windowHeight >= 760) return 342;
  return chartMinimumHeight;
}

int tuningColumns(int contentWidth) {
  return contentWidth < 640 ? 1 : 2;
}

} // namespace ventolith::ui

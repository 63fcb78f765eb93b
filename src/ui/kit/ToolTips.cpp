#include "ui/kit/ToolTips.h"

#include "ui/kit/Palette.h"
#include "ui/kit/Type.h"

#include <QPalette>
#include <QToolTip>

namespace ventolith::ui {

void dressToolTips(const Palette& palette) {
  QPalette colors = QToolTip::palette();
  for (const auto role : {QPalette::ToolTipBase, QPalette::Window, QPalette::Base})
    colors.setColor(role, palette.menuBackground);
  // The style draws the edge in the colour of the text: that of `primaryText` would be a black frame.
  for (const auto role : {QPalette::ToolTipText, QPalette::WindowText, QPalette::Text})
    colors.setColor(role, palette.secondaryText);
  QToolTip::setPalette(colors);
  QToolTip::setFont(fontOf(TextRole::secondary));
}

} // namespace ventolith::ui

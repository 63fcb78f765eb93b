// The toolkit's tool tips, in the theme's colours and type.
#pragma once

namespace ventolith::ui {

struct Palette;

/// All tool tips of the process look so from now on, the one that is shown included.
void dressToolTips(const Palette& palette);

} // namespace ventolith::ui

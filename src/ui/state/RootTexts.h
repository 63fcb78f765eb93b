// The words of the main window's frame.
#pragma once

#include <QString>

namespace ventolith::ui {

struct RootTexts {
  QString screens;     // What the sidebar is called where it is spoken of.
  QString restoreAuto; // Never disabled: a way back to the firmware is there in every state.
  QString restoreAutoToolTip;
};
[[nodiscard]] RootTexts rootTexts();

} // namespace ventolith::ui

// The entries of the main window's sidebar.
#pragma once

#include <QString>

#include <array>

namespace ventolith::ui {

enum class AppSection { dashboard, curves, rules, presets, about };

/// In the order of the sidebar.
inline constexpr std::array allAppSections = {AppSection::dashboard, AppSection::curves, AppSection::rules,
                                              AppSection::presets, AppSection::about};

/// What stands in the sidebar, and in the window's title while the section is shown.
[[nodiscard]] QString title(AppSection section);
/// The icon beside it, a name of the platform's symbol set.
[[nodiscard]] QString symbol(AppSection section);

} // namespace ventolith::ui

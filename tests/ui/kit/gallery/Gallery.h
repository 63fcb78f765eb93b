// Pages of the kit's pieces, as pictures: to be laid beside the drawings of the design.
#pragma once

#include "ui/kit/Theme.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace ventolith::ui::gallery {

struct Page {
  QString name; ///< Of the file: "pieces" becomes pieces-light-2x.png and so on.
  QSize size;
  std::function<std::unique_ptr<QWidget>(const Theme&)> make;
};

[[nodiscard]] Page lookPage();     ///< Colours, type, icons, shadows.
[[nodiscard]] Page controlsPage(); ///< Every control in every state.
[[nodiscard]] Page piecesPage();   ///< Cards, banners, badges, gauges.
[[nodiscard]] Page fansPage();     ///< A screen put together of them.

/// A widget that fills itself with the window's colour.
[[nodiscard]] std::unique_ptr<QWidget> makeGround(const Theme& theme,
                                                  ColorRole role = &Palette::windowBackground);

/// `page` at `scale` device pixels to a pixel.
[[nodiscard]] QImage pictureOf(QWidget& page, QSize size, double scale);

} // namespace ventolith::ui::gallery

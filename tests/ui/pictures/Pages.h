// What pictures are taken of. Each area of the interface adds a function here.
#pragma once

#include "Scene.h"

#include <QImage>
#include <QSize>
#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

namespace ventolith::ui::pictures {

/// At twice the size.
[[nodiscard]] QImage pictureOf(QWidget& view);

/// `make` puts what is seen into a scene, which keeps it.
struct Page {
  QString name; ///< Of the files: "dashboard-stale" becomes dashboard-stale-light-900x640.png and so on.
  Situation situation = Situation::normal;
  std::vector<QSize> sizes; ///< None: the widget's own size.
  std::function<QWidget&(Scene&)> make;
};

/// Every screen in the window, in every situation.
[[nodiscard]] std::vector<Page> windowPages();

/// What stands in the status area, and its panel.
[[nodiscard]] std::vector<Page> menuBarPages();

/// The curve editor with a point chosen, and what it saves a preset with.
[[nodiscard]] std::vector<Page> curvePages();

/// Rules and presets in the user's hand: open menus, a name being written, a row being dragged.
[[nodiscard]] std::vector<Page> workPages();

} // namespace ventolith::ui::pictures

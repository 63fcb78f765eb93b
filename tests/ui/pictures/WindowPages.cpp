#include "Pages.h"

#include "ui/RootView.h"
#include "ui/kit/Metrics.h"

namespace ventolith::ui::pictures {

namespace {

QWidget& screen(Scene& scene, AppSection section) {
  auto& root = scene.keep(std::make_unique<RootView>(scene.given()));
  root.setSection(section);
  return root;
}

} // namespace

std::vector<Page> windowPages() {
  const std::vector<QSize> sizes{{metrics::windowMinimumWidth, metrics::windowMinimumHeight}, {1600, 1000}};
  std::vector<Page> pages;
  for (const AppSection section : allAppSections)
    for (const Situation situation : allSituations)
      pages.push_back({.name = title(section).toLower().replace(QLatin1Char(' '), QLatin1Char('-')) +
                               QLatin1Char('-') + nameOf(situation),
                       .situation = situation,
                       .sizes = sizes,
                       .make = [section](Scene& scene) -> QWidget& { return screen(scene, section); }});
  return pages;
}

} // namespace ventolith::ui::pictures

#include "Pages.h"

#include "support/TemporaryFolder.h"
#include "ui/MenuBarLabel.h"
#include "ui/MenuBarView.h"
#include "ui/RootView.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Popover.h"

#include <QPainter>
#include <QVBoxLayout>

namespace ventolith::ui::pictures {

namespace {

/// The panel as it opens, shadow and all.
QWidget& panel(Scene& scene) {
  auto& popover = scene.keep(std::make_unique<Popover>(scene.look(), nullptr));
  popover.setContent(new MenuBarView(scene.given()), 0);
  return popover;
}

/// Labels of several sizes on a dark ground and on a light one.
class Trays final : public QWidget {
public:
  explicit Trays(std::vector<QIcon> labels) : labels_(std::move(labels)) {}

  [[nodiscard]] QSize sizeHint() const override {
    return {340, 2 * static_cast<int>(labels_.size()) * rowHeight};
  }

protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    int top = 0;
    for (const QColor& ground : {QColor(0x20, 0x20, 0x24), QColor(0xec, 0xee, 0xf2)}) {
      painter.fillRect(0, top, width(), rowHeight * static_cast<int>(labels_.size()), ground);
      for (const QIcon& label : labels_) {
        int left = 8;
        for (const int side : {16, 22, 24, 32, 48, 64}) {
          const QSize size = label.actualSize({side, side});
          label.paint(&painter, QRect(QPoint(left, top + (rowHeight - size.height()) / 2), size));
          left += size.width() + 16;
        }
        top += rowHeight;
      }
    }
  }

private:
  static constexpr int rowHeight = 80;
  std::vector<QIcon> labels_;
};

QWidget& trays(Scene& scene) {
  const MenuBarLabel label(scene.given());
  std::vector<QIcon> labels{label.picture()};
  return scene.keep(std::make_unique<Trays>(std::move(labels)));
}

/// The window of an installed build, which knows its version and its notices.
class Installed final : public QWidget {
public:
  explicit Installed(const ViewContext& scene)
      : context_{.model = scene.model,
                 .watch = scene.watch,
                 .theme = scene.theme,
                 .bundle = bundle_,
                 .mainExecutor = scene.mainExecutor,
                 .clock = scene.clock,
                 .hasSupportPage = true,
                 .openDashboard = {},
                 .quit = {},
                 .resourceFolder = QString::fromStdString(folder_.path().string())} {
    folder_.write("THIRD_PARTY_NOTICES.md",
                  "# Third-party notices\n\nVentolith includes the following software.\n\n"
                  "## A library\nCopyright (C) its authors.\nLicensed under the MIT License.\n\n"
                  "## Another library\nDistributed under the Boost Software License, Version 1.0.\n");
    auto* root = new RootView(context_);
    root->setSection(AppSection::about);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->addWidget(root);
  }
  ~Installed() override { qDeleteAll(children()); } // While what they are given is there.

private:
  support::TemporaryFolder folder_;
  app::MapBundleInfo bundle_{{{"CFBundleName", std::string("Ventolith")},
                              {"CFBundleShortVersionString", std::string("1.0.0")},
                              {"CFBundleVersion", std::string("1")}}};
  ViewContext context_;
};

QWidget& installed(Scene& scene) {
  return scene.keep(std::make_unique<Installed>(scene.given()));
}

} // namespace

std::vector<Page> menuBarPages() {
  std::vector<Page> pages;
  pages.push_back({.name = QStringLiteral("about-installed"),
                   .sizes = {{metrics::windowMinimumWidth, metrics::windowMinimumHeight}, {1600, 1000}},
                   .make = installed});
  for (const Situation situation : allSituations)
    pages.push_back(
        {.name = QStringLiteral("panel-") + nameOf(situation), .situation = situation, .make = panel});
  for (const Situation situation : {Situation::normal, Situation::empty})
    pages.push_back(
        {.name = QStringLiteral("tray-") + nameOf(situation), .situation = situation, .make = trays});
  return pages;
}

} // namespace ventolith::ui::pictures

#include "Pages.h"

#include "ui/PresetCard.h"
#include "ui/PresetMenu.h"
#include "ui/PresetsView.h"
#include "ui/RootView.h"
#include "ui/RuleRow.h"
#include "ui/RulesList.h"
#include "ui/RulesView.h"
#include "ui/kit/MenuButton.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

namespace ventolith::ui::pictures {

namespace {

/// A picture of a window over another, which is as large as the other's menu.
class Over final : public QWidget {
public:
  Over(QWidget& window, QWidget& menu) : QWidget(&window), picture_(pictureOf(menu)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(QRect(window.mapFromGlobal(menu.pos()), menu.size()));
    show();
  }

protected:
  void paintEvent(QPaintEvent*) override { QPainter(this).drawImage(0, 0, picture_); }

private:
  QImage picture_;
};

RootView& shown(Scene& scene, AppSection section, QSize size) {
  auto& root = scene.keep(std::make_unique<RootView>(scene.given()));
  root.setSection(section);
  root.resize(size);
  root.show();
  root.activateWindow();
  scene.settleDown();
  return root;
}

/// Opens the menu with the pointer on one of its rows.
void open(Scene& scene, QWidget& root, MenuButton& button, int row) {
  root.move(100 - button.mapTo(&root, QPoint()).x(), 0); // Menus keep to the screen, which is narrow here.
  button.openMenu();
  button.menu().setActiveAction(button.menu().actionOf(row));
  scene.settleDown();
  new Over(root, button.menu());
}

QWidget& tray(Scene& scene, QSize size) {
  RootView& root = shown(scene, AppSection::dashboard, size);
  open(scene, root, root.findChild<PresetMenu*>()->button(), 3);
  return root;
}

QWidget& cardMenu(Scene& scene, QSize size) {
  RootView& root = shown(scene, AppSection::presets, size);
  open(scene, root, root.findChild<PresetsView*>()->cards().front()->menu(), 1);
  return root;
}

QWidget& renaming(Scene& scene, QSize size) {
  RootView& root = shown(scene, AppSection::presets, size);
  root.findChild<PresetsView*>()->cards().back()->beginRenaming();
  return root;
}

QWidget& sensorMenu(Scene& scene, QSize size) {
  RootView& root = shown(scene, AppSection::rules, size);
  open(scene, root, root.findChild<RulesList*>()->rows().at(1)->sensorMenu(), 6);
  return root;
}

QWidget& drag(Scene& scene, QSize size) {
  RootView& root = shown(scene, AppSection::rules, size);
  RuleRow& row = *root.findChild<RulesList*>()->rows().front();
  const QPointF grip(row.width() - 60, row.height() / 2.0);
  for (const int dy : {0, 90}) {
    const QPointF place = grip + QPointF(0, dy);
    QMouseEvent event(dy == 0 ? QEvent::MouseButtonPress : QEvent::MouseMove, place, row.mapToGlobal(place),
                      dy == 0 ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&row, &event);
  }
  return root;
}

QWidget& focus(Scene& scene, QSize size) {
  RootView& root = shown(scene, AppSection::rules, size);
  root.findChild<RulesList*>()->rows().at(2)->setFocus(Qt::TabFocusReason);
  return root;
}

Page page(const char* name, QSize size, QWidget& (*make)(Scene&, QSize),
          Situation situation = Situation::normal) {
  return {.name = QString::fromUtf8(name),
          .situation = situation,
          .sizes = {size},
          .make = [make, size](Scene& scene) -> QWidget& { return make(scene, size); }};
}

} // namespace

std::vector<Page> workPages() {
  constexpr QSize ofRules{1000, 640}, ofPresets{1000, 760};
  return {page("work-tray", ofPresets, tray),
          page("work-tray-inactive", ofPresets, tray, Situation::inactive),
          page("work-tray-long-names", ofPresets, tray, Situation::longNames),
          page("work-card-menu", ofPresets, cardMenu),
          page("work-renaming", ofPresets, renaming),
          page("work-renaming-long-names", ofPresets, renaming, Situation::longNames),
          page("work-sensor-menu", ofRules, sensorMenu),
          page("work-sensor-menu-long-names", ofRules, sensorMenu, Situation::longNames),
          page("work-drag", ofRules, drag),
          page("work-focus", ofRules, focus)};
}

} // namespace ventolith::ui::pictures

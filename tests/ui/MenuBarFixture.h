// A menu bar's panel of a model among doubles, and what it shows.
#pragma once

#include "Finding.h"
#include "ViewFixture.h"
#include "ui/FanControlBlock.h"
#include "ui/MenuBarHeader.h"
#include "ui/MenuBarView.h"
#include "ui/kit/IconView.h"
#include "ui/kit/Slider.h"
#include "ui/kit/TextLabel.h"

#include <memory>

namespace ventolith::ui {

class MenuBarViewTest : public ViewTest {
protected:
  ~MenuBarViewTest() override { view = nullptr; }

  void show() {
    view = std::make_unique<MenuBarView>(*context);
    view->catchUp();
    view->adjustSize();
    view->show();
    turn();
  }
  void showWithHelper() {
    beginWithHelper();
    show();
  }
  void setStale(bool isStale) {
    helper::HelperManager::reportHelperStale(isStale);
    turn();
  }
  [[nodiscard]] QStringList header() const { return textsIn(*view->findChild<MenuBarHeader*>()); }
  [[nodiscard]] QStringList chips() const { return textsIn(*view->findChild<SensorChipsRow*>()); }
  [[nodiscard]] std::vector<FanControlBlock*> blocks() const { return seenIn<FanControlBlock>(*view); }
  [[nodiscard]] FanControlBlock& blockOf(core::FanID fan) const {
    for (FanControlBlock* block : blocks())
      if (block->fanID() == fan) return *block;
    throw std::logic_error("no block is that fan's");
  }
  [[nodiscard]] std::size_t dividers() const {
    std::size_t count = 0;
    for (const Divider* divider : seenIn<Divider>(*view))
      count += divider->height() == 1 ? 1U : 0U;
    return count;
  }
  /// The controls in the order of the keyboard, from the first on.
  [[nodiscard]] QStringList keyboardOrder() const {
    QStringList order;
    QWidget* const first = view.get();
    for (QWidget* next = first->nextInFocusChain(); next != first; next = next->nextInFocusChain()) {
      const bool isReached = next->focusPolicy() & Qt::TabFocus && next->isEnabled() &&
                             next->isVisibleTo(first) && !next->isWindow();
      if (!isReached) continue;
      const auto* button = qobject_cast<const Button*>(next);
      order << (button != nullptr && !button->title().isEmpty() ? button->title() : next->accessibleName());
    }
    return order;
  }

  std::unique_ptr<MenuBarView> view;
};

} // namespace ventolith::ui

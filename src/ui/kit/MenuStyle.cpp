#include "ui/kit/MenuStyle.h"

#include "ui/kit/ControlFeel.h"
#include "ui/kit/MenuPanel.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"

#include <QAction>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <cmath>

namespace ventolith::ui {
namespace {

constexpr int scrollerHeight = 18;
constexpr double scrollerIcon = 12;

/// The menu puts the action where a style finds the object that it draws.
const QAction* actionOf(const QStyleOption& option) {
  return qobject_cast<const QAction*>(option.styleObject);
}

} // namespace

int MenuStyle::shadowReach() const {
  return castsShadow_ ? reachOf(menuShadow(theme_.palette())) : 0;
}

int MenuStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
  case PM_MenuPanelWidth: return shadowReach();
  case PM_MenuHMargin:
  case PM_MenuVMargin: return MenuPanel::padding;
  case PM_MenuScrollerHeight: return scrollerHeight;
  case PM_MenuTearoffHeight:
  case PM_SubMenuOverlap: return 0;
  default: return QCommonStyle::pixelMetric(metric, option, widget);
  }
}

int MenuStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returned) const {
  switch (hint) {
  case SH_Menu_Mask:
    if (castsShadow_) return 0;
    if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(returned))
      mask->region = roundedRegion(menu_.rect(), metrics::menuRadius);
    return 1;
  case SH_Menu_Scrollable:
  case SH_Menu_MouseTracking:
  case SH_Menu_KeyboardSearch: return 1;
  case SH_Menu_AllowActiveAndDisabled:
  case SH_Menu_FlashTriggeredItem:
  case SH_Menu_FadeOutOnHide: return 0;
  default: return QCommonStyle::styleHint(hint, option, widget, returned);
  }
}

QSize MenuStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                  const QWidget* widget) const {
  const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  if (type != CT_MenuItem || item == nullptr) {
    return QCommonStyle::sizeFromContents(type, option, size, widget);
  }
  if (item->menuItemType == QStyleOptionMenuItem::Separator) {
    return {minimumRowWidth_, 2 * MenuPanel::dividerMargin + 1};
  }
  const MenuRow* row = menu_.rowOf(actionOf(*option));
  const QString title = row != nullptr ? row->titleShown() : QString();
  const double icon = menu_.hasIconColumn() ? MenuPanel::iconSide + MenuPanel::iconGap : 0;
  const double width = 2 * MenuPanel::rowPadding + icon + TextLine(title, TextRole::body).width();
  return {std::max(static_cast<int>(std::ceil(width)), minimumRowWidth_), MenuPanel::rowHeight};
}

void MenuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption*, QPainter* painter,
                              const QWidget*) const {
  if (element != PE_PanelMenu) return; // The frame is part of the panel.
  const Palette& palette = theme_.palette();
  paintFloating(*painter, menu_.panel(),
                {.fill = palette.menuBackground, .stroke = palette.menuStroke, .radius = metrics::menuRadius},
                castsShadow_ ? std::optional(menuShadow(palette)) : std::nullopt);
}

void MenuStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget*) const {
  if (element == CE_MenuItem) drawRow(*option, *painter);
  if (element == CE_MenuScroller) drawScroller(*option, *painter);
}

void MenuStyle::drawRow(const QStyleOption& option, QPainter& painter) const {
  const Palette& palette = theme_.palette();
  const MenuRow* row = menu_.rowOf(actionOf(option));
  if (row == nullptr) return;
  const QRectF all(option.rect);
  if (row->isDivider) {
    const QRectF line(all.left() + MenuPanel::dividerInset, all.top() + MenuPanel::dividerMargin,
                      all.width() - 2 * MenuPanel::dividerInset, 1);
    return paintBox(painter, line, {.fill = palette.separator});
  }
  paintFaded(painter, option.rect, row->isEnabled ? 1 : metrics::disabledOpacity, [&](QPainter& on) {
    const bool isChosen = row->isEnabled && option.state.testFlag(State_Selected);
    const bool isDestructive = row->role == MenuRole::destructive;
    if (isChosen) paintBox(on, all, {.fill = palette.accentFill, .radius = metrics::menuRowRadius});
    const QColor title = isChosen ? palette.onAccent : isDestructive ? palette.danger : palette.primaryText;
    const QColor icon = isChosen || isDestructive ? title : palette.secondaryText;

    QRectF words = all.adjusted(MenuPanel::rowPadding, 0, -MenuPanel::rowPadding, 0);
    const bool isLeading = option.direction == Qt::LeftToRight;
    if (menu_.hasIconColumn()) {
      const double side = MenuPanel::iconSide;
      const QRectF place(isLeading ? words.left() : words.right() - side, all.center().y() - side / 2, side,
                         side);
      if (row->mark == MenuMark::column) {
        theme_.icons().paint(on, place, Symbol::checkmark, title);
      } else if (row->symbol) {
        theme_.icons().paint(on, place, *row->symbol, icon);
      }
      const double taken = side + MenuPanel::iconGap;
      words.adjust(isLeading ? taken : 0, 0, isLeading ? 0 : -taken, 0);
    }
    TextLine(row->titleShown(), TextRole::body).elided(words.width()).paint(on, words, title);
  });
}

void MenuStyle::drawScroller(const QStyleOption& option, QPainter& painter) const {
  const bool isDown = option.state.testFlag(State_DownArrow);
  const QRectF all(option.rect);
  paintBox(painter, all, {.fill = theme_.palette().menuBackground});
  painter.save();
  painter.translate(all.center());
  if (!isDown) painter.scale(1, -1);
  const QRectF icon(-scrollerIcon / 2, -scrollerIcon / 2, scrollerIcon, scrollerIcon);
  theme_.icons().paint(painter, icon, Symbol::chevronDown, theme_.palette().secondaryText);
  painter.restore();
}

} // namespace ventolith::ui

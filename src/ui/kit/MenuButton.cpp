#include "ui/kit/MenuButton.h"

#include "ui/kit/Accessibility.h"

#include <QAccessible>
#include <QKeyEvent>

#include <utility>

namespace ventolith::ui {
namespace {

constexpr int chevronSide = 14;
constexpr int symbolAlone = 18;
constexpr int pullDownMenuWidth = 190;
constexpr int widestPullDown = 240;

ButtonKind buttonKind(MenuButtonKind kind) {
  return kind == MenuButtonKind::pullDown ? ButtonKind::bordered : ButtonKind::borderless;
}

ButtonMetrics metricsOf(MenuButtonKind kind, ButtonSize size) {
  ButtonMetrics its = ButtonMetrics::of(buttonKind(kind), size);
  switch (kind) {
  case MenuButtonKind::pullDown:
    its.trailing = 7;
    its.trailingIcon = chevronSide;
    its.trailingGap = 6;
    break;
  case MenuButtonKind::inLine:
    its.height = 24;
    its.text = TextRole::bodyStrong;
    its.trailing = 2;
    its.trailingIcon = chevronSide;
    its.trailingGap = 2;
    break;
  case MenuButtonKind::symbol: break;
  }
  return its;
}

} // namespace

MenuButton::MenuButton(const Theme& theme, MenuButtonKind kind, QWidget* parent)
    : Button(theme, buttonKind(kind), ButtonSize::normal, parent),
      kind_(kind),
      menu_(new MenuPanel(theme, this)) {
  installAccessibility();
  setSize(ButtonSize::normal);
  if (kind == MenuButtonKind::pullDown) {
    setTrailing({Symbol::chevronDown, &Palette::secondaryText, false});
    setMaximumWidth(widestPullDown);
    setMinimumMenuWidth(pullDownMenuWidth);
  }
  if (kind == MenuButtonKind::symbol) setSymbolSize(symbolAlone);
  if (kind == MenuButtonKind::inLine) setTrailing({Symbol::chevronsUpDown, &Palette::accent, false});

  connect(this, &QAbstractButton::pressed, this, &MenuButton::openMenu);
  connect(menu_, &QMenu::aboutToShow, this, [this] { setOpen(true); });
  connect(menu_, &QMenu::aboutToHide, this, [this] {
    setDown(false);
    setOpen(false);
    announceExpanded(*this);
  });
}

void MenuButton::setSize(ButtonSize size) {
  setMetrics(metricsOf(kind_, size));
}

void MenuButton::setRows(std::function<std::vector<MenuRow>()> rows) {
  rows_ = std::move(rows);
}

void MenuButton::setMinimumMenuWidth(int width) {
  menu_->setMinimumPanelWidth(width);
}

void MenuButton::openMenu() {
  if (!isEnabled() || isMenuOpen()) return;
  menu_->setRows(rows_ ? rows_() : std::vector<MenuRow>());
  menu_->openAt(*this, currentRow());
  if (!isMenuOpen()) return setDown(false);
  announceExpanded(*this);
}

void MenuButton::refreshMenu() {
  if (isMenuOpen() && rows_) menu_->setRows(rows_());
}

void MenuButton::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
  case Qt::Key_Up:
  case Qt::Key_Down:
  case Qt::Key_Return:
  case Qt::Key_Enter: return openMenu();
  default: return Button::keyPressEvent(event);
  }
}

} // namespace ventolith::ui

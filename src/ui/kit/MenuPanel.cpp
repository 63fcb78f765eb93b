#include "ui/kit/MenuPanel.h"

#include "ui/kit/Anchoring.h"
#include "ui/kit/MenuStyle.h"
#include "ui/kit/Theme.h"

#include <QAction>
#include <QCoreApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QStyleOptionMenuItem>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ventolith::ui {
namespace {

/// What a row is known by when other rows take the place of all: several may have one title.
struct RowName {
  QString title;
  std::ptrdiff_t namesakesBefore;

  bool operator==(const RowName&) const = default;
};

/// `row` is one of `rows`.
RowName nameOf(const MenuRow& row, const std::vector<MenuRow>& rows) {
  const auto isNamesake = [&](const MenuRow& other) { return other.title == row.title; };
  return {row.title, std::count_if(rows.data(), &row, isNamesake)};
}

} // namespace

MenuRow MenuRow::divider() {
  return {.isDivider = true};
}

QString MenuRow::titleShown() const {
  return mark == MenuMark::prefixed ? QStringLiteral("\u2713 ") + title : title;
}

MenuPanel::MenuPanel(const Theme& theme, QWidget* parent)
    : QMenu(parent), theme_(theme), style_(std::make_unique<MenuStyle>(theme, *this)) {
  setStyle(style_.get());
  setWindowFlags(windowFlags() | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
  setAttribute(Qt::WA_TranslucentBackground);
  setToolTipsVisible(true);
  theme.repaints(this);
}

MenuPanel::~MenuPanel() {
  setStyle(nullptr); // Ours goes first.
}

void MenuPanel::setRows(std::vector<MenuRow> rows) {
  const MenuRow* const active = isVisible() ? rowOf(activeAction()) : nullptr;
  const std::optional<RowName> chosen =
      active != nullptr ? std::optional(nameOf(*active, rows_)) : std::nullopt;
  for (QAction* action : std::exchange(actions_, {})) {
    removeAction(action);
    action->deleteLater(); // It may be the one that is being carried out.
  }
  rows_ = std::move(rows);
  hasIconColumn_ = std::any_of(rows_.begin(), rows_.end(), [](const MenuRow& row) {
    return row.symbol.has_value() || row.mark == MenuMark::column;
  });
  for (const MenuRow& row : rows_) {
    actions_.push_back(makeAction(row));
    addAction(actions_.back());
    if (chosen && nameOf(row, rows_) == *chosen) setActiveAction(actions_.back());
  }
}

QAction* MenuPanel::makeAction(const MenuRow& row) {
  auto* action = new QAction(row.titleShown().replace(QLatin1Char('&'), QLatin1String("&&")), this);
  action->setSeparator(row.isDivider);
  action->setEnabled(row.isEnabled);
  action->setToolTip(row.toolTip);
  if (row.mark == MenuMark::column) {
    action->setCheckable(true);
    action->setChecked(true);
  }
  connect(action, &QAction::triggered, this, [this, act = row.action] {
    close(); // Assistive technology carries a row out while the menu is open.
    if (act) act();
  });
  return action;
}

const MenuRow* MenuPanel::rowOf(const QAction* action) const {
  const auto found = std::find(actions_.begin(), actions_.end(), action);
  if (action == nullptr || found == actions_.end()) return nullptr;
  return &rows_[static_cast<std::size_t>(found - actions_.begin())];
}

QAction* MenuPanel::actionOf(int row) const {
  const auto index = static_cast<std::size_t>(row);
  return row >= 0 && index < actions_.size() ? actions_[index] : nullptr;
}

void MenuPanel::setMinimumPanelWidth(int width) {
  style_->setMinimumRowWidth(width - 2 * padding);
}

QRect MenuPanel::panel() const {
  const int reach = style_->shadowReach();
  return rect().adjusted(reach, reach, -reach, -reach);
}

void MenuPanel::openAt(QWidget& anchor, int current) {
  if (actions_.empty()) return;
  anchor_ = &anchor;
  setLayoutDirection(anchor.layoutDirection());
  takeShadow();
  const QSize size = sizeHint();
  const QPoint place = placeBeside(anchor, size, style_->shadowReach(), Alongside::leading);
  popup(place);
  // QMenu keeps the shadow on the screen, too; a menu that scrolls stays where it put it.
  if (this->size() == size) move(place);
  if (QAction* action = actionOf(current)) setActiveAction(action);
}

void MenuPanel::takeShadow() {
  const int before = style_->shadowReach();
  style_->setShadow(theme_.seeThrough());
  if (style_->shadowReach() == before) return;
  clearMask();
  QEvent changed(QEvent::StyleChange); // What was measured with the other margins is not true any more.
  QCoreApplication::sendEvent(this, &changed);
}

bool MenuPanel::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const MenuRow* row = rowOf(actionAt(static_cast<QHelpEvent*>(event)->pos()));
    if (row == nullptr || row->toolTip.isEmpty()) return true; // Titles do not tell themselves again.
  }
  return QMenu::event(event);
}

void MenuPanel::mousePressEvent(QMouseEvent* event) {
  if (panel().contains(event->position().toPoint())) return QMenu::mousePressEvent(event);
  // A press on the control that opened the menu closes it; the control is not to open it again.
  const QPoint place = event->globalPosition().toPoint();
  setAttribute(Qt::WA_NoMouseReplay, anchor_ != nullptr && globalRect(*anchor_).contains(place));
  close();
}

void MenuPanel::initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const {
  QMenu::initStyleOption(option, action);
  option->styleObject = const_cast<QAction*>(action);
}

} // namespace ventolith::ui

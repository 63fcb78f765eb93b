#include "ui/MenuBarExtra.h"

#include "ui/MenuBarView.h"
#include "ui/kit/Anchoring.h"
#include "ui/kit/Popover.h"
#include "ui/state/AboutContent.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace ventolith::ui {

namespace {

/// The height that a panel has beside `anchor`: below it or above it, wherever there is more.
int roomBeside(const QRect& anchor) {
  const QScreen* found = QGuiApplication::screenAt(anchor.center());
  const QRect screen = (found != nullptr ? found : QGuiApplication::primaryScreen())->availableGeometry();
  const int above = anchor.top() - screen.top();
  const int below = screen.bottom() - anchor.bottom();
  return std::max(above, below) - belowAnchor;
}

/// A press on the label closes an open panel before the label hears of it: it is not to open it again.
constexpr auto samePress = std::chrono::milliseconds(200);

} // namespace

MenuBarExtra::MenuBarExtra(const ViewContext& context, QObject* parent)
    : MenuBarExtra(context, makeStatusItem(), parent) {}

MenuBarExtra::MenuBarExtra(const ViewContext& context, std::unique_ptr<StatusItem> item, QObject* parent)
    : QObject(parent), context_(context), label_(context), item_(std::move(item)) {
  connect(&label_, &MenuBarLabel::changed, this, &MenuBarExtra::presentLabel);
  connect(item_.get(), &StatusItem::pressed, this, &MenuBarExtra::toggle);
  connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
    if (state != Qt::ApplicationActive) close();
  });
  presentLabel();
}

MenuBarExtra::~MenuBarExtra() = default;

void MenuBarExtra::presentLabel() {
  const QString name = applicationName(context_.bundle);
  const QString text = label_.text();
  item_->setLabel({.text = text,
                   .picture = label_.picture(),
                   .meaning = text.isEmpty() ? name : tr("%1: %2").arg(name, text)});
}

void MenuBarExtra::show() {
  item_->show();
}

bool MenuBarExtra::isInTray() const {
  return item_->isShown();
}

bool MenuBarExtra::isOpen() const {
  return popover_ && popover_->isVisible();
}

void MenuBarExtra::toggle() {
  if (isOpen()) return close();
  if (closed_ && context_.clock.now() - *closed_ < samePress) return;
  open();
}

void MenuBarExtra::makePanel() {
  popover_ = std::make_unique<Popover>(context_.theme, nullptr);
  popover_->setWindowTitle(applicationName(context_.bundle));
  panel_ = new MenuBarView(context_);
  popover_->setContent(panel_, 0);
  connect(panel_, &MenuBarView::left, this, &MenuBarExtra::close);
  connect(popover_.get(), &Popover::closed, this, [this] {
    closed_ = context_.clock.now();
    if (QWidget* last = popover_->focusWidget()) last->clearFocus(); // It is to begin at the top again.
  });
}

void MenuBarExtra::open() {
  if (!popover_) makePanel();
  const QRect place = anchor();
  panel_->setMaximumHeight(roomBeside(place));
  panel_->catchUp();
  popover_->openFrom(place);
}

void MenuBarExtra::close() {
  if (popover_) popover_->close();
}

/// Many desktops do not tell where they show the label: the pointer that pressed it is there, or was last.
QRect MenuBarExtra::anchor() const {
  const QRect shown = item_->place();
  return shown.isValid() ? shown : QRect(QCursor::pos(), QSize(1, 1));
}

} // namespace ventolith::ui

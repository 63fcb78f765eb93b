#include "ui/kit/Popover.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Anchoring.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

namespace ventolith::ui {

Popover::Popover(const Theme& theme, QWidget* owner)
    : QWidget(owner, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
      theme_(theme),
      appearing_(theme, *this, metrics::popoverMotion) {
  installAccessibility();
  setAttribute(Qt::WA_TranslucentBackground);
  auto* layout = new QVBoxLayout(this);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  takeShadow();
  theme.repaints(this);
  connect(&appearing_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& opacity) { setWindowOpacity(opacity.toDouble()); });
}

void Popover::takeShadow() {
  reach_ = theme_.seeThrough() ? reachOf(menuShadow(theme_.palette())) : 0;
  settleMargins();
}

void Popover::settleMargins() {
  const int margin = reach_ + contentPadding_;
  layout()->setContentsMargins(margin, margin, margin, margin);
}

void Popover::settleShape() {
  if (reach_ > 0) return clearMask();
  setMask(roundedRegion(panel(), metrics::cardRadius));
}

void Popover::setContent(QWidget* content, int contentPadding) {
  delete content_.data();
  content_ = content;
  contentPadding_ = contentPadding;
  settleMargins();
  layout()->addWidget(content);
}

void Popover::setInitialFocus(QWidget* field) {
  initialFocus_ = field;
}

QRect Popover::panel() const {
  return rect().adjusted(reach_, reach_, -reach_, -reach_);
}

void Popover::openFrom(QWidget& anchor) {
  openFrom(globalRect(anchor));
}

QPoint Popover::place() const {
  const QScreen* found = QGuiApplication::screenAt(anchor_.center());
  const QScreen& screen = found != nullptr ? *found : *QGuiApplication::primaryScreen();
  return placeBeside(anchor_, screen.availableGeometry(), size(), reach_, Alongside::centre,
                     layoutDirection());
}

void Popover::openFrom(const QRect& anchor) {
  if (isVisible()) return;
  anchor_ = anchor;
  takeShadow();
  adjustSize();
  move(place());
  appearing_.jumpTo(0);
  const bool isFading = theme_.motion(metrics::popoverMotion) > 0;
  setWindowOpacity(isFading ? 0 : 1);
  show();
  appearing_.moveTo(1);
  if (initialFocus_ != nullptr) initialFocus_->setFocus(Qt::PopupFocusReason);
}

void Popover::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  appearing_.jumpTo(0);
  Q_EMIT closed();
}

void Popover::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
  close();
}

void Popover::mousePressEvent(QMouseEvent* event) {
  if (panel().contains(event->position().toPoint())) return;
  // A press on the control that opened it is not to open it again.
  setAttribute(Qt::WA_NoMouseReplay, anchor_.contains(event->globalPosition().toPoint()));
  close();
}

void Popover::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  settleShape();
  if (isVisible()) move(place());
}

void Popover::paintEvent(QPaintEvent*) {
  const Palette& palette = theme_.palette();
  QPainter painter(this);
  paintFloating(
      painter, panel(),
      {.fill = palette.panelBackground, .stroke = palette.menuStroke, .radius = metrics::cardRadius},
      reach_ > 0 ? std::optional(menuShadow(palette)) : std::nullopt);
}

} // namespace ventolith::ui

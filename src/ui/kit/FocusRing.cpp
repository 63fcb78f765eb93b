#include "ui/kit/FocusRing.h"

#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QPainter>

namespace ventolith::ui {
namespace {

/// What a scroll area shows a part of.
bool isScrolled(const QWidget& widget) {
  const QWidget* viewport = widget.parentWidget();
  if (viewport == nullptr) return false;
  const auto* area = qobject_cast<const QAbstractScrollArea*>(viewport->parentWidget());
  return area != nullptr && area->viewport() == viewport;
}

} // namespace

FocusRing::FocusRing(const Theme& theme, QWidget& control, RingShape shape)
    : theme_(theme), control_(control), shape_(shape) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  attach();
}

FocusRing::~FocusRing() {
  detach();
}

void FocusRing::setShape(RingShape shape) {
  shape_ = shape;
  place();
}

void FocusRing::retire() {
  detach();
  hide();
  setParent(nullptr);
  deleteLater();
}

void FocusRing::attach() {
  detach();
  QWidget* widget = &control_;
  while (!widget->isWindow() && !isScrolled(*widget) && widget->parentWidget() != nullptr) {
    widget->installEventFilter(this);
    followed_.emplace_back(widget);
    widget = widget->parentWidget();
  }
  setParent(widget);
  place();
  raise();
  show();
}

void FocusRing::detach() {
  for (const QPointer<QWidget>& widget : followed_) {
    if (widget != nullptr) widget->removeEventFilter(this);
  }
  followed_.clear();
}

void FocusRing::place() {
  if (parentWidget() == nullptr) return;
  const double reach = focusRingReach();
  const QRectF outer = shape_.around.adjusted(-reach, -reach, reach, reach);
  setGeometry(outer.translated(control_.mapTo(parentWidget(), QPoint())).toAlignedRect());
  update();
}

bool FocusRing::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
  case QEvent::ParentChange: attach(); break;
  case QEvent::Move:
  case QEvent::Resize: place(); break;
  case QEvent::ZOrderChange: raise(); break;
  default: break;
  }
  return false;
}

void FocusRing::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QPointF origin = control_.mapTo(parentWidget(), QPoint()) - pos();
  paintFocusRing(painter, shape_.around.translated(origin), shape_.radius, theme_.palette().focusRing);
}

} // namespace ventolith::ui

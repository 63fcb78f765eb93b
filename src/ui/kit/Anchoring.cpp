#include "ui/kit/Anchoring.h"

#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace ventolith::ui {
namespace {

// QRect's own right() and bottom() are one short.
int endX(const QRect& rect) {
  return rect.x() + rect.width();
}
int endY(const QRect& rect) {
  return rect.y() + rect.height();
}

int xOf(const QRect& anchor, int width, Alongside alongside, Qt::LayoutDirection direction) {
  if (alongside == Alongside::centre) return anchor.x() + (anchor.width() - width) / 2;
  return direction == Qt::LeftToRight ? anchor.x() : endX(anchor) - width;
}

} // namespace

QRect globalRect(const QWidget& widget) {
  return {widget.mapToGlobal(QPoint()), widget.size()};
}

QPoint placeBeside(const QRect& anchor, const QRect& screen, const QSize& size, int reach,
                   Alongside alongside, Qt::LayoutDirection direction) {
  const QSize panel(size.width() - 2 * reach, size.height() - 2 * reach);
  const int widest = std::max(screen.x(), endX(screen) - panel.width());
  const int x = std::clamp(xOf(anchor, panel.width(), alongside, direction), screen.x(), widest);
  const int below = endY(anchor) + belowAnchor;
  const int above = anchor.y() - belowAnchor - panel.height();
  const bool fitsBelow = below + panel.height() <= endY(screen);
  return {x - reach, (fitsBelow || above < screen.y() ? below : above) - reach};
}

QPoint placeBeside(const QWidget& anchor, const QSize& size, int reach, Alongside alongside) {
  return placeBeside(globalRect(anchor), anchor.screen()->availableGeometry(), size, reach, alongside,
                     anchor.layoutDirection());
}

} // namespace ventolith::ui

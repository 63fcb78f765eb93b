// Where a window goes that opens beside a control.
#pragma once

#include <QPoint>
#include <QRect>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace ventolith::ui {

/// Which edges are in line.
enum class Alongside { leading, centre };

inline constexpr int belowAnchor = 5;

[[nodiscard]] QRect globalRect(const QWidget& widget);

/// The place of a window of `size` of which `reach` on each side is shadow. Its panel is 5 below the anchor,
/// above it where there is room above alone, and never beyond the sides of `screen` if it can be helped.
/// All global.
[[nodiscard]] QPoint placeBeside(const QRect& anchor, const QRect& screen, const QSize& size, int reach,
                                 Alongside alongside, Qt::LayoutDirection direction);
[[nodiscard]] QPoint placeBeside(const QWidget& anchor, const QSize& size, int reach, Alongside alongside);

} // namespace ventolith::ui

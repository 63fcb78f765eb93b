#include "ui/kit/Badge.h"

#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <cmath>

namespace ventolith::ui {
namespace {

struct Measures {
  int height, leading, icon, gap, trailing;
  TextRole role;
};

constexpr Measures measuresOf(BadgeSize size, BadgeStyle style) {
  if (size == BadgeSize::small) return {18, 5, 11, 3, 7, TextRole::badgeSmall};
  if (style == BadgeStyle::active) return {22, 7, 14, 4, 10, TextRole::badge};
  return {22, 7, 13, 4, 9, TextRole::badge};
}

ColorRole groundOf(BadgeStyle style) {
  switch (style) {
  case BadgeStyle::quiet: return &Palette::accentFaint;
  case BadgeStyle::strong: return &Palette::accentSoft;
  case BadgeStyle::active: return &Palette::accentActive;
  }
  return &Palette::accentFaint;
}

} // namespace

Badge::Badge(const Theme& theme, BadgeSize size, QWidget* parent)
    : QLabel(parent), theme_(theme), size_(size) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  theme.repaints(this);
}

void Badge::setContent(Symbol symbol, const QString& text, BadgeStyle style) {
  if (symbol == symbol_ && style == style_ && text == this->text()) return;
  symbol_ = symbol;
  style_ = style;
  setText(text);
  updateGeometry(); // A style has measures of its own.
  update();
}

TextLine Badge::line() const {
  return {text(), measuresOf(size_, style_).role};
}

QSize Badge::sizeHint() const {
  const Measures it = measuresOf(size_, style_);
  return {it.leading + it.icon + it.gap + static_cast<int>(std::ceil(line().width())) + it.trailing,
          it.height};
}

void Badge::paintEvent(QPaintEvent*) {
  const Measures it = measuresOf(size_, style_);
  QPainter painter(this);
  const QRectF all = rect();
  paintCapsule(painter, all, theme_.color(groundOf(style_)));
  const QColor ink = theme_.color(style_ == BadgeStyle::quiet ? &Palette::secondaryText : &Palette::accent);
  const QRectF icon(it.leading, (all.height() - it.icon) / 2, it.icon, it.icon);
  theme_.icons().paint(painter, icon, symbol_, ink);
  line().paint(painter, all.adjusted(it.leading + it.icon + it.gap, 0, -it.trailing, 0), ink);
}

} // namespace ventolith::ui

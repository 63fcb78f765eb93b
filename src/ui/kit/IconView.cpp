#include "ui/kit/IconView.h"

#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <algorithm>

namespace ventolith::ui {

IconView::IconView(const Theme& theme, Symbol symbol, int size, ColorRole color, QWidget* parent)
    : QWidget(parent), theme_(theme), symbol_(symbol), size_(size), color_(color) {
  setFixedSize(size, size);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  theme.repaints(this);
}

void IconView::setSymbol(Symbol symbol) {
  if (symbol == symbol_) return;
  symbol_ = symbol;
  update();
}

void IconView::setColor(ColorRole color) {
  if (color == color_) return;
  color_ = color;
  update();
}

void IconView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  theme_.icons().paint(painter, rect(), symbol_, theme_.color(color_));
}

Dot::Dot(int diameter, const QColor& color, QWidget* parent)
    : QWidget(parent), diameter_(diameter), color_(color) {
  setFixedSize(diameter, diameter);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Dot::setColor(const QColor& color) {
  if (color == color_) return;
  color_ = color;
  update();
}

void Dot::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  // A whole number of the device's pixels, lest the widget's edge cuts the circle's.
  const QRectF square = onPixels(painter, rect());
  paintCircle(painter, square.center(), std::min(square.width(), square.height()), color_);
}

Divider::Divider(const Theme& theme, Qt::Orientation orientation, QWidget* parent)
    : QWidget(parent), theme_(theme) {
  if (orientation == Qt::Horizontal)
    setFixedHeight(1);
  else
    setFixedWidth(1);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  theme.repaints(this);
}

void Divider::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(onPixels(painter, rect()), theme_.palette().separator);
}

} // namespace ventolith::ui

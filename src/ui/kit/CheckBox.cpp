#include "ui/kit/CheckBox.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"

#include <QPainter>

#include <cmath>

namespace ventolith::ui {

CheckBox::CheckBox(const Theme& theme, QWidget* parent)
    : QCheckBox(parent),
      theme_(theme),
      feel_(theme, *this, [this] { return RingShape{box(), metrics::checkBoxRadius}; }) {
  installAccessibility();
  setAttribute(Qt::WA_LayoutUsesWidgetRect);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  connect(this, &QAbstractButton::pressed, this, [this] { feel_.setPressed(true); });
  connect(this, &QAbstractButton::released, this, [this] { feel_.setPressed(false); });
}

void CheckBox::setTitle(const QString& title) {
  title_ = title;
  setText(QString(title).replace(QLatin1Char('&'), QLatin1String("&&")));
  updateGeometry();
  update();
}

QSize CheckBox::sizeHint() const {
  if (title_.isEmpty()) return {side, lineHeight};
  return {side + gap + static_cast<int>(std::ceil(TextLine(title_, TextRole::body).width())), lineHeight};
}

QRectF CheckBox::box() const {
  const double left = layoutDirection() == Qt::LeftToRight ? 0 : width() - side;
  return {left, (height() - side) / 2.0, side, side};
}

bool CheckBox::hitButton(const QPoint& position) const {
  return rect().contains(position);
}

void CheckBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const double opacity = isEnabled() ? 1 : metrics::disabledOpacity;
  paintFaded(painter, rect(), opacity, [this](QPainter& on) { paintAll(on); });
}

void CheckBox::paintAll(QPainter& painter) const {
  const Palette& palette = theme_.palette();
  if (isChecked()) {
    const double mix = feel_.mix(metrics::hoverMixProminent, metrics::pressMixProminent);
    paintBox(painter, box(),
             {.fill = mixed(palette.accentFill, Qt::black, mix), .radius = metrics::checkBoxRadius});
    theme_.icons().paint(painter, box().adjusted(1.5, 1.5, -1.5, -1.5), Symbol::checkmark, palette.onAccent);
  } else {
    const double mix = feel_.mix(metrics::hoverMix, metrics::pressMix);
    paintBox(painter, box(),
             {.fill = mixed(palette.buttonBackground, palette.primaryText, mix),
              .stroke = palette.buttonStroke,
              .radius = metrics::checkBoxRadius});
  }
  const double left = layoutDirection() == Qt::LeftToRight ? side + gap : 0;
  TextLine(title_, TextRole::body)
      .paint(painter, QRectF(left, 0, width() - side - gap, height()), palette.primaryText);
}

} // namespace ventolith::ui

#include "ui/kit/Surface.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/IconView.h"
#include "ui/kit/Painting.h"
#include "ui/kit/TextLabel.h"

#include <QPainter>
#include <QVBoxLayout>

namespace ventolith::ui {

Surface::Surface(const Theme& theme, const SurfaceStyle& style, QWidget* parent)
    : QWidget(parent), theme_(theme), style_(style) {
  installAccessibility();
  theme.repaints(this);
}

void Surface::setStyle(const SurfaceStyle& style) {
  style_ = style;
  update();
}

QRectF Surface::ground() const {
  const QRectF all = rect();
  return style_.castsShadow ? all.adjusted(shadowReach, shadowReach, -shadowReach, -shadowReach) : all;
}

void Surface::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (style_.castsShadow) paintShadow(painter, ground(), style_.radius, cardShadow(theme_.palette()));
  const QColor none = Qt::transparent;
  paintBox(painter, ground(),
           {.fill = style_.fill ? theme_.color(style_.fill) : none,
            .stroke = style_.stroke ? theme_.color(style_.stroke) : none,
            .radius = style_.radius,
            .strokeWidth = style_.strokeWidth,
            .dashOn = style_.dashed ? metrics::dashOn : 0,
            .dashOff = style_.dashed ? metrics::dashOff : 0});
}

Card::Card(const Theme& theme, QWidget* parent)
    : Surface(theme, surfaces::card, parent), all_(new QVBoxLayout(this)), content_(new QVBoxLayout) {
  all_->setContentsMargins(metrics::cardPadding, metrics::cardPadding, metrics::cardPadding,
                           metrics::cardPadding);
  all_->setSpacing(metrics::titleToContent);
  content_->setContentsMargins(0, 0, 0, 0);
  content_->setSpacing(0);
  all_->addLayout(content_);
}

void Card::setTitle(const QString& title) {
  constexpr int gap = 7;
  titleRow_ = new QHBoxLayout;
  titleRow_->setSpacing(gap);
  auto* label = new TextLabel(theme(), TextRole::cardTitle, &Palette::primaryText);
  label->setText(title);
  titleRow_->addWidget(label);
  titleRow_->addStretch();
  all_->insertLayout(0, titleRow_);
  setAccessibleName(title);
}

void Card::setTitle(Symbol symbol, const QString& title) {
  constexpr int icon = 16;
  setTitle(title);
  titleRow_->insertWidget(0, new IconView(theme(), symbol, icon, &Palette::secondaryText));
}

} // namespace ventolith::ui

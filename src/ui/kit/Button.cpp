#include "ui/kit/Button.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ventolith::ui {
namespace {

constexpr int symbolAlone = 16;

QRectF flipped(const QRectF& rect, double width, Qt::LayoutDirection direction) {
  if (direction == Qt::LeftToRight) return rect;
  return {width - rect.right(), rect.top(), rect.width(), rect.height()};
}

} // namespace

ButtonMetrics ButtonMetrics::of(ButtonKind kind, ButtonSize size) {
  if (kind == ButtonKind::borderless) {
    return {.height = 22,
            .leading = Button::plainPadding,
            .trailing = Button::plainPadding,
            .icon = 15,
            .gap = 5,
            .radius = metrics::smallButtonRadius,
            .text = TextRole::axisLabel};
  }
  if (size == ButtonSize::small) {
    return {.height = 24,
            .leading = 10,
            .trailing = 10,
            .icon = 13,
            .gap = 5,
            .radius = metrics::smallButtonRadius,
            .text = TextRole::smallButton};
  }
  ButtonMetrics normal;
  if (kind == ButtonKind::prominent) normal.text = TextRole::buttonProminent;
  return normal;
}

Button::Button(const Theme& theme, ButtonKind kind, ButtonSize size, QWidget* parent)
    : QPushButton(parent),
      theme_(theme),
      kind_(kind),
      metrics_(ButtonMetrics::of(kind, size)),
      feel_(theme, *this, [this] { return RingShape{QRectF(rect()), radius()}; }) {
  setAttribute(Qt::WA_LayoutUsesWidgetRect);
  setAutoDefault(false);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  connect(this, &QAbstractButton::pressed, this, [this] { feel_.setPressed(true); });
  connect(this, &QAbstractButton::released, this, [this] { feel_.setPressed(false); });
}

void Button::setTitle(const QString& title) {
  if (title == title_) return;
  title_ = title;
  setText(QString(title).replace(QLatin1Char('&'), QLatin1String("&&")));
  settleSize();
}

void Button::setSymbol(std::optional<Symbol> symbol) {
  symbol_ = symbol;
  settleSize();
}

void Button::setRole(ButtonRole role) {
  role_ = role;
  update();
}

void Button::setSymbolSize(int pixels) {
  symbolSize_ = pixels;
  settleSize();
}

void Button::setSymbolAlignment(Qt::Alignment horizontal) {
  symbolAlignment_ = horizontal;
  update();
}

void Button::setMetrics(const ButtonMetrics& metrics) {
  metrics_ = metrics;
  settleSize();
}

void Button::setTrailing(Trailing trailing) {
  trailing_ = trailing;
  settleSize();
}

void Button::setOpen(bool isOpen) {
  isOpen_ = isOpen;
  feel_.setPressed(false); // The menu has the press, and the release.
  update();
}

void Button::settleSize() {
  updateGeometry();
  feel_.refreshRing();
  update();
}

QSize Button::sizeHint() const {
  if (isSymbolAlone())
    return {symbolButtonSide, kind_ == ButtonKind::borderless ? symbolButtonSide : metrics_.height};
  const double content = symbolWidth() + TextLine(title_, metrics_.text).width() + trailingWidth();
  const int width = metrics_.leading + static_cast<int>(std::ceil(content)) + metrics_.trailing;
  return {std::min(width, maximumWidth()), metrics_.height};
}

int Button::symbolSide() const {
  return symbolSize_.value_or(isSymbolAlone() ? symbolAlone : metrics_.icon);
}

double Button::symbolWidth() const {
  return symbol_ ? symbolSide() + metrics_.gap : 0;
}

double Button::trailingWidth() const {
  return trailing_ ? metrics_.trailingGap + metrics_.trailingIcon : 0;
}

double Button::radius() const {
  return isSymbolAlone() ? metrics::smallButtonRadius : metrics_.radius;
}

QColor Button::titleColor() const {
  const Palette& palette = theme_.palette();
  if (kind_ == ButtonKind::prominent) return palette.onAccent;
  if (role_ == ButtonRole::destructive) return palette.danger;
  return kind_ == ButtonKind::borderless ? palette.accent : palette.primaryText;
}

QColor Button::symbolColor() const {
  const bool isQuiet = kind_ == ButtonKind::bordered || isSymbolAlone();
  if (role_ == ButtonRole::normal && isQuiet) return theme_.palette().secondaryText;
  return titleColor();
}

bool Button::hitButton(const QPoint& position) const {
  return rect().contains(position);
}

bool Button::event(QEvent* event) {
  const bool isTaken = QPushButton::event(event);
  if (event->type() == QEvent::EnabledChange || event->type() == QEvent::Hide) feel_.setPressed(isDown());
  return isTaken;
}

void Button::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const double opacity = isEnabled() ? 1 : metrics::disabledOpacity;
  paintFaded(painter, rect(), opacity, [this](QPainter& on) { paintAll(on); });
}

void Button::paintAll(QPainter& painter) const {
  paintGround(painter);
  if (isSymbolAlone()) return paintSymbolAlone(painter);
  paintContent(painter);
}

void Button::paintGround(QPainter& painter) const {
  const Palette& palette = theme_.palette();
  switch (kind_) {
  case ButtonKind::bordered: {
    const QColor fill = isOpen_ ? palette.controlBackground : palette.buttonBackground;
    const double mix = isOpen_ ? 0 : feel_.mix(metrics::hoverMix, metrics::pressMix);
    paintBox(
        painter, rect(),
        {.fill = mixed(fill, palette.primaryText, mix), .stroke = palette.buttonStroke, .radius = radius()});
    break;
  }
  case ButtonKind::prominent: {
    const double mix = feel_.mix(metrics::hoverMixProminent, metrics::pressMixProminent);
    paintBox(painter, rect(), {.fill = mixed(palette.accentFill, Qt::black, mix), .radius = radius()});
    break;
  }
  case ButtonKind::borderless: {
    const double mix = isOpen_ ? metrics::pressMix : feel_.mix(metrics::hoverMixPlain, metrics::pressMix);
    paintBox(painter, rect(), {.fill = faded(palette.primaryText, mix), .radius = radius()});
    break;
  }
  }
}

void Button::paintSymbolAlone(QPainter& painter) const {
  const int side = symbolSide();
  QRectF glyph(0, (height() - side) / 2.0, side, side);
  if (symbolAlignment_ & Qt::AlignHCenter) glyph.moveLeft((width() - side) / 2.0);
  if (symbolAlignment_ & Qt::AlignTrailing) glyph.moveRight(width());
  theme_.icons().paint(painter, flipped(glyph, width(), layoutDirection()), *symbol_, symbolColor());
}

void Button::paintContent(QPainter& painter) const {
  const double room = width() - metrics_.leading - metrics_.trailing - symbolWidth() - trailingWidth();
  const TextLine line = TextLine(title_, metrics_.text).elided(std::max(room, 0.0));
  const double all = symbolWidth() + line.width() + trailingWidth();
  const bool isApart = trailing_ && trailing_->isApart;
  const bool isLeading = isApart || kind_ == ButtonKind::borderless; // A shortened title of those, too.
  double x = isLeading ? metrics_.leading
                       : metrics_.leading + (width() - metrics_.leading - metrics_.trailing - all) / 2.0;
  const auto placed = [&](double left, double wide, double high) {
    return flipped(QRectF(left, (height() - high) / 2.0, wide, high), width(), layoutDirection());
  };
  if (symbol_) {
    theme_.icons().paint(painter, placed(x, symbolSide(), symbolSide()), *symbol_, symbolColor());
    x += symbolWidth();
  }
  line.paint(painter, placed(x, line.width(), height()), titleColor(), Qt::AlignLeft);
  if (!trailing_) return;
  const double side = metrics_.trailingIcon;
  x = isApart ? width() - metrics_.trailing - side : x + line.width() + metrics_.trailingGap;
  theme_.icons().paint(painter, placed(x, side, side), trailing_->symbol, theme_.color(trailing_->color));
}

} // namespace ventolith::ui

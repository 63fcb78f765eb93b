#include "ui/MenuBarLabel.h"

#include "ui/kit/Painting.h"
#include "ui/kit/Type.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ventolith::ui {

namespace {

constexpr double outline = 100;  // Pixels of the type that paths are made from, before they are scaled.
constexpr double tightest = 0.8; // How far a line is pressed together sideways, to be taller.

/// The letters alone, at the origin, without the room that a line of text has around them.
QPainterPath lettersOf(const QString& text) {
  QFont font = fontOf(TextRole::bodyStrong);
  font.setPixelSize(static_cast<int>(outline));
  QPainterPath path;
  path.addText(0, 0, font, text);
  path.translate(-path.boundingRect().topLeft());
  return path;
}

/// `letters` as large as `room` allows.
QPainterPath fitted(const QPainterPath& letters, const QSizeF& room) {
  const QSizeF size = letters.boundingRect().size();
  if (size.isEmpty()) return {};
  const double tall = std::min(room.height() / size.height(), room.width() / (size.width() * tightest));
  const double wide = std::min(tall, room.width() / size.width());
  return QTransform::fromScale(wide, tall).map(letters);
}

void paintLetters(QPainter& painter, const QPainterPath& letters, const QColor& ink) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(letters, ink);
  painter.restore();
}

/// In the middle of the width of `rect`, its top at `top` on the device's pixels.
QPainterPath placed(const QPainter& painter, const QPainterPath& letters, const QRectF& rect, double top) {
  const double scale = deviceScale(painter);
  const double onPixel = std::round(top * scale) / scale;
  return letters.translated(rect.center().x() - letters.boundingRect().width() / 2, onPixel);
}

constexpr double plateRadius = 0.2, platePadding = 0.07, lineGap = 0.09;               // Of the side.
constexpr double rowIcon = 0.80, rowText = 0.48, rowIconGap = 0.30, rowTextGap = 0.28; // Of the height.

QPainterPath rowLetters(const QString& text, double height) {
  QFont font = fontOf(TextRole::button);
  font.setPixelSize(static_cast<int>(outline));
  const QFontMetricsF metrics(font);
  const double scale = height * rowText / metrics.capHeight();
  QPainterPath path;
  path.addText(0, 0, font, text);
  path = QTransform::fromScale(scale, scale).map(path);
  path.translate(-path.boundingRect().left(), 0);
  return path;
}

class LabelEngine final : public QIconEngine {
public:
  LabelEngine(const Theme& theme, LabelShape shape, MenuBarLabelContent content, LabelInk ink)
      : theme_(theme), shape_(shape), content_(std::move(content)), ink_(ink) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
    if (shape_ == LabelShape::square)
      paintSquareLabel(*painter, rect, content_, ink_, theme_.icons());
    else
      paintRowLabel(*painter, rect, content_, Qt::black, theme_.icons());
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }

  QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
    return sizeOf(std::min(size.width(), size.height()));
  }

  /// What areas show, at once and twice the scale. Each of a tray's travels over the bus at every change.
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
    if (shape_ == LabelShape::row) return {sizeOf(18), sizeOf(36)};
    return {sizeOf(22), sizeOf(24), sizeOf(32), sizeOf(48)};
  }

  [[nodiscard]] QIconEngine* clone() const override { return new LabelEngine(*this); }

private:
  [[nodiscard]] QSize sizeOf(int height) const {
    if (shape_ == LabelShape::square) return {height, height};
    return {static_cast<int>(std::ceil(rowLabelWidth(height, content_))), height};
  }

  const Theme& theme_;
  LabelShape shape_;
  MenuBarLabelContent content_;
  LabelInk ink_;
};

} // namespace

void paintSquareLabel(QPainter& painter, const QRectF& rect, const MenuBarLabelContent& content,
                      const LabelInk& ink, const Icons& icons) {
  const double side = std::min(rect.width(), rect.height());
  QRectF plate(0, 0, side, side);
  plate.moveCenter(rect.center());
  paintBox(painter, plate, {.fill = ink.plate, .radius = side * plateRadius});
  const double padding = side * platePadding;
  const QRectF room = plate.adjusted(padding, padding, -padding, -padding);
  const double gap = side * lineGap;
  const bool hasTemperature = !content.temperature.isEmpty();
  const bool hasSpeed = !content.figure.isEmpty();
  if (!hasTemperature && !hasSpeed) return icons.paint(painter, room, Symbol::fan, ink.ink);

  const QSizeF half(room.width(), (room.height() - gap) / 2);
  const QPainterPath lower = fitted(lettersOf(hasSpeed ? content.figure : content.temperature), half);
  const double lowerHeight = lower.boundingRect().height();
  const double rest = room.height() - gap - lowerHeight;
  if (!(hasTemperature && hasSpeed)) {
    icons.paint(painter, QRectF(room.topLeft(), QSizeF(room.width(), rest)), Symbol::fan, ink.ink);
    return paintLetters(painter, placed(painter, lower, room, room.bottom() - lowerHeight), ink.ink);
  }
  const QPainterPath upper = fitted(lettersOf(content.temperature), {room.width(), rest});
  const double upperHeight = upper.boundingRect().height();
  const double top = room.center().y() - (upperHeight + gap + lowerHeight) / 2;
  paintLetters(painter, placed(painter, upper, room, top), ink.ink);
  paintLetters(painter, placed(painter, lower, room, top + upperHeight + gap), ink.ink);
}

double rowLabelWidth(double height, const MenuBarLabelContent& content) {
  double width = height * rowIcon;
  double gap = rowIconGap;
  for (const QString& text : {content.temperature, content.speed}) {
    if (text.isEmpty()) continue;
    width += height * std::exchange(gap, rowTextGap) + rowLetters(text, height).boundingRect().width();
  }
  return width;
}

void paintRowLabel(QPainter& painter, const QRectF& rect, const MenuBarLabelContent& content,
                   const QColor& ink, const Icons& icons) {
  const double height = rect.height();
  const double icon = height * rowIcon;
  icons.paint(painter, QRectF(rect.left(), rect.top() + (height - icon) / 2, icon, icon), Symbol::fan, ink);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const double scale = deviceScale(painter);
  const double baseline = std::round((rect.top() + height * (1 + rowText) / 2) * scale) / scale;
  double left = rect.left() + icon;
  double gap = rowIconGap;
  for (const QString& text : {content.temperature, content.speed}) {
    if (text.isEmpty()) continue;
    left += height * std::exchange(gap, rowTextGap);
    const QPainterPath letters = rowLetters(text, height);
    painter.fillPath(letters.translated(left, baseline), ink);
    left += letters.boundingRect().width();
  }
  painter.restore();
}

MenuBarLabel::MenuBarLabel(const ViewContext& context, LabelShape shape, QObject* parent)
    : QObject(parent), context_(context), shape_(shape) {
  connect(&context.watch, &ModelWatch::changed, this, [this](ModelWatch::Fields fields) {
    if (fields.contains(app::AppModelField::snapshot)) take();
  });
  connect(&context.theme, &Theme::changed, this, &MenuBarLabel::takeInk);
  takeInk();
  take();
}

void MenuBarLabel::take() {
  MenuBarLabelContent content =
      menuBarLabelContent(context_.model.snapshot(), context_.model.representativeFan());
  if (content == content_) return;
  content_ = std::move(content);
  Q_EMIT changed();
}

void MenuBarLabel::takeInk() {
  const Palette& palette = context_.theme.palette();
  LabelInk ink{.ink = palette.primaryText, .plate = palette.panelBackground};
  if (ink == ink_) return;
  ink_ = ink;
  Q_EMIT changed();
}

QIcon MenuBarLabel::picture() const {
  QIcon icon(new LabelEngine(context_.theme, shape_, content_, ink_)); // The icon owns its engine.
  icon.setIsMask(shape_ == LabelShape::row);
  return icon;
}

QString MenuBarLabel::text() const {
  QStringList parts{content_.temperature, content_.speed};
  parts.removeAll(QString());
  return parts.join(QLatin1Char(' '));
}

} // namespace ventolith::ui

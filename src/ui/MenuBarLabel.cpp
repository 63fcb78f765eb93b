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

constexpr double plateRadius = 0.2, platePadding = 0.07, lineGap = 0.09; // Of the side.

class LabelEngine final : public QIconEngine {
public:
  LabelEngine(const Theme& theme, MenuBarLabelContent content, LabelInk ink)
      : theme_(theme), content_(std::move(content)), ink_(ink) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
    paintLabel(*painter, rect, content_, ink_, theme_.icons());
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }

  QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
    const int side = std::min(size.width(), size.height());
    return {side, side};
  }

  /// What trays show, at once and twice the scale. Each travels over the bus at every change.
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
    return {{22, 22}, {24, 24}, {32, 32}, {48, 48}};
  }

  [[nodiscard]] QIconEngine* clone() const override { return new LabelEngine(*this); }

private:
  const Theme& theme_;
  MenuBarLabelContent content_;
  LabelInk ink_;
};

} // namespace

void paintLabel(QPainter& painter, const QRectF& rect, const MenuBarLabelContent& content,
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

MenuBarLabel::MenuBarLabel(const ViewContext& context, QObject* parent) : QObject(parent), context_(context) {
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
  return QIcon(new LabelEngine(context_.theme, content_, ink_)); // The icon owns its engine.
}

QString MenuBarLabel::text() const {
  QStringList parts{content_.temperature, content_.speed};
  parts.removeAll(QString());
  return parts.join(QLatin1Char(' '));
}

} // namespace ventolith::ui

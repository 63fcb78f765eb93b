#include "Gallery.h"

#include "ui/kit/Painting.h"
#include "ui/kit/Type.h"

#include <QPainter>

#include <utility>

namespace ventolith::ui::gallery {
namespace {

constexpr int width = 1000, height = 900;

class Look final : public QWidget {
public:
  explicit Look(const Theme& theme) : theme_(theme) {}

protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(rect(), theme_.palette().windowBackground);
    paintIcons(painter);
    paintType(painter);
    paintShapes(painter);
  }

private:
  void paintIcons(QPainter& painter) const {
    int index = 0;
    for (const Symbol symbol : allSymbols()) {
      const double x = 20 + (index % 10) * 96;
      const double y = 20 + (index / 10) * 64;
      theme_.icons().paint(painter, QRectF(x, y, 16, 16), symbol, theme_.palette().secondaryText);
      theme_.icons().paint(painter, QRectF(x + 24, y - 4, 24, 24), symbol, theme_.palette().accent);
      theme_.icons().paint(painter, QRectF(x + 54, y - 10, 36, 36), symbol, theme_.palette().primaryText);
      ++index;
    }
  }

  void paintType(QPainter& painter) const {
    double y = 240;
    for (const auto& [role, text] : lines()) {
      const TextLine line(text, role);
      line.paint(painter, QRectF(20, y, 400, line.height()), theme_.palette().primaryText);
      y += line.height() + 6;
    }
    y = 240;
    for (const QString& figures : {QStringLiteral("2310"), QStringLiteral("5921"), QStringLiteral("1111")}) {
      const TextLine line(figures, TextRole::rpm);
      line.paint(painter, QRectF(440, y, 200, 28), theme_.palette().primaryText);
      TextLine(QStringLiteral("rpm"), TextRole::rpmUnit)
          .paint(painter, QRectF(440 + line.width() + 5, y + 3, 80, 28), theme_.palette().secondaryText);
      y += 36;
    }
  }

  static std::vector<std::pair<TextRole, QString>> lines() {
    return {{TextRole::screenTitle, QStringLiteral("Fan Curves")},
            {TextRole::windowTitle, QStringLiteral("Dashboard")},
            {TextRole::appName, QStringLiteral("Ventolith")},
            {TextRole::presetName, QStringLiteral("Studio Session")},
            {TextRole::cardTitle, QStringLiteral("Response tuning")},
            {TextRole::body, QStringLiteral("Switch presets automatically on power source")},
            {TextRole::bodyStrong, QStringLiteral("Fan 0")},
            {TextRole::sensorName, QStringLiteral("CPU (cluster)")},
            {TextRole::button, QStringLiteral("Restore Auto")},
            {TextRole::smallButton, QStringLiteral("Full Blast")},
            {TextRole::secondary, QStringLiteral("Automatic — firmware controlled")},
            {TextRole::caption, QStringLiteral("1250–6336 rpm range")},
            {TextRole::badge, QStringLiteral("Curve")},
            {TextRole::badgeSmall, QStringLiteral("Curve")},
            {TextRole::keyword, QStringLiteral("THEN set")},
            {TextRole::reading, QStringLiteral("77.3°C")},
            {TextRole::panelReading, QStringLiteral("82°C")},
            {TextRole::axisLabel, QStringLiteral("Temperature (°C)")},
            {TextRole::tick, QStringLiteral("105")},
            {TextRole::stepperLabel, QStringLiteral("85°C")},
            {TextRole::notices, QStringLiteral("Licensed under the MIT License.")}};
  }

  void paintShapes(QPainter& painter) const {
    const Palette& it = theme_.palette();
    const QRectF card(440, 380, 220, 90);
    paintShadow(painter, card, 12, cardShadow(it));
    paintBox(painter, card, {.fill = it.cardBackground, .stroke = it.cardStroke, .radius = 12});
    const QRectF active(690, 380, 220, 90);
    paintShadow(painter, active, 12, cardShadow(it));
    paintBox(painter, active,
             {.fill = it.cardBackground, .stroke = it.accent, .radius = 12, .strokeWidth = 2});
    const QRectF menu(440, 510, 180, 120);
    paintShadow(painter, menu, 9, menuShadow(it));
    paintBox(painter, menu, {.fill = it.menuBackground, .stroke = it.menuStroke, .radius = 9});
    paintBox(painter, QRectF(690, 510, 220, 90),
             {.fill = Qt::transparent,
              .stroke = it.newCardStroke,
              .radius = 12,
              .strokeWidth = 1.5,
              .dashOn = 6,
              .dashOff = 4});
    const QRectF button(690, 630, 120, 28);
    paintFocusRing(painter, button, 7, it.focusRing);
    paintBox(painter, button, {.fill = it.buttonBackground, .stroke = it.buttonStroke, .radius = 7});
    paintCapsule(painter, QRectF(840, 630, 60, 22), it.accentSoft);
    const QPointF knob(700, 690);
    paintShadow(painter, QRectF(knob.x() - 8, knob.y() - 8, 16, 16), 8, knobShadow(it));
    paintBox(painter, QRectF(knob.x() - 8, knob.y() - 8, 16, 16),
             {.fill = it.knob, .stroke = it.knobStroke, .radius = 8});
  }

  const Theme& theme_;
};

} // namespace

Page lookPage() {
  return {QStringLiteral("look"), QSize(width, height),
          [](const Theme& theme) { return std::make_unique<Look>(theme); }};
}

} // namespace ventolith::ui::gallery

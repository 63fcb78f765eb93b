#include "ui/CurveThumbnail.h"

#include "ui/KitValues.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"

#include <QPainter>
#include <QPainterPath>

namespace ventolith::ui {
namespace {

constexpr double inset = 5;
constexpr int iconSide = 16, iconGap = 6;

} // namespace

CurveThumbnail::CurveThumbnail(const Theme& theme, QWidget* parent) : QLabel(parent), theme_(theme) {
  setTextFormat(Qt::PlainText);
  setFixedSize(thumbnailWidth, thumbnailHeight);
  theme.repaints(this);
}

void CurveThumbnail::setContent(const PresetThumbnail& content) {
  if (content == content_) return;
  content_ = content;
  setText(content.kind == PresetThumbnail::Kind::curve ? tr("Fan curve") : content.text);
  update();
}

void CurveThumbnail::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paintBox(painter, rect(), {.fill = theme_.palette().thumbBackground, .radius = metrics::controlRadius});
  if (content_.kind == PresetThumbnail::Kind::curve) return paintCurve(painter);
  paintWord(painter);
}

void CurveThumbnail::paintCurve(QPainter& painter) const {
  if (content_.samples.empty()) return;
  const ChartGeometry geometry{.plot = QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                               .temperatures = thumbnailTemperatures};
  QPainterPath path(geometry.position(content_.samples.front()));
  for (const ChartValue& sample : content_.samples)
    path.lineTo(geometry.position(sample));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(
      QPen(theme_.palette().chartLine, metrics::thumbnailStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
}

void CurveThumbnail::paintWord(QPainter& painter) const {
  const QColor color = theme_.palette().secondaryText;
  const double taken = content_.symbol.isEmpty() ? 0 : iconSide + iconGap;
  const TextLine word = TextLine(content_.text, TextRole::caption).elided(width() - 2 * inset - taken);
  if (content_.symbol.isEmpty()) return word.paint(painter, rect(), color, Qt::AlignHCenter);

  const double all = iconSide + iconGap + word.width();
  const bool isLeading = layoutDirection() == Qt::LeftToRight;
  const double left = (width() - all) / 2;
  const QRectF icon(isLeading ? left : left + all - iconSide, (height() - iconSide) / 2.0, iconSide,
                    iconSide);
  theme_.icons().paint(painter, icon, symbolFor(content_.symbol), color);
  const QRectF text(isLeading ? left + iconSide + iconGap : left, 0, word.width(), height());
  word.paint(painter, text, color, Qt::AlignLeft);
}

} // namespace ventolith::ui

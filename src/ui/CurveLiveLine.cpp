#include "ui/CurveLiveLine.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"
#include "ui/state/CurveEditingTexts.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ventolith::ui {

namespace {

constexpr int dotDiameter = 8;
constexpr int lineHeight = 18;
constexpr int textInset = dotDiameter + metrics::space8;

TextLine lineOfLive(const QString& text) {
  return {text, TextRole::rpmUnit, Digits::equal};
}
TextLine lineOfNone(const QString& text) {
  return {text, TextRole::caption};
}

} // namespace

CurveLiveLine::CurveLiveLine(const Theme& theme, QWidget* parent)
    : QLabel(parent),
      theme_(theme),
      noText_(liveLine(std::nullopt)),
      isLive_(theme, *this, metrics::liveLineMotion) {
  setTextFormat(Qt::PlainText);
  theme.repaints(this);
  display(std::nullopt);
}

void CurveLiveLine::display(const std::optional<ChartValue>& livePoint) {
  const QString now = liveLine(livePoint);
  isLive_.moveTo(livePoint ? 1 : 0);
  if (now == text()) return;
  setText(now);
  if (livePoint) liveText_ = now;
  const double widest = std::max(textInset + lineOfLive(liveText_).width(), lineOfNone(noText_).width());
  setFixedSize(static_cast<int>(std::ceil(widest)), lineHeight);
}

void CurveLiveLine::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Palette& palette = theme_.palette();
  const QRectF all = rect();
  if (isLive_.value() > 0) {
    painter.setOpacity(isLive_.value());
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const double x = isMirrored ? all.right() - dotDiameter / 2.0 : dotDiameter / 2.0;
    paintCircle(painter, {x, all.center().y()}, dotDiameter, palette.success);
    const QRectF beside = isMirrored ? all.adjusted(0, 0, -textInset, 0) : all.adjusted(textInset, 0, 0, 0);
    lineOfLive(liveText_).paint(painter, beside, palette.primaryText);
  }
  if (isLive_.value() < 1) {
    painter.setOpacity(1 - isLive_.value());
    lineOfNone(noText_).paint(painter, all, palette.secondaryText);
  }
}

} // namespace ventolith::ui

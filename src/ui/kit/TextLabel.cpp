#include "ui/kit/TextLabel.h"

#include "ui/kit/Theme.h"

#include <QHelpEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace ventolith::ui {
namespace {

constexpr int narrowest = 24; // A few letters and "…".

}

TextLabel::TextLabel(const Theme& theme, TextRole role, ColorRole color, QWidget* parent)
    : QLabel(parent), theme_(theme), role_(role), color_(color), digits_(styleOf(role).digits) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  theme.repaints(this);
}

void TextLabel::setText(const QString& text) {
  if (text == this->text()) return;
  QLabel::setText(text);
  sizeChanged();
}

void TextLabel::setRole(TextRole role) {
  if (role == role_) return;
  role_ = role;
  digits_ = styleOf(role).digits;
  wrappedWidth_ = -1;
  sizeChanged();
}

// Qt lays out nothing anew for a widget of fixed size.
void TextLabel::sizeChanged() {
  update();
  const bool untouched = minimumWidth() == 0 && maximumWidth() == QWIDGETSIZE_MAX;
  const bool own = minimumWidth() == maximumWidth() ? minimumWidth() == ownSize_.width() : untouched;
  if (fit_ == Fit::whole) {
    const QSize hint = sizeHint();
    ownSize_ = {own ? hint.width() : -1, hint.height()};
    setFixedHeight(hint.height());
    if (own) setFixedWidth(hint.width());
    return;
  }
  if (ownSize_.height() >= 0) {
    setMinimumHeight(0);
    setMaximumHeight(QWIDGETSIZE_MAX);
  }
  if (ownSize_.width() >= 0 && own) {
    setMinimumWidth(0);
    setMaximumWidth(QWIDGETSIZE_MAX);
  }
  ownSize_ = {};
  updateGeometry();
}

void TextLabel::setColor(ColorRole color) {
  if (!ownColor_.isValid() && color == color_) return;
  color_ = color;
  ownColor_ = QColor();
  update();
}

void TextLabel::setColor(const QColor& color) {
  if (color == ownColor_) return;
  ownColor_ = color;
  update();
}

void TextLabel::setFit(Fit fit) {
  fit_ = fit;
  QSizePolicy policy(fit == Fit::whole ? QSizePolicy::Fixed : QSizePolicy::Preferred, QSizePolicy::Fixed);
  if (fit == Fit::wrapped) policy.setVerticalPolicy(QSizePolicy::Preferred);
  policy.setHeightForWidth(fit == Fit::wrapped);
  setSizePolicy(policy);
  sizeChanged();
}

void TextLabel::setDigits(Digits digits) {
  digits_ = digits;
  sizeChanged();
}

QSize TextLabel::withMargins(double width, int lines) const {
  const QMargins margins = contentsMargins();
  return {static_cast<int>(std::ceil(width)) + margins.left() + margins.right(),
          lines * styleOf(role_).line + margins.top() + margins.bottom()};
}

QSize TextLabel::sizeHint() const {
  if (fit_ != Fit::wrapped) return withMargins(line().width(), 1);
  double widest = 0;
  for (const QString& paragraph : text().split(u'\n'))
    widest = std::max(widest, TextLine(paragraph, role_, digits_).width());
  const int width = std::min(withMargins(widest, 1).width(), maximumWidth());
  return {width, heightForWidth(width)};
}

QSize TextLabel::minimumSizeHint() const {
  const QSize whole = sizeHint();
  if (fit_ == Fit::whole) return whole;
  return {std::min(whole.width(), withMargins(narrowest, 1).width()), withMargins(0, 1).height()};
}

int TextLabel::heightForWidth(int width) const {
  const QMargins margins = contentsMargins();
  width = std::min(width, maximumWidth()); // A layout asks for its own width.
  return withMargins(0, static_cast<int>(linesAt(width - margins.left() - margins.right()).size())).height();
}

const QStringList& TextLabel::linesAt(double width) const {
  if (width != wrappedWidth_ || text() != wrappedText_) {
    lines_ = wrapped(text(), role_, width);
    wrappedText_ = text();
    wrappedWidth_ = width;
  }
  return lines_;
}

void TextLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QColor color = ownColor_.isValid() ? ownColor_ : theme_.color(color_);
  const QRectF area = contentsRect();
  if (fit_ != Fit::wrapped) {
    const TextLine shown = fit_ == Fit::elided ? line().elided(area.width()) : line();
    shown.paint(painter, area, color, alignment());
    return;
  }
  const QStringList& lines = linesAt(area.width());
  const double height = styleOf(role_).line;
  const double taken = height * static_cast<double>(lines.size());
  QRectF row(area.left(), area.top() + (alignment() & Qt::AlignVCenter ? (area.height() - taken) / 2 : 0),
             area.width(), height);
  for (const QString& text : lines) {
    TextLine(text, role_, digits_).paint(painter, row, color, alignment());
    row.translate(0, height);
  }
}

bool TextLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || fit_ != Fit::elided || !toolTip().isEmpty())
    return QLabel::event(event);
  if (line().width() <= contentsRect().width()) return QLabel::event(event);
  // A name that looks like markup is a name still.
  const QString tip =
      Qt::mightBeRichText(text()) ? QStringLiteral("<p>%1</p>").arg(text().toHtmlEscaped()) : text();
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip, this);
  return true;
}

} // namespace ventolith::ui

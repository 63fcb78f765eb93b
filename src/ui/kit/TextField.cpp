#include "ui/kit/TextField.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"

#include <QPainter>

namespace ventolith::ui {
namespace {

constexpr int textMargin = 7; // Beside the two that a line edit keeps by itself.
constexpr int preferredWidth = 220;
constexpr int narrowest = 60;
constexpr double selectionOpacity = 0.3;

} // namespace

TextField::TextField(const Theme& theme, QWidget* parent)
    : QLineEdit(parent),
      theme_(theme),
      feel_(theme, *this, [this] { return RingShape{QRectF(rect()), metrics::controlRadius}; }) {
  setAttribute(Qt::WA_LayoutUsesWidgetRect);
  setFrame(false);
  setFont(fontOf(TextRole::body));
  setTextMargins(textMargin, 0, textMargin, 0);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  feel_.ringAlways();
  takeColors();
  connect(&theme, &Theme::changed, this, &TextField::takeColors);
}

void TextField::takeColors() {
  const Palette& its = theme_.palette();
  QPalette colors = palette();
  colors.setColor(QPalette::Base, Qt::transparent);
  colors.setColor(QPalette::Text, its.primaryText);
  colors.setColor(QPalette::PlaceholderText, its.tertiaryText);
  colors.setColor(QPalette::Highlight, faded(its.accent, selectionOpacity));
  colors.setColor(QPalette::HighlightedText, its.primaryText);
  for (const QPalette::ColorRole role : {QPalette::Text, QPalette::PlaceholderText}) {
    colors.setColor(QPalette::Disabled, role,
                    faded(colors.color(QPalette::Active, role), metrics::disabledOpacity));
  }
  setPalette(colors);
}

QSize TextField::sizeHint() const {
  return {preferredWidth, fieldHeight};
}

QSize TextField::minimumSizeHint() const {
  return {narrowest, fieldHeight};
}

void TextField::paintEvent(QPaintEvent* event) {
  {
    const Palette& its = theme_.palette();
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : metrics::disabledOpacity);
    paintBox(painter, rect(),
             {.fill = its.buttonBackground, .stroke = its.buttonStroke, .radius = metrics::controlRadius});
  }
  QLineEdit::paintEvent(event);
}

} // namespace ventolith::ui
